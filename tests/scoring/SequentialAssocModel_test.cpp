#include "scoring/SequentialAssocModel.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/NumericValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/SequenceCounter.h"

namespace {

using OrbQuillon_830::SequentialAssocModel;
using OrbQuillon_830::SequentialResult;
using OrbScore::ScoreCaseRecord;
using OrbScore::ScoreResult;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using ItemList = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;
using Pairs = std::vector<SequenceCounter::AdjacentItem>;

void store(HashtableSQPair& table, NTSequence* key, int count, const Pairs& adjacent) {
  auto* const counter = new SequenceCounter(0, count, nullptr);
  for (const auto& [item, position] : adjacent) counter->addAdjacentItem(item, position);
  table.put(key, counter);
}

// 10 customers; 8 hold 7, 5 hold 9, 4 hold both at once, 2 hold 7 and later 9.
std::unique_ptr<SequentialAssocModel> smallModel() {
  const int seven[] = {1, 7};
  const int nine[] = {1, 9};
  const int both[] = {2, 7, 9};
  const int* const later[] = {seven, nine};
  auto** const tables = new HashtableSQPair* [3] {
    new HashtableSQPair(2), new HashtableSQPair(3), new HashtableSQPair(3)
  };
  store(*tables[0], new NTSequence, 10, {{7, 1}, {9, 1}});
  store(*tables[1], new NTSequence(seven), 8, {{9, 0}, {9, 3}});
  store(*tables[1], new NTSequence(nine), 5, {{7, 0}, {7, 1}});
  store(*tables[2], new NTSequence(both), 4, {});
  store(*tables[2], new NTSequence(later, 2), 2, {});
  return std::make_unique<SequentialAssocModel>(tables, 3);
}

// Scores a case and gives the items of the answer, and optionally the result.
std::vector<std::int32_t> ask(const SequentialAssocModel& model, const ScoreCaseRecord& record) {
  ScoreResult* raw = nullptr;
  EXPECT_TRUE(model.GetScore(&record, raw, false).IsOK());
  const std::unique_ptr<ScoreResult> result(raw);
  std::vector<std::int32_t> items;
  for (const auto& one : dynamic_cast<const ItemList&>(*result->GetPrediction()).GetVectorValue())
    items.push_back(one.GetItem());
  return items;
}

ScoreCaseRecord recordOf(const std::string& history) {
  ScoreCaseRecord record;
  record.SetText("sequence", history);
  return record;
}

TEST(SequentialAssocModel, CurrentItemsAreAskedWhenNothingIsSaid) {
  const auto model = smallModel();
  const ScoreCaseRecord record = recordOf("(7)");
  ScoreResult* raw = nullptr;

  model->GetScore(&record, raw, false);

  const std::unique_ptr<ScoreResult> result(raw);
  const auto& list = dynamic_cast<const ItemList&>(*result->GetPrediction()).GetVectorValue();
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].GetItem(), 9);
  EXPECT_EQ(list[0].GetConfidence(), 4.0 / 8.0);
  EXPECT_EQ(list[0].GetSupport(), 4.0 / 10.0);
  EXPECT_EQ(list[0].GetCause(), 4.0 / 5.0);
  EXPECT_EQ(result->GetTarget()->GetName(), "currentItems");
}

TEST(SequentialAssocModel, FutureItemsComeInALaterSet) {
  const auto model = smallModel();
  ScoreCaseRecord record = recordOf("(7)");
  record.SetText("returnType", "futureItems");
  ScoreResult* raw = nullptr;

  model->GetScore(&record, raw, false);

  const std::unique_ptr<ScoreResult> result(raw);
  const auto& list = dynamic_cast<const ItemList&>(*result->GetPrediction()).GetVectorValue();
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].GetItem(), 9);
  EXPECT_EQ(list[0].GetConfidence(), 2.0 / 8.0);
  EXPECT_EQ(result->GetTarget()->GetName(), "futureItems");
}

TEST(SequentialAssocModel, NoHistoryAsksForWhatIsPopular) {
  const auto model = smallModel();
  const std::vector<std::int32_t> popular = {7, 9};

  EXPECT_EQ(ask(*model, ScoreCaseRecord()), popular);
  for (const char* text : {"", "  ", "no parentheses"})
    EXPECT_EQ(ask(*model, recordOf(text)), popular) << text;
}

TEST(SequentialAssocModel, AnEmptyItemSetIsNoEmptyHistory) {
  EXPECT_EQ(ask(*smallModel(), recordOf("()")), std::vector<std::int32_t>());
}

TEST(SequentialAssocModel, UnknownItemsHaveAnEmptyAnswer) {
  EXPECT_EQ(ask(*smallModel(), recordOf("(5)(6)")), std::vector<std::int32_t>());
  EXPECT_EQ(ask(*smallModel(), recordOf("(4294967295)")), std::vector<std::int32_t>());
}

TEST(SequentialAssocModel, ANullRecordIsACaseWithoutFields) {
  const auto model = smallModel();
  ScoreResult* raw = nullptr;

  EXPECT_TRUE(model->GetScore(nullptr, raw, true).IsOK());

  const std::unique_ptr<ScoreResult> result(raw);
  EXPECT_EQ(result->GetPrediction()->GetInt(), 2);
}

TEST(SequentialAssocModel, MaxReturnCutsTheAnswer) {
  const auto model = smallModel();
  ScoreCaseRecord record;

  record.SetText("maxReturn", "1");
  EXPECT_EQ(ask(*model, record), std::vector<std::int32_t>{7});
  record.SetText("maxReturn", "0");
  EXPECT_EQ(ask(*model, record), std::vector<std::int32_t>());
  record.SetText("maxReturn", "-1");
  EXPECT_EQ(ask(*model, record).size(), 2U);
}

// Deliberate: presence alone asks every beginning of the history.
TEST(SequentialAssocModel, FromCurrentAsksEveryBeginning) {
  const auto model = smallModel();
  ScoreCaseRecord record = recordOf("(7)(1)");
  record.SetText("returnType", "futureItems");
  EXPECT_EQ(ask(*model, record), std::vector<std::int32_t>{9});  // 1 is unknown: last known set

  record = recordOf("(7)(9)");
  record.SetText("returnType", "futureItems");
  EXPECT_EQ(ask(*model, record), std::vector<std::int32_t>());
  record.SetText("fromCurrent", "false");
  EXPECT_EQ(ask(*model, record), std::vector<std::int32_t>());  // 9 was seen after (7)
}

TEST(SequentialAssocModel, AResultOfItsOwnIsRefilledAndKeepsItsIdentity) {
  const auto model = smallModel();
  const ScoreCaseRecord seven = recordOf("(7)");
  const ScoreCaseRecord nobody = recordOf("(5)");
  ScoreResult* result = nullptr;
  model->GetScore(&seven, result, false);
  ScoreResult* const first = result;
  const auto* const prediction = result->GetPrediction();

  model->GetScore(&nobody, result, false);

  EXPECT_EQ(result, first);
  EXPECT_EQ(result->GetPrediction(), prediction);
  EXPECT_EQ(result->GetPrediction()->GetInt(), 0);
  delete result;
}

TEST(SequentialAssocModel, AResultWithoutAListGetsANewOne) {
  const auto model = smallModel();
  const ScoreCaseRecord seven = recordOf("(7)");
  ScoreResult* result = new SequentialResult(nullptr);
  model->GetScore(&seven, result, false);
  EXPECT_EQ(result->GetPrediction()->GetInt(), 1);

  result->SetPrediction(new OrbScore::NumericValue(4.0));
  model->GetScore(&seven, result, false);

  EXPECT_EQ(result->GetPrediction()->GetType(), 2);
  delete result;
}

// A result of another type that tells when it goes.
class ForeignResult : public ScoreResult {
 public:
  explicit ForeignResult(bool& gone) : gone_(gone) {}
  ~ForeignResult() override { gone_ = true; }
  void SetPrediction(OrbScore::ScoreValue*) override {}
  OrbScore::ScoreValue* GetPrediction() const override { return nullptr; }
  OrbScore::ScoreDictVar* GetTarget() const override { return nullptr; }
  void SetConfidence(double) override {}
  double GetConfidence() const override { return 0.0; }
  int GetScoreResultType() const override { return 1; }

 private:
  bool& gone_;
};

TEST(SequentialAssocModel, AResultOfAnotherTypeIsDestroyedAndReplaced) {
  const auto model = smallModel();
  const ScoreCaseRecord seven = recordOf("(7)");
  bool gone = false;
  ScoreResult* result = new ForeignResult(gone);

  model->GetScore(&seven, result, false);

  EXPECT_TRUE(gone);
  EXPECT_EQ(result->GetScoreResultType(), 13);
  delete result;
}

TEST(SequentialAssocModel, WithoutALatticeAnswersAreEmpty) {
  const SequentialAssocModel model;
  std::ostringstream shown;

  EXPECT_EQ(ask(model, recordOf("(7)")), std::vector<std::int32_t>());
  model.Display(shown);
  EXPECT_EQ(shown.str(), "");
}

TEST(SequentialAssocModel, ALatticeOfNoLevelsAnswersNothing) {
  for (const int levels : {0, -1}) {
    const SequentialAssocModel model(new HashtableSQPair*[1](), levels);
    EXPECT_EQ(ask(model, recordOf("(7)")), std::vector<std::int32_t>());
    EXPECT_EQ(ask(model, ScoreCaseRecord()), std::vector<std::int32_t>());
  }
}

// Deliberate: the model is always in prediction-only mode and names no variables.
TEST(SequentialAssocModel, IsAlwaysPredictionOnly) {
  const auto model = smallModel();

  model->SetPredictionOnly(false);

  EXPECT_TRUE(model->GetPredictionOnly());
  EXPECT_EQ(model->GetVarsOfRole(SequentialAssocModel::kActive), nullptr);
  EXPECT_EQ(model->GetModelType(), 14);
}

TEST(SequentialAssocModel, DisplayShowsEveryLevel) {
  std::ostringstream shown;

  smallModel()->Display(shown);

  EXPECT_EQ(shown.str(),
            "<>\n count 10 ordinalOfEntry 0 max missed 0\n"
            "<(9)>\n count 5 ordinalOfEntry 0 max missed 0\n"
            "<(7)>\n count 8 ordinalOfEntry 0 max missed 0\n"
            "<(7)(9)>\n count 2 ordinalOfEntry 0 max missed 0\n"
            "<(7 9)>\n count 4 ordinalOfEntry 0 max missed 0\n");
}

}  // namespace

// Hostile case fields and results: rows C15 and C17 to C21. Scoring answers with success and a
// defined list whatever it is given.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/NumericValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreResult.h"
#include "scoring/hostapi/StringValue.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/caseModels.h"

namespace {

using OrbQuillon_830::SequentialResult;
using OrbScore::NumericValue;
using OrbScore::ScoreCaseRecord;
using OrbScore::ScoreModel;
using OrbScore::ScoreResult;
using OrbScore::ScoreValue;
using OrbScore::StringValue;
using orbseq::test::caseModel;
using orbseq::test::itemsOf;
using orbseq::test::Meter;
using orbseq::test::recordOf;
using orbseq::test::score;
using orbseq::test::Scored;
using orbseq::test::wideModel;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using test::ask;
using test::Mode;
using testing::ElementsAre;
using testing::IsEmpty;
using ItemList = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;
using Items = orbseq::test::CaseItems;

// Of so many sets.
std::string longHistory(int sets) {
  std::string text;
  for (int left = sets; left > 0; --left)  // the last is (2), which has no answer of its own
    text += left % 3 == 1 ? "(2)" : left % 3 == 2 ? "(1 2)" : "(1)";
  return text;
}

// Seconds of the processor for one answer to so many sets with everything asked for, the best of
// three.
double secondsFor(const ScoreModel& model, int sets, std::size_t answers) {
  const std::string text = longHistory(sets);
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 3; ++round) {
    const std::clock_t begin = std::clock();
    EXPECT_EQ(ask(model, text, Mode::kFutureAllBeginnings).size(), answers) << sets;
    best = std::min(best, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  }
  return best;
}

TEST(HostileCaseFields, C15LongHistoriesTakeTimeByTheirLengthAlone) {
  constexpr double kRoom = 4.0;      // of a machine that does other things as well
  const auto model = wideModel(15);  // of whose 14 answers the history has one

  const double thousand = secondsFor(*model, 1'000, 13);
  const double many = secondsFor(*model, 20'000, 13);
  const double most = secondsFor(*model, 100'000, 13);

  EXPECT_LT(thousand, 0.1 * Meter::slowdown());
  EXPECT_LT(many, 20.0 * kRoom * std::max(thousand, 0.0001));
  EXPECT_LT(most, 5.0 * kRoom * std::max(many, 0.001));
  EXPECT_LT(most, 1.0 * Meter::slowdown());
}

TEST(HostileCaseFields, C15LongHistoriesTakeMemoryByTheirLengthAlone) {
  wideModel(15);  // what the host and the parser keep is made now
  for (const int sets : {1'000, 20'000, 100'000}) {
    const std::string text = longHistory(sets);

    const Meter meter(text.size());
    {
      const auto model = wideModel(15);
      for (const Mode mode : {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings})
        EXPECT_EQ(ask(*model, text, mode).size(), mode == Mode::kFutureAllBeginnings ? 13U : 0U);
    }
    meter.check();
  }
}

TEST(HostileCaseFields, C17OtherReturnTypesFallBackToCurrentItems) {
  const auto model = caseModel();
  const ScoreCaseRecord future = recordOf("(1)(1)", "futureItems");
  const ScoreCaseRecord plain = recordOf("(1)");
  const Scored current = score(*model, &plain);
  ASSERT_EQ(score(*model, &future).target, "futureItems");

  for (const std::string& type :
       {std::string("FutureItems"), std::string("futureItems "), std::string("futureItems\0", 12),
        std::string(), std::string(std::size_t{1} << 20, 'f')}) {
    const Meter meter(type.size());
    {
      ScoreCaseRecord record = recordOf("(1)");
      record.SetText("returnType", type);
      const Scored scored = score(*model, &record);
      EXPECT_EQ(scored.target, "currentItems") << type.substr(0, 20);
      EXPECT_EQ(scored.items, current.items) << type.substr(0, 20);
    }
    meter.check();
  }
}

struct MostRow {
  const char* name;
  const char* text;
  std::size_t answers;  // of the 29 that there are
};
void PrintTo(const MostRow& row, std::ostream* os) { *os << row.name; }

class HostileMaxReturn : public testing::TestWithParam<MostRow> {};

TEST_P(HostileMaxReturn, IsConvertedAsTheHostDoes) {
  wideModel(30);  // what the host and the parser keep is made now

  const Meter meter(0);
  {
    const auto model = wideModel(30);
    ScoreCaseRecord record = recordOf("(1)", "futureItems");
    record.SetText("maxReturn", GetParam().text);
    const Items items = score(*model, &record).items;
    ASSERT_EQ(items.size(), GetParam().answers);
    if (!items.empty()) {
      EXPECT_EQ(items.front(), 30);
    }
  }
  meter.check();
}

const MostRow kMosts[] = {
    {"C18Negative", "-1", 20},
    {"C18None", "0", 0},
    {"C18All", "2147483647", 29},
    {"C18Word", "abc", 20},
    {"C18HugePower", "1e300", 29},
    {"C18HugeNegativePower", "-1e300", 20},
    {"C18Beyond32Bits", "4294967297", 29},
    {"C18Infinite", "inf", 20},
    {"C18NoNumber", "nan", 20},
    {"C18Empty", "", 20},
    {"C18Fraction", "2.9", 2},
    {"C18FractionBelowZero", "-0.5", 0},
};
INSTANTIATE_TEST_SUITE_P(Texts, HostileMaxReturn, testing::ValuesIn(kMosts),
                         [](const auto& it) { return it.param.name; });

TEST(HostileCaseFields, C18NumbersAreClamped) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<std::pair<double, std::size_t>> rows = {
      {1e300, 29},        {kInfinity, 29},    {-kInfinity, 20}, {-1e300, 20},
      {std::nan(""), 20}, {3.99, 3},          {-1, 20},         {0, 0},
      {-0.0, 0},          {2147483647.0, 29}, {-0.99, 0},       {1, 1},
      {2147483648.0, 29}, {-2147483648.0, 20}};
  wideModel(30);  // what the host and the parser keep is made now

  for (const auto& [number, answers] : rows) {
    const Meter meter(0);
    {
      const auto model = wideModel(30);
      ScoreCaseRecord record = recordOf("(1)", "futureItems");
      record.SetNumber("maxReturn", number);
      EXPECT_EQ(score(*model, &record).items.size(), answers) << number;
    }
    meter.check();
  }
}

// Deliberate: presence alone decides.
TEST(HostileCaseFields, C19FromCurrentActsByBeingThere) {
  wideModel(3);  // what the host and the parser keep is made now

  const Meter meter(0);
  {
    const auto model = wideModel(3);
    ScoreCaseRecord record = recordOf("(1)(2)", "futureItems");
    EXPECT_THAT(score(*model, &record).items, IsEmpty());
    for (const char* text : {"", "false", "true", "0"}) {
      record.SetText("fromCurrent", text);
      EXPECT_THAT(score(*model, &record).items, ElementsAre(3)) << text;
    }
    record.SetNumber("fromCurrent", 0.0);
    EXPECT_THAT(score(*model, &record).items, ElementsAre(3));
    record.SetField("fromCurrent", nullptr);
    EXPECT_THAT(score(*model, &record).items, IsEmpty());
  }
  meter.check();
}

std::unique_ptr<ScoreValue> list(std::size_t length) {
  return std::make_unique<ItemList>(
      std::vector<SeqConsequentDescriptor>(length, SeqConsequentDescriptor(7, 0.25, 0.5, 0.125)));
}

TEST(HostileCaseFields, C20ValuesOfOtherTypesAreReadAsTheirTexts) {
  wideModel(30);  // what the host and the parser keep is made now

  const Meter meter(0);
  {
    const auto model = wideModel(30);
    const Items popular = score(*model, nullptr).items;
    ASSERT_EQ(popular.size(), 20U);
    ScoreCaseRecord number;
    number.SetNumber("sequence", 1.0);
    ScoreCaseRecord missing;
    missing.SetField("sequence", std::make_unique<NumericValue>("no number"));
    ScoreCaseRecord vector;
    vector.SetField("sequence", list(3));
    for (const ScoreCaseRecord* record : {&number, &missing, &vector})
      EXPECT_EQ(score(*model, record).items, popular);

    ScoreCaseRecord type = recordOf("(1)");
    type.SetNumber("returnType", 1.0);
    EXPECT_EQ(score(*model, &type).target, "currentItems");
    type.SetField("returnType", list(1));
    EXPECT_EQ(score(*model, &type).target, "currentItems");
    ScoreCaseRecord most = recordOf("(1)", "futureItems");
    most.SetField("maxReturn", list(3));
    EXPECT_EQ(score(*model, &most).items.size(), 3U);
  }
  meter.check();
}

TEST(HostileCaseFields, C20NullValuesAreNoFields) {
  wideModel(30);  // what the host and the parser keep is made now

  const Meter meter(0);
  {
    const auto model = wideModel(30);
    ScoreCaseRecord record = recordOf("(1)", "futureItems");
    record.SetText("maxReturn", "2");
    for (const char* field : {"sequence", "returnType", "maxReturn", "fromCurrent"})
      record.SetField(field, nullptr);
    const Scored scored = score(*model, &record);
    EXPECT_EQ(scored.items, score(*model, nullptr).items);
    EXPECT_EQ(scored.items.size(), 20U);
    EXPECT_EQ(scored.target, "currentItems");
  }
  meter.check();
}

// A result of another kind, which tells when it goes.
class ForeignResult final : public ScoreResult {
 public:
  ForeignResult(int type, bool& isGone) : type_(type), isGone_(isGone) {}
  ~ForeignResult() override { isGone_ = true; }
  void SetPrediction(ScoreValue*) override {}
  ScoreValue* GetPrediction() const override { return nullptr; }
  OrbScore::ScoreDictVar* GetTarget() const override { return nullptr; }
  void SetConfidence(double) override {}
  double GetConfidence() const override { return 0.0; }
  int GetScoreResultType() const override { return type_; }

 private:
  int type_;
  bool& isGone_;
};

// The last of them says that it is what it is not.
TEST(HostileCaseFields, C21AForeignResultIsDestroyedAndReplaced) {
  const auto model = caseModel();
  const ScoreCaseRecord record = recordOf("(1)");

  for (const int type : {1, 0, -1, SequentialResult::kResultType}) {
    bool isGone = false;
    ScoreResult* raw = new ForeignResult(type, isGone);
    EXPECT_TRUE(model->GetScore(&record, raw, false).IsOK());
    const std::unique_ptr<ScoreResult> result(raw);
    EXPECT_TRUE(isGone);
    EXPECT_EQ(result->GetScoreResultType(), SequentialResult::kResultType);
    EXPECT_THAT(itemsOf(*result), ElementsAre(2));
  }
}

TEST(HostileCaseFields, C21AnOwnResultWithoutPredictionOrTargetIsFilled) {
  const auto model = caseModel();
  const ScoreCaseRecord record = recordOf("(1)");
  auto* const own = new SequentialResult(nullptr);
  ScoreResult* raw = own;
  const std::unique_ptr<ScoreResult> result(raw);

  EXPECT_TRUE(model->GetScore(&record, raw, false).IsOK());

  EXPECT_EQ(raw, own);
  EXPECT_THAT(itemsOf(*own), ElementsAre(2));
  own->SetPrediction(new StringValue("no list"));
  EXPECT_TRUE(model->GetScore(&record, raw, false).IsOK());
  EXPECT_EQ(raw, own);
  EXPECT_THAT(itemsOf(*own), ElementsAre(2));
}

TEST(HostileCaseFields, C21AResultThatIsUsed10000TimesDoesNotGrow) {
  const auto model = wideModel(30);
  const ScoreCaseRecord many = recordOf("(1)", "futureItems");
  const ScoreCaseRecord none = recordOf("(99)");
  ScoreResult* raw = nullptr;
  model->GetScore(&many, raw, false);
  const std::unique_ptr<ScoreResult> result(raw);
  const std::string target = result->GetTarget()->GetName();
  bool isSame = true;

  const Meter meter(0);
  for (int round = 0; round < 10'000; ++round) {
    const ScoreCaseRecord& record = round % 2 == 0 ? none : many;
    isSame = model->GetScore(&record, raw, false).IsOK() && raw == result.get() && isSame;
  }
  meter.check();

  EXPECT_LT(meter.peakBytes(), std::size_t{1} << 20);
  EXPECT_TRUE(isSame);
  EXPECT_EQ(itemsOf(*result).size(), 20U);
  EXPECT_EQ(result->GetTarget()->GetName(), target);
}

}  // namespace

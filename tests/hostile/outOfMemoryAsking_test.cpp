// Memory that runs out while a model or the engine is asked.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreModel.h"
#include "tests/contract/support.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/labelledModel.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;
using OrbScore::ScoreModel;
using test::ask;
using test::Mode;

constexpr const char* kCase = "(2)(4)(9)(1 2)(2 3)(1)";

// A case scored by a new model, into no result or into one that holds another answer.
template <Mode kMode, Former kFormer>
class Score {
 public:
  Score() {
    record_.SetText("sequence", kCase);
    record_.SetNumber("maxReturn", 20);
    if (kMode != Mode::kCurrent) record_.SetText("returnType", "futureItems");
    if (kMode == Mode::kFutureAllBeginnings) record_.SetText("fromCurrent", "");
    if (kFormer == Former::kOther) {
      OrbScore::ScoreResult* result = nullptr;
      static_cast<void>(test::modelOf(labelledDocument())->GetScore(nullptr, result, false));
      result_.reset(result);
    }
  }
  End run() {
    OrbScore::ScoreResult* result = result_.get();
    const bool reused = result != nullptr;
    const bool done = model_->GetScore(&record_, result, false).IsOK();
    if (!reused) result_.reset(result);
    return done && result == result_.get() ? End::kDone : End::kReported;
  }
  void check(End end) {
    EXPECT_EQ(result_ != nullptr, kFormer == Former::kOther || end == End::kDone);
    if (end != End::kDone) {
      EXPECT_EQ(run(), End::kDone);
    }
    static const std::vector<test::Answer> expected =
        ask(*test::modelOf(labelledDocument()), kCase, kMode);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(answers(), expected);
    EXPECT_EQ(result_->GetTarget()->GetName(),
              kMode == Mode::kCurrent ? "currentItems" : "futureItems");
    expectValidModel(*model_);
  }

 private:
  using List = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;

  std::vector<test::Answer> answers() const {
    std::vector<test::Answer> all;
    if (const auto* const list = dynamic_cast<const List*>(result_->GetPrediction()))
      for (const SeqConsequentDescriptor& one : list->GetVectorValue())
        all.push_back({one.GetItem(), one.GetConfidence(), one.GetSupport(), one.GetCause()});
    return all;
  }

  std::shared_ptr<ScoreModel> model_ = test::modelOf(labelledDocument());
  OrbScore::ScoreCaseRecord record_;
  std::unique_ptr<OrbScore::ScoreResult> result_;
};

TEST(OutOfMemory, ScoringCurrentItems) {
  failEveryAllocationOf<Score<Mode::kCurrent, Former::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kCurrent, Former::kOther>>({End::kBadAlloc});
}

TEST(OutOfMemory, ScoringFutureItems) {
  failEveryAllocationOf<Score<Mode::kFuture, Former::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kFuture, Former::kOther>>({End::kBadAlloc});
}

TEST(OutOfMemory, ScoringFutureItemsFromEveryBeginning) {
  failEveryAllocationOf<Score<Mode::kFutureAllBeginnings, Former::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kFutureAllBeginnings, Former::kOther>>({End::kBadAlloc});
}

// The engine's own call, with a new workspace and an answer already in the list.
template <Mode kMode>
class Ask {
 public:
  End run() {
    if (kMode == Mode::kCurrent)
      recommender().currentItems(history_, 20, workspace_, answers_);
    else
      recommender().futureItems(history_, 20, kMode == Mode::kFuture, workspace_, answers_);
    return End::kDone;
  }
  void check(End end) {
    if (end != End::kDone) {
      EXPECT_EQ(answers_.size(), 1U);
      run();
    }
    ASSERT_FALSE(answers_.empty());
    const Advice first = adviceOf(answers_).front();
    EXPECT_EQ(first.item, 77);
    answers_.erase(answers_.begin());
    EXPECT_EQ(adviceOf(answers_), expected());
  }

 private:
  static const orbseq::engine::Recommender& recommender() {
    static const orbseq::engine::CompiledLattice compiled =
        orbseq::engine::compile(ValidLattice().dictionary());
    static const orbseq::engine::Recommender one(compiled);
    return one;
  }
  static const std::vector<Advice>& expected() {
    static const ValidLattice lattice;
    static const std::vector<Advice> all =
        kMode == Mode::kCurrent
            ? currentItems(lattice.dictionary(), history(kCase))
            : futureItems(lattice.dictionary(), history(kCase), 20, kMode == Mode::kFuture);
    return all;
  }

  orbseq::engine::History history_ = engineHistory(history(kCase));
  orbseq::engine::Workspace workspace_;
  orbseq::engine::Answers answers_{SeqConsequentDescriptor(77, 0.5, 0.5, 0.5)};
};

TEST(OutOfMemory, AskingTheEngine) {
  failEveryAllocationOf<Ask<Mode::kCurrent>>({End::kBadAlloc});
  failEveryAllocationOf<Ask<Mode::kFuture>>({End::kBadAlloc});
  failEveryAllocationOf<Ask<Mode::kFutureAllBeginnings>>({End::kBadAlloc});
}

}  // namespace

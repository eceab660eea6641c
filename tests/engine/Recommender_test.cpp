// What holds for every query: how answers are handed over, what a workspace goes through, and what
// is left when a query ends early. What is answered is compared in tests/parity.

#include "engine/Recommender.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "engine/compile.h"
#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/TempFolder.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using orbseq::engine::Answers;
using orbseq::engine::CompiledLattice;
using orbseq::engine::Recommender;
using orbseq::engine::StepBudgetSpent;
using orbseq::engine::Workspace;

enum class Mode { kCurrent, kWhole, kBeginnings };
constexpr Mode kModes[] = {Mode::kCurrent, Mode::kWhole, Mode::kBeginnings};
// What stands in the answers before a query.
const Answers kOneBefore = {{77, 0.1, 0.2, 0.3}};
constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

orbseq::engine::History asked(const History& history) {
  orbseq::engine::History made;
  for (const Items& set : history) made.addSet(set);
  return made;
}

void append(const CompiledLattice& lattice, const orbseq::engine::History& history, Mode mode,
            int maxCount, Workspace& workspace, Answers& out) {
  const Recommender recommender(lattice);
  if (mode == Mode::kCurrent) return recommender.currentItems(history, maxCount, workspace, out);
  recommender.futureItems(history, maxCount, mode == Mode::kWhole, workspace, out);
}

std::vector<Advice> ask(const CompiledLattice& lattice, const History& history, Mode mode,
                        Workspace& workspace, int maxCount = 20) {
  Answers answers;
  append(lattice, asked(history), mode, maxCount, workspace, answers);
  return adviceOf(answers);
}

std::vector<Advice> ask(const CompiledLattice& lattice, const char* text, Mode mode,
                        int maxCount = 20) {
  Workspace workspace;
  return ask(lattice, history(text), mode, workspace, maxCount);
}

CompiledLattice shop() {
  return orbseq::engine::compile(Lattice({{"", 10},
                                          {"(1)", 8},
                                          {"(2)", 5},
                                          {"(3)", 5},
                                          {"(1 2)", 4},
                                          {"(1)(2)", 4},
                                          {"(1)(3)", 2},
                                          {"(2)(3)", 4},
                                          {"(1 2)(3)", 3},
                                          {"(1)(2)(3)", 1}}));
}

const std::vector<Advice> kPopular = {{1, 0.8, 0.8, 1.0}, {3, 0.5, 0.5, 1.0}, {2, 0.5, 0.5, 1.0}};

// One with sets of several items, several ways to them, and long histories.
const World& largeWorld() {
  static const World world([] {
    WorldOptions options;
    options.seed = 3;
    options.items = 6;
    options.customers = 40;
    options.itemsACustomer = 9;
    options.levels = 9;
    options.leftOut = 3;
    options.histories = 30;
    return options;
  }());
  return world;
}

TEST(Recommender, AnswersComeByConfidenceThenGreaterItemFirst) {
  EXPECT_EQ(
      ask(shop(), "(1)", Mode::kWhole),
      (std::vector<Advice>{{2, 4 / 8.0, 4 / 10.0, 4 / 5.0}, {3, 2 / 8.0, 2 / 10.0, 2 / 5.0}}));
  EXPECT_EQ(ask(shop(), "(1)", Mode::kCurrent), (std::vector<Advice>{{2, 0.5, 0.4, 0.8}}));
  EXPECT_EQ(ask(shop(), "(1 2)", Mode::kWhole),
            (std::vector<Advice>{{3, 0.8, 0.4, 0.8}, {2, 0.5, 0.4, 0.8}}));
}

TEST(Recommender, AnswersAreAppended) {
  const CompiledLattice lattice = shop();
  Workspace workspace;
  Answers answers;

  append(lattice, asked(history("(1)")), Mode::kCurrent, 20, workspace, answers);
  append(lattice, asked({}), Mode::kCurrent, 1, workspace, answers);
  append(lattice, asked(history("(1 2)")), Mode::kWhole, 1, workspace, answers);

  EXPECT_EQ(adviceOf(answers),
            (std::vector<Advice>{{2, 0.5, 0.4, 0.8}, {1, 0.8, 0.8, 1.0}, {3, 0.8, 0.4, 0.8}}));
}

TEST(Recommender, NoneOrLessIsAnsweredWithNothing) {
  for (const Mode mode : kModes)
    for (const int maxCount : {0, -1, std::numeric_limits<int>::min()}) {
      EXPECT_EQ(ask(shop(), "(1)", mode, maxCount), std::vector<Advice>{});
      EXPECT_EQ(ask(shop(), "", mode, maxCount), std::vector<Advice>{});
    }
}

TEST(Recommender, TheGreatestNumberOfAnswersIsNoLimit) {
  for (const Mode mode : kModes)
    EXPECT_EQ(ask(shop(), "(1)", mode, std::numeric_limits<int>::max()),
              ask(shop(), "(1)", mode, 20));
  EXPECT_EQ(ask(shop(), "", Mode::kWhole, std::numeric_limits<int>::max()), kPopular);
}

// Deliberate: without a history the answer is what is most popular.
TEST(Recommender, AHistoryWithoutSetsIsAnsweredWithWhatIsPopular) {
  for (const Mode mode : kModes) {
    EXPECT_EQ(ask(shop(), "", mode), kPopular);
    EXPECT_EQ(ask(shop(), "", mode, 1), (std::vector<Advice>{{1, 0.8, 0.8, 1.0}}));
  }
}

TEST(Recommender, EmptySetsAndUnknownItemsAloneAreAnsweredWithNothing) {
  for (const Mode mode : kModes)
    for (const char* text : {"()", "()()", "(7)", "(7 8)(9)", "()(7)()"})
      EXPECT_EQ(ask(shop(), text, mode), std::vector<Advice>{}) << text;
}

TEST(Recommender, UnknownItemsAmongKnownOnesChangeNothing) {
  for (const Mode mode : kModes) EXPECT_EQ(ask(shop(), "(7)(1 9)", mode), ask(shop(), "(1)", mode));
  EXPECT_EQ(ask(shop(), "(1)(7)()", Mode::kWhole), ask(shop(), "(1)", Mode::kWhole));
}

TEST(Recommender, AStrangerInTheHistoryIsNotProposed) {
  const CompiledLattice lattice = orbseq::engine::compile(
      Lattice({{"", 10}, {"(1)", 8}, {"(2)", 6}, {"(1)(5)", 4}, {"(1 5)", 3}, {"(1)(2)", 2}}));

  EXPECT_EQ(ask(lattice, "(1)", Mode::kWhole),
            (std::vector<Advice>{{5, 0.5, 0.4, 0.0}, {2, 0.25, 0.2, 2 / 6.0}}));
  EXPECT_EQ(ask(lattice, "(1)", Mode::kCurrent), (std::vector<Advice>{{5, 3 / 8.0, 0.3, 0.0}}));
  EXPECT_EQ(ask(lattice, "(1 5)", Mode::kCurrent), std::vector<Advice>{});
}

TEST(Recommender, OneWorkspaceServesTwoLatticesInTurn) {
  const CompiledLattice large = orbseq::engine::compile(largeWorld().dictionary);
  const CompiledLattice small = shop();
  Workspace shared;
  std::size_t answers = 0;
  for (int round = 0; round < 3; ++round)
    for (const History& one : largeWorld().histories)
      for (const Mode mode : kModes)
        for (const CompiledLattice* lattice : {&large, &small}) {
          Workspace fresh;
          const auto wanted = ask(*lattice, one, mode, fresh);
          EXPECT_EQ(ask(*lattice, one, mode, shared), wanted) << text(one);
          answers += wanted.size();
        }
  EXPECT_GT(answers, 100U);
}

// Asks with ever larger budgets until one suffices; after each failure the workspace answers as a
// fresh one. How many budgets were too small.
std::uint64_t budgetsTooSmall(const CompiledLattice& lattice, const History& one, Mode mode,
                              Workspace& workspace) {
  Workspace fresh;
  const std::vector<Advice> wanted = ask(lattice, one, mode, fresh);
  for (std::uint64_t budget = 0;; ++budget) {
    Answers answers = kOneBefore;
    workspace.setStepBudget(budget);
    const std::string error = errorOf<StepBudgetSpent>(
        [&] { append(lattice, asked(one), mode, 20, workspace, answers); });
    workspace.setStepBudget(kNoLimit);
    if (error.empty()) {
      EXPECT_EQ(answers.size(), 1 + wanted.size());
      return budget;
    }
    EXPECT_EQ(error, "the query takes more than " + std::to_string(budget) + " steps, the limit");
    EXPECT_EQ(adviceOf(answers), adviceOf(kOneBefore)) << "nothing is appended";
    EXPECT_EQ(ask(lattice, one, mode, workspace), wanted) << text(one) << ", budget " << budget;
  }
}

TEST(Recommender, AQueryThatTakesMoreStepsThanItMayLeavesTheWorkspaceUsable) {
  const CompiledLattice lattice = orbseq::engine::compile(largeWorld().dictionary);
  Workspace workspace;
  std::uint64_t failures = 0;
  for (std::size_t n = 0; n < 8; ++n)
    for (const Mode mode : kModes)
      failures += budgetsTooSmall(lattice, largeWorld().histories[n], mode, workspace);
  EXPECT_GT(failures, 100U);
}

TEST(Recommender, APopularAnswerTakesNoSteps) {
  const CompiledLattice lattice = shop();
  Workspace workspace;
  workspace.setStepBudget(0);

  EXPECT_EQ(ask(lattice, History(), Mode::kWhole, workspace), kPopular);
  EXPECT_THROW(ask(lattice, history("(1)"), Mode::kWhole, workspace), StepBudgetSpent);
}

TEST(Recommender, AFailedAllocationLeavesTheAnswersAndTheWorkspaceUsable) {
  const CompiledLattice lattice = orbseq::engine::compile(largeWorld().dictionary);
  int failures = 0;
  for (std::size_t n = 0; n < largeWorld().histories.size(); n += 3) {
    const History& one = largeWorld().histories[n];
    const orbseq::engine::History made = asked(one);
    for (const Mode mode : kModes) {
      Workspace fresh;
      const std::vector<Advice> wanted = ask(lattice, one, mode, fresh);
      Workspace workspace;
      Answers answers = kOneBefore;
      failures += failEveryAllocation<std::bad_alloc>(
          [&] { append(lattice, made, mode, 20, workspace, answers); },
          [&] { EXPECT_EQ(adviceOf(answers), adviceOf(kOneBefore)); });
      EXPECT_EQ(answers.size(), 1 + wanted.size());
      EXPECT_EQ(ask(lattice, one, mode, workspace), wanted) << text(one);
    }
  }
  EXPECT_GT(failures, 100);
}

// After each failure in turn, on a workspace that was never used before.
TEST(Recommender, AnyOneFailedAllocationLeavesTheWorkspaceUsable) {
  const CompiledLattice lattice = orbseq::engine::compile(largeWorld().dictionary);
  const History& one = largeWorld().histories.front();
  const orbseq::engine::History made = asked(one);
  for (const Mode mode : kModes) {
    Workspace fresh;
    const std::vector<Advice> wanted = ask(lattice, one, mode, fresh);
    long failing = 1;
    for (bool hasFailed = true; hasFailed; ++failing) {
      Workspace workspace;
      Answers answers;
      try {
        const FailAllocation fails(failing);
        append(lattice, made, mode, 20, workspace, answers);
        hasFailed = false;
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(answers.empty());
      }
      EXPECT_EQ(ask(lattice, one, mode, workspace), wanted) << "allocation " << failing;
    }
    EXPECT_GT(failing, 5);
  }
}

TEST(Recommender, AWarmQueryAllocatesNothing) {
  const CompiledLattice lattice = orbseq::engine::compile(largeWorld().dictionary);
  Workspace workspace;
  Answers answers;
  std::vector<orbseq::engine::History> histories;
  for (const History& one : largeWorld().histories) histories.push_back(asked(one));
  const auto askAll = [&] {
    for (const auto& one : histories)
      for (const Mode mode : kModes) {
        answers.clear();
        append(lattice, one, mode, 20, workspace, answers);
      }
  };
  askAll();

  const FailAllocation watch(1);
  askAll();

  EXPECT_FALSE(watch.hasFailed());
}

}  // namespace

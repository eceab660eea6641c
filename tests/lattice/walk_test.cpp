// The upward walks: what can be reached from a sequence by adding items.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using testing::IsEmpty;

constexpr int kAny = std::numeric_limits<int>::max();
constexpr Walk kWalks[] = {Walk::kAnywhere, Walk::kBeginning, Walk::kEnding};

// The texts of what is reached, sorted by items.
std::vector<std::string> reached(const SequenceDictionary& dictionary, Walk walk, const char* start,
                                 int minCount = 0, int maxCount = kAny) {
  std::vector<std::string> texts;
  for (const History& one :
       orbseq::test::reached(dictionary, walk, history(start), minCount, maxCount))
    texts.push_back(text(one));
  return texts;
}

using Texts = std::vector<std::string>;

std::vector<Count> lattice123() {
  return {{"", 20},         {"(1)", 10},      {"(2)", 9},     {"(3)", 8},
          {"(1 2)", 7},     {"(1)(2)", 6},    {"(2)(1)", 5},  {"(1)(3)", 4},
          {"(1)(2)(3)", 3}, {"(2)(1)(3)", 2}, {"(1 2)(3)", 1}};
}

TEST(FindSequences, ReachesEveryExtension) {
  const Lattice lattice(lattice123());

  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)(3)"),
            (Texts{"(1)(2)(3)", "(1)(3)", "(1 2)(3)", "(2)(1)(3)"}));
  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "").size(), 11U);
}

TEST(FindSequences, BeginningOnlyAddsToSetsAndBehind) {
  const Lattice lattice(lattice123());

  EXPECT_EQ(reached(lattice, Walk::kBeginning, "(1)"),
            (Texts{"(1)", "(1)(2)", "(1)(2)(3)", "(1)(3)", "(1 2)", "(1 2)(3)"}));
  EXPECT_EQ(reached(lattice, Walk::kBeginning, "(1)(3)"), (Texts{"(1)(3)", "(1 2)(3)"}));
}

TEST(FindSequences, EndingOnlyAddsToSetsAndInFront) {
  const Lattice lattice(lattice123());

  EXPECT_EQ(reached(lattice, Walk::kEnding, "(3)"),
            (Texts{"(1)(3)", "(1 2)(3)", "(2)(1)(3)", "(3)"}));
  EXPECT_EQ(reached(lattice, Walk::kEnding, "(1)"), (Texts{"(1)", "(1 2)", "(2)(1)"}));
}

TEST(FindSequences, TheEmptySequenceBeginsAndEndsWhatGrowsFromOneEnd) {
  const Lattice lattice({{"", 5}, {"(1)", 5}, {"(2)", 5}, {"(1)(2)", 5}});

  for (const Walk walk : kWalks)
    EXPECT_EQ(reached(lattice, walk, ""), (Texts{"", "(1)", "(1)(2)", "(2)"}));
}

TEST(FindSequences, ReportsTheStartWithinTheBounds) {
  const Lattice lattice({{"(1)", 10}});

  for (const Walk walk : kWalks) {
    EXPECT_EQ(reached(lattice, walk, "(1)", 10, 10), Texts{"(1)"});
    EXPECT_THAT(reached(lattice, walk, "(1)", 11, 20), IsEmpty());
    EXPECT_THAT(reached(lattice, walk, "(1)", 0, 9), IsEmpty());
  }
}

TEST(FindSequences, WalksThroughWhatIsTooFrequent) {
  const Lattice lattice(lattice123());

  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)", 0, 3),
            (Texts{"(1)(2)(3)", "(1 2)(3)", "(2)(1)(3)"}));
}

TEST(FindSequences, DoesNotWalkThroughWhatIsTooRare) {
  const Lattice lattice({{"(1)", 10}, {"(1)(1)", 1}, {"(1)(1)(1)", 10}});

  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)", 2), Texts{"(1)"});
  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)", 1), (Texts{"(1)", "(1)(1)", "(1)(1)(1)"}));
}

TEST(FindSequences, ReportsWhatSeveralPathsReachOnce) {
  const Lattice lattice({{"(1)", 1},
                         {"(2)", 1},
                         {"(3)", 1},
                         {"(1 2)", 1},
                         {"(1 3)", 1},
                         {"(2 3)", 1},
                         {"(1 2 3)", 1}});

  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)"), (Texts{"(1)", "(1 2)", "(1 2 3)", "(1 3)"}));
}

TEST(FindSequences, FromASequenceThatIsNotStoredFindsNothing) {
  const Lattice lattice(lattice123());
  const History tooLong = singletons(33);

  for (const Walk walk : kWalks) {
    EXPECT_THAT(reached(lattice, walk, "(4)"), IsEmpty());
    EXPECT_THAT(reached(lattice, walk, "(3)(1)"), IsEmpty());
    EXPECT_THAT(reached(lattice, walk, "(1)(1)(1)(1)(1)(1)(1)"), IsEmpty());
    EXPECT_THAT(orbseq::test::reached(lattice, walk, tooLong, 0, kAny), IsEmpty());
  }
}

TEST(FindSequences, LeavesOutWhatHasNoCounter) {
  const Lattice lattice({{"", std::nullopt},
                         {"(1)", 3},
                         {"(2)", std::nullopt},
                         {"(1)(1)", std::nullopt},
                         {"(1)(1)(1)", 3}});

  EXPECT_EQ(reached(lattice, Walk::kAnywhere, "(1)"), Texts{"(1)"});
  EXPECT_THAT(reached(lattice, Walk::kAnywhere, "(2)"), IsEmpty());
  EXPECT_THAT(reached(lattice, Walk::kAnywhere, "", -5), IsEmpty());
}

TEST(FindSequences, EndsAtThirtyTwoItems) {
  SequenceDictionary dictionary(smallTables(33));
  for (int items = 1; items <= 32; ++items) store(dictionary, singletons(items), 1);
  dictionary.buildLattice();
  const NTSequence whole = packed(singletons(32));
  dictionary.getDescriptor(&whole)->addAdjacentItem(33, 65);

  EXPECT_EQ(orbseq::test::reached(dictionary, Walk::kBeginning, single(1), 0, kAny).size(), 32U);
}

TEST(FindSequences, LinksToWhatIsGoneOrImpossibleAreLeftOut) {
  Lattice lattice({{"(1)", 1}, {"(2)", 1}});
  const NTSequence one = packed("(1)");
  for (const int position : {0, 1, 2, 3, 4, 5, -1, -2, 2147483647})
    lattice.getDescriptor(&one)->addAdjacentItem(7, position);

  for (const Walk walk : kWalks) EXPECT_EQ(reached(lattice, walk, "(1)"), Texts{"(1)"});
}

TEST(FindSequences, AnswersUnpackedSequencesWithTheSetNumbersAsTimes) {
  const Lattice lattice({{"(1 2)(3)", 1}});
  const Sequence start = sequence(history("(1 2)(3)"), {7.0, 9.0});
  std::set<Sequence*> answer;

  EXPECT_TRUE(lattice.FindSequences(&start, answer, 0, kAny).IsOK());

  ASSERT_EQ(answer.size(), 1U);
  EXPECT_EQ(timesOf(**answer.begin()), (Times{1.0, 2.0}));
  delete *answer.begin();
}

TEST(FindSequences, AddsToWhatIsThere) {
  const Lattice lattice({{"(1)", 1}});
  const Sequence start = sequence("(1)");
  Sequence before;
  std::set<Sequence*> answer = {&before};

  EXPECT_TRUE(lattice.FindSequencesEnding(&start, answer, 0, kAny).IsOK());

  EXPECT_EQ(answer.size(), 2U);
  EXPECT_EQ(answer.erase(&before), 1U);
  for (const Sequence* one : answer) delete one;
}

}  // namespace

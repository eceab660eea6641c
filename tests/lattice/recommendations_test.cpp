// Future and current items: candidates, measures, exclusions, ranking, fallback.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Advice> future(const SequenceDictionary& dictionary, const char* customer,
                           bool wholeOnly = true, int maxCount = 20) {
  return futureItems(dictionary, history(customer), maxCount, wholeOnly);
}

std::vector<Advice> current(const SequenceDictionary& dictionary, const char* customer,
                            int maxCount = 20) {
  return currentItems(dictionary, history(customer), maxCount);
}

std::vector<int> items(const std::vector<Advice>& answer) {
  std::vector<int> all;
  for (const Advice& one : answer) all.push_back(one.item);
  return all;
}

// A triple, so that the lattice is not a small one.
constexpr Count kTriple = {"(9)(9)(9)", 1};

// --- Future items --------------------------------------------------------------------------------

TEST(GetFutureItems, MeasuresAreSharesOfCounts) {
  const Lattice lattice({{"", 100}, {"(1)", 50}, {"(2)", 40}, {"(1)(2)", 10}});

  EXPECT_THAT(future(lattice, "(1)"), ElementsAre(Advice{2, 0.2, 0.1, 0.25}));
}

TEST(GetFutureItems, ComeFromEveryStoredSequenceThatEndsInTheLastSet) {
  const Lattice lattice({{"", 100},
                         {"(1)", 50},
                         {"(2)", 40},
                         {"(3)", 30},
                         {"(4)", 20},
                         {"(1)(2)", 20},
                         {"(2)(4)", 10},
                         {"(1)(2)(3)", 5}});

  EXPECT_THAT(future(lattice, "(1)(2)"),
              ElementsAre(Advice{4, 0.25, 0.1, 0.5}, Advice{3, 0.25, 0.05, 5.0 / 30.0}));
}

TEST(GetFutureItems, MayProposeAnItemThatTheCustomerHas) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(1)", 4}});

  EXPECT_THAT(future(lattice, "(1)"), ElementsAre(Advice{1, 0.5, 0.4, 0.5}));
}

TEST(GetFutureItems, FollowOnlyLinksThatOpenANewLastSet) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1 2)", 4}, {"(2)(1)", 4}});

  EXPECT_THAT(future(lattice, "(1)"), IsEmpty());
  EXPECT_EQ(items(future(lattice, "(2)")), std::vector<int>{1});
}

TEST(GetFutureItems, AShorterBeginningIsAskedOnlyOnDemand) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(3)", 8}, {"(1)(3)", 4}});

  EXPECT_THAT(future(lattice, "(1)(2)", /*wholeOnly=*/true), IsEmpty());
  EXPECT_THAT(future(lattice, "(1)(2)", /*wholeOnly=*/false),
              ElementsAre(Advice{3, 0.5, 0.4, 0.5}));
}

TEST(GetFutureItems, AnItemSeenAfterABeginningIsNotPredictedFromIt) {
  const Lattice lattice(
      {{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(3)", 8}, {"(1)(3)", 4}, {"(1)(2)", 4}});

  EXPECT_EQ(items(future(lattice, "(1)(3)", false)), std::vector<int>{2});
  EXPECT_EQ(items(future(lattice, "(1)(9)(3)", false)), std::vector<int>{2});
  EXPECT_EQ(items(future(lattice, "(1)(2)(3)", false)), std::vector<int>());
}

// The exclusions are the customer's own sets, whether their items are known or not; the search
// passes over sets without known items.
TEST(GetFutureItems, TheLastKnownSetIsAskedAgainWhileOwnSetsAreLeftOut) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1)(2)", 4}});

  EXPECT_EQ(items(future(lattice, "(1)(7)")), std::vector<int>{2});
  EXPECT_EQ(items(future(lattice, "(1)(7)(2)", false)), std::vector<int>());

  const Lattice unknownAlone({{"", 10}, {"(1)", 8}, {"(1)(7)", 4}});
  EXPECT_THAT(future(unknownAlone, "(1)(7)", true), ElementsAre(Advice{7, 0.5, 0.4, 0.0}));
  EXPECT_THAT(future(unknownAlone, "(7)(1)", false), ElementsAre(Advice{7, 0.5, 0.4, 0.0}));
}

TEST(GetFutureItems, TheBestConfidenceOverAllBeginningsWins) {
  const Lattice lattice(
      {{"", 100}, {"(1)", 50}, {"(2)", 40}, {"(3)", 50}, {"(1)(3)", 40}, {"(2)(3)", 10}});

  EXPECT_THAT(future(lattice, "(1)(2)", true), ElementsAre(Advice{3, 0.25, 0.1, 0.2}));
  EXPECT_THAT(future(lattice, "(1)(2)", false), ElementsAre(Advice{3, 0.8, 0.4, 0.8}));
  EXPECT_THAT(future(lattice, "(2)(1)", false), ElementsAre(Advice{3, 0.8, 0.4, 0.8}));
}

TEST(GetFutureItems, EqualConfidenceKeepsTheLargerSupport) {
  const std::vector<Count> counts = {{"", 100},   {"(1)", 50},    {"(2)", 20},
                                     {"(3)", 50}, {"(1)(3)", 25}, {"(2)(3)", 10}};

  EXPECT_THAT(future(Lattice(counts), "(1 2)"), ElementsAre(Advice{3, 0.5, 0.25, 0.5}));
  EXPECT_THAT(future(Lattice(counts), "(1)(2)", false), ElementsAre(Advice{3, 0.5, 0.25, 0.5}));
  EXPECT_THAT(future(Lattice(counts), "(2)(1)", false), ElementsAre(Advice{3, 0.5, 0.25, 0.5}));
}

TEST(GetFutureItems, OfUnknownItemsAreNone) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(1)", 4}});

  EXPECT_THAT(future(lattice, "(7)(8)", false), IsEmpty());
}

TEST(GetFutureItems, MissWhatTheSearchMisses) {
  const Lattice lattice({{"", 9},
                         {"(1)", 9},
                         {"(2)", 9},
                         {"(3)", 9},
                         {"(4)", 9},
                         {"(1 2)", 9},
                         {"(1)(3)", 9},
                         {"(2)(3)", 9},
                         {"(1 2)(3)", 9},
                         {"(1 2)(3)(4)", 9}});

  EXPECT_THAT(future(lattice, "(1 2)(1)(2)(3)"), IsEmpty());
  EXPECT_EQ(items(future(lattice, "(1 2)(3)")), std::vector<int>{4});
}

TEST(GetFutureItems, ProposeTheThirtySecondItem) {
  SequenceDictionary dictionary(smallTables(33));
  store(dictionary, {}, 20);
  for (int drop = 0; drop < 31; ++drop) {
    History tail = singletons(31);
    tail.erase(tail.begin(), tail.begin() + drop);
    store(dictionary, tail, 10);
    store(dictionary, single(drop + 1), 10);
  }
  store(dictionary, single(32), 8);
  store(dictionary, singletons(32), 4);
  dictionary.buildLattice();

  EXPECT_THAT(futureItems(dictionary, singletons(31)), ElementsAre(Advice{32, 0.4, 0.2, 0.5}));
  EXPECT_THAT(futureItems(dictionary, singletons(32)), IsEmpty());
}

// --- Current items -------------------------------------------------------------------------------

TEST(GetCurrentItems, JoinTheLastSet) {
  const Lattice lattice({{"", 100},
                         {"(1)", 50},
                         {"(2)", 40},
                         {"(3)", 20},
                         {"(1 2)", 10},
                         {"(3)(1)", 10},
                         {"(3)(1 2)", 5}});

  EXPECT_THAT(current(lattice, "(1)"), ElementsAre(Advice{2, 0.2, 0.1, 0.25}));
  EXPECT_THAT(current(lattice, "(3)(1)"), ElementsAre(Advice{2, 0.5, 0.05, 0.125}));
}

TEST(GetCurrentItems, FollowOnlyLinksIntoTheLastSet) {
  const Lattice lattice({{"", 9},
                         {"(1)", 9},
                         {"(2)", 9},
                         {"(3)", 9},
                         {"(1)(2)", 9},
                         {"(2)(1)", 9},
                         {"(1 3)", 9},
                         {"(1 3)(2)", 9}});

  EXPECT_THAT(current(lattice, "(1)(2)"), IsEmpty());
  EXPECT_EQ(items(current(lattice, "(2)(1)")), std::vector<int>{3});
}

TEST(GetCurrentItems, NeverProposeWhatTheLastSetHolds) {
  const Lattice lattice({{"", 9}, {"(1)", 9}, {"(2)", 9}, {"(3)", 9}, {"(1 2)", 9}, {"(1 3)", 9}});

  EXPECT_EQ(items(current(lattice, "(1)")), (std::vector<int>{3, 2}));
  EXPECT_EQ(items(current(lattice, "(1 2)")), std::vector<int>{3});
  EXPECT_EQ(items(current(lattice, "(2)(1)")), (std::vector<int>{3, 2}));
}

// The customer's own last set is left out, though the search passes over it.
TEST(GetCurrentItems, TheLastKnownSetIsAskedWhileTheOwnLastSetIsLeftOut) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1 7)", 4}, {"(1 8)", 2}});

  EXPECT_EQ(items(current(lattice, "(1)(7)")), std::vector<int>{8});
  EXPECT_EQ(items(current(lattice, "(1)()")), (std::vector<int>{7, 8}));
  EXPECT_EQ(items(current(lattice, "(1)(6)")), (std::vector<int>{7, 8}));
}

TEST(GetCurrentItems, AreNotAffectedByTheCancelFlag) {
  Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 4}, {"(1 2)", 4}});
  lattice.setCancel();

  EXPECT_EQ(items(current(lattice, "(1)")), std::vector<int>{2});
  EXPECT_EQ(items(current(lattice, "")), (std::vector<int>{1, 2}));
}

// --- Both ----------------------------------------------------------------------------------------

TEST(Recommendations, AreRankedByConfidenceAndTheLargerItemFirst) {
  const Lattice lattice({{"", 10},
                         {"(1)", 8},
                         {"(-4)", 8},
                         {"(2)", 8},
                         {"(3)", 8},
                         {"(5)", 8},
                         {"(1)(-4)", 4},
                         {"(1)(2)", 4},
                         {"(1)(3)", 6},
                         {"(1)(5)", 4},
                         {"(1 2)", 4},
                         {"(1 3)", 2},
                         {"(1 5)", 4}});

  EXPECT_EQ(items(future(lattice, "(1)")), (std::vector<int>{3, 5, 2, -4}));
  EXPECT_EQ(items(current(lattice, "(1)")), (std::vector<int>{5, 2, 3}));
}

TEST(Recommendations, AreCutToTheGreatestCount) {
  const Lattice lattice(
      {{"", 10}, {"(1)", 8}, {"(2)", 6}, {"(1)(1)", 5}, {"(1)(2)", 4}, {"(1 2)", 4}});

  for (const int none : {0, -1, std::numeric_limits<int>::min()}) {
    EXPECT_THAT(future(lattice, "(1)", true, none), IsEmpty());
    EXPECT_THAT(future(lattice, "", true, none), IsEmpty());
    EXPECT_THAT(current(lattice, "(1)", none), IsEmpty());
    EXPECT_THAT(current(lattice, "", none), IsEmpty());
  }
  EXPECT_EQ(items(future(lattice, "(1)", true, 1)), std::vector<int>{1});
  EXPECT_EQ(items(future(lattice, "", true, 1)), std::vector<int>{1});
  EXPECT_EQ(items(future(lattice, "(1)", true, std::numeric_limits<int>::max())),
            (std::vector<int>{1, 2}));
}

TEST(Recommendations, AreAppended) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1)(1)", 4}, {"(1 2)", 4}});
  const Sequence customer = sequence("(1)");
  std::vector<SeqConsequentDescriptor> answer = {{77, 0.1, 0.2, 0.3}};

  lattice.GetFutureItems(answer, &customer, 1, true);
  lattice.GetCurrentItems(answer, &customer, 1);

  EXPECT_EQ(items(adviceOf(answer)), (std::vector<int>{77, 1, 2}));
}

TEST(GetFutureItems, WhenCancelledAnswerCodeOneAndNothingElse) {
  Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(1)", 4}});
  const Sequence customer = sequence("(1)");
  std::vector<SeqConsequentDescriptor> answer = {{77, 0.1, 0.2, 0.3}};
  lattice.setCancel();

  for (const bool wholeOnly : {false, true}) {
    const auto status = lattice.GetFutureItems(answer, &customer, 20, wholeOnly);

    EXPECT_EQ(status, OrbCommon_830::OrbStatus(1, /*warning=*/false));
    EXPECT_EQ(answer.size(), 1U);
  }
}

TEST(GetFutureItems, WithoutAHistoryTheCancelFlagIsNotSeen) {
  Lattice lattice({{"", 10}, {"(1)", 8}});
  lattice.setCancel();

  EXPECT_EQ(items(future(lattice, "")), std::vector<int>{1});
}

// --- The fallback --------------------------------------------------------------------------------

// Deliberate: without a history, what is most popular.
TEST(Recommendations, WithoutAHistoryAreTheMostFrequentItems) {
  const Lattice lattice({{"", 10}, {"(1)", 4}, {"(2)", 8}, {"(3)", 4}, {"(1)(2)", 2}});
  const auto expected =
      ElementsAre(Advice{2, 0.8, 0.8, 1.0}, Advice{3, 0.4, 0.4, 1.0}, Advice{1, 0.4, 0.4, 1.0});
  std::vector<SeqConsequentDescriptor> ofNull;

  EXPECT_TRUE(lattice.GetFutureItems(ofNull, nullptr, 20, true).IsOK());
  EXPECT_THAT(adviceOf(ofNull), expected);
  ofNull.clear();
  EXPECT_TRUE(lattice.GetCurrentItems(ofNull, nullptr, 20).IsOK());
  EXPECT_THAT(adviceOf(ofNull), expected);
  EXPECT_THAT(future(lattice, "", false), expected);
  EXPECT_THAT(current(lattice, ""), expected);
}

TEST(Recommendations, AHistoryOfAnEmptySetIsNoEmptyHistory) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(1)", 4}, kTriple});

  EXPECT_THAT(future(lattice, "()", false), IsEmpty());
  EXPECT_THAT(current(lattice, "()"), IsEmpty());
}

TEST(Recommendations, TheMostFrequentItemsLeaveOutThoseWithoutACounter) {
  const Lattice lattice({{"", 10}, {"(1)", 5}, {"(2)", std::nullopt}, {"(3)", 0}});

  EXPECT_THAT(future(lattice, ""), ElementsAre(Advice{1, 0.5, 0.5, 1.0}, Advice{3, 0.0, 0.0, 1.0}));
}

// --- What a lattice may lack ---------------------------------------------------------------------

TEST(Recommendations, WithoutCustomersAreNone) {
  const std::vector<Count> rest = {{"(1)", 8}, {"(2)", 4}, {"(1)(1)", 4}, {"(1 2)", 4}};
  for (const std::optional<int> customers : {std::optional<int>(0), std::optional<int>()}) {
    std::vector<Count> counts = rest;
    counts.push_back({"", customers});
    const Lattice lattice(counts);

    EXPECT_THAT(future(lattice, "(1)", false), IsEmpty());
    EXPECT_THAT(current(lattice, "(1)"), IsEmpty());
    EXPECT_THAT(future(lattice, ""), IsEmpty());
    EXPECT_THAT(current(lattice, ""), IsEmpty());
  }
}

TEST(Recommendations, WithoutTheEmptySequenceAreNone) {
  auto** tables = new HashtableSQPair* [3] {
    new HashtableSQPair(2), new HashtableSQPair(3), new HashtableSQPair(3)
  };
  SequenceDictionary dictionary(tables, 3);
  for (const char* one : {"(1)", "(2)", "(1)(1)", "(1 2)"}) store(dictionary, history(one), 5);
  dictionary.buildLattice();

  EXPECT_THAT(future(dictionary, "(1)"), IsEmpty());
  EXPECT_THAT(current(dictionary, "(1)"), IsEmpty());
  EXPECT_THAT(future(dictionary, ""), IsEmpty());
}

TEST(Recommendations, TheCauseIsZeroWhenTheItemAloneIsNotStored) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(2)", 4}, {"(1 2)", 2}});
  const Lattice withoutCounter({{"", 10}, {"(1)", 8}, {"(2)", std::nullopt}, {"(1)(2)", 4}});

  EXPECT_THAT(future(lattice, "(1)"), ElementsAre(Advice{2, 0.5, 0.4, 0.0}));
  EXPECT_THAT(current(lattice, "(1)"), ElementsAre(Advice{2, 0.25, 0.2, 0.0}));
  EXPECT_THAT(future(withoutCounter, "(1)"), ElementsAre(Advice{2, 0.5, 0.4, 0.0}));
}

TEST(Recommendations, ACountOfZeroBelowAFractionLeavesTheCandidateOut) {
  const Lattice antecedent({{"", 10}, {"(1)", 0}, {"(2)", 8}, {"(1)(2)", 4}, {"(1 2)", 4}});
  const Lattice alone({{"", 10}, {"(1)", 8}, {"(2)", 0}, {"(1)(2)", 4}, {"(1 2)", 4}});

  EXPECT_THAT(future(antecedent, "(1)"), IsEmpty());
  EXPECT_THAT(current(antecedent, "(1)"), IsEmpty());
  EXPECT_THAT(future(alone, "(1)"), IsEmpty());
  EXPECT_THAT(current(alone, "(1)"), IsEmpty());
}

TEST(Recommendations, ACountOfZeroAboveTheFractionsGivesZeros) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1)(2)", 0}, {"(1 2)", 0}});

  EXPECT_THAT(future(lattice, "(1)"), ElementsAre(Advice{2, 0.0, 0.0, 0.0}));
  EXPECT_THAT(current(lattice, "(1)"), ElementsAre(Advice{2, 0.0, 0.0, 0.0}));
}

TEST(Recommendations, ASequenceWithoutACounterProposesNothingAndIsNotProposed) {
  const Lattice extension(
      {{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1)(2)", std::nullopt}, {"(1 2)", std::nullopt}});
  const Lattice antecedent({{"", 10}, {"(1)", std::nullopt}, {"(2)", 8}, {"(1)(2)", 4}});

  EXPECT_THAT(future(extension, "(1)"), IsEmpty());
  EXPECT_THAT(current(extension, "(1)"), IsEmpty());
  EXPECT_THAT(future(antecedent, "(1)"), IsEmpty());
}

TEST(Recommendations, LinksToWhatIsNotStoredProposeNothing) {
  Lattice lattice({{"", 10}, {"(1)", 8}});
  const NTSequence one = packed("(1)");
  for (const int position : {0, 3}) lattice.getDescriptor(&one)->addAdjacentItem(5, position);

  EXPECT_THAT(future(lattice, "(1)"), IsEmpty());
  EXPECT_THAT(current(lattice, "(1)"), IsEmpty());
}

}  // namespace

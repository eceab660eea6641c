// The subsequence search: what is found, what is not, and in which order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using testing::IsEmpty;

using Histories = std::vector<History>;

Histories histories(std::initializer_list<const char*> texts) {
  Histories all;
  for (const char* one : texts) all.push_back(history(one));
  return all;
}

Histories found(const SequenceDictionary& dictionary, const char* customer, int skipLast = 0) {
  return orbseq::test::found(dictionary, history(customer), skipLast);
}

// All parts of (1 2)(3).
std::vector<Count> pairThenItem() {
  return {{"", 9},      {"(1)", 9},    {"(2)", 9},    {"(3)", 9},
          {"(1 2)", 9}, {"(1)(3)", 9}, {"(2)(3)", 9}, {"(1 2)(3)", 9}};
}

// --- Small lattices ------------------------------------------------------------------------------

TEST(Search, ALatticeOfPairsYieldsTheItemsOfTheLastSetAlone) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}, {"(1 2)", 1}});

  EXPECT_EQ(found(lattice, "(1)(2)"), histories({"(2)"}));
  EXPECT_EQ(found(lattice, "(2)(1 2)"), histories({"(1)", "(2)"}));
}

TEST(Search, ALevelAboveAnEmptyOneDoesNotMakeTheLatticeLarge) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}, {"(1)(2)(1)(2)", 1}});

  EXPECT_EQ(found(lattice, "(1)(2)"), histories({"(2)"}));
}

class Largest final : public SequenceDictionary {
 public:
  Largest(const std::vector<Count>& counts, int largest)
      : SequenceDictionary(smallTables(6)), largest_(largest) {
    for (const Count& count : counts) store(*this, history(count.sequence), count.count);
    buildLattice();
  }
  std::int32_t LargestSequence() const override { return largest_; }

 private:
  int largest_;
};

TEST(Search, AsksTheOverriddenLargestSequence) {
  EXPECT_EQ(found(Largest(pairThenItem(), 2), "(1 2)(3)"), histories({"(3)"}));
  EXPECT_EQ(found(Largest({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}}, 3), "(1)(2)"),
            histories({"(2)", "(1)(2)"}));
}

// --- Larger lattices -----------------------------------------------------------------------------

TEST(Search, FindsWhatEndsInTheLastSetInTheOrderOfDiscovery) {
  const Lattice lattice(pairThenItem());

  EXPECT_EQ(found(lattice, "(1 2)(3)"), histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
}

// A sequence that comes to its own frontier in front of the one that is worked on.
TEST(Search, WorksOnSequencesThatEnterTheSameFrontierInFront) {
  const Lattice lattice({{"(1)", 1},
                         {"(2)", 1},
                         {"(3)", 1},
                         {"(1 2)", 1},
                         {"(3)(1)", 1},
                         {"(3)(2)", 1},
                         {"(3)(1 2)", 1}});

  EXPECT_EQ(found(lattice, "(3)(1 2)"),
            histories({"(1)", "(2)", "(1 2)", "(3)(1)", "(3)(1 2)", "(3)(2)"}));
}

TEST(Search, ASequenceReachedOnlyFromALargerOneIsExpandedToo) {
  const Lattice lattice(
      {{"(1)", std::nullopt}, {"(2)", 1}, {"(3)", 1}, {"(1 2)", 1}, {"(3)(1 2)", 1}});

  EXPECT_EQ(found(lattice, "(3)(1 2)"), histories({"(1)", "(2)", "(1 2)", "(3)(1 2)"}));
}

TEST(Search, DoesNotFindWhatEndsEarlierOrSharesNoSet) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}, {"(1 2)", 1}, {"(1)(1)(2)", 1}});

  EXPECT_EQ(found(lattice, "(1)(2)"), histories({"(2)", "(1)(2)"}));
}

TEST(Search, FindsTheSameItemInTwoSetsOnce) {
  const Lattice lattice({{"(1)", 1}, {"(1)(1)", 1}, {"(1)(1)(1)", 1}});

  EXPECT_EQ(found(lattice, "(1)(1)"), histories({"(1)", "(1)(1)"}));
  EXPECT_EQ(found(lattice, "(1)(1)(1)(1)"), histories({"(1)", "(1)(1)", "(1)(1)(1)"}));
}

// Deliberate: the search is the stated climb, not a test for containment. Each first item is
// matched to the latest set that holds it, and only there can another item join it.
TEST(Search, MissesAContainedSequenceWhoseSetIsNotTheLatest) {
  const Lattice lattice(pairThenItem());

  EXPECT_EQ(found(lattice, "(1 2)(1)(2)(3)"), histories({"(3)", "(1)(3)", "(2)(3)"}));
  EXPECT_EQ(found(lattice, "(1)(2)(1 2)(3)"), histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
}

TEST(Search, NeverFindsMoreItemsThanTheHistoryHas) {
  const Lattice lattice({{"(1)", 1}, {"(1)(1)", 1}, {"(1)(1)(1)", 1}});

  EXPECT_EQ(found(lattice, "(1)"), histories({"(1)"}));
}

TEST(Search, WalksTheLinksAndFindsAlsoWhatIsGone) {
  SequenceDictionary dictionary(smallTables(4));
  for (const char* one : {"(1)", "(2)", "(1)(1)", "(1)(1)(1)"}) store(dictionary, history(one), 1);
  const NTSequence two = packed("(2)");
  dictionary.getDescriptor(&two)->addAdjacentItem(1, 1);

  EXPECT_EQ(found(dictionary, "(1)(2)"), histories({"(2)", "(1)(2)"}));
}

TEST(Search, LinksThatDoNotExtendTheFrontAreSkipped) {
  SequenceDictionary dictionary(smallTables(4));
  for (const char* one : {"(1)", "(2)", "(1)(1)", "(1)(1)(1)"}) store(dictionary, history(one), 1);
  const NTSequence two = packed("(2)");
  for (const int position : {-2147483647, -2, -1, 2, 3, 4, 2147483647})
    dictionary.getDescriptor(&two)->addAdjacentItem(1, position);

  EXPECT_EQ(found(dictionary, "(1)(1 2)"), histories({"(1)", "(2)"}));
}

TEST(Search, SequencesWithoutACounterAreFoundAndNotExpanded) {
  const Lattice lattice({{"(1)", 1}, {"(2)", std::nullopt}, {"(1)(2)", 1}, {"(1)(1)(1)", 1}});

  EXPECT_EQ(found(lattice, "(1)(2)"), histories({"(2)"}));
}

TEST(Search, NeverFindsThirtyTwoItems) {
  SequenceDictionary dictionary(smallTables(33));
  for (int drop = 0; drop < 32; ++drop) {
    History tail = singletons(32);
    tail.erase(tail.begin(), tail.begin() + drop);
    store(dictionary, tail, 1);
    store(dictionary, single(drop + 1), 1);
  }
  dictionary.buildLattice();
  ASSERT_EQ(dictionary.LargestSequence(), 32);

  const Histories answer = orbseq::test::found(dictionary, singletons(32));

  EXPECT_EQ(answer.size(), 31U);
  EXPECT_EQ(itemCount(answer.back()), 31);
}

TEST(Search, ThirtyTwoItemsInOneSetDoNotDisturbIt) {
  SequenceDictionary dictionary(smallTables(33));
  Items items;
  for (int item = 1; item <= 32; ++item) {
    store(dictionary, single(item), 1);
    items.insert(items.begin(), 33 - item);
    store(dictionary, {items}, 1);
  }
  dictionary.buildLattice();

  const Histories answer = orbseq::test::found(dictionary, {items});

  EXPECT_EQ(answer.size(), 32U + 30U);  // the items, and the ends of the set up to 31 items
}

// A sequence of 32 items has no order, so that in a frontier it would pass for any other.
TEST(Search, ASequenceOfThirtyTwoItemsDoesNotStandInAnothersPlace) {
  SequenceDictionary dictionary(smallTables(33));
  History customer = singletons(33);  // (1 2)(3 40)(4) .. (33)
  customer.erase(customer.begin());
  customer[0] = {1, 2};
  customer[1] = {3, 40};
  History tail = singletons(33);
  tail.erase(tail.begin(), tail.begin() + 2);
  tail.insert(tail.begin(), Items{1});
  for (; !tail.empty(); tail.erase(tail.begin())) store(dictionary, tail, 1);
  for (int item = 1; item <= 40; ++item) store(dictionary, single(item), 1);
  for (const char* one : {"(40)(33)", "(1)(40)(33)", "(1 2)(40)(33)"})
    store(dictionary, history(one), 1);
  dictionary.buildLattice();
  ASSERT_EQ(dictionary.LargestSequence(), 32);

  EXPECT_THAT(orbseq::test::found(dictionary, customer),
              testing::Contains(history("(1 2)(40)(33)")));
}

// --- The customer --------------------------------------------------------------------------------

TEST(Search, LeavesOutTheLastSets) {
  const Lattice lattice(pairThenItem());

  EXPECT_EQ(found(lattice, "(1 2)(3)(1)(2)", 2),
            histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
  EXPECT_THAT(found(lattice, "(1 2)(3)", 2), IsEmpty());
  EXPECT_THAT(found(lattice, "(1 2)(3)", 3), IsEmpty());
  EXPECT_THAT(found(lattice, "(1 2)(3)", std::numeric_limits<int>::max()), IsEmpty());
}

TEST(Search, ItemsThatTheLatticeDoesNotKnowAreLeftOut) {
  const Lattice lattice(pairThenItem());

  EXPECT_EQ(found(lattice, "(0 1 2 9)(7)(3 8)"),
            histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
  EXPECT_THAT(found(lattice, "(7)(8 9)"), IsEmpty());
}

// Deliberate: the last set is the last one with a known item.
TEST(Search, TheLastSetIsTheLastKnownOne) {
  const Lattice lattice(pairThenItem());

  EXPECT_EQ(found(lattice, "(1 2)(3)(9)()"), histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
}

TEST(Search, HistoriesWithoutItemsFindNothing) {
  const Lattice lattice(pairThenItem());

  EXPECT_THAT(found(lattice, ""), IsEmpty());
  EXPECT_THAT(found(lattice, "()"), IsEmpty());
  EXPECT_THAT(found(lattice, "()()()"), IsEmpty());
}

// Deliberate: time plays no part.
TEST(Search, TimesAndGapsChangeNothing) {
  Lattice lattice(pairThenItem());
  lattice.setMinGap(5.0);
  lattice.setMaxGap(6.0);
  lattice.setSlidingWindow(1.0);
  const std::vector<Times> allTimes = {{0.0, 0.0}, {1.0, 1e9}, {7.0, -7.0}};

  for (const Times& times : allTimes) {
    const Sequence customer = sequence(history("(1 2)(3)"), times);
    std::vector<NTSequence*> answer;
    lattice.getSubsequencesInSequence(answer, customer, 0);
    EXPECT_EQ(answer.size(), 4U);
    for (const NTSequence* one : answer) delete one;
  }
}

TEST(Search, SetsOfAnySizeWork) {
  const Lattice lattice(pairThenItem());
  Items large;
  for (int item = 1; item <= 500; ++item) large.push_back(item);

  EXPECT_EQ(orbseq::test::found(lattice, {large, Items{3}}),
            histories({"(3)", "(1)(3)", "(2)(3)", "(1 2)(3)"}));
  EXPECT_EQ(orbseq::test::found(lattice, {large}), histories({"(1)", "(2)", "(3)", "(1 2)"}));
}

TEST(Search, LongHistoriesWork) {
  const Lattice lattice(pairThenItem());
  History customer(2000, Items{1});
  customer.push_back({3});

  EXPECT_EQ(orbseq::test::found(lattice, customer), histories({"(3)", "(1)(3)"}));
}

TEST(Search, AppendsToWhatIsThere) {
  const Lattice lattice(pairThenItem());
  const Sequence customer = sequence("(3)");
  NTSequence before;
  std::vector<NTSequence*> answer = {&before};

  EXPECT_TRUE(lattice.getSubsequencesInSequence(answer, &customer, 0).IsOK());

  ASSERT_EQ(answer.size(), 2U);
  EXPECT_EQ(answer[0], &before);
  EXPECT_EQ(setsOf(*answer[1]), history("(3)"));
  delete answer[1];
}

// --- By size -------------------------------------------------------------------------------------

TEST(SequencesOfSize, AreUnpackedAndAppended) {
  const Lattice lattice({{"(1 2)(3)", 1}});
  const Sequence before;
  std::vector<const Sequence*> answer = {&before};

  EXPECT_TRUE(lattice.getSequencesOfSize(answer, 3, false).IsOK());

  ASSERT_EQ(answer.size(), 2U);
  EXPECT_EQ(answer[0], &before);
  EXPECT_EQ(setsOf(*answer[1]), history("(1 2)(3)"));
  delete answer[1];
}

TEST(SequencesOfSize, FollowTheOrderOfTheTable) {
  auto* const table = new HashtableSQPair(3);
  for (const int item : {1, 2, 4, 7})
    table->put(new NTSequence(packed(single(item))), new SequenceCounter());
  auto** tables = new HashtableSQPair* [2] { new HashtableSQPair(2), table };
  const SequenceDictionary dictionary(tables, 2);

  Histories order;
  for (const auto& entry : *table) order.push_back(setsOf(*entry.key));

  EXPECT_EQ(sequencesOfSize(dictionary, 1), order);
}

TEST(SequencesOfSize, MaximalOnesExtendToNothing) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(3)", std::nullopt}, {"(1)(1)", 1}});

  EXPECT_THAT(sequencesOfSize(lattice, 1, true),
              testing::UnorderedElementsAre(history("(2)"), history("(3)")));
  EXPECT_EQ(sequencesOfSize(lattice, 2, true), histories({"(1)(1)"}));
}

TEST(SequencesOfSize, OfALevelThatDoesNotExistAreNone) {
  const Lattice lattice({{"(1)", 1}}, /*levels=*/2);

  EXPECT_THAT(sequencesOfSize(lattice, 2), IsEmpty());
  EXPECT_THAT(sequencesOfSize(lattice, -1), IsEmpty());
  EXPECT_EQ(sequencesOfSize(lattice, 0), Histories{History()});
}

}  // namespace

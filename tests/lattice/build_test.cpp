// Linking every sequence to its one-item extensions.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;

Links links(const SequenceDictionary& dictionary, const char* text) {
  return linksOf(dictionary, history(text)).value_or(Links{{-1, -1}});
}

TEST(BuildLattice, LinksTheEmptySequenceToEveryItem) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(9)", 1}});

  EXPECT_EQ(links(lattice, ""), (Links{{1, 1}, {2, 1}, {9, 1}}));
}

TEST(BuildLattice, LinksItemsThatShareASetByAnEvenPosition) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1 2)", 1}});

  EXPECT_EQ(links(lattice, "(1)"), (Links{{2, 0}}));
  EXPECT_EQ(links(lattice, "(2)"), (Links{{1, 0}}));
}

TEST(BuildLattice, LinksSetsInOrderByAnOddPosition) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}});

  EXPECT_EQ(links(lattice, "(1)"), (Links{{2, 3}}));
  EXPECT_EQ(links(lattice, "(2)"), (Links{{1, 1}}));
}

TEST(BuildLattice, CountsPositionsBySetAndNotByItem) {
  const Lattice lattice({{"(1)", 1},
                         {"(1 2)", 1},
                         {"(4)(5 6)", 1},
                         {"(1 2)(4 5)", 1},
                         {"(1 2)(3)(4)", 1},
                         {"(2)(3)(4 5)", 1},
                         {"(1 2)(3)(4 5)", 1}});
  EXPECT_EQ(links(lattice, "(1 2)(4 5)"), (Links{{3, 3}}));
  EXPECT_EQ(links(lattice, "(1 2)(3)(4)"), (Links{{5, 4}}));
  EXPECT_EQ(links(lattice, "(2)(3)(4 5)"), (Links{{1, 0}}));
}

TEST(BuildLattice, LinksTheSameItemAtSeveralPlaces) {
  const Lattice lattice({{"(1)", 1}, {"(1)(1)", 1}, {"(1)(1)(1)", 1}});

  EXPECT_EQ(links(lattice, "(1)"), (Links{{1, 1}, {1, 3}}));
  EXPECT_EQ(links(lattice, "(1)(1)"), (Links{{1, 1}, {1, 3}, {1, 5}}));
  EXPECT_EQ(links(lattice, "(1)(1)(1)"), Links());
}

TEST(BuildLattice, SetsTheFlagAndAnswersOk) {
  SequenceDictionary dictionary(smallTables(3));

  const auto status = dictionary.buildLattice();

  EXPECT_TRUE(status.IsOK());
  EXPECT_EQ(status.GetErrorCode(), 0);
  EXPECT_TRUE(dictionary.isLatticeBuilt());
}

TEST(BuildLattice, OfOneLevelOnlyResetsTheEmptySequencesLinks) {
  SequenceDictionary dictionary(1);

  EXPECT_TRUE(dictionary.buildLattice().IsOK());

  EXPECT_EQ(links(dictionary, ""), Links());
  EXPECT_TRUE(dictionary.isLatticeBuilt());
}

TEST(BuildLattice, TwiceDropsTheEarlierLinks) {
  Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(1)(2)", 1}});
  const NTSequence one = packed("(1)");
  lattice.getDescriptor(&one)->addAdjacentItem(7, 0);

  EXPECT_TRUE(lattice.buildLattice().IsOK());

  EXPECT_EQ(links(lattice, ""), (Links{{1, 1}, {2, 1}}));
  EXPECT_EQ(links(lattice, "(1)"), (Links{{2, 3}}));
}

TEST(BuildLattice, LeavesLevelsAboveAnEmptyOneAsTheyAre) {
  SequenceDictionary dictionary(smallTables(6));
  for (const char* one : {"(1)", "(1)(2)", "(1)(2)(1)(2)", "(1)(2)(1)(2)(1)"})
    store(dictionary, history(one), 1);
  const NTSequence above = packed("(1)(2)(1)(2)");
  dictionary.getDescriptor(&above)->addAdjacentItem(7, 0);

  dictionary.buildLattice();

  EXPECT_EQ(links(dictionary, "(1)(2)(1)(2)"), (Links{{7, 0}}));
  EXPECT_EQ(linksOf(dictionary, history("(1)(2)(1)(2)(1)")), std::nullopt);
  EXPECT_EQ(links(dictionary, "(1)(2)"), Links());
}

TEST(BuildLattice, GoesThroughSequencesWithoutACounter) {
  const Lattice lattice({{"(1)", 1}, {"(2)", std::nullopt}, {"(1)(2)", std::nullopt}});

  EXPECT_EQ(links(lattice, ""), (Links{{1, 1}, {2, 1}}));
  EXPECT_EQ(links(lattice, "(1)"), (Links{{2, 3}}));
  EXPECT_EQ(linksOf(lattice, history("(2)")), std::nullopt);
}

TEST(BuildLattice, WorksWithoutACounterOnTheEmptySequence) {
  Lattice lattice({{"", std::nullopt}, {"(1)", 1}, {"(1)(1)", 1}});

  EXPECT_TRUE(lattice.isLatticeBuilt());
  EXPECT_EQ(links(lattice, "(1)"), (Links{{1, 1}, {1, 3}}));
}

TEST(BuildLattice, WorksWithoutTheEmptySequence) {
  auto** tables = new HashtableSQPair* [2] { new HashtableSQPair(0), new HashtableSQPair(3) };
  SequenceDictionary dictionary(tables, 2);
  store(dictionary, history("(1)"), 1);

  EXPECT_TRUE(dictionary.buildLattice().IsOK());

  EXPECT_EQ(links(dictionary, "(1)"), Links());
}

TEST(BuildLattice, LeavesOutPartsThatAreNotStored) {
  const Lattice lattice({{"(1)", 1}, {"(1)(2)", 1}});

  EXPECT_EQ(links(lattice, "(1)"), (Links{{2, 3}}));
  EXPECT_EQ(links(lattice, ""), (Links{{1, 1}}));
}

TEST(BuildLattice, LinksUpToThirtyTwoItems) {
  SequenceDictionary dictionary(smallTables(33));
  for (int items = 1; items <= 32; ++items) store(dictionary, singletons(items), 1);

  dictionary.buildLattice();

  EXPECT_EQ(linksOf(dictionary, singletons(31)), (Links{{32, 63}}));
  EXPECT_EQ(linksOf(dictionary, singletons(32)), Links());
}

TEST(BuildLattice, DoesNotConsultTheCancelFlag) {
  Lattice lattice({{"(1)", 1}});
  lattice.setCancel();
  store(lattice, history("(2)"), 1);

  EXPECT_TRUE(lattice.buildLattice().IsOK());

  EXPECT_EQ(links(lattice, ""), (Links{{1, 1}, {2, 1}}));
}

template <int kLargest>
class WithLargest final : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  std::int32_t LargestSequence() const override { return kLargest; }
};

TEST(BuildLattice, GoesUpToTheOverriddenLargestSequence) {
  WithLargest<1> dictionary(smallTables(4));
  for (const char* one : {"(1)", "(1)(1)"}) store(dictionary, history(one), 1);

  dictionary.buildLattice();

  EXPECT_EQ(links(dictionary, ""), (Links{{1, 1}}));
  EXPECT_EQ(links(dictionary, "(1)"), Links());
}

TEST(BuildLattice, SurvivesAnOverriddenLargestSequenceBeyondTheLevels) {
  WithLargest<50> dictionary(smallTables(4));
  store(dictionary, {}, 5);
  for (const char* one : {"(1)", "(1)(1)(1)"}) store(dictionary, history(one), 1);

  EXPECT_TRUE(dictionary.buildLattice().IsOK());

  EXPECT_EQ(links(dictionary, ""), (Links{{1, 1}}));
  EXPECT_EQ(rules(dictionary).size(), 0U);
}

class NoneOfSizeTwo final : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  std::int32_t CountSequencesOfSize(int size) const override {
    return size == 2 ? 0 : SequenceDictionary::CountSequencesOfSize(size);
  }
};

TEST(BuildLattice, StopsBelowALevelThatTheOverriddenCountCallsEmpty) {
  NoneOfSizeTwo dictionary(smallTables(4));
  for (const char* one : {"(1)", "(1)(1)"}) store(dictionary, history(one), 1);

  dictionary.buildLattice();

  EXPECT_EQ(dictionary.LargestSequence(), 1);
  EXPECT_EQ(links(dictionary, "(1)"), Links());
}

}  // namespace

// How many sequences a dictionary holds, and its display of a level.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>

#include "tests/support/World.h"

namespace {

using namespace orbseq::test;

// Levels 1, 2 and 4 hold sequences, level 3 none.
std::vector<Count> withGap() {
  return {{"", 9}, {"(1)", 5}, {"(2)", 4}, {"(1)(2)", 3}, {"(1)(2)(1)(2)", 2}};
}

TEST(SequenceDictionaryCounting, AFreshDictionaryHoldsOneSequence) {
  EXPECT_EQ(SequenceDictionary(smallTables(4)).NumberOfSequences(), 1);
}

TEST(SequenceDictionaryCounting, TheNumberOfSequencesIsOverAllLevels) {
  EXPECT_EQ(Lattice(withGap()).NumberOfSequences(), 5);
}

TEST(SequenceDictionaryCounting, TheLargestSequenceStandsBelowTheFirstEmptyLevel) {
  EXPECT_EQ(Lattice(withGap()).LargestSequence(), 2);
  EXPECT_EQ(Lattice({{"(1)", 1}, {"(1)(1)", 1}}, /*levels=*/3).LargestSequence(), 2);
  EXPECT_EQ(Lattice({{"(1)(1)", 1}}).LargestSequence(), 0);
}

TEST(SequenceDictionaryCounting, ASizeThatIsNoLevelHoldsNothing) {
  const Lattice lattice(withGap(), /*levels=*/5);

  EXPECT_EQ(lattice.CountSequencesOfSize(1), 2);
  EXPECT_EQ(lattice.CountSequencesOfSize(4), 1);
  EXPECT_EQ(lattice.CountSequencesOfSize(5), 0);
  EXPECT_EQ(lattice.CountSequencesOfSize(-1), 0);
  EXPECT_EQ(lattice.CountSequencesOfSize(std::numeric_limits<int>::max()), 0);
  EXPECT_EQ(lattice.CountSequencesOfSize(std::numeric_limits<int>::min()), 0);
}

// Deliberate: the level itself is counted, despite the name.
TEST(SequenceDictionaryCounting, BiggerThanCountsTheSizeItself) {
  const Lattice lattice(withGap());

  EXPECT_EQ(lattice.CountSequencesBiggerThan(1), 3);
  EXPECT_EQ(lattice.CountSequencesBiggerThan(2), lattice.CountSequencesOfSize(2));
  EXPECT_EQ(lattice.CountSequencesBiggerThan(0), 4);
}

TEST(SequenceDictionaryCounting, BiggerThanEndsAtTheLargestSequence) {
  const Lattice lattice(withGap());

  EXPECT_EQ(lattice.CountSequencesBiggerThan(3), 0);
  EXPECT_EQ(lattice.CountSequencesBiggerThan(4), 0);
  EXPECT_EQ(lattice.CountSequencesBiggerThan(std::numeric_limits<int>::max()), 0);
  EXPECT_EQ(lattice.CountSequencesBiggerThan(std::numeric_limits<int>::min()), 4);
}

class TwoAtMost final : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  std::int32_t LargestSequence() const override { return 2; }
};

class TenOfEachSize final : public SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
  std::int32_t CountSequencesOfSize(int) const override { return 10; }
};

TEST(SequenceDictionaryCounting, BiggerThanAsksTheOverriddenLargestSequence) {
  TwoAtMost dictionary(smallTables(5));
  for (const char* one : {"(1)", "(1)(1)", "(1)(1)(1)"}) store(dictionary, history(one), 1);

  EXPECT_EQ(dictionary.CountSequencesBiggerThan(1), 2);
  EXPECT_EQ(dictionary.CountSequencesBiggerThan(3), 0);
}

TEST(SequenceDictionaryCounting, BiggerThanAsksTheOverriddenCountOfASize) {
  TenOfEachSize dictionary(smallTables(5));
  for (const char* one : {"(1)", "(1)(1)", "(1)(1)(1)", "(1)(1)(1)(1)"})
    store(dictionary, history(one), 1);

  EXPECT_EQ(dictionary.CountSequencesBiggerThan(3), 20);
}

// --- Display -------------------------------------------------------------------------------------

std::string displayed(const SequenceDictionary& dictionary, int level, int maxCount) {
  std::ostringstream out;
  dictionary.displaySize(level, maxCount, out);
  return out.str();
}

std::ptrdiff_t sequencesIn(const std::string& display) {
  return std::count(display.begin(), display.end(), '<');
}

TEST(SequenceDictionaryDisplay, WritesTheSequenceThenItsCounterWithoutLinks) {
  const Lattice lattice({{"(1 2)", 7}, {"(1)", 8}});

  EXPECT_EQ(displayed(lattice, 2, 20), "<(1 2)>\n count 7 ordinalOfEntry 0 max missed 0\n");
  EXPECT_EQ(displayed(lattice, 1, 20), "<(1)>\n count 8 ordinalOfEntry 0 max missed 0\n");
}

// Deliberate: one more than the limit.
TEST(SequenceDictionaryDisplay, ShowsOneMoreThanTheLimit) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(3)", 1}, {"(4)", 1}});

  EXPECT_EQ(sequencesIn(displayed(lattice, 1, 0)), 1);
  EXPECT_EQ(sequencesIn(displayed(lattice, 1, 1)), 2);
  EXPECT_EQ(sequencesIn(displayed(lattice, 1, 3)), 4);
  EXPECT_EQ(sequencesIn(displayed(lattice, 1, 4)), 4);
  EXPECT_EQ(sequencesIn(displayed(lattice, 1, std::numeric_limits<int>::max())), 4);
}

TEST(SequenceDictionaryDisplay, GoesInTheOrderOfTheTable) {
  const Lattice lattice({{"(1)", 1}, {"(2)", 1}, {"(5)", 1}});
  const std::vector<History> order = sequencesOfSize(lattice, 1);

  const std::string display = displayed(lattice, 1, 20);

  ASSERT_EQ(order.size(), 3U);
  EXPECT_LT(display.find(text(order[0])), display.find(text(order[1])));
  EXPECT_LT(display.find(text(order[1])), display.find(text(order[2])));
}

TEST(SequenceDictionaryDisplay, OfALevelThatDoesNotExistIsNothing) {
  const Lattice lattice({{"(1)", 1}}, /*levels=*/2);

  EXPECT_EQ(displayed(lattice, 2, 20), "");
  EXPECT_EQ(displayed(lattice, 7, 20), "");
  EXPECT_EQ(displayed(lattice, -1, 20), "");
  EXPECT_EQ(displayed(SequenceDictionary(), 0, 20), "");
}

TEST(SequenceDictionaryDisplay, OfASequenceWithoutACounterIsTheSequenceAlone) {
  const Lattice lattice({{"", std::nullopt}, {"(1)", std::nullopt}});

  EXPECT_EQ(displayed(lattice, 1, 20), "<(1)>\n");
  EXPECT_EQ(displayed(lattice, 0, 20), "<>\n");
}

}  // namespace

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/World.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

struct Stored {
  History sequence;
  std::int32_t count;
  std::int32_t missed;
  std::int32_t ordinal;
};

// Stores with bounds and ordinals.
void storeAll(SequenceDictionary& dictionary, const std::vector<Stored>& all) {
  for (const Stored& stored : all) {
    ASSERT_TRUE(store(dictionary, stored.sequence, stored.count));
    const NTSequence key = packed(stored.sequence);
    SequenceCounter& counter = *dictionary.getDescriptor(&key);
    counter.setMaxMissed(stored.missed);
    counter.setOrdinalOfEntry(stored.ordinal);
  }
}

bool has(const SequenceDictionary& dictionary, const History& sequence) {
  return dictionary.isStored(packed(sequence));
}

const SequenceCounter& counterOf(const SequenceDictionary& dictionary, const History& sequence) {
  const NTSequence key = packed(sequence);
  return *dictionary.getDescriptor(&key);
}

std::vector<Count> shop() {
  return {{"", 100},     {"(1)", 3},    {"(2)", 2},      {"(3)", 9},
          {"(1)(2)", 2}, {"(3)(3)", 4}, {"(3)(3)(3)", 1}};
}

TEST(Pruning, ByCountAnEqualCountStays) {
  Lattice lattice(shop());
  EXPECT_EQ(lattice.reduceDictionaryWithCount(1, 3.0), 1);
  EXPECT_TRUE(has(lattice, {{1}}));
  EXPECT_FALSE(has(lattice, {{2}}));
  EXPECT_TRUE(has(lattice, {{1}, {2}}));  // another level
}

TEST(Pruning, AThresholdIsRaisedToTheNextInteger) {
  Lattice lattice(shop());
  EXPECT_EQ(lattice.reduceDictionaryWithCount(1, 2.5), 1);
  EXPECT_TRUE(has(lattice, {{1}}));
  Lattice untouched(shop());
  EXPECT_EQ(untouched.reduceDictionaryWithCount(1, 0.0), 0);
  EXPECT_EQ(untouched.reduceDictionaryWithCount(1, 0.4), 0);  // one
  EXPECT_EQ(untouched.reduceDictionaryWithCount(1, 1.0), 0);
}

struct Threshold {
  double threshold;
  std::int32_t least;  // the count that just stays
};

TEST(Pruning, NoiseInTheLastDigitsOfAThresholdIsForgiven) {
  const std::vector<Threshold> thresholds = {
      {3.0, 3},
      {3.0 + 1e-14, 3},            // above by noise
      {3.0 - 1e-15, 3},            // below: the next integer anyway
      {3.0 * (1.0 + 2.3e-14), 4},  // more than a hundred epsilons
      {0.29 * 100, 29},            // 28.999999999999996
      {100 * 1.1, 110},            // 110.00000000000001
      {2.000001, 3},
      {1.0, 1},
      {0.99, 1},
      {1e-300, 1},
  };
  for (const Threshold& row : thresholds) {
    SequenceDictionary dictionary(smallTables(2));
    store(dictionary, {{1}}, row.least);
    store(dictionary, {{2}}, row.least - 1);
    EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, row.threshold), 1) << row.threshold;
    EXPECT_TRUE(has(dictionary, {{1}})) << row.threshold;
  }
}

// Deliberate: they are raised towards zero, and the fractions of zero to one.
TEST(Pruning, NegativeThresholdsAreRaisedToo) {
  SequenceDictionary dictionary(smallTables(2));
  store(dictionary, {{1}}, 0);
  EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, -2.5), 0);
  EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, -0.4), 1);
}

TEST(Pruning, ThresholdsBeyondEveryCountAreNoUndefinedConversion) {
  for (const double threshold : {3e9, 1e300, std::numeric_limits<double>::infinity()}) {
    SequenceDictionary dictionary(smallTables(2));
    store(dictionary, {{1}}, kMost);
    EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, threshold), 1);
  }
  SequenceDictionary dictionary(smallTables(2));
  store(dictionary, {{1}}, 0);
  EXPECT_EQ(dictionary.reduceAllWithCount(-1e300), 0);
  EXPECT_EQ(dictionary.reduceAllWithCount(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Pruning, ByBoundTheMissedOnesCountAsWell) {
  SequenceDictionary dictionary(smallTables(3));
  storeAll(dictionary, {{{{1}}, 1, 2, 0}, {{{2}}, 1, 1, 0}, {{{3}}, kMost, kMost, 0}});
  EXPECT_EQ(dictionary.reduceDictionary(1, 3.0), 1);
  EXPECT_TRUE(has(dictionary, {{1}}));
  EXPECT_FALSE(has(dictionary, {{2}}));
  EXPECT_TRUE(has(dictionary, {{3}}));  // the sum is no 32-bit number
}

TEST(Pruning, ALevelThatDoesNotExistLosesNothing) {
  Lattice lattice(shop(), 4);
  for (const int level : {-1, 4, 99, kMost}) {
    EXPECT_EQ(lattice.reduceDictionary(level, 50.0), 0);
    EXPECT_EQ(lattice.reduceDictionaryWithCount(level, 50.0), 0);
  }
  SequenceDictionary none;
  EXPECT_EQ(none.reduceAll(5.0), 0);
  EXPECT_EQ(none.reduceAllWithCount(5.0), 0);
  EXPECT_TRUE(none.dropAfter(5).IsOK());
}

TEST(Pruning, ReduceAllEndsAtTheFirstEmptyLevelAndReduceAllWithCountDoesNot) {
  const std::vector<Count> gap = {{"", 100}, {"(1)", 9}, {"(1)(1)(1)", 1}};
  Lattice lattice(gap);
  EXPECT_EQ(lattice.reduceAll(5.0), 0);
  EXPECT_TRUE(has(lattice, {{1}, {1}, {1}}));
  EXPECT_EQ(lattice.reduceAllWithCount(5.0), 1);
  EXPECT_FALSE(has(lattice, {{1}, {1}, {1}}));
}

TEST(Pruning, ALevelThatTheCallItselfEmptiesDoesNotEndItsWalk) {
  Lattice lattice({{"", 100}, {"(1)", 9}, {"(1)(1)", 2}, {"(1)(1)(1)", 1}});
  EXPECT_EQ(lattice.reduceAll(5.0), 2);
  EXPECT_FALSE(has(lattice, {{1}, {1}, {1}}));
}

TEST(Pruning, ReduceAllRecordsTheThresholdAsAShareOfTheCustomers) {
  Lattice lattice(shop());
  lattice.reduceAll(5.0);
  EXPECT_EQ(lattice.getReductionThreshold(), 0.05);
  Lattice counted(shop());
  counted.reduceAllWithCount(5.0);
  EXPECT_EQ(counted.getReductionThreshold(), 0.0);
  Lattice nobody({{"", 0}, {"(1)", 9}});
  nobody.reduceAll(5.0);
  EXPECT_EQ(nobody.getReductionThreshold(), 0.0);
}

TEST(Pruning, TheEmptySequenceStays) {
  Lattice lattice({{"", 1}, {"(1)", 1}});
  lattice.reduceAllWithCount(50.0);
  lattice.reduceAll(50.0);
  EXPECT_EQ(lattice.NumberOfSequences(), 1);
}

TEST(Pruning, LinksToWhatIsGoneStayAndAreSkipped) {
  Lattice lattice({{"", 10}, {"(1)", 9}, {"(2)", 8}, {"(1)(2)", 2}, {"(1)(1)", 7}});
  ASSERT_EQ(lattice.reduceAllWithCount(5.0), 1);
  EXPECT_TRUE(lattice.isLatticeBuilt());
  EXPECT_EQ(counterOf(lattice, {{1}}).getNAdjacent(), 3);  // (1)(1) in two ways, (1)(2)
  const std::vector<Advice> future = futureItems(lattice, {{1}});
  ASSERT_EQ(future.size(), 1U);
  EXPECT_EQ(future[0].item, 1);
}

TEST(Pruning, WhatEnteredLaterIsDroppedAndTheBoundsOfTheOthersAreSettled) {
  SequenceDictionary dictionary(smallTables(4));
  store(dictionary, {}, 50);
  storeAll(dictionary, {{{{1}}, 5, 2, 7}, {{{2}}, 5, 2, 8}, {{{1}, {1}}, kMost, 3, 1}});
  EXPECT_TRUE(dictionary.dropAfter(7).IsOK());
  EXPECT_EQ(counterOf(dictionary, {{1}}).getCount(), 7);
  EXPECT_EQ(counterOf(dictionary, {{1}}).getMaxMissed(), 0);
  EXPECT_FALSE(has(dictionary, {{2}}));
  EXPECT_EQ(counterOf(dictionary, {{1}, {1}}).getCount(),
            kMost);                                     // stays the largest count
  EXPECT_EQ(counterOf(dictionary, {}).getCount(), 50);  // level 0 is left alone
}

TEST(Pruning, ResetLeavesTheEmptySequenceWithCountZero) {
  Lattice lattice(shop());
  lattice.setMaxGap(3.0);
  lattice.reset();
  EXPECT_EQ(lattice.NumberOfSequences(), 1);
  EXPECT_EQ(counterOf(lattice, {}).getCount(), 0);
  EXPECT_EQ(lattice.getMaxGap(), 3.0);
  EXPECT_TRUE(lattice.isLatticeBuilt());
  SequenceDictionary none;
  none.reset();
  EXPECT_EQ(none.NumberOfSequences(), 0);
}

TEST(Pruning, OneSequenceCanBeRemovedInThreeForms) {
  Lattice lattice(shop(), 4);
  const NTSequence key = packed({{1}});
  lattice.remove(&key);
  EXPECT_FALSE(has(lattice, {{1}}));
  const int set[] = {1, 2};
  const int* const sets[] = {set};
  lattice.remove(sets, 1);
  EXPECT_FALSE(has(lattice, {{2}}));
  const NTSequence pair = packed({{3}, {3}});
  const std::unique_ptr<const SEQUENCE_NAMESPACE_800::Sequence> unpacked(pair.createSequence());
  lattice.remove(*unpacked);
  EXPECT_FALSE(has(lattice, {{3}, {3}}));
  EXPECT_EQ(lattice.NumberOfSequences(), 4);
}

TEST(Pruning, RemovingWhatIsNotThereIsIgnored) {
  Lattice lattice(shop(), 4);
  lattice.remove(static_cast<const NTSequence*>(nullptr));
  for (const History& absent : {History{{9}}, History{{1}, {1}, {1}, {1}, {1}}}) {
    const NTSequence key = packed(absent);
    lattice.remove(&key);
    const std::unique_ptr<const SEQUENCE_NAMESPACE_800::Sequence> unpacked(key.createSequence());
    lattice.remove(*unpacked);
  }
  EXPECT_EQ(lattice.NumberOfSequences(), 7);
}

TEST(Pruning, WhatIsRemovedIsFreed) {
  const long before = livingBlocks();
  {
    Lattice lattice(shop());
    lattice.reduceAllWithCount(4.0);
    lattice.dropAfter(-1);
    lattice.reset();
  }
  EXPECT_EQ(livingBlocks(), before);
}

// The walk goes on behind an entry before that is removed, also where a chain's
// head takes its place.
TEST(Pruning, NoEntryOfALongChainIsSkipped) {
  for (std::uint32_t seed = 1; seed <= 30; ++seed) {
    auto settings = smallTables(2);
    settings.levelTableSize[1] = 1;
    SequenceDictionary dictionary(settings);
    std::int32_t below = 0;
    for (int item = 1; item <= 200; ++item) {
      const auto count =
          static_cast<std::int32_t>((static_cast<std::uint32_t>(item) * seed * 7919U) % 10U);
      store(dictionary, {{item}}, count);
      below += count < 5 ? 1 : 0;
    }
    EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, 5.0), below);
    EXPECT_EQ(dictionary.CountSequencesOfSize(1), 200 - below);
    EXPECT_EQ(dictionary.reduceDictionaryWithCount(1, 5.0), 0);
  }
}

}  // namespace

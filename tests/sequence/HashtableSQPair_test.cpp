// What a table finds, owns and prints. Growth and order: HashtableSQPairOrder_test.cpp.

#include "sequence/HashtableSQPair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "tests/sequence/failEveryAllocation.h"
#include "tests/sequence/tableValues.h"
#include "tests/support/captureOutput.h"

namespace {

using namespace orbseq::test;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

TEST(HashtableSQPair, ANewTableIsEmpty) {
  const HashtableSQPair table;

  EXPECT_EQ(table.getSize(), 0);
  EXPECT_EQ(table.getCapacity(), 89);
  EXPECT_EQ(table.getThreshold(), 67);
  EXPECT_EQ(table.getRehashCount(), 0);
}

TEST(HashtableSQPair, ANegativeCapacityCountsAsZero) {
  EXPECT_EQ(HashtableSQPair(-1).getCapacity(), 0);
  EXPECT_EQ(HashtableSQPair(kLeast).getThreshold(), 0);
}

TEST(HashtableSQPair, PutInsertsAnAbsentKey) {
  HashtableSQPair table;

  EXPECT_TRUE(table.put(newKey({{1, 2}, {3}}), newCounter(7)));

  EXPECT_EQ(table.getSize(), 1);
  EXPECT_EQ(countOf(table, {{1, 2}, {3}}), 7);
}

TEST(HashtableSQPair, AnEntryHoldsTheVeryObjectsGiven) {
  NTSequence* const key = newKey({{5}});
  SequenceCounter* const counter = newCounter(1);
  HashtableSQPair table;

  table.put(key, counter);

  EXPECT_EQ(table.get(key)->key, key);
  EXPECT_EQ(table.get(key)->value, counter);
}

TEST(HashtableSQPair, KeysAreComparedByContent) {
  HashtableSQPair table;
  table.put(newKey({{1, 2}}), newCounter(7));
  const NTSequence probe = packed({{1, 2}});

  EXPECT_TRUE(table.containsKey(&probe));
  EXPECT_NE(table.get(&probe)->key, &probe);
}

TEST(HashtableSQPair, AnAbsentKeyIsNotFound) {
  HashtableSQPair table;
  putItems(table, {5, 94});
  const NTSequence sameBucket = packed({{183}}), otherBucket = packed({{6}});

  EXPECT_EQ(table.get(&sameBucket), nullptr);
  EXPECT_EQ(table.get(&otherBucket), nullptr);
  EXPECT_FALSE(table.containsKey(&sameBucket));
}

TEST(HashtableSQPair, EqualHashesWithDifferentBoundariesAreDifferentKeys) {
  HashtableSQPair table;

  table.put(newKey({{0, 0, 0}}), newCounter(1));
  table.put(newKey({{0}, {0}, {0}}), newCounter(2));

  EXPECT_EQ(countOf(table, {{0, 0, 0}}), 1);
  EXPECT_EQ(countOf(table, {{0}, {0}, {0}}), 2);
  EXPECT_EQ(countOf(table, {{0, 0}, {0}}), -1);
}

TEST(HashtableSQPair, TheEmptySequenceIsAKey) {
  HashtableSQPair table;

  table.put(new NTSequence, newCounter(9));

  EXPECT_EQ(countOf(table, {}), 9);
}

TEST(HashtableSQPair, ThirtyTwoItemsAreAKey) {
  HashtableSQPair table;

  table.put(newKey(singletons(32)), newCounter(9));

  EXPECT_EQ(countOf(table, singletons(32)), 9);
  EXPECT_EQ(countOf(table, singletons(31)), -1);
}

TEST(HashtableSQPair, ARefusedPutKeepsTheFirstEntry) {
  HashtableSQPair table;
  table.put(newKey({{5}}), newCounter(1));
  NTSequence second = packed({{5}});
  SequenceCounter counter(0, 2, nullptr);

  EXPECT_FALSE(table.put(&second, &counter));

  EXPECT_EQ(table.getSize(), 1);
  EXPECT_EQ(countOf(table, {{5}}), 1);
}

// Deliberate: a refused key and counter stay the caller's.
TEST(HashtableSQPair, ARefusedPutLeavesKeyAndCounterToTheCaller) {
  int destroyed = 0;
  const auto key = std::make_unique<NTSequence>(packed({{5}}));
  const auto counter = std::make_unique<CountedCounter>(destroyed);
  {
    HashtableSQPair table;
    putItem(table, 5);
    EXPECT_FALSE(table.put(key.get(), counter.get()));
  }

  EXPECT_EQ(destroyed, 0);
  EXPECT_TRUE(*key == packed({{5}}));
}

TEST(HashtableSQPair, APutWithoutMemoryChangesNothing) {
  HashtableSQPair table(1);
  putItem(table, 1);
  auto key = std::make_unique<NTSequence>(packed({{2}}));
  auto counter = std::make_unique<SequenceCounter>();

  const int failures =
      failEveryAllocation<std::bad_alloc>([&] { table.put(key.get(), counter.get()); },
                                          [&] {
                                            EXPECT_EQ(itemsInOrder(table), Items{1});
                                            EXPECT_EQ(table.getCapacity(), 1);
                                            EXPECT_EQ(table.getRehashCount(), 0);
                                          });
  static_cast<void>(key.release());
  static_cast<void>(counter.release());

  EXPECT_EQ(failures, 2);
  EXPECT_EQ(table.getSize(), 2);
}

TEST(HashtableSQPair, TheTableDestroysItsCounters) {
  int destroyed = 0;
  {
    HashtableSQPair table;
    table.put(newKey({{1}}), new CountedCounter(destroyed));
    table.put(newKey({{2}}), new CountedCounter(destroyed));
  }

  EXPECT_EQ(destroyed, 2);
}

TEST(HashtableSQPair, CountersMayBeNull) {
  HashtableSQPair table;
  const NTSequence probe = packed({{1}});

  table.put(newKey({{1}}), nullptr);
  table.put(newKey({{2}}), nullptr);

  EXPECT_EQ(table.get(&probe)->value, nullptr);
  table.putOverwrite(newKey({{1}}), nullptr);
  table.remove(&probe);
  EXPECT_EQ(itemsInOrder(table), Items{2});
}

TEST(HashtableSQPair, PutOverwriteInsertsAnAbsentKey) {
  HashtableSQPair table;

  table.putOverwrite(newKey({{5}}), newCounter(1));

  EXPECT_EQ(table.getSize(), 1);
  EXPECT_EQ(countOf(table, {{5}}), 1);
}

TEST(HashtableSQPair, PutOverwriteReplacesKeyAndCounterAndDestroysTheOldOnes) {
  int destroyed = 0;
  HashtableSQPair table;
  table.put(newKey({{5}}), new CountedCounter(destroyed));
  NTSequence* const key = newKey({{5}});

  table.putOverwrite(key, newCounter(2));

  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(table.getSize(), 1);
  EXPECT_EQ(table.get(key)->key, key);
  EXPECT_EQ(countOf(table, {{5}}), 2);
}

TEST(HashtableSQPair, PutOverwriteWithTheStoredObjectsLeavesBothAlive) {
  int destroyed = 0;
  NTSequence* const key = newKey({{5}});
  auto* const counter = new CountedCounter(destroyed);
  HashtableSQPair table;
  table.put(key, counter);

  table.putOverwrite(key, counter);

  EXPECT_EQ(destroyed, 0);
  EXPECT_TRUE(*table.get(key)->key == packed({{5}}));
  EXPECT_EQ(table.get(key)->value, counter);
}

TEST(HashtableSQPair, PutOverwriteWithTheStoredKeyReplacesTheCounterAlone) {
  int destroyed = 0;
  NTSequence* const key = newKey({{5}});
  HashtableSQPair table;
  table.put(key, new CountedCounter(destroyed));

  table.putOverwrite(key, newCounter(2));

  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(table.get(key)->key, key);
}

TEST(HashtableSQPair, PutOverwriteWithTheStoredCounterReplacesTheKeyAlone) {
  int destroyed = 0;
  auto* const counter = new CountedCounter(destroyed);
  NTSequence* const key = newKey({{5}});
  HashtableSQPair table;
  table.put(newKey({{5}}), counter);

  table.putOverwrite(key, counter);

  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(table.get(key)->key, key);
  EXPECT_EQ(table.get(key)->value, counter);
}

TEST(HashtableSQPair, RemoveDestroysTheEntryOfAnEqualKey) {
  int destroyed = 0;
  HashtableSQPair table;
  table.put(newKey({{5}}), new CountedCounter(destroyed));
  const NTSequence probe = packed({{5}});

  table.remove(&probe);

  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(table.getSize(), 0);
  EXPECT_FALSE(table.containsKey(&probe));
}

TEST(HashtableSQPair, RemoveOfAnAbsentKeyDoesNothing) {
  HashtableSQPair table;
  putItems(table, {5, 94});
  const NTSequence probe = packed({{183}});

  table.remove(&probe);

  EXPECT_EQ(itemsInOrder(table), (Items{94, 5}));
}

TEST(HashtableSQPair, RemoveTakesTheStoredKeyItself) {
  HashtableSQPair table;
  putItems(table, {5, 94, 183});  // one chain: 183, 94, 5
  const NTSequence last = packed({{5}}), head = packed({{183}});

  table.remove(table.get(&last)->key);
  table.remove(table.get(&head)->key);

  EXPECT_EQ(itemsInOrder(table), Items{94});
}

TEST(HashtableSQPair, AnEntryRemovedCanBePutAgain) {
  HashtableSQPair table;
  putItem(table, 5);
  const NTSequence probe = packed({{5}});

  table.remove(&probe);
  table.put(newKey({{5}}), newCounter(8));

  EXPECT_EQ(countOf(table, {{5}}), 8);
}

TEST(HashtableSQPair, ClearDestroysEveryEntryAndKeepsTheGrownCapacity) {
  int destroyed = 0;
  HashtableSQPair table(3);
  for (std::int32_t item = 1; item <= 4; ++item)
    table.put(newKey({{item}}), new CountedCounter(destroyed));

  table.clear();

  EXPECT_EQ(destroyed, 4);
  EXPECT_EQ(table.getSize(), 0);
  EXPECT_EQ(table.getCapacity(), 7);
  EXPECT_EQ(table.getThreshold(), 5);
  EXPECT_EQ(table.getRehashCount(), 1);
}

TEST(HashtableSQPair, AClearedTableCanBeFilledAgain) {
  HashtableSQPair table;
  putItems(table, {1, 2});

  table.clear();
  table.clear();
  putItems(table, {2, 3});

  EXPECT_EQ(itemsInOrder(table), (Items{2, 3}));
}

TEST(HashtableSQPair, ATableOfCapacityZeroFindsNothing) {
  HashtableSQPair table(0);
  const NTSequence probe = packed({{5}});

  EXPECT_EQ(table.get(&probe), nullptr);
  EXPECT_FALSE(table.containsKey(&probe));
  EXPECT_EQ(table.chainLength(&probe, 7), 0);
  table.remove(&probe);
  table.clear();
  EXPECT_EQ(table.getSize(), 0);
  EXPECT_TRUE(table.begin() == table.end());
}

TEST(HashtableSQPair, AChainIsCountedUpToEnough) {
  HashtableSQPair table(2);  // three entries in two buckets
  putItems(table, {1, 2, 3});
  const std::int32_t capacity = table.getCapacity();
  std::int32_t all = 0, longest = 0;
  for (std::int32_t item = 1; item <= capacity; ++item) {
    const NTSequence probe = packed({{item}});
    const std::int32_t length = table.chainLength(&probe, 7);
    EXPECT_EQ(table.chainLength(&probe, 1), std::min(length, 1)) << item;
    EXPECT_EQ(table.chainLength(&probe, 0), 0) << item;
    all += length;
    longest = std::max(longest, length);
  }
  EXPECT_EQ(all, 3);  // each bucket is asked for once
  EXPECT_GE(longest, 1);
}

TEST(HashtableSQPair, ATableOfCapacityZeroPrintsNoBuckets) {
  const HashtableSQPair table(0);
  const CapturedOutput output;

  EXPECT_EQ(table.freqTable(), 0.0);
  table.display();

  EXPECT_EQ(output.text(), "END OF TABLE\nEnd of Hashtable.\n");
}

TEST(HashtableSQPair, NegativeHashesAreReducedIntoTheBuckets) {
  const OpenTable table;
  const NTSequence minusFive = packed({{-5}}), minusOne = packed({{-1}});
  const NTSequence multiple = packed({{-89}}), least = packed({{180684, 183681}});

  EXPECT_EQ(table.hashedKey(&minusFive), 84);
  EXPECT_EQ(table.hashedKey(&minusOne), 88);
  EXPECT_EQ(table.hashedKey(&multiple), 0);
  EXPECT_EQ(table.hashedKey(&least), 22);
}

TEST(HashtableSQPair, NonNegativeHashesKeepTheirRemainder) {
  const OpenTable table;
  const NTSequence five = packed({{5}}), wrapped = packed({{94}}), pair = packed({{1, 2}});

  EXPECT_EQ(table.hashedKey(&five), 5);
  EXPECT_EQ(table.hashedKey(&wrapped), 5);
  EXPECT_EQ(table.hashedKey(&pair), 13);
}

TEST(HashtableSQPair, EntriesOfNegativeHashesAreFoundGrownAndRemoved) {
  HashtableSQPair table(1);
  table.put(newKey({{180684, 183681}}), newCounter(1));
  table.put(newKey({{-1}}), newCounter(2));
  table.put(newKey({{kLeast}}), newCounter(3));
  const NTSequence minusOne = packed({{-1}});

  EXPECT_EQ(countOf(table, {{180684, 183681}}), 1);
  EXPECT_EQ(countOf(table, {{-1}}), 2);
  EXPECT_EQ(countOf(table, {{kLeast}}), 3);
  table.remove(&minusOne);
  EXPECT_EQ(countOf(table, {{-1}}), -1);
  EXPECT_EQ(table.getSize(), 2);
}

}  // namespace

// Shallow assignment and copy of tables. One table of each pair lives in storage that is never
// destroyed; the leak check sees that the other one frees everything.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>

#include "tests/sequence/tableValues.h"

namespace {

using namespace orbseq::test;

// Deliberate: assignment is shallow.
TEST(HashtableSQPairSharing, AssignmentSharesTheEntriesAndOneTableDestroysThem) {
  int destroyed = 0;
  alignas(HashtableSQPair) std::byte storage[sizeof(HashtableSQPair)];
  auto* const source = new (storage) HashtableSQPair(3);
  NTSequence* const key = newKey({{5}});
  source->put(key, new CountedCounter(destroyed));
  {
    HashtableSQPair target;

    target = *source;

    EXPECT_EQ(target.get(key), source->get(key));
    EXPECT_EQ(target.getSize(), 1);
    EXPECT_EQ(target.getCapacity(), 3);
    EXPECT_EQ(target.getThreshold(), 2);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(HashtableSQPairSharing, TheSourceOfAnAssignmentMayBeTheOneThatIsDestroyed) {
  int destroyed = 0;
  alignas(HashtableSQPair) std::byte storage[sizeof(HashtableSQPair)];
  {
    HashtableSQPair source;
    source.put(newKey({{5}}), new CountedCounter(destroyed));
    auto* const target = new (storage) HashtableSQPair(7);
    *target = source;
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(HashtableSQPairSharing, AssignmentFreesWhatTheTargetOwnedAlone) {
  int destroyed = 0;
  alignas(HashtableSQPair) std::byte storage[sizeof(HashtableSQPair)];
  HashtableSQPair source;
  auto* const target = new (storage) HashtableSQPair(7);
  target->put(newKey({{5}}), new CountedCounter(destroyed));

  *target = source;

  EXPECT_EQ(destroyed, 1);
  EXPECT_EQ(target->getSize(), 0);
}

TEST(HashtableSQPairSharing, AssignmentLeavesSharedEntriesToTheOtherTable) {
  int destroyed = 0;
  alignas(HashtableSQPair) std::byte storage[sizeof(HashtableSQPair)];
  HashtableSQPair first, second;
  first.put(newKey({{5}}), new CountedCounter(destroyed));
  auto* const target = new (storage) HashtableSQPair(7);
  *target = first;

  *target = second;

  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(first.getSize(), 1);
}

// Deliberate: a copy is shallow, as an assignment is.
TEST(HashtableSQPairSharing, ACopySharesTheEntries) {
  int destroyed = 0;
  alignas(HashtableSQPair) std::byte storage[sizeof(HashtableSQPair)];
  {
    HashtableSQPair source(3);
    for (std::int32_t item = 1; item <= 3; ++item)
      source.put(newKey({{item}}), new CountedCounter(destroyed));

    const auto* const copy = new (storage) HashtableSQPair(source);

    EXPECT_EQ(itemsInOrder(*copy), itemsInOrder(source));
    EXPECT_EQ(copy->getRehashCount(), 1);
  }
  EXPECT_EQ(destroyed, 3);
}

TEST(HashtableSQPairSharing, AssignmentToItselfDoesNothing) {
  HashtableSQPair table;
  putItem(table, 5);
  const HashtableSQPair& itself = table;

  table = itself;

  EXPECT_EQ(itemsInOrder(table), Items{5});
}

}  // namespace

// The limit of 32 items, and what failed operations leave behind.

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <stdexcept>
#include <vector>

#include "sequence/NTSequence.h"
#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/sequenceModel.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::PackedSequence;

TEST(NTSequenceLimits, ThirtyTwoItemsFitAndTheirPatternUsesTheSignBit) {
  EXPECT_EQ(packed(singletons(32)).size(), 32);
  EXPECT_EQ(packed(singletons(32)).getPattern(), -1);
  EXPECT_EQ(packed({flatItems(singletons(32))}).getPattern(), 1);
}

TEST(NTSequenceLimits, EveryBuilderRefusesMoreThanThirtyTwoItems) {
  const Sequence history = sequence(singletons(33));
  std::vector<int> one(34, 5);
  one[0] = 33;

  EXPECT_THROW(NTSequence{one.data()}, std::length_error);
  EXPECT_THROW(packed(singletons(33)), std::length_error);
  EXPECT_THROW(NTSequence{&history}, std::length_error);
  EXPECT_THROW(NTSequence(history, 0), std::length_error);
  EXPECT_EQ(NTSequence(history, 1).size(), 32);
}

TEST(NTSequenceLimits, AnExtensionOfThirtyTwoItemsIsRefused) {
  const NTSequence full = packed(singletons(32));

  EXPECT_THROW(NTSequence(full, 5, 0), std::length_error);
  EXPECT_THROW(NTSequence(full, 5, 1), std::length_error);
}

TEST(NTSequenceLimits, ARefusedRefillLeavesTheSequenceUnchanged) {
  const CountedArrays tooMany(singletons(33));
  const Sequence tooLong = sequence(singletons(33));
  const PackedSequence tooLarge{33, 33, 0, 0, nullptr};
  NTSequence sequence = packed({{1, 2}, {3}});

  EXPECT_THROW(sequence.reuseAs(tooMany.data(), tooMany.count()), std::length_error);
  EXPECT_THROW(sequence.reuseAs(&tooLong), std::length_error);
  EXPECT_THROW(sequence.reuseAs(&tooLarge), std::length_error);

  EXPECT_TRUE(sequence == packed({{1, 2}, {3}}));
  EXPECT_EQ(sequence.getNSets(), 2);
}

TEST(NTSequenceLimits, ARefusedAdditionLeavesTheSequenceUnchanged) {
  NTSequence full = packed(singletons(32));

  EXPECT_THROW(full.addItemAfterLast(1), std::length_error);
  EXPECT_THROW(full.addItemToSet(1, 0), std::length_error);

  EXPECT_TRUE(full == packed(singletons(32)));
  EXPECT_EQ(full.getNSets(), 32);
}

TEST(NTSequenceLimits, AnAdditionThatRunsOutOfMemoryChangesNothing) {
  NTSequence sequence = packed({{1}, {3}});

  const int failures =
      failEveryAllocation<std::bad_alloc>([&] { sequence.addItemToSet(2, 0); },
                                          [&] {
                                            EXPECT_EQ(setsOf(sequence), (ItemSets{{1}, {3}}));
                                          });

  EXPECT_GE(failures, 1);
  EXPECT_EQ(setsOf(sequence), (ItemSets{{1, 2}, {3}}));
}

TEST(NTSequenceLimits, ARefillThatRunsOutOfMemoryChangesNothing) {
  const NTSequence source = packed({{1, 2}, {3}});
  NTSequence target = packed({{9}});

  const int failures = failEveryAllocation<std::bad_alloc>(
      [&] { target = source; }, [&] { EXPECT_TRUE(target == packed({{9}})); });

  EXPECT_GE(failures, 1);
  EXPECT_TRUE(target == source);
}

}  // namespace

// Building, reading and changing packed sequences. Hash and order: NTSequenceOrder_test.cpp.

#include "sequence/NTSequence.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::PackedSequence;

Items flat(const NTSequence& sequence) {
  return {sequence.items().begin(), sequence.items().end()};
}

ItemSets extended(const ItemSets& source, std::int32_t item, std::int32_t position) {
  return setsOf(NTSequence(packed(source), item, position));
}

TEST(NTSequence, ANewSequenceIsEmpty) {
  const NTSequence empty;

  EXPECT_EQ(empty.size(), 0);
  EXPECT_EQ(empty.getNSets(), 0);
  EXPECT_EQ(empty.getPattern(), 0);
  EXPECT_EQ(empty.HashCode(), 0);
}

TEST(NTSequence, OneArrayBecomesOneSet) {
  const int items[] = {3, 7, 2, 9};
  const NTSequence sequence(items);

  EXPECT_EQ(flat(sequence), (Items{7, 2, 9}));
  EXPECT_EQ(sequence.getNSets(), 1);
  EXPECT_EQ(sequence.getPattern(), 1);
}

TEST(NTSequence, AnArrayOfNoItemsGivesTheEmptySequence) {
  const int items[] = {0};

  EXPECT_TRUE(NTSequence(items) == NTSequence());
  EXPECT_EQ(NTSequence(items).getNSets(), 0);
}

TEST(NTSequence, ArraysArePackedInOrderWithABitPerSetEnd) {
  const NTSequence sequence = packed({{3, 7}, {2}, {5, 8, 9}});

  EXPECT_EQ(sequence.size(), 6);
  EXPECT_EQ(sequence.getNSets(), 3);
  EXPECT_EQ(flat(sequence), (Items{3, 7, 2, 5, 8, 9}));
  EXPECT_EQ(sequence.getPattern(), 25);
}

TEST(NTSequence, ArraysKeepTheCallersOrderAndDuplicates) {
  EXPECT_EQ(setsOf(packed({{9, 3, 9}, {9}})), (ItemSets{{9, 3, 9}, {9}}));
}

TEST(NTSequence, NoArraysGiveTheEmptySequence) {
  EXPECT_TRUE(NTSequence(nullptr, 0) == NTSequence());
  EXPECT_TRUE(NTSequence(nullptr, -1) == NTSequence());
}

TEST(NTSequence, ASequenceIsPackedWithoutItsTimes) {
  const Sequence early = sequence({{7, 3}, {2}}, {1.0, 2.0});
  const Sequence late = sequence({{7, 3}, {2}}, {8.0, 9.0});

  EXPECT_EQ(setsOf(NTSequence(&early)), (ItemSets{{3, 7}, {2}}));
  EXPECT_TRUE(NTSequence(&early) == NTSequence(&late));
}

// Deliberate: a set without items leaves no trace, so that the set count is the number of 1 bits.
TEST(NTSequence, SetsWithoutItemsAreSkipped) {
  const Sequence history = sequence({{}, {1, 2}, {}, {3}, {}});
  const NTSequence fromSequence(&history);
  const NTSequence fromArrays = packed({{}, {1, 2}, {}, {3}, {}});

  EXPECT_EQ(setsOf(fromSequence), (ItemSets{{1, 2}, {3}}));
  EXPECT_EQ(fromSequence.getNSets(), 2);
  EXPECT_EQ(fromSequence.getPattern(), 3);
  EXPECT_TRUE(fromArrays == fromSequence);
}

TEST(NTSequence, DroppingLeavesOutTheLastSets) {
  const Sequence history = sequence({{1}, {2, 3}, {4}});

  EXPECT_EQ(setsOf(NTSequence(history, 0)), (ItemSets{{1}, {2, 3}, {4}}));
  EXPECT_EQ(setsOf(NTSequence(history, 1)), (ItemSets{{1}, {2, 3}}));
  EXPECT_EQ(setsOf(NTSequence(history, 2)), (ItemSets{{1}}));
}

TEST(NTSequence, DroppingEverySetAndMoreGivesTheEmptySequence) {
  const Sequence history = sequence({{1}, {2}});

  EXPECT_EQ(NTSequence(history, 2).size(), 0);
  EXPECT_EQ(NTSequence(history, 2'000'000'000).size(), 0);
}

TEST(NTSequence, ANegativeDropCountsAsZero) {
  EXPECT_EQ(setsOf(NTSequence(sequence({{1}, {2}}), -1)), (ItemSets{{1}, {2}}));
}

TEST(NTSequence, AnEvenPositionJoinsTheSetBeforeItsFirstGreaterItem) {
  EXPECT_EQ(extended({{3, 7}, {9}}, 5, 0), (ItemSets{{3, 5, 7}, {9}}));
  EXPECT_EQ(extended({{3, 7}, {9}}, 5, 2), (ItemSets{{3, 7}, {5, 9}}));
}

TEST(NTSequence, AnEvenPositionJoinsTheSetAtItsEndWhenNoItemIsGreater) {
  EXPECT_EQ(extended({{3, 7}, {9}}, 8, 0), (ItemSets{{3, 7, 8}, {9}}));
  EXPECT_EQ(extended({{3, 7}, {9}}, 10, 2), (ItemSets{{3, 7}, {9, 10}}));
}

TEST(NTSequence, AnOddPositionMakesTheItemTheNewSet) {
  EXPECT_EQ(extended({{3, 7}, {9}}, 5, 1), (ItemSets{{5}, {3, 7}, {9}}));
  EXPECT_EQ(extended({{3, 7}, {9}}, 5, 3), (ItemSets{{3, 7}, {5}, {9}}));
  EXPECT_EQ(extended({{3, 7}, {9}}, 5, 5), (ItemSets{{3, 7}, {9}, {5}}));
}

TEST(NTSequence, AnExtensionHasTheCountsPatternAndHashOfItsItems) {
  const NTSequence longer(packed({{3, 7}, {9}}), 5, 3);

  EXPECT_EQ(longer.size(), 4);
  EXPECT_EQ(longer.getNSets(), 3);
  EXPECT_EQ(longer.getPattern(), 7);
  EXPECT_EQ(longer.HashCode(), packed({{3, 7}, {5}, {9}}).HashCode());
}

// Deliberate: an extension does not look for duplicates.
TEST(NTSequence, AnEqualItemIsAddedAfterTheExistingOne) {
  EXPECT_EQ(extended({{3, 7}}, 3, 0), (ItemSets{{3, 3, 7}}));
  EXPECT_EQ(extended({{3, 7}}, 7, 0), (ItemSets{{3, 7, 7}}));
}

TEST(NTSequence, TheEmptySequenceIsExtendedByANewSetOnly) {
  EXPECT_EQ(extended({}, 4, 1), (ItemSets{{4}}));
  EXPECT_THROW(extended({}, 4, 0), std::out_of_range);
}

TEST(NTSequence, PositionsOfNoExtensionAreRefused) {
  const NTSequence source = packed({{3, 7}, {9}});

  for (const std::int32_t position : {-2, -1, 4, 6, 7, 100}) {
    EXPECT_FALSE(source.isPosition(position)) << position;
    EXPECT_THROW(NTSequence(source, 5, position), std::out_of_range) << position;
  }
  for (const std::int32_t position : {0, 1, 2, 3, 5})
    EXPECT_TRUE(source.isPosition(position)) << position;
}

TEST(NTSequence, ACopyEqualsItsSourceAndIsIndependent) {
  NTSequence original = packed({{1, 2}, {3}});
  const NTSequence copy(original);

  original.addItemAfterLast(4);

  EXPECT_EQ(setsOf(copy), (ItemSets{{1, 2}, {3}}));
  EXPECT_TRUE(copy == packed({{1, 2}, {3}}));
  EXPECT_EQ(copy.getNSets(), 2);
}

TEST(NTSequence, AssignmentReplacesTheTarget) {
  NTSequence target = packed({{9, 8}});

  target = packed({{1, 2}, {3}});
  EXPECT_TRUE(target == packed({{1, 2}, {3}}));

  const NTSequence empty;
  target = empty;
  EXPECT_TRUE(target == NTSequence());
}

TEST(NTSequence, AssignmentToItselfDoesNothing) {
  NTSequence sequence = packed({{1, 2}, {3}});
  NTSequence& itself = sequence;

  sequence = itself;
  EXPECT_TRUE(sequence == packed({{1, 2}, {3}}));

  sequence = std::move(itself);
  EXPECT_TRUE(sequence == packed({{1, 2}, {3}}));
}

TEST(NTSequence, AMovedFromSequenceIsEmptyAndUsable) {
  NTSequence source = packed({{1, 2}, {3}});
  const NTSequence taken(std::move(source));
  EXPECT_TRUE(taken == packed({{1, 2}, {3}}));
  EXPECT_TRUE(source == NTSequence());  // NOLINT(bugprone-use-after-move): what is tested

  source.removeItem(0, &taken);
  EXPECT_EQ(setsOf(source), (ItemSets{{2}, {3}}));
}

TEST(NTSequence, RefillingEqualsBuildingAnew) {
  const CountedArrays arrays({{3, 7}, {2}});
  const Sequence history = sequence({{5}, {6, 8}});
  NTSequence target = packed({{1}, {2}, {3}, {4}});

  target.reuseAs(arrays.data(), arrays.count());
  EXPECT_TRUE(target == packed({{3, 7}, {2}}));
  EXPECT_EQ(target.getNSets(), 2);

  target.reuseAs(&history);
  EXPECT_TRUE(target == packed({{5}, {6, 8}}));
}

TEST(NTSequence, RefillingWithNothingEmptiesTheSequence) {
  NTSequence target = packed({{1}, {2}});

  target.reuseAs(nullptr, 0);

  EXPECT_TRUE(target == NTSequence());
  EXPECT_EQ(target.getNSets(), 0);
}

// Deliberate: a packed record is taken over as it stands.
TEST(NTSequence, RefillingFromAPackedRecordDoesNotComputeTheHash) {
  const std::int32_t items[] = {4, 6, 5};
  const PackedSequence record{3, 2, 12345, 3, items};
  NTSequence target = packed({{1}});

  target.reuseAs(&record);

  EXPECT_EQ(setsOf(target), (ItemSets{{4, 6}, {5}}));
  EXPECT_EQ(target.getNSets(), 2);
  EXPECT_EQ(target.HashCode(), 12345);
  EXPECT_EQ(target.getPattern(), 3);
}

TEST(NTSequence, RefillingFromAnEmptyPackedRecordEmptiesTheSequence) {
  const PackedSequence record;
  NTSequence target = packed({{1}, {2}});

  target.reuseAs(&record);

  EXPECT_TRUE(target == NTSequence());
}

TEST(NTSequence, TheItemIndexIsTheFirstFlatPosition) {
  const NTSequence sequence = packed({{3, 7}, {2}, {7}});

  EXPECT_EQ(sequence.getItemIndex(3), 0);
  EXPECT_EQ(sequence.getItemIndex(7), 1);
  EXPECT_EQ(sequence.getItemIndex(2), 2);
}

TEST(NTSequence, TheIndexOfAnAbsentItemIsMinusOne) {
  EXPECT_EQ(packed({{3, 7}}).getItemIndex(4), -1);
  EXPECT_EQ(NTSequence().getItemIndex(0), -1);
}

TEST(NTSequence, TheSizeOfASetCountsItsItems) {
  const NTSequence sequence = packed({{3, 7}, {2}, {5, 8, 9}});

  EXPECT_EQ(sequence.getSizeOfSet(0), 2);
  EXPECT_EQ(sequence.getSizeOfSet(1), 1);
  EXPECT_EQ(sequence.getSizeOfSet(2), 3);
}

TEST(NTSequence, ASetThatDoesNotExistHasSizeZero) {
  EXPECT_EQ(packed({{3, 7}, {2}}).getSizeOfSet(2), 0);
  EXPECT_EQ(packed({{3, 7}, {2}}).getSizeOfSet(-1), 0);
  EXPECT_EQ(NTSequence().getSizeOfSet(0), 0);
}

TEST(NTSequence, AnItemIsFoundByItsPlaceInItsSet) {
  const NTSequence sequence = packed({{3, 7}, {2}, {5, 8, 9}});

  EXPECT_EQ(sequence.getItemInSet(1, 0), 7);
  EXPECT_EQ(sequence.getItemInSet(0, 1), 2);
  EXPECT_EQ(sequence.getItemInSet(2, 2), 9);
}

TEST(NTSequence, APlaceThatDoesNotExistHoldsZero) {
  const NTSequence sequence = packed({{3, 7}, {2}});

  EXPECT_EQ(sequence.getItemInSet(2, 0), 0);
  EXPECT_EQ(sequence.getItemInSet(-1, 0), 0);
  EXPECT_EQ(sequence.getItemInSet(0, 2), 0);
  EXPECT_EQ(sequence.getItemInSet(0, -1), 0);
  EXPECT_EQ(NTSequence().getItemInSet(0, 0), 0);
}

TEST(NTSequence, ASetIsWrittenWithoutACount) {
  std::int32_t out[] = {-1, -1, -1};

  packed({{3}, {7, 2}, {5}}).getSetAsArray(1, out);

  EXPECT_EQ(Items(out, out + 3), (Items{7, 2, -1}));
}

TEST(NTSequence, ASetThatDoesNotExistWritesNothing) {
  std::int32_t out[] = {-1};

  packed({{3}}).getSetAsArray(1, out);
  packed({{3}}).getSetAsArray(-1, out);
  NTSequence().getSetAsArray(0, out);

  EXPECT_EQ(out[0], -1);
}

TEST(NTSequence, UnpackingNumbersTheSetsAsTimes) {
  const std::unique_ptr<Sequence> unpacked(packed({{3, 7}, {2}}).createSequence());

  EXPECT_EQ(setsOf(*unpacked), (ItemSets{{3, 7}, {2}}));
  EXPECT_EQ(timesOf(*unpacked), (Times{1.0, 2.0}));
}

TEST(NTSequence, UnpackingSortsEachSetAndMergesDuplicates) {
  const std::unique_ptr<Sequence> unpacked(packed({{7, 3, 7}, {2}}).createSequence());

  EXPECT_EQ(setsOf(*unpacked), (ItemSets{{3, 7}, {2}}));
}

TEST(NTSequence, UnpackingTheEmptySequenceGivesNoSets) {
  const std::unique_ptr<Sequence> unpacked(NTSequence().createSequence());

  EXPECT_EQ(unpacked->Length(), 0);
}

TEST(NTSequence, DisplayWritesTheSequenceFormWithoutTimes) {
  std::ostringstream out;

  packed({{1, 2}, {5}}).display(out);
  NTSequence().display(out);

  EXPECT_EQ(out.str(), "<(1 2)(5)>\n<>\n");
}

}  // namespace

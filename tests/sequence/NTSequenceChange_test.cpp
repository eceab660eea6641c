// Adding to and removing from packed sequences.

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>

#include "sequence/NTSequence.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;

struct Removal {
  ItemSets sets;
  bool setWent;

  friend bool operator==(const Removal&, const Removal&) = default;
};

Removal removal(const ItemSets& source, std::int32_t position) {
  const NTSequence from = packed(source);
  NTSequence rest;
  const bool setWent = rest.removeItem(position, &from);
  EXPECT_TRUE(rest == packed(setsOf(rest))) << "pattern or hash is not that of the items";
  return {setsOf(rest), setWent};
}

TEST(NTSequenceAddItem, AfterTheLastItOpensANewSet) {
  NTSequence sequence = packed({{3, 7}});

  sequence.addItemAfterLast(5);

  EXPECT_TRUE(sequence == packed({{3, 7}, {5}}));
  EXPECT_EQ(sequence.size(), 3);
  EXPECT_EQ(sequence.getNSets(), 2);
  EXPECT_EQ(sequence.getPattern(), 3);
}

TEST(NTSequenceAddItem, AfterTheLastOfAnEmptySequenceItIsTheFirstSet) {
  NTSequence sequence;

  sequence.addItemAfterLast(5);

  EXPECT_TRUE(sequence == packed({{5}}));
}

TEST(NTSequenceAddItem, ThirtyTwoAdditionsFillASequence) {
  NTSequence sequence;

  for (std::int32_t item = 1; item <= 32; ++item) sequence.addItemAfterLast(item);

  EXPECT_TRUE(sequence == packed(singletons(32)));
}

TEST(NTSequenceAddItem, ToASetItStandsBeforeTheFirstGreaterItem) {
  NTSequence sequence = packed({{1}, {3, 7}, {9}});

  sequence.addItemToSet(5, 1);

  EXPECT_TRUE(sequence == packed({{1}, {3, 5, 7}, {9}}));
  EXPECT_EQ(sequence.getNSets(), 3);
}

TEST(NTSequenceAddItem, AtTheEndOfASetItCarriesTheEndBit) {
  NTSequence sequence = packed({{3, 7}, {9}});

  sequence.addItemToSet(8, 0);

  EXPECT_TRUE(sequence == packed({{3, 7, 8}, {9}}));
  EXPECT_EQ(sequence.getPattern(), 3);
}

TEST(NTSequenceAddItem, ToTheLastSetItKeepsTheSequenceClosed) {
  NTSequence sequence = packed({{3}, {9}});

  sequence.addItemToSet(11, 1);

  EXPECT_TRUE(sequence == packed({{3}, {9, 11}}));
}

// Deliberate: equal items are not merged.
TEST(NTSequenceAddItem, ToASetThatHasItTheItemIsAddedOnceMore) {
  NTSequence sequence = packed({{3, 7}});

  sequence.addItemToSet(3, 0);

  EXPECT_TRUE(sequence == packed({{3, 3, 7}}));
}

TEST(NTSequenceAddItem, ToASequenceWithoutSetsItOpensTheFirst) {
  NTSequence sequence;

  sequence.addItemToSet(4, 0);

  EXPECT_TRUE(sequence == packed({{4}}));
}

TEST(NTSequenceAddItem, ToASetThatDoesNotExistIsRefused) {
  NTSequence sequence = packed({{3}, {7}});

  EXPECT_THROW(sequence.addItemToSet(1, 2), std::out_of_range);
  EXPECT_THROW(sequence.addItemToSet(1, -1), std::out_of_range);

  EXPECT_TRUE(sequence == packed({{3}, {7}}));
}

TEST(NTSequenceRemoveItem, AOneItemSetDisappears) {
  EXPECT_EQ(removal({{4}, {6, 8}}, 0), (Removal{{{6, 8}}, true}));
  EXPECT_EQ(removal({{6, 8}, {4}, {5}}, 2), (Removal{{{6, 8}, {5}}, true}));
  EXPECT_EQ(removal({{6, 8}, {4}}, 2), (Removal{{{6, 8}}, true}));
}

TEST(NTSequenceRemoveItem, ThePredecessorOfARemovedLastItemEndsTheSet) {
  EXPECT_EQ(removal({{4}, {6, 8}}, 2), (Removal{{{4}, {6}}, false}));
  EXPECT_EQ(removal({{6, 8}, {4}}, 1), (Removal{{{6}, {4}}, false}));
}

TEST(NTSequenceRemoveItem, AnItemThatEndsNoSetLeavesTheEndsAlone) {
  EXPECT_EQ(removal({{4}, {6, 8, 9}}, 1), (Removal{{{4}, {8, 9}}, false}));
  EXPECT_EQ(removal({{6, 8}, {4}}, 0), (Removal{{{8}, {4}}, false}));
}

TEST(NTSequenceRemoveItem, TheOnlyItemLeavesTheEmptySequence) {
  EXPECT_EQ(removal({{4}}, 0), (Removal{{}, true}));
}

TEST(NTSequenceRemoveItem, TheSetCountFollows) {
  const NTSequence source = packed({{4}, {6, 8}});
  NTSequence rest;

  rest.removeItem(0, &source);
  EXPECT_EQ(rest.getNSets(), 1);

  rest.removeItem(1, &source);
  EXPECT_EQ(rest.getNSets(), 2);
}

TEST(NTSequenceRemoveItem, OneBufferServesSequencesOfEveryLength) {
  const NTSequence full = packed(singletons(32)), pair = packed({{1, 2}});
  NTSequence rest;

  rest.removeItem(0, &full);
  EXPECT_EQ(rest.size(), 31);

  rest.removeItem(0, &pair);
  EXPECT_TRUE(rest == packed({{2}}));

  rest.removeItem(31, &full);
  EXPECT_TRUE(rest == packed(singletons(31)));
}

TEST(NTSequenceRemoveItem, ABufferThatIsTooSmallGrows) {
  const NTSequence source = packed({{1, 2, 3, 4, 5}});
  NTSequence rest = packed({{9}});

  rest.removeItem(4, &source);

  EXPECT_TRUE(rest == packed({{1, 2, 3, 4}}));
}

TEST(NTSequenceRemoveItem, ASequenceMayBeItsOwnSource) {
  NTSequence sequence = packed({{4}, {6, 8}});

  EXPECT_TRUE(sequence.removeItem(0, &sequence));

  EXPECT_TRUE(sequence == packed({{6, 8}}));
}

TEST(NTSequenceRemoveItem, TheSourceIsLeftAlone) {
  const NTSequence source = packed({{4}, {6, 8}});
  NTSequence rest;

  rest.removeItem(1, &source);

  EXPECT_TRUE(source == packed({{4}, {6, 8}}));
}

TEST(NTSequenceRemoveItem, APositionWithoutAnItemIsRefused) {
  const NTSequence source = packed({{4}, {6}}), empty;
  NTSequence rest = packed({{1}});

  EXPECT_THROW(rest.removeItem(2, &source), std::out_of_range);
  EXPECT_THROW(rest.removeItem(-1, &source), std::out_of_range);
  EXPECT_THROW(rest.removeItem(0, &empty), std::out_of_range);

  EXPECT_TRUE(rest == packed({{1}}));
}

}  // namespace

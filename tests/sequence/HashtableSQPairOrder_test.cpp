// Growth, removal, iteration and printing of tables: the exact order of the entries.
//
// One-item keys hash to their item, so the items below choose the bucket: item mod capacity.

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/sequence/tableValues.h"
#include "tests/support/captureOutput.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::OrbSequence;
using SEQUENCE_NAMESPACE_800::SQCPairNode;

void removeItem(HashtableSQPair& table, std::int32_t item) {
  const NTSequence probe = packed({{item}});
  table.remove(&probe);
}

TEST(HashtableSQPairGrowth, TheThresholdIsThreeQuartersRoundedHalfUp) {
  EXPECT_EQ(HashtableSQPair(1).getThreshold(), 1);
  EXPECT_EQ(HashtableSQPair(2).getThreshold(), 2);
  EXPECT_EQ(HashtableSQPair(3).getThreshold(), 2);
  EXPECT_EQ(HashtableSQPair(4).getThreshold(), 3);
  EXPECT_EQ(HashtableSQPair(5).getThreshold(), 4);
  EXPECT_EQ(HashtableSQPair(6).getThreshold(), 5);
  EXPECT_EQ(HashtableSQPair(89).getThreshold(), 67);
  EXPECT_EQ(HashtableSQPair(179).getThreshold(), 134);
  EXPECT_EQ(HashtableSQPair(359).getThreshold(), 269);
}

// Deliberate: the product is a single-precision one; in double precision this would be 12582913.
TEST(HashtableSQPairGrowth, TheThresholdOfHugeTablesIsThatOfSinglePrecision) {
  EXPECT_EQ(HashtableSQPair(16777217).getThreshold(), 12582912);
}

TEST(HashtableSQPairGrowth, TheDefaultTableGrowsWithThe68thEntry) {
  HashtableSQPair table;

  for (std::int32_t item = 1; item <= 67; ++item) putItem(table, item);
  EXPECT_EQ(table.getCapacity(), 89);
  EXPECT_EQ(table.getRehashCount(), 0);

  putItem(table, 68);
  EXPECT_EQ(table.getCapacity(), 179);
  EXPECT_EQ(table.getThreshold(), 134);
  EXPECT_EQ(table.getRehashCount(), 1);
  EXPECT_EQ(table.getSize(), 68);
}

TEST(HashtableSQPairGrowth, CapacitiesFollowTwiceAndOne) {
  HashtableSQPair table;

  for (std::int32_t item = 1; item <= 135; ++item) putItem(table, item);
  EXPECT_EQ(table.getCapacity(), 359);
  EXPECT_EQ(table.getRehashCount(), 2);

  for (std::int32_t item = 136; item <= 270; ++item) putItem(table, item);
  EXPECT_EQ(table.getCapacity(), 719);
  EXPECT_EQ(table.getThreshold(), 539);
  EXPECT_EQ(table.getRehashCount(), 3);
}

TEST(HashtableSQPairGrowth, ATableOfCapacityZeroGrowsBeforeItsFirstEntry) {
  HashtableSQPair table(0);

  putItem(table, 5);
  EXPECT_EQ(table.getCapacity(), 1);
  EXPECT_EQ(table.getRehashCount(), 1);

  putItem(table, 6);
  EXPECT_EQ(table.getCapacity(), 3);
  EXPECT_EQ(itemsInOrder(table), (Items{6, 5}));
}

TEST(HashtableSQPairGrowth, PutOverwriteGrowsATableOfCapacityZero) {
  HashtableSQPair table(0);

  table.putOverwrite(newKey({{5}}), newCounter(1));

  EXPECT_EQ(table.getCapacity(), 1);
  EXPECT_EQ(itemsInOrder(table), Items{5});
}

TEST(HashtableSQPairGrowth, ARefusedPutDoesNotGrow) {
  HashtableSQPair table(3);
  putItems(table, {1, 2});
  NTSequence equal = packed({{1}});
  SequenceCounter counter;

  EXPECT_FALSE(table.put(&equal, &counter));

  EXPECT_EQ(table.getCapacity(), 3);
}

TEST(HashtableSQPairGrowth, OverwritingDoesNotGrow) {
  HashtableSQPair table(3);
  putItems(table, {1, 2});

  table.putOverwrite(newKey({{1}}), newCounter(9));
  EXPECT_EQ(table.getCapacity(), 3);

  table.putOverwrite(newKey({{3}}), newCounter(9));
  EXPECT_EQ(table.getCapacity(), 7);
}

// Deliberate: nodes move from the head, so a chain that stays together is reversed.
TEST(HashtableSQPairGrowth, ReversesTheEntriesOfOneChain) {
  HashtableSQPair table(3);
  putItems(table, {1, 22});  // bucket 1 of 3 and of 7
  EXPECT_EQ(itemsInOrder(table), (Items{22, 1}));

  putItem(table, 43);

  EXPECT_EQ(table.getCapacity(), 7);
  EXPECT_EQ(itemsInOrder(table), (Items{43, 1, 22}));
}

TEST(HashtableSQPairGrowth, LinksTheEntriesOfLaterBucketsBeforeThoseOfEarlierOnes) {
  HashtableSQPair table(3);
  putItems(table, {21, 7});  // buckets 0 and 1 of 3, both bucket 0 of 7

  putItem(table, 2);

  EXPECT_EQ(itemsInOrder(table), (Items{7, 21, 2}));
}

TEST(HashtableSQPairGrowth, MovesTheEntriesWithoutCopyingThem) {
  NTSequence* const key = newKey({{5}});
  OpenTable table(3);
  table.put(key, newCounter(1));
  const ISQCPair* const before = table.get(key);

  table.rehash();

  EXPECT_EQ(table.get(key), before);
  EXPECT_EQ(before->key, key);
  EXPECT_EQ(table.getCapacity(), 7);
  EXPECT_EQ(table.getSize(), 1);
}

TEST(HashtableSQPairRemoval, OfAMiddleEntryPutsTheHeadInItsPlace) {
  HashtableSQPair table(89);
  putItems(table, {183, 94, 5});  // chain 5, 94, 183

  removeItem(table, 94);

  EXPECT_EQ(itemsInOrder(table), (Items{5, 183}));
}

// Deliberate: the head's entry moves into the removed one's node, and the head's node goes.
TEST(HashtableSQPairRemoval, OfTheLastEntryPutsTheHeadBehindTheOthers) {
  HashtableSQPair table(89);
  putItems(table, {183, 94, 5});  // chain 5, 94, 183

  removeItem(table, 183);

  EXPECT_EQ(itemsInOrder(table), (Items{94, 5}));
  EXPECT_EQ(countOf(table, {{5}}), 5);
  EXPECT_EQ(countOf(table, {{94}}), 94);
}

TEST(HashtableSQPairRemoval, OfTheHeadKeepsTheOrderOfTheOthers) {
  HashtableSQPair table(89);
  putItems(table, {183, 94, 5});

  removeItem(table, 5);

  EXPECT_EQ(itemsInOrder(table), (Items{94, 183}));
}

TEST(HashtableSQPairRemoval, MovesTheHeadsEntryIntoTheNodeOfTheRemovedOne) {
  HashtableSQPair table(89);
  putItems(table, {183, 94, 5});
  const NTSequence last = packed({{183}}), head = packed({{5}});
  const ISQCPair* const node = table.get(&last);

  table.remove(&last);

  EXPECT_EQ(table.get(&head), node);
}

TEST(HashtableSQPairRemoval, KeepsCapacityAndRehashCount) {
  HashtableSQPair table(3);
  putItems(table, {1, 2, 3});

  removeItem(table, 2);

  EXPECT_EQ(table.getCapacity(), 7);
  EXPECT_EQ(table.getRehashCount(), 1);
  EXPECT_EQ(table.getSize(), 2);
}

TEST(HashtableSQPairRemoval, OverwritingKeepsThePlaceInTheChain) {
  HashtableSQPair table(89);
  putItems(table, {183, 94, 5});

  table.putOverwrite(newKey({{94}}), newCounter(1));

  EXPECT_EQ(itemsInOrder(table), (Items{5, 94, 183}));
}

TEST(HashtableSQPairRemoval, AWalkThatAdvancesFirstMayRemoveEveryEntry) {
  HashtableSQPair table(7);
  putItems(table, {0, 7, 14, 3, 10});

  for (auto entry = table.begin(); entry != table.end();) {
    const NTSequence* const key = entry->key;
    ++entry;
    table.remove(key);
  }

  EXPECT_EQ(table.getSize(), 0);
  EXPECT_TRUE(table.begin() == table.end());
}

TEST(HashtableSQPairRemoval, AWalkThatRemovesSomeEntriesVisitsEachOnce) {
  HashtableSQPair table(7);
  putItems(table, {0, 7, 14, 3, 10});  // chains 14, 7, 0 and 10, 3
  Items visited;

  for (auto entry = table.begin(); entry != table.end();) {
    const NTSequence* const key = entry->key;
    ++entry;
    visited.push_back(key->items()[0]);
    if (visited.size() % 2 == 0) table.remove(key);
  }

  EXPECT_EQ(visited, (Items{14, 7, 0, 10, 3}));
  EXPECT_EQ(itemsInOrder(table), (Items{14, 0, 3}));
}

TEST(HashtableSQPairIteration, GoesByBucketAndWithinABucketFromTheLatestEntry) {
  HashtableSQPair table(89);

  putItems(table, {88, 5, 0, 94, 183, 89});

  EXPECT_EQ(itemsInOrder(table), (Items{89, 0, 183, 94, 5, 88}));
}

TEST(HashtableSQPairIteration, OfAnEmptyTableBeginsAtItsEnd) {
  const HashtableSQPair table;

  EXPECT_TRUE(table.begin() == table.end());
}

TEST(HashtableSQPairIteration, EveryEndPositionIsEqual) {
  HashtableSQPair table;
  putItem(table, 5);
  auto position = table.begin();
  EXPECT_TRUE(position != table.end());

  ++position;

  EXPECT_TRUE(position == table.end());
  EXPECT_TRUE(position == HashtableSQPair(3).end());
  EXPECT_TRUE(position == OrbSequence::iterator());
}

TEST(HashtableSQPairIteration, PositionsAreEqualOnTheSameEntryOnly) {
  HashtableSQPair table;
  putItems(table, {5, 6});

  EXPECT_TRUE(table.begin() == table.begin());
  EXPECT_FALSE(table.begin() == ++table.begin());
}

TEST(HashtableSQPairIteration, APositionGivesKeyAndCounter) {
  HashtableSQPair table;
  table.put(newKey({{5}}), newCounter(42));

  EXPECT_TRUE(*table.begin()->key == packed({{5}}));
  EXPECT_EQ((*table.begin()).value->getCount(), 42);
}

TEST(HashtableSQPairIteration, PostIncrementGivesThePositionBefore) {
  HashtableSQPair table;
  putItems(table, {5, 6});
  auto position = table.begin();

  EXPECT_EQ((position++)->key->items()[0], 5);
  EXPECT_EQ(position->key->items()[0], 6);
}

TEST(HashtableSQPairChain, TheSearchWalksTheChainFromTheGivenNode) {
  NTSequence keys[] = {packed({{1, 2}}), packed({{3}}), packed({{1, 2}})};
  SQCPairNode nodes[3];
  for (int k = 0; k < 3; ++k) nodes[k].key = &keys[k];
  nodes[0].next = &nodes[1];
  nodes[1].next = &nodes[2];
  const NTSequence probe = packed({{1, 2}}), absent = packed({{1}, {2}});

  EXPECT_EQ(OpenTable::findInBucket(&nodes[0], &probe), &nodes[0]);
  EXPECT_EQ(OpenTable::findInBucket(&nodes[1], &probe), &nodes[2]);
  EXPECT_EQ(OpenTable::findInBucket(&nodes[0], &absent), nullptr);
  EXPECT_EQ(OpenTable::findInBucket(nullptr, &probe), nullptr);
}

TEST(HashtableSQPairPrinting, FreqTableWritesHowManyChainsHaveWhichLength) {
  HashtableSQPair table(89);
  putItems(table, {5, 94, 183, 6, 95, 7});
  const CapturedOutput output;

  EXPECT_EQ(table.freqTable(), 2.0);

  EXPECT_EQ(output.text(), "0 : 86\n1 : 1\n2 : 1\n3 : 1\nEND OF TABLE\n");
}

TEST(HashtableSQPairPrinting, FreqTableOfAnEmptyTableHasTheEmptyBucketsOnly) {
  const HashtableSQPair table;
  const CapturedOutput output;

  EXPECT_EQ(table.freqTable(), 0.0);

  EXPECT_EQ(output.text(), "0 : 89\nEND OF TABLE\n");
}

TEST(HashtableSQPairPrinting, FreqTableWritesNoLineForALengthThatIsAbsent) {
  HashtableSQPair table(1);
  putItem(table, 5);
  const CapturedOutput output;

  EXPECT_EQ(table.freqTable(), 1.0);

  EXPECT_EQ(output.text(), "1 : 1\nEND OF TABLE\n");
}

// Deliberate: a length of 99 stands for every longer one, in the lines and in the mean.
TEST(HashtableSQPairPrinting, FreqTableCountsLongerChainsAs99) {
  HashtableSQPair table(161);
  for (std::int32_t k = 0; k < 120; ++k) putItem(table, k * 161);
  putItem(table, 1);
  const CapturedOutput output;

  EXPECT_EQ(table.freqTable(), 50.0);

  EXPECT_EQ(table.getCapacity(), 161);
  EXPECT_EQ(output.text(), "0 : 159\n1 : 1\n99 : 1\nEND OF TABLE\n");
}

TEST(HashtableSQPairPrinting, DisplayWritesALinePerBucketWithoutTheEntries) {
  HashtableSQPair table(2);
  putItem(table, 5);
  const CapturedOutput output;

  table.display();

  EXPECT_EQ(output.text(), "Bucket 0 : \nBucket 1 : \nEnd of Hashtable.\n");
}

}  // namespace

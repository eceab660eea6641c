#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/StatsBucket.h"
#include "tests/sequence/tableValues.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/TempFolder.h"
#include "tests/support/binaryImage.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::StatsBucket;
using ::testing::HasSubstr;

constexpr const char* kSequenceMessage = "Failure reading NTSequence!\n";
constexpr const char* kCounterMessage = "Error reading SequenceCounter!\n";
constexpr const char* kAdjacencyMessage = "Error reading Sequence!\n";
constexpr const char* kStatisticsMessage = "Error reading StatsBucket!\n";
constexpr const char* kTableMessage = "Error reading HashtableSQPair!\n";

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

const std::string kStatistics = "SB" + reals({3.0, 4.5, 1.0, 2.0});

std::string entry(std::int32_t item, std::int32_t count) {
  return sequenceBlock(1, {item}, 1) + counterBlock(count);
}

// --- Packed sequences ----------------------------------------------------------------------------

TEST(NTSequenceBinary, TheBytesAreMarkerPatternItemsAndSetCount) {
  const NTSequence sequence = packed({{3, 7}, {2}});
  EXPECT_EQ(binaryOf(sequence), sequenceBlock(0b011, {3, 7, 2}, 2));
  std::ostringstream stream;
  EXPECT_EQ(sequence.writeObject(stream), 28U);
}

TEST(NTSequenceBinary, ItComesBackWithItsHashComputedAnew) {
  const NTSequence sequence = packed({{3, 7}, {2}, {5, 8, 9}});
  NTSequence read;
  const ReadOutcome outcome = readInto(read, binaryOf(sequence));
  EXPECT_EQ(outcome.count, 16U + 4 * 6);
  EXPECT_TRUE(read == sequence);
  EXPECT_EQ(read.HashCode(), sequence.HashCode());
  EXPECT_EQ(read.getNSets(), 3);
}

TEST(NTSequenceBinary, ThirtyTwoItemsFit) {
  ItemSets sets;
  for (int item = 0; item < 32; ++item) sets.push_back({item});
  const NTSequence sequence = packed(sets);
  NTSequence read;
  EXPECT_EQ(readInto(read, binaryOf(sequence)).count, 16U + 4 * 32);
  EXPECT_TRUE(read == sequence);
}

TEST(NTSequenceBinary, AloneACountBelowOneReadsNoItems) {
  for (const std::int32_t count : {-1, 0, std::numeric_limits<std::int32_t>::min()}) {
    NTSequence read = packed({{4}});
    const ReadOutcome outcome =
        readInto(read, std::string("NT:\0", 4) + ints({5, count}) + ints({9}));
    EXPECT_FALSE(outcome.isRefused());
    EXPECT_EQ(outcome.printed, "");
    EXPECT_EQ(read.size(), 0);
    EXPECT_EQ(read.getPattern(), 0);
    EXPECT_EQ(read.getNSets(), 0);
    EXPECT_EQ(read.HashCode(), 0);
  }
}

TEST(NTSequenceBinary, WhatIsNoSequenceIsRefusedAndChangesNothing) {
  const std::string marker("NT:\0", 4);
  const std::vector<std::string> bad = {
      std::string("NX:\0", 4) + ints({1, 1, 7, 1}),
      std::string("NT:1", 4) + ints({1, 1, 7, 1}),
      marker + ints({1, 33}) + std::string(200, 'x'),
      marker + ints({1, 1000}) + std::string(200, 'x'),
      marker + ints({1, kMost}),
      marker + ints({2, 2, 7, 8, 1}),  // the last item ends no set
      marker + ints({5, 2, 7, 8, 2}),  // a bit above the items
      marker + ints({3, 2, 7, 8, 1}),  // two ends, one set
      marker + ints({1, 1, 7, -5}),
      marker + ints({1, 1, 7, 100}),
      marker + ints({std::numeric_limits<std::int32_t>::min() + 1, 1, 7, 2}),
  };
  for (const std::string& bytes : bad) {
    NTSequence read = packed({{4, 6}});
    const ReadOutcome outcome = readInto(read, bytes);
    EXPECT_TRUE(outcome.isRefused());
    EXPECT_EQ(outcome.printed, kSequenceMessage);
    EXPECT_TRUE(read == packed({{4, 6}}));
  }
}

TEST(NTSequenceBinary, EveryPrefixIsRefusedWithOneMessage) {
  const std::string bytes = binaryOf(packed({{3, 7}, {2}}));
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    NTSequence read;
    const ReadOutcome outcome = readInto(read, bytes.substr(0, size));
    EXPECT_TRUE(outcome.isRefused()) << size;
    EXPECT_EQ(outcome.printed, kSequenceMessage) << size;
  }
}

TEST(NTSequenceBinary, TheErrorTellsOffsetFieldAndRange) {
  NTSequence read;
  EXPECT_EQ(readInto(read, std::string("NT:\0", 4) + ints({1, 33})).thrown,
            "offset 0x8, item count: 33 is outside -2147483648..32");
}

TEST(NTSequenceBinary, AFailedStreamIsRefused) {
  NTSequence read;
  const ReadOutcome outcome = outcomeOf(binaryOf(packed({{1}})), [&read](std::istream& is) {
    is.setstate(std::ios::failbit);
    return read.readObject(is);
  });
  EXPECT_TRUE(outcome.isRefused());
  EXPECT_EQ(outcome.printed, kSequenceMessage);
}

// --- Counters and statistics ---------------------------------------------------------------------

TEST(SequenceCounterBinary, WithoutAdjacencyAndStatisticsItIs23BytesAndTells23) {
  const SequenceCounter counter(5, 17, nullptr);
  const std::string expected = std::string("SD\0", 3) + ints({17, 5, 0, 0, 0});
  EXPECT_EQ(binaryOf(counter), expected);
  EXPECT_EQ(expected.size(), 23U);
  std::ostringstream stream;
  EXPECT_EQ(counter.writeObject(stream), 23U);
}

TEST(SequenceCounterBinary, WithOnePairAndStatisticsItIs65BytesAndTells61) {
  auto statistics = std::make_unique<StatsBucket>();
  statistics->setOccurrences(3.0);
  statistics->setTotal(4.5);
  statistics->setMinimum(1.0);
  statistics->setMaximum(2.0);
  SequenceCounter counter(0, 17, statistics.release());
  counter.setMaxMissed(2);
  counter.addAdjacentItem(9, 1);
  const std::string bytes = binaryOf(counter);
  EXPECT_EQ(bytes, std::string("SD\0", 3) + ints({17, 0, 2, 1, 9, 1, 1}) + kStatistics);
  EXPECT_EQ(bytes.size(), 65U);
  std::ostringstream stream;
  EXPECT_EQ(counter.writeObject(stream), 61U);

  SequenceCounter read;
  EXPECT_EQ(readInto(read, bytes).count, 61U);
  EXPECT_EQ(binaryOf(read), bytes);
  ASSERT_NE(read.getStatsBucket(), nullptr);
  EXPECT_EQ(read.getStatsBucket()->getMean(), 1.5);
}

TEST(StatsBucketBinary, ItIs34BytesAndTells30) {
  StatsBucket read;
  EXPECT_EQ(kStatistics.size(), 34U);
  EXPECT_EQ(readInto(read, kStatistics).count, 30U);
  EXPECT_EQ(read.getTotal(), 4.5);
  EXPECT_EQ(binaryOf(read), kStatistics);
  std::ostringstream stream;
  EXPECT_EQ(read.writeObject(stream), 30U);
}

TEST(StatsBucketBinary, NumbersThatAreNotFiniteAreKept) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::string bytes =
      "SB" + reals({std::numeric_limits<double>::quiet_NaN(), -infinity, infinity, 0.0});
  StatsBucket read;
  EXPECT_FALSE(readInto(read, bytes).isRefused());
  EXPECT_EQ(binaryOf(read), bytes);
}

TEST(SequenceCounterBinary, AnyOtherFlagThanZeroAnnouncesStatistics) {
  SequenceCounter read;
  const std::string bytes = std::string("SD\0", 3) + ints({1, 0, 0, 0, 2}) + kStatistics;
  EXPECT_EQ(readInto(read, bytes).count, 53U);
  EXPECT_NE(read.getStatsBucket(), nullptr);
}

TEST(SequenceCounterBinary, ReadingReplacesAdjacencyAndStatistics) {
  const long before = livingBlocks();
  {
    SequenceCounter read(0, 1, new StatsBucket);
    read.addAdjacentItem(1, 0);
    readInto(read, counterBlock(8, {5, 1}));
    EXPECT_EQ(read.getStatsBucket(), nullptr);
    EXPECT_EQ(read.getNAdjacent(), 1);
    EXPECT_EQ(read.getAdjacentItems()->begin()->first, 5);
  }
  EXPECT_EQ(livingBlocks(), before);
}

struct BadCounter {
  const char* name;
  std::string bytes;
  const char* message;
};

TEST(SequenceCounterBinary, EachFaultHasItsMessageAndChangesNothing) {
  const std::string marker("SD\0", 3);
  const std::vector<BadCounter> bad = {
      {"marker", std::string("SX\0", 3) + ints({1, 0, 0, 0, 0}), kCounterMessage},
      {"marker without zero", std::string("SD1", 3) + ints({1, 0, 0, 0, 0}), kCounterMessage},
      {"negative pairs", marker + ints({1, 0, 0, -1, 0}), kAdjacencyMessage},
      {"endless pairs", marker + ints({1, 0, 0, kMost, 5, 1}), kCounterMessage},
      {"negative flag", marker + ints({1, 0, 0, 0, -1}), kStatisticsMessage},
      {"statistics marker", marker + ints({1, 0, 0, 0, 1}) + "SX" + reals({1, 1, 1, 1}),
       kStatisticsMessage},
      {"statistics cut", marker + ints({1, 0, 0, 0, 1}) + "SB" + reals({1, 1}), kStatisticsMessage},
  };
  for (const BadCounter& row : bad) {
    SequenceCounter read(0, 42, nullptr);
    read.addAdjacentItem(6, 1);
    const ReadOutcome outcome = readInto(read, row.bytes);
    EXPECT_TRUE(outcome.isRefused()) << row.name;
    EXPECT_EQ(outcome.printed, row.message) << row.name;
    EXPECT_EQ(read.getCount(), 42) << row.name;
    EXPECT_EQ(read.getNAdjacent(), 1) << row.name;
  }
}

// --- Tables --------------------------------------------------------------------------------------

TEST(HashtableSQPairBinary, EntriesStandInTheTablesOrder) {
  HashtableSQPair table(5);
  putItems(table, {1, 6, 2});  // 6 shares the bucket of 1 and stands before it
  EXPECT_EQ(binaryOf(table), "HT" + ints({3}) + entry(6, 6) + entry(1, 1) + entry(2, 2));
  std::ostringstream stream;
  EXPECT_EQ(table.writeObject(stream), 6U + 3 * (20 + 23));
}

TEST(HashtableSQPairBinary, ReadingPutsEachEntryAtItsChainsHead) {
  HashtableSQPair table(5);
  putItems(table, {1, 6, 2});
  HashtableSQPair read(5);
  EXPECT_EQ(readInto(read, binaryOf(table)).count, 6U + 3 * 43);
  EXPECT_EQ(itemsInOrder(read), (Items{1, 6, 2}));
  EXPECT_EQ(countOf(read, {{6}}), 6);
}

TEST(HashtableSQPairBinary, ACountBelowOneTells6AndLeavesTheTableEmpty) {
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    HashtableSQPair read(5);
    const ReadOutcome outcome = readInto(read, "HT" + ints({count}));
    EXPECT_EQ(outcome.count, 6U);
    EXPECT_EQ(outcome.printed, "");
    EXPECT_EQ(read.getSize(), 0);
  }
}

TEST(HashtableSQPairBinary, ARepeatedKeyReplacesTheEarlierEntry) {
  const long before = livingBlocks();
  {
    HashtableSQPair read(5);
    readInto(read, "HT" + ints({2}) + entry(4, 10) + entry(4, 11));
    EXPECT_EQ(read.getSize(), 1);
    EXPECT_EQ(countOf(read, {{4}}), 11);
  }
  EXPECT_EQ(livingBlocks(), before);
}

TEST(HashtableSQPairBinary, AnEntryWithoutACounterIsStoredWithOneOfZeros) {
  HashtableSQPair table(5);
  putItem(table, 1);
  table.put(newKey({{2}}), nullptr);
  EXPECT_EQ(binaryOf(table), "HT" + ints({2}) + entry(1, 1) + entry(2, 0));
}

TEST(HashtableSQPairBinary, TwoThousandMillionEntriesInSixtyBytesFailAtTheFirstMissingByte) {
  HashtableSQPair read(5);
  const std::string bytes = ("HT" + ints({kMost}) + entry(4, 10) + entry(5, 11)).substr(0, 60);
  const ReadOutcome outcome = readInto(read, bytes);
  EXPECT_TRUE(outcome.isRefused());
  EXPECT_EQ(outcome.printed, kSequenceMessage);
  EXPECT_EQ(outcome.thrown,
            "offset 0x39, entry 1, item count: the stream ends here, or cannot be read");
}

TEST(HashtableSQPairBinary, ASequenceOfNoItemsMustSaySoEverywhere) {
  for (const std::string& fields :
       {ints({0, -1, 0}), ints({5, 0, 0}), ints({0, 0, 1}), ints({5, -1, 2})}) {
    HashtableSQPair read(5);
    const ReadOutcome outcome =
        readInto(read, "HT" + ints({1}) + std::string("NT:\0", 4) + fields + counterBlock(1));
    EXPECT_TRUE(outcome.isRefused());
    EXPECT_EQ(outcome.printed, kSequenceMessage);
  }
}

TEST(HashtableSQPairBinary, AdjacentPositionsThatNameNoExtensionAreRefused) {
  for (const std::int32_t position : {-1, 2, 4, 5, kMost}) {
    HashtableSQPair read(5);
    const ReadOutcome outcome = readInto(
        read, "HT" + ints({1}) + sequenceBlock(1, {4}, 1) + counterBlock(3, {7, position}));
    EXPECT_TRUE(outcome.isRefused()) << position;
    EXPECT_EQ(outcome.printed, kTableMessage) << position;
  }
}

// The first two items' factors are 9829 and 9817, so that these keys have one hash.
std::string collidingEntries(std::int32_t count) {
  std::string bytes = "HT" + ints({count});
  for (std::int32_t k = 0; k < count; ++k)
    bytes += sequenceBlock(0b01, {9817 * k, 9829 * (100'000 - k)}, 1) + counterBlock(1);
  return bytes;
}

TEST(HashtableSQPairBinary, AThousandSequencesMayShareABucketAndNotMore) {
  HashtableSQPair read(5);
  EXPECT_FALSE(readInto(read, collidingEntries(1000)).isRefused());
  EXPECT_EQ(read.getSize(), 1000);
  HashtableSQPair refusing(5);
  const ReadOutcome outcome = readInto(refusing, collidingEntries(1001));
  EXPECT_EQ(outcome.printed, kTableMessage);
  EXPECT_THAT(outcome.thrown, HasSubstr("more than 1000 sequences of the level share a bucket"));
}

TEST(HashtableSQPairBinary, AWrongMarkerIsRefused) {
  HashtableSQPair read(5);
  const ReadOutcome outcome = readInto(read, "XT" + ints({0}));
  EXPECT_EQ(outcome.printed, kTableMessage);
  EXPECT_THAT(outcome.thrown, HasSubstr("marker"));
}

TEST(HashtableSQPairBinary, AFailedReadLeavesATableThatCanBeReadIntoAgain) {
  const std::string good = "HT" + ints({2}) + entry(4, 10) + entry(5, 11);
  const long before = livingBlocks();
  for (std::size_t size = 0; size < good.size(); ++size) {
    HashtableSQPair read(5);
    EXPECT_TRUE(readInto(read, good.substr(0, size)).isRefused()) << size;
    EXPECT_FALSE(readInto(read, good).isRefused());
    EXPECT_EQ(countOf(read, {{4}}), 10);
    EXPECT_EQ(countOf(read, {{5}}), 11);
  }
  EXPECT_EQ(livingBlocks(), before);
}

TEST(HashtableSQPairBinary, FileStreamsTakeTheSameForm) {
  const TempFolder folder;
  HashtableSQPair table(5);
  putItems(table, {1, 6, 2});
  std::fstream file(folder.path() / "table",
                    std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
  EXPECT_EQ(table.writeObject(file), 6U + 3 * 43);
  file.seekg(0);
  HashtableSQPair read(5);
  EXPECT_EQ(read.readObject(file), 6U + 3 * 43);
  EXPECT_EQ(read.getSize(), 3);
}

TEST(HashtableSQPairBinary, ReadingSurvivesEveryFailedAllocation) {
  const std::string bytes = "HT" + ints({2}) + sequenceBlock(0b01, {4, 6}, 1) +
                            counterBlock(3, {7, 1, 8, 0}) + entry(5, 11);
  const long before = livingBlocks();
  bool completed = false;
  for (long n = 1; !completed; ++n) {
    std::istringstream stream(bytes);
    HashtableSQPair read(1);
    try {
      const FailAllocation failing(n);
      read.readObject(stream);
      completed = !failing.hasFailed();
    } catch (const std::bad_alloc&) {
    }
  }
  EXPECT_EQ(livingBlocks(), before);
}

}  // namespace

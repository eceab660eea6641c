// Binary files that are refused: each with its one message and one exception, and the dictionary
// can be read into again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "sequence/NTSequence.h"
#include "sequence/errorText.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/binaryParts.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;
using ::testing::StartsWith;

struct RefusedFile {
  std::string name;
  std::string bytes;
  const char* message;
  std::string place;  // the beginning of the exception's text
};

std::ostream& operator<<(std::ostream& out, const RefusedFile& row) { return out << row.name; }

using Rows = std::vector<RefusedFile>;

std::string numberName(std::int64_t number) {
  return (number < 0 ? "Minus" : "") + std::to_string(number < 0 ? -number : number);
}

// --- The rows ------------------------------------------------------------------------------------

void addHeads(Rows& rows) {
  rows.push_back({"B01_NoBytes", "", kDictionaryMessage, "offset 0x0, marker: "});
  rows.push_back({"B01_HalfAMarker", "S", kDictionaryMessage, "offset 0x0, marker: "});
  rows.push_back({"B01_AnotherMarker", "XX" + validBinary().substr(2), kDictionaryMessage,
                  "offset 0x0, marker: is not \"SD\""});
  rows.push_back({"B02_MarkerAlone", "SD", kDictionaryMessage, "offset 0x2, lattice flag: "});
  rows.push_back({"B04_SettingsMarker", "SD1XX" + validBinary().substr(5), kSettingsMessage,
                  "offset 0x3, marker: is not \"DS\" but 58 58"});
  for (std::size_t size = 0; size <= kSettingsBytes; ++size)
    rows.push_back({"B04_SettingsCutAfter" + std::to_string(size),
                    validBinary().substr(0, kHeadBytes + size),
                    size < kSettingsBytes ? kSettingsMessage : kTableMessage, "offset 0x"});
}

// Where the settings' number begins: the sizes of levels 0 to 7, the number of levels, the size of
// the levels above.
std::string settingsOffset(std::size_t number) {
  return orbseq::offsetText(kHeadBytes + 2 + 4 * number);
}
constexpr std::size_t kLevelsNumber = 8, kUpperSizeNumber = 9;

// Tables follow that would be read if the settings were taken.
RefusedFile settingsRow(const std::string& name, const TableSizes& sizes, std::int32_t levels,
                        std::size_t tables, std::size_t number, const std::string& fault) {
  std::string bytes = "SD1" + settingsBlock(sizes, levels);
  for (std::size_t i = 0; i < tables; ++i) bytes += tableBlock();
  return {name, bytes + tailBlock(), kSettingsMessage,
          settingsOffset(number) + ", settings: " + fault};
}

void addTableSizes(Rows& rows) {
  struct Size {
    const char* row;
    std::int32_t size;
  };
  for (const Size& bad : {Size{"B05", 0}, {"B06", -1}, {"B06", kLeast}, {"B07", kMost}})
    for (std::size_t level = 0; level < 8; ++level)
      rows.push_back(settingsRow(
          std::string(bad.row) + "_Size" + numberName(bad.size) + "OfLevel" + std::to_string(level),
          withSize(level, bad.size), 8, 8, level,
          "table size of level " + std::to_string(level) + " " + std::to_string(bad.size) +
              " is outside 1..4194304"));
  TableSizes halves = kSmallSizes;
  halves[2] = halves[6] = 1 << 21;
  rows.push_back(settingsRow("B08_TwoHalvesAndMore", halves, 8, 8, 0,
                             "sum of all table sizes 4194331 is outside 1..4194304"));
  rows.push_back(settingsRow("B08_ManyUpperLevels", withSize(8, 1 << 17), 64, 64, 0,
                             "sum of all table sizes 7340067 is outside 1..4194304"));
  std::int32_t others = 0;
  for (std::size_t level = 1; level < 8; ++level) others += kSmallSizes[level];
  rows.push_back(settingsRow("B08_OneBucketMoreThanAllowed", withSize(0, (1 << 22) - others + 1), 8,
                             8, 0, "sum of all table sizes 4194305 is outside 1..4194304"));
  for (const std::int32_t size : {0, -1, kLeast, kMost})
    rows.push_back(settingsRow(
        "B09_UpperSize" + numberName(size), withSize(8, size), 33, 33, kUpperSizeNumber,
        "table size of upper levels " + std::to_string(size) + " is outside 1..4194304"));
  for (const std::int32_t levels : {0, -1, kLeast, kMost, 1'000'000, 65})
    rows.push_back(settingsRow((levels == 0 ? "B11_Levels" : "B12_Levels") + numberName(levels),
                               kSmallSizes, levels, 3, kLevelsNumber,
                               "number of levels " + std::to_string(levels) + " is outside 1..64"));
}

// Entries are announced, and the first one ends within its item count.
std::string sixtyBytes() {
  std::string bytes = latticeFile({"HT" + ints({kMost})}).substr(0, kFirstTableAt + 6);
  bytes += std::string("NT:\0\0\0\0\0\0", 9);
  return bytes;
}

void addTables(Rows& rows) {
  struct Level {
    std::size_t level;
    const char* offset;
  };
  for (const Level& bad : {Level{0, "2D"}, {3, "3F"}, {5, "4B"}}) {
    const std::string level = std::to_string(bad.level);
    std::vector<std::string> tables(6, tableBlock());
    tables[bad.level][0] = 'X';
    rows.push_back(
        {"B13_MarkerOfLevel" + level, latticeFile(tables), kTableMessage,
         std::string("offset 0x") + bad.offset + ", level " + level + ", marker: is not \"HT\""});
  }
  rows.push_back({"B15_EntryCountOfSixtyBytes", sixtyBytes(), kSequenceMessage,
                  "offset 0x3B, level 0, entry 0, item count: the stream ends"});
}

// In level 1, behind an entry that can be read.
RefusedFile entryRow(const std::string& name, const std::string& entry, const char* message,
                     const std::string& fault) {
  return {name, fileWithEntry(entry), message, "offset 0x" + fault};
}

void addSequences(Rows& rows) {
  const std::string sequence = sequenceBlock(1, {7}, 1), counter = counterBlock(3);
  const std::string marker("NT:\0", 4), rest(8192, '\1');
  const std::string at = "8B, level 1, entry 1, ";
  rows.push_back(entryRow("B16_Marker", std::string("NX:\0", 4) + sequence.substr(4) + counter,
                          kSequenceMessage, at + "marker: is not \"NT:\""));
  rows.push_back(entryRow("B16_MarkerWithoutItsZero", "NT:1" + sequence.substr(4) + counter,
                          kSequenceMessage, at + "marker: is not \"NT:\""));
  for (const std::int32_t count : {33, 1000, kMost, -1, kLeast})
    rows.push_back(entryRow(
        (count > 0 ? "B17_ItemCount" : "B18_ItemCount") + numberName(count),
        marker + ints({1, count}) + rest, kSequenceMessage,
        "93, level 1, entry 1, item count: " + std::to_string(count) + " is outside 0..32"));
  struct Pattern {
    const char* name;
    std::string block;
    std::string fault;
  };
  const auto misfit = [](const char* offset, std::int32_t sets, std::int32_t bits, int items) {
    return std::string(offset) + ", level 1, entry 1, set count: " + std::to_string(sets) +
           " sets do not fit the pattern " + std::to_string(bits) + " of " + std::to_string(items) +
           " items";
  };
  for (const Pattern& bad : std::vector<Pattern>{
           {"B18_NoItemsButAPattern", marker + ints({5, 0, 0}), misfit("97", 0, 5, 0)},
           {"B18_NoItemsButSets", marker + ints({0, 0, 1}), misfit("97", 1, 0, 0)},
           {"B19_LastItemEndsNoSet", sequenceBlock(2, {7, 8}, 1), misfit("9F", 1, 2, 2)},
           {"B19_BitAboveTheItems", sequenceBlock(5, {7, 8}, 2), misfit("9F", 2, 5, 2)},
           {"B19_SignBitAboveTheItems", sequenceBlock(kLeast + 1, {7}, 2),
            misfit("9B", 2, kLeast + 1, 1)},
           {"B19_MoreEndsThanSets", sequenceBlock(3, {7, 8}, 1), misfit("9F", 1, 3, 2)},
           {"B19_FewerEndsThanSets", sequenceBlock(1, {7, 8}, 2), misfit("9F", 2, 1, 2)},
           {"B19_SetCountMinus5", sequenceBlock(1, {7}, -5), misfit("9B", -5, 1, 1)},
           {"B19_SetCount100", sequenceBlock(1, {7}, 100), misfit("9B", 100, 1, 1)},
           {"B19_PatternOfNoBits", sequenceBlock(0, {7}, 0), misfit("9B", 0, 0, 1)},
       })
    rows.push_back(entryRow(bad.name, bad.block + counter, kSequenceMessage, bad.fault));
}

std::string linkedEntry(std::int32_t pattern, std::initializer_list<std::int32_t> items,
                        std::int32_t sets, std::int32_t position) {
  return sequenceBlock(pattern, items, sets) + counterBlock(3, {9, position});
}

std::string misplaced(const char* offset, std::int32_t position, int sets, const char* allowed) {
  return std::string(offset) +
         ", level 1, entry 1, adjacent position: " + std::to_string(position) +
         " names no extension of a sequence of " + std::to_string(sets) +
         " item sets (allowed: " + allowed + ")";
}

void addCounters(Rows& rows) {
  const std::string sequence = sequenceBlock(1, {7}, 1), marker("SD\0", 3);
  rows.push_back(entryRow("B22_Marker",
                          sequence + std::string("SX\0", 3) + counterBlock(3).substr(3),
                          kCounterMessage, "9F, level 1, entry 1, marker: is not \"SD\""));
  for (const std::int32_t pairs : {-1, kLeast})
    rows.push_back(entryRow("B23_AdjacencyCount" + numberName(pairs),
                            sequence + marker + ints({3, 0, 0, pairs, 0}), kAdjacencyMessage,
                            "AE, level 1, entry 1, number of adjacent items: " +
                                std::to_string(pairs) + " is outside 0..2147483647"));
  rows.push_back({"B25_AdjacencyCount2147483647",
                  fileWithEntry(sequence + marker + ints({3, 0, 0, kMost, 8, 1, 9, 1}))
                      .substr(0, 0xAE + 4 + 16),
                  kCounterMessage,
                  "offset 0xC2, level 1, entry 1, adjacent item: the stream ends"});
  for (const std::int32_t position : {-1, kLeast, 2, 4, 5, kMost})
    rows.push_back(entryRow("B26_Position" + numberName(position) + "OfOneSet",
                            linkedEntry(1, {7}, 1, position), kTableMessage,
                            misplaced("B6", position, 1, "0..1, 3")));
  for (const std::int32_t position : {-2, 4, 6, 7})
    rows.push_back(entryRow("B26_Position" + numberName(position) + "OfTwoSets",
                            linkedEntry(3, {7, 8}, 2, position), kTableMessage,
                            misplaced("BA", position, 2, "0..3, 5")));
  for (const std::int32_t position : {0, 2, 3})
    rows.push_back(entryRow("B26_Position" + numberName(position) + "OfTheEmptySequence",
                            linkedEntry(0, {}, 0, position), kTableMessage,
                            misplaced("B2", position, 0, "1")));
  const std::string counted = sequence + marker + ints({3, 0, 0, 0});
  rows.push_back(entryRow("B28_StatisticsFlagMinus1", counted + ints({-1}), kStatisticsMessage,
                          "B2, level 1, entry 1, statistics flag: -1 is outside 0..2147483647"));
  rows.push_back(entryRow("B28_StatisticsMarker",
                          counted + ints({1}) + "SX" + reals({1.0, 1.0, 1.0, 1.0}),
                          kStatisticsMessage, "B6, level 1, entry 1, marker: is not \"SB\""));
}

Rows allRows() {
  Rows rows;
  addHeads(rows);
  addTableSizes(rows);
  addTables(rows);
  addSequences(rows);
  addCounters(rows);
  return rows;
}

// --- What must come of each ----------------------------------------------------------------------

class RefusedBinary : public ::testing::TestWithParam<RefusedFile> {};

TEST_P(RefusedBinary, HasOneMessageAndOneExceptionAndLeavesADictionaryToReadInto) {
  const RefusedFile& row = GetParam();
  const ValidLattice other;
  expectValidLattice(other.dictionary());  // makes what is made once
  const Meter meter(row.bytes.size());
  {
    SequenceDictionary fresh;
    const ReadOutcome outcome = readFileInto(fresh, row.bytes);
    EXPECT_EQ(outcome.printed, row.message);
    EXPECT_THAT(outcome.thrown, StartsWith(row.place));
    EXPECT_LT(meter.peakBytes(), std::size_t{1} << 20);  // whatever the numbers announce
  }
  meter.check();
  {
    SequenceDictionary used;
    EXPECT_FALSE(readFileInto(used, validBinary()).isRefused());
    const ReadOutcome outcome = readFileInto(used, row.bytes);
    EXPECT_EQ(outcome.printed, row.message);
    EXPECT_TRUE(outcome.isRefused());
    EXPECT_FALSE(readFileInto(used, validBinary()).isRefused());
    expectValidLattice(used);
  }
  meter.check();
  expectValidLattice(other.dictionary());
}

INSTANTIATE_TEST_SUITE_P(Hostile, RefusedBinary, ::testing::ValuesIn(allRows()),
                         nameOf<RefusedFile>);

// An answer within 10 ms, whatever the count announces; the best of some, as others may run.
TEST(BinaryB15, AnEntryCountWithoutEntriesTakesNoTime) {
  const std::string bytes = sixtyBytes();
  auto best = std::chrono::nanoseconds::max();
  for (int n = 0; n < 5; ++n) {
    const Meter meter(bytes.size());
    {
      SequenceDictionary read;
      EXPECT_TRUE(readFileInto(read, bytes).isRefused());
    }
    best = std::min(best, meter.elapsed());
    meter.check();
  }
  EXPECT_LT(best, std::chrono::milliseconds(10) * Meter::slowdown());
}

// The pairs that the count announces are kept as they come: at most 8 bytes for each that was read.
TEST(BinaryB25, AnAdjacencyCountTakesMemoryForWhatIsReadAlone) {
  constexpr std::int32_t kPairs = 1 << 17;  // 1 MiB
  std::string bytes =
      fileWithEntry(sequenceBlock(1, {7}, 1) + std::string("SD\0", 3) + ints({3, 0, 0, kMost}))
          .substr(0, 0xB2);
  for (std::int32_t item = 0; item < kPairs; ++item) bytes += ints({item, 1});
  const Meter meter(bytes.size());
  {
    SequenceDictionary read;
    const ReadOutcome outcome = readFileInto(read, bytes);
    EXPECT_EQ(outcome.printed, kCounterMessage);
    EXPECT_TRUE(outcome.isRefused());
    EXPECT_LE(meter.peakBytes(), 8 * bytes.size());
  }
  meter.check();
}

// Alone, a packed sequence with a count below 1 reads no items.
TEST(BinaryB18, AloneASequenceWithoutItemsIsReadAsEmpty) {
  for (const std::int32_t count : {-1, kLeast, 0}) {
    const std::string bytes = std::string("NT:\0", 4) + ints({5, count, 9});
    const Meter meter(bytes.size());
    {
      NTSequence read = packed("(4)");
      const ReadOutcome outcome = readFileInto(read, bytes);
      EXPECT_EQ(outcome.printed, "");
      EXPECT_FALSE(outcome.isRefused());
      EXPECT_TRUE(read == NTSequence());
      EXPECT_EQ(read.getNSets(), 0);
    }
    meter.check();
  }
}

}  // namespace

// Binary forms put together from parts, for the tests of readers.

#ifndef TESTS_HOSTILE_BINARYPARTS_H_
#define TESTS_HOSTILE_BINARYPARTS_H_

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/binaryImage.h"

namespace orbseq::test {

inline constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

// Where the parts of a stored lattice stand.
inline constexpr std::size_t kHeadBytes = 3;  // marker and flag
inline constexpr std::size_t kSettingsBytes = 42;
inline constexpr std::size_t kFirstTableAt = kHeadBytes + kSettingsBytes;

inline constexpr const char* kDictionaryMessage = "Error reading SequenceDictionary!\n";
inline constexpr const char* kSettingsMessage = "Error reading SeqDictionarySettings!\n";
inline constexpr const char* kTableMessage = "Error reading HashtableSQPair!\n";
inline constexpr const char* kSequenceMessage = "Failure reading NTSequence!\n";
inline constexpr const char* kCounterMessage = "Error reading SequenceCounter!\n";
inline constexpr const char* kAdjacencyMessage = "Error reading Sequence!\n";
inline constexpr const char* kStatisticsMessage = "Error reading StatsBucket!\n";

// A row of a table of tests; the name is the test's.
template <class Row>
std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

// --- Parts ---------------------------------------------------------------------------------------

// Initial buckets: of the levels 0 to 7, and of those above.
using TableSizes = std::array<std::int32_t, 9>;
inline constexpr TableSizes kSmallSizes = {2, 3, 5, 7, 7, 5, 3, 3, 3};

inline TableSizes withSize(std::size_t index, std::int32_t size) {
  TableSizes sizes = kSmallSizes;
  sizes[index] = size;
  return sizes;
}

inline std::string settingsBlock(const TableSizes& sizes, std::int32_t levels) {
  std::string bytes = "DS";
  for (std::size_t i = 0; i < 8; ++i) bytes += ints({sizes[i]});
  return bytes + ints({levels, sizes[8]});
}

// One string an entry.
inline std::string tableBlock(const std::vector<std::string>& entries = {}) {
  std::string bytes = "HT" + ints({static_cast<std::int32_t>(entries.size())});
  for (const std::string& entry : entries) bytes += entry;
  return bytes;
}

inline std::string emptySequenceEntry(std::int32_t count) {
  return sequenceBlock(0, {}, 0) + counterBlock(count);
}

inline std::string singleEntry(std::int32_t item, std::int32_t count) {
  return sequenceBlock(1, {item}, 1) + counterBlock(count);
}

inline const std::string& tailBlock() {
  static const std::string bytes = reals({0.0, 0.0, 0.0, 0.0});
  return bytes;
}

// A stored lattice with these tables, one a level.
inline std::string latticeFile(const std::vector<std::string>& tables,
                               const TableSizes& sizes = kSmallSizes) {
  std::string bytes = "SD1" + settingsBlock(sizes, static_cast<std::int32_t>(tables.size()));
  for (const std::string& table : tables) bytes += table;
  return bytes + tailBlock();
}

// Levels 0 to 3; level 1 holds the one entry that is given beside (5).
inline std::string fileWithEntry(const std::string& entry) {
  return latticeFile({tableBlock({emptySequenceEntry(10)}), tableBlock({singleEntry(5, 3), entry}),
                      tableBlock(), tableBlock()});
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_BINARYPARTS_H_

// The binary form of statistics, packed sequences, counters and tables.
//
// Counts that are returned are sums of what the form's parts are said to have, not measured.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <fstream>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "common/Limits.h"
#include "common/guards.h"
#include "sequence/BinaryReader.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/StatsBucket.h"
#include "sequence/binaryWriter.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::guarded;
using orbseq::Message;

namespace {

constexpr const char* kOutsideNatural = " is outside 0..2147483647";
constexpr std::string_view kStatisticsMarker = "SB";
constexpr std::string_view kSequenceMarker("NT:\0", 4);
constexpr std::string_view kCounterMarker("SD\0", 3);
constexpr std::string_view kTableMarker = "HT";

// Deliberate: four less than the bytes of the form; the sums of counters and tables rest on it.
constexpr std::uint64_t kStatisticsCount = 30;
constexpr std::uint64_t kTableHeadCount = 6;

std::uint64_t sequenceCount(std::int32_t items) {
  return 16 + 4 * static_cast<std::uint64_t>(items);
}

// Whether a pattern marks the ends of so many sets over so many items.
bool isPattern(std::int32_t pattern, std::int32_t items, std::int32_t sets) noexcept {
  const auto bits = static_cast<std::uint32_t>(pattern);
  if (items == 0) return bits == 0 && sets == 0;
  const bool isAboveItems = items < NTSequence::kMaxItems && (bits >> items) != 0;
  return (bits & 1U) != 0 && !isAboveItems && std::popcount(bits) == sets;
}

}  // namespace

// --- Statistics ----------------------------------------------------------------------------------

std::uint64_t StatsBucket::writeObject(std::ostream& os) const {
  writeMarker(os, kStatisticsMarker);
  for (const double value : {occurrences_, total_, minimum_, maximum_}) writeReal(os, value);
  return kStatisticsCount;
}

std::uint64_t StatsBucket::readObject(std::istream& is) {
  BinaryReader reader(is);
  return readObject(reader);
}

std::uint64_t StatsBucket::readObject(BinaryReader& reader) {
  const BinaryReader::Object object(reader, Message::kReadingStatistics);
  reader.marker(kStatisticsMarker);
  StatsBucket read;
  read.occurrences_ = reader.real("occurrences");
  read.total_ = reader.real("total");
  read.minimum_ = reader.real("minimum");
  read.maximum_ = reader.real("maximum");
  *this = read;
  return kStatisticsCount;
}

// --- Packed sequences ----------------------------------------------------------------------------

std::uint64_t NTSequence::writeObject(std::ostream& os) const {
  writeMarker(os, kSequenceMarker);
  writeInteger(os, pattern_);
  writeInteger(os, itemCount_);
  for (const std::int32_t item : items()) {
    if (!os) break;
    writeInteger(os, item);
  }
  writeInteger(os, setCount_);
  return sequenceCount(itemCount_);
}

std::uint64_t NTSequence::readObject(std::istream& is) {
  BinaryReader reader(is);
  readStored(reader, Strictness::kLenient);
  return sequenceCount(itemCount_);
}

std::uint64_t NTSequence::readObject(BinaryReader& reader) {
  readStored(reader, Strictness::kStrict);
  return sequenceCount(itemCount_);
}

void NTSequence::readStored(BinaryReader& reader, Strictness strictness) {
  const BinaryReader::Object object(reader, Message::kReadingSequence);
  reader.marker(kSequenceMarker);
  const std::int32_t pattern = reader.integer("pattern");
  const bool isStrict = strictness == Strictness::kStrict;
  const std::int32_t count =
      isStrict ? reader.integer("item count", 0, kMaxItems)
               : reader.integer("item count", std::numeric_limits<std::int32_t>::min(), kMaxItems);
  std::array<std::int32_t, kMaxItems> items;
  for (std::int32_t i = 0; i < count; ++i)
    items[static_cast<std::size_t>(i)] = reader.integer("item");
  const std::int32_t sets = reader.integer("set count");
  // Deliberate: alone, a count below 1 reads no items and is no error.
  const bool isEmpty = count < 1 && !isStrict;
  if (!isEmpty && !isPattern(pattern, count, sets) && guarded("binary.pattern"))
    reader.refuse("set count", std::to_string(sets) + " sets do not fit the pattern " +
                                   std::to_string(pattern) + " of " + std::to_string(count) +
                                   " items");
  becomeStored(isEmpty ? PackedSequence{} : PackedSequence{count, sets, 0, pattern, items.data()});
}

void NTSequence::becomeStored(const PackedSequence& stored) {
  reuseAs(&stored);
  if (itemCount_ > 0) computeHash();
}

bool NTSequence::isStorable(std::int32_t items, std::int32_t sets, std::int32_t pattern) noexcept {
  return items >= 0 && items <= kMaxItems && isPattern(pattern, items, sets);
}

// --- Counters ------------------------------------------------------------------------------------

std::uint64_t SequenceCounter::writeObject(std::ostream& os) const {
  writeMarker(os, kCounterMarker);
  for (const std::int32_t value : {count_, ordinalOfEntry_, maxMissed_, getNAdjacent()})
    writeInteger(os, value);
  if (adjacent_) {
    for (const auto& [item, position] : *adjacent_) {
      writeInteger(os, item);
      writeInteger(os, position);
    }
  }
  writeInteger(os, stats_ ? 1 : 0);
  return binaryCount() + (stats_ ? stats_->writeObject(os) : 0);
}

// Of everything but the statistics.
std::uint64_t SequenceCounter::binaryCount() const noexcept {
  return 19 + 8 * static_cast<std::uint64_t>(getNAdjacent()) + 4;
}

std::uint64_t SequenceCounter::readObject(std::istream& is) {
  BinaryReader reader(is);
  return readObject(reader);
}

std::uint64_t SequenceCounter::readObject(BinaryReader& reader, const NTSequence* key) {
  const BinaryReader::Object object(reader, Message::kReadingCounter);
  reader.marker(kCounterMarker);
  const std::int32_t count = reader.integer("count");
  const std::int32_t ordinal = reader.integer("ordinal of entry");
  const std::int32_t maxMissed = reader.integer("max missed");
  auto adjacent = readAdjacency(reader, key);
  auto stats = readStatistics(reader);

  count_ = count;
  ordinalOfEntry_ = ordinal;
  maxMissed_ = maxMissed;
  adjacent_ = std::move(adjacent);
  std::uint64_t total = binaryCount();
  if (stats) total += kStatisticsCount;
  stats_ = std::move(stats);
  return total;
}

std::unique_ptr<SequenceCounter::AdjacentItems> SequenceCounter::readAdjacency(
    BinaryReader& reader, const NTSequence* key) {
  std::int32_t count = 0;
  {
    count = reader.integer("number of adjacent items");
    const BinaryReader::Object object(reader, Message::kReadingAdjacency);
    if (count < 0 && guarded("binary.adjacency count"))
      reader.refuse("number of adjacent items", std::to_string(count) + kOutsideNatural);
  }
  if (count == 0) return nullptr;
  auto adjacent = std::make_unique<AdjacentItems>();
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t item = reader.integer("adjacent item");
    const std::int32_t position = reader.integer("adjacent position");
    if (key != nullptr && !key->isPosition(position) && guarded("binary.position")) {
      const BinaryReader::Object object(reader, Message::kReadingTable);
      reader.refuse("adjacent position", std::to_string(position) +
                                             " names no extension of a sequence of " +
                                             std::to_string(key->getNSets()) +
                                             " item sets (allowed: " + key->positionsText() + ")");
    }
    adjacent->emplace_hint(adjacent->end(), item, position);
  }
  return adjacent;
}

std::unique_ptr<StatsBucket> SequenceCounter::readStatistics(BinaryReader& reader) {
  const std::int32_t flag = reader.integer("statistics flag");
  if (flag == 0) return nullptr;
  if (flag < 0 && guarded("binary.statistics flag")) {
    const BinaryReader::Object object(reader, Message::kReadingStatistics);
    reader.refuse("statistics flag", std::to_string(flag) + kOutsideNatural);
  }
  auto stats = std::make_unique<StatsBucket>();
  stats->readObject(reader);
  return stats;
}

// --- Tables --------------------------------------------------------------------------------------

std::uint64_t HashtableSQPair::writeObject(std::ostream& os) const {
  const SequenceCounter none;
  writeMarker(os, kTableMarker);
  writeInteger(os, count_);
  std::uint64_t total = kTableHeadCount;
  for (const ISQCPair& entry : *this) {
    total += entry.key->writeObject(os);
    total += (entry.value != nullptr ? *entry.value : none).writeObject(os);
  }
  return total;
}

std::uint64_t HashtableSQPair::readObject(std::istream& is) {
  BinaryReader reader(is);
  return readObject(reader);
}

std::uint64_t HashtableSQPair::readObject(BinaryReader& reader) {
  const BinaryReader::Object object(reader, Message::kReadingTable);
  reader.marker(kTableMarker);
  const std::int32_t count = reader.integer("entry count");
  std::uint64_t total = kTableHeadCount;
  for (std::int32_t i = 0; i < count; ++i) {
    reader.setEntry(i);
    const std::uint64_t begin = reader.offset();
    auto key = std::make_unique<NTSequence>();
    total += key->readObject(reader);
    auto counter = std::make_unique<SequenceCounter>();
    total += counter->readObject(reader, key.get());
    if (const std::int32_t most = orbseq::mostInChain();
        orbseq::kGuards && chainLength(key.get(), most) == most && guarded("binary.chain"))
      reader.refuseAt(
          begin, "sequence",
          "more than " + std::to_string(most) + " sequences of the level share a bucket");
    putOverwrite(key.get(), counter.get());
    static_cast<void>(key.release());
    static_cast<void>(counter.release());
  }
  reader.setEntry(-1);
  return total;
}

// Whether every adjacent pair names an extension.
bool HashtableSQPair::fits(const NTSequence& key, const SequenceCounter& counter) noexcept {
  const auto* const adjacent = counter.getAdjacentItems();
  if (adjacent == nullptr) return true;
  return std::all_of(adjacent->begin(), adjacent->end(),
                     [&key](const auto& pair) { return key.isPosition(pair.second); });
}

// --- File streams --------------------------------------------------------------------------------

std::uint64_t NTSequence::writeObject(std::fstream& file) const {
  return writeObject(static_cast<std::ostream&>(file));
}

std::uint64_t NTSequence::readObject(std::fstream& file) {
  return readObject(static_cast<std::istream&>(file));
}

std::uint64_t SequenceCounter::writeObject(std::fstream& file) const {
  return writeObject(static_cast<std::ostream&>(file));
}

std::uint64_t SequenceCounter::readObject(std::fstream& file) {
  return readObject(static_cast<std::istream&>(file));
}

std::uint64_t HashtableSQPair::writeObject(std::fstream& file) const {
  return writeObject(static_cast<std::ostream&>(file));
}

std::uint64_t HashtableSQPair::readObject(std::fstream& file) {
  return readObject(static_cast<std::istream&>(file));
}

}  // namespace SEQUENCE_NAMESPACE_800

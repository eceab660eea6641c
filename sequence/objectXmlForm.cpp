// The form in objects and lines of XML (xml/XMLObj.h) of statistics, packed sequences, counters and
// tables. Counts that are returned are numbers of lines.

#include <array>
#include <cstddef>
#include <fstream>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <utility>

#include "common/Limits.h"
#include "common/guards.h"
#include "common/messages.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/StatsBucket.h"
#include "xml/XMLObj.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::guarded;
using orbseq::Message;
using OrbXML_830::ParseEndObj;
using OrbXML_830::ParseStartObj;
using OrbXML_830::ParseValue;
using OrbXML_830::XMLObj;

namespace {

const char* const kStatistics = "StatsBucket";
const char* const kSequence = "NTSequence";
const char* const kCounter = "SequenceCounter";
const char* const kTable = "HashtableSQPair";

constexpr std::int32_t kTableTabs = 2;
constexpr std::int32_t kEntryTabs = 4;
constexpr std::int32_t kStatisticsTabs = 5;

constexpr std::uint64_t kStatisticsLines = 6;
constexpr std::uint64_t kTableLines = 3;

std::uint64_t sequenceLines(std::int32_t items) { return 5 + static_cast<std::uint64_t>(items); }

// A 32-bit value that is stored as Long.
bool parseLong(std::istream& is, std::int32_t& value) {
  using Range = std::numeric_limits<std::int32_t>;
  long number = 0;
  if (!ParseValue(is, number)) return false;
  if ((number < Range::min() || number > Range::max()) && guarded("objectXml.pattern range"))
    return false;
  value = static_cast<std::int32_t>(number);
  return true;
}

// Prints the message of a failed read; the answer is what the reader returns then.
std::uint64_t failed(Message message, std::istream& is) {
  orbseq::print(message, is);
  return 0;
}

}  // namespace

// --- Statistics ----------------------------------------------------------------------------------

std::uint64_t StatsBucket::writeObjectXML(std::ostream& os) const {
  const XMLObj object(kStatistics, kStatisticsTabs);
  object.StartObj(os);
  for (const double value : {occurrences_, total_, minimum_, maximum_})
    object.WriteSubElement(os, value);
  object.EndObj(os);
  return kStatisticsLines;
}

std::uint64_t StatsBucket::readObjectXML(std::istream& is) {
  StatsBucket read;
  const bool ok = ParseStartObj(is, kStatistics) && ParseValue(is, read.occurrences_) &&
                  ParseValue(is, read.total_) && ParseValue(is, read.minimum_) &&
                  ParseValue(is, read.maximum_) && ParseEndObj(is);
  if (!ok) return failed(Message::kReadingStatistics, is);
  *this = read;
  return kStatisticsLines;
}

// --- Packed sequences ----------------------------------------------------------------------------

std::uint64_t NTSequence::writeObjectXML(std::ostream& os) const {
  const XMLObj object(kSequence, kEntryTabs);
  object.StartObj(os);
  object.WriteSubElement(os, static_cast<long>(pattern_));
  object.WriteSubElement(os, itemCount_);
  for (const std::int32_t item : items()) object.WriteSubElement(os, item);
  object.WriteSubElement(os, setCount_);
  object.EndObj(os);
  return sequenceLines(itemCount_);
}

std::uint64_t NTSequence::readObjectXML(std::istream& is) {
  PackedSequence stored;
  std::array<std::int32_t, kMaxItems> items;
  stored.items = items.data();
  bool ok = ParseStartObj(is, kSequence) && parseLong(is, stored.pattern) &&
            ParseValue(is, stored.itemCount) &&
            !(stored.itemCount > kMaxItems && guarded("objectXml.item count"));
  for (std::int32_t i = 0; ok && i < stored.itemCount; ++i)
    ok = ParseValue(is, items[static_cast<std::size_t>(i)]);
  ok = ok && ParseValue(is, stored.setCount) && ParseEndObj(is) &&
       (isStorable(stored.itemCount, stored.setCount, stored.pattern) ||
        !guarded("objectXml.pattern"));
  if (!ok) return failed(Message::kReadingSequence, is);
  becomeStored(stored);
  return sequenceLines(itemCount_);
}

// --- Counters ------------------------------------------------------------------------------------

std::uint64_t SequenceCounter::writeObjectXML(std::ostream& os) const {
  const XMLObj object(kCounter, kEntryTabs);
  object.StartObj(os);
  for (const std::int32_t value : {count_, ordinalOfEntry_, maxMissed_, getNAdjacent()})
    object.WriteSubElement(os, value);
  if (adjacent_) {
    for (const auto& [item, position] : *adjacent_) {
      object.WriteSubElement(os, item);
      object.WriteSubElement(os, position);
    }
  }
  object.WriteSubElement(os, stats_ ? 1 : 0);
  const std::uint64_t statisticsLines = stats_ ? stats_->writeObjectXML(os) : 0;
  object.EndObj(os);
  return xmlLines() + statisticsLines;
}

// Of everything but the statistics.
std::uint64_t SequenceCounter::xmlLines() const noexcept {
  return 7 + 2 * static_cast<std::uint64_t>(getNAdjacent());
}

std::uint64_t SequenceCounter::readObjectXML(std::istream& is) {
  std::int32_t count = 0;
  std::int32_t ordinal = 0;
  std::int32_t maxMissed = 0;
  std::int32_t pairs = 0;
  bool ok = ParseStartObj(is, kCounter) && ParseValue(is, count) && ParseValue(is, ordinal) &&
            ParseValue(is, maxMissed) && ParseValue(is, pairs);
  if (ok && pairs < 0 && guarded("objectXml.adjacency count"))
    return failed(Message::kReadingAdjacency, is);
  auto adjacent = pairs > 0 ? std::make_unique<AdjacentItems>() : nullptr;
  for (std::int32_t i = 0; ok && i < pairs; ++i) {
    std::int32_t item = 0;
    std::int32_t position = 0;
    ok = ParseValue(is, item) && ParseValue(is, position);
    if (ok) adjacent->emplace_hint(adjacent->end(), item, position);
  }
  std::int32_t flag = 0;
  ok = ok && ParseValue(is, flag);
  if (!ok) return failed(Message::kReadingCounter, is);
  if (flag < 0 && guarded("objectXml.statistics flag"))
    return failed(Message::kReadingStatistics, is);
  auto stats = flag > 0 ? std::make_unique<StatsBucket>() : nullptr;
  if (stats && stats->readObjectXML(is) == 0) return 0;  // the message is printed
  if (!ParseEndObj(is)) return failed(Message::kReadingCounter, is);

  count_ = count;
  ordinalOfEntry_ = ordinal;
  maxMissed_ = maxMissed;
  adjacent_ = std::move(adjacent);
  stats_ = std::move(stats);
  return xmlLines() + (stats_ ? kStatisticsLines : 0);
}

// --- Tables --------------------------------------------------------------------------------------

std::uint64_t HashtableSQPair::writeObjectXML(std::ostream& os) const {
  const SequenceCounter none;
  const XMLObj object(kTable, kTableTabs);
  object.StartObj(os);
  object.WriteSubElement(os, count_);
  std::uint64_t total = kTableLines;
  for (const ISQCPair& entry : *this) {
    total += entry.key->writeObjectXML(os);
    total += (entry.value != nullptr ? *entry.value : none).writeObjectXML(os);
  }
  object.EndObj(os);
  return total;
}

std::uint64_t HashtableSQPair::readObjectXML(std::istream& is) {
  std::int32_t count = 0;
  if (!ParseStartObj(is, kTable) || !ParseValue(is, count)) return 0;
  std::uint64_t total = kTableLines;
  for (std::int32_t i = 0; i < count; ++i) {
    auto key = std::make_unique<NTSequence>();
    const std::uint64_t keyLines = key->readObjectXML(is);
    if (keyLines == 0) return 0;
    auto counter = std::make_unique<SequenceCounter>();
    const std::uint64_t counterLines = counter->readObjectXML(is);
    if (counterLines == 0) return 0;
    if (orbseq::kGuards && !fits(*key, *counter) && guarded("objectXml.position")) return 0;
    if (const std::int32_t most = orbseq::mostInChain();
        orbseq::kGuards && chainLength(key.get(), most) == most && guarded("objectXml.chain"))
      return 0;
    putOverwrite(key.get(), counter.get());
    static_cast<void>(key.release());
    static_cast<void>(counter.release());
    total += keyLines + counterLines;
  }
  return ParseEndObj(is) ? total : 0;
}

// --- File streams --------------------------------------------------------------------------------

std::uint64_t NTSequence::readObjectXML(std::fstream& file) {
  return readObjectXML(static_cast<std::istream&>(file));
}

std::uint64_t SequenceCounter::readObjectXML(std::fstream& file) {
  return readObjectXML(static_cast<std::istream&>(file));
}

std::uint64_t HashtableSQPair::readObjectXML(std::fstream& file) {
  return readObjectXML(static_cast<std::istream&>(file));
}

}  // namespace SEQUENCE_NAMESPACE_800

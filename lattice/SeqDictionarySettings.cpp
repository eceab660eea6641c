#include "lattice/SeqDictionarySettings.h"

#include <cstddef>
#include <istream>
#include <ostream>
#include <string>
#include <utility>

#include "common/guards.h"
#include "common/messages.h"
#include "sequence/BinaryReader.h"
#include "sequence/SeqExceptions.h"
#include "sequence/binaryWriter.h"
#include "xml/XMLObj.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::guarded;

namespace {

const char* const kObject = "DictionarySettings";
constexpr std::int32_t kTabs = 2;
constexpr std::uint64_t kBinaryCount = 42;
constexpr std::uint64_t kXmlLines = 12;

struct Fault {
  std::size_t field;  // its number, from 0, as they are stored
  std::string text;   // empty: there is none
};
constexpr std::size_t kLevelsField = 8, kUpperSizeField = 9;

// What stored settings do wrong: no table is made of numbers that were not looked at.
Fault faultOf(const SeqDictionarySettings& settings) {
  const std::string range = " is outside 1..";
  const auto faultOfSize = [&range](const std::string& name, std::int32_t size) {
    constexpr std::int32_t kMost = SeqDictionarySettings::kMaxStoredBuckets;
    return (size >= 1 && size <= kMost) || !guarded("settings.table size")
               ? std::string()
               : name + " " + std::to_string(size) + range + std::to_string(kMost);
  };
  for (std::size_t i = 0; i < settings.levelTableSize.size(); ++i) {
    std::string fault =
        faultOfSize("table size of level " + std::to_string(i), settings.levelTableSize[i]);
    if (!fault.empty()) return {i, std::move(fault)};
  }
  std::string fault = faultOfSize("table size of upper levels", settings.upperTableSize);
  if (!fault.empty()) return {kUpperSizeField, std::move(fault)};
  const std::int32_t levels = settings.numLevels;
  if ((levels < 1 || levels > SeqDictionarySettings::kMaxStoredLevels) &&
      guarded("settings.number of levels"))
    return {kLevelsField, "number of levels " + std::to_string(levels) + range +
                              std::to_string(SeqDictionarySettings::kMaxStoredLevels)};
  std::int64_t buckets = 0;
  for (std::int32_t i = 0; i < levels; ++i) buckets += settings.tableSizeOf(i);
  if (buckets > SeqDictionarySettings::kMaxStoredBuckets && guarded("settings.all buckets"))
    return {0, "sum of all table sizes " + std::to_string(buckets) + range +
                   std::to_string(SeqDictionarySettings::kMaxStoredBuckets)};
  return {};
}

}  // namespace

// Deliberate: numLevels stands before upperTableSize, in both forms.
std::uint64_t SeqDictionarySettings::writeObject(std::ostream& os) const {
  writeMarker(os, "DS");
  for (const std::int32_t size : levelTableSize) writeInteger(os, size);
  writeInteger(os, numLevels);
  writeInteger(os, upperTableSize);
  return kBinaryCount;
}

std::uint64_t SeqDictionarySettings::readObject(BinaryReader& reader) {
  const BinaryReader::Object object(reader, orbseq::Message::kReadingSettings);
  reader.marker("DS");
  const std::uint64_t begin = reader.offset();
  SeqDictionarySettings read = *this;
  for (std::int32_t& size : read.levelTableSize) size = reader.integer("table size");
  read.numLevels = reader.integer("number of levels");
  read.upperTableSize = reader.integer("table size of upper levels");
  const Fault fault = faultOf(read);
  if (!fault.text.empty())
    reader.refuseAt(begin + fault.field * sizeof(std::int32_t), "settings", fault.text);
  *this = read;
  return kBinaryCount;
}

std::uint64_t SeqDictionarySettings::readObject(std::istream& is) {
  BinaryReader reader(is);
  return readObject(reader);
}

std::uint64_t SeqDictionarySettings::writeObjectXML(std::ostream& os) const {
  const OrbXML_830::XMLObj object(kObject, kTabs);
  object.StartObj(os);
  for (const std::int32_t size : levelTableSize) object.WriteSubElement(os, size);
  object.WriteSubElement(os, numLevels);
  object.WriteSubElement(os, upperTableSize);
  object.EndObj(os);
  return kXmlLines;
}

std::uint64_t SeqDictionarySettings::readObjectXML(std::istream& is) {
  SeqDictionarySettings read = *this;
  bool ok = OrbXML_830::ParseStartObj(is, kObject);
  for (std::int32_t& size : read.levelTableSize) ok = ok && OrbXML_830::ParseValue(is, size);
  ok = ok && OrbXML_830::ParseValue(is, read.numLevels) &&
       OrbXML_830::ParseValue(is, read.upperTableSize) && OrbXML_830::ParseEndObj(is);
  const std::string fault = ok ? faultOf(read).text : "cannot be read";
  if (!fault.empty()) {
    orbseq::print(orbseq::Message::kReadingSettings, is);
    throw new SeqExceptions::IOException(std::string(kObject) + ": " + fault);
  }
  *this = read;
  return kXmlLines;
}

}  // namespace SEQUENCE_NAMESPACE_800

// The form of a dictionary in objects and lines of XML. Counts that are returned are numbers of
// lines.

#include <fstream>
#include <istream>
#include <ostream>
#include <string>

#include "common/guards.h"
#include "common/messages.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/SeqExceptions.h"
#include "xml/XMLObj.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::guarded;
using OrbXML_830::ParseEndObj;
using OrbXML_830::ParseStartObj;
using OrbXML_830::ParseValue;

namespace {

const char* const kObject = "SequenceDictionary";
constexpr std::int32_t kTabs = 1;

constexpr std::uint64_t kHeadLines = 3;      // the bracket's start and two integers
constexpr std::uint64_t kTailLines = 5;      // four doubles and the bracket's end
constexpr std::uint64_t kReadHeadLines = 3;  // the two integers, and one
constexpr std::uint64_t kReadTailLines = 4;

}  // namespace

std::uint64_t SequenceDictionary::writeObjectXML(std::ostream& os) const {
  if (!os) {
    orbseq::print(orbseq::Message::kSavingDictionaryXml, os);
    throw new SeqExceptions::IOException("the stream to save a lattice to has failed");
  }
  const OrbXML_830::XMLObj object(kObject, kTabs);
  object.StartObj(os);
  object.WriteSubElement(os, latticeBuilt_ ? 1 : 0);
  // Deliberate: tables above a gap in the levels are not written.
  const std::int32_t largest = LargestSequence();
  object.WriteSubElement(os, largest);
  storedSettings().writeObjectXML(os);
  std::uint64_t total = kHeadLines;
  const HashtableSQPair none(0);
  for (std::int32_t i = 0; i <= largest; ++i) {
    const HashtableSQPair* const table = level(i);
    total += (table != nullptr ? *table : none).writeObjectXML(os);
  }
  for (const double value : {reductionThreshold_, slidingWindow_, minGap_, maxGap_})
    object.WriteSubElement(os, value);
  object.EndObj(os);
  return total + kTailLines;
}

std::uint64_t SequenceDictionary::readObjectXML(std::istream& is, const char* name) {
  int isBuilt = 0;
  std::int32_t largest = 0;
  const bool isHead = ParseStartObj(is, name != nullptr ? name : kObject) &&
                      ParseValue(is, isBuilt) && ParseValue(is, largest);
  if (!isHead) return 0;
  SeqDictionarySettings settings;
  std::uint64_t total = kReadHeadLines + settings.readObjectXML(is);
  if ((largest < -1 || largest >= settings.numLevels) && guarded("objectXml.largest level"))
    return 0;

  createDictionary(settings);
  latticeBuilt_ = isBuilt == 1;
  for (std::int32_t i = 0; i <= largest; ++i) {
    const std::uint64_t lines = level(i)->readObjectXML(is);
    if (lines == 0) return 0;
    total += lines;
  }
  double reductionThreshold = 0.0;
  double slidingWindow = 0.0;
  double minGap = 0.0;
  double maxGap = 0.0;
  const bool isTail = ParseValue(is, reductionThreshold) && ParseValue(is, slidingWindow) &&
                      ParseValue(is, minGap) && ParseValue(is, maxGap) && ParseEndObj(is);
  if (!isTail) return 0;
  reductionThreshold_ = reductionThreshold;
  slidingWindow_ = slidingWindow;
  minGap_ = minGap;
  maxGap_ = maxGap;
  return total + kReadTailLines;
}

std::uint64_t SequenceDictionary::readObjectXML(std::istream& is) {
  return readObjectXML(is, nullptr);
}

std::uint64_t SequenceDictionary::readObjectXML(std::fstream& file) {
  return readObjectXML(static_cast<std::istream&>(file), nullptr);
}

std::uint64_t SequenceDictionary::readObjectXML(std::fstream& file, const char* name) {
  return readObjectXML(static_cast<std::istream&>(file), name);
}

}  // namespace SEQUENCE_NAMESPACE_800

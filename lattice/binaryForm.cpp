// The binary form of a dictionary.

#include <cstddef>
#include <fstream>
#include <istream>
#include <ostream>

#include "common/messages.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/BinaryReader.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/SeqExceptions.h"
#include "sequence/binaryWriter.h"

namespace SEQUENCE_NAMESPACE_800 {

using orbseq::Message;

namespace {

// Marker and flag, and the four doubles.
// Deliberate: the settings are not among what is counted, neither written nor read.
constexpr std::uint64_t kHeadCount = 3;
constexpr std::uint64_t kTailCount = 32;

}  // namespace

std::uint64_t SequenceDictionary::writeObject(std::ostream& os) const {
  if (!os) {
    orbseq::print(Message::kSavingDictionary, os);
    throw new SeqExceptions::IOException("the stream to save a lattice to has failed");
  }
  writeMarker(os, "SD");
  writeMarker(os, latticeBuilt_ ? "1" : "0");
  storedSettings().writeObject(os);
  std::uint64_t total = kHeadCount;
  const HashtableSQPair none(0);
  for (std::int32_t i = 0; i < numLevels_; ++i) {
    const HashtableSQPair* const table = level(i);
    total += (table != nullptr ? *table : none).writeObject(os);
  }
  for (const double value : {reductionThreshold_, slidingWindow_, minGap_, maxGap_})
    writeReal(os, value);
  os.flush();
  return total + kTailCount;
}

// As they are but for the number of levels, which is what is really there.
SeqDictionarySettings SequenceDictionary::storedSettings() const noexcept {
  SeqDictionarySettings settings = settings_;
  settings.numLevels = numLevels_;
  return settings;
}

std::uint64_t SequenceDictionary::readObject(std::istream& is) {
  BinaryReader reader(is);
  const BinaryReader::Object object(reader, Message::kReadingDictionary);
  reader.marker("SD");
  const bool isBuilt = reader.byte("lattice flag") == '1';
  SeqDictionarySettings settings;
  settings.readObject(reader);
  createDictionary(settings);
  latticeBuilt_ = isBuilt;
  std::uint64_t total = kHeadCount;
  for (std::int32_t i = 0; i < numLevels_; ++i) {
    reader.setLevel(i);
    total += level(i)->readObject(reader);
  }
  reader.setLevel(-1);
  const double reductionThreshold = reader.real("reduction threshold");
  const double slidingWindow = reader.real("sliding window");
  const double minGap = reader.real("minimum gap");
  const double maxGap = reader.real("maximum gap");
  reductionThreshold_ = reductionThreshold;
  slidingWindow_ = slidingWindow;
  minGap_ = minGap;
  maxGap_ = maxGap;
  return total + kTailCount;
}

std::uint64_t SequenceDictionary::writeObject(std::fstream& file) const {
  return writeObject(static_cast<std::ostream&>(file));
}

std::uint64_t SequenceDictionary::readObject(std::fstream& file) {
  return readObject(static_cast<std::istream&>(file));
}

}  // namespace SEQUENCE_NAMESPACE_800

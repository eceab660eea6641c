// How large the tables of a dictionary start, and how many levels it has.
//
// Plain value. The bucket counts fix the order of the tables until they grow, and with it the
// order of exports.

#ifndef LATTICE_SEQDICTIONARYSETTINGS_H_
#define LATTICE_SEQDICTIONARYSETTINGS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "common/Limits.h"
#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader;

struct ORBSEQ_EXPORT SeqDictionarySettings {
  // Initial buckets of levels 0 to 7. Level 0 holds the empty sequence alone. The defaults are
  // tuned for lattices whose middle levels are the largest.
  std::array<std::int32_t, 8> levelTableSize = {2, 11519, 23039, 23039, 23039, 23039, 11519, 11519};
  // Initial buckets of every level from 8 up.
  std::int32_t upperTableSize = 89;
  // Number of levels; level n holds the sequences of n items.
  std::int32_t numLevels = 10;
  // Copied with the others, never read and never stored.
  std::int32_t reserved = 0;

  // Initial buckets of a level. Requires level >= 0.
  std::int32_t tableSizeOf(std::int32_t level) const noexcept {
    const auto index = static_cast<std::size_t>(level);
    return index < levelTableSize.size() ? levelTableSize[index] : upperTableSize;
  }

  // What stored settings may ask for. Never clamped, since the sizes fix the order.
  static constexpr std::int32_t kMaxStoredLevels = orbseq::LatticeLimits::kLevels;
  static constexpr std::int32_t kMaxStoredBuckets =  // of all levels together
      orbseq::LatticeLimits::kBuckets;

  // Stored forms: binary, and objects in lines of XML (xml/XMLObj.h). Each answers its promised
  // count. Sizes below 1 and whatever is beyond the limits are refused: the readers print their
  // message, throw SeqExceptions::IOException by pointer, and change nothing.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(BinaryReader& reader);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  std::uint64_t readObjectXML(std::istream& is);
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_SEQDICTIONARYSETTINGS_H_

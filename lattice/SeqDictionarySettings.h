// How large the tables of a dictionary start, and how many levels it has.
//
// Plain value. The bucket counts fix the order of the tables until they grow, and with it the
// order of exports.

#ifndef LATTICE_SEQDICTIONARYSETTINGS_H_
#define LATTICE_SEQDICTIONARYSETTINGS_H_

#include <array>
#include <cstdint>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

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
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_SEQDICTIONARYSETTINGS_H_

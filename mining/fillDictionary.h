// Mined sequences as a lattice.

#ifndef MINING_FILLDICTIONARY_H_
#define MINING_FILLDICTIONARY_H_

#include <cstdint>

#include "lattice/SeqDictionarySettings.h"
#include "mining/MinerOptions.h"
#include "mining/PatternTree.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceDictionary;
}

namespace orbseq {

// Tables that hold the sequences without growing, as far as a stored lattice may have them, and a
// level for each size.
SEQUENCE_NAMESPACE_800::SeqDictionarySettings settingsFor(const PatternTree& tree);

// Stores every sequence with its count, and the empty one with the number of customers. What was
// asked for becomes the lattice's threshold, gaps and window (the span); a bound that was not set
// is 0. Links are left to buildLattice(). Throws SeqExceptions::DictionaryFailure.
void fillDictionary(const PatternTree& tree, std::int32_t customers, const MinerOptions& options,
                    SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary);

}  // namespace orbseq

#endif  // MINING_FILLDICTIONARY_H_

// From a dictionary to its compiled form.

#ifndef ENGINE_COMPILE_H_
#define ENGINE_COMPILE_H_

#include "common/OrbExport.h"
#include "engine/CompiledLattice.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceDictionary;
}

namespace orbseq::engine {

// Everything that the dictionary's queries answer from: its counts, and its links as they stand.
// The same dictionary gives the same bytes. The dictionary is only read. Cost: a look-up a link at
// the front or the end; some 100 bytes of memory a sequence meanwhile. Errors: std::bad_alloc;
// std::length_error for more than 2^30 - 1 sequences, or 2^32 - 2 links.
ORBSEQ_EXPORT CompiledLattice compile(const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary);

}  // namespace orbseq::engine

#endif  // ENGINE_COMPILE_H_

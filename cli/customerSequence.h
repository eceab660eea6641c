// Customers of a log as sequences.

#ifndef CLI_CUSTOMERSEQUENCE_H_
#define CLI_CUSTOMERSEQUENCE_H_

#include <cstddef>

#include "mining/SequenceDatabase.h"
#include "sequence/Sequence.h"

namespace orbseq {

// The item sets first .. last - 1 of the database, with their times.
SEQUENCE_NAMESPACE_800::Sequence sequenceOf(const SequenceDatabase& database, std::size_t first,
                                            std::size_t last);

// A customer's whole history.
SEQUENCE_NAMESPACE_800::Sequence historyOf(const SequenceDatabase& database, std::size_t customer);

}  // namespace orbseq

#endif  // CLI_CUSTOMERSEQUENCE_H_

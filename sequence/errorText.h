// One line of text for whatever was thrown.

#ifndef SEQUENCE_ERRORTEXT_H_
#define SEQUENCE_ERRORTEXT_H_

#include <cstdint>
#include <string>

#include "common/OrbExport.h"

namespace orbseq {

// The text of the exception that is being handled, without line feeds. Requires a call from within
// a catch block. Every family that this system throws is known: standard exceptions (the host's
// among them), DictionaryFailure, a status by value, and an IOException by pointer, which is
// deleted here: it is the pointer's catcher. Anything else gives "unknown failure".
ORBSEQ_EXPORT std::string describeCurrentException();

// A place in bytes, as messages name it: "offset 0x1A4".
ORBSEQ_EXPORT std::string offsetText(std::uint64_t offset);

}  // namespace orbseq

#endif  // SEQUENCE_ERRORTEXT_H_

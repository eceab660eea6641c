// How large a document may be, by the name that the host's callers know (common/Limits.h).

#ifndef HOST_DOCUMENTLIMITS_H_
#define HOST_DOCUMENTLIMITS_H_

#include "common/Limits.h"

namespace OrbScore {

// What goes beyond a limit is refused with an error that tells the limit and, for the two that a
// user can raise from the command line, the option's name.
using orbseq::DocumentLimits;

}  // namespace OrbScore

#endif  // HOST_DOCUMENTLIMITS_H_

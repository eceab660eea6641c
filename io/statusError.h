// The status of a lattice's operation as an exception.

#ifndef IO_STATUSERROR_H_
#define IO_STATUSERROR_H_

#include <new>
#include <stdexcept>
#include <string>

#include "common/OrbStatus.h"
#include "lattice/statusCodes.h"

namespace orbseq {

// Throws for an error: std::bad_alloc for the code of a failure, which only lack of memory causes.
inline void throwIfError(const OrbCommon_830::OrbStatus& status) {
  if (!status.IsError()) return;
  if (status.GetErrorCode() == SEQUENCE_NAMESPACE_800::kFailure) throw std::bad_alloc();
  throw std::logic_error("the lattice answered with the error status " +
                         std::to_string(status.GetErrorCode()));
}

}  // namespace orbseq

#endif  // IO_STATUSERROR_H_

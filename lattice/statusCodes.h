// The error codes that a lattice's operations answer with.

#ifndef LATTICE_STATUSCODES_H_
#define LATTICE_STATUSCODES_H_

#include <cstdint>

namespace SEQUENCE_NAMESPACE_800 {

constexpr std::int32_t kCancelled = 1;    // setCancel() was called
constexpr std::int32_t kFailure = 60000;  // something failed inside, memory as a rule

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_STATUSCODES_H_

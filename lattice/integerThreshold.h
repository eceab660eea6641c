// From a threshold as it was computed to the whole number of customers that it means.

#ifndef LATTICE_INTEGERTHRESHOLD_H_
#define LATTICE_INTEGERTHRESHOLD_H_

#include <cstdint>

namespace SEQUENCE_NAMESPACE_800 {

// A threshold that is an integer but for the noise of its computation is that integer; any other is
// raised to the next one. Deliberate: so a negative one is raised too, -2.5 to -1 and -0.4 to 1.
// Beyond 64 bits the nearest; a NaN is 0.
std::int64_t toIntegerThreshold(double threshold) noexcept;

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_INTEGERTHRESHOLD_H_

// The system-missing value of a numeric field: the most negative finite double.

#ifndef COMMON_ORBMV_H_
#define COMMON_ORBMV_H_

#include <limits>

#include "common/OrbExport.h"

namespace OrbCommon_830 {

class ORBSEQ_EXPORT OrbMV {
 public:
  static constexpr double Missing() noexcept { return gMissingValue; }

  // Exact equality, no tolerance: a NaN and an infinity are not missing.
  static constexpr bool IsMissing(double x) noexcept { return x == gMissingValue; }

 private:
  static constexpr double gMissingValue = std::numeric_limits<double>::lowest();
};

}  // namespace OrbCommon_830

#endif  // COMMON_ORBMV_H_

// Exponentials, powers and products that never overflow: a result that would is
// the system-missing value, one that would underflow is 0.
//
// Static, without state. Threads: any. Errors: none; Power and Exponent tell
// what happened.

#ifndef COMMON_ORBPOWER_H_
#define COMMON_ORBPOWER_H_

#include <cstdint>

#include "common/OrbExport.h"

namespace OrbMath_830 {

enum PowerStatus : std::int32_t {
  kOK = 0,
  kUnderflow = 1,             // result 0.0, or -0.0 for a negative base and an odd exponent
  kOverflow = 2,              // result missing
  kNegativeBaseOverflow = 3,  // negative base, odd or reciprocal-odd exponent > 0; missing
  kNegativeBaseFraction = 4,  // negative base, any other exponent; missing
  kNegativeBaseZero = 5,      // negative base, exponent 0; result 1.0
  kZeroBaseNegative = 6,      // base 0, negative exponent; missing
  kZeroBaseZero = 7,          // base 0, exponent 0; result 1.0
};

class ORBSEQ_EXPORT OrbPower {
 public:
  // The arguments between which the exponential is computed.
  static constexpr double MaxExp() noexcept { return gMachineMaxExp; }
  static constexpr double MinExp() noexcept { return gMachineMinExp; }
  static constexpr double MaxInt() noexcept { return gMachineMaxInt; }
  static constexpr double MEpsilon() noexcept { return gMachineEpsilon; }

  static bool ExpOverflow(double x) noexcept { return x > gMachineMaxExp; }
  static bool ExpUnderflow(double x) noexcept { return x < gMachineMinExp; }

  // Whole numbers up to 2147483647. Deliberate: without a lower bound.
  static bool IsInteger(double x) noexcept;
  static bool IsEvenInteger(double x) noexcept;
  static bool IsOddInteger(double x) noexcept;

  // Whether a and b differ, relative to the larger, by at most `factor` machine
  // epsilons. Numbers of different signs, and 0 and any other number, never do.
  static bool AlmostEqual(double a, double b, double factor) noexcept;

  // Whether 1 / y is such an integer, as AlmostEqual sees it. False for 0.
  static bool IsOneOverOddInteger(double y, double factor) noexcept;
  static bool IsOneOverEvenInteger(double y, double factor) noexcept;

  static PowerStatus Exponent(double x, double& result) noexcept;  // e to the x
  static PowerStatus Power(double x, double y,
                           double& result) noexcept;  // x to the y
  // Deliberate: through logarithms, with their rounding, and not the machine's
  // product.
  static double Multiply(double a, double b) noexcept;

 private:
  static constexpr double gMachineMaxExp = 709.0;
  static constexpr double gMachineMinExp = -708.39;
  static constexpr double gMachineMaxInt = 2147483647.0;
  static constexpr double gMachineEpsilon = 2.220446049250313e-16;  // 2^-52
};

}  // namespace OrbMath_830

#endif  // COMMON_ORBPOWER_H_

#include "common/OrbPower.h"

#include <algorithm>
#include <cmath>

#include "common/OrbMV.h"

namespace OrbMath_830 {

using OrbCommon_830::OrbMV;

namespace {

constexpr double kReciprocalFactor = 32.0;  // lets 1/3 pass, despite the rounding of 1 / y

}  // namespace

bool OrbPower::IsInteger(double x) noexcept { return x <= gMachineMaxInt && std::floor(x) == x; }

bool OrbPower::IsEvenInteger(double x) noexcept {
  return IsInteger(x) && std::floor(x * 0.5) == x * 0.5;
}

bool OrbPower::IsOddInteger(double x) noexcept {
  const double half = x * 0.5 + 0.5;
  return IsInteger(x) && std::floor(half) == half;
}

bool OrbPower::AlmostEqual(double a, double b, double factor) noexcept {
  if (a == 0.0) return b == 0.0;
  if (b == 0.0 || (a < 0.0) != (b < 0.0)) return false;
  const double difference = std::abs(a) - std::abs(b);
  const double larger = difference < 0.0 ? std::abs(b) : std::abs(a);
  return gMachineEpsilon * factor >= std::abs(difference) / larger;
}

bool OrbPower::IsOneOverOddInteger(double y, double factor) noexcept {
  if (y == 0.0) return false;
  const double reciprocal = 1.0 / y;
  if (reciprocal > gMachineMaxInt) return false;
  const double half = reciprocal * 0.5 + 0.5;
  return AlmostEqual(half, std::floor(half + 0.5), factor);
}

bool OrbPower::IsOneOverEvenInteger(double y, double factor) noexcept {
  if (y == 0.0) return false;
  const double reciprocal = 1.0 / y;
  if (reciprocal > gMachineMaxInt) return false;
  const double half = reciprocal * 0.5;
  return AlmostEqual(half, std::floor(half + 0.5), factor);
}

PowerStatus OrbPower::Exponent(double x, double& result) noexcept {
  if (ExpUnderflow(x)) {
    result = 0.0;
    return kUnderflow;
  }
  if (ExpOverflow(x)) {
    result = OrbMV::Missing();
    return kOverflow;
  }
  result = std::exp(x);
  return kOK;
}

PowerStatus OrbPower::Power(double x, double y, double& result) noexcept {
  result = OrbMV::Missing();
  if (x == 0.0) {
    if (y == 0.0) {
      result = 1.0;
      return kZeroBaseZero;
    }
    if (!(y > 0.0)) return kZeroBaseNegative;
    result = 0.0;
    return kOK;
  }
  if (x > 0.0) {
    if (y != 0.0) return Exponent(std::log(x) * y, result);
    result = 1.0;
    return kOK;
  }
  if (y == 0.0) {
    result = 1.0;
    return kNegativeBaseZero;
  }
  if (IsEvenInteger(y)) return Exponent(std::log(-x) * y, result);
  if (!IsOddInteger(y) && !IsOneOverOddInteger(y, kReciprocalFactor)) return kNegativeBaseFraction;
  const PowerStatus status = Exponent(std::log(-x) * y, result);
  if (OrbMV::IsMissing(result)) return y > 0.0 ? kNegativeBaseOverflow : status;
  result = -result;
  return status;
}

double OrbPower::Multiply(double a, double b) noexcept {
  if (a == 0.0 || b == 0.0) return 0.0;
  double result = 0.0;
  static_cast<void>(Exponent(std::log(std::abs(a)) + std::log(std::abs(b)), result));
  const bool isNegative = (a < 0.0) != (b < 0.0);
  return isNegative && !OrbMV::IsMissing(result) ? -result : result;
}

}  // namespace OrbMath_830

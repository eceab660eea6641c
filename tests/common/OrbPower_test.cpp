#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "common/OrbMV.h"
#include "common/OrbPower.h"

namespace {

using namespace OrbMath_830;
using OrbCommon_830::OrbMV;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Power {
  explicit Power(double x, double y) : status(OrbPower::Power(x, y, result)) {}
  double result = 0.0;
  PowerStatus status;
};

TEST(OrbPower, TheConstantsAreTheMachines) {
  EXPECT_EQ(OrbPower::MaxExp(), 709.0);
  EXPECT_EQ(OrbPower::MinExp(), -708.39);
  EXPECT_EQ(OrbPower::MaxInt(), 2147483647.0);
  EXPECT_EQ(OrbPower::MEpsilon(), std::numeric_limits<double>::epsilon());
}

TEST(OrbPower, TheStatusesHaveTheirNumbers) {
  EXPECT_EQ(kOK, 0);
  EXPECT_EQ(kUnderflow, 1);
  EXPECT_EQ(kOverflow, 2);
  EXPECT_EQ(kNegativeBaseOverflow, 3);
  EXPECT_EQ(kNegativeBaseFraction, 4);
  EXPECT_EQ(kNegativeBaseZero, 5);
  EXPECT_EQ(kZeroBaseNegative, 6);
  EXPECT_EQ(kZeroBaseZero, 7);
}

TEST(OrbPower, ExponentsOverflowAndUnderflowBeyondTheirBounds) {
  EXPECT_FALSE(OrbPower::ExpOverflow(709.0));
  EXPECT_TRUE(OrbPower::ExpOverflow(std::nextafter(709.0, kInfinity)));
  EXPECT_FALSE(OrbPower::ExpUnderflow(-708.39));
  EXPECT_TRUE(OrbPower::ExpUnderflow(std::nextafter(-708.39, -kInfinity)));
  double result = 5.0;
  EXPECT_EQ(OrbPower::Exponent(709.0, result), kOK);
  EXPECT_EQ(result, std::exp(709.0));
  EXPECT_EQ(OrbPower::Exponent(709.1, result), kOverflow);
  EXPECT_TRUE(OrbMV::IsMissing(result));
  EXPECT_EQ(OrbPower::Exponent(-709.0, result), kUnderflow);
  EXPECT_EQ(result, 0.0);
}

// Deliberate: there is an upper bound and no lower one.
TEST(OrbPower, WholeNumbersUpToTheLargest32BitOneAreIntegers) {
  EXPECT_TRUE(OrbPower::IsInteger(2147483647.0));
  EXPECT_FALSE(OrbPower::IsInteger(3e9));
  EXPECT_TRUE(OrbPower::IsInteger(-3e9));
  EXPECT_FALSE(OrbPower::IsInteger(0.5));
  EXPECT_FALSE(OrbPower::IsInteger(kNan));
  EXPECT_TRUE(OrbPower::IsInteger(-kInfinity));
}

TEST(OrbPower, EvenAndOddIntegersAreToldApart) {
  for (const double x : {-4.0, -2.0, 0.0, 2.0, 2147483646.0}) {
    EXPECT_TRUE(OrbPower::IsEvenInteger(x)) << x;
    EXPECT_FALSE(OrbPower::IsOddInteger(x)) << x;
  }
  for (const double x : {-3.0, -1.0, 1.0, 2147483647.0}) {
    EXPECT_FALSE(OrbPower::IsEvenInteger(x)) << x;
    EXPECT_TRUE(OrbPower::IsOddInteger(x)) << x;
  }
  EXPECT_FALSE(OrbPower::IsEvenInteger(0.5));
  EXPECT_FALSE(OrbPower::IsOddInteger(1.5));
}

TEST(OrbPower, AlmostEqualIsRelativeToTheLargerMagnitude) {
  EXPECT_TRUE(OrbPower::AlmostEqual(0.0, 0.0, 1.0));
  EXPECT_FALSE(OrbPower::AlmostEqual(0.0, 1e-300, 1.0));
  EXPECT_FALSE(OrbPower::AlmostEqual(1e-300, 0.0, 1.0));
  EXPECT_FALSE(OrbPower::AlmostEqual(1.0, -1.0, 1.0));
  const double next = std::nextafter(1.0, 2.0);
  EXPECT_TRUE(OrbPower::AlmostEqual(1.0, next, 1.0));
  EXPECT_TRUE(OrbPower::AlmostEqual(-next, -1.0, 1.0));
  EXPECT_FALSE(OrbPower::AlmostEqual(1.0, 1.0 + 4e-16, 1.0));
  EXPECT_TRUE(OrbPower::AlmostEqual(1.0, 1.0 + 4e-16, 2.0));
}

TEST(OrbPower, ReciprocalsOfOddAndEvenIntegersAreFoundDespiteRounding) {
  for (int n = 1; n < 2000; ++n) {
    const double y = 1.0 / n;
    EXPECT_EQ(OrbPower::IsOneOverOddInteger(y, 32.0), n % 2 == 1) << n;
    EXPECT_EQ(OrbPower::IsOneOverEvenInteger(y, 32.0), n % 2 == 0) << n;
    EXPECT_EQ(OrbPower::IsOneOverOddInteger(-y, 32.0), n % 2 == 1) << -n;
  }
  EXPECT_FALSE(OrbPower::IsOneOverOddInteger(0.0, 32.0));
  EXPECT_FALSE(OrbPower::IsOneOverEvenInteger(0.0, 32.0));
  EXPECT_FALSE(OrbPower::IsOneOverOddInteger(1e-10, 32.0));  // the reciprocal is too large
}

TEST(OrbPower, ABaseOfZeroHasThreeAnswers) {
  EXPECT_EQ(Power(0.0, 0.0).status, kZeroBaseZero);
  EXPECT_EQ(Power(0.0, 0.0).result, 1.0);
  EXPECT_EQ(Power(0.0, -1.0).status, kZeroBaseNegative);
  EXPECT_TRUE(OrbMV::IsMissing(Power(0.0, -1.0).result));
  EXPECT_EQ(Power(0.0, 2.0).status, kOK);
  EXPECT_EQ(Power(0.0, 2.0).result, 0.0);
}

TEST(OrbPower, ANegativeBaseNeedsAnIntegerOrAnOddReciprocal) {
  EXPECT_EQ(Power(-8.0, 1.0 / 3).status, kOK);
  EXPECT_NEAR(Power(-8.0, 1.0 / 3).result, -2.0, 1e-14);
  EXPECT_EQ(Power(-8.0, 0.5).status, kNegativeBaseFraction);
  EXPECT_TRUE(OrbMV::IsMissing(Power(-8.0, 0.5).result));
  EXPECT_EQ(Power(-2.0, 0.0).status, kNegativeBaseZero);
  EXPECT_EQ(Power(-2.0, 0.0).result, 1.0);
  EXPECT_EQ(Power(-2.0, 2.0).status, kOK);
  EXPECT_NEAR(Power(-2.0, 2.0).result, 4.0, 1e-14);
  EXPECT_NEAR(Power(-2.0, 3.0).result, -8.0, 1e-14);
  EXPECT_NEAR(Power(-2.0, -3.0).result, -0.125, 1e-14);
}

TEST(OrbPower, ANegativeBaseOverflowsWithAStatusOfItsOwn) {
  EXPECT_EQ(Power(-10.0, 401.0).status, kNegativeBaseOverflow);
  EXPECT_TRUE(OrbMV::IsMissing(Power(-10.0, 401.0).result));
  EXPECT_EQ(Power(-10.0, 400.0).status,
            kOverflow);                              // an even exponent: a positive base
  EXPECT_EQ(Power(-0.1, -401.0).status, kOverflow);  // an exponent below 0
  EXPECT_EQ(Power(-10.0, -401.0).status, kUnderflow);
  EXPECT_TRUE(std::signbit(Power(-10.0, -401.0).result));
  EXPECT_EQ(Power(-10.0, -401.0).result, 0.0);
}

TEST(OrbPower, APositiveBaseIsTheExponentialOfItsLogarithm) {
  EXPECT_EQ(Power(10.0, 400.0).status, kOverflow);
  EXPECT_TRUE(OrbMV::IsMissing(Power(10.0, 400.0).result));
  EXPECT_EQ(Power(10.0, -400.0).status, kUnderflow);
  EXPECT_EQ(Power(10.0, -400.0).result, 0.0);
  EXPECT_EQ(Power(7.0, 0.0).status, kOK);
  EXPECT_EQ(Power(7.0, 0.0).result, 1.0);
  EXPECT_EQ(Power(2.0, 10.0).result, std::exp(std::log(2.0) * 10.0));
}

TEST(OrbPower, ProductsNeverOverflow) {
  EXPECT_TRUE(OrbMV::IsMissing(OrbPower::Multiply(1e200, 1e200)));
  EXPECT_TRUE(OrbMV::IsMissing(OrbPower::Multiply(-1e200, 1e200)));  // never negated
  EXPECT_EQ(OrbPower::Multiply(-1e-200, 1e-200), 0.0);
  EXPECT_TRUE(std::signbit(OrbPower::Multiply(-1e-200, 1e-200)));
  EXPECT_FALSE(std::signbit(OrbPower::Multiply(-1e-200, -1e-200)));
  EXPECT_EQ(OrbPower::Multiply(3.0, 0.0), 0.0);
  EXPECT_EQ(OrbPower::Multiply(0.0, -3.0), 0.0);
}

// Deliberate: the product carries the rounding of logarithm and exponential.
TEST(OrbPower, ProductsGoThroughLogarithms) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> draw(-1e3, 1e3);
  for (int i = 0; i < 1000; ++i) {
    const double a = draw(random);
    const double b = draw(random);
    const double expected = std::exp(std::log(std::abs(a)) + std::log(std::abs(b)));
    EXPECT_EQ(OrbPower::Multiply(a, b), (a < 0) != (b < 0) ? -expected : expected);
  }
}

}  // namespace

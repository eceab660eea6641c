#include "common/OrbMV.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

using OrbCommon_830::OrbMV;

TEST(OrbMV, MissingIsTheMostNegativeFiniteDouble) {
  EXPECT_EQ(OrbMV::Missing(), -1.7976931348623157e+308);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(OrbMV::Missing()), 0xFFEFFFFFFFFFFFFFU);
}

TEST(OrbMV, TheMissingValueIsMissing) { EXPECT_TRUE(OrbMV::IsMissing(OrbMV::Missing())); }

TEST(OrbMV, TheMissingValueWrittenAsANumberIsMissing) {
  EXPECT_TRUE(OrbMV::IsMissing(-1.7976931348623157e+308));
}

TEST(OrbMV, NotANumberIsNotMissing) {
  EXPECT_FALSE(OrbMV::IsMissing(std::numeric_limits<double>::quiet_NaN()));
}

TEST(OrbMV, InfinitiesAreNotMissing) {
  EXPECT_FALSE(OrbMV::IsMissing(-std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(OrbMV::IsMissing(std::numeric_limits<double>::infinity()));
}

TEST(OrbMV, TheNextDoubleIsNotMissing) {
  EXPECT_FALSE(OrbMV::IsMissing(std::nextafter(-1.7976931348623157e+308, 0.0)));
}

TEST(OrbMV, TheLargestDoubleAndZeroAreNotMissing) {
  EXPECT_FALSE(OrbMV::IsMissing(1.7976931348623157e+308));
  EXPECT_FALSE(OrbMV::IsMissing(0.0));
}

}  // namespace

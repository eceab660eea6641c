#include "scoring/hostapi/QuException.h"

#include <gtest/gtest.h>

#include "host/EnvironmentError.h"

namespace {

using OrbScore::EnvironmentError;
using OrbScore::QuException;

TEST(QuException, KeepsItsText) { EXPECT_STREQ(QuException("a: b").what(), "a: b"); }

TEST(QuException, IsCaughtAsARuntimeError) {
  EXPECT_THROW(throw QuException("a"), std::runtime_error);
}

TEST(EnvironmentError, IsCaughtAsAQuException) {
  EXPECT_THROW(throw EnvironmentError("a"), QuException);
}

}  // namespace

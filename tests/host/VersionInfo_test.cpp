#include "scoring/hostapi/VersionInfo.h"

#include <gtest/gtest.h>

namespace {

using OrbScore::VersionInfo;

TEST(VersionInfo, IsEmptyAtFirst) { EXPECT_EQ(VersionInfo().GetVersion(), ""); }

TEST(VersionInfo, KeepsItsText) { EXPECT_EQ(VersionInfo("1.0").GetVersion(), "1.0"); }

}  // namespace

#include "common/OrbStatus.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

using OrbCommon_830::OrbStatus;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The host has a status of the same layout; the two are copied as records.
static_assert(std::is_trivially_copyable_v<OrbStatus>);
static_assert(std::is_standard_layout_v<OrbStatus>);
static_assert(sizeof(OrbStatus) == 48);

OrbStatus detailed() {
  OrbStatus status(60001, false);
  for (unsigned slot = 0; slot < OrbStatus::kSlots; ++slot) {
    status.SetDiscreteDatum(slot, static_cast<std::int32_t>(10 + slot));
    status.SetScaleDatum(slot, 0.5 + slot);
  }
  return status;
}

TEST(OrbStatus, TheDefaultIsOk) {
  const OrbStatus status;

  EXPECT_TRUE(status.IsOK());
  EXPECT_FALSE(status.IsError());
  EXPECT_FALSE(status.IsWarning());
}

TEST(OrbStatus, TheDefaultHasEveryFieldZero) {
  const OrbStatus status;

  EXPECT_EQ(status.GetErrorCode(), 0);
  for (unsigned slot = 0; slot < 3; ++slot) {
    EXPECT_EQ(status.GetDiscreteDatum(slot), 0);
    EXPECT_EQ(status.GetScaleDatum(slot), 0.0);
  }
}

TEST(OrbStatus, ACodeWithWarningIsAWarning) {
  const OrbStatus status(5, true);

  EXPECT_TRUE(status.IsWarning());
  EXPECT_FALSE(status.IsOK());
  EXPECT_FALSE(status.IsError());
  EXPECT_EQ(status.GetErrorCode(), 5);
}

TEST(OrbStatus, ACodeWithoutWarningIsAnError) {
  const OrbStatus status(60000, false);

  EXPECT_TRUE(status.IsError());
  EXPECT_FALSE(status.IsOK());
  EXPECT_FALSE(status.IsWarning());
  EXPECT_EQ(status.GetErrorCode(), 60000);
}

// Deliberate: the severity alone decides, never the code.
TEST(OrbStatus, AnErrorWithCodeZeroIsAnErrorAllTheSame) {
  EXPECT_TRUE(OrbStatus(0, false).IsError());
  EXPECT_TRUE(OrbStatus(0, true).IsWarning());
}

TEST(OrbStatus, ACodeAloneLeavesTheDataZero) {
  const OrbStatus status(7, false);

  for (unsigned slot = 0; slot < 3; ++slot) {
    EXPECT_EQ(status.GetDiscreteDatum(slot), 0);
    EXPECT_EQ(status.GetScaleDatum(slot), 0.0);
  }
}

TEST(OrbStatus, NegativeCodesAreKept) { EXPECT_EQ(OrbStatus(-3, true).GetErrorCode(), -3); }

TEST(OrbStatus, DiscreteSlotsAreIndependent) {
  OrbStatus status;

  status.SetDiscreteDatum(1, -8);

  EXPECT_EQ(status.GetDiscreteDatum(0), 0);
  EXPECT_EQ(status.GetDiscreteDatum(1), -8);
  EXPECT_EQ(status.GetDiscreteDatum(2), 0);
}

TEST(OrbStatus, ScaleSlotsAreIndependent) {
  OrbStatus status;

  status.SetScaleDatum(2, 0.25);

  EXPECT_EQ(status.GetScaleDatum(0), 0.0);
  EXPECT_EQ(status.GetScaleDatum(1), 0.0);
  EXPECT_EQ(status.GetScaleDatum(2), 0.25);
}

TEST(OrbStatus, DataLeaveTheSeverityAlone) {
  OrbStatus status;

  status.SetDiscreteDatum(0, 9);
  status.SetScaleDatum(0, 9.0);

  EXPECT_TRUE(status.IsOK());
}

TEST(OrbStatus, ACopyHasTheWholeRecord) {
  const OrbStatus original = detailed();

  const OrbStatus copy(original);

  EXPECT_EQ(copy.GetErrorCode(), 60001);
  EXPECT_TRUE(copy.IsError());
  EXPECT_EQ(copy.GetDiscreteDatum(0), 10);
  EXPECT_EQ(copy.GetDiscreteDatum(1), 11);
  EXPECT_EQ(copy.GetDiscreteDatum(2), 12);
  EXPECT_EQ(copy.GetScaleDatum(0), 0.5);
  EXPECT_EQ(copy.GetScaleDatum(1), 1.5);
  EXPECT_EQ(copy.GetScaleDatum(2), 2.5);
}

TEST(OrbStatus, AssignmentReplacesTheWholeRecord) {
  OrbStatus target = detailed();

  target = OrbStatus();

  EXPECT_TRUE(target == OrbStatus());
}

TEST(OrbStatus, EqualRecordsAreEqual) { EXPECT_TRUE(detailed() == detailed()); }

TEST(OrbStatus, DifferentCodesMakeUnequal) {
  EXPECT_FALSE(OrbStatus(1, true) == OrbStatus(2, true));
}

TEST(OrbStatus, DifferentSeveritiesMakeUnequal) {
  EXPECT_FALSE(OrbStatus(1, true) == OrbStatus(1, false));
  EXPECT_FALSE(OrbStatus(0, true) == OrbStatus());
}

TEST(OrbStatus, EveryDiscreteSlotCountsInTheComparison) {
  for (unsigned slot = 0; slot < 3; ++slot) {
    OrbStatus other = detailed();
    other.SetDiscreteDatum(slot, 99);
    EXPECT_FALSE(detailed() == other) << "slot " << slot;
  }
}

TEST(OrbStatus, EveryScaleSlotCountsInTheComparison) {
  for (unsigned slot = 0; slot < 3; ++slot) {
    OrbStatus other = detailed();
    other.SetScaleDatum(slot, 99.0);
    EXPECT_FALSE(detailed() == other) << "slot " << slot;
  }
}

TEST(OrbStatus, NotANumberOnBothSidesMakesUnequal) {
  OrbStatus status;
  status.SetScaleDatum(1, kNaN);
  const OrbStatus copy = status;

  EXPECT_FALSE(status == copy);
}

TEST(OrbStatus, NotANumberOnOneSideMakesUnequal) {
  OrbStatus status;
  status.SetScaleDatum(0, kNaN);

  EXPECT_FALSE(status == OrbStatus());
  EXPECT_FALSE(OrbStatus() == status);
}

TEST(OrbStatus, ZeroEqualsMinusZero) {
  OrbStatus status;
  status.SetScaleDatum(0, -0.0);

  EXPECT_TRUE(status == OrbStatus());
}

TEST(OrbStatusDeathTest, ASlotBeyondTheLastIsACallersBug) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  OrbStatus status = detailed();

  EXPECT_DEBUG_DEATH(status.SetDiscreteDatum(3, 1), "index < kSlots");
  EXPECT_DEBUG_DEATH(status.SetScaleDatum(3, 1.0), "index < kSlots");

  EXPECT_TRUE(status == detailed());
}

#ifdef NDEBUG
TEST(OrbStatus, ReadingBeyondTheLastSlotGivesZeroInReleaseBuilds) {
  const OrbStatus status = detailed();

  EXPECT_EQ(status.GetDiscreteDatum(3), 0);
  EXPECT_EQ(status.GetScaleDatum(3), 0.0);
}
#endif

}  // namespace

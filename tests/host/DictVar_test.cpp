#include "scoring/hostapi/DictVar.h"

#include <gtest/gtest.h>

namespace {

using OrbScore::DictVar;

TEST(DictVar, HasNameAndTypeAndNoLabelAtFirst) {
  const DictVar variable("7", DictVar::kContinuous);

  EXPECT_EQ(variable.GetName(), "7");
  EXPECT_EQ(variable.GetVariableType(), DictVar::kContinuous);
  EXPECT_EQ(variable.GetMappedLabel(), "");
}

TEST(DictVar, TakesAnotherName) {
  DictVar variable("7", DictVar::kCategorical);

  variable.SetName("8");

  EXPECT_EQ(variable.GetName(), "8");
}

TEST(DictVar, TakesALabel) {
  DictVar variable("7", DictVar::kCategorical);

  variable.SetMappedLabel("bread");

  EXPECT_EQ(variable.GetMappedLabel(), "bread");
}

}  // namespace

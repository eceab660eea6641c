#include "scoring/hostapi/StringValue.h"

#include <gtest/gtest.h>

#include <memory>

#include "common/OrbMV.h"
#include "scoring/hostapi/NumericValue.h"
#include "tests/host/LengthValue.h"

namespace {

using OrbCommon_830::OrbMV;
using OrbScore::NumericValue;
using OrbScore::ScoreValue;
using OrbScore::StringValue;

TEST(StringValue, KeepsItsText) {
  EXPECT_EQ(StringValue("(1 2)").GetString(), "(1 2)");
  EXPECT_EQ(StringValue(std::string("a\0b", 3)).GetString(), std::string("a\0b", 3));
}

TEST(StringValue, IsNeverMissing) { EXPECT_FALSE(StringValue("").IsSystemMissingValue()); }

TEST(StringValue, GivesTheNumberThatItSpells) {
  EXPECT_EQ(StringValue(" 2.5 ").GetDouble(), 2.5);
  EXPECT_EQ(StringValue("2.5").GetInt(), 2);
}

TEST(StringValue, TextThatIsNoNumberGivesMissingAndTheSmallestInteger) {
  EXPECT_EQ(StringValue("two").GetDouble(), OrbMV::Missing());
  EXPECT_EQ(StringValue("two").GetInt(), -2147483648);
}

TEST(StringValue, ComparesByBytes) {
  const StringValue b("b");

  EXPECT_TRUE(b.operator==(StringValue("b")));
  EXPECT_FALSE(b.operator==(StringValue("B")));
  EXPECT_TRUE(b > StringValue("B"));
  EXPECT_TRUE(b < StringValue("\xC3\xA4"));
  EXPECT_TRUE(b <= StringValue("b"));
  EXPECT_TRUE(b >= StringValue("b"));
}

TEST(StringValue, ComparesWithTheTextOfANumber) {
  EXPECT_TRUE(StringValue("2").operator==(NumericValue(2.0)));
  EXPECT_FALSE(StringValue("2.0").operator==(NumericValue(2.0)));
}

TEST(StringValue, IsNotEqualToNull) { EXPECT_FALSE(StringValue("").Equal(nullptr, true, true)); }

TEST(StringValue, EqualIgnoresItsFlags) {
  const StringValue other("a");

  EXPECT_TRUE(StringValue("a").Equal(&other, false, true));
  EXPECT_TRUE(StringValue("a").Equal(&other, true, false));
}

TEST(StringValue, TakesOverTheTextOfAnotherValue) {
  const NumericValue number(7.5);
  StringValue value("");

  value.SetValue(&number);

  EXPECT_EQ(value.GetString(), "7.5");
}

TEST(StringValue, TakesOverItsOwnText) {
  StringValue value("itself");

  value.SetValue(&value);

  EXPECT_EQ(value.GetString(), "itself");
}

TEST(StringValue, NullIsTakenOverAsTheEmptyText) {
  StringValue value("a");

  value.SetValue(nullptr);

  EXPECT_EQ(value.GetString(), "");
}

TEST(StringValue, CopiesAreTheCallers) {
  const StringValue value("a");

  const std::unique_ptr<ScoreValue> clone(value.Clone()), copy(value.GetValue());

  EXPECT_EQ(clone->GetString(), "a");
  EXPECT_EQ(copy->GetString(), "a");
  EXPECT_EQ(clone->GetType(), ScoreValue::kText);
}

}  // namespace

#include "scoring/hostapi/NumericValue.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <memory>

#include "common/OrbMV.h"
#include "scoring/hostapi/StringValue.h"
#include "tests/host/LengthValue.h"

namespace {

using OrbCommon_830::OrbMV;
using OrbScore::NumericValue;
using OrbScore::ScoreValue;
using OrbScore::StringValue;
using test::LengthValue;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double read(const std::string& text) { return NumericValue(text).GetDouble(); }

TEST(NumericValue, ReadsDecimalText) {
  EXPECT_EQ(read("12"), 12.0);
  EXPECT_EQ(read("-0.5"), -0.5);
  EXPECT_EQ(read("+3"), 3.0);
  EXPECT_EQ(read(".25"), 0.25);
  EXPECT_EQ(read("7."), 7.0);
  EXPECT_EQ(read("1e3"), 1000.0);
  EXPECT_EQ(read("2.5E-1"), 0.25);
}

TEST(NumericValue, ReadsTextWithBlanksAround) { EXPECT_EQ(read(" \t12\r\n"), 12.0); }

TEST(NumericValue, TextThatIsNoNumberIsMissing) {
  for (const char* text : {"", " ", "abc", "1 2", "12x", "0x10", "1,5", "+-1", "++1", "-", "+",
                           "e5", "inf", "-infinity", "nan", "1e999", "-1e999", "\xEF\xBC\x93"})
    EXPECT_TRUE(NumericValue(std::string(text)).IsSystemMissingValue()) << text;
}

TEST(NumericValue, TextWithANulIsMissing) {
  EXPECT_TRUE(NumericValue(std::string("1\0", 2)).IsSystemMissingValue());
}

TEST(NumericValue, ReadsAndWritesTheSameInEveryLocale) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  bool found = false;
  for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE"})
    found = found || std::setlocale(LC_NUMERIC, name) != nullptr;

  EXPECT_EQ(read("1.5"), 1.5);
  EXPECT_TRUE(NumericValue(std::string("1,5")).IsSystemMissingValue());
  EXPECT_EQ(NumericValue(1.5).GetString(), "1.5");

  std::setlocale(LC_NUMERIC, before.c_str());
  if (!found) GTEST_SKIP() << "no German locale on this machine: tried in the present one only";
}

TEST(NumericValue, WritesFifteenDigits) {
  EXPECT_EQ(NumericValue(0.1).GetString(), "0.1");
  EXPECT_EQ(NumericValue(-12.0).GetString(), "-12");
  EXPECT_EQ(NumericValue(1.0 / 3.0).GetString(), "0.333333333333333");
  EXPECT_EQ(NumericValue(1e300).GetString(), "1e+300");
  EXPECT_EQ(NumericValue(-1.7976931348623157e308 / 2).GetString(), "-8.98846567431158e+307");
}

TEST(NumericValue, TheMissingValueWritesNothing) {
  EXPECT_EQ(NumericValue(OrbMV::Missing()).GetString(), "");
}

TEST(NumericValue, OnlyTheMissingValueIsMissing) {
  EXPECT_TRUE(NumericValue(OrbMV::Missing()).IsSystemMissingValue());
  EXPECT_FALSE(NumericValue(0.0).IsSystemMissingValue());
  EXPECT_FALSE(NumericValue(-kInfinity).IsSystemMissingValue());
  EXPECT_FALSE(NumericValue(kNan).IsSystemMissingValue());
}

TEST(NumericValue, TheIntegerIsTruncatedTowardZero) {
  EXPECT_EQ(NumericValue(2.9).GetInt(), 2);
  EXPECT_EQ(NumericValue(-2.9).GetInt(), -2);
}

TEST(NumericValue, TheIntegerIsClampedToThirtyTwoBits) {
  EXPECT_EQ(NumericValue(1e300).GetInt(), 2147483647);
  EXPECT_EQ(NumericValue(kInfinity).GetInt(), 2147483647);
  EXPECT_EQ(NumericValue(-1e300).GetInt(), -2147483648);
  EXPECT_EQ(NumericValue(2147483647.5).GetInt(), 2147483647);
}

TEST(NumericValue, TheMissingValueGivesTheSmallestInteger) {
  EXPECT_EQ(NumericValue(OrbMV::Missing()).GetInt(), -2147483648);
}

TEST(NumericValue, NotANumberGivesTheSmallestInteger) {
  EXPECT_EQ(NumericValue(kNan).GetInt(), -2147483648);
}

TEST(NumericValue, ComparesWithANumber) {
  const NumericValue two(2.0);

  EXPECT_TRUE(two.operator==(NumericValue(2.0)));
  EXPECT_FALSE(two.operator==(NumericValue(3.0)));
  EXPECT_TRUE(two < NumericValue(3.0));
  EXPECT_TRUE(two <= NumericValue(2.0));
  EXPECT_TRUE(two > NumericValue(1.0));
  EXPECT_TRUE(two >= NumericValue(2.0));
  EXPECT_FALSE(two > NumericValue(2.0));
  EXPECT_FALSE(two < NumericValue(2.0));
}

TEST(NumericValue, ComparesWithTheNumberOfAText) {
  EXPECT_TRUE(NumericValue(2.0).operator==(StringValue(" 2.0 ")));
  EXPECT_FALSE(NumericValue(2.0).operator==(StringValue("two")));
}

TEST(NumericValue, ComparesWithTheLengthOfAList) {
  EXPECT_TRUE(NumericValue(2.0).operator==(LengthValue(2)));
  EXPECT_TRUE(NumericValue(2.0) < LengthValue(3));
}

TEST(NumericValue, IsNotEqualToNull) {
  EXPECT_FALSE(NumericValue(2.0).Equal(nullptr, false, false));
}

TEST(NumericValue, EqualIgnoresItsFlags) {
  const NumericValue other(2.0);

  EXPECT_TRUE(NumericValue(2.0).Equal(&other, false, true));
  EXPECT_TRUE(NumericValue(2.0).Equal(&other, true, false));
}

TEST(NumericValue, TakesOverTheNumberOfAnotherValue) {
  const NumericValue number(7.0);
  const StringValue text("8");
  NumericValue value(0.0);

  value.SetValue(&number);
  EXPECT_EQ(value.GetDouble(), 7.0);

  value.SetValue(&text);
  EXPECT_EQ(value.GetDouble(), 8.0);
}

TEST(NumericValue, NullAndListsAreTakenOverAsMissing) {
  const LengthValue list(2);
  NumericValue first(7.0), second(7.0);

  first.SetValue(nullptr);
  second.SetValue(&list);

  EXPECT_TRUE(first.IsSystemMissingValue());
  EXPECT_TRUE(second.IsSystemMissingValue());
}

TEST(NumericValue, CopiesAreTheCallers) {
  const NumericValue value(7.0);

  const std::unique_ptr<ScoreValue> clone(value.Clone()), copy(value.GetValue());

  EXPECT_EQ(clone->GetDouble(), 7.0);
  EXPECT_EQ(copy->GetDouble(), 7.0);
  EXPECT_EQ(clone->GetType(), ScoreValue::kNumber);
}

}  // namespace

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

#include "common/OrbMV.h"
#include "tests/support/locales.h"
#include "xml/XMLObj.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::ParseValue;
using OrbXML_830::XMLObj;

template <class T>
using Limits = std::numeric_limits<T>;

// Reads the line; `value` tells what stood before.
template <class T>
bool reads(const std::string& line, T& value) {
  std::istringstream stream(line);
  return ParseValue(stream, value);
}

// The value that is read from an element with this text; the reading has to succeed.
template <class T>
T valueOf(const std::string& element, const std::string& text, T before) {
  T value = before;
  EXPECT_TRUE(reads("\t<" + element + " value=\"" + text + "\"/>", value)) << text;
  return value;
}

int intOf(const std::string& text) { return valueOf("Int", text, 77); }
long longOf(const std::string& text) { return valueOf("Long", text, 77L); }
unsigned int unsignedOf(const std::string& text) { return valueOf("Int", text, 77U); }
double doubleOf(const std::string& text) { return valueOf("Double", text, 77.0); }
std::string stringOf(const std::string& text) {
  return valueOf("String", text, std::string("old"));
}

TEST(ObjectReaderValues, IntsAreRead) {
  EXPECT_EQ(intOf("0"), 0);
  EXPECT_EQ(intOf("-12"), -12);
  EXPECT_EQ(intOf("+12"), 12);
  EXPECT_EQ(intOf("2147483647"), Limits<int>::max());
  EXPECT_EQ(intOf("-2147483648"), Limits<int>::min());
}

TEST(ObjectReaderValues, AnIntOutOfRangeIsTheNearestInt) {
  EXPECT_EQ(intOf("2147483648"), Limits<int>::max());
  EXPECT_EQ(intOf("-2147483649"), Limits<int>::min());
  EXPECT_EQ(intOf("99999999999999999999"), Limits<int>::max());
}

TEST(ObjectReaderValues, AnIntEndsWhereItsDigitsDo) {
  EXPECT_EQ(intOf("12.9"), 12);
  EXPECT_EQ(intOf("1e3"), 1);
  EXPECT_EQ(intOf("12abc"), 12);
}

TEST(ObjectReaderValues, TextThatIsNoNumberReadsAsZero) {
  EXPECT_EQ(intOf("abc"), 0);
  EXPECT_EQ(longOf("abc"), 0);
  EXPECT_EQ(unsignedOf("abc"), 0U);
  EXPECT_EQ(doubleOf("abc"), 0.0);
}

TEST(ObjectReaderValues, AnEmptyNumberReadsAsZero) {
  EXPECT_EQ(intOf(""), 0);
  EXPECT_EQ(longOf(""), 0);
  EXPECT_EQ(unsignedOf(""), 0U);
  EXPECT_EQ(doubleOf(""), 0.0);
  EXPECT_FALSE(valueOf("Int", "", true));
}

TEST(ObjectReaderValues, LongsAreReadAndSaturate) {
  EXPECT_EQ(longOf("-123456"), -123456);
  EXPECT_EQ(longOf("99999999999999999999"), Limits<long>::max());
  EXPECT_EQ(longOf("-99999999999999999999"), Limits<long>::min());
}

TEST(ObjectReaderValues, UnsignedIntsAreReadAsDoublesAndTruncated) {
  EXPECT_EQ(unsignedOf("0"), 0U);
  EXPECT_EQ(unsignedOf("2.9"), 2U);
  EXPECT_EQ(unsignedOf("1e3"), 1000U);
  EXPECT_EQ(unsignedOf("4294967295"), 4294967295U);
  EXPECT_EQ(unsignedOf("4294967295.9"), 4294967295U);
}

TEST(ObjectReaderValues, AnUnsignedIntOutOfRangeIsTheNearestOne) {
  EXPECT_EQ(unsignedOf("-1"), 0U);
  EXPECT_EQ(unsignedOf("-0.5"), 0U);
  EXPECT_EQ(unsignedOf("4294967296"), 4294967295U);
  EXPECT_EQ(unsignedOf("1e30"), 4294967295U);
  EXPECT_EQ(unsignedOf("inf"), 4294967295U);
  EXPECT_EQ(unsignedOf("-inf"), 0U);
  EXPECT_EQ(unsignedOf("nan"), 0U);
}

TEST(ObjectReaderValues, DoublesAreRead) {
  EXPECT_EQ(doubleOf("0.1"), 0.1);
  EXPECT_EQ(doubleOf("-1.5e-3"), -0.0015);
  EXPECT_EQ(doubleOf("1.79769313486231e+308"), 1.79769313486231e+308);
}

TEST(ObjectReaderValues, MissingIsTheMissingValueWithItsCase) {
  EXPECT_EQ(doubleOf("Missing"), OrbCommon_830::OrbMV::Missing());
  EXPECT_EQ(doubleOf("missing"), 0.0);
}

TEST(ObjectReaderValues, ADoubleThatAStreamCannotReadIsWhatTheStreamLeaves) {
  EXPECT_EQ(doubleOf("inf"), 0.0);
  EXPECT_EQ(doubleOf("nan"), 0.0);
  EXPECT_EQ(doubleOf("1e999"), Limits<double>::max());
  EXPECT_EQ(doubleOf("-1e999"), Limits<double>::lowest());
  EXPECT_EQ(doubleOf("1,5"), 1.0);
}

TEST(ObjectReaderValues, ThePublishedFormLosesDigitsOfADouble) {
  const double read = doubleOf("0.333333333333333");

  EXPECT_NE(read, 1.0 / 3);
  EXPECT_NEAR(read, 1.0 / 3, 1e-15);
}

TEST(ObjectReaderValues, NumbersDoNotFollowTheGlobalLocale) {
  const ScopedGlobalLocale grouping(groupingLocale());

  EXPECT_EQ(doubleOf("1234.5"), 1234.5);
  EXPECT_EQ(doubleOf("1,5"), 1.0);
  EXPECT_EQ(intOf("1.234"), 1);
}

TEST(ObjectReaderValues, NumbersDoNotFollowADecimalComma) {
  const ScopedCLocale german({"de_DE.UTF-8", "de_DE.utf8"});
  if (!german.isInstalled()) GTEST_SKIP() << "NOT TESTED: de_DE.UTF-8 is not installed";

  EXPECT_EQ(doubleOf("1234.5"), 1234.5);
  EXPECT_EQ(unsignedOf("4294967295"), 4294967295U);
  EXPECT_EQ(longOf("1234567"), 1234567);
}

TEST(ObjectReaderValues, TruthValuesAreZeroAndOne) {
  EXPECT_TRUE(valueOf("Int", "1", false));
  EXPECT_FALSE(valueOf("Int", "0", true));
  EXPECT_FALSE(valueOf("Int", "abc", true));
}

TEST(ObjectReaderValues, AnyOtherTruthValueIsRefused) {
  for (const char* const text : {"2", "-1", "4294967297"}) {
    bool value = true;
    EXPECT_FALSE(reads(std::string("<Int value=\"") + text + "\"/>", value)) << text;
    EXPECT_TRUE(value);
  }
}

TEST(ObjectReaderValues, StringsAreReadUpToTheirQuote) {
  EXPECT_EQ(stringOf("a b=c <d> /> e"), "a b=c <d> /> e");
  EXPECT_EQ(stringOf("\xC3\xA4\t'"), "\xC3\xA4\t'");
  EXPECT_EQ(stringOf("/"), "/");
  EXPECT_EQ(stringOf("/>"), "/>");
}

// Deliberate: references are not decoded.
TEST(ObjectReaderValues, AWrittenSpaceIsReadBackAsItsReference) {
  std::ostringstream out;
  XMLObj("X", -2).WriteSubElement(out, " ");
  std::string value;

  ASSERT_TRUE(reads(out.str().substr(1), value));
  EXPECT_EQ(value, "&#32;");
  EXPECT_EQ(stringOf("&amp;&lt;"), "&amp;&lt;");
}

TEST(ObjectReaderValues, AnEmptyStringIsEmpty) {
  std::string noToken = "old";

  EXPECT_EQ(stringOf(""), "");
  EXPECT_TRUE(reads("<String value=", noToken));
  EXPECT_EQ(noToken, "");
}

TEST(ObjectReaderValues, AnEmptyStringIsEmptyBeforeACarriageReturn) {
  std::string value = "old";

  EXPECT_TRUE(reads("<String value=\"\"/>\r\n", value));
  EXPECT_EQ(value, "");
}

TEST(ObjectReaderValues, AStringThatMakesItsLineTooLongIsRefused) {
  std::string value = "old";

  EXPECT_FALSE(reads("<String value=\"" + std::string(300, 'x') + "\"/>", value));
  EXPECT_EQ(value, "old");
  EXPECT_EQ(stringOf(std::string(236, 'x')), std::string(236, 'x'));
}

TEST(ObjectReaderValues, AnotherElementIsRefused) {
  int i = 5;
  long l = 5;
  unsigned int u = 5;
  double d = 5;
  bool b = true;
  std::string s = "old";

  EXPECT_FALSE(reads("<Long value=\"1\"/>", i));
  EXPECT_FALSE(reads("<Int value=\"1\"/>", l));
  EXPECT_FALSE(reads("<Long value=\"1\"/>", u));
  EXPECT_FALSE(reads("<Int value=\"1\"/>", d));
  EXPECT_FALSE(reads("<Bool value=\"0\"/>", b));
  EXPECT_FALSE(reads("<Int value=\"1\"/>", s));
  EXPECT_TRUE(i == 5 && l == 5 && u == 5 && d == 5 && b && s == "old");
}

TEST(ObjectReaderValues, AnotherAttributeOrNoneIsRefused) {
  int value = 5;

  EXPECT_FALSE(reads("<Int Value=\"1\"/>", value));
  EXPECT_FALSE(reads("<Int  value=\"1\"/>", value));
  EXPECT_FALSE(reads("<Int", value));
  EXPECT_FALSE(reads("<Int value=", value));
  EXPECT_FALSE(reads("", value));
  EXPECT_FALSE(reads("\n<Int value=\"1\"/>", value));
  EXPECT_EQ(value, 5);
}

}  // namespace

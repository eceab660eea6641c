#include "xml/NumberFormat.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <ios>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "tests/support/locales.h"

namespace {

using namespace orbseq::test;
using namespace OrbXML_830;

using Double = std::numeric_limits<double>;

// What a stream in the classic locale writes.
std::string classicStreamText(double value, bool fixed) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  if (fixed) stream << std::fixed;
  stream.precision(fixed ? 16 : 15);
  stream << value;
  return stream.str();
}

// The texts that stand in documents, whatever the locale.
void expectMachineTexts() {
  EXPECT_EQ(Format(0.1, false, nullptr), "0.1");
  EXPECT_EQ(Format(1234567.5, false, nullptr), "1234567.5");
  EXPECT_EQ(ReplaceSep(1234567.5), "1234567.5000000000000000");
  EXPECT_EQ(ReplaceSep(1234567.5, nullptr), "1234567.5");
  EXPECT_EQ(Format(123456789L), "123456789");
  EXPECT_EQ(GetListSeparator(), ";");
  EXPECT_EQ(GetDefaultNumericFormat(), "%.15g");
}

TEST(NumberFormat, TheDefaultFormatHasFifteenSignificantDigits) {
  EXPECT_EQ(GetDefaultNumericFormat(), "%.15g");
}

TEST(NumberFormat, TheListSeparatorIsASemicolon) { EXPECT_EQ(GetListSeparator(), ";"); }

TEST(NumberFormat, TheDecimalCharacterOfTheCLocaleIsAPoint) {
  EXPECT_EQ(GetDecimalCharacter(), ".");
}

TEST(NumberFormat, GeneralNotationKeepsFifteenSignificantDigits) {
  EXPECT_EQ(Format(0.1, false, nullptr), "0.1");
  EXPECT_EQ(Format(1.0 / 3, false, nullptr), "0.333333333333333");
  EXPECT_EQ(Format(3.0, false, nullptr), "3");
  EXPECT_EQ(Format(0.0, false, nullptr), "0");
  EXPECT_EQ(Format(-0.0, false, nullptr), "-0");
  EXPECT_EQ(Format(-2.0 / 3, false, nullptr), "-0.666666666666667");
  EXPECT_EQ(Format(123456789012345.0, false, nullptr), "123456789012345");
}

TEST(NumberFormat, LargeAndSmallNumbersHaveAnExponent) {
  EXPECT_EQ(Format(1e15, false, nullptr), "1e+15");
  EXPECT_EQ(Format(0.0001, false, nullptr), "0.0001");
  EXPECT_EQ(Format(0.00001, false, nullptr), "1e-05");
  EXPECT_EQ(Format(Double::max(), false, nullptr), "1.79769313486232e+308");
}

// Deliberate: without useFormat the format is ignored.
TEST(NumberFormat, TheFormatIsIgnoredWithoutUseFormat) {
  char format[] = "%.2f";

  EXPECT_EQ(Format(2.5, false, format), "2.5");
  EXPECT_EQ(ReplaceSep(2.5, format), "2.5");
}

TEST(NumberFormat, TheFormatIsUsedWithUseFormat) {
  char format[] = "%.2f";

  EXPECT_EQ(Format(2.5, true, format), "2.50");
}

TEST(NumberFormat, WithoutAFormatTheDefaultOneIsUsed) {
  EXPECT_EQ(Format(1.0 / 3, true, nullptr), "0.333333333333333");
}

TEST(NumberFormat, PrintedTextBeyondTheBufferIsCut) {
  EXPECT_EQ(Format(0.0, true, "%.109f"), "0." + std::string(109, '0'));
  EXPECT_EQ(Format(0.0, true, "%.110f"), "0." + std::string(109, '0'));
  EXPECT_EQ(Format(0.0, true, "%.500f"), "0." + std::string(109, '0'));
}

TEST(NumberFormat, LongNumbersArePrintedAsDoubles) {
  EXPECT_EQ(Format(123456789L), "123456789");
  EXPECT_EQ(Format(0L), "0");
  EXPECT_EQ(Format(-2147483648L), "-2147483648");
  EXPECT_EQ(Format(1000000000000000L), "1e+15");
}

TEST(NumberFormat, FixedNotationHasSixteenDigitsBehindThePoint) {
  EXPECT_EQ(ReplaceSep(0.5), "0.5000000000000000");
  EXPECT_EQ(ReplaceSep(0.1), "0.1000000000000000");
  EXPECT_EQ(ReplaceSep(-3.0), "-3.0000000000000000");
  EXPECT_EQ(ReplaceSep(0.0), "0.0000000000000000");
}

TEST(NumberFormat, FixedNotationHoldsTheLargestNumbers) {
  EXPECT_EQ(ReplaceSep(Double::max()), classicStreamText(Double::max(), true));
  EXPECT_EQ(ReplaceSep(Double::lowest()), classicStreamText(Double::lowest(), true));
  EXPECT_EQ(ReplaceSep(Double::lowest()).size(), 327U);
}

TEST(NumberFormat, NumbersThatAreNotFiniteAreWrittenAsAStreamDoes) {
  for (const double value : {Double::infinity(), -Double::infinity(), Double::quiet_NaN()}) {
    EXPECT_EQ(Format(value, false, nullptr), classicStreamText(value, false));
    EXPECT_EQ(ReplaceSep(value), classicStreamText(value, true));
  }
}

TEST(NumberFormat, RandomNumbersAreWrittenAsAClassicStreamDoes) {
  std::mt19937_64 random(830);
  for (int i = 0; i < 5000; ++i) {
    const double value = std::bit_cast<double>(random());
    EXPECT_EQ(ReplaceSep(value, nullptr), classicStreamText(value, false)) << "number " << i;
    EXPECT_EQ(ReplaceSep(value), classicStreamText(value, true)) << "number " << i;
  }
}

TEST(NumberFormat, AGlobalLocaleThatGroupsThousandsChangesNothing) {
  const ScopedGlobalLocale grouping(groupingLocale());
  std::ostringstream probe;
  probe << 1234567;
  ASSERT_EQ(probe.str(), "1.234.567");

  expectMachineTexts();
  EXPECT_EQ(Format(2.5, true, "%.2f"), "2.50");
  EXPECT_EQ(GetDecimalCharacter(), ".");
}

TEST(NumberFormat, ADecimalCommaChangesThePrintedFormAlone) {
  const ScopedCLocale german({"de_DE.UTF-8", "de_DE.utf8"});
  if (!german.isInstalled()) GTEST_SKIP() << "NOT TESTED: de_DE.UTF-8 is not installed";

  expectMachineTexts();
  EXPECT_EQ(GetDecimalCharacter(), ",");
  EXPECT_EQ(Format(2.5, true, "%.2f"), "2,50");
  EXPECT_EQ(Format(0.5, true, nullptr), "0,5");
}

TEST(NumberFormat, AnInstalledLocaleThatGroupsThousandsChangesThePrintedFormAlone) {
  const ScopedCLocale installed({"de_DE.UTF-8", "de_DE.utf8"});
  if (!installed.isInstalled()) GTEST_SKIP() << "NOT TESTED: de_DE.UTF-8 is not installed";
  const ScopedGlobalLocale german{std::locale(installed.name())};
  std::ostringstream probe;
  probe << 1234567;
  ASSERT_EQ(probe.str(), "1.234.567");

  expectMachineTexts();
  EXPECT_EQ(Format(1234567.5, true, "%.2f"), "1234567,50");
}

}  // namespace

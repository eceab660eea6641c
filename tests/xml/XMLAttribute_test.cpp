#include "xml/XMLAttribute.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "tests/support/locales.h"
#include "tests/xml/nodeText.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::ExportFormat;
using OrbXML_830::XMLAttribute;

std::unique_ptr<XMLAttribute> owned(XMLAttribute* attribute) {
  return std::unique_ptr<XMLAttribute>(attribute);
}

TEST(XMLAttribute, ATextStandsInDoubleQuotes) {
  const auto attribute = owned(XMLAttribute::Create("name", "text"));

  EXPECT_EQ(textOf(*attribute), R"(name="text")");
}

TEST(XMLAttribute, AnEmptyTextIsTwoQuotes) {
  const auto attribute = owned(XMLAttribute::Create("name", ""));

  EXPECT_EQ(textOf(*attribute), R"(name="")");
}

TEST(XMLAttribute, TheValueIsEscapedAndTheNameIsNot) {
  const auto attribute = owned(XMLAttribute::Create("a<b", "a<b>&\"c\""));
  const auto spaces = owned(XMLAttribute::Create("s", " a  b "));

  EXPECT_EQ(textOf(*attribute), R"(a<b="a&lt;b&gt;&amp;&quot;c&quot;")");
  EXPECT_EQ(textOf(*spaces), R"(s="&#32;a &#32;b&#32;")");
}

TEST(XMLAttribute, ANumberHasAtMostFifteenSignificantDigits) {
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 0.1))), R"(n="0.1")");
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 1.0 / 3))), R"(n="0.333333333333333")");
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 3.0))), R"(n="3")");
}

TEST(XMLAttribute, AZeroLiteralIsANumber) {
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 0))), R"(n="0")");
}

TEST(XMLAttribute, AFixedNumberHasSixteenDigitsBehindThePoint) {
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 0.1, true))), R"(n="0.1000000000000000")");
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 0.1, false))), R"(n="0.1")");
}

// An element leaves such a value out, but the attribute alone takes it.
TEST(XMLAttribute, ANumberThatIsNotFiniteIsAccepted) {
  const double infinity = std::numeric_limits<double>::infinity();

  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", -infinity))), R"(n="-inf")");
}

TEST(XMLAttribute, NumbersDoNotFollowTheLocale) {
  const ScopedGlobalLocale grouping(groupingLocale());

  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 1234567.5))), R"(n="1234567.5")");
  EXPECT_EQ(textOf(*owned(XMLAttribute::Create("n", 1234567.5, true))),
            R"(n="1234567.5000000000000000")");
}

TEST(XMLAttribute, TheTextIsAppendedAndTheFormatLeftAlone) {
  const auto attribute = owned(XMLAttribute::Create("a", "1"));
  ExportFormat format = layout(true, true);
  std::string text = "before ";

  const int answer = attribute->ToString(text, format);

  EXPECT_EQ(answer, 0);
  EXPECT_EQ(text, R"(before a="1")");
  EXPECT_TRUE(format.IsNewParagraph());
  EXPECT_TRUE(format.HasIndentation());
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(XMLAttribute, TheStreamGetsTheSameText) {
  const auto attribute = owned(XMLAttribute::Create("a", "\xE4 <"));

  EXPECT_EQ(streamTextOf(*attribute), "a=\"\xE4 &lt;\"");
}

TEST(XMLAttribute, TheStreamGetsUtf8OnRequest) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());
  const auto attribute = owned(XMLAttribute::Create("a", "\xC3\xA4\xFF"));

  EXPECT_EQ(streamTextOf(*attribute, {}, true), "a=\"\xC3\xA4\xEF\xBF\xBD\"");
}

TEST(XMLAttribute, ACloneHasItsOwnNameAndUnescapedValue) {
  auto attribute = owned(XMLAttribute::Create("a", "<&"));

  const auto clone = owned(attribute->Clone());
  attribute.reset();

  EXPECT_EQ(textOf(*clone), R"(a="&lt;&amp;")");
}

}  // namespace

#include "xml/XMLString.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "tests/support/locales.h"
#include "tests/xml/nodeText.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::ExportFormat;
using OrbXML_830::XMLString;

std::unique_ptr<XMLString> string(const std::string& text) {
  return std::unique_ptr<XMLString>(XMLString::Create(text));
}

TEST(XMLString, OnlyAmpersandAndLessThanAreEscaped) {
  EXPECT_EQ(textOf(*string("a<b>&\"c\"")), "a&lt;b>&amp;\"c\"");
  EXPECT_EQ(textOf(*string("&lt;")), "&amp;lt;");
  EXPECT_EQ(textOf(*string("&&<<")), "&amp;&amp;&lt;&lt;");
}

TEST(XMLString, WhiteSpaceAndApostrophesPassUnchanged) {
  EXPECT_EQ(textOf(*string("  it's\t\r\n  ")), "  it's\t\r\n  ");
  EXPECT_EQ(textOf(*string("")), "");
}

TEST(XMLString, TheClosingTagFollowsOnTheSameLine) {
  ExportFormat format;
  std::string text = "before ";

  const int answer = string("x")->ToString(text, format);

  EXPECT_EQ(answer, 0);
  EXPECT_EQ(text, "before x");
  EXPECT_FALSE(format.IsNewParagraph());
}

TEST(XMLString, AnEmptyTextKeepsTheClosingTagOnTheLineToo) {
  ExportFormat format;
  std::string text;

  string("")->ToString(text, format);

  EXPECT_FALSE(format.IsNewParagraph());
}

TEST(XMLString, WritingToAStreamChangesTheFormatAlike) {
  const auto node = string("x");
  ExportFormat format;
  std::ostringstream stream;

  const int answer = node->ToStream(stream, format, false);

  EXPECT_EQ(answer, 0);
  EXPECT_EQ(stream.str(), "x");
  EXPECT_FALSE(format.IsNewParagraph());
}

TEST(XMLString, TheLayoutAddsNeitherLineFeedsNorTabs) {
  ExportFormat format = layout(true, true);
  format.EnterLevel();

  EXPECT_EQ(textOf(*string("x"), format), "x");
}

TEST(XMLString, TheStreamGetsTheSameText) {
  EXPECT_EQ(streamTextOf(*string("\xE4 & <")), "\xE4 &amp; &lt;");
}

TEST(XMLString, TheStreamGetsUtf8OnRequest) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());

  EXPECT_EQ(streamTextOf(*string("\xC3\xA4&\xFF"), {}, true), "\xC3\xA4&amp;\xEF\xBF\xBD");
}

TEST(XMLString, ACloneHasItsOwnUnescapedText) {
  auto node = string("<&");

  const std::unique_ptr<XMLString> clone(node->Clone());
  node.reset();

  EXPECT_EQ(textOf(*clone), "&lt;&amp;");
}

}  // namespace

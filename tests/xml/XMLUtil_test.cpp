#include "xml/XMLUtil.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>

#include "tests/support/locales.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::XMLUtil;

// A text of up to `most` characters of the alphabet.
std::string randomText(std::mt19937& random, std::string_view alphabet, unsigned most) {
  std::string text(random() % (most + 1), ' ');
  for (char& c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

// One replacement after the other, in the promised order.
std::string escapedStepByStep(std::string s) {
  XMLUtil::ReplaceAll(s, "&", "&amp;");
  XMLUtil::ReplaceAll(s, "<", "&lt;");
  XMLUtil::ReplaceAll(s, ">", "&gt;");
  XMLUtil::ReplaceAll(s, "\"", "&quot;");
  XMLUtil::ReplaceAll(s, "\t", "&#9;");
  XMLUtil::ReplaceAll(s, "\n", "&#10;");
  XMLUtil::ReplaceAll(s, "\r", "&#13;");
  XMLUtil::ReplaceAll(s, "  ", " &#32;");
  if (s.empty()) return s;
  if (s.front() == ' ') s = "&#32;" + s.substr(1);
  if (s.back() == ' ') s = s.substr(0, s.size() - 1) + "&#32;";
  return s;
}

// Searches the tail, adds the offset, tests it, and goes on behind the inserted text.
int replacedStepByStep(std::string& s, const std::string& find, const std::string& replacement) {
  int pos = 0;
  while (true) {
    if (pos > static_cast<int>(s.size())) return pos;
    const std::string tail = s.substr(static_cast<std::size_t>(pos));
    const std::size_t found = tail.find(find);
    const int k = found == std::string::npos ? -1 : static_cast<int>(found);
    pos += k;
    if (k == -1) return pos;
    const auto begin = static_cast<std::size_t>(pos);
    s = s.substr(0, begin) + replacement + s.substr(begin + find.size());
    pos += static_cast<int>(replacement.size());
  }
}

TEST(XMLUtil, TheConstantsHaveTheirTexts) {
  EXPECT_EQ(XMLUtil::TAB_LENGTH, 8);
  EXPECT_STREQ(XMLUtil::ROWSEP, "\x0A");
  EXPECT_STREQ(XMLUtil::FIRST_LINE, R"(<?xml version="1.0" encoding="UTF-8" ?>)");
  EXPECT_STREQ(XMLUtil::ITEMINDENT, "\x09");
  EXPECT_STREQ(XMLUtil::QUOTE, "\"");
  EXPECT_STREQ(XMLUtil::EQUAL, "=");
  EXPECT_STREQ(XMLUtil::BEGIN_ELEMENT, "<");
  EXPECT_STREQ(XMLUtil::BEGIN_PREPROCESSOR, "!");
  EXPECT_STREQ(XMLUtil::END_ELEMENT, ">");
  EXPECT_STREQ(XMLUtil::BEGIN_END_ELEMENT, "/");
  EXPECT_STREQ(XMLUtil::SPACE, " ");
}

TEST(XMLUtil, TheReferencesHaveTheirTexts) {
  EXPECT_STREQ(XMLUtil::AMPERSAND, "&");
  EXPECT_STREQ(XMLUtil::LESS_THAN, "<");
  EXPECT_STREQ(XMLUtil::GREATER_THAN, ">");
  EXPECT_STREQ(XMLUtil::XML_AMPERSAND, "&amp;");
  EXPECT_STREQ(XMLUtil::XML_LESS_THAN, "&lt;");
  EXPECT_STREQ(XMLUtil::XML_GREATER_THAN, "&gt;");
  EXPECT_STREQ(XMLUtil::XML_QUOTE, "&quot;");
  EXPECT_STREQ(XMLUtil::XML_CHARREF_TAB, "&#9;");
  EXPECT_STREQ(XMLUtil::XML_CHARREF_NL, "&#10;");
  EXPECT_STREQ(XMLUtil::XML_CHARREF_CR, "&#13;");
  EXPECT_STREQ(XMLUtil::XML_CHARREF_SP, "&#32;");
  EXPECT_STREQ(XMLUtil::XML_SP_CHARREF_SP, " &#32;");
}

TEST(XMLUtil, TheConstantsCannotBeChanged) {
  static_assert(std::is_same_v<decltype(XMLUtil::ROWSEP), const char* const>);
  static_assert(std::is_same_v<decltype(XMLUtil::TAB_LENGTH), const int>);
  static_assert(std::is_trivially_copy_assignable_v<XMLUtil>);
}

TEST(XMLUtil, TabsAreAsManyAsAskedForAndNoneBelowOne) {
  EXPECT_EQ(XMLUtil::GetTabs(3), "\t\t\t");
  EXPECT_EQ(XMLUtil::GetTabs(1), "\t");
  EXPECT_EQ(XMLUtil::GetTabs(0), "");
  EXPECT_EQ(XMLUtil::GetTabs(-3), "");
  EXPECT_EQ(XMLUtil::GetTabs(std::numeric_limits<int>::min()), "");
}

TEST(XMLUtil, WholeNumbersAreDecimal) {
  EXPECT_EQ(XMLUtil::toString(0), "0");
  EXPECT_EQ(XMLUtil::toString(1234567), "1234567");
  EXPECT_EQ(XMLUtil::toString(std::numeric_limits<int>::max()), "2147483647");
  EXPECT_EQ(XMLUtil::toString(std::numeric_limits<int>::min()), "-2147483648");
}

TEST(XMLUtil, WholeNumbersAreNotGrouped) {
  const ScopedGlobalLocale grouping(groupingLocale());

  EXPECT_EQ(XMLUtil::toString(1234567), "1234567");
}

TEST(XMLUtil, ReplaceStringReplacesTheFirstOccurrenceAndAnswersItsIndex) {
  std::string text = "aXbX";

  EXPECT_EQ(XMLUtil::ReplaceString(text, "X", "YY"), 1);
  EXPECT_EQ(text, "aYYbX");
}

TEST(XMLUtil, ReplaceStringWithoutTheTextChangesNothing) {
  std::string text = "abc";

  EXPECT_EQ(XMLUtil::ReplaceString(text, "X", "Y"), -1);
  EXPECT_EQ(text, "abc");
}

TEST(XMLUtil, ReplaceAllAnswersTheLastIndexOfTheLastReplacement) {
  std::string text = "aXbX";

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "X", "YY"), 5);
  EXPECT_EQ(text, "aYYbYY");
}

TEST(XMLUtil, ReplaceAllWithoutTheTextChangesNothing) {
  std::string text = "abc", empty;

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "X", "Y"), -1);
  EXPECT_EQ(XMLUtil::ReplaceAll(empty, "X", "Y"), -1);
  EXPECT_EQ(text, "abc");
}

TEST(XMLUtil, ReplaceAllDoesNotSearchWhatItInserted) {
  std::string text = "XX";

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "X", "aX"), 3);
  EXPECT_EQ(text, "aXaX");
}

TEST(XMLUtil, ReplaceAllCanRemove) {
  std::string text = "aXbX";

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "X", ""), 1);
  EXPECT_EQ(text, "ab");
}

TEST(XMLUtil, ReplaceAllTakesOccurrencesFromLeftToRightWithoutOverlap) {
  std::string text = "XXXXX";

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "XX", "y"), 1);
  EXPECT_EQ(text, "yyX");
}

TEST(XMLUtil, ReplaceAllOfAnEmptyTextEndsAndChangesNothing) {
  std::string text = "abc";

  EXPECT_EQ(XMLUtil::ReplaceAll(text, "", "Y"), -1);
  EXPECT_EQ(text, "abc");
}

TEST(XMLUtil, ReplaceAllEqualsItsStepsOnRandomTexts) {
  std::mt19937 random(41);
  for (int i = 0; i < 20000; ++i) {
    const std::string before = randomText(random, "ab", 10);
    const std::string find = "a" + randomText(random, "ab", 2);
    const std::string replacement = randomText(random, "abc", 3);
    std::string text = before, expected = before;

    const int answer = XMLUtil::ReplaceAll(text, find.c_str(), replacement);

    ASSERT_EQ(answer, replacedStepByStep(expected, find, replacement))
        << before << ": " << find << " by " << replacement;
    ASSERT_EQ(text, expected) << before << ": " << find << " by " << replacement;
  }
}

TEST(XMLUtil, EscapeMakesReferencesOfMarkup) {
  EXPECT_EQ(XMLUtil::Escape("a<b>&\"c\""), "a&lt;b&gt;&amp;&quot;c&quot;");
  EXPECT_EQ(XMLUtil::Escape("\t\n\r"), "&#9;&#10;&#13;");
  EXPECT_EQ(XMLUtil::Escape("&lt;"), "&amp;lt;");
}

TEST(XMLUtil, EscapeLeavesEverythingElseAlone) {
  EXPECT_EQ(XMLUtil::Escape(""), "");
  EXPECT_EQ(XMLUtil::Escape("it's [a] b;\xC3\xA4\x01"), "it's [a] b;\xC3\xA4\x01");
  EXPECT_EQ(XMLUtil::Escape(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(XMLUtil, EscapeKeepsEveryRunOfSpaces) {
  EXPECT_EQ(XMLUtil::Escape(" "), "&#32;");
  EXPECT_EQ(XMLUtil::Escape("  "), "&#32;&#32;");
  EXPECT_EQ(XMLUtil::Escape("   "), "&#32;&#32;&#32;");
  EXPECT_EQ(XMLUtil::Escape("    "), "&#32;&#32; &#32;");
  EXPECT_EQ(XMLUtil::Escape(" a  b "), "&#32;a &#32;b&#32;");
  EXPECT_EQ(XMLUtil::Escape("a b"), "a b");
  EXPECT_EQ(XMLUtil::Escape("a   b"), "a &#32; b");
}

TEST(XMLUtil, EscapeEqualsItsStepsOnRandomTexts) {
  std::mt19937 random(42);
  for (int i = 0; i < 50000; ++i) {
    const std::string text = randomText(random, "   &<>\"\t\n\ra;'#", 12);
    ASSERT_EQ(XMLUtil::Escape(text), escapedStepByStep(text)) << "[" << text << "]";
  }
}

}  // namespace

#include "cli/displayText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orbseq::displayWidth;
using orbseq::escapedControls;
using orbseq::fitted;
using orbseq::printable;

TEST(DisplayText, AnAsciiCharacterTakesOneColumn) {
  EXPECT_EQ(displayWidth(""), 0U);
  EXPECT_EQ(displayWidth("Earl Grey"), 9U);
}

TEST(DisplayText, AnAccentedLetterTakesOneColumn) { EXPECT_EQ(displayWidth("M\u00FCsli"), 5U); }

TEST(DisplayText, ACombiningMarkTakesNone) { EXPECT_EQ(displayWidth("Mu\u0308sli"), 5U); }

TEST(DisplayText, WideCharactersAndEmojiTakeTwo) {
  EXPECT_EQ(displayWidth("\u7DD1\u8336"), 4U);
  EXPECT_EQ(displayWidth("\U0001F375"), 2U);
}

TEST(DisplayText, AByteThatIsNoUtf8TakesOneColumn) { EXPECT_EQ(displayWidth("a\xFF"), 2U); }

TEST(DisplayText, FittedTextIsPaddedByColumns) {
  EXPECT_EQ(fitted("tea", 5), "tea  ");
  EXPECT_EQ(fitted("\u7DD1\u8336", 5), "\u7DD1\u8336 ");
  EXPECT_EQ(fitted("", 2), "  ");
}

TEST(DisplayText, FittedTextIsCutBetweenCharacters) {
  EXPECT_EQ(fitted("Earl Grey", 5), "Earl\u2026");
  EXPECT_EQ(fitted("\u7DD1\u8336\u7DD1", 4), "\u7DD1\u2026 ");
  EXPECT_EQ(fitted("abc", 1), "\u2026");
}

TEST(DisplayText, WhatSteersATerminalIsReplaced) {
  EXPECT_EQ(printable("a\x1B[2Jb\n"), "a\uFFFD[2Jb\uFFFD");
  EXPECT_EQ(printable("a\u0085\u202E\u2028"), "a\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(printable("a\xFF"), "a\uFFFD");
}

TEST(DisplayText, OtherTextIsPrintableAsItStands) {
  EXPECT_EQ(printable("M\u00FCsli \U0001F375 <b>"), "M\u00FCsli \U0001F375 <b>");
}

TEST(DisplayText, ControlCharactersAreEscapedInMessages) {
  EXPECT_EQ(escapedControls("a\nb\x1B\x7F\\ \u00FC"), "a\\x0Ab\\x1B\\x7F\\ \u00FC");
}

}  // namespace

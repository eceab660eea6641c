#include "scoring/hostapi/QuErrorFormater.h"

#include <gtest/gtest.h>

namespace {

using OrbScore::QuErrorFormater;

TEST(QuErrorFormater, JoinsItsParts) {
  EXPECT_EQ(QuErrorFormater::Format("what", "where", "detail"), "what: where: detail");
}

TEST(QuErrorFormater, LeavesOutAnEmptyPartWithItsColon) {
  EXPECT_EQ(QuErrorFormater::Format("what", "", "detail"), "what: detail");
  EXPECT_EQ(QuErrorFormater::Format("", "where", ""), "where");
  EXPECT_EQ(QuErrorFormater::Format("", "", ""), "");
}

// Line and paragraph separators and the marks of direction are escaped, their neighbours are not.
TEST(QuErrorFormater, EscapesWhatTurnsLinesAndDirections) {
  for (const char* kept :
       {"\xE2\x80\xA7", "\xE2\x80\xAF", "\xE2\x81\xA5", "\xE2\x81\xAA", "\xF0\x9F\x98\x80"})
    EXPECT_EQ(QuErrorFormater::Quote(kept), '"' + std::string(kept) + '"');
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x80\xA8"), "\"\\xE2\\x80\\xA8\"");
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x80\xAE"), "\"\\xE2\\x80\\xAE\"");
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x81\xA6"), "\"\\xE2\\x81\\xA6\"");
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x81\xA9"), "\"\\xE2\\x81\\xA9\"");
}

TEST(QuErrorFormater, QuotesText) {
  EXPECT_EQ(QuErrorFormater::Quote("abc"), "\"abc\"");
  EXPECT_EQ(QuErrorFormater::Quote(""), "\"\"");
  EXPECT_EQ(QuErrorFormater::Quote("gr\xC3\xBC\xC3\x9F"), "\"gr\xC3\xBC\xC3\x9F\"");
}

TEST(QuErrorFormater, EscapesWhatWouldEndTheQuotation) {
  EXPECT_EQ(QuErrorFormater::Quote(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST(QuErrorFormater, EscapesControlCharacters) {
  EXPECT_EQ(QuErrorFormater::Quote("a\nb\rc\td"), R"("a\nb\rc\td")");
  EXPECT_EQ(QuErrorFormater::Quote("\x1B[2J\x7F"), R"("\x1B[2J\x7F")");
  EXPECT_EQ(QuErrorFormater::Quote(std::string_view("a\0b", 3)), R"("a\x00b")");
  EXPECT_EQ(QuErrorFormater::Quote("\xC2\x85"), R"("\xC2\x85")");
}

TEST(QuErrorFormater, EscapesLineSeparatorsAndMarksThatTurnTheText) {
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x80\xA8"), R"("\xE2\x80\xA8")");
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x80\xAE"), R"("\xE2\x80\xAE")");
  EXPECT_EQ(QuErrorFormater::Quote("\xE2\x81\xA9"), R"("\xE2\x81\xA9")");
}

TEST(QuErrorFormater, EscapesBytesThatAreNotUtf8) {
  EXPECT_EQ(QuErrorFormater::Quote("a\xFF\xC3"), R"("a\xFF\xC3")");
}

TEST(QuErrorFormater, CutsLongText) {
  EXPECT_EQ(QuErrorFormater::Quote(std::string(64, 'x')), '"' + std::string(64, 'x') + '"');
  EXPECT_EQ(QuErrorFormater::Quote(std::string(65, 'x')), '"' + std::string(64, 'x') + "...\"");
}

TEST(QuErrorFormater, CutsBetweenCharacters) {
  std::string text(63, 'x');
  text += "\xC3\xBC";  // its second byte is the 65th
  EXPECT_EQ(QuErrorFormater::Quote(text), '"' + std::string(63, 'x') + "...\"");
}

TEST(QuErrorFormater, TellsARange) {
  EXPECT_EQ(QuErrorFormater::Outside(1, 12), "outside 1..12");
  EXPECT_EQ(QuErrorFormater::Outside(-2147483648, 2147483647), "outside -2147483648..2147483647");
}

}  // namespace

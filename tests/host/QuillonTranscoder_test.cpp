#include "scoring/hostapi/QuillonTranscoder.h"

#include <gtest/gtest.h>

#include "scoring/hostapi/QuException.h"
#include "tests/host/messageOf.h"

namespace {

using OrbScore::QuException;
using OrbScore::QuillonTranscoder;
using test::messageOf;

std::string repeated(const std::string& text, std::size_t times) {
  std::string out;
  for (std::size_t i = 0; i < times; ++i) out += text;
  return out;
}

TEST(QuillonTranscoder, WritesUtf8) {
  EXPECT_EQ(QuillonTranscoder("UTF-8").transcodeTo(u"a\u00E4\u20AC\U0001F600"),
            "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(QuillonTranscoder, NoNameMeansUtf8) {
  const QuillonTranscoder transcoder("");

  EXPECT_EQ(transcoder.GetEncoding(), "UTF-8");
  EXPECT_EQ(transcoder.transcodeTo(u"\u00E4"), "\xC3\xA4");
}

TEST(QuillonTranscoder, WritesEveryEncodingThatTheParserKnows) {
  EXPECT_EQ(QuillonTranscoder("ISO-8859-1").transcodeTo(u"\u00E4"), "\xE4");
  EXPECT_EQ(QuillonTranscoder("windows-1252").transcodeTo(u"\u20AC"), "\x80");
  EXPECT_EQ(QuillonTranscoder("ISO-8859-15").transcodeTo(u"\u20AC"), "\xA4");
  EXPECT_EQ(QuillonTranscoder("KOI8-R").transcodeTo(u"\u0410"), "\xE1");
  EXPECT_EQ(QuillonTranscoder("Shift_JIS").transcodeTo(u"\u3042"), "\x82\xA0");
}

TEST(QuillonTranscoder, ReplacesCharactersThatTheEncodingLacks) {
  EXPECT_EQ(QuillonTranscoder("ISO-8859-1").transcodeTo(u"a\u20ACb"),
            "a\x1A"
            "b");
  EXPECT_EQ(QuillonTranscoder("KOI8-R").transcodeTo(u"a\U0001F600b"),
            "a\x1A"
            "b");
}

TEST(QuillonTranscoder, NullAndEmptyTextsAreEmpty) {
  const QuillonTranscoder transcoder("UTF-8");

  EXPECT_EQ(transcoder.transcodeTo(nullptr), "");
  EXPECT_EQ(transcoder.transcodeTo(u""), "");
}

TEST(QuillonTranscoder, TextMayBeOfAnyLength) {
  const std::u16string text(1'000'003, u'\u20AC');

  EXPECT_EQ(QuillonTranscoder("UTF-8").transcodeTo(text.c_str()),
            repeated("\xE2\x82\xAC", 1'000'003));
}

TEST(QuillonTranscoder, APairOfSurrogatesMayStandAnywhere) {
  for (std::size_t before = 0; before < 3; ++before) {
    std::u16string text(before, u'x');
    for (int i = 0; i < 10'000; ++i) text += u"\U0001F600";

    EXPECT_EQ(QuillonTranscoder("UTF-8").transcodeTo(text.c_str()),
              std::string(before, 'x') + repeated("\xF0\x9F\x98\x80", 10'000));
    EXPECT_EQ(QuillonTranscoder("GB18030").transcodeTo(text.c_str()),
              std::string(before, 'x') + repeated("\x94\x39\xFC\x36", 10'000));
  }
}

TEST(QuillonTranscoder, HalfACharacterIsReplaced) {
  const QuillonTranscoder transcoder("UTF-8");
  const char16_t high[] = {u'a', 0xD83D, u'b', 0};
  const char16_t low[] = {u'a', 0xDE00, 0};
  const char16_t last[] = {u'a', 0xD83D, 0};

  EXPECT_EQ(transcoder.transcodeTo(high),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(transcoder.transcodeTo(low), "a\xEF\xBF\xBD");
  EXPECT_EQ(transcoder.transcodeTo(last), "a\xEF\xBF\xBD");
}

TEST(QuillonTranscoder, OneTextDoesNotChangeTheNext) {
  const QuillonTranscoder transcoder("ISO-8859-1");

  EXPECT_EQ(transcoder.transcodeTo(u"\u20AC"), "\x1A");
  EXPECT_EQ(transcoder.transcodeTo(u"\u00E4"), "\xE4");
}

TEST(QuillonTranscoder, RefusesAnUnknownEncoding) {
  EXPECT_EQ(messageOf<QuException>([] { QuillonTranscoder("nonsense"); }),
            "unknown encoding: \"nonsense\"");
}

TEST(QuillonTranscoder, RefusesWhatIsNoEncodingName) {
  EXPECT_EQ(messageOf<QuException>([] { QuillonTranscoder("UTF-8\n"); }),
            "unknown encoding: \"UTF-8\\n\"");
  EXPECT_EQ(messageOf<QuException>([] { QuillonTranscoder(std::string(1'000'000, 'x')); }),
            "unknown encoding: \"" + std::string(64, 'x') + "...\"");
}

}  // namespace

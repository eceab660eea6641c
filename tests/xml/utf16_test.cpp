#include "xml/utf16.h"

#include <gtest/gtest.h>

#include <string>

#include "common/utf8.h"

namespace {

using OrbXML_830::utf8FromUtf16;

TEST(Utf16, TheFirstAndLastUnitOfEachLengthAreEncoded) {
  EXPECT_EQ(utf8FromUtf16(u"\x7F"), "\x7F");
  EXPECT_EQ(utf8FromUtf16(u"\x80"), "\xC2\x80");
  EXPECT_EQ(utf8FromUtf16(u"\x7FF"), "\xDF\xBF");
  EXPECT_EQ(utf8FromUtf16(u"\x800"), "\xE0\xA0\x80");
  EXPECT_EQ(utf8FromUtf16(u"\xD7FF"), "\xED\x9F\xBF");
  EXPECT_EQ(utf8FromUtf16(u"\xE000"), "\xEE\x80\x80");
  EXPECT_EQ(utf8FromUtf16(u"\xFFFF"), "\xEF\xBF\xBF");
}

TEST(Utf16, EmptyTextsAndZeroUnitsAreEncoded) {
  EXPECT_EQ(utf8FromUtf16(u""), "");
  EXPECT_EQ(utf8FromUtf16(std::u16string(1, u'\0')), std::string(1, '\0'));
}

TEST(Utf16, APairGivesFourBytes) {
  EXPECT_EQ(utf8FromUtf16(u"\U00010000"), "\xF0\x90\x80\x80");
  EXPECT_EQ(utf8FromUtf16(u"\U0001F375"), "\xF0\x9F\x8D\xB5");
  EXPECT_EQ(utf8FromUtf16(u"\U0010FFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(Utf16, EveryCharacterIsEncodedAsUtf8) {
  for (char32_t code = 0; code < 0x110000; ++code) {
    if (code >= 0xD800 && code < 0xE000) continue;
    std::u16string units;
    if (code < 0x10000) {
      units += static_cast<char16_t>(code);
    } else {
      units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
    std::string expected;
    orbseq::appendUtf8(expected, code);

    ASSERT_EQ(utf8FromUtf16(units), expected) << "code " << static_cast<unsigned>(code);
  }
}

// Deliberate: unpaired surrogates are not repaired.
TEST(Utf16, AHighSurrogateAloneGivesTheFirstTwoBytes) {
  EXPECT_EQ(utf8FromUtf16(u"\xD800"
                          u"a"),
            "\xF0\x90"
            "a");
  EXPECT_EQ(utf8FromUtf16(u"\xDBFF"), "\xF4\x8F");
}

// Deliberate: unpaired surrogates are not repaired.
TEST(Utf16, ALowSurrogateAloneGivesTheLastTwoBytes) {
  EXPECT_EQ(utf8FromUtf16(u"\xDC00"), "\x80\x80");
  EXPECT_EQ(utf8FromUtf16(u"\xDFFF"), "\x8F\xBF");
}

// Deliberate: the bits that a high surrogate leaves stay until the next one.
TEST(Utf16, ALaterLowSurrogateTakesTheBitsThatWereKept) {
  EXPECT_EQ(utf8FromUtf16(u"\xD803"
                          u"a"
                          u"\xDC00\xDC00"),
            "\xF0\x90"
            "a"
            "\xB0\x80\xB0\x80");
  EXPECT_EQ(utf8FromUtf16(u"\xD803\xD801\xDC00"), "\xF0\x90\xF0\x90\x90\x80");
}

TEST(Utf16, NothingIsKeptFromOneTextToTheNext) {
  utf8FromUtf16(u"\xD803");

  EXPECT_EQ(utf8FromUtf16(u"\xDC00"), "\x80\x80");
}

}  // namespace

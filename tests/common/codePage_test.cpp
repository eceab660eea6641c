#include "common/platform/codePage.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/locales.h"

namespace {

using orbseq::platform::narrowToUtf16;
using orbseq::test::ScopedCLocale;

TEST(CodePage, AsciiIsItself) {
  const ScopedCLocale classic({"C"});

  EXPECT_EQ(narrowToUtf16("az AZ\n\x7F"), u"az AZ\n\x7F");
  EXPECT_EQ(narrowToUtf16(""), u"");
  EXPECT_EQ(narrowToUtf16(std::string("a\0b", 3)), std::u16string(u"a\0b", 3));
}

TEST(CodePage, InTheClassicLocaleEveryOtherByteIsReplaced) {
  const ScopedCLocale classic({"C"});

  EXPECT_EQ(narrowToUtf16("a\xC3\xA4z\xFF"), u"a\uFFFD\uFFFDz\uFFFD");
}

TEST(CodePage, Utf8IsDecodedInAUtf8Locale) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());

  EXPECT_EQ(narrowToUtf16("a\xC3\xA4\xE2\x82\xACz"), u"a\u00E4\u20ACz");
}

TEST(CodePage, ACharacterBeyondTheBasicPlaneIsAPair) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());

  EXPECT_EQ(narrowToUtf16("\xF0\x9F\x8D\xB5"), u"\xD83C\xDF75");
}

TEST(CodePage, BytesThatAreNoUtf8AreReplacedOneByOne) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());

  EXPECT_EQ(narrowToUtf16("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(narrowToUtf16("a\xE2\x82"), u"a\uFFFD\uFFFD");
  EXPECT_EQ(narrowToUtf16("\xC0\x80"), u"\uFFFD\uFFFD");
  EXPECT_EQ(narrowToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
}

TEST(CodePage, LongTextsAreDecodedWhole) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());
  std::string text = "x";
  std::u16string expected = u"x";
  for (int i = 0; i < 5000; ++i) {
    text += i % 1000 == 999 ? "\xFF" : "\xF0\x9F\x8D\xB5";
    expected += i % 1000 == 999 ? u"\uFFFD" : u"\U0001F375";
  }

  EXPECT_EQ(narrowToUtf16(text), expected);
}

// So long that the converter's room is used up before a wrong byte stops it.
TEST(CodePage, LongTextsWithoutAWrongByteAreDecodedWhole) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());
  std::string text = "x";
  std::u16string expected = u"x";
  for (int i = 0; i < 10'000; ++i) {
    text += "\xF0\x9F\x8D\xB5";
    expected += u"\U0001F375";
  }

  EXPECT_EQ(narrowToUtf16(text), expected);
}

TEST(CodePage, Latin1IsDecodedInALatin1Locale) {
  const ScopedCLocale latin1({"de_DE.ISO-8859-1", "de_DE.iso88591", "en_US.ISO-8859-1"});
  if (!latin1.isInstalled()) GTEST_SKIP() << "NOT TESTED: no ISO-8859-1 locale is installed";

  EXPECT_EQ(narrowToUtf16("a\xE4\xFF"), u"a\u00E4\u00FF");
}

// There a letter waits for an accent behind it.
TEST(CodePage, ALetterThatWaitsForAnAccentIsNotLost) {
  const ScopedCLocale combining({"vi_VN.TCVN", "vi_VN.tcvn"});
  if (!combining.isInstalled()) GTEST_SKIP() << "NOT TESTED: vi_VN.TCVN is not installed";

  EXPECT_EQ(narrowToUtf16("ab"), u"ab");
}

}  // namespace

#include "common/platform/codePage.h"

#include <gtest/gtest.h>

#include <clocale>
#include <initializer_list>
#include <string>

namespace {

using orbseq::platform::narrowToUtf16;

// Sets the C locale to the first of the names that is installed, and restores what was set.
class ScopedCLocale {
 public:
  ScopedCLocale(std::initializer_list<const char*> names) {
    for (const char* const name : names)
      if (!installed_) installed_ = std::setlocale(LC_ALL, name) != nullptr;
  }
  ~ScopedCLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
  ScopedCLocale(const ScopedCLocale&) = delete;
  ScopedCLocale& operator=(const ScopedCLocale&) = delete;

  bool isInstalled() const { return installed_; }

 private:
  std::string previous_ = std::setlocale(LC_ALL, nullptr);
  bool installed_ = false;
};

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

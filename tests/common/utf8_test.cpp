#include "common/utf8.h"

#include <gtest/gtest.h>

#include <string_view>

namespace {

using orbseq::firstCharacter;
using orbseq::firstInvalidUtf8;

constexpr std::size_t kValid = std::string_view::npos;

TEST(Utf8, CharactersOfOneToFourBytesAreRead) {
  EXPECT_EQ(firstCharacter("A").code, U'A');
  EXPECT_EQ(firstCharacter("\xC3\xA4").code, U'\u00E4');
  EXPECT_EQ(firstCharacter("\xE2\x82\xAC").code, U'\u20AC');
  EXPECT_EQ(firstCharacter("\xF0\x9F\x8D\xB5").code, U'\U0001F375');
  EXPECT_EQ(firstCharacter("\xF0\x9F\x8D\xB5").length, 4U);
}

TEST(Utf8, TheEmptyTextHasNoCharacterAndIsValid) {
  EXPECT_EQ(firstCharacter("").length, 0U);
  EXPECT_EQ(firstInvalidUtf8(""), kValid);
}

TEST(Utf8, TheFirstAndLastCodeOfEachLengthAreValid) {
  EXPECT_EQ(firstInvalidUtf8("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"), kValid);
  EXPECT_EQ(firstInvalidUtf8("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"), kValid);
  EXPECT_EQ(firstInvalidUtf8("\xED\x9F\xBF\xEE\x80\x80"), kValid);
}

TEST(Utf8, OverlongFormsAreInvalid) {
  EXPECT_EQ(firstInvalidUtf8("ab\xC0\x80"), 2U);
  EXPECT_EQ(firstInvalidUtf8("\xC1\xBF"), 0U);
  EXPECT_EQ(firstInvalidUtf8("\xE0\x9F\xBF"), 0U);
  EXPECT_EQ(firstInvalidUtf8("\xF0\x8F\xBF\xBF"), 0U);
}

TEST(Utf8, SurrogatesAreInvalid) {
  EXPECT_EQ(firstInvalidUtf8("a\xED\xA0\x80"), 1U);
  EXPECT_EQ(firstInvalidUtf8("a\xED\xBF\xBF"), 1U);
}

TEST(Utf8, CodesAboveTheLastAreInvalid) {
  EXPECT_EQ(firstInvalidUtf8("\xF4\x90\x80\x80"), 0U);
  EXPECT_EQ(firstInvalidUtf8("\xF5\x80\x80\x80"), 0U);
  EXPECT_EQ(firstInvalidUtf8("\xFF"), 0U);
}

TEST(Utf8, CutSequencesAndLoneContinuationsAreInvalid) {
  EXPECT_EQ(firstInvalidUtf8("abc\xE2\x82"), 3U);
  EXPECT_EQ(firstInvalidUtf8("\xE2\x82z"), 0U);
  EXPECT_EQ(firstInvalidUtf8("z\x80"), 1U);
}

}  // namespace

#include "xml/LineTokenizer.h"

#include <gtest/gtest.h>
#include <string.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace {

using OrbXML_830::LineTokenizer;

TEST(LineTokenizer, LeadingSeparatorsAreSkippedAndTheNextOneEndsTheToken) {
  LineTokenizer tokens("\t<Int value=\"3\"/>");

  EXPECT_EQ(tokens.next(" \t<"), "Int");
  EXPECT_EQ(tokens.next("=\""), "value");
  EXPECT_EQ(tokens.next("\""), "3");
  EXPECT_EQ(tokens.next("\""), "/>");
  EXPECT_EQ(tokens.next("\""), std::nullopt);
}

TEST(LineTokenizer, EachTokenHasItsOwnSeparators) {
  LineTokenizer tokens("a b=c");

  EXPECT_EQ(tokens.next("="), "a b");
  EXPECT_EQ(tokens.next(""), "c");
}

TEST(LineTokenizer, OnlyOneSeparatorIsConsumedBehindAToken) {
  LineTokenizer tokens("a==b");

  EXPECT_EQ(tokens.next("="), "a");
  EXPECT_EQ(tokens.rest(), "=b");
  EXPECT_EQ(tokens.next(""), "=b");
}

TEST(LineTokenizer, ALineOfSeparatorsHasNoToken) {
  LineTokenizer separators(" \t "), empty("");

  EXPECT_EQ(separators.next(" \t"), std::nullopt);
  EXPECT_EQ(separators.next(""), std::nullopt);
  EXPECT_EQ(empty.next(" "), std::nullopt);
  EXPECT_EQ(empty.rest(), "");
}

TEST(LineTokenizer, AZeroByteEndsTheLine) {
  LineTokenizer tokens(std::string_view("a b\0c d", 7));

  EXPECT_EQ(tokens.next(" "), "a");
  EXPECT_EQ(tokens.next(" "), "b");
  EXPECT_EQ(tokens.next(" "), std::nullopt);
}

TEST(LineTokenizer, ATokenIsComparedAsAWholeAndWithItsCase) {
  EXPECT_TRUE(LineTokenizer(" Obj ").nextIs("Obj", " "));
  EXPECT_FALSE(LineTokenizer("obj").nextIs("Obj", " "));
  EXPECT_FALSE(LineTokenizer("Objx").nextIs("Obj", " "));
  EXPECT_FALSE(LineTokenizer("Ob").nextIs("Obj", " "));
  EXPECT_FALSE(LineTokenizer("").nextIs("", " "));
}

TEST(LineTokenizer, WhatStandsAroundTheLatestTokenCanBeAsked) {
  LineTokenizer tokens("x=\"\"/>");

  tokens.next("=");
  EXPECT_EQ(tokens.before(), "");
  EXPECT_EQ(tokens.rest(), "\"\"/>");

  tokens.next("\"");
  EXPECT_EQ(tokens.before(), "x=\"\"");
  EXPECT_EQ(tokens.rest(), "");
}

TEST(LineTokenizer, TokensEqualTheCLibrarysOnRandomLines) {
  std::mt19937 random(255);
  const auto text = [&random](unsigned most) {
    std::string t(random() % (most + 1), ' ');
    for (char& c : t) c = " =\"ab"[random() % 5];
    return t;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string line = text(12);
    std::string buffer = line;
    LineTokenizer tokens(line);
    char* state = nullptr;
    for (int request = 0; request < 5; ++request) {
      const std::string separators = text(3);

      const auto token = tokens.next(separators);

      const char* const expected =
          ::strtok_r(request == 0 ? buffer.data() : nullptr, separators.c_str(), &state);
      ASSERT_EQ(token.has_value(), expected != nullptr) << "[" << line << "] line " << i;
      if (expected == nullptr) break;
      ASSERT_EQ(*token, expected) << "[" << line << "] line " << i;
    }
  }
}

}  // namespace

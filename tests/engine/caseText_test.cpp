#include "engine/caseText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using orbseq::CaseLimits;

using orbseq::engine::appendCaseText;
using orbseq::engine::History;
using Sets = std::vector<std::vector<std::int32_t>>;

History parsed(const std::string& text) {
  History history;
  appendCaseText(text, history);
  return history;
}

Sets setsOf(const std::string& text) {
  const History history = parsed(text);
  Sets sets;
  for (std::size_t k = 0; k < history.sets(); ++k)
    sets.emplace_back(history.set(k).begin(), history.set(k).end());
  return sets;
}

TEST(CaseText, ParenthesesHoldItemSets) { EXPECT_EQ(setsOf("(1 2)(3)"), (Sets{{1, 2}, {3}})); }

TEST(CaseText, BytesOutsideParenthesesAreIgnored) {
  EXPECT_EQ(setsOf("x 9 (1 2)[ignored](3) 4)"), (Sets{{1, 2}, {3}}));
}

TEST(CaseText, ABracketOutsideParenthesesIsNoTimeStamp) {
  EXPECT_EQ(setsOf("[7](1)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("[(5)](1)"), (Sets{{5}, {1}}));
}

TEST(CaseText, EveryOtherByteSeparatesItems) {
  EXPECT_EQ(setsOf("(1,2 3)"), (Sets{{1, 2, 3}}));
  EXPECT_EQ(setsOf("(1 2 3)"), (Sets{{1, 2, 3}}));
  EXPECT_EQ(setsOf("(a1b2c3)"), (Sets{{1, 2, 3}}));
  EXPECT_EQ(setsOf("(1(2)"), (Sets{{1, 2}}));
  EXPECT_EQ(setsOf(std::string("(1\0\xC3\xA9\xFF"
                               "2)",
                               8)),
            (Sets{{1, 2}}));
}

// Deliberate: a minus sign is a separator like any other.
TEST(CaseText, AMinusSignIsSkipped) { EXPECT_EQ(setsOf("(-4)"), (Sets{{4}})); }

TEST(CaseText, ItemsAscendWithoutDuplicates) { EXPECT_EQ(setsOf("(5 5 3)"), (Sets{{3, 5}})); }

TEST(CaseText, NothingInParenthesesIsASetOfItsOwn) {
  EXPECT_EQ(setsOf("()"), (Sets{{}}));
  EXPECT_EQ(setsOf("([5])"), (Sets{{}}));
  EXPECT_EQ(setsOf("()()(1)"), (Sets{{}, {}, {1}}));
}

TEST(CaseText, AnUnclosedSetCounts) {
  EXPECT_EQ(setsOf("(1 2"), (Sets{{1, 2}}));
  EXPECT_EQ(setsOf("("), (Sets{{}}));
}

TEST(CaseText, TextWithoutParenthesesIsAnEmptyHistory) {
  for (const char* text : {"", "   ", "abc", ")))", "1 2 3", "]"}) EXPECT_EQ(setsOf(text), Sets{});
}

TEST(CaseText, NestedAndStrayParenthesesFollowTheRules) {
  EXPECT_EQ(setsOf("((1)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("(1))(2"), (Sets{{1}, {2}}));
}

// Deliberate: numbers wrap around at 32 bits.
TEST(CaseText, AnItemWrapsAroundAt32Bits) {
  EXPECT_EQ(setsOf("(4294967297)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("(4294967295)"), (Sets{{-1}}));
  EXPECT_EQ(setsOf("(2147483648)"), (Sets{{std::numeric_limits<std::int32_t>::min()}}));
  EXPECT_EQ(setsOf("(99999999999999999999999)"), (Sets{{-159383553}}));
}

TEST(CaseText, ATimeStampIsNoItem) {
  EXPECT_EQ(setsOf("(1[3.5]2)"), (Sets{{1, 2}}));
  EXPECT_EQ(setsOf("(7 3 [2.5]) (9)"), (Sets{{3, 7}, {9}}));
  EXPECT_EQ(setsOf("([12:30] 1)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("([(3)4]1)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("([]1[x][3])"), (Sets{{1}}));
  EXPECT_EQ(setsOf("([1.2.3]1)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("([" + std::string(1 << 20, '9') + "]1)"), (Sets{{1}}));
}

TEST(CaseText, AnUnclosedStampEndsWithTheText) {
  EXPECT_EQ(setsOf("(["), (Sets{{}}));
  EXPECT_EQ(setsOf("(1 [42"), (Sets{{1}}));
  EXPECT_EQ(setsOf("(1 [42)(2)"), (Sets{{1}}));
  EXPECT_EQ(setsOf("(1 [" + std::string(1 << 20, '9')), (Sets{{1}}));
}

TEST(CaseText, SetsOfAnySizeWork) {
  for (const int size : {99, 100, 101, 10'000}) {
    std::string text = "(";
    for (int item = size; item > 0; --item) text += std::to_string(item) + " ";
    EXPECT_EQ(parsed(text + ")").set(0).size(), static_cast<std::size_t>(size));
  }
}

TEST(CaseText, TheTextIsAppendedToTheHistory) {
  History history = parsed("(1)");

  appendCaseText("(2)", history);

  EXPECT_EQ(history.sets(), 2U);
}

// What a text within limits comes to, or what is told of the limit that it passes.
std::string readWithin(const CaseLimits& limits, const std::string& text) {
  orbseq::engine::History history;
  try {
    orbseq::engine::appendCaseText(text, limits, history);
  } catch (const orbseq::engine::CaseLimitPassed& error) {
    return error.what();
  }
  return std::to_string(history.sets()) + " sets, " + std::to_string(history.items()) + " items";
}

TEST(CaseText, ALimitIsReachedButNotPassed) {
  CaseLimits limits;
  limits.textBytes = 6;
  EXPECT_EQ(readWithin(limits, "(1)(2)"), "2 sets, 2 items");
  EXPECT_EQ(readWithin(limits, "(1)(2) "), "the history has more than 6 bytes, the limit");

  limits = CaseLimits();
  limits.sets = 2;
  EXPECT_EQ(readWithin(limits, "()(1)"), "2 sets, 1 items");
  EXPECT_EQ(readWithin(limits, "()(1)("), "the history has more than 2 item sets, the limit");

  limits = CaseLimits();
  limits.items = 2;
  EXPECT_EQ(readWithin(limits, "(1 1 1)(1)"), "2 sets, 2 items");
  EXPECT_EQ(readWithin(limits, "(1 2 3"), "the history has more than 2 items, the limit");
}

TEST(CaseText, ByDefaultThereIsNoLimit) {
  std::string text;
  for (int k = 0; k < 20'000; ++k) text += "(1 2 3)";

  EXPECT_EQ(readWithin({}, text), "20000 sets, 60000 items");
  EXPECT_EQ(readWithin(CaseLimits::strangers(), text),
            "the history has more than 65536 bytes, the limit");
}

}  // namespace

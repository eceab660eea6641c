#include "scoring/CaseText.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using OrbQuillon_830::appendCaseText;
using SEQUENCE_NAMESPACE_800::Sequence;
using Sets = std::vector<std::vector<std::int32_t>>;

Sequence parsed(const std::string& text) {
  Sequence sequence;
  appendCaseText(text, sequence);
  return sequence;
}

Sets setsOf(const std::string& text) {
  const Sequence sequence = parsed(text);
  Sets sets;
  for (std::int32_t i = 0; i < sequence.Length(); ++i)
    sets.emplace_back(sequence[i]->Begin(), sequence[i]->End());
  return sets;
}

double timeOf(const std::string& text) { return parsed(text).GetTimeOfTimedItemSet(0); }

constexpr double kMissing = std::numeric_limits<double>::lowest();

TEST(CaseText, ParenthesesHoldItemSets) { EXPECT_EQ(setsOf("(1 2)(3)"), (Sets{{1, 2}, {3}})); }

TEST(CaseText, BytesOutsideParenthesesAreIgnored) {
  EXPECT_EQ(setsOf("x 9 (1 2)[ignored](3) 4)"), (Sets{{1, 2}, {3}}));
}

TEST(CaseText, ABracketOutsideParenthesesIsNoTimeStamp) {
  EXPECT_EQ(timeOf("[7](1)"), 0.0);
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

TEST(CaseText, ATimeStampIsTheSetsTime) {
  EXPECT_EQ(timeOf("(1[3.5]2)"), 3.5);
  EXPECT_EQ(setsOf("(1[3.5]2)"), (Sets{{1, 2}}));
  EXPECT_EQ(timeOf("(7 3 [2.5]) (9)"), 2.5);
  EXPECT_EQ(parsed("(7 3 [2.5]) (9)").GetTimeOfTimedItemSet(1), 0.0);
}

TEST(CaseText, OnlyDigitsAndPointsOfAStampCount) {
  EXPECT_EQ(timeOf("([12:30] 1)"), 1230.0);
  EXPECT_EQ(timeOf("([-2.5]1)"), 2.5);
  EXPECT_EQ(timeOf("([(3)4]1)"), 34.0);
}

TEST(CaseText, AStampWithoutDigitsLeavesTheTime) {
  EXPECT_EQ(timeOf("([]1)"), 0.0);
  EXPECT_EQ(timeOf("([8][x]1)"), 8.0);
}

TEST(CaseText, TheLastStampStands) { EXPECT_EQ(timeOf("([1]2[3])"), 3.0); }

TEST(CaseText, AStampThatIsNoNumberGivesTheMissingValue) {
  EXPECT_EQ(timeOf("([1.2.3]1)"), kMissing);
  EXPECT_EQ(timeOf("([.]1)"), kMissing);
}

TEST(CaseText, AnUnclosedStampEndsWithTheText) {
  EXPECT_EQ(timeOf("(1 [42"), 42.0);
  EXPECT_EQ(setsOf("(["), (Sets{{}}));
  EXPECT_EQ(setsOf("(1 [42"), (Sets{{1}}));
}

TEST(CaseText, LongStampsAreReadUpToTheirLimit) {
  EXPECT_EQ(timeOf("([" + std::string(48, '1') + "]1)"),
            111111111111111111111111111111111111111111111111.0);
  EXPECT_EQ(timeOf("([" + std::string(63, '0') + "7]1)"), 7.0);
  EXPECT_EQ(timeOf("([" + std::string(64, '0') + "7]1)"), kMissing);
  EXPECT_EQ(timeOf("(1 [" + std::string(1 << 20, '9')), kMissing);
}

TEST(CaseText, SetsOfAnySizeWork) {
  for (const int size : {99, 100, 101, 10'000}) {
    std::string text = "(";
    for (int item = size; item > 0; --item) text += std::to_string(item) + " ";
    EXPECT_EQ(parsed(text + ")")[0]->Size(), size);
  }
}

TEST(CaseText, TheTextIsAppendedToTheSequence) {
  Sequence sequence = parsed("(1)");

  appendCaseText("(2)", sequence);

  EXPECT_EQ(sequence.Length(), 2);
}

}  // namespace

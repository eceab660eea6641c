// Hostile case text: rows C01 to C16 and C22. A case is always answered, with success, and as
// the item sets say that can be read from its text.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "common/Limits.h"
#include "engine/caseText.h"
#include "scoring/hostapi/ScoreResult.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/caseModels.h"

namespace {

using namespace std::string_literals;
using orbseq::CaseLimits;
using orbseq::engine::appendCaseText;
using orbseq::engine::CaseLimitPassed;
using orbseq::test::caseModel;
using orbseq::test::messageUnder;
using orbseq::test::Meter;
using test::Answer;
using test::ask;
using test::Mode;
using testing::ElementsAre;
using testing::IsEmpty;

using ItemSets = std::vector<std::vector<std::int32_t>>;

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Mode kModes[] = {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings};

ItemSets setsIn(std::string_view text) {
  orbseq::engine::History history;
  appendCaseText(text, history);
  ItemSets sets;
  for (std::size_t k = 0; k < history.sets(); ++k)
    sets.emplace_back(history.set(k).begin(), history.set(k).end());
  return sets;
}

// A text of those sets alone: negative items as the unsigned numbers that they are in a text.
std::string plainTextOf(const ItemSets& sets) {
  std::string text;
  for (const auto& set : sets) {
    text += '(';
    for (const std::int32_t item : set)
      text += std::to_string(static_cast<std::uint32_t>(item)) + ' ';
    text += ')';
  }
  return text;
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

// From 0x80 to 0xFF.
std::string everyHighByte() {
  std::string bytes;
  for (int byte = 0x80; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

struct Row {
  const char* name;
  std::string text;
  ItemSets sets;
};
void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

class HostileCaseText : public testing::TestWithParam<Row> {};

TEST_P(HostileCaseText, GivesTheItemSetsThatCanBeRead) {
  EXPECT_EQ(setsIn(GetParam().text), GetParam().sets);
}

TEST_P(HostileCaseText, IsAnsweredAsThoseItemSetsAre) {
  const Row& row = GetParam();
  const std::string plain = plainTextOf(row.sets);
  caseModel();  // what the host and the parser keep is made now

  const Meter meter(row.text.size());
  {
    const auto model = caseModel();
    for (const Mode mode : kModes) EXPECT_EQ(ask(*model, row.text, mode), ask(*model, plain, mode));
  }
  meter.check();
}

const Row kRows[] = {
    {"C01Empty", "", {}},
    {"C01Blanks", " \t\r\n ", {}},
    {"C01Letters", "abc", {}},
    {"C01ClosingAlone", ")))", {}},
    {"C01StampOutside", "[2.5]1 2", {}},
    {"C02OpeningAlone", "(", {{}}},
    {"C02Unclosed", "(1 2", {{1, 2}}},
    {"C02OpenedTwice", "((1)", {{1}}},
    {"C02ClosedTwice", "(1))(2", {{1}, {2}}},
    {"C03EmptySet", "()", {{}}},
    {"C03EmptySetsFirst", "()()(1)", {{}, {}, {1}}},
    {"C03EmptySetLast", "(1)()", {{1}, {}}},
    {"C03StampAlone", "([5])", {{}}},
    {"C04CommaAndBlank", "(1,2 3)", {{1, 2, 3}}},
    {"C04Letters", "(a1b2c3)", {{1, 2, 3}}},
    {"C04Minus", "(-4)", {{4}}},
    {"C04TwiceAndFalling", "(5 5 3)", {{3, 5}}},
    {"C05WrapsTo1", "(4294967297)", {{1}}},
    {"C06WrapsAgain", "(99999999999999999999999)", {{-159383553}}},
    {"C06AMegabyteOfNines", "(" + std::string(kMiB, '9') + " 2)", {{-1, 2}}},
    {"C07MinusOne", "(4294967295)", {{-1}}},
    {"C07SmallestInteger", "(2147483648)", {{INT32_MIN}}},
    {"C07BothBesideAKnownOne", "(1 4294967295 2147483648)", {{INT32_MIN, -1, 1}}},
    // Times play no part in any answer, so a stamp's whole outcome is that it is no item.
    {"C08StampAmongItems", "(1[3.5]2)", {{1, 2}}},
    {"C08StampWithColon", "([12:30] 1)", {{1}}},
    {"C08StampWithMinus", "([-2.5]1)", {{1}}},
    {"C08StampWithParentheses", "([(2)]1)", {{1}}},
    {"C08TwoStamps", "([1]1[2]2)", {{1, 2}}},
    {"C09UnclosedEmpty", "([", {{}}},
    {"C09UnclosedDigit", "([1", {{}}},
    {"C09UnclosedAfterAnItem", "(1 [" + std::string(kMiB, '7'), {{1}}},
    {"C09UnclosedHidesWhatFollows", "(1 [2)(2)", {{1}}},
    {"C10PointAlone", "([.]1)", {{1}}},
    {"C10TwoPoints", "([1.2.3]1)", {{1}}},
    {"C10Empty", "([]1)", {{1}}},
    {"C11Digits48", "([" + std::string(48, '1') + "]1)", {{1}}},
    {"C11Digits49", "([" + std::string(49, '1') + "]1)", {{1}}},
    {"C11Digits4096", "([" + std::string(4096, '1') + "]1)(2)", {{1}, {2}}},
    {"C12Nul", "(1\0002)\0(2)"s, {{1, 2}, {2}}},
    {"C12HighBytes",
     "(1\x80\xFF\xC3\x28"
     "2)\xFE",
     {{1, 2}}},
    {"C12EveryHighByte",
     everyHighByte() + "(1" + everyHighByte() + "2)" + everyHighByte() + "(2)",
     {{1, 2}, {2}}},
    {"C12EveryHighByteInAStamp", "([1" + everyHighByte() + "2]2)", {{2}}},
    {"C12Utf8", "(1 \u00e9\uff13 2)", {{1, 2}}},  // a wide digit is no digit
    {"C12RightToLeftMarks", "(\u200f1\u202e2\u202c)", {{1, 2}}},
    {"C12NulInAStamp", "([1\0002]2)"s, {{2}}},
};
INSTANTIATE_TEST_SUITE_P(Texts, HostileCaseText, testing::ValuesIn(kRows),
                         [](const auto& it) { return it.param.name; });

// The answers written out, so that the comparison of texts above compares something.
TEST(HostileCases, C01AnswersWithWhatIsPopular) {
  const auto model = caseModel();

  for (const char* text : {"", "  ", "abc", ")))"}) {
    EXPECT_THAT(ask(*model, text, Mode::kCurrent),
                ElementsAre(Answer{1, 0.8, 0.8, 1.0}, Answer{2, 0.5, 0.5, 1.0}));
    EXPECT_THAT(ask(*model, text, Mode::kFuture),
                ElementsAre(Answer{1, 0.8, 0.8, 1.0}, Answer{2, 0.5, 0.5, 1.0}));
  }
}

TEST(HostileCases, C02AnswersWithWhatIsRead) {
  const auto model = caseModel();

  EXPECT_THAT(ask(*model, "(1", Mode::kCurrent), ElementsAre(Answer{2, 0.5, 0.4, 0.8}));
  EXPECT_THAT(ask(*model, "((1)", Mode::kFuture), ElementsAre(Answer{2, 0.25, 0.2, 0.4}));
}

TEST(HostileCases, C03AnEmptyLastSetHasNoCurrentItems) {
  const auto model = caseModel();

  EXPECT_THAT(ask(*model, "()", Mode::kCurrent), IsEmpty());
  EXPECT_EQ(ask(*model, "(1)()", Mode::kCurrent), ask(*model, "(1)", Mode::kCurrent));
}

TEST(HostileCases, C22ItemsThatAreAllUnknownHaveAnEmptyAnswer) {
  caseModel();  // what the host and the parser keep is made now

  for (const char* text : {"(5)", "(5 6)(7)", "(0)", "(4294967295)(2147483648)"})
    for (const Mode mode : kModes) {
      const Meter meter(std::string_view(text).size());
      EXPECT_THAT(ask(*caseModel(), text, mode), IsEmpty()) << text;
      meter.check();
    }
}

// The items from `first` down to `last`, in one set.
std::string fallingSet(int first, int last) {
  std::string text = "(";
  for (int item = first; item >= last; --item) text += std::to_string(item) + ' ';
  return text + ")";
}

// Item 1, behind so many others that no model here knows.
std::string setThatEndsWith1(int others) {
  std::string text = fallingSet(others + 9, 10);
  text.insert(text.size() - 1, "1");
  return text;
}

// What (1) is answered with.
Answer answerTo1(Mode mode) {
  return mode == Mode::kCurrent ? Answer{2, 0.5, 0.4, 0.8} : Answer{2, 0.25, 0.2, 0.4};
}

TEST(HostileCases, C13SetsOfAnySizeAreReadWhole) {
  for (const Mode mode : kModes)
    ASSERT_THAT(ask(*caseModel(), "(1)", mode), ElementsAre(answerTo1(mode)));

  for (const int items : {99, 100, 101, 10'000}) {
    const std::string text = setThatEndsWith1(items - 1);

    const Meter meter(text.size());
    {
      const auto model = caseModel();
      const ItemSets sets = setsIn(text);
      ASSERT_EQ(sets.size(), 1U);
      EXPECT_EQ(sets.front().size(), static_cast<std::size_t>(items));
      for (const Mode mode : kModes)
        EXPECT_THAT(ask(*model, text, mode), ElementsAre(answerTo1(mode))) << items;
    }
    meter.check();
  }
}

TEST(HostileCases, C14AMillionItemsInASetAreAnsweredWithinASecond) {
  caseModel();  // what the host and the parser keep is made now
  const std::string text = setThatEndsWith1(999'999);

  for (const Mode mode : kModes) {
    const Meter meter(text.size());
    {
      const auto model = caseModel();
      const auto begin = std::chrono::steady_clock::now();
      const std::vector<Answer> answers = ask(*model, text, mode);
      const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;

      EXPECT_THAT(answers, ElementsAre(answerTo1(mode)));
      EXPECT_LT(spent.count(), 1.0 * Meter::slowdown());
    }
    meter.check();
  }
}

// What is told of a text that is read within the limits; empty: they hold it.
std::string refusal(const std::string& text, const CaseLimits& limits) {
  return messageUnder<CaseLimitPassed>(text.size(), [&] {
    orbseq::engine::History history;
    appendCaseText(text, limits, history);
  });
}

// The limits of strangers, but for the bytes of the text.
constexpr CaseLimits strangersOfAnyLength() {
  CaseLimits limits = CaseLimits::strangers();
  limits.textBytes = CaseLimits::kNone;
  return limits;
}

TEST(HostileCases, C14AMillionItemsInASetAreTooManyOfAStranger) {
  const std::string text = setThatEndsWith1(999'999);

  EXPECT_EQ(refusal(text, {}), "");
  EXPECT_EQ(refusal(text, CaseLimits::strangers()),
            "the history has more than 65536 bytes, the limit");
  EXPECT_EQ(refusal(text, strangersOfAnyLength()),
            "the history has more than 10000 items, the limit");
}

TEST(HostileCases, C15MoreThanAThousandSetsAreTooManyOfAStranger) {
  const std::string most = repeated("(1)", 1'000);
  const std::string many = repeated("(1)", 20'000);
  const std::string tooMany = repeated("(1)", 100'000);

  EXPECT_EQ(refusal(most, CaseLimits::strangers()), "");
  EXPECT_EQ(refusal(many, {}), "");
  EXPECT_EQ(refusal(many, CaseLimits::strangers()),
            "the history has more than 1000 item sets, the limit");
  EXPECT_EQ(refusal(tooMany, {}), "");
  EXPECT_EQ(refusal(tooMany, CaseLimits::strangers()),
            "the history has more than 65536 bytes, the limit");
  EXPECT_EQ(refusal(tooMany, strangersOfAnyLength()),
            "the history has more than 1000 item sets, the limit");
}

TEST(HostileCases, C16TextsOf64KiBAreAnsweredWithinATenthOfASecond) {
  constexpr std::size_t kBytes = 64 << 10;
  caseModel();  // what the host and the parser keep is made now

  for (const char* part : {"(", "()", "(1)"}) {
    const std::string text = repeated(part, kBytes / std::string_view(part).size());
    for (const Mode mode : kModes) {
      const Meter meter(text.size());
      ask(*caseModel(), text, mode);
      const std::chrono::duration<double> spent = meter.elapsed();
      EXPECT_LT(spent.count(), 0.1 * Meter::slowdown()) << part;
      meter.check();
    }
  }
}

}  // namespace

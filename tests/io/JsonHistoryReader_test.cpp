#include "io/JsonHistoryReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "io/IoError.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::CustomerHistory;
using orbseq::InputError;
using orbseq::JsonHistoryReader;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using namespace std::string_literals;

// Each history as "line|customer|history".
std::vector<std::string> histories(std::string_view content,
                                   std::size_t lineBytes = JsonHistoryReader::kLineBytes) {
  const TempFolder folder;
  JsonHistoryReader reader(folder.file("f.jsonl", content), {}, lineBytes);
  std::vector<std::string> found;
  CustomerHistory history;
  while (reader.next(history))
    found.push_back(std::to_string(history.row) + "|" + history.customer + "|" + history.history);
  return found;
}

// The error without the folder's name: "f.jsonl:1: ...".
std::string inputError(std::string_view content,
                       std::size_t lineBytes = JsonHistoryReader::kLineBytes) {
  const std::string text = errorOf<InputError>([&] { histories(content, lineBytes); });
  return text.substr(std::min(text.size(), text.find("f.jsonl")));
}

// The error for a line whose history is `value`.
std::string historyError(const std::string& value) {
  return inputError("{\"customer\":1,\"history\":" + value + "}");
}

TEST(JsonHistoryReader, TextMembersAreTakenAsTheyStand) {
  EXPECT_THAT(histories("{\"customer\": \"17\", \"history\": \"(1 2)(3)\"}\n"
                        "{\"history\": \"\", \"customer\": \"\"}\n"),
              ElementsAre("1|17|(1 2)(3)", "2||"));
}

TEST(JsonHistoryReader, EscapesAreDecoded) {
  EXPECT_THAT(histories("{\"customer\": \"M\\u00fcller \\\"x\\\"\", \"history\": \"(1)\"}"),
              ElementsAre("1|M\xC3\xBCller \"x\"|(1)"));
}

TEST(JsonHistoryReader, ANumberAsCustomerBecomesItsDigits) {
  EXPECT_THAT(histories("{\"customer\": 17, \"history\": \"\"}\n"
                        "{\"customer\": -4, \"history\": \"\"}\n"
                        "{\"customer\": 18446744073709551615, \"history\": \"\"}\n"
                        "{\"customer\": 123456789012345678901234567890, \"history\": \"\"}\n"
                        "{\"customer\": 1.50, \"history\": \"\"}\n"),
              ElementsAre("1|17|", "2|-4|", "3|18446744073709551615|",
                          "4|123456789012345678901234567890|", "5|1.50|"));
}

TEST(JsonHistoryReader, ArraysOfItemsBecomeText) {
  EXPECT_THAT(histories("{\"customer\": 1, \"history\": [[1, 2], [3]]}\n"
                        "{\"customer\": 2, \"history\": []}\n"
                        "{\"customer\": 3, \"history\": [[], [7]]}\n"),
              ElementsAre("1|1|(1 2)(3)", "2|2|", "3|3|()(7)"));
}

TEST(JsonHistoryReader, ANegativeItemIsWrittenAsTheUnsignedNumberOfItsBits) {
  EXPECT_THAT(histories("{\"customer\": 1, \"history\": [[-1, -2147483648, 2147483647]]}"),
              ElementsAre("1|1|(4294967295 2147483648 2147483647)"));
}

TEST(JsonHistoryReader, FurtherMembersAreIgnoredWhateverTheyHold) {
  EXPECT_THAT(histories("{\"a\": {\"customer\": [1, {\"history\": 2}]}, \"customer\": 1, "
                        "\"b\": [[null, true, 1.5, \"x\"]], \"history\": [[5]], \"c\": null}"),
              ElementsAre("1|1|(5)"));
}

TEST(JsonHistoryReader, BlankLinesAreSkippedAndCounted) {
  EXPECT_THAT(histories("\n  \r\n{\"customer\": 1, \"history\": \"\"}\r\n\n"), ElementsAre("3|1|"));
}

TEST(JsonHistoryReader, TheLastLineNeedsNoEnd) {
  EXPECT_THAT(histories("{\"customer\": 1, \"history\": \"\"}"), ElementsAre("1|1|"));
}

TEST(JsonHistoryReader, AnEmptyFileHasNoHistories) { EXPECT_THAT(histories(""), IsEmpty()); }

TEST(JsonHistoryReader, AByteOrderMarkIsSkipped) {
  EXPECT_THAT(histories("\xEF\xBB\xBF{\"customer\": 1, \"history\": \"\"}"), ElementsAre("1|1|"));
}

TEST(JsonHistoryReader, Utf16IsRefused) {
  EXPECT_EQ(inputError("\xFF\xFE{\0"s), "f.jsonl:1:1: the file is UTF-16; UTF-8 is wanted");
}

TEST(JsonHistoryReader, WhatIsNotJsonIsRefusedWithLineAndByte) {
  EXPECT_EQ(inputError("{\"customer\": 1, \"history\": \"\"}\n{\"customer\": x}\n"),
            "f.jsonl:2: byte 14: syntax error while parsing value - invalid literal");
  EXPECT_EQ(inputError("{\"customer\": 1"),
            "f.jsonl:1: byte 15: syntax error while parsing object - unexpected end of input; "
            "expected '}'");
  EXPECT_EQ(inputError("{\"customer\": 1, \"history\": \"\"} x"),
            "f.jsonl:1: byte 32: syntax error while parsing value - invalid literal");
  EXPECT_EQ(inputError("{\"customer\": 1e999, \"history\": \"\"}"),
            "f.jsonl:1: byte 18: not valid JSON");
}

TEST(JsonHistoryReader, InvalidUtf8AndRawControlCharactersAreRefused) {
  EXPECT_EQ(inputError("{\"customer\": \"\xFF\"}"),
            "f.jsonl:1: byte 15: syntax error while parsing value - invalid string: ill-formed "
            "UTF-8 byte");
  EXPECT_EQ(inputError("{\"customer\": \"\0\"}"s),
            "f.jsonl:1: byte 15: syntax error while parsing value - invalid string: control "
            "character U+0000 (NUL) must be escaped to \\u0000");
}

TEST(JsonHistoryReader, AnEscapedNulIsRefused) {
  EXPECT_EQ(inputError("{\"customer\": \"a\\u0000\", \"history\": \"\"}"),
            "f.jsonl:1: the customer holds a NUL");
  EXPECT_EQ(historyError("\"\\u0000\""), "f.jsonl:1: the history holds a NUL");
}

TEST(JsonHistoryReader, AMissingMemberIsRefused) {
  EXPECT_EQ(inputError("{\"history\": \"\"}"), "f.jsonl:1: no member \"customer\"");
  EXPECT_EQ(inputError("{\"customer\": 1}"), "f.jsonl:1: no member \"history\"");
  EXPECT_EQ(inputError("{}"), "f.jsonl:1: no member \"customer\"");
}

TEST(JsonHistoryReader, ADoubledMemberIsRefused) {
  EXPECT_EQ(inputError("{\"customer\": 1, \"customer\": 2, \"history\": \"\"}"),
            "f.jsonl:1: the member \"customer\" stands twice");
  EXPECT_EQ(inputError("{\"customer\": 1, \"history\": [], \"history\": \"\"}"),
            "f.jsonl:1: the member \"history\" stands twice");
}

TEST(JsonHistoryReader, ALineThatIsNoObjectIsRefused) {
  EXPECT_EQ(inputError("[]"), "f.jsonl:1: an object is wanted, not an array");
  EXPECT_EQ(inputError("\"x\""), "f.jsonl:1: an object is wanted, not text");
  EXPECT_EQ(inputError("17"), "f.jsonl:1: an object is wanted, not a number");
  EXPECT_EQ(inputError("null"), "f.jsonl:1: an object is wanted, not null");
}

TEST(JsonHistoryReader, ACustomerOfAnotherKindIsRefused) {
  EXPECT_EQ(inputError("{\"customer\": null}"),
            "f.jsonl:1: the customer is text or a number, not null");
  EXPECT_EQ(inputError("{\"customer\": true}"),
            "f.jsonl:1: the customer is text or a number, not a truth value");
  EXPECT_EQ(inputError("{\"customer\": [1]}"),
            "f.jsonl:1: the customer is text or a number, not an array");
  EXPECT_EQ(inputError("{\"customer\": {}}"),
            "f.jsonl:1: the customer is text or a number, not an object");
}

TEST(JsonHistoryReader, AHistoryOfAnotherShapeIsRefused) {
  const std::string text =
      "f.jsonl:1: the history is text or an array of arrays of item numbers, not ";

  EXPECT_EQ(historyError("null"), text + "null");
  EXPECT_EQ(historyError("5"), text + "a number");
  EXPECT_EQ(historyError("{}"), text + "an object");
  EXPECT_EQ(historyError("[1]"), text + "a number");
  EXPECT_EQ(historyError("[\"1\"]"), text + "text");
  EXPECT_EQ(historyError("[[\"1\"]]"), text + "text");
  EXPECT_EQ(historyError("[[[1]]]"), text + "a deeper array");
  EXPECT_EQ(historyError("[[{}]]"), text + "an object");
}

TEST(JsonHistoryReader, BasketsAndTimesThatAreNoArraysAreRefused) {
  EXPECT_EQ(inputError("{\"customer\": 1, \"baskets\": \"1\"}"),
            "f.jsonl:1: the baskets are an array of arrays of items, not text");
  EXPECT_EQ(inputError("{\"customer\": 1, \"times\": \"2020-01-01\"}"),
            "f.jsonl:1: the times are an array of numbers or texts, not text");
  EXPECT_EQ(inputError("{\"customer\": 1, \"times\": 5}"),
            "f.jsonl:1: the times are an array of numbers or texts, not a number");
}

TEST(JsonHistoryReader, AnItemThatIsNoInteger32IsRefused) {
  EXPECT_EQ(historyError("[[2147483648]]"),
            "f.jsonl:1: item 2147483648 outside -2147483648..2147483647");
  EXPECT_EQ(historyError("[[-2147483649]]"),
            "f.jsonl:1: item -2147483649 outside -2147483648..2147483647");
  EXPECT_EQ(historyError("[[18446744073709551615]]"),
            "f.jsonl:1: item 18446744073709551615 is not an integer of 32 bits");
  EXPECT_EQ(historyError("[[1.0]]"), "f.jsonl:1: item 1.0 is not an integer of 32 bits");
}

TEST(JsonHistoryReader, DepthOfTheLimitIsReadAndMoreRefused) {
  const auto nested = [](int arrays) {
    return "{\"x\":" + std::string(static_cast<std::size_t>(arrays), '[') +
           std::string(static_cast<std::size_t>(arrays), ']') + ",\"customer\":1,\"history\":\"\"}";
  };

  EXPECT_THAT(histories(nested(63)), ElementsAre("1|1|"));
  EXPECT_EQ(inputError(nested(64)),
            "f.jsonl:1: more than 64 levels of objects and arrays, the limit");
  EXPECT_EQ(inputError(nested(1'000'000)),
            "f.jsonl:1: more than 64 levels of objects and arrays, the limit");
}

TEST(JsonHistoryReader, ALineOfTheLimitIsReadAndALongerOneRefused) {
  const std::string line = "{\"customer\":1,\"history\":\"\"}";

  EXPECT_THAT(histories(line + "\n" + line, line.size()), ElementsAre("1|1|", "2|1|"));
  EXPECT_EQ(inputError(line + "\n " + line, line.size()),
            "f.jsonl:2: the line is longer than 27 bytes, the limit");
}

TEST(JsonHistoryReader, ALineWithoutEndStopsAtTheLimit) {
  const TempFolder folder;
  const std::string path = folder.file("f.jsonl", "");
  std::filesystem::resize_file(path, std::uintmax_t{1} << 30U);
  JsonHistoryReader reader(path);
  CustomerHistory history;

  const std::string error = errorOf<InputError>([&] { reader.next(history); });

  EXPECT_THAT(error, EndsWith("f.jsonl:1: the line is longer than 16777216 bytes, the limit"));
  EXPECT_LE(reader.bytesRead(), 16'777'216U + 2 * 65'536U);
}

}  // namespace

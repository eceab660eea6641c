#include "io/HistoryReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "io/IoError.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::CustomerHistory;
using orbseq::HistoryFormat;
using orbseq::historyFormatOf;
using orbseq::HistoryReader;
using orbseq::InputError;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

// Each history as "row|customer|history".
std::vector<std::string> histories(std::string_view content,
                                   HistoryFormat format = HistoryFormat::kCsv) {
  const TempFolder folder;
  HistoryReader reader(folder.file("f", content), format);
  std::vector<std::string> found;
  CustomerHistory history;
  while (reader.next(history))
    found.push_back(std::to_string(history.row) + "|" + history.customer + "|" + history.history);
  return found;
}

std::string inputError(std::string_view content) {
  return errorOf<InputError>([&] { histories(content); });
}

TEST(HistoryReader, CsvHasTheColumnsCustomerAndHistory) {
  EXPECT_THAT(histories("customer,history\n17,(1 2)(3)\n18,\n"),
              ElementsAre("2|17|(1 2)(3)", "3|18|"));
}

TEST(HistoryReader, TheColumnsStandInAnyOrderAmongOthers) {
  EXPECT_THAT(histories("town,history,,customer,\nUlm,(1),,17,\n"), ElementsAre("2|17|(1)"));
}

TEST(HistoryReader, AMissingColumnIsRefusedWithTheColumnsFound) {
  EXPECT_THAT(inputError("customer,items\n"),
              EndsWith("f:1: no column \"history\"; the columns are \"customer\", \"items\""));
}

TEST(HistoryReader, AColumnNameOfOtherCaseIsRefused) {
  EXPECT_THAT(inputError("Customer,history\n"),
              EndsWith("f:1: no column \"customer\"; the columns are \"Customer\", \"history\""));
}

TEST(HistoryReader, ADoubledColumnIsRefused) {
  EXPECT_THAT(inputError("customer,history,history\n"),
              EndsWith("f:1: more than one column \"history\"; the columns are \"customer\", "
                       "\"history\", \"history\""));
}

TEST(HistoryReader, AHeaderAloneHasNoHistories) {
  EXPECT_THAT(histories("customer,history\n"), IsEmpty());
}

TEST(HistoryReader, JsonLinesAreReadThroughTheSameInterface) {
  EXPECT_THAT(
      histories("{\"customer\": \"17\", \"history\": \"(1 2)(3)\"}\n", HistoryFormat::kJsonLines),
      ElementsAre("1|17|(1 2)(3)"));
}

TEST(HistoryReader, NameSizeAndBytesReadAreThoseOfTheFile) {
  const TempFolder folder;
  HistoryReader reader(folder.file("f.csv", "customer,history\n17,(1)\n"), HistoryFormat::kCsv);
  CustomerHistory history;
  while (reader.next(history)) continue;

  EXPECT_EQ(reader.name(), folder.path("f.csv"));
  EXPECT_EQ(reader.size(), 24U);
  EXPECT_EQ(reader.bytesRead(), 24U);
}

TEST(HistoryFormat, TheNameTellsTheFormat) {
  EXPECT_EQ(historyFormatOf("a/b.csv"), HistoryFormat::kCsv);
  EXPECT_EQ(historyFormatOf("A.CSV"), HistoryFormat::kCsv);
  EXPECT_EQ(historyFormatOf("b.jsonl"), HistoryFormat::kJsonLines);
  EXPECT_EQ(historyFormatOf("b.ndjson"), HistoryFormat::kJsonLines);
}

TEST(HistoryFormat, StandardInputIsCsv) { EXPECT_EQ(historyFormatOf("-"), HistoryFormat::kCsv); }

TEST(HistoryFormat, OtherNamesTellNothing) {
  EXPECT_EQ(historyFormatOf("b.json"), std::nullopt);
  EXPECT_EQ(historyFormatOf("csv"), std::nullopt);
  EXPECT_EQ(historyFormatOf(""), std::nullopt);
}

}  // namespace

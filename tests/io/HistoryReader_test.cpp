#include "io/HistoryReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "io/IoError.h"
#include "tests/support/StandardInput.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::CustomerHistory;
using orbseq::HistoryReader;
using orbseq::InputError;
using orbseq::ItemLabelMap;
using orbseq::ItemNames;
using orbseq::LogFormat;
using orbseq::LogOptions;
using orbseq::test::errorOf;
using orbseq::test::StandardInput;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

// Each history as "row|customer|history".
std::vector<std::string> histories(std::string_view content, LogFormat format = LogFormat::kCsv) {
  const TempFolder folder;
  LogOptions options;
  options.format = format;
  HistoryReader reader(folder.file("f", content), options);
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
              EndsWith("f:1: neither a column \"item\" nor a column \"history\"; the columns are "
                       "\"customer\", \"items\""));
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
      histories("{\"customer\": \"17\", \"history\": \"(1 2)(3)\"}\n", LogFormat::kJsonLines),
      ElementsAre("1|17|(1 2)(3)"));
}

TEST(HistoryReader, NameSizeAndBytesReadAreThoseOfTheFile) {
  const TempFolder folder;
  HistoryReader reader(folder.file("f.csv", "customer,history\n17,(1)\n"), LogOptions());
  CustomerHistory history;
  while (reader.next(history)) continue;

  EXPECT_EQ(reader.name(), folder.path("f.csv"));
  EXPECT_EQ(reader.size(), 24U);
  EXPECT_EQ(reader.bytesRead(), 24U);
}

// What every form makes of the same purchases: tea and milk, then an item that the model does not
// know, then bread.
class HistoryForms : public testing::Test {
 protected:
  std::vector<std::string> read(LogFormat format, std::string_view content) {
    LogOptions options;
    options.format = format;
    options.builder.known = &names_;
    HistoryReader reader(folder_.file("f", content), options);
    std::vector<std::string> found;
    CustomerHistory history;
    while (reader.next(history)) found.push_back(history.customer + "|" + history.history);
    unknown_ = reader.unknown().occurrences;
    examples_ = reader.unknown().examples;
    return found;
  }

  const TempFolder folder_;
  const ItemNames names_{ItemLabelMap{{3, "tea green"}, {5, "milk"}, {9, "bread white"}}};
  std::size_t unknown_ = 0;
  std::vector<std::string> examples_;
};

TEST_F(HistoryForms, ALongLogIsGroupedAndItsItemsAreLookedUp) {
  EXPECT_THAT(read(LogFormat::kCsv,
                   "customer,time,item\n7,3,bread\n7,1,milk\n8,1,9\n7,2,caviar\n7,1,tea\n"),
              ElementsAre("7|(3 5)()(9)", "8|(9)"));
  EXPECT_EQ(unknown_, 1U);
  EXPECT_THAT(examples_, ElementsAre("caviar"));
}

TEST_F(HistoryForms, BasketLinesToo) {
  EXPECT_THAT(read(LogFormat::kBasket, "7 1 2 tea milk\n7 2 1 caviar\n7 3 1 bread\n"),
              ElementsAre("7|(3 5)()(9)"));
  EXPECT_EQ(unknown_, 1U);
}

TEST_F(HistoryForms, JsonBasketsToo) {
  EXPECT_THAT(read(LogFormat::kJsonLines,
                   "{\"customer\":7,\"baskets\":[[\"bread\"],[\"tea\",\"milk\"],[\"caviar\"]],"
                   "\"times\":[3,1,2]}\n"
                   "{\"customer\":8,\"baskets\":[[9],[]]}\n"),
              ElementsAre("7|(3 5)()(9)", "8|(9)()"));
  EXPECT_EQ(unknown_, 1U);
  EXPECT_THAT(examples_, ElementsAre("caviar"));
}

TEST_F(HistoryForms, SpmfHasNumbers) {
  EXPECT_THAT(read(LogFormat::kSpmf, "3 5 -1 77 -1 9 -1 -2\n"), ElementsAre("1|(3 5)(77)(9)"));
}

TEST_F(HistoryForms, ATsvWithHistoriesIsReadAsSuch) {
  EXPECT_THAT(read(LogFormat::kTsv, "customer\thistory\n7\t(3 5)(9)\n"), ElementsAre("7|(3 5)(9)"));
}

TEST(HistoryReader, FormsThatAreReadAsAWholeMayComeOnStandardInput) {
  const TempFolder folder;
  const StandardInput input(folder.file("f", "7 1 2 3 5\n7 2 1 9\n"));
  LogOptions options;
  options.format = LogFormat::kBasket;
  HistoryReader reader("-", options);
  CustomerHistory history;

  ASSERT_TRUE(reader.next(history));
  EXPECT_EQ(history.history, "(3 5)(9)");
  EXPECT_EQ(reader.name(), "standard input");
}

// Names of items are looked at when all lines are read: no line belongs to the error.
TEST(HistoryReader, ErrorsBehindTheLastLineNameStandardInput) {
  const TempFolder folder;
  const StandardInput input(folder.file("f", "@ITEM=7=" + std::string(2'000'000, 'x') + "\n"));
  LogOptions options;
  options.format = LogFormat::kSpmf;
  options.builder.items = orbseq::ItemKind::kText;

  EXPECT_EQ(errorOf<InputError>([&] { HistoryReader("-", options); }),
            "standard input: the description is longer than 1048576 bytes, the limit");
}

TEST(LogFormat, TheNameTellsTheFormat) {
  using orbseq::logFormatOf;
  EXPECT_EQ(logFormatOf("a/b.csv"), LogFormat::kCsv);
  EXPECT_EQ(logFormatOf("A.CSV"), LogFormat::kCsv);
  EXPECT_EQ(logFormatOf("b.csv.gz"), LogFormat::kCsv);
  EXPECT_EQ(logFormatOf("b.tsv"), LogFormat::kTsv);
  EXPECT_EQ(logFormatOf("b.spmf.GZ"), LogFormat::kSpmf);
  EXPECT_EQ(logFormatOf("b.basket"), LogFormat::kBasket);
  EXPECT_EQ(logFormatOf("b.jsonl"), LogFormat::kJsonLines);
  EXPECT_EQ(logFormatOf("b.ndjson"), LogFormat::kJsonLines);
  EXPECT_EQ(logFormatOf("b.sqlite"), LogFormat::kSqlite);
  EXPECT_EQ(logFormatOf("b.db"), LogFormat::kSqlite);
  EXPECT_EQ(logFormatOf("-"), LogFormat::kCsv) << "standard input";
}

TEST(LogFormat, OtherNamesTellNothing) {
  using orbseq::logFormatOf;
  EXPECT_EQ(logFormatOf("b.json"), std::nullopt);
  EXPECT_EQ(logFormatOf("csv"), std::nullopt);
  EXPECT_EQ(logFormatOf("b.gz"), std::nullopt);
  EXPECT_EQ(logFormatOf(""), std::nullopt);
}

TEST(LogFormat, EveryNameIsAFormat) {
  for (const std::string& name : orbseq::logFormatNames())
    EXPECT_TRUE(orbseq::logFormatNamed(name)) << name;
  EXPECT_EQ(orbseq::logFormatNamed("ndjson"), std::nullopt);
}

}  // namespace

// Hostile customers' data: rows V01 to V11, what a log's bytes, rows and columns hold. A log that
// is refused is so with file, row and column and status 2, and the old model stays.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "io/CsvReader.h"
#include "io/IoError.h"
#include "io/LogReader.h"
#include "tests/hostile/logs.h"
#include "tests/support/FailingAllocator.h"

namespace {

using namespace std::string_literals;
using orbseq::InputError;
using orbseq::LogOptions;
using orbseq::test::contentOf;
using orbseq::test::errorOf;
using orbseq::test::Feed;
using orbseq::test::kMegabyte;
using orbseq::test::kSmallMemory;
using orbseq::test::Meter;
using orbseq::test::Outcome;
using orbseq::test::TempFolder;
using orbseq::test::Training;
using testing::HasSubstr;
using testing::Not;

const std::string kHead = "customer,time,item\n";
const std::string kColumns = "; the columns are \"customer\", \"time\", \"item\"";
const std::string kNoTime = " is neither a number nor a date and time";

struct Row {
  const char* name;
  std::string bytes;
  std::string message;  // behind the name of the file
};
void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

class HostileLog : public testing::TestWithParam<Row> {};

TEST_P(HostileLog, IsRefusedWithItsPlaceAndTheOldModelStays) {
  Training().expectRefused("log.csv", GetParam().bytes, GetParam().message);
}

// Where the row is bad, and not the file, it may be left out.
const Row kRows[] = {
    {"V01EmptyFile", "", ": the file is empty; a header row is wanted"},
    {"V01LineEndsAlone", "\n\r\n\n", ": the file is empty; a header row is wanted"},
    {"V02QuoteWithoutEnd", kHead + "a,1,5\nb,1,\"6\nc,1,7\n",
     ":3:3: the quote that opens this field is never closed"},
    {"V02QuoteWithoutEndInTheHeader", "customer,\"time,item\na,1,5\n",
     ":1:2: the quote that opens this field is never closed"},
    {"V03QuoteInsideABareField", kHead + "a,1,5\"6\n",
     ":2:3: a quote inside a field that does not begin with one"},
    {"V03TextAfterTheClosingQuote", kHead + "a,\"1\"2,5\n", ":2:2: text after the closing quote"},
    {"V04TooShort", kHead + "a,1,5\nb,1\n", ":3: expected 3 fields, found 2"},
    {"V04TooLong", kHead + "a,1,5\nb,1,5,6\n", ":3: expected 3 fields, found 4"},
    {"V05AMillionFields", kHead + "a" + std::string(1'000'000, ',') + "\n",
     ":2: the row has more than 1024 fields, the limit"},
    {"V06Nul", kHead + "a,1,5\nb,1,6\0007\n"s, ":3:3: byte 2 of the field is NUL"},
    {"V06InvalidUtf8", kHead + "a,1,5\nb\xC3\x28,1,6\n",
     ":3:1: byte 2 of the field is not valid UTF-8"},
    {"V06Utf16LittleEndian",
     "\xFF\xFE"
     "c\0u\0s\0"s,
     ":1:1: the file is UTF-16; UTF-8 is wanted"},
    {"V06Utf16BigEndian", "\xFE\xFF\0c\0u\0s"s, ":1:1: the file is UTF-16; UTF-8 is wanted"},
    {"V08ColumnMissing", "customer,item\na,5\n",
     ":1: no column \"time\"; the columns are \"customer\", \"item\""},
    {"V08ColumnTwice", "customer,time,item,time\na,1,5,2\n",
     ":1: more than one column \"time\"" + kColumns + ", \"time\""},
    {"V08OtherCase", "customer,Time,item\na,1,5\n",
     ":1: no column \"time\"; the columns are \"customer\", \"Time\", \"item\""},
    {"V09EmptyItem", kHead + "a,1,5\na,2,\n", ":3:3: the item is empty"},
    {"V09EmptyCustomer", kHead + ",1,5\n", ":2:1: the customer is empty"},
    {"V11TimeEmpty", kHead + "a,,5\n", ":2:2: \"\"" + kNoTime},
    {"V11TimeNaN", kHead + "a,NaN,5\n", ":2:2: \"NaN\"" + kNoTime},
    {"V11TimeInfinite", kHead + "a,1,5\na,inf,5\n", ":3:2: \"inf\"" + kNoTime},
    {"V11TimeTooLarge", kHead + "a,1e400,5\n", ":2:2: \"1e400\"" + kNoTime},
    {"V11TimeHexadecimal", kHead + "a,0x10,5\n", ":2:2: \"0x10\"" + kNoTime},
    {"V11NoSuchDay", kHead + "a,2011-02-30,5\n", ":2:2: \"2011-02-30\"" + kNoTime},
    {"V11OtherOrderOfADate", kHead + "a,18.01.2011,5\n", ":2:2: \"18.01.2011\"" + kNoTime},
};
INSTANTIATE_TEST_SUITE_P(Logs, HostileLog, testing::ValuesIn(kRows),
                         [](const auto& it) { return it.param.name; });

TEST(HostileLogs, V01AHeaderAloneMakesAnEmptyModelWithAWarning) {
  for (const std::vector<std::string>& options : {std::vector<std::string>(), {"--quiet"}}) {
    const Training training;
    const std::string log = training.folder().file("log.csv", kHead);

    const Outcome outcome = training.train(log, options);

    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.error,
                HasSubstr("orbseq: warning: the log has no rows, and the model no sequences\n"));
    EXPECT_EQ(training.sequences(), "");
    EXPECT_THAT(training.model(), HasSubstr("<SequentialAssociationLattice"));
  }
}

// A gigabyte is offered, of which the program reads as much as the limit of a field.
TEST(HostileLogs, V02AQuoteWithoutEndStopsAtTheLimitOfAField) {
  const Training training;
  Feed feed(training.folder().path("log.csv"), kHead + "a,1,5\nb,1,\"",
            std::string(kMegabyte, 'x') + "\n", 1024);

  const Outcome outcome = training.train(feed.path(), {}, {.dataBytes = kSmallMemory});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "orbseq: " + feed.path() + ":3:3: the field is longer than 1048576 bytes, the limit\n");
  EXPECT_LT(feed.fed(), 2 * kMegabyte);
  training.expectOldModel(1);
}

// What the reader says of a bad file, within 2 MiB of memory. It is seen twice: what C++ takes at
// most, and what is held at the end, which is also what the C library of CSV holds.
std::string messageWithinTwoMiB(const std::string& path) {
  std::string message;
  message.reserve(1024);
  const long blocks = orbseq::test::livingBlocks();
  const Meter meter(0);
  const struct mallinfo2 before = ::mallinfo2();
  {
    orbseq::CsvReader reader(path);
    try {
      while (reader.next()) EXPECT_EQ(reader.columns().size(), 3U);
    } catch (const InputError& error) {
      message += error.what();
    }
    const std::size_t peak = meter.peakBytes();
    const struct mallinfo2 after = ::mallinfo2();
    EXPECT_LT(peak, 2 * kMegabyte);
    EXPECT_LT(after.uordblks + after.hblkhd, before.uordblks + before.hblkhd + 2 * kMegabyte);
  }
  // A feed's thread may have ended, and given back what is its own.
  EXPECT_LE(orbseq::test::livingBlocks(), blocks);
  return message;
}

TEST(HostileLogs, V02AQuoteWithoutEndTakesNoMoreMemoryThanAField) {
  const TempFolder folder;
  const std::string piece = std::string(kMegabyte / 2 - 1, 'x') + "\n";
  Feed feed(folder.path("log.csv"), kHead + "a,1,5\nb,1,\"", piece, 128);

  EXPECT_EQ(messageWithinTwoMiB(feed.path()),
            feed.path() + ":3:3: the field is longer than 1048576 bytes, the limit");

  EXPECT_LT(feed.fed(), 2 * kMegabyte);
}

// A file that ends behind half of the field's limit.
TEST(HostileLogs, V02AShorterQuoteWithoutEndTakesNoMoreMemoryThanAField) {
  const TempFolder folder;
  const std::string log =
      folder.file("log.csv", kHead + "b,1,\"" + std::string(kMegabyte / 2, '\n'));

  EXPECT_EQ(messageWithinTwoMiB(log),
            log + ":2:3: the quote that opens this field is never closed");
}

TEST(HostileLogs, V05RowsOfFieldsWithoutEndStopAtTheLimitOfThem) {
  const struct {
    std::string piece;
    std::size_t times;
  } rows[] = {
      {std::string(kMegabyte, ','), 100},               // a line of 100 MB
      {std::string(999'997, ',') + "\n", 1},            // a row of a million fields
      {std::string(100, 'x') + ",\"y\"\"\",", 10'000},  // long ones, and quotes
  };
  for (const auto& row : rows) {
    const Training training;
    const std::string path = training.folder().path("log.csv");
    const std::string message = path + ":2: the row has more than 1024 fields, the limit";
    {
      Feed feed(path, kHead + "a,1,", row.piece, row.times);
      EXPECT_EQ(messageWithinTwoMiB(path), message);
      EXPECT_LT(feed.fed(), kMegabyte);
    }
    std::filesystem::remove(path);
    Feed feed(path, kHead + "a,1,", row.piece, row.times);

    const Outcome outcome = training.train(path, {}, {.dataBytes = kSmallMemory});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "orbseq: " + message + "\n");
    EXPECT_LT(feed.fed(), kMegabyte);
    training.expectOldModel(1);
  }
}

// Of a hundred megabytes, likewise, in every form that has lines.
TEST(HostileLogs, V05ALineOf100MBStopsAtALimit) {
  const struct {
    const char* name;
    std::string head;
    std::string message;
  } rows[] = {
      {"log.csv", kHead + "a,1,", ":2:3: the field is longer than 1048576 bytes, the limit"},
      {"log.jsonl", "{\"customer\": \"", ":1: the line is longer than 16777216 bytes, the limit"},
      {"log.spmf", "1 -1 2", ":1: the line is longer than 16777216 bytes, the limit"},
      {"log.basket", "a 1 1 ", ":1: the line is longer than 16777216 bytes, the limit"},
  };
  for (const auto& row : rows) {
    const Training training;
    Feed feed(training.folder().path(row.name), row.head, std::string(kMegabyte, '7'), 100);
    std::vector<std::string> options;
    if (row.name == "log.basket"s) options = {"--input-format", "basket"};

    const Outcome outcome = training.train(feed.path(), options, {.dataBytes = kSmallMemory * 2});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "orbseq: " + feed.path() + row.message + "\n");
    EXPECT_LT(feed.fed(), 18 * kMegabyte);
    training.expectOldModel(1);
  }
}

TEST(HostileLogs, V05ARowOfManyFieldsStopsAtTheLimitOfARow) {
  const Training training;
  Feed feed(training.folder().path("log.csv"), kHead + "a,1,",
            std::string(kMegabyte / 2, 'x') + ",", 200);

  const Outcome outcome = training.train(feed.path(), {}, {.dataBytes = kSmallMemory * 2});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "orbseq: " + feed.path() + ":2:34: the row is longer than 16777216 bytes, the limit\n");
  EXPECT_LT(feed.fed(), 20 * kMegabyte);
}

TEST(HostileLogs, V06AByteOrderMarkOfUtf8IsSkipped) {
  const Training training;

  EXPECT_EQ(
      training.train(training.folder().file("log.csv", "\xEF\xBB\xBF" + kHead + "a,1,5\n")).status,
      0);

  EXPECT_EQ(training.sequences(), "5 -1 #SUP: 1\n");
}

TEST(HostileLogs, V06NulAndInvalidUtf8AreRefusedInEveryForm) {
  const std::vector<std::string> basket = {"--input-format", "basket"};
  Training().expectRefused("log", "a 1 1 x\nb 1 1 y\0z\n"s, ":2:8: the text holds a NUL", basket);
  Training().expectRefused("log", "a 1 1 \xFF\n", ":1:7: the text is no UTF-8", basket);
  Training().expectRefused("log.spmf", "@ITEM=1=x\0y\n1 -1 -2\n"s, ":1:10: the text holds a NUL");
  Training().expectRefused("log.spmf", "1 -1 \0 -2\n"s,
                           ":1:6: \"\\x00\" is no integer from 0 to 2147483647");
  Training().expectRefused("log.spmf", "@ITEM=1=\xC3\n1 -1 -2\n", ":1:9: the text is no UTF-8");
  Training().expectRefused("log.jsonl", R"({"customer": "a", "baskets": [["x\u0000"]]})",
                           ":1: the item holds a NUL");
}

TEST(HostileLogs, V07EveryLineEndReadsTheSame) {
  const std::string lines = kHead + "a,1,5\na,2,6\nb,1,5\n";
  std::string expected;
  for (const char* end : {"\n", "\r\n", "\r", "mixed", "none"}) {
    std::string bytes;
    int number = 0;
    const char* const mixed[] = {"\n", "\r\n", "\r", "\r\n"};
    for (const char c : lines)
      if (c != '\n')
        bytes += c;
      else
        bytes += end == "mixed"s ? mixed[number++] : end == "none"s ? "\n" : end;
    if (end == "none"s) bytes.pop_back();
    const Training training;
    ASSERT_EQ(training.train(training.folder().file("log.csv", bytes)).status, 0) << end;
    if (expected.empty()) expected = training.model();
    EXPECT_EQ(training.model(), expected) << end;
    EXPECT_THAT(training.sequences(), HasSubstr("5 -1 6 -1 #SUP: 1\n"));
  }
}

// A column of integers becomes one of texts by one item that is none; the summary says so.
TEST(HostileLogs, V09ItemsThatAreNoIntegersMakeTextsOfAll) {
  for (const std::string item : {" 12", "1e3", "12.0", "-1", "007", "2147483648"}) {
    const Training training;
    const std::string log =
        training.folder().file("log.csv", kHead + "a,1,5\nb,1,\"" + item + "\"\nc,1,5\n");

    const Outcome outcome = training.train(log);

    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.error, HasSubstr("orbseq: items are texts: \"" + item +
                                         "\" is no integer from 0 to 2147483647\n"));
    EXPECT_THAT(training.model(), HasSubstr("mappedValue=\"5\""));
    Training().expectRefused("log.csv", contentOf(log),
                             ":3:3: \"" + item + "\" is no integer from 0 to 2147483647",
                             {"--items", "integer"});
  }
}

}  // namespace

// Logs that are compressed with gzip.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "io/IoError.h"
#include "io/LogReader.h"
#include "io/TextSource.h"
#include "tests/support/TempFolder.h"
#include "tests/support/gzip.h"

namespace {

using namespace orbseq;
using orbseq::test::compressed;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::HasSubstr;

std::string textOf(std::string_view content) {
  const TempFolder folder;
  TextSource source(folder.file("f", content));
  std::string text;
  for (std::string_view bytes = source.next(); !bytes.empty(); bytes = source.next()) text += bytes;
  EXPECT_EQ(source.next(), "");
  EXPECT_EQ(source.bytesRead(), content.size());
  EXPECT_EQ(source.size(), content.size());
  return text;
}

std::string errorIn(std::string_view content) {
  return errorOf<InputError>([&] { textOf(content); });
}

// Rows of a log, more than a block of them, that compress about as real ones do.
std::string manyRows() {
  std::string text = "customer,time,item\n";
  std::mt19937 random(7);
  for (int row = 0; row < 30000; ++row)
    text += std::to_string(row / 10) + "," + std::to_string(row % 10) + "," +
            std::to_string(random() % 1000) + "\n";
  return text;
}

TEST(Gzip, PlainAndCompressedTextsAreTheSame) {
  for (const std::string& text : {std::string(), std::string("a"), std::string("\n"), manyRows()}) {
    EXPECT_EQ(textOf(compressed(text)), text);
    EXPECT_EQ(textOf(text), text);
  }
}

TEST(Gzip, EveryLengthAroundABlockIsReadToItsEnd) {
  const std::string rows = manyRows();
  for (std::size_t size = 65534; size <= 65538; ++size) {
    const std::string text = rows.substr(0, size);
    EXPECT_EQ(textOf(compressed(text)), text);
    EXPECT_EQ(textOf(text), text);
  }
}

TEST(Gzip, MembersFollowEachOther) {
  const std::string rows = manyRows();
  EXPECT_EQ(textOf(compressed("cust") + compressed("omer\n")), "customer\n");
  EXPECT_EQ(textOf(compressed("") + compressed("a") + compressed("") + compressed("b")), "ab");
  EXPECT_EQ(textOf(compressed(rows) + compressed(rows)), rows + rows);
}

TEST(Gzip, DataThatAreCutOffAreRefused) {
  const std::string bytes = compressed("customer,time,item\nann,1,3\n");
  for (std::size_t size = 2; size < bytes.size(); ++size)
    EXPECT_THAT(errorIn(bytes.substr(0, size)), HasSubstr("the gzip data end too early")) << size;
  const std::string many = compressed(manyRows());
  for (const std::size_t size : {std::size_t{65536}, many.size() - 1, many.size() - 8})
    EXPECT_THAT(errorIn(many.substr(0, size)), HasSubstr("the gzip data end too early")) << size;
  EXPECT_THAT(errorIn(bytes + bytes.substr(0, 5)), HasSubstr("the gzip data end too early"));
}

TEST(Gzip, BrokenDataAreRefused) {
  const std::string bytes = compressed("customer,time,item\nann,1,3\n");
  std::string badMethod = bytes;
  badMethod[2] = 7;
  std::string badSum = bytes;
  badSum[bytes.size() - 8] = static_cast<char>(badSum[bytes.size() - 8] ^ 1);
  std::string badLength = bytes;
  badLength[bytes.size() - 1] = static_cast<char>(badLength[bytes.size() - 1] ^ 1);
  for (const std::string& bad : {badMethod, badSum, badLength, bytes + "text behind"})
    EXPECT_THAT(errorIn(bad), HasSubstr("no gzip data"));
}

TEST(Gzip, AnExpansionBeyondTheLimitIsRefused) {
  const std::string zeros = compressed(std::string(std::size_t{8} << 20U, '\0'));
  ASSERT_LT(zeros.size(), (std::size_t{8} << 20U) / TextSource::kMostExpansion);
  EXPECT_THAT(errorIn(zeros), HasSubstr("100 times"));
}

TEST(Gzip, AMarkInsideIsSkippedAndUtf16Refused) {
  EXPECT_EQ(textOf(compressed("\xEF\xBB\xBF"
                              "a\n")),
            "a\n");
  EXPECT_EQ(textOf(compressed("\xEF\xBB\xBF")), "");
  EXPECT_THAT(errorIn(compressed("\xFF\xFE"
                                 "a")),
              HasSubstr("UTF-16"));
}

TEST(Gzip, EveryFormOfALogMayBeCompressed) {
  struct Case {
    LogFormat format;
    const char* content;
  };
  for (const Case& c :
       {Case{LogFormat::kCsv,
             "\xEF\xBB\xBF"
             "customer,time,item\na,1,3\na,2,5\n"},
        Case{LogFormat::kTsv, "customer\ttime\titem\na\t1\t3\na\t2\t5\n"},
        Case{LogFormat::kSpmf, "3 -1 5 -1 -2\n"}, Case{LogFormat::kBasket, "a 1 1 3\na 2 1 5\n"}}) {
    const TempFolder folder;
    LogOptions options;
    options.format = c.format;
    const TransactionLog log = readLog(folder.file("log.gz", compressed(c.content)), options);
    ASSERT_EQ(log.database.sets(), 2U);
    EXPECT_EQ(log.database.items(0).front(), 3);
    EXPECT_EQ(log.database.items(1).front(), 5);
  }
}

TEST(Gzip, ACutLogIsAnErrorThatNamesTheFile) {
  const TempFolder folder;
  const std::string bytes = compressed(manyRows());
  const std::string path = folder.file("log.csv.gz", bytes.substr(0, bytes.size() / 2));
  EXPECT_EQ(errorOf<InputError>([&] { readLog(path, {}); }),
            path + ": the gzip data end too early");
}

}  // namespace

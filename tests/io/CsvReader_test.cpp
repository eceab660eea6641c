#include "io/CsvReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "io/IoError.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::CsvLimits;
using orbseq::CsvReader;
using orbseq::FileError;
using orbseq::InputError;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::EndsWith;
using namespace std::string_literals;

using Row = std::vector<std::string>;

// The rows below the header, each with its line in front.
std::vector<std::pair<std::size_t, Row>> numberedRows(std::string_view content,
                                                      const CsvLimits& limits = {}) {
  const TempFolder folder;
  CsvReader reader(folder.file("f.csv", content), limits);
  std::vector<std::pair<std::size_t, Row>> rows;
  while (reader.next()) {
    Row row;
    for (std::size_t i = 0; i < reader.columns().size(); ++i) row.emplace_back(reader.field(i));
    rows.emplace_back(reader.row(), row);
  }
  return rows;
}

std::vector<Row> rows(std::string_view content) {
  std::vector<Row> result;
  for (auto& [line, row] : numberedRows(content)) result.push_back(row);
  return result;
}

// The error without the folder's name: "f.csv:2:1: ...".
std::string inputError(std::string_view content, const CsvLimits& limits = {}) {
  const std::string text = errorOf<InputError>([&] { numberedRows(content, limits); });
  return text.substr(std::min(text.size(), text.find("f.csv")));
}

TEST(CsvReader, TheFirstRowNamesTheColumns) {
  const TempFolder folder;
  const CsvReader reader(folder.file("f.csv", "customer,\"his,tory\"\n"));

  EXPECT_THAT(reader.columns(), ElementsAre("customer", "his,tory"));
}

TEST(CsvReader, FieldsAreSeparatedByCommas) {
  EXPECT_THAT(rows("a,b,c\n1,2,3\n"), ElementsAre(Row{"1", "2", "3"}));
}

TEST(CsvReader, FieldsMayBeEmpty) {
  EXPECT_THAT(rows("a,b\n,\n\"\",x\n1,\n"), ElementsAre(Row{"", ""}, Row{"", "x"}, Row{"1", ""}));
}

TEST(CsvReader, QuotesEncloseCommasQuotesAndLineEnds) {
  EXPECT_THAT(rows("a,b\n\"1,2\",\"say \"\"hi\"\"\"\n\"x\ny\r\nz\",\"\"\"\"\n"),
              ElementsAre(Row{"1,2", "say \"hi\""}, Row{"x\ny\r\nz", "\""}));
}

TEST(CsvReader, BlanksBelongToTheField) {
  EXPECT_THAT(rows("a,b\n 1 ,\t2\n"), ElementsAre(Row{" 1 ", "\t2"}));
}

TEST(CsvReader, EveryLineEndReadsTheSame) {
  const std::vector<Row> expected{{"1", "2"}, {"3", "4"}};

  EXPECT_EQ(rows("a,b\n1,2\n3,4\n"), expected);
  EXPECT_EQ(rows("a,b\r\n1,2\r\n3,4\r\n"), expected);
  EXPECT_EQ(rows("a,b\r1,2\r3,4\r"), expected);
  EXPECT_EQ(rows("a,b\r\n1,2\r3,4\n"), expected);
}

TEST(CsvReader, TheLastLineNeedsNoEnd) {
  EXPECT_EQ(rows("a,b\n1,2"), (std::vector<Row>{{"1", "2"}}));
  EXPECT_EQ(rows("a,b\n1,"), (std::vector<Row>{{"1", ""}}));
  EXPECT_EQ(rows("a,b\n1,\"2\""), (std::vector<Row>{{"1", "2"}}));
}

TEST(CsvReader, EmptyLinesAreSkipped) {
  EXPECT_EQ(rows("\n\na,b\n\n1,2\r\n\r\n3,4\n\n"), (std::vector<Row>{{"1", "2"}, {"3", "4"}}));
}

TEST(CsvReader, ALineOfBlanksIsARow) {
  EXPECT_EQ(inputError("a,b\n  \n"), "f.csv:2: expected 2 fields, found 1");
}

TEST(CsvReader, ARowIsNamedByTheLineOnWhichItBegins) {
  using Numbered = std::pair<std::size_t, Row>;
  EXPECT_THAT(numberedRows("a\n1\n\"x\ny\r\nz\"\n\n2\n"),
              ElementsAre(Numbered{2, {"1"}}, Numbered{3, {"x\ny\r\nz"}}, Numbered{7, {"2"}}));
  EXPECT_THAT(numberedRows("a\r1\r\"x\ry\"\r2"),
              ElementsAre(Numbered{2, {"1"}}, Numbered{3, {"x\ry"}}, Numbered{5, {"2"}}));
}

TEST(CsvReader, LinesAreCountedAcrossBlocks) {
  // 65,536 bytes a block: the first one ends between CR and LF.
  const std::string content = "a\r\n" + std::string(65532, 'x') + "\r\n1\r\n";
  ASSERT_EQ(content[65535], '\r');

  const auto found = numberedRows(content);

  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].first, 2U);
  EXPECT_EQ(found[1], (std::pair<std::size_t, Row>{3, {"1"}}));
}

TEST(CsvReader, AQuotedFieldMayReachAcrossBlocks) {
  const std::string field(200'000, 'x');

  EXPECT_EQ(rows("a\n\"" + field + "\"\n"), (std::vector<Row>{{field}}));
}

TEST(CsvReader, AByteOrderMarkIsSkipped) {
  EXPECT_EQ(rows("\xEF\xBB\xBF"
                 "a,b\n1,2\n"),
            (std::vector<Row>{{"1", "2"}}));
  EXPECT_EQ(inputError("\xEF\xBB\xBF"), "f.csv: the file is empty; a header row is wanted");
}

TEST(CsvReader, Utf16IsRefused) {
  EXPECT_EQ(inputError("\xFF\xFE"
                       "a\0"s),
            "f.csv:1:1: the file is UTF-16; UTF-8 is wanted");
  EXPECT_EQ(inputError("\xFE\xFF\0a"s), "f.csv:1:1: the file is UTF-16; UTF-8 is wanted");
}

TEST(CsvReader, AnEmptyFileIsRefused) {
  EXPECT_EQ(inputError(""), "f.csv: the file is empty; a header row is wanted");
  EXPECT_EQ(inputError("\n\r\n"), "f.csv: the file is empty; a header row is wanted");
}

TEST(CsvReader, AHeaderAloneHasNoRows) {
  EXPECT_EQ(rows("a,b\n"), std::vector<Row>());
  EXPECT_EQ(rows("a,b"), std::vector<Row>());
}

TEST(CsvReader, NextAnswersFalseAgainAfterTheEnd) {
  const TempFolder folder;
  CsvReader reader(folder.file("f.csv", "a\n1"));

  EXPECT_TRUE(reader.next());
  EXPECT_FALSE(reader.next());
  EXPECT_FALSE(reader.next());
}

TEST(CsvReader, RowsThatAreTooShortOrTooLongAreRefused) {
  EXPECT_EQ(inputError("a,b\n1,2\n1\n"), "f.csv:3: expected 2 fields, found 1");
  EXPECT_EQ(inputError("a,b\n1,2,3\n"), "f.csv:2: expected 2 fields, found 3");
}

TEST(CsvReader, AQuoteInsideABareFieldIsRefused) {
  EXPECT_EQ(inputError("a,b\n1,x\"y\n"),
            "f.csv:2:2: a quote inside a field that does not begin with one");
  EXPECT_EQ(inputError("a,b\n1, \"y\"\n"),
            "f.csv:2:2: a quote inside a field that does not begin with one");
}

TEST(CsvReader, TextAfterAClosingQuoteIsRefused) {
  EXPECT_EQ(inputError("a,b\n\"1\"x,2\n"), "f.csv:2:1: text after the closing quote");
  EXPECT_EQ(inputError("a,b\n1,\"2\" \n"), "f.csv:2:2: text after the closing quote");
}

TEST(CsvReader, AQuoteThatIsNeverClosedIsToldAtTheRowThatOpensIt) {
  EXPECT_EQ(inputError("a,b\n1,2\n3,\"x\n4,5\n6,7\n"),
            "f.csv:3:2: the quote that opens this field is never closed");
  EXPECT_EQ(inputError("a,b\n1,\""), "f.csv:2:2: the quote that opens this field is never closed");
}

// Also where the file is much larger than memory may be.
TEST(CsvReader, AQuoteThatIsNeverClosedStopsAtTheFieldLimit) {
  const TempFolder folder;
  const std::string path = folder.file("f.csv", "a,b\n1,\"");
  std::filesystem::resize_file(path, std::uintmax_t{1} << 30U);
  CsvReader reader(path);

  const std::string error = errorOf<InputError>([&] { reader.next(); });

  EXPECT_THAT(error, EndsWith("f.csv:2:2: the field is longer than 1048576 bytes, the limit"));
  EXPECT_LE(reader.bytesRead(), 1'048'576U + 2 * 65'536U);
}

TEST(CsvReader, AFieldOfTheLimitIsReadAndALongerOneRefused) {
  const CsvLimits limits{.fieldBytes = 5};

  EXPECT_EQ(numberedRows("a,b\n12345,\"12\"\"45\"\n", limits).size(), 1U);
  EXPECT_EQ(inputError("a,b\n1,123456\n", limits),
            "f.csv:2:2: the field is longer than 5 bytes, the limit");
  EXPECT_EQ(inputError("a,b\n\"123456\",1\n", limits),
            "f.csv:2:1: the field is longer than 5 bytes, the limit");
}

TEST(CsvReader, ALongLineWithoutEndStopsAtTheFieldLimit) {
  EXPECT_EQ(inputError("a\n" + std::string(100'000'000, 'x')),
            "f.csv:2:1: the field is longer than 1048576 bytes, the limit");
}

TEST(CsvReader, ARowOfTheFieldCountLimitIsReadAndALongerOneRefused) {
  const CsvLimits limits{.fields = 3};

  EXPECT_EQ(numberedRows("a,b,c\n1,2,3\n", limits).size(), 1U);
  EXPECT_EQ(inputError("a,b,c\n1,2,3,4\n", limits),
            "f.csv:2: the row has more than 3 fields, the limit");
}

TEST(CsvReader, ARowOfAMillionFieldsIsRefused) {
  EXPECT_EQ(inputError("a\n" + std::string(1'000'000, ',')),
            "f.csv:2: the row has more than 1024 fields, the limit");
}

TEST(CsvReader, ARowOfManyLongFieldsStopsAtTheRowLimit) {
  std::string row = std::string(1'000'000, 'x');
  for (int i = 0; i < 20; ++i) row += "," + std::string(1'000'000, 'x');

  EXPECT_EQ(inputError("a\n" + row + "\n"),
            "f.csv:2:17: the row is longer than 16777216 bytes, the limit");
}

TEST(CsvReader, ANulByteIsRefusedWithItsPlace) {
  EXPECT_EQ(inputError("a,b\n1,x\0y\n"s), "f.csv:2:2: byte 2 of the field is NUL");
  EXPECT_EQ(inputError("a\0,b\n"s), "f.csv:1:1: byte 2 of the field is NUL");
}

TEST(CsvReader, InvalidUtf8IsRefusedWithItsPlace) {
  EXPECT_EQ(inputError("a,b\n1,ab\xFFz\n"), "f.csv:2:2: byte 3 of the field is not valid UTF-8");
  EXPECT_EQ(inputError("a,b\nM\xFCller,1\n"), "f.csv:2:1: byte 2 of the field is not valid UTF-8");
  EXPECT_EQ(inputError("a,b\n1,\"\xE2\x82\"\n"),
            "f.csv:2:2: byte 1 of the field is not valid UTF-8");
}

TEST(CsvReader, ABadFieldOfALastLineWithoutEndIsRefusedToo) {
  EXPECT_EQ(inputError("a,b\n1,ab\xFF"), "f.csv:2:2: byte 3 of the field is not valid UTF-8");
  EXPECT_EQ(inputError("a,b\n1,x\0y"s), "f.csv:2:2: byte 2 of the field is NUL");
}

TEST(CsvReader, Utf8TextIsKept) {
  EXPECT_EQ(rows("a\nM\xC3\xBCller \xF0\x9F\x8D\xB5\n"),
            (std::vector<Row>{{"M\xC3\xBCller \xF0\x9F\x8D\xB5"}}));
}

TEST(CsvReader, ColumnsAreFoundByTheirExactName) {
  const TempFolder folder;
  const CsvReader reader(folder.file("f.csv", "b,a,b,Customer\n"));

  EXPECT_EQ(reader.columnOf("a"), 1U);
  EXPECT_THAT(errorOf<InputError>([&] { reader.columnOf("customer"); }),
              EndsWith("f.csv:1: no column \"customer\"; the columns are \"b\", \"a\", \"b\", "
                       "\"Customer\""));
  EXPECT_THAT(errorOf<InputError>([&] { reader.columnOf("b"); }),
              EndsWith("f.csv:1: more than one column \"b\"; the columns are \"b\", \"a\", "
                       "\"b\", \"Customer\""));
}

TEST(CsvReader, AnErrorTellsSixteenColumnsAtMost) {
  const TempFolder folder;
  const CsvReader reader(folder.file("f.csv", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\n"));

  EXPECT_THAT(errorOf<InputError>([&] { reader.columnOf("x"); }), EndsWith("\"16\", ..."));
}

TEST(CsvReader, AMissingFileIsAnErrorOfTheEnvironment) {
  EXPECT_EQ(errorOf<FileError>([] { CsvReader reader("/nowhere/f.csv"); }),
            "/nowhere/f.csv: cannot open: No such file or directory");
}

TEST(CsvReader, AFolderIsAnErrorOfTheEnvironment) {
  EXPECT_EQ(errorOf<FileError>([] { CsvReader reader("/tmp"); }),
            "/tmp: cannot read: Is a directory");
}

TEST(CsvReader, AnEndlessDeviceStopsAtALimit) {
  EXPECT_EQ(errorOf<InputError>([] { CsvReader reader("/dev/zero"); }),
            "/dev/zero:1:1: the field is longer than 1048576 bytes, the limit");
}

TEST(CsvReader, TheSizeOfAPlainFileIsKnown) {
  const TempFolder folder;
  CsvReader reader(folder.file("f.csv", "a\n1\n"));
  while (reader.next()) continue;

  EXPECT_EQ(reader.size(), 4U);
  EXPECT_EQ(reader.bytesRead(), 4U);
}

TEST(CsvReader, AReaderCanBeMoved) {
  const TempFolder folder;
  CsvReader reader(folder.file("f.csv", "a\n1\n"));
  CsvReader moved = std::move(reader);

  ASSERT_TRUE(moved.next());
  EXPECT_EQ(moved.field(0), "1");
}

}  // namespace

#include "io/LogReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "io/IoError.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

LogOptions formatted(LogFormat format) {
  LogOptions options;
  options.format = format;
  return options;
}

TransactionLog read(std::string_view content, const LogOptions& options = {}) {
  const TempFolder folder;
  return readLog(folder.file("log", content), options);
}

// A line a customer: "ann 1:(3 5) 2:(7)".
std::vector<std::string> linesOf(const TransactionLog& log) {
  std::vector<std::string> lines;
  for (std::size_t c = 0; c < log.database.customers(); ++c) {
    std::ostringstream line;
    line.precision(15);
    line << log.customers.at(c);
    for (std::size_t set = log.database.firstSet(c); set < log.database.firstSet(c + 1); ++set) {
      line << ' ' << log.database.time(set) << ":(";
      bool isFirst = true;
      for (const std::int32_t item : log.database.items(set)) {
        line << (isFirst ? "" : " ") << item;
        isFirst = false;
      }
      line << ')';
    }
    lines.push_back(line.str());
  }
  return lines;
}

std::vector<std::string> lines(std::string_view content, const LogOptions& options = {}) {
  return linesOf(read(content, options));
}

// The error behind the folder's name: "log:2:1: ...".
std::string errorIn(std::string_view content, const LogOptions& options = {}) {
  const std::string text = errorOf<InputError>([&] { read(content, options); });
  return text.substr(std::min(text.size(), text.rfind("/log:") + 1));
}

const char* const kHead = "customer,time,item\n";

std::string rows(const std::string& below) { return kHead + below; }

// --- Forms ---------------------------------------------------------------------------------------

TEST(LogReader, ACsvLogIsReadRowByRow) {
  const TransactionLog log = read(rows("ann,1,3\nann,1,5\nann,2,7\nbob,4,5\n"));

  EXPECT_THAT(linesOf(log), ElementsAre("ann 1:(3 5) 2:(7)", "bob 4:(5)"));
  EXPECT_THAT(log.labels, IsEmpty());
  EXPECT_EQ(log.rows, 4U);
  EXPECT_EQ(log.badRows, 0U);
}

TEST(LogReader, TheLimitsOfACsvLogCanBeSet) {
  LogOptions options;
  options.csv.fieldBytes = 8;
  const std::string log = "customer,time,item\nann,1,3\nbenjamina,2,7\n";

  EXPECT_THAT(errorOf<InputError>([&] { read(log, options); }),
              testing::EndsWith("log:3:1: the field is longer than 8 bytes, the limit"));
  ++options.csv.fieldBytes;
  EXPECT_EQ(read(log, options).database.customers(), 2U);
}

TEST(LogReader, ATsvLogHasTabs) {
  EXPECT_THAT(lines("customer\ttime\titem\na,b\t1\t3\na,b\t1\t5\n", formatted(LogFormat::kTsv)),
              ElementsAre("a,b 1:(3 5)"));
}

TEST(LogReader, AnSpmfLogHasACustomerALine) {
  const TransactionLog log =
      read("# shop\n%\n1 2 -1 3 -1 -2\n\n2 -1 2 1 -1 -2\r\n-2\n", formatted(LogFormat::kSpmf));

  EXPECT_THAT(linesOf(log), ElementsAre("3 1:(1 2) 2:(3)", "5 1:(2) 2:(1 2)", "6"));
  EXPECT_EQ(log.rows, 3U);
}

TEST(LogReader, ABasketLogHasABasketALine) {
  EXPECT_THAT(
      lines("ann 2 1 7\nann 1 2 5 3\n\nbob\t4  0\nbob 5 1 3", formatted(LogFormat::kBasket)),
      ElementsAre("ann 1:(3 5) 2:(7)", "bob 5:(3)"));
}

TEST(LogReader, ColumnsMayHaveOtherNamesAndNeighbours) {
  LogOptions options;
  options.customer = "who";
  options.time = "when";
  options.item = "what";
  EXPECT_THAT(lines("what,x,when,who\n3,,1,ann\n", options), ElementsAre("ann 1:(3)"));
}

TEST(LogReader, AnEmptyLogHasNoCustomers) {
  EXPECT_THAT(lines(kHead), IsEmpty());
  for (const LogFormat format : {LogFormat::kSpmf, LogFormat::kBasket})
    EXPECT_THAT(lines("", formatted(format)), IsEmpty());
  EXPECT_THAT(errorIn(""), HasSubstr("the file is empty"));
}

// --- Baskets -------------------------------------------------------------------------------------

TEST(LogReader, RowsInAnyOrderGiveTheSameSets) {
  std::vector<std::string> below = {"ann,1,3\n", "ann,1,5\n", "ann,2,7\n", "ann,10,1\n"};
  do {
    std::string content = "bob,3,1\n";
    for (const std::string& row : below) content += row + "bob,3,1\n";
    EXPECT_THAT(lines(rows(content)), ElementsAre("bob 3:(1)", "ann 1:(3 5) 2:(7) 10:(1)"));
  } while (std::next_permutation(below.begin(), below.end()));
}

TEST(LogReader, BasketsThatComeAsSuchStayApart) {
  EXPECT_THAT(lines("ann 1 1 5\nann 1 1 3\n", formatted(LogFormat::kBasket)),
              ElementsAre("ann 1:(5) 1:(3)"));
  LogOptions options = formatted(LogFormat::kBasket);
  options.builder.basket = Period::of("10");
  EXPECT_THAT(lines("ann 1 1 5\nbob 1 1 7\nann 9 1 3\nann 10 1 3\n", options),
              ElementsAre("ann 0:(3 5) 10:(3)", "bob 0:(7)"));
}

TEST(LogReader, DatesCountInSeconds) {
  EXPECT_THAT(lines(rows("a,1970-01-02,1\na,1970-01-01 00:01,2\na,1970-01-01T01:01+01:00,3\n")),
              ElementsAre("a 60:(2 3) 86400:(1)"));
}

TEST(LogReader, APeriodPutsItsRowsIntoOneBasket) {
  LogOptions options;
  options.builder.basket = Period::of("day");
  EXPECT_THAT(
      lines(rows("a,1970-01-02T23:59:59,1\na,1970-01-03,2\na,1970-01-02,3\nb,86400,4\n"), options),
      ElementsAre("a 86400:(1 3) 172800:(2)", "b 86400:(4)"));
}

// --- Items ---------------------------------------------------------------------------------------

TEST(LogReader, IntegersKeepTheirNumbers) {
  EXPECT_THAT(lines(rows("a,1,2147483647\na,1,0\n")), ElementsAre("a 1:(0 2147483647)"));
}

TEST(LogReader, OneTextMakesTextsOfAllItemsNumberedByTheirBytes) {
  for (const std::string text : {"tea", "007", "2147483648", "-1", "1.0", " 1"}) {
    const TransactionLog log = read(rows("a,1,100\na,2," + text + "\na,3,20\na,4,100\n"));
    std::vector<std::string> texts = {"100", text, "20"};
    std::sort(texts.begin(), texts.end());
    EXPECT_THAT(log.labels, ElementsAre(Pair(1, texts[0]), Pair(2, texts[1]), Pair(3, texts[2])));
    const auto numberOf = [&](const std::string& item) {
      return std::to_string(std::find(texts.begin(), texts.end(), item) - texts.begin() + 1);
    };
    EXPECT_THAT(linesOf(log),
                ElementsAre("a 1:(" + numberOf("100") + ") 2:(" + numberOf(text) + ") 3:(" +
                            numberOf("20") + ") 4:(" + numberOf("100") + ")"));
  }
}

TEST(LogReader, IntegersAreRefusedOrForcedToBeTexts) {
  LogOptions options;
  options.builder.items = ItemKind::kInteger;
  EXPECT_THAT(errorIn(rows("a,1,3\na,1,007\n"), options),
              AllOf(StartsWith("log:3:3: "), HasSubstr("007")));
  options.builder.items = ItemKind::kText;
  const TransactionLog log = read(rows("a,1,9\na,1,10\n"), options);
  EXPECT_THAT(linesOf(log), ElementsAre("a 1:(1 2)"));
  EXPECT_THAT(log.labels, ElementsAre(Pair(1, "10"), Pair(2, "9")));
}

TEST(LogReader, TheFirstDescriptionStands) {
  LogOptions options;
  options.label = "label";
  const std::string head = "customer,time,item,label\n";
  EXPECT_THAT(read(head + "a,1,3,\na,1,3,green tea\na,1,3,tea\na,1,4,\n", options).labels,
              ElementsAre(Pair(3, "3 green tea")));
  EXPECT_THAT(read(head + "a,1,3x,tea\na,1,3,pot\na,1,2,\n", options).labels,
              ElementsAre(Pair(1, "2"), Pair(2, "3 pot"), Pair(3, "3x tea")));
}

TEST(LogReader, SpmfNamesItemsAndTellsTimes) {
  const TransactionLog log = read(
      "@CONVERTED_FROM_TEXT\n@ITEM=7=green tea\r\n@ITEM=7=other\n@ITEM=x=y\n@ITEM=8=\n@ITEM=8\n"
      "<5> 7 -1 <9.5> 8 7 -1 -2\n<1970-01-02> 7 -1 -2\n",
      formatted(LogFormat::kSpmf));
  EXPECT_THAT(log.labels, ElementsAre(Pair(7, "green tea")));
  EXPECT_THAT(linesOf(log), ElementsAre("7 5:(7) 9.5:(7 8)", "8 86400:(7)"));
}

TEST(LogReader, KnownItemsAreFoundByLabelFirstWordAndNumber) {
  const ItemLabelMap known = {{7, "tea green"}, {8, "pot"}, {9, "cup big"}, {10, "cup small"}};
  const ItemNames names(known);
  LogOptions options;
  options.builder.known = &names;
  const TransactionLog log = read(
      rows("a,1,tea\na,2,tea green\na,3,pot\na,4,cup\na,5,cup small\na,6,42\na,7,green\nb,1,x\n"),
      options);
  EXPECT_THAT(linesOf(log), ElementsAre("a 1:(7) 2:(7) 3:(8) 4:() 5:(10) 6:(42) 7:()", "b 1:()"))
      << "a basket of unknown items stays, empty";
  EXPECT_EQ(log.unknown.occurrences, 3U);
  EXPECT_THAT(log.unknown.examples, ElementsAre("cup", "green", "x"));
  EXPECT_THAT(log.labels, IsEmpty());
}

TEST(LogReader, ALabelOfSeveralItemsNamesNone) {
  const ItemNames names(ItemLabelMap{{1, "tea"}, {2, "tea"}, {3, "12"}});
  EXPECT_EQ(names.find("tea"), std::nullopt);
  EXPECT_EQ(names.find("12"), 3) << "the label comes before the number";
  EXPECT_EQ(names.find("13"), 13);
  EXPECT_EQ(names.find("013"), std::nullopt);
  EXPECT_EQ(names.find("-1"), std::nullopt);
  EXPECT_EQ(names.find("2147483648"), std::nullopt);
  EXPECT_EQ(names.find(""), std::nullopt);
}

TEST(LogReader, SpmfItemsCanBeTexts) {
  LogOptions options = formatted(LogFormat::kSpmf);
  options.builder.items = ItemKind::kText;
  const TransactionLog log = read("@ITEM=10=pot\n9 -1 10 -1 -2\n", options);
  EXPECT_THAT(linesOf(log), ElementsAre("2 1:(2) 2:(1)")) << "numbered in the order of bytes";
  EXPECT_THAT(log.labels, ElementsAre(Pair(1, "10 pot"), Pair(2, "9")));
}

TEST(LogReader, SpmfNamesOfItemsThatNoLineHasLabelNoText) {
  LogOptions options = formatted(LogFormat::kSpmf);
  options.builder.items = ItemKind::kText;
  EXPECT_THAT(read("@ITEM=7=green tea\n9 -1 -2\n", options).labels, ElementsAre(Pair(1, "9")));
  EXPECT_THAT(read("@ITEM=-7=green tea\n", options).labels, IsEmpty()) << "no item is below 0";
}

TEST(LogReader, ColumnsOfHistoriesAreHistories) {
  EXPECT_THAT(lines("customer,history\na,(3 5)(7)\nb,\nc,(1 [4]) (2) (3 [2011-01-18])\n"),
              ElementsAre("a 1:(3 5) 2:(7)", "b", "c 4:(1) 4:(2) 1295308800:(3)"))
      << "item sets of one time stay apart: they came as such";
}

TEST(LogReader, AColumnOfItemsMakesALogOfHistories) {
  EXPECT_THAT(lines("customer,time,item,history\na,1,3,(9)\n"), ElementsAre("a 1:(3)"));
}

TEST(LogReader, JsonLinesHoldHistoriesAndBaskets) {
  EXPECT_THAT(
      lines("{\"customer\":\"a\",\"history\":\"(3 5)(7)\"}\n"
            "{\"customer\":2,\"history\":[[3,5],[7]]}\n"
            "{\"customer\":\"c\",\"baskets\":[[3,\"5\"],[7]]}\n"
            "{\"customer\":\"d\",\"baskets\":[[3],[7]],\"times\":[\"1970-01-02\",2.5]}\n",
            formatted(LogFormat::kJsonLines)),
      ElementsAre("a 1:(3 5) 2:(7)", "2 1:(3 5) 2:(7)", "c 1:(3 5) 2:(7)", "d 2.5:(7) 86400:(3)"));
}

TEST(LogReader, TextItemsOfJsonLinesAreNumbered) {
  const TransactionLog log = read("{\"customer\":1,\"baskets\":[[\"tea\",\"milk\"],[7]]}\n",
                                  formatted(LogFormat::kJsonLines));
  EXPECT_THAT(linesOf(log), ElementsAre("1 1:(2 3) 2:(1)"));
  EXPECT_THAT(log.labels, ElementsAre(Pair(1, "7"), Pair(2, "milk"), Pair(3, "tea")));
}

TEST(LogReader, ACustomerInPartsWantsTimes) {
  const LogOptions json = formatted(LogFormat::kJsonLines);
  EXPECT_THAT(lines("{\"customer\":1,\"baskets\":[[7]],\"times\":[5]}\n"
                    "{\"customer\":1,\"baskets\":[[8]],\"times\":[4]}\n",
                    json),
              ElementsAre("1 4:(8) 5:(7)"));
  EXPECT_THAT(
      errorIn("{\"customer\":1,\"baskets\":[[7]]}\n{\"customer\":1,\"baskets\":[[8]]}\n", json),
      StartsWith("log:2: the customer came before"));
  EXPECT_THAT(errorIn("customer,history\na,(1)\na,(2)\n"),
              StartsWith("log:3:2: the customer came before"));
}

TEST(LogReader, HistoriesOfACustomerInPartsAreOrderedByTheirTimes) {
  EXPECT_THAT(lines("customer,history\na,(1 [5])\nb,(9)\na,(2 [4])(3 [6])\n"),
              ElementsAre("a 4:(2) 5:(1) 6:(3)", "b 1:(9)"));
  EXPECT_THAT(lines("customer,history\na,(1 [5])\na,(2)(3 [4])(7)\n"),
              ElementsAre("a 1:(2) 4:(3) 4:(7) 5:(1)"))
      << "one time is enough: sets in front of it count from 1, those behind share it";
}

TEST(LogReader, AHistoryOfNobodyIsTold) {
  EXPECT_EQ(errorIn("history,customer\n(1),\n"), "log:2:2: the customer is empty");
}

TEST(LogReader, AnOrderedLogOfOneCustomerAtATimeIsTheSameInAnyOrder) {
  EXPECT_EQ(lines(rows("a,1,3\nb,1,4\na,2,5\nb,3,6\na,1,7\n")),
            lines(rows("a,1,3\na,1,7\na,2,5\nb,1,4\nb,3,6\n")));
}

// --- Errors --------------------------------------------------------------------------------------

TEST(LogReader, ErrorsOfRowsNameTheirPlace) {
  EXPECT_THAT(errorIn("customer,item\na,3\n"),
              AllOf(StartsWith("log:1: no column "), HasSubstr("time"), HasSubstr("customer")));
  EXPECT_THAT(errorIn(rows("a,1,3\na,soon,3\n")), StartsWith("log:3:2: "));
  EXPECT_THAT(errorIn(rows(",1,3\n")), StartsWith("log:2:1: the customer is empty"));
  EXPECT_THAT(errorIn(rows("a,1,\n")), StartsWith("log:2:3: the item is empty"));
  EXPECT_THAT(errorIn(rows("a,nan,3\n")), StartsWith("log:2:2: "));
  LogOptions options;
  options.label = "label";
  EXPECT_THAT(errorIn(rows("a,1,3\n"), options), HasSubstr("no column "));
}

TEST(LogReader, ErrorsOfHistoriesNameTheByte) {
  const auto historyError = [](const std::string& text) {
    return errorIn("customer,history\na," + text + "\n");
  };
  EXPECT_THAT(historyError("(1"), StartsWith("log:2:2: byte 3: the item set is not closed"));
  EXPECT_THAT(historyError("1"), StartsWith("log:2:2: byte 1: \"(\" should begin an item set"));
  EXPECT_THAT(historyError("(1)x"), StartsWith("log:2:2: byte 4: "));
  EXPECT_THAT(historyError("(1 -2)"), StartsWith("log:2:2: byte 4: "));
  EXPECT_THAT(historyError("(2147483648)"),
              StartsWith("log:2:2: byte 2: item 2147483648 is outside 0..2147483647"));
  EXPECT_THAT(historyError("(1 [2)"), StartsWith("log:2:2: byte 4: the time is not closed"));
  EXPECT_THAT(historyError("(1 [x])"), StartsWith("log:2:2: byte 4: \"x\" is neither a number"));
  EXPECT_THAT(historyError("([1] [2])"), StartsWith("log:2:2: byte 6: a second time"));
}

TEST(LogReader, ErrorsOfJsonLinesNameTheLine) {
  const LogOptions json = formatted(LogFormat::kJsonLines);
  const auto error = [&json](const std::string& members) {
    return errorIn("\n{\"customer\":1," + members + "}\n", json);
  };
  EXPECT_THAT(error("\"baskets\":[[1]],\"history\":\"(1)\""),
              StartsWith("log:2: both \"history\" and \"baskets\""));
  EXPECT_THAT(error("\"baskets\":[[1]],\"times\":[]"), StartsWith("log:2: 0 times for 1 baskets"));
  EXPECT_THAT(error("\"history\":\"(1)\",\"times\":[1]"), StartsWith("log:2: \"times\" belong"));
  EXPECT_THAT(error("\"baskets\":[1]"), StartsWith("log:2: the baskets are an array of arrays"));
  EXPECT_THAT(error("\"baskets\":[[1.5]]"), StartsWith("log:2: item 1.5 is no integer"));
  EXPECT_THAT(error("\"baskets\":[[\"\"]]"), StartsWith("log:2: an item is empty"));
  EXPECT_THAT(error("\"baskets\":[[[1]]]"), StartsWith("log:2: the baskets are"));
  EXPECT_THAT(error("\"baskets\":[[\"a\\u0000\"]]"), StartsWith("log:2: the item holds a NUL"));
  EXPECT_THAT(error("\"baskets\":[[1]],\"times\":[\"soon\"]"),
              StartsWith("log:2: time \"soon\" is neither"));
  EXPECT_THAT(error("\"baskets\":[[1]],\"times\":[[1]]"), StartsWith("log:2: the times are"));
  EXPECT_THAT(error("\"baskets\":[[1]],\"times\":[null]"), StartsWith("log:2: the times are"));
  EXPECT_THAT(error("\"history\":\"(1\""), StartsWith("log:2: byte 3: "));
  EXPECT_THAT(errorIn("{\"customer\":\"\",\"history\":\"(1)\"}\n", json),
              StartsWith("log:1: the customer is empty"));
  LogOptions integers = json;
  integers.builder.items = ItemKind::kInteger;
  EXPECT_THAT(errorIn("{\"customer\":1,\"baskets\":[[\"tea\"]]}\n", integers),
              StartsWith("log:1: \"tea\" is no integer from 0 to 2147483647"));
}

TEST(LogReader, ABadBasketIsLeftOutAsAWhole) {
  LogOptions options = formatted(LogFormat::kBasket);
  options.builder.items = ItemKind::kInteger;
  options.skipBadRows = 2;
  const TransactionLog log = read("a 1 2 3 tea\na 2 1 4\na 3 1 \xFF\n", options);
  EXPECT_THAT(linesOf(log), ElementsAre("a 2:(4)"));
  EXPECT_EQ(log.badRows, 2U);
}

TEST(LogReader, TextsThatAreNoUtf8AreRefused) {
  EXPECT_THAT(errorIn("a 1 1 t\xFF\n", formatted(LogFormat::kBasket)), StartsWith("log:1:8: "));
  EXPECT_THAT(errorIn("@ITEM=1=t\xFF\n1 -1 -2\n", formatted(LogFormat::kSpmf)),
              StartsWith("log:1:10: "));
}

TEST(LogReader, ErrorsOfSpmfLinesNameTheirPlace) {
  const LogOptions spmf = formatted(LogFormat::kSpmf);
  EXPECT_THAT(errorIn("1 -1 -2\n1 -1\n", spmf), StartsWith("log:2:5: "));
  EXPECT_THAT(errorIn("1 -1 -2 3\n", spmf), StartsWith("log:1:9: text behind -2"));
  EXPECT_THAT(errorIn("#\n1 2 -2\n", spmf), StartsWith("log:2:5: -2 stands where -1"));
  EXPECT_THAT(errorIn("1 -3 -1 -2\n", spmf), StartsWith("log:1:3: "));
  EXPECT_THAT(errorIn("1 tea -1 -2\n", spmf), StartsWith("log:1:3: "));
  EXPECT_THAT(errorIn("1 5x -1 -2\n", spmf), StartsWith("log:1:3: \"5x\""));
  EXPECT_THAT(errorIn("<50 1 -1 -2\n", spmf), StartsWith("log:1:1: \"<50\" is no time"));
  EXPECT_THAT(errorIn("2147483648 -1 -2\n", spmf), StartsWith("log:1:1: "));
  for (const char* line : {"<> 1 -1 -2", "<5 1 -1 -2", "<x> 1 -1 -2"})
    EXPECT_THAT(errorIn(line, spmf), AllOf(StartsWith("log:1:1: "), HasSubstr("no time"))) << line;
  EXPECT_THAT(errorIn("1 <5> 2 -1 -2\n", spmf), StartsWith("log:1:3: "));
}

TEST(LogReader, ErrorsOfBasketLinesNameTheirPlace) {
  const LogOptions basket = formatted(LogFormat::kBasket);
  EXPECT_THAT(errorIn("a 1 1 3\na soon 1 3\n", basket), StartsWith("log:2:3: "));
  for (const char* line : {"a 1 2 3", "a 1 1 3 4", "a 1 -1", "a 1 x", "a 1"})
    EXPECT_THAT(errorIn(line, basket), AllOf(StartsWith("log:1:"), HasSubstr("number of items")))
        << line;
  EXPECT_THAT(errorIn("a", basket), StartsWith("log:1:"));
}

TEST(LogReader, BadRowsAreLeftOutUpToAsManyAsAllowed) {
  LogOptions options;
  options.skipBadRows = 3;
  const std::string bad = "a,1,3\na,x,3\n,1,3\na,1,\n";
  const TransactionLog log = read(rows(bad + "b,1,3\n"), options);
  EXPECT_THAT(linesOf(log), ElementsAre("a 1:(3)", "b 1:(3)"));
  EXPECT_EQ(log.badRows, 3U);
  EXPECT_EQ(log.rows, 5U);
  EXPECT_THAT(errorIn(rows(bad + "b,x,3\n"), options), StartsWith("log:6:2: "));

  options.format = LogFormat::kBasket;
  EXPECT_EQ(read("a 1 1 3\na x 1 3\na 1 2 3\n", options).badRows, 2U);
}

TEST(LogReader, FaultsOfFormAreNeverLeftOut) {
  LogOptions options;
  options.skipBadRows = 9;
  EXPECT_THAT(errorIn(rows("a,1\n"), options), StartsWith("log:2: "));
  options.format = LogFormat::kSpmf;
  EXPECT_THAT(errorIn("1 -1\n", options), StartsWith("log:1:"));
}

}  // namespace

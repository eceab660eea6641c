// Hostile customers' data: rows V09 to V15, what items, times, customers and baskets make of a log
// that can be read; and rows C14 and C15 of the histories of strangers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "io/IoError.h"
#include "io/LogReader.h"
#include "tests/hostile/logs.h"
#include "tests/hostile/rowNames.h"
#include "tests/support/longRun.h"

namespace {

using namespace std::string_literals;
using orbseq::InputError;
using orbseq::LogFormat;
using orbseq::LogOptions;
using orbseq::test::errorOf;
using orbseq::test::Feed;
using orbseq::test::kMegabyte;
using orbseq::test::Outcome;
using orbseq::test::run;
using orbseq::test::TempFolder;
using orbseq::test::Training;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kHead = "customer,time,item\n";

// A dictionary of ten million texts, at a thousandth of the size: the limit is the option's.
TEST(HostileItems, V10TheNumberOfTextsHasALimit) {
  constexpr std::size_t kTexts = 4'000;
  const TempFolder folder;
  std::string csv = kHead, basket, json;
  for (std::size_t i = 0; i <= kTexts; ++i) {
    const std::string item = "x" + std::to_string(i);
    csv += "a,1," + item + "\n";
    basket += "a 1 1 " + item + "\n";
    json += R"({"customer": ")" + item + R"(", "baskets": [[")" + item + "\"]]}\n";
  }
  const struct {
    LogFormat format;
    std::string bytes;
    std::string place;
  } rows[] = {{LogFormat::kCsv, csv, ":4002:3"},
              {LogFormat::kBasket, basket, ":4001"},
              {LogFormat::kJsonLines, json, ":4001"}};
  for (const auto& row : rows) {
    const std::string path = folder.file("log", row.bytes);
    LogOptions options;
    options.format = row.format;
    options.builder.mostTexts = kTexts;
    EXPECT_EQ(errorOf<InputError>([&] { readLog(path, options); }),
              path + row.place + ": more than 4000 different items are texts, the limit");
    ++options.builder.mostTexts;
    EXPECT_EQ(readLog(path, options).labels.size(), kTexts + 1);
  }
  EXPECT_EQ(LogOptions().builder.mostTexts, 4'000'000U);
}

// The limit that the program has, which no option moves.
TEST(HostileItems, V10FourMillionTextsAreTheMostOfAModel) {
  if (!orbseq::test::isLongRun()) GTEST_SKIP() << "for long runs: it takes a minute";
  constexpr std::size_t kTexts = 4'000'000;
  std::string rows = kHead;
  for (std::size_t i = 0; i <= kTexts; ++i) rows += "a,1,x" + std::to_string(i) + "\n";

  Training().expectRefused("log.csv", rows,
                           ":4000002:3: more than 4000000 different items are texts, the limit");
}

TEST(HostileItems, V10ALabelOfAMegabyteIsKeptWhole) {
  const std::string label(1'000'000, 'x');
  const Training training;
  const std::string log = training.folder().file("log.csv", kHead + "a,1," + label + "\n");

  EXPECT_EQ(training.train(log).status, 0);

  EXPECT_EQ(training.sequences(), label + " -1 #SUP: 1\n");
}

TEST(HostileItems, V10ALongerLabelIsRefusedInEveryForm) {
  const std::string label(kMegabyte + 1, 'x');
  Training().expectRefused("log.csv", kHead + "a,1," + label + "\n",
                           ":2:3: the field is longer than 1048576 bytes, the limit");
  Training().expectRefused("log", "a 1 1 5\na 1 1 " + label + "\n",
                           ":2: the item is longer than 1048576 bytes, the limit",
                           {"--input-format", "basket"});
  Training().expectRefused("log.jsonl", R"({"customer": "a", "baskets": [[")" + label + "\"]]}\n",
                           ":1: the item is longer than 1048576 bytes, the limit");
  Training().expectRefused("log.spmf", "@ITEM=1=" + label + "\n1 -1 -2\n",
                           ": the description is longer than 1048576 bytes, the limit",
                           {"--items", "text"});
}

struct LabelRow {
  const char* name;
  std::string label;
  std::string document;  // as an attribute's value there
  std::string csv;       // as a field, which no spreadsheet takes for a formula
};
void PrintTo(const LabelRow& row, std::ostream* os) { *os << row.name; }

class HostileLabel : public testing::TestWithParam<LabelRow> {};

TEST_P(HostileLabel, IsEscapedInWhatIsWritten) {
  const LabelRow& row = GetParam();
  const Training training;
  std::string quoted;
  for (const char c : row.label) quoted += c == '"' ? "\"\"" : std::string(1, c);
  const std::string log =
      training.folder().file("log.csv", kHead + "a,1,\"" + quoted + "\"\na,1,\"" + quoted + "\"\n");
  ASSERT_EQ(training.train(log).status, 0);
  const std::string model = training.folder().path("m.xml");
  const std::string customers =
      training.folder().file("c.csv", "customer,history\n\"" + quoted + "\",\n");

  const Outcome scored = run({"score", "--model", model, "--input", customers, "--format", "csv"});
  const Outcome json = run({"score", "--model", model, "--input", customers, "--format", "jsonl"});

  EXPECT_THAT(training.model(), HasSubstr("mappedValue=\"" + row.document + "\""));
  EXPECT_THAT(scored.output, HasSubstr("\n" + row.csv + ",1,1," + row.csv + ",1,1,1\n"));
  EXPECT_EQ(json.status, 0);
  // Back from the document it is what it was: the same once more.
  const std::string again = training.folder().path("again.xml");
  EXPECT_EQ(run({"convert", "--model", model, "--output", again}).status, 0);
  EXPECT_THAT(orbseq::test::contentOf(again), HasSubstr("mappedValue=\"" + row.document + "\""));
}

// A rule from the label's item to itself, and the reasons for it.
TEST_P(HostileLabel, IsEscapedInRulesAndReasons) {
  const LabelRow& row = GetParam();
  std::string quoted, json;
  for (const char c : row.label) {
    quoted += c == '"' ? "\"\"" : std::string(1, c);
    json += c == '"' ? "\\\"" : std::string(1, c);
  }
  const Training training;
  const std::string log =
      training.folder().file("log.csv", kHead + "a,1,\"" + quoted + "\"\na,2,\"" + quoted + "\"\n");
  ASSERT_EQ(training.train(log).status, 0);
  const std::string model = training.folder().path("m.xml");
  const auto rules = [&](const std::string& format) {
    return run({"rules", "--quiet", "--labels", "--model", model, "--format", format}).output;
  };
  const auto reasons = [&](const std::string& format) {
    return run({"explain", "--quiet", "--model", model, "--history", "(1)", "--return", "future",
                "--format", format})
        .output;
  };

  EXPECT_THAT(rules("csv"), EndsWith("\n" + row.csv + "," + row.csv + ",1,1,1,1,1\n"));
  EXPECT_THAT(rules("jsonl"), AllOf(HasSubstr("\"antecedent_labels\":[[\"" + json + "\"]]"),
                                    HasSubstr("\"consequent_labels\":[[\"" + json + "\"]]")));
  const std::string pmml = run({"rules", "--quiet", "--model", model, "--format", "pmml"}).output;
  EXPECT_THAT(pmml, HasSubstr("<Item id=\"1\" value=\"1\" mappedValue=\"" + row.document + "\"/>"));
  EXPECT_THAT(reasons("csv"), HasSubstr("\n-,1,1," + row.csv + ",1,1,1,1,1,1,0,future,(1)\n"));
  EXPECT_THAT(reasons("jsonl"), HasSubstr("\"item\":1,\"label\":\"" + json + "\","));
}

const LabelRow kLabels[] = {
    {"V10Formula", "=cmd()", "=cmd()", "'=cmd()"},
    {"V10FormulaWithQuotes", "=cmd|'/c calc'!A1,\"x\"", "=cmd|'/c calc'!A1,&quot;x&quot;",
     "\"'=cmd|'/c calc'!A1,\"\"x\"\"\""},
    {"V10Plus", "+1+cmd()", "+1+cmd()", "'+1+cmd()"},
    {"V10Minus", "-cmd()", "-cmd()", "'-cmd()"},
    {"V10At", "@SUM(1)", "@SUM(1)", "'@SUM(1)"},
    {"V10NegativeNumber", "-12.5", "-12.5", "-12.5"},
    {"V10Element", "<b>", "&lt;b&gt;", "<b>"},
    {"V10Entity", "&lt;", "&amp;lt;", "&lt;"},
};
INSTANTIATE_TEST_SUITE_P(Labels, HostileLabel, testing::ValuesIn(kLabels),
                         [](const auto& it) { return it.param.name; });

TEST(HostileItems, V09BadRowsAreLeftOutAndCounted) {
  const Training training;
  const std::string log =
      training.folder().file("log.csv", kHead + "a,1,5\na,2,\n,1,5\na,NaN,5\na,2,6\n");

  const Outcome refused = training.train(log, {"--skip-bad-rows", "2"});
  training.expectOldModel(1);
  const Outcome outcome = training.train(log, {"--skip-bad-rows", "3"});

  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.error, HasSubstr(log + ":5:2: \"NaN\""));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error, HasSubstr("5 rows (3 bad, left out), 1 customers"));
  EXPECT_EQ(training.sequences(), "5 -1 #SUP: 1\n6 -1 #SUP: 1\n5 -1 6 -1 #SUP: 1\n");
}

// The rule: a number stands as it is, a date counts in seconds since the beginning of 1970.
TEST(HostileItems, V11DatesAndNumbersInOneFileAreOneScale) {
  const Training training;
  const std::string log =
      training.folder().file("log.csv", kHead + "a,86400,5\na,1970-01-02,6\na,1970-01-01,7\n");

  EXPECT_EQ(training.train(log).status, 0);

  EXPECT_THAT(training.sequences(), AllOf(HasSubstr("7 -1 5 6 -1 #SUP: 1\n")));
}

TEST(HostileItems, V12RowsOfOneCustomerMayStandApart) {
  const std::string sorted = kHead + "a,1,5\na,2,6\na,3,7\nb,1,5\nb,2,7\n";
  const std::string apart = kHead + "a,3,7\nb,2,7\na,1,5\nb,1,5\na,2,6\n";
  const Training first, second;

  const Outcome one = first.train(first.folder().file("log.csv", sorted));
  const Outcome two = second.train(second.folder().file("log.csv", apart));

  EXPECT_THAT(one.error, HasSubstr("2 customers"));
  EXPECT_THAT(two.error, HasSubstr("2 customers"));
  EXPECT_THAT(first.sequences(), HasSubstr("5 -1 7 -1 #SUP: 2\n"));
  EXPECT_EQ(first.model(), second.model());
}

// Without times nobody knows which part came first.
TEST(HostileItems, V12HistoriesInPartsWithoutTimesAreRefused) {
  Training().expectRefused("log.csv", "customer,history\na,(5)\nb,(5)\na,(6)\n",
                           ":4:2: the customer came before: histories in parts want times");
  Training().expectRefused("log.jsonl",
                           "{\"customer\": \"a\", \"baskets\": [[\"5\"]]}\n"
                           "{\"customer\": \"b\", \"baskets\": [[\"5\"]]}\n"
                           "{\"customer\": \"a\", \"baskets\": [[\"6\"]]}\n",
                           ":3: the customer came before: baskets in parts want times");
}

// 24 bytes a row, twice that while they grow, and what the program and the miner need.
TEST(HostileItems, V13ACustomerOfAMillionRowsIsTrainedOn) {
  std::string rows;
  for (int i = 0; i < 1000; ++i)
    rows += "a," + std::to_string(i) + "," + std::to_string(i % 10) + "\n";
  const Training training;
  Feed feed(training.folder().path("log.csv"), kHead, rows, 1000);

  const Outcome outcome =
      training.train(feed.path(), {"--max-items", "2"}, {.dataBytes = 256 * kMegabyte});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.error, HasSubstr("1000000 rows, 1 customers, 1000 baskets"));
  EXPECT_THAT(training.sequences(), HasSubstr("3 -1 3 -1 #SUP: 1\n"));
}

TEST(HostileItems, V13AMillionBasketsOfOneCustomerKeepToTheLimitOfMemory) {
  std::string rows;
  for (int i = 0; i < 1000; ++i) rows += "a 1 1 " + std::to_string(i % 50) + "\n";
  const Training training;
  Feed feed(training.folder().path("log"), "", rows, 1000);

  const Outcome outcome =
      training.train(feed.path(), {"--input-format", "basket", "--max-memory", "1000"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("limit"));
  training.expectOldModel(1);
}

TEST(HostileItems, V14AnItemTwiceInABasketCountsOnce) {
  const Training training;
  const std::string log = training.folder().file("log.csv", kHead + "a,1,5\na,1,6\na,1,5\n");

  const Outcome outcome = training.train(log);

  EXPECT_THAT(outcome.error, HasSubstr("3 rows, 1 customers, 1 baskets, 2 item occurrences"));
  EXPECT_EQ(training.sequences(), "5 -1 #SUP: 1\n6 -1 #SUP: 1\n5 6 -1 #SUP: 1\n");
}

// A model is made without it; a history that is asked about keeps it.
TEST(HostileItems, V14AnEmptyBasketIsLeftOutOfAModelAndKeptInAHistory) {
  const Training training;
  const std::string log = training.folder().file(
      "log.jsonl", "{\"customer\": \"a\", \"baskets\": [[\"5\", \"6\"], [], [\"7\"]]}\n");
  const std::string model = training.folder().path("m.xml");
  const std::string parts = training.folder().file(
      "c.jsonl",
      "{\"customer\": \"a\", \"baskets\": [[]]}\n{\"customer\": \"b\", \"history\": \"()\"}\n"
      "{\"customer\": \"c\", \"history\": \"(5)\"}\n");

  const Outcome outcome = training.train(log);
  const Outcome scored = run({"score", "--model", model, "--input", parts, "--format", "csv"});

  EXPECT_THAT(outcome.error, HasSubstr("1 customers, 2 baskets, 3 item occurrences"));
  EXPECT_THAT(training.sequences(), HasSubstr("5 6 -1 7 -1 #SUP: 1\n"));
  EXPECT_THAT(scored.output,
              AllOf(HasSubstr("\nc,1,6,"), Not(HasSubstr("\na,")), Not(HasSubstr("\nb,"))));
}

TEST(HostileItems, V15SequencesEndAt31ItemsWhichTheSummaryTells) {
  std::string rows = kHead;
  for (const char customer : {'a', 'b'})
    for (int i = 0; i < 40; ++i)
      (((rows += customer) += ',') += std::to_string(i)) += "," + std::to_string(i) + "\n";
  const Training training;

  const Outcome outcome =
      training.train(training.folder().file("log.csv", rows), {"--max-gap", "1"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error,
              AllOf(HasSubstr(" 11 of 30, 10 of 31 items\n"),
                    HasSubstr("looked at up to 31 items, 31 item sets, 31 items in a set\n")));
}

// --- Histories of strangers ----------------------------------------------------------------------

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";

using Options = std::vector<std::string>;

const Options kStrangers = {"--limits", "strangers"};
const Options kFuture = {"--return", "future"};
const Options kEveryBeginning = {"--return", "future", "--all-prefixes"};

// The answers to the histories, or the error.
Outcome scored(const std::string& path, const Options& question, const Options& limits) {
  Options options = {"score", "--model", kModel, "--input", path, "--quiet"};
  options.insert(options.end(), question.begin(), question.end());
  options.insert(options.end(), limits.begin(), limits.end());
  return run(options);
}

// Expects that the second history is refused with the limit, and that it has no answer.
void expectTooLarge(const Outcome& outcome, const std::string& place, const std::string& limit) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "orbseq: " + place + ": the history has more than " + limit + ", the limit\n");
  EXPECT_THAT(outcome.output, Not(HasSubstr("\nBen")));
}

TEST(HostileHistories, C14AMillionItemsInASetAreAnErrorThatNamesTheRow) {
  std::string items;
  for (int item = 0; item < 1'000'000; ++item) items += std::to_string(item) + " ";
  const TempFolder folder;
  const std::string path = folder.file("c.jsonl",
                                       "{\"customer\": \"Anna\", \"history\": \"(102)\"}\n"
                                       "{\"customer\": \"Ben\", \"history\": \"(" +
                                           items + ")\"}\n");

  for (const Options& question : {Options(), kFuture, kEveryBeginning}) {
    EXPECT_EQ(scored(path, question, {}).status, 0);
    expectTooLarge(scored(path, question, kStrangers), path + ":2", "65536 bytes");
    expectTooLarge(
        scored(path, question, {"--limits", "strangers", "--max-case-bytes", "10000000"}),
        path + ":2", "10000 items");
  }
}

TEST(HostileHistories, C15MoreThanAThousandSetsAreAnErrorThatNamesTheRow) {
  const TempFolder folder;
  const auto histories = [&folder](int sets) {
    std::string rows = "customer,history\nAnna,(102)\nBen,\"";
    for (int set = 0; set < sets; ++set) rows += set % 2 == 0 ? "(1)" : "(2)";
    return folder.file("c.csv", rows + "(101)\"\n");
  };
  std::string path = histories(999);

  const Outcome answered = scored(path, kEveryBeginning, kStrangers);

  EXPECT_EQ(answered.status, 0) << answered.error;
  EXPECT_THAT(answered.output, HasSubstr("\nBen,1,"));
  EXPECT_EQ(answered.output, scored(path, kEveryBeginning, {}).output);
  for (const auto& [sets, limit] :
       {std::pair{1'000, "1000 item sets"}, {20'000, "1000 item sets"}, {100'000, "65536 bytes"}}) {
    path = histories(sets);
    EXPECT_EQ(scored(path, kEveryBeginning, {}).status, 0);
    expectTooLarge(scored(path, kEveryBeginning, kStrangers), path + ":3", limit);
  }
}

TEST(HostileItems, HaveATestForEveryRow) { orbseq::test::expectTestsOfRows('V', 18); }

}  // namespace

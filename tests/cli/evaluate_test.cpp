// `orbseq evaluate` from its arguments to its measures.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/Terminal.h"
#include "tests/cli/logForms.h"
#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

namespace fs = std::filesystem;
using namespace orbseq::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using Arguments = std::vector<std::string>;

// What is left when each last basket is held back: (1)(2), (1)(2), (1), (3), (3). Of at least two
// customers: (1) 3, (2) 2, (3) 2, (1)(2) 2. Asked for are all but the fourth customer: the model
// answers 2 to the third alone, who takes it; the most popular are 1, 3, 2.
const Purchases kPurchases = {{{1}, {2}, {2, 3}}, {{1}, {2}, {1}}, {{1}, {2}}, {{3}}, {{3}, {1}}};

Outcome evaluate(Arguments options, const std::string& log) {
  options.insert(options.begin(), {"evaluate", "--input", "-"});
  return run(options, {.input = log});
}

Outcome evaluate(const Arguments& options) { return evaluate(options, rowsOf(kPurchases)); }

// hit rate, recall, MRR, NDCG, coverage, answered; by recommender and number of answers.
using Measures = std::array<double, 6>;
using Table = std::map<std::pair<std::string, int>, Measures>;

enum Measure : std::size_t { kHitRate, kRecall, kMrr, kNdcg, kCoverage, kAnswered };

Table tableOf(const std::string& csv) {
  Table table;
  std::istringstream lines(csv);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "recommender,customers,answers,hit_rate,recall,mrr,ndcg,coverage,answered");
  while (std::getline(lines, line)) {
    const std::size_t end = line.find('"', 1);
    std::istringstream rest(line.substr(end + 2));
    std::vector<double> fields;
    for (std::string field; std::getline(rest, field, ',');) fields.push_back(std::stod(field));
    EXPECT_EQ(fields.size(), 8U) << line;
    if (fields.size() != 8) continue;
    Measures& measures = table[{line.substr(1, end - 1), static_cast<int>(fields[1])}];
    std::copy(fields.begin() + 2, fields.end(), measures.begin());
  }
  return table;
}

void expectNear(const Measures& measures, const Measures& expected) {
  for (std::size_t k = 0; k < measures.size(); ++k)
    EXPECT_NEAR(measures[k], expected[k], 1e-14) << "measure " << k;
}

// --- By hand -------------------------------------------------------------------------------------

TEST(Evaluate, MeasuresAreThoseComputedByHand) {
  const Outcome outcome = evaluate({"--min-support", "2"});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.error, "orbseq: 5 customers, of whom 4 were asked for; 4 sequences\n");

  const double second = 1.0 / std::log2(3.0);
  const double both = (second + 0.5) / (1.0 + second);  // the ranks 2 and 3, wanted are two items
  const Table table = tableOf(outcome.output);
  ASSERT_EQ(table.size(), 12U);
  expectNear(table.at({"popularity", 1}), {0.5, 0.5, 0.5, 0.5, 1.0 / 3.0, 1.0});
  expectNear(table.at({"model, then popularity", 1}), {0.75, 0.75, 0.75, 0.75, 2.0 / 3.0, 1.0});
  for (const int answers : {1, 5, 10, 20})
    expectNear(table.at({"model", answers}), {0.25, 0.25, 0.25, 0.25, 1.0 / 3.0, 0.25});
  for (const int answers : {5, 10, 20}) {
    expectNear(table.at({"popularity", answers}), {1.0, 1.0, (0.5 + 1.0 + 1.0 / 3.0 + 1.0) / 4.0,
                                                   (both + 1.0 + 0.5 + 1.0) / 4.0, 1.0, 1.0});
    expectNear(table.at({"model, then popularity", answers}),
               {1.0, 1.0, (0.5 + 1.0 + 1.0 + 1.0) / 4.0, (both + 3.0) / 4.0, 1.0, 1.0});
  }
}

TEST(Evaluate, CsvRowsHaveExactNumbers) {
  const std::string output = evaluate({"--min-support", "2"}).output;

  EXPECT_THAT(output, HasSubstr("\n\"model\",4,1,0.25,0.25,0.25,0.25,0.33333333333333331,0.25\n"));
  EXPECT_EQ(linesIn(output), 13);
  EXPECT_EQ(output, evaluate({"--min-support", "2", "--format", "csv"}).output);
}

TEST(Evaluate, ATableIsForPeople) {
  const Outcome outcome = evaluate({"--min-support", "2", "--format", "table"});

  EXPECT_EQ(
      outcome.output,
      "4 of 5 customers asked for\n"
      "\n"
      "recommender             answers  hit rate  recall     MRR    NDCG  coverage  answered\n"
      "model                         1    0.2500  0.2500  0.2500  0.2500    0.3333    0.2500\n"
      "model                         5    0.2500  0.2500  0.2500  0.2500    0.3333    0.2500\n"
      "model                        10    0.2500  0.2500  0.2500  0.2500    0.3333    0.2500\n"
      "model                        20    0.2500  0.2500  0.2500  0.2500    0.3333    0.2500\n"
      "popularity                    1    0.5000  0.5000  0.5000  0.5000    0.3333    1.0000\n"
      "popularity                    5    1.0000  1.0000  0.7083  0.7984    1.0000    1.0000\n"
      "popularity                   10    1.0000  1.0000  0.7083  0.7984    1.0000    1.0000\n"
      "popularity                   20    1.0000  1.0000  0.7083  0.7984    1.0000    1.0000\n"
      "model, then popularity        1    0.7500  0.7500  0.7500  0.7500    0.6667    1.0000\n"
      "model, then popularity        5    1.0000  1.0000  0.8750  0.9234    1.0000    1.0000\n"
      "model, then popularity       10    1.0000  1.0000  0.8750  0.9234    1.0000    1.0000\n"
      "model, then popularity       20    1.0000  1.0000  0.8750  0.9234    1.0000    1.0000\n");
}

TEST(Evaluate, JsonLinesHoldWhatCsvHolds) {
  const Table table = tableOf(evaluate({"--min-support", "2"}).output);
  const Outcome outcome = evaluate({"--min-support", "2", "--format", "jsonl"});

  std::istringstream lines(outcome.output);
  std::size_t read = 0;
  for (std::string line; std::getline(lines, line); ++read) {
    const auto object = nlohmann::json::parse(line);
    EXPECT_EQ(object.at("customers"), 4) << line;
    const Measures& measures =
        table.at({object.at("recommender").get<std::string>(), object.at("answers").get<int>()});
    EXPECT_EQ(object.at("hit_rate"), measures[kHitRate]) << line;
    EXPECT_EQ(object.at("recall"), measures[kRecall]) << line;
    EXPECT_EQ(object.at("mrr"), measures[kMrr]) << line;
    EXPECT_EQ(object.at("ndcg"), measures[kNdcg]) << line;
    EXPECT_EQ(object.at("coverage"), measures[kCoverage]) << line;
    EXPECT_EQ(object.at("answered"), measures[kAnswered]) << line;
  }
  EXPECT_EQ(read, table.size());
}

// The whole history (1)(3) foretells nothing, its beginning (1) foretells 2.
TEST(Evaluate, AllPrefixesAskShorterBeginnings) {
  const std::string log = rowsOf({{{1}, {2}, {8}}, {{1}, {2}, {9}}, {{1}, {3}, {2}}, {{3}, {7}}});

  const Table whole = tableOf(evaluate({"--min-support", "2"}, log).output);
  const Table prefixes = tableOf(evaluate({"--min-support", "2", "--all-prefixes"}, log).output);

  EXPECT_EQ(whole.at({"model", 1})[kHitRate], 0.0);
  EXPECT_EQ(prefixes.at({"model", 1})[kHitRate], 0.25);
}

// --- Held back, and models -----------------------------------------------------------------------

TEST(Evaluate, AShareOfTimeIsHeldBack) {
  // The cut is 8: "b" ends at it, "c" comes after it, "a" alone is asked for.
  const std::string log = "customer,time,item\na,0,1\na,10,2\nb,0,1\nb,8,2\nc,9,3\n";

  const Outcome outcome = evaluate({"--min-support", "1", "--hold-back", "0.2"}, log);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "orbseq: 3 customers, of whom 1 were asked for; 3 sequences\n");
  const Table table = tableOf(outcome.output);
  EXPECT_EQ(table.at({"model", 1})[kHitRate], 1.0);       // b took 2 after 1
  EXPECT_EQ(table.at({"popularity", 1})[kHitRate], 0.0);  // both took 1
}

TEST(Evaluate, AReadyModelOfWhatIsSeenMeasuresAsATrainedOne) {
  const TempFolder folder;
  Purchases seen = kPurchases;
  for (auto& baskets : seen)
    if (baskets.size() > 1) baskets.pop_back();
  for (const char* name : {"m.xml", "m.bin"}) {
    const std::string model = folder.path(name);
    ASSERT_EQ(run({"train", "--input", "-", "--min-support", "2", "--output", model},
                  {.input = rowsOf(seen)})
                  .status,
              0);

    const Outcome ready = evaluate({"--model", model});

    EXPECT_EQ(ready.status, 0) << ready.error;
    EXPECT_EQ(ready.output, evaluate({"--min-support", "2"}).output) << name;
  }
}

// A document without an empty level at its end is read as the scoring module reads it.
TEST(Evaluate, TheHighestLevelOfADocumentIsHidden) {
  const TempFolder folder;
  const std::string closed = folder.path("closed.xml");
  run({"train", "--input", "-", "--min-support", "2", "--output", closed},
      {.input = rowsOf({{{1}, {2}}, {{1}, {2}}})});
  const std::string open = folder.file("open.xml", unclosed(contentOf(closed)));

  const Table ofClosed = tableOf(evaluate({"--model", closed}).output);
  const Table ofOpen = tableOf(evaluate({"--model", open}).output);

  EXPECT_EQ(ofClosed.at({"model", 1})[kAnswered], 0.25);  // (1)(2)
  EXPECT_EQ(ofOpen.at({"model", 1})[kAnswered], 0.0);
  EXPECT_EQ(ofOpen.at({"popularity", 1}), ofClosed.at({"popularity", 1}));
}

TEST(Evaluate, EveryFormOfALogMeasuresTheSame) {
  const LogForms forms(kPurchases);
  const std::string expected = evaluate({"--min-support", "2"}).output;
  for (const Arguments& input : forms.inputs()) {
    Arguments arguments = {"evaluate", "--min-support", "2"};
    arguments.insert(arguments.end(), input.begin(), input.end());

    const Outcome outcome = run(arguments);

    EXPECT_EQ(outcome.status, 0) << testing::PrintToString(input) << outcome.error;
    EXPECT_EQ(outcome.output, expected) << testing::PrintToString(input);
  }
}

TEST(Evaluate, ThreadsDoNotChangeTheMeasures) {
  std::mt19937 random(11);
  Purchases purchases(500);
  for (auto& baskets : purchases)
    for (int b = 0; b < 5; ++b)
      baskets.push_back({static_cast<int>(random() % 9), static_cast<int>(random() % 9)});
  const std::string log = rowsOf(purchases);
  const auto measured = [&](const char* threads) {
    return evaluate({"--min-support", "0.1", "--max-items", "3", "--threads", threads}, log).output;
  };

  const std::string one = measured("1");

  EXPECT_GT(tableOf(one).at({"model", 5})[kHitRate], 0.5);
  EXPECT_EQ(measured("2"), one);
  EXPECT_EQ(measured("4"), one);
}

// --- What goes wrong -----------------------------------------------------------------------------

TEST(Evaluate, WantsEitherAModelOrASupport) {
  const TempFolder folder;
  const std::string model = folder.file("m.xml", kSmallModel);
  for (const Arguments& options : {Arguments{}, {"--min-support", "2", "--model", model}}) {
    const Outcome outcome = evaluate(options);

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "orbseq: evaluate wants either --model or --min-support\n");
  }
}

TEST(Evaluate, WhatIsNoShareToHoldBackIsWrongUsage) {
  for (const char* text : {"0", "1", "-0.5", "1.5", "first", "0.2x", ""}) {
    const Outcome outcome = evaluate({"--min-support", "2", "--hold-back", text});

    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "") << text;
    EXPECT_EQ(outcome.error, std::string("orbseq: --hold-back: ") + text +
                                 " is neither last nor a share above 0 and below 1\n");
  }
}

TEST(Evaluate, OtherWrongUsageIsToldInOneLine) {
  for (const Arguments& options : {Arguments{"--min-support", "0"},
                                   {"--min-support", "2", "--format", "xml"},
                                   {"--min-support", "2", "--one-pass"},
                                   {"--min-support", "2", "--include", "99999999999"},
                                   {"--min-support", "2", "--query", "SELECT 1"},
                                   {"--model", "-"}}) {
    const Outcome outcome = evaluate(options);

    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(options) << outcome.error;
    EXPECT_EQ(outcome.output, "") << testing::PrintToString(options);
    EXPECT_EQ(linesIn(outcome.error), 1) << testing::PrintToString(options) << outcome.error;
  }
  EXPECT_EQ(run({"evaluate", "--min-support", "2"}).status, 1);
}

TEST(Evaluate, ABadLogIsBadInputAndLeavesTheOldOutput) {
  const TempFolder folder;
  const std::string output = folder.file("out.csv", "old");

  const Outcome outcome =
      evaluate({"--min-support", "2", "--output", output}, rowsOf(kPurchases) + "9,soon,3\n");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("standard input:14:2: "));
  EXPECT_EQ(linesIn(outcome.error), 1);
  EXPECT_EQ(contentOf(output), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Evaluate, AnOutputFileIsReplaced) {
  const TempFolder folder;
  const std::string output = folder.file("out.csv", "old");

  const Outcome outcome = evaluate({"--min-support", "2", "--output", output, "--quiet"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(contentOf(output), evaluate({"--min-support", "2"}).output);
}

TEST(Evaluate, ABrokenOutputIsAnErrorOfTheSurroundings) {
  const Arguments arguments = {"evaluate", "--input", "-", "--min-support", "2"};
  const std::string log = rowsOf(kPurchases);

  EXPECT_EQ(run(arguments, {.input = log, .outputPath = "/dev/full"}).status, 3);
  EXPECT_EQ(run(arguments, {.input = log, .closeOutput = true}).status, 3);
}

TEST(Evaluate, ALimitThatIsHitLeavesTheOldOutput) {
  const TempFolder folder;
  const std::string output = folder.file("out.csv", "old");

  const Outcome outcome = evaluate({"--min-support", "1", "--max-memory", "1", "--output", output});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("limit"));
  EXPECT_EQ(contentOf(output), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Evaluate, AStatusLineIsShownOnATerminalAndClearedBeforeTheSummary) {
  const TempFolder folder;
  const std::string log = folder.file("log.csv", rowsOf(kPurchases));
  const Terminal terminal;

  const Outcome outcome =
      run({"evaluate", "--input", log, "--min-support", "2"}, {.errorPath = terminal.path()});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, evaluate({"--min-support", "2"}).output);
  EXPECT_THAT(terminal.shown(), AllOf(HasSubstr("asking: 0 of 4 customers"),
                                      HasSubstr(" \rorbseq: 5 customers, of whom 4 were asked "
                                                "for; 4 sequences\r\n")));
}

// The log comes through a FIFO, so that the program waits for more when the signal arrives.
TEST(Evaluate, AnInterruptLeavesTheOldFileAndNothingElse) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const TempFolder folder;
    const std::string input = folder.path("in.csv");
    const std::string output = folder.file("out.csv", "old");
    ASSERT_EQ(::mkfifo(input.c_str(), 0600), 0);
    Program program({"evaluate", "--min-support", "2", "--input", input, "--output", output});
    std::ofstream feed(input, std::ios::binary);
    feed << rowsOf(kPurchases) << std::flush;

    program.signal(signal);
    feed.close();
    const Outcome outcome = program.wait();

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(contentOf(output), "old");
    EXPECT_EQ(folder.entries(), 2U);
  }
}

TEST(Evaluate, ItemsThatTheModelDoesNotKnowAreWarnedOf) {
  const TempFolder folder;
  const std::string model = folder.file("m.xml", kSmallModel);
  const std::string log =
      "customer,time,item\na,1,teapot\na,2,biscuit\na,3,7\nb,1,9\nb,2,spoon\nb,3,biscuit\n";

  const Outcome outcome = evaluate({"--model", model}, log);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.error,
              HasSubstr("warning: 3 item occurrences name no item of the model, such as "
                        "\"biscuit\", \"spoon\"\n"));
  EXPECT_EQ(evaluate({"--model", model, "--quiet"}, log).error, "");
}

TEST(Evaluate, WithNobodyToAskItWarns) {
  for (const Purchases& purchases : {Purchases{{{1}}, {{2}}}, Purchases{}}) {
    const Outcome outcome = evaluate({"--min-support", "1"}, rowsOf(purchases));

    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.error,
                AllOf(HasSubstr("warning: no customer has baskets both before and after the cut"),
                      HasSubstr("of whom 0 were asked for")));
    for (const auto& [name, measures] : tableOf(outcome.output))
      EXPECT_EQ(measures, Measures()) << name.first << " " << name.second;
  }
  EXPECT_THAT(evaluate({"--min-support", "2"}).error, Not(HasSubstr("warning")));
}

// --- Real data -----------------------------------------------------------------------------------

// The lists of `orbseq score`: customer to items, best first.
std::map<std::string, std::vector<int>> listsOf(const std::string& answers) {
  std::map<std::string, std::vector<int>> lists;
  std::istringstream lines(answers);
  std::string line, customer, rank, item;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::getline(fields, customer, ',');
    std::getline(fields, rank, ',');
    std::getline(fields, item, ',');
    lists[customer].push_back(std::stoi(item));
  }
  return lists;
}

// Retail customers' histories without the last basket, and what stood in it.
struct Asked {
  std::string histories = "customer,history\n";
  std::map<std::string, std::set<int>> wanted;
};

Asked askedOf(const fs::path& path) {
  Asked asked;
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    const std::size_t last = line.rfind('(');
    const std::string customer = line.substr(0, line.find(','));
    if (line[last - 1] == ',') continue;  // a single basket
    asked.histories += line.substr(0, last) + "\n";
    std::istringstream items(line.substr(last + 1));
    for (int item = 0; items >> item;) asked.wanted[customer].insert(item);
  }
  return asked;
}

struct Naive {
  double hits = 0.0;
  double recall = 0.0;
  double mrr = 0.0;
  std::set<int> items;
};

Naive naive(const Asked& asked, std::size_t cut,
            const std::map<std::string, std::vector<int>>& lists) {
  Naive sums;
  for (const auto& [customer, wanted] : asked.wanted) {
    const auto found = lists.find(customer);
    if (found == lists.end()) continue;
    std::vector<int> list = found->second;
    list.resize(std::min(cut, list.size()));
    sums.items.insert(list.begin(), list.end());
    const auto isWanted = [&wanted = wanted](int item) { return wanted.count(item) > 0; };
    const auto hits = std::count_if(list.begin(), list.end(), isWanted);
    if (hits == 0) continue;
    const auto first = std::find_if(list.begin(), list.end(), isWanted) - list.begin();
    sums.hits += 1.0;
    sums.recall += static_cast<double>(hits) / static_cast<double>(wanted.size());
    sums.mrr += 1.0 / static_cast<double>(first + 1);
  }
  return sums;
}

using Lists = std::map<std::string, std::vector<int>>;

void expectAsNaive(const Table& table, const std::string& recommender, const Asked& asked,
                   const Lists& lists, std::size_t items) {
  const auto customers = static_cast<double>(asked.wanted.size());
  for (const int cut : {1, 5, 10, 20}) {
    SCOPED_TRACE(recommender + " " + std::to_string(cut));
    const Naive expected = naive(asked, static_cast<std::size_t>(cut), lists);
    const Measures& measures = table.at({recommender, cut});
    EXPECT_EQ(measures[kHitRate], expected.hits / customers);
    EXPECT_NEAR(measures[kRecall], expected.recall / customers, 1e-12);
    EXPECT_NEAR(measures[kMrr], expected.mrr / customers, 1e-12);
    EXPECT_EQ(measures[kCoverage],
              static_cast<double>(expected.items.size()) / static_cast<double>(items));
    EXPECT_EQ(measures[kAnswered], static_cast<double>(lists.size()) / customers);
  }
}

TEST(Evaluate, RetailCustomersAreMeasuredAsTheScoredAnswersTell) {
  const fs::path data = fs::path(ORBSEQ_DATA_DIR) / "retail";
  if (!fs::is_directory(data)) {
    std::cerr << "\n*** SKIPPED: no real data at " << data << " ***\n\n";
    GTEST_SKIP() << "no real data at " << data;
  }
  const std::string model = (data / "lattice.xml").string();
  const Asked asked = askedOf(data / "histories.csv");
  const auto scored = [&model](const std::string& histories, const char* most) {
    return listsOf(
        run({"score", "--model", model, "--input", "-", "--return", "future", "--max-return", most},
            {.input = histories})
            .output);
  };
  const Lists lists = scored(asked.histories, "20");
  const std::vector<int> singles = scored("customer,history\nnew,\n", "100000").at("new");
  Lists popular;
  for (const auto& [customer, wanted] : asked.wanted) popular[customer] = singles;

  const Outcome outcome =
      run({"evaluate", "--model", model, "--input", (data / "histories.csv").string()});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_GT(asked.wanted.size(), 2500U);
  EXPECT_GT(lists.size(), 500U);
  const Table table = tableOf(outcome.output);
  expectAsNaive(table, "model", asked, lists, singles.size());
  expectAsNaive(table, "popularity", asked, popular, singles.size());
  EXPECT_GT(table.at({"model", 5})[kHitRate], 0.0);
}

}  // namespace

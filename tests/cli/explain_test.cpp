// `orbseq explain` from its arguments to the proposals that it tells.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
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
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Arguments = std::vector<std::string>;
using Fields = std::vector<std::string>;

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
const char* const kHeader =
    "customer,rank,item,label,wins,confidence,support,cause,count,together,skipped,place,"
    "sequence\n";

// Columns of the CSV.
enum Column : std::size_t {
  kCustomer,
  kRank,
  kItem,
  kLabel,
  kWins,
  kConfidence,
  kSupport,
  kCause,
  kCount,
  kTogether,
  kSkipped,
  kPlace,
  kSequence,
  kColumns
};

const std::vector<Arguments> kModes = {
    {"--return", "current"}, {"--return", "future"}, {"--return", "future", "--all-prefixes"}};

Outcome explain(Arguments options, const std::string& model = kModel,
                const Surroundings& surroundings = {}) {
  options.insert(options.begin(), {"explain", "--model", model});
  return run(options, surroundings);
}

// The fields of a row as they stand there, with their quotes.
Fields fieldsOf(const std::string& row) {
  Fields fields(1);
  bool isQuoted = false;
  for (const char c : row) {
    if (c == '"') isQuoted = !isQuoted;
    if (c == ',' && !isQuoted)
      fields.emplace_back();
    else
      fields.back() += c;
  }
  return fields;
}

// The rows behind the header.
std::vector<Fields> rowsOf(const std::string& csv) {
  std::vector<Fields> rows;
  std::istringstream lines(csv);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line + "\n", kHeader);
  while (std::getline(lines, line)) {
    rows.push_back(fieldsOf(line));
    EXPECT_EQ(rows.back().size(), kColumns) << line;
    rows.back().resize(kColumns);
  }
  return rows;
}

// The winners, written as `orbseq score` writes its answers.
std::string answersIn(const std::string& csv) {
  std::string answers = "customer,rank,item,label,confidence,support,cause\n";
  for (const Fields& row : rowsOf(csv)) {
    if (row[kWins] != "1") continue;
    for (const Column column : {kCustomer, kRank, kItem, kLabel, kConfidence, kSupport, kCause})
      answers += row[column] + (column == kCause ? "\n" : ",");
  }
  return answers;
}

// That explain's winners are score's answers for the histories, digit for digit, in every mode.
// Answers how many proposals did not win.
std::size_t expectAnswersOfScore(const std::string& model, const std::string& histories,
                                 const Arguments& options = {}) {
  std::size_t losers = 0;
  for (Arguments arguments : kModes) {
    arguments.insert(arguments.begin(), {"--input", histories});
    arguments.insert(arguments.end(), options.begin(), options.end());
    SCOPED_TRACE(testing::PrintToString(arguments) + " of " + model);
    const Outcome explained = explain(arguments, model);
    arguments.insert(arguments.begin(), {"score", "--model", model});
    const Outcome scored = run(arguments);

    EXPECT_EQ(explained.status, 0) << explained.error;
    EXPECT_EQ(scored.status, 0) << scored.error;
    EXPECT_GT(linesIn(scored.output), 1);
    EXPECT_TRUE(answersIn(explained.output) == scored.output)
        << answersIn(explained.output).substr(0, 400) << "\nbut score says\n"
        << scored.output.substr(0, 400);
    for (const Fields& row : rowsOf(explained.output)) losers += row[kWins] == "0" ? 1 : 0;
  }
  return losers;
}

// --- The answers of score ------------------------------------------------------------------------

TEST(Explain, WinnersAreTheAnswersOfScore) {
  expectAnswersOfScore(kModel, kCustomers);
  EXPECT_GT(expectAnswersOfScore(kModel, kCustomers, {"--max-return", "100"}), 10U);
  expectAnswersOfScore(kModel, kCustomers, {"--max-return", "2"});
}

// Every history of one or two baskets of the small model's items, with one that it does not know.
std::string smallHistories() {
  const Fields sets = {"(7)", "(9)", "(11)", "(7 9)", "(9 11)", "(7 9 11)", "(13)", "(9 13)", "()"};
  std::string text = "customer,history\nnobody,\n";
  int customer = 0;
  for (const std::string& first : sets) {
    text += std::to_string(++customer) + "," + first + "\n";
    for (const std::string& second : sets)
      text += std::to_string(++customer) + "," + first + second + "\n";
  }
  return text;
}

// The small document is not closed by an empty level, so that its highest one is hidden; the other
// forms hold all.
TEST(Explain, WinnersAreTheAnswersOfScoreInEveryFormOfAModel) {
  const SmallModels models;
  const std::string histories = models.folder.file("histories.csv", smallHistories());

  for (const std::string& model : models.paths())
    EXPECT_GT(expectAnswersOfScore(model, histories), 10U) << model;
}

TEST(Explain, WinnersAreTheAnswersOfScoreForADocumentThatIsNotClosed) {
  const TempFolder folder;
  const std::string model = folder.file("open.xml", unclosed(contentOf(kModel)));
  const std::string binary = folder.path("open.bin");
  ASSERT_EQ(run({"convert", "--quiet", "--model", model, "--output", binary}).status, 0);
  const std::string histories =
      folder.file("histories.csv",
                  "customer,history\na,(102)\nb,(102 301)\nc,(102 301)(102)\nd,(201 305)(201 305)\n"
                  "e,(104)(105)(104)\nf,\n");

  expectAnswersOfScore(model, histories);
  expectAnswersOfScore(binary, histories);
  EXPECT_NE(explain({"--input", histories}, model).output,
            explain({"--input", histories}, binary).output);
}

TEST(Explain, TheHighestLevelOfADocumentIsHidden) {
  const SmallModels models;
  const Arguments options = {"--history", "(7 9)", "--return", "future", "--why", "11"};

  const auto ofDocument = rowsOf(explain(options, models.folder.path("small.xml")).output);
  const auto ofBinary = rowsOf(explain(options, models.folder.path("small.bin")).output);

  ASSERT_EQ(ofDocument.size(), 1U);
  EXPECT_EQ(ofDocument[0][kSequence], "(9)");
  ASSERT_EQ(ofBinary.size(), 2U);
  EXPECT_EQ(ofBinary[0][kSequence], "(9)");
  EXPECT_EQ(ofBinary[1][kSequence], "(7 9)");
}

TEST(Explain, WinnersAreTheAnswersOfScoreForRetailCustomers) {
  const fs::path data = fs::path(ORBSEQ_DATA_DIR) / "retail";
  if (!fs::is_directory(data)) {
    std::cerr << "\n*** SKIPPED: no real data at " << data << " ***\n\n";
    GTEST_SKIP() << "no real data at " << data;
  }
  const TempFolder folder;
  std::ifstream all(data / "histories.csv");
  std::string text, line;
  for (int k = 0; k <= 200 && std::getline(all, line); ++k) text += line + "\n";
  const std::string histories = folder.file("histories.csv", text);
  const std::string model = (data / "lattice.xml").string();
  const std::string binary = folder.path("lattice.bin");
  ASSERT_EQ(run({"convert", "--quiet", "--model", model, "--output", binary}).status, 0);

  EXPECT_GT(expectAnswersOfScore(model, histories), 1000U);
  EXPECT_GT(expectAnswersOfScore(binary, histories), 1000U);
  EXPECT_EQ(linesIn(text), 201);
}

TEST(Explain, EveryFormOfALogIsExplainedAsItsHistories) {
  const LogForms forms({{{102}}, {{102, 301}, {102}}, {{201}, {203}}, {{104}, {105}, {101, 302}}});
  const auto explained = [](const Arguments& input) {
    Arguments options = {"--return", "future"};
    options.insert(options.end(), input.begin(), input.end());
    const Outcome outcome = explain(options);
    EXPECT_EQ(outcome.status, 0) << testing::PrintToString(input) << outcome.error;
    return outcome.output;
  };
  const std::string expected = explained({"--input", forms.folder().path("histories.csv")});
  EXPECT_GT(linesIn(expected), 10);
  for (const Arguments& input : forms.inputs())
    EXPECT_EQ(explained(input), expected) << testing::PrintToString(input);
}

// --- What is told --------------------------------------------------------------------------------

TEST(Explain, ARowTellsTheSequenceAndItsNumbers) {
  const SmallModels models;
  const Outcome outcome =
      explain({"--history", "(7 9)", "--return", "future"}, models.folder.path("small.bin"));

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.output, std::string(kHeader) +
                                "-,1,11,,1,0.59999999999999998,0.29999999999999999,0.75,5,3,0,"
                                "future,(9)\n"
                                "-,1,11,,0,0.5,0.20000000000000001,0.5,4,2,0,future,(7 9)\n"
                                "-,2,9,teapot,1,0.25,0.20000000000000001,0.40000000000000002,8,2,"
                                "0,future,(7)\n");
}

TEST(Explain, NamesAreQuotedInCsv) {
  const SmallModels models;
  const Outcome outcome = explain({"--input", "-"}, models.folder.path("small.bin"),
                                  {.input = "customer,history\n\"Doe, \"\"J\"\"\",(9)\n"});

  EXPECT_THAT(outcome.output,
              StartsWith(std::string(kHeader) + "\"Doe, \"\"J\"\"\",1,7,\"tea, green\",1,"));
}

TEST(Explain, CurrentItemsJoinTheLastBasket) {
  const SmallModels models;
  const Outcome outcome = explain({"--history", "(9)"}, models.folder.path("small.bin"));

  EXPECT_EQ(outcome.output, std::string(kHeader) +
                                "-,1,7,\"tea, green\",1,0.80000000000000004,0.40000000000000002,"
                                "0.5,5,4,0,current,(9)\n");
}

TEST(Explain, ShorterBeginningsTellHowManyBasketsTheySkip) {
  const SmallModels models;
  const auto rows = rowsOf(explain({"--history", "(7)(11)", "--return", "future", "--all-prefixes"},
                                   models.folder.path("small.bin"))
                               .output);

  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0][kItem], "9");
  EXPECT_EQ(rows[0][kSkipped], "1");
  EXPECT_EQ(rows[0][kSequence], "(7)");
}

TEST(Explain, JsonLinesHoldWhatCsvHolds) {
  const Arguments options = {"--input", kCustomers, "--return", "future", "--all-prefixes"};
  Arguments jsonOptions = options;
  jsonOptions.insert(jsonOptions.end(), {"--format", "jsonl"});
  const auto rows = rowsOf(explain(options).output);
  std::istringstream lines(explain(jsonOptions).output);

  std::size_t read = 0;
  for (std::string line; std::getline(lines, line) && read < rows.size(); ++read) {
    const auto object = nlohmann::json::parse(line);
    const Fields& row = rows[read];
    EXPECT_EQ(object.at("customer"), row[kCustomer]) << line;
    EXPECT_EQ(object.at("rank").dump(), row[kRank]) << line;
    EXPECT_EQ(object.at("item").dump(), row[kItem]) << line;
    EXPECT_THAT(row[kLabel], HasSubstr(object.at("label").get<std::string>())) << line;
    EXPECT_EQ(object.at("wins"), row[kWins] == "1") << line;
    EXPECT_EQ(object.at("confidence"), std::stod(row[kConfidence])) << line;
    EXPECT_EQ(object.at("support"), std::stod(row[kSupport])) << line;
    EXPECT_EQ(object.at("cause"), std::stod(row[kCause])) << line;
    EXPECT_EQ(object.at("count").dump(), row[kCount]) << line;
    EXPECT_EQ(object.at("together").dump(), row[kTogether]) << line;
    EXPECT_EQ(object.at("skipped").dump(), row[kSkipped]) << line;
    EXPECT_EQ(object.at("place"), row[kPlace]) << line;
    std::string sequence;
    for (const auto& set : object.at("sequence")) {
      std::string items;
      for (const int item : set) items += (items.empty() ? "" : " ") + std::to_string(item);
      sequence += "(" + items + ")";
    }
    EXPECT_EQ(sequence, row[kSequence]) << line;
  }
  EXPECT_EQ(read, rows.size());
  EXPECT_GT(rows.size(), 50U);
  EXPECT_TRUE(lines.peek() == std::istringstream::traits_type::eof());
}

TEST(Explain, AJsonLineOfAnItemWithoutALabelHasAnEmptyOne) {
  const SmallModels models;
  const Outcome outcome = explain({"--history", "(9)(7)", "--why", "11", "--return", "future",
                                   "--all-prefixes", "--format", "jsonl"},
                                  models.folder.path("small.bin"));

  EXPECT_EQ(outcome.output,
            "{\"customer\":\"-\",\"rank\":1,\"item\":11,\"label\":\"\",\"wins\":true,"
            "\"confidence\":0.6,\"support\":0.3,\"cause\":0.75,\"count\":5,\"together\":3,"
            "\"skipped\":1,\"place\":\"future\",\"sequence\":[[9]]}\n");
}

TEST(Explain, ATableIsForPeople) {
  const SmallModels models;
  const std::string model = models.folder.path("small.bin");
  const Arguments options = {"--history", "(7 9)", "--return", "future"};
  Arguments table = options;
  table.insert(table.end(), {"--format", "table"});

  EXPECT_EQ(explain(table, model).output,
            "customer -: (tea, green, teapot)\n"
            "  rank  confidence  support   cause  together      of  skipped  proposed by "
            "(* the one that wins)\n"
            "     1  item 11\n"
            "            0.6000   0.3000  0.7500         3       5        0  * teapot\n"
            "            0.5000   0.2000  0.5000         2       4        0    "
            "(tea, green, teapot)\n"
            "     2  teapot\n"
            "            0.2500   0.2000  0.4000         2       8        0  * tea, green\n"
            "\n");

  const Terminal terminal;
  explain(options, model, {.outputPath = terminal.path()});
  EXPECT_THAT(terminal.shown(), HasSubstr("(* the one that wins)"));
}

TEST(Explain, ATableTellsWhatIsPopularAndWhatHasNoProposal) {
  const SmallModels models;
  const std::string small = models.folder.path("small.bin");
  EXPECT_THAT(explain({"--history", "(13)", "--format", "table"}, small).output,
              EndsWith("  no stored sequence of the history proposes anything\n\n"));
  EXPECT_THAT(
      explain({"--input", "-", "--format", "table"}, small, {.input = "customer,history\nnew,\n"})
          .output,
      HasSubstr("* what is popular\n"));
  EXPECT_THAT(explain({"--history", "", "--format", "table"}, small).output,
              HasSubstr("* what is popular\n"));
}

TEST(Explain, MaxReturnCountsItemsAndZeroTellsNone) {
  const auto ranks = [](const std::string& csv) {
    std::set<std::string> all;
    for (const Fields& row : rowsOf(csv)) all.insert(row[kRank]);
    return all;
  };
  const Arguments options = {"--history", "(102 301)(102)", "--return", "future"};
  const auto limited = [&](const char* most) {
    Arguments arguments = options;
    arguments.insert(arguments.end(), {"--max-return", most});
    return explain(arguments).output;
  };

  EXPECT_EQ(limited("0"), kHeader);
  EXPECT_THAT(ranks(limited("1")), ElementsAre("1"));
  EXPECT_THAT(ranks(limited("3")), ElementsAre("1", "2", "3"));
  EXPECT_GT(rowsOf(limited("3")).size(), 3U);
}

// --- Which item, which history -------------------------------------------------------------------

TEST(Explain, WhyTakesANumberALabelOrItsBeginning) {
  const Arguments options = {"--history", "(102)", "--return", "future", "--max-return", "1"};
  const auto why = [&](const char* item) {
    Arguments arguments = options;
    arguments.insert(arguments.end(), {"--why", item});
    return explain(arguments);
  };

  const Outcome outcome = why("302");

  EXPECT_EQ(outcome.status, 0);
  const auto rows = rowsOf(outcome.output);
  ASSERT_FALSE(rows.empty());
  for (const Fields& row : rows) {
    EXPECT_EQ(row[kItem], "302");
    EXPECT_EQ(row[kRank], "2");  // as without --why, also beyond --max-return
  }
  EXPECT_EQ(why("Cinnamon roll").output, outcome.output);
  EXPECT_EQ(why("Cin").output, outcome.output);
}

TEST(Explain, AnItemThatNothingOrSeveralAreCalledIsWrongUsage) {
  for (const char* option : {"--why", "--took"}) {
    const auto ask = [&](const char* item) {
      Arguments arguments = {option, item};
      if (std::string(option) == "--why") arguments.insert(arguments.end(), {"--history", "(1)"});
      return explain(arguments);
    };

    const Outcome unknown = ask("Biscuit");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.output, "");
    EXPECT_EQ(unknown.error, std::string("orbseq: ") + option +
                                 ": Biscuit: no item of that number or label in the model\n");
    EXPECT_EQ(ask("999").status, 1);
    const Outcome several = ask("C");
    EXPECT_EQ(several.status, 1);
    EXPECT_THAT(several.error, HasSubstr("items have such a label, among them 102 and "));
  }
}

TEST(Explain, TookNamesBasketsByLabels) {
  const Outcome outcome =
      explain({"--took", "Cappuccino, Butter croissant", "--took", "102", "--return", "future"});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, explain({"--history", "(102 301)(102)", "--return", "future"}).output);
  EXPECT_GT(linesIn(outcome.output), 5);
}

TEST(Explain, AMalformedHistoryNamesTheByte) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"(102", "byte 5: "},      {"102)", "byte 1: "},   {"(102)(x)", "byte 7: "},
      {"(102) 301", "byte 7: "}, {"(102))", "byte 6: "}, {"(-1)", "byte 2: "}};
  for (const auto& [text, byte] : cases) {
    const Outcome outcome = explain({"--history", text});

    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "") << text;
    EXPECT_THAT(outcome.error, StartsWith(std::string("orbseq: --history: ") + byte)) << text;
    EXPECT_EQ(linesIn(outcome.error), 1) << text;
  }
}

TEST(Explain, ABadHistoryOfTheInputIsBadInput) {
  const TempFolder folder;
  const std::string output = folder.file("out.csv", "old");
  const Outcome outcome = explain({"--input", "-", "--output", output}, kModel,
                                  {.input = "customer,history\nAnna,(102)\nBruno,(102\n"});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("orbseq: standard input:3:2: "));
  EXPECT_EQ(contentOf(output), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Explain, WhoPicksCustomersOfTheInput) {
  const auto who = [](const Arguments& names) {
    Arguments arguments = {"--input", kCustomers};
    for (const std::string& name : names) arguments.insert(arguments.end(), {"--who", name});
    return explain(arguments);
  };
  const auto namesIn = [](const std::string& csv) {
    std::set<std::string> names;
    for (const Fields& row : rowsOf(csv)) names.insert(row[kCustomer]);
    return names;
  };

  EXPECT_THAT(namesIn(who({"Emma"}).output), ElementsAre("Emma"));
  EXPECT_THAT(namesIn(who({"Farid", "Bruno", "Farid"}).output), ElementsAre("Bruno", "Farid"));
  EXPECT_GT(namesIn(who({}).output).size(), 5U);
  const Outcome unknown = who({"Emma", "Zoe"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.output, "");
  EXPECT_EQ(unknown.error, "orbseq: --who: no customer Zoe in the input\n");
}

TEST(Explain, WantsOneSourceOfHistories) {
  for (const Arguments& options : {Arguments{},
                                   {"--history", "(102)", "--took", "102"},
                                   {"--history", "(102)", "--input", kCustomers},
                                   {"--took", "102", "--input", kCustomers}}) {
    const Outcome outcome = explain(options);

    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(options);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "orbseq: explain wants one of --input, --history and --took\n");
  }
}

TEST(Explain, OtherWrongUsageIsToldInOneLine) {
  for (const Arguments& options : {Arguments{"--history", "(102)", "--who", "Emma"},
                                   {"--history", "(102)", "--return", "past"},
                                   {"--history", "(102)", "--max-return", "-1"},
                                   {"--history", "(102)", "--format", "xml"},
                                   {"--input", kCustomers, "--query", "SELECT 1"},
                                   {"--input", "histories.none"}}) {
    const Outcome outcome = explain(options);

    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(options) << outcome.error;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(linesIn(outcome.error), 1) << outcome.error;
  }
  EXPECT_EQ(run({"explain", "--history", "(102)"}).status, 1);
  EXPECT_EQ(explain({"--input", "-"}, "-").status, 1);
}

TEST(Explain, ItemsThatTheModelDoesNotKnowAreWarnedOf) {
  const std::string log = "customer,time,item\nann,1,Cappuccino\nann,1,Biscuit\n";

  const Outcome outcome = explain({"--input", "-"}, kModel, {.input = log});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error,
            "orbseq: warning: 1 item occurrences name no item of the model, such as "
            "\"Biscuit\"\n");
  EXPECT_THAT(outcome.output, StartsWith(std::string(kHeader) + "ann,1,302,Cinnamon roll,1,"));
  EXPECT_EQ(explain({"--input", "-", "--quiet"}, kModel, {.input = log}).error, "");
}

// --- The surroundings ----------------------------------------------------------------------------

TEST(Explain, ABrokenOutputIsAnErrorOfTheSurroundings) {
  const Arguments options = {"--input", kCustomers};

  const Outcome full = explain(options, kModel, {.outputPath = "/dev/full"});
  const Outcome closed = explain(options, kModel, {.closeOutput = true});

  EXPECT_EQ(full.status, 3);
  EXPECT_EQ(full.error, "orbseq: standard output: cannot write: No space left on device\n");
  EXPECT_EQ(closed.status, 3);
  EXPECT_EQ(closed.error, "orbseq: standard output: cannot write: Bad file descriptor\n");
}

TEST(Explain, AMissingModelIsAnErrorOfTheSurroundings) {
  EXPECT_EQ(explain({"--history", "(102)"}, "/nowhere/m.xml").status, 3);
}

// Histories come through a FIFO, so that the program waits for more when the signal arrives.
TEST(Explain, AnInterruptLeavesTheOldFileAndNothingElse) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const TempFolder folder;
    const std::string input = folder.path("in.csv");
    const std::string output = folder.file("out.csv", "old");
    ASSERT_EQ(::mkfifo(input.c_str(), 0600), 0);
    Program program({"explain", "--model", kModel, "--input", input, "--output", output});
    std::ofstream feed(input, std::ios::binary);
    feed << "customer,history\n";
    for (int i = 0; i < 20'000; ++i) feed << i << ",(102)(301)\n";
    feed << std::flush;

    program.signal(signal);
    feed.close();
    const Outcome outcome = program.wait();

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
    EXPECT_EQ(contentOf(output), "old");
    EXPECT_EQ(folder.entries(), 2U);
  }
}

TEST(Explain, AnOutputFileIsReplaced) {
  const TempFolder folder;
  const std::string output = folder.file("out.csv", "old");

  const Outcome outcome = explain({"--input", kCustomers, "--output", output});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(contentOf(output), explain({"--input", kCustomers}).output);
  EXPECT_EQ(folder.entries(), 1U);
}

}  // namespace

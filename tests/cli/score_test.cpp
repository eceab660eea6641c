// `orbseq score` from its arguments to its answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/cli/Terminal.h"
#include "tests/support/Program.h"

namespace {

using orbseq::test::contentOf;
using orbseq::test::Outcome;
using orbseq::test::run;
using orbseq::test::TempFolder;
using orbseq::test::Terminal;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
const char* const kHeader = "customer,rank,item,label,confidence,support,cause\n";

// Scores what is given on standard input.
Outcome score(const std::string& input, std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"score", "--model", kModel, "--input", "-"});
  return run(options, {.input = input});
}

auto lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST(Score, AnswersComeAsCsvWhenStandardOutputIsNoTerminal) {
  const Outcome outcome = score("customer,history\nAnna,(102)\n", {"--max-return", "1"});

  EXPECT_EQ(outcome.output,
            std::string(kHeader) +
                "Anna,1,302,Cinnamon roll,0.6696428571428571,0.1875,0.66371681415929207\n");
  EXPECT_EQ(outcome.error, "orbseq: 1 customer, 1 answer\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(Score, FutureItemsAreAskedForWithReturn) {
  const Outcome outcome =
      score("customer,history\nAnna,(102)\n", {"--return", "future", "--max-return", "1"});

  EXPECT_EQ(outcome.output,
            std::string(kHeader) + "Anna,1,102,Cappuccino,0.75,0.20999999999999999,0.75\n");
}

TEST(Score, CurrentItemsAreTheDefault) {
  const std::string input = "customer,history\nAnna,(102)\n";

  EXPECT_EQ(score(input).output, score(input, {"--return", "current"}).output);
}

TEST(Score, TwentyAnswersAreTheDefault) {
  const std::string input = "customer,history\nnew,\n";

  EXPECT_EQ(lines(score(input).output), 1 + 15);  // the shop sells 15 things
  EXPECT_EQ(score(input).output, score(input, {"--max-return", "20"}).output);
}

TEST(Score, MaxReturnZeroGivesNoAnswer) {
  const Outcome outcome = score("customer,history\nAnna,(102)\n", {"--max-return", "0"});

  EXPECT_EQ(outcome.output, kHeader);
  EXPECT_EQ(outcome.error, "orbseq: 1 customer, 0 answers\n");
}

TEST(Score, AllPrefixesFindsWhatTheWholeHistoryDoesNot) {
  // Nobody in the model takes a tea strainer (204) in the last visit after these.
  const std::string input = "customer,history\nAnna,(102)(204)\n";

  const Outcome whole = score(input, {"--return", "future"});
  const Outcome prefixes = score(input, {"--return", "future", "--all-prefixes"});

  EXPECT_EQ(whole.output, kHeader);
  EXPECT_THAT(prefixes.output, HasSubstr("Anna,1,102,Cappuccino,0.75,"));
}

TEST(Score, AnEmptyHistoryIsAnsweredWithWhatMostCustomersTake) {
  const Outcome outcome = score("customer,history\nnew,\n", {"--max-return", "2"});

  EXPECT_EQ(outcome.output, std::string(kHeader) +
                                "new,1,302,Cinnamon roll,0.28249999999999997,"
                                "0.28249999999999997,1\n"
                                "new,2,105,\"Coffee beans, 250 g\",0.28000000000000003,"
                                "0.28000000000000003,1\n");
}

TEST(Score, JsonLinesAreReadAndWritten) {
  const Outcome outcome =
      score("{\"customer\": 17, \"history\": [[102]]}\n",
            {"--input-format", "jsonl", "--format", "jsonl", "--max-return", "1"});

  EXPECT_EQ(outcome.output,
            "{\"customer\":\"17\",\"rank\":1,\"item\":302,\"label\":\"Cinnamon roll\","
            "\"confidence\":0.6696428571428571,\"support\":0.1875,"
            "\"cause\":0.66371681415929207}\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(Score, TheNameOfAFileTellsItsFormat) {
  const TempFolder folder;
  const std::string csv = folder.file("a.csv", "customer,history\n17,(102)\n");
  const std::string json = folder.file("a.ndjson", "{\"customer\":17,\"history\":\"(102)\"}\n");

  const Outcome fromCsv = run({"score", "-m", kModel, "-i", csv});
  const Outcome fromJson = run({"score", "-m", kModel, "-i", json});

  EXPECT_EQ(fromCsv.status, 0);
  EXPECT_EQ(fromCsv.output, fromJson.output);
}

TEST(Score, TheExamplesCustomersAreScoredAsATable) {
  const Outcome outcome = run({"score", "--model", kModel, "--input", kCustomers, "--format",
                               "table", "--max-return", "1", "--quiet"});

  EXPECT_THAT(outcome.output,
              StartsWith("  rank  item  label                     confidence  support   cause\n"
                         "\n"
                         "customer Anna\n"
                         "     1   302  Cinnamon roll                 0.6696   0.1875  0.6637\n"
                         "\n"
                         "customer Bruno\n"));
  EXPECT_THAT(outcome.output,
              EndsWith("customer New customer\n"
                       "     1   302  Cinnamon roll                 0.2825   0.2825  1.0000\n"));
  EXPECT_EQ(outcome.error, "");
}

TEST(Score, TheExampleIsWhatItsScriptMakes) {
  if (std::system("python3 --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no python3";
  const TempFolder folder;
  const std::string script = ORBSEQ_SOURCE_DIR "/examples/shop/make_shop.py";

  ASSERT_EQ(std::system(
                ("python3 '" + script + "' '" + folder.path().string() + "' > /dev/null").c_str()),
            0);

  EXPECT_TRUE(contentOf(folder.path("lattice.xml")) == contentOf(kModel));
  EXPECT_EQ(contentOf(folder.path("customers.csv")), contentOf(kCustomers));
}

TEST(Score, ATerminalGetsATable) {
  const Terminal terminal;

  const Outcome outcome =
      run({"score", "--model", kModel, "--input", kCustomers}, {.outputPath = terminal.path()});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(terminal.shown(), StartsWith("  rank  item  label"));
}

TEST(Score, AFileGetsCsvAlsoWhenStandardOutputIsATerminal) {
  const TempFolder folder;
  const Terminal terminal;

  run({"score", "--model", kModel, "--input", kCustomers, "--output", folder.path("out")},
      {.outputPath = terminal.path()});

  EXPECT_EQ(terminal.shown(), "");
  EXPECT_THAT(contentOf(folder.path("out")), StartsWith(kHeader));
}

TEST(Score, ProgressIsShownOnATerminalOnly) {
  const Terminal terminal;

  const Outcome outcome =
      run({"score", "--model", kModel, "--input", kCustomers}, {.errorPath = terminal.path()});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(terminal.shown(),
            "0%   10   20   30   40   50   60   70   80   90   100%\r\n"
            "|----|----|----|----|----|----|----|----|----|----|\r\n"
            "***************************************************\r\n"
            "orbseq: 8 customers, " +
                std::to_string(lines(outcome.output) - 1) + " answers\r\n");
}

TEST(Score, NoProgressIsShownAmongAnswersOnOneTerminal) {
  const Terminal terminal;

  run({"score", "--model", kModel, "--input", kCustomers, "--max-return", "1"},
      {.outputPath = terminal.path(), .errorPath = terminal.path()});

  EXPECT_THAT(terminal.shown(), Not(HasSubstr("0%")));
}

TEST(Score, ABarThatAnErrorCutsShortEndsItsLine) {
  const TempFolder folder;
  const Terminal terminal;
  std::string input = "customer,history\n";
  for (int i = 0; i < 20'000; ++i) input += "17,(102)\n";
  const std::string path = folder.file("a.csv", input + "17\n");

  const Outcome outcome =
      run({"score", "--model", kModel, "--input", path}, {.errorPath = terminal.path()});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(terminal.shown(), HasSubstr("*\r\norbseq: " + path + ":20002: expected 2 fields"));
}

TEST(Score, QuietSaysNothing) {
  const Terminal terminal;

  run({"score", "--model", kModel, "--input", kCustomers, "--quiet"},
      {.errorPath = terminal.path()});

  EXPECT_EQ(terminal.shown(), "");
}

TEST(Score, ADryRunReadsEverythingAndPrintsNoAnswers) {
  const TempFolder folder;
  const Outcome outcome = run({"score", "--model", kModel, "--input", kCustomers, "--dry-run",
                               "--output", folder.path("out")});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "orbseq: dry run: 8 customers read, nothing scored\n");
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(Score, ADryRunFindsBadRows) {
  const Outcome outcome = score("customer,history\n17,(1)\n18\n", {"--dry-run"});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "orbseq: standard input:3: expected 2 fields, found 1\n");
}

TEST(Score, AnOutputFileIsReplacedAsAWhole) {
  const TempFolder folder;
  const std::string path = folder.file("out.csv", "old");

  const Outcome outcome =
      score("customer,history\nAnna,(102)\n", {"--max-return", "1", "--output", path});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(contentOf(path),
            std::string(kHeader) +
                "Anna,1,302,Cinnamon roll,0.6696428571428571,0.1875,0.66371681415929207\n");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Score, BadInputLeavesTheOldOutputFileAndNothingElse) {
  const TempFolder folder;
  const std::string path = folder.file("out.csv", "old");

  const Outcome outcome =
      score("customer,history\nAnna,(102)\nBruno,\"(1)\"x\n", {"--output", path});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "orbseq: standard input:3:2: text after the closing quote\n");
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Score, InputWithoutCustomersIsDoneWithAWarning) {
  const Outcome outcome = score("customer,history\n");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, kHeader);
  EXPECT_EQ(outcome.error,
            "orbseq: warning: standard input: no histories\norbseq: 0 customers, 0 answers\n");
}

TEST(Score, AnEmptyInputIsBadInput) {
  const Outcome outcome = score("");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "orbseq: standard input: the file is empty; a header row is wanted\n");
}

TEST(Score, AMissingColumnIsBadInput) {
  const Outcome outcome = score("customer,items\n17,(1)\n");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(
      outcome.error,
      "orbseq: standard input:1: neither a column \"item\" nor a column \"history\"; the columns "
      "are \"customer\", "
      "\"items\"\n");
}

TEST(Score, BrokenJsonIsBadInput) {
  const Outcome outcome = score("{\"customer\": 17,\n", {"--input-format", "jsonl"});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("orbseq: standard input:1: byte 17: syntax error"));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Score, ATextThatIsNoHistoryIsAnsweredAsAnEmptyOne) {
  EXPECT_EQ(score("customer,history\nx,abc\n").output, score("customer,history\nx,\n").output);
}

TEST(Score, HelpTellsOptionsAndExamples) {
  const Outcome outcome = run({"score", "--help"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  for (const char* option : {"--model", "--input", "--input-format", "--return", "--max-return",
                             "--all-prefixes", "--format", "--output", "--quiet", "--dry-run",
                             "--module", "--max-document-bytes", "--max-elements", "Examples:"})
    EXPECT_THAT(outcome.output, HasSubstr(option));
}

TEST(Score, TheProgramsHelpTellsItsCommands) {
  const Outcome outcome = run({"--help"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, HasSubstr("score"));
}

TEST(Score, TheVersionIsPrinted) {
  const Outcome outcome = run({"--version"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "orbseq " ORBSEQ_TEST_VERSION "\n");
}

// Wrong usage: a line on standard error, nothing on standard output, status 1.
TEST(Score, WrongUsageIsToldInOneLine) {
  const std::vector<std::vector<std::string>> cases{
      {},
      {"scare"},
      {"--no-such-option"},
      {"score"},
      {"score", "--model", kModel},
      {"score", "--input", kCustomers},
      {"score", "--model"},
      {"score", "--model", kModel, "--input", kCustomers, "--return", "past"},
      {"score", "--model", kModel, "--input", kCustomers, "--format", "xml"},
      {"score", "--model", kModel, "--input", kCustomers, "--input-format", "xml"},
      {"score", "--model", kModel, "--input", kCustomers, "--max-return", "-1"},
      {"score", "--model", kModel, "--input", kCustomers, "--max-return", "2147483648"},
      {"score", "--model", kModel, "--input", kCustomers, "--max-return", "many"},
      {"score", "--model", kModel, "--input", kCustomers, "--max-elements", "0"},
      {"score", "--model", kModel, "--input", kCustomers, "--max-document-bytes", "-1"},
      {"score", "--model", kModel, "--input", kCustomers, "--no-such-option"},
      {"score", "--model", kModel, "--input", kCustomers, "more"},
      {"score", "--model", kModel, "--input", "histories.txt"},
  };
  for (const auto& arguments : cases) {
    const Outcome outcome = run(arguments);

    const std::string text = testing::PrintToString(arguments);
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "") << text;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: ")) << text;
    EXPECT_EQ(lines(outcome.error), 1) << text << outcome.error;
  }
}

TEST(Score, AnUnknownCommandIsNamed) {
  EXPECT_EQ(run({"scare"}).error, "orbseq: unknown command or option scare (see: orbseq --help)\n");
}

TEST(Score, AnInputWhoseNameTellsNothingAsksForTheFormat) {
  EXPECT_EQ(run({"score", "--model", kModel, "--input", "a.txt"}).error,
            "orbseq: --input: the name a.txt does not tell the format; give --input-format csv, "
            "tsv, spmf, basket, jsonl, sqlite\n");
}

}  // namespace

// `orbseq rules` from its arguments to its rules.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/Terminal.h"
#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const char* const kHeader = "antecedents,consequents,support,confidence,cause,lift,count\n";
const char* const kFirst =
    "(9),(11),0.29999999999999999,0.59999999999999998,0.75,1.4999999999999998,3\n";
const char* const kSecond = "(7 9),(11),0.20000000000000001,0.5,0.5,1.25,2\n";
const char* const kThird = "(7),(9),0.20000000000000001,0.25,0.40000000000000002,0.5,2\n";
const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";

// The rules of the small model, which standard input gives.
Outcome rules(std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"rules", "--model", "-"});
  return run(options, {.input = kSmallModel});
}

std::string table(const std::vector<const char*>& rows) {
  std::string text = kHeader;
  for (const char* row : rows) text += row;
  return text;
}

TEST(Rules, AreCsvByConfidenceWhereStandardOutputIsNoTerminal) {
  const Outcome outcome = rules();

  EXPECT_EQ(outcome.output, table({kFirst, kSecond, kThird}));
  EXPECT_EQ(outcome.error, "orbseq: 3 rules of 3 within the bounds\n");
  EXPECT_EQ(outcome.status, 0);
}

TEST(Rules, AreATableForATerminal) {
  const TempFolder folder;
  const Terminal terminal;
  run({"rules", "--model", folder.file("m", kSmallModel)}, {.outputPath = terminal.path()});

  EXPECT_THAT(terminal.shown(), StartsWith("confidence  support   cause    lift    count"));
}

TEST(Rules, TheTableShowsLabels) {
  EXPECT_EQ(rules({"--format", "table"}).output,
            "confidence  support   cause    lift    count  antecedents => consequents\n"
            "    0.6000   0.3000  0.7500    1.50        3  teapot => 11\n"
            "    0.5000   0.2000  0.5000    1.25        2  (tea, green, teapot) => 11\n"
            "    0.2500   0.2000  0.4000    0.50        2  tea, green => teapot\n");
}

TEST(Rules, CsvHasLabelsWhenAskedFor) {
  EXPECT_EQ(rules({"--format", "csv", "--labels"}).output,
            std::string(kHeader) +
                "teapot,11,0.29999999999999999,0.59999999999999998,0.75,1.4999999999999998,3\n"
                "\"(tea, green, teapot)\",11,0.20000000000000001,0.5,0.5,1.25,2\n"
                "\"tea, green\",teapot,0.20000000000000001,0.25,0.40000000000000002,0.5,2\n");
}

TEST(Rules, JsonLinesHaveNumbersAndLabels) {
  const Outcome outcome = rules({"--format", "jsonl"});

  EXPECT_THAT(outcome.output,
              StartsWith("{\"antecedents\":[[9]],\"antecedent_labels\":[[\"teapot\"]],"
                         "\"consequents\":[[11]],\"consequent_labels\":[[\"\"]],"
                         "\"support\":0.29999999999999999,\"confidence\":0.59999999999999998,"
                         "\"cause\":0.75,\"lift\":1.4999999999999998,\"count\":3}\n"));
  std::istringstream lines(outcome.output);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_TRUE(nlohmann::json::accept(line)) << line;
  EXPECT_EQ(count, 3);
}

TEST(Rules, TextIsALineARule) {
  EXPECT_EQ(rules({"--format", "text"}).output,
            "9 ==> 11 #SUP: 3 #CONF: 0.59999999999999998\n"
            "7 9 ==> 11 #SUP: 2 #CONF: 0.5\n"
            "7 ==> 9 #SUP: 2 #CONF: 0.25\n");
  EXPECT_EQ(rules({"--format", "text", "--labels"}).output,
            "teapot ==> 11 #SUP: 3 #CONF: 0.59999999999999998\n"
            "\"tea, green\" teapot ==> 11 #SUP: 2 #CONF: 0.5\n"
            "\"tea, green\" ==> teapot #SUP: 2 #CONF: 0.25\n");
}

TEST(Rules, PmmlHasTheRulesWithinTheBoundsAndNoLattice) {
  const Outcome outcome = rules({"--format", "pmml", "--min-confidence", "0.5"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StartsWith("<?xml version=\"1.0\""));
  EXPECT_THAT(outcome.output, HasSubstr("<SequenceRule id=\"2\""));
  EXPECT_THAT(outcome.output, Not(HasSubstr("<SequenceRule id=\"3\"")));
  EXPECT_THAT(outcome.output, Not(HasSubstr("LatticeLevel")));
  EXPECT_THAT(outcome.output, EndsWith("</PMML>"));
}

TEST(Rules, BoundsAreInclusive) {
  EXPECT_EQ(rules({"--min-support", "0.3"}).output, table({kFirst}));
  EXPECT_EQ(rules({"--max-support", "0.2"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--min-confidence", "0.5"}).output, table({kFirst, kSecond}));
  EXPECT_EQ(rules({"--max-confidence", "0.5"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--min-cause", "0.5"}).output, table({kFirst, kSecond}));
  EXPECT_EQ(rules({"--max-cause", "0.5"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--min-support", "1"}).output, kHeader);
}

TEST(Rules, AreSortedAsAsked) {
  EXPECT_EQ(rules({"--sort", "cause"}).output, table({kFirst, kSecond, kThird}));
  EXPECT_THAT(rules({"--sort", "support"}).output, StartsWith(table({kFirst})));
  EXPECT_EQ(rules({"--sort", "confidence"}).output, rules().output);
  EXPECT_EQ(linesIn(rules({"--sort", "none"}).output), 4);
}

TEST(Rules, MaximalLeavesOutWhatExtends) {
  EXPECT_EQ(rules({"--maximal"}).output, table({kSecond, kThird}));
}

TEST(Rules, TopIsTheMostAfterSortingAndZeroIsAll) {
  const Outcome outcome = rules({"--top", "1"});
  EXPECT_EQ(outcome.output, table({kFirst}));
  EXPECT_EQ(outcome.error, "orbseq: 1 rule of 3 within the bounds\n");
  EXPECT_EQ(rules({"--top", "0"}).output, rules().output);
  EXPECT_EQ(rules({"--top", "99"}).output, rules().output);
  EXPECT_EQ(rules({"--top", "1", "--with", "7"}).output, table({kSecond}));
}

TEST(Rules, WithTakesANumberALabelOrItsBeginning) {
  EXPECT_EQ(rules({"--with", "7"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--with", "tea, green"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--with", "tea,"}).output, table({kSecond, kThird}));
  EXPECT_EQ(rules({"--with", "teapot"}).output, table({kFirst, kSecond, kThird}));
  EXPECT_EQ(rules({"--with", "7", "--with", "11"}).output, table({kSecond}));
}

TEST(Rules, ConsequentLooksAtTheConsequentsAlone) {
  EXPECT_EQ(rules({"--consequent", "11"}).output, table({kFirst, kSecond}));
  EXPECT_EQ(rules({"--consequent", "teap"}).output, table({kThird}));
  EXPECT_EQ(rules({"--consequent", "7"}).output, kHeader);
  EXPECT_EQ(rules({"--consequent", "11", "--with", "7"}).output, table({kSecond}));
}

TEST(Rules, AnItemThatIsUnknownOrAmbiguousIsWrongUsage) {
  const std::vector<std::vector<std::string>> cases{
      {"--with", "tea", "--with: tea: 2 items have such a label, among them 7 and 9"},
      {"--with", "8", "--with: 8: no item of that number or label in the model"},
      {"--consequent", "Tea", "--consequent: Tea: no item of that number or label in the model"},
      {"--with", "", "--with: : no item of that number or label in the model"},
      {"--with", "99999999999",
       "--with: 99999999999: no item of that number or label in the model"},
  };
  for (const auto& one : cases) {
    const Outcome outcome = rules({one[0], one[1]});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, "orbseq: " + one[2] + "\n");
  }
}

TEST(Rules, AnOutputFileIsReplacedAsAWhole) {
  const TempFolder folder;
  const std::string path = folder.file("rules.csv", "old");

  EXPECT_EQ(rules({"--output", path, "--quiet"}).error, "");

  EXPECT_EQ(contentOf(path), table({kFirst, kSecond, kThird}));
  EXPECT_EQ(folder.entries(), 1U);
  EXPECT_EQ(rules({"--with", "8", "--output", path}).status, 1);
  EXPECT_EQ(contentOf(path), table({kFirst, kSecond, kThird}));
}

TEST(Rules, EveryFormOfTheModelGivesTheSameRules) {
  const SmallModels models;
  for (const std::string& path : models.paths())
    for (const char* format : {"table", "csv", "jsonl", "text", "pmml"})
      EXPECT_EQ(run({"rules", "-m", path, "--format", format, "--labels"}).output,
                rules({"--format", format, "--labels"}).output)
          << path << format;
}

TEST(Rules, HelpTellsOptionsAndExamples) {
  const Outcome outcome = run({"rules", "--help"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  for (const char* option :
       {"--model", "--min-support", "--max-support", "--min-confidence", "--max-confidence",
        "--min-cause", "--max-cause", "--sort", "--maximal", "--top", "--with", "--consequent",
        "--labels", "--format", "--output", "--quiet", "--max-elements", "Examples:"})
    EXPECT_THAT(outcome.output, HasSubstr(option));
}

TEST(Rules, WrongUsageIsToldInOneLine) {
  std::vector<std::vector<std::string>> cases{
      {"rules"},
      {"rules", "--model", kShop, "more"},
      {"rules", "--model", kShop, "--sort", "lift"},
      {"rules", "--model", kShop, "--format", "xml"},
      {"rules", "--model", kShop, "--top", "-1"},
      {"rules", "--model", kShop, "--top", "many"},
      {"rules", "--model", kShop, "--format", "pmml", "--top", "1"},
      {"rules", "--model", kShop, "--format", "pmml", "--with", "101"},
      {"rules", "--model", kShop, "--format", "pmml", "--consequent", "101"},
  };
  for (const char* bound :
       {"--min-support", "--max-support", "--min-confidence", "--max-confidence", "--min-cause"})
    for (const char* value : {"-0.1", "1.1", "nan", "inf", "some"})
      cases.push_back({"rules", "--model", kShop, bound, value});
  for (const char* value : {"-0.1", "nan", "some"})
    cases.push_back({"rules", "--model", kShop, "--max-cause", value});
  for (const auto& arguments : cases) {
    const Outcome outcome = run(arguments);
    const std::string text = testing::PrintToString(arguments);
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "") << text;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: ")) << text;
    EXPECT_EQ(linesIn(outcome.error), 1) << text << outcome.error;
  }
}

TEST(Rules, AFullDeviceIsAnErrorOfFiles) {
  const TempFolder folder;
  const Outcome outcome =
      run({"rules", "--model", folder.file("m", kSmallModel)}, {.outputPath = "/dev/full"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("No space left on device"));
}

}  // namespace

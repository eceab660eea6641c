// `orbseq train` from its arguments to the model that it leaves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/logForms.h"
#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

const char* const kLog =
    "customer,time,item\n"
    "ann,1,2\nann,1,1\nann,2,3\n"
    "bob,1,1\nbob,2,3\n"
    "cid,1,1\ncid,1,2\n"
    "dan,6,1\ndan,5,3\n";

// Of at least two customers.
const char* const kSequences =
    "1 -1 #SUP: 4\n"
    "2 -1 #SUP: 2\n"
    "3 -1 #SUP: 3\n"
    "1 -1 3 -1 #SUP: 2\n"
    "1 2 -1 #SUP: 2\n";

// A log with some ten thousands of sequences of up to four items.
std::string largeLog() {
  std::string text = "customer,time,item\n";
  std::mt19937 random(3);
  for (int customer = 0; customer < 200; ++customer)
    for (int row = 0; row < 24; ++row)
      text += std::to_string(customer) + "," + std::to_string(row / 2) + "," +
              std::to_string(random() % 12) + "\n";
  return text;
}

Outcome train(const std::string& output, Arguments options, const std::string& log = kLog) {
  options.insert(options.begin(), {"train", "--input", "-", "--output", output});
  return run(options, {.input = log});
}

std::string sequencesOf(const std::string& model, const Arguments& options = {}) {
  Arguments arguments = {"inspect", "--model", model, "--sequences"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return run(arguments).output;
}

TEST(Train, EveryFormHoldsTheSequencesOfTheLog) {
  for (const char* form : {"document", "pmml", "binary", "objxml"}) {
    const TempFolder folder;
    const Outcome outcome = train(folder.path("model"), {"--min-support", "2", "--to", form});
    EXPECT_EQ(outcome.status, 0) << form << ": " << outcome.error;
    EXPECT_EQ(outcome.output, "") << form;
    EXPECT_EQ(sequencesOf(folder.path("model")), kSequences) << form;
  }
}

TEST(Train, TheSummaryTellsRowsAndSequences) {
  const TempFolder folder;
  const Outcome outcome = train(folder.path("m.xml"), {"--min-support", "2"});
  EXPECT_THAT(outcome.error,
              AllOf(HasSubstr("9 rows, 4 customers, 7 baskets, 9 item occurrences\n"),
                    HasSubstr("5 sequences of at least 2 customers: 3 of 1, 2 of 2 items\n")));
  EXPECT_EQ(train(folder.path("m.xml"), {"--min-support", "2", "--quiet"}).error, "");
}

TEST(Train, SupportIsAShareOrANumberOfCustomers) {
  const TempFolder folder;
  const auto sequences = [&](const char* support) {
    EXPECT_EQ(train(folder.path("m.bin"), {"--min-support", support}).status, 0);
    return sequencesOf(folder.path("m.bin"));
  };
  EXPECT_EQ(sequences("0.5"), kSequences);
  EXPECT_EQ(sequences("0.26"), kSequences);
  EXPECT_EQ(sequences("1.5"), kSequences);
  EXPECT_EQ(sequences("4"), "1 -1 #SUP: 4\n");
  EXPECT_EQ(sequences("0.76"), "1 -1 #SUP: 4\n");
  EXPECT_EQ(sequences("5"), "");
  EXPECT_EQ(linesIn(sequences("1")), 8);
  EXPECT_EQ(linesIn(sequences("0.0001")), 8);
}

TEST(Train, LengthsAndGapsBoundTheSequences) {
  const TempFolder folder;
  const auto sequences = [&](Arguments options) {
    options.insert(options.end(), {"--min-support", "2"});
    EXPECT_EQ(train(folder.path("m.bin"), options).status, 0);
    return sequencesOf(folder.path("m.bin"));
  };
  EXPECT_EQ(linesIn(sequences({"--max-items", "1"})), 3);
  EXPECT_THAT(sequences({"--max-sets", "1"}), EndsWith("1 2 -1 #SUP: 2\n"));
  EXPECT_THAT(sequences({"--max-items-per-set", "1"}), EndsWith("1 -1 3 -1 #SUP: 2\n"));
  EXPECT_THAT(sequences({"--min-gap", "1.5"}), Not(HasSubstr("1 -1 3 -1")));
  EXPECT_THAT(sequences({"--max-gap", "1"}), HasSubstr("1 -1 3 -1"));
}

TEST(Train, ThreadsDoNotChangeTheModel) {
  const TempFolder folder;
  const std::string log = largeLog();
  for (const char* threads : {"1", "4"})
    ASSERT_EQ(
        train(folder.path(threads),
              {"--min-support", "20", "--max-items", "4", "--threads", threads, "--to", "binary"},
              log)
            .status,
        0);
  EXPECT_EQ(contentOf(folder.path("1")), contentOf(folder.path("4")));
  EXPECT_GT(linesIn(sequencesOf(folder.path("1"))), 1000);
}

TEST(Train, CountingInTheLatticeFindsTheSame) {
  const TempFolder folder;
  const std::string log = largeLog();
  for (const char* algorithm : {"exact", "carma"})
    ASSERT_EQ(train(folder.path(algorithm),
                    {"--min-support", "0.3", "--max-items", "3", "--algorithm", algorithm, "--to",
                     "binary"},
                    log)
                  .status,
              0);
  EXPECT_EQ(sequencesOf(folder.path("exact")), sequencesOf(folder.path("carma")));
  EXPECT_GT(linesIn(sequencesOf(folder.path("carma"))), 100);
}

TEST(Train, LimitsLeaveTheOldModel) {
  const TempFolder folder;
  const std::string log = largeLog();
  for (const Arguments& limit : {Arguments{"--max-seconds", "0.000001"}, {"--max-memory", "1"}}) {
    const std::string model = folder.file("m.bin", "old");
    Arguments options = {"--min-support", "2", "--max-items", "4"};
    options.insert(options.end(), limit.begin(), limit.end());
    const Outcome outcome = train(model, options, log);
    EXPECT_EQ(outcome.status, 3) << limit[0];
    EXPECT_THAT(outcome.error, HasSubstr("limit")) << limit[0];
    EXPECT_EQ(linesIn(outcome.error), 1) << limit[0];
    EXPECT_EQ(contentOf(model), "old");
    EXPECT_EQ(folder.entries(), 1U);
  }
}

TEST(Train, ABadRowLeavesTheOldModel) {
  const TempFolder folder;
  const std::string model = folder.file("m.xml", "old");
  const std::string log = std::string(kLog) + "eve,soon,3\n";
  const Outcome outcome = train(model, {"--min-support", "2"}, log);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("standard input:11:2: "));
  EXPECT_EQ(linesIn(outcome.error), 1);
  EXPECT_EQ(contentOf(model), "old");

  const Outcome skipping = train(model, {"--min-support", "2", "--skip-bad-rows", "1"}, log);
  EXPECT_EQ(skipping.status, 0);
  EXPECT_THAT(skipping.error, HasSubstr("10 rows (1 bad, left out), 4 customers"));
  EXPECT_EQ(sequencesOf(model), kSequences);
}

TEST(Train, WrongUsageMakesNoModel) {
  const TempFolder folder;
  const std::string model = folder.path("m.xml");
  for (const Arguments& options :
       {Arguments{},
        {"--min-support", "0"},
        {"--min-support", "-1"},
        {"--min-support", "x"},
        {"--min-support", "2", "--basket", "year"},
        {"--min-support", "2", "--max-items", "32"},
        {"--min-support", "2", "--max-items", "0"},
        {"--min-support", "2", "--algorithm", "other"},
        {"--min-support", "2", "--algorithm", "carma"},
        {"--min-support", "2", "--one-pass"},
        {"--min-support", "2", "--max-items", "2", "--algorithm", "carma", "--max-gap", "1"},
        {"--min-support", "2", "--items", "word"},
        {"--min-support", "2", "--to", "csv"}}) {
    const Outcome outcome = train(model, options);
    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(options) << outcome.error;
    EXPECT_NE(outcome.error, "");
  }
  EXPECT_EQ(train(folder.path("model"), {"--min-support", "2"}).status, 1);
  const std::string log = folder.file("log", kLog);
  EXPECT_EQ(run({"train", "--input", log, "--min-support", "2", "--output", model}).status, 1);
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Train, FilesThatAreNotThereAreErrorsOfTheSurroundings) {
  const TempFolder folder;
  const std::string log = folder.path("none.csv");
  EXPECT_EQ(
      run({"train", "--input", log, "--min-support", "2", "--output", folder.path("m.xml")}).status,
      3);
  EXPECT_EQ(train(folder.path("none/m.xml"), {"--min-support", "2"}).status, 3);
}

TEST(Train, LabelsGoIntoTheDocumentAndBesideOtherForms) {
  const std::string log = "customer,time,item,name\na,1,tea,green\nb,1,tea,other\nb,1,pot,\n";
  for (const char* name : {"m.xml", "m.bin"}) {
    const TempFolder folder;
    const std::string model = folder.path(name);
    ASSERT_EQ(train(model, {"--min-support", "1", "--label", "name"}, log).status, 0);
    EXPECT_EQ(sequencesOf(model, {"--labels"}),
              "pot -1 #SUP: 1\n\"tea green\" -1 #SUP: 2\npot \"tea green\" -1 #SUP: 1\n");
    EXPECT_EQ(folder.entries(), model.ends_with(".bin") ? 2U : 1U);
  }
  const TempFolder folder;
  train(folder.path("m.bin"), {"--min-support", "1", "--label", "name"}, log);
  EXPECT_EQ(contentOf(folder.path("m.bin.labels.csv")), "item,label\n1,pot\n2,tea green\n");
}

TEST(Train, FilesTellTheirForm) {
  const TempFolder folder;
  const std::string log = folder.file("log.spmf",
                                      "1 2 -1 3 -1 -2\n1 -1 3 -1 -2\n1 2 -1 -2\n"
                                      "3 -1 1 -1 -2\n");
  const std::string model = folder.path("m.pmml");
  const Outcome outcome = run({"train", "-i", log, "-s", "2", "-o", model});
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(contentOf(model), StartsWith("<?xml"));
  EXPECT_EQ(sequencesOf(model), kSequences);
}

// The sequences of an output of `orbseq inspect --sequences` whose items all pass.
template <class Passes>
std::string restricted(const std::string& sequences, Passes passes) {
  std::string kept, line;
  std::istringstream lines(sequences);
  while (std::getline(lines, line)) {
    std::istringstream words(line.substr(0, line.find(" #SUP")));
    bool isKept = true;
    for (int word = 0; words >> word;) isKept = isKept && (word == -1 || passes(word));
    if (isKept) kept += line + "\n";
  }
  return kept;
}

TEST(Train, IncludedItemsRestrictTheSequences) {
  const TempFolder folder;
  const std::string log = largeLog();
  const Arguments common = {"--min-support", "60", "--max-items", "3"};
  const auto sequences = [&](const Arguments& more) {
    Arguments options = common;
    options.insert(options.end(), more.begin(), more.end());
    const Outcome outcome = train(folder.path("m.bin"), options, log);
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    return sequencesOf(folder.path("m.bin"));
  };
  const auto isOneOf = [](int item) { return item == 1 || item == 3 || item == 7; };
  const std::string all = sequences({});

  const std::string included = sequences({"--include", "7", "--include", "1", "--include", "3"});
  const std::string excluded = sequences({"--exclude", "3", "--exclude", "1", "--exclude", "7"});
  const std::string both = sequences({"--include", "1", "--include", "3", "--exclude", "3"});

  EXPECT_EQ(included, restricted(all, isOneOf));
  EXPECT_EQ(excluded, restricted(all, [&](int item) { return !isOneOf(item); }));
  EXPECT_EQ(both, restricted(all, [](int item) { return item == 1; }));
  EXPECT_GT(linesIn(included), 20);
  EXPECT_GT(linesIn(excluded), linesIn(included));
  EXPECT_GT(linesIn(both), 1);
}

TEST(Train, ItemsAreIncludedByLabelFirstWordAndNumber) {
  const std::string log =
      "customer,time,item,name\n"
      "a,1,tea,green\na,2,pot,\na,2,milk,\nb,1,tea,green\nb,2,pot,\nb,3,milk,\n";
  const TempFolder folder;
  const auto sequences = [&](const Arguments& more) {
    Arguments options = {"--min-support", "2", "--label", "name"};
    options.insert(options.end(), more.begin(), more.end());
    EXPECT_EQ(train(folder.path("m.xml"), options, log).status, 0);
    return sequencesOf(folder.path("m.xml"), {"--labels"});
  };
  const char* const kWithoutMilk =
      "pot -1 #SUP: 2\n\"tea green\" -1 #SUP: 2\n\"tea green\" -1 pot -1 #SUP: 2\n";

  EXPECT_EQ(sequences({"--include", "tea green", "--include", "pot"}), kWithoutMilk);
  EXPECT_EQ(sequences({"--include", "tea", "--include", "2"}), kWithoutMilk);  // 2 is pot
  EXPECT_EQ(sequences({"--exclude", "milk"}), kWithoutMilk);
  EXPECT_EQ(sequences({"--exclude", "1"}), kWithoutMilk);
}

TEST(Train, AnItemThatNothingIsCalledIsWrongUsage) {
  const TempFolder folder;
  for (const char* option : {"--include", "--exclude"}) {
    const Outcome outcome = train(folder.path("m.xml"), {"--min-support", "2", option, "tea"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error, std::string("orbseq: ") + option +
                                 ": \"tea\" is neither a label nor an item from 0 to "
                                 "2147483647\n");
    EXPECT_EQ(folder.entries(), 0U);
  }
}

// The purchases of kLog.
const Purchases kPurchases = {{{1, 2}, {3}}, {{1}, {3}}, {{1, 2}}, {{3}, {1}}};

TEST(Train, EveryFormOfALogMakesTheSameModel) {
  const LogForms forms(kPurchases);
  for (const char* form : {"document", "binary"}) {
    std::string expected;
    for (const Arguments& input : forms.inputs()) {
      const TempFolder folder;
      const std::string model = folder.path("model");
      Arguments arguments = {"train", "--min-support", "2", "--to", form, "--output", model};
      arguments.insert(arguments.end(), input.begin(), input.end());

      const Outcome outcome = run(arguments);

      ASSERT_EQ(outcome.status, 0) << testing::PrintToString(input) << outcome.error;
      EXPECT_EQ(folder.entries(), 1U) << testing::PrintToString(input);
      if (expected.empty()) expected = contentOf(model);
      EXPECT_TRUE(contentOf(model) == expected) << form << ' ' << testing::PrintToString(input);
      EXPECT_EQ(sequencesOf(model), kSequences) << form << ' ' << testing::PrintToString(input);
    }
  }
}

TEST(Train, TheSummaryTellsLimitsOfLength) {
  const TempFolder folder;
  const auto summary = [&](Arguments options) {
    options.insert(options.end(), {"--min-support", "2"});
    return train(folder.path("m.xml"), options).error;
  };
  EXPECT_THAT(summary({"--max-items", "3"}),
              HasSubstr("looked at up to 3 items, 31 item sets, 31 items in a set\n"));
  EXPECT_THAT(summary({"--max-sets", "2", "--max-items-per-set", "1"}),
              HasSubstr("looked at up to 31 items, 2 item sets, 1 items in a set\n"));
  EXPECT_THAT(summary({}), Not(HasSubstr("looked at")));
}

TEST(Train, ADatabaseAndAQueryWantEachOther) {
  const LogForms forms(kPurchases);
  const TempFolder folder;
  const std::string model = folder.path("m.xml");
  const Outcome withoutQuery = run(
      {"train", "--input", forms.folder().path("log.db"), "--min-support", "2", "--output", model});
  const Outcome withoutDatabase = train(model, {"--min-support", "2", "--query", "SELECT 1"});
  EXPECT_EQ(withoutQuery.status, 1);
  EXPECT_EQ(withoutQuery.error,
            "orbseq: --query: a database wants the statement whose rows are read\n");
  EXPECT_EQ(withoutDatabase.status, 1);
  EXPECT_EQ(withoutDatabase.error, "orbseq: --query wants --input-format sqlite\n");
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(Train, EveryFormOfALogIsScoredAsItsHistories) {
  const LogForms forms({{{102}}, {{102, 301}, {102}}, {{201}, {203}}, {{104}, {105}, {101, 302}}});
  const std::string histories = forms.folder().path("histories.csv");
  for (const char* kind : {"current", "future"}) {
    const Arguments common = {"score", "--model", ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml",
                              "--return", kind};
    const auto answers = [&common](const Arguments& input) {
      Arguments arguments = common;
      arguments.insert(arguments.end(), input.begin(), input.end());
      const Outcome outcome = run(arguments);
      EXPECT_EQ(outcome.status, 0) << testing::PrintToString(input) << outcome.error;
      return outcome.output;
    };
    const std::string expected = answers({"--input", histories});
    EXPECT_GT(linesIn(expected), 10) << kind;
    for (const Arguments& input : forms.inputs())
      EXPECT_EQ(answers(input), expected) << kind << ' ' << testing::PrintToString(input);
  }
}

}  // namespace

// `orbseq train` from its arguments to the model that it leaves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/cli/Program.h"
#include "tests/cli/smallModel.h"

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

}  // namespace

// `orbseq generate` from its arguments to the log, and the log as input of `orbseq train`.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

Outcome generate(Arguments options, const Surroundings& surroundings = {}) {
  options.insert(options.begin(), "generate");
  return run(options, surroundings);
}

std::string logOf(Arguments options) {
  const Outcome outcome = generate(std::move(options));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  return outcome.output;
}

struct Row {
  std::string customer, time, item, label;

  std::string place() const { return customer + time; }
};

std::vector<Row> rowsOf(const std::string& log) {
  std::istringstream lines(log);
  std::vector<Row> rows;
  Row row;
  std::getline(lines, row.customer);
  while (std::getline(lines, row.customer, ',') && std::getline(lines, row.time, ',') &&
         std::getline(lines, row.item, ',') && std::getline(lines, row.label))
    rows.push_back(row);
  return rows;
}

// FNV-1a, 64 bits.
std::uint64_t hashOf(const std::string& text) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return hash;
}

TEST(Generate, TheLogBeginsAsItAlwaysDid) {
  EXPECT_THAT(logOf({"--customers", "2"}),
              StartsWith("customer,time,item,label\n"
                         "C000001,2025-11-06 19:07,PET-016,\"sturdy cat basket, 50 cm\"\n"
                         "C000001,2025-11-12 14:16,PET-005,\"basic feeding bowl, 1 litre\"\n"
                         "C000001,2025-11-12 14:16,PET-006,\"basic dry food, 3 kg\"\n"));
}

// Logs that others have made by seed must come out again.
TEST(Generate, TheBytesOfASeedNeverChange) {
  EXPECT_EQ(hashOf(logOf({"--customers", "1000"})), 12001981294900056047U);
  EXPECT_EQ(hashOf(logOf({"--customers", "300", "--seed", "18446744073709551615", "--items", "3000",
                          "--days", "900", "--start", "2024-02-29"})),
            3040001213125154534U);
}

TEST(Generate, EqualSeedsAgreeAndOthersDiffer) {
  const std::string log = logOf({"--customers", "50", "--seed", "7"});

  EXPECT_EQ(logOf({"--customers", "50", "--seed", "7"}), log);
  EXPECT_NE(logOf({"--customers", "50", "--seed", "8"}), log);
}

TEST(Generate, ALongerLogBeginsWithTheShorterOne) {
  EXPECT_THAT(logOf({"--customers", "200"}), StartsWith(logOf({"--customers", "20"})));
}

TEST(Generate, RowsAreInOrderAndWithinTheDays) {
  const std::vector<Row> rows =
      rowsOf(logOf({"--customers", "2000", "--days", "30", "--start", "2024-02-10"}));

  ASSERT_GT(rows.size(), 4000U);
  EXPECT_EQ(rows.back().customer, "C002000");
  for (std::size_t k = 0; k < rows.size(); ++k) {
    EXPECT_GE(rows[k].time, "2024-02-10 08:00");
    EXPECT_LT(rows[k].time, "2024-03-10 21:00");
    if (k > 0) {
      EXPECT_LE(rows[k - 1].place(), rows[k].place());
    }
  }
}

TEST(Generate, AnItemHasOneLabelOfItsOwn) {
  std::map<std::string, std::string> labels, items;
  for (const Row& row : rowsOf(logOf({"--customers", "3000"}))) {
    EXPECT_EQ(labels.try_emplace(row.item, row.label).first->second, row.label);
    EXPECT_EQ(items.try_emplace(row.label, row.item).first->second, row.item);
  }

  EXPECT_GT(labels.size(), 350U);
}

TEST(Generate, TheSummaryTellsWhatWasMade) {
  EXPECT_EQ(generate({"--customers", "2"}).error,
            "orbseq: 2 customers, 5 baskets, 14 rows of 400 products\n");
  EXPECT_EQ(generate({"--customers", "1"}).error,
            "orbseq: 1 customer, 4 baskets, 11 rows of 400 products\n");
  EXPECT_EQ(generate({"--customers", "2", "--quiet"}).error, "");
}

TEST(Generate, AFileHoldsWhatStandardOutputGets) {
  const TempFolder folder;
  const std::string file = folder.file("log.csv", "old");

  const Outcome outcome = generate({"--customers", "3000", "--output", file});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(contentOf(file), logOf({"--customers", "3000"}));
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Generate, ValuesOutOfRangeAreWrongUsage) {
  struct Case {
    Arguments options;
    std::string range;
  };
  const TempFolder folder;
  for (const Case& bad : {
           Case{{"--customers", "0"}, "1 to 10000000"},
           Case{{"--customers", "10000001"}, "1 to 10000000"},
           Case{{"--customers", "-5"}, "1 to 10000000"},
           Case{{"--customers", "1e3"}, "1 to 10000000"},
           Case{{"-n", "1", "--items", "49"}, "50 to 100000"},
           Case{{"-n", "1", "--items", "100001"}, "50 to 100000"},
           Case{{"-n", "1", "--days", "29"}, "30 to 3650"},
           Case{{"-n", "1", "--days", "3651"}, "30 to 3650"},
           Case{{"-n", "1", "--seed", "-1"}, "0 to 18446744073709551615"},
           Case{{"-n", "1", "--seed", "18446744073709551616"}, "0 to 18446744073709551615"},
           Case{{"-n", "1", "--start", "2025-02-29"}, "1970-01-01 to 2199-12-31"},
           Case{{"-n", "1", "--start", "1969-12-31"}, "1970-01-01 to 2199-12-31"},
           Case{{"-n", "1", "--start", "2025-1-1"}, "1970-01-01 to 2199-12-31"},
           Case{{"-n", "1", "--start", "2025-01-+1"}, "1970-01-01 to 2199-12-31"},
       }) {
    Arguments options = bad.options;
    options.insert(options.end(), {"--output", folder.path("log.csv")});
    const Outcome outcome = generate(options);
    EXPECT_EQ(outcome.status, 1) << testing::PrintToString(options);
    EXPECT_THAT(outcome.error, HasSubstr(bad.range)) << testing::PrintToString(options);
    EXPECT_EQ(linesIn(outcome.error), 1) << outcome.error;
  }
  EXPECT_EQ(generate({}).status, 1);
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(Generate, AnOutputThatCannotBeWrittenIsAnErrorOfTheSurroundings) {
  const TempFolder folder;
  EXPECT_EQ(generate({"-n", "9", "--output", folder.path("none/log.csv")}).status, 3);
  EXPECT_EQ(generate({"-n", "9", "--output", folder.path(".")}).status, 3);
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(Generate, AFullOrClosedStandardOutputIsAnError) {
  const Outcome full = generate({"-n", "9"}, {.outputPath = "/dev/full"});
  const Outcome closed = generate({"-n", "9"}, {.closeOutput = true});

  EXPECT_EQ(full.status, 3);
  EXPECT_EQ(full.error, "orbseq: standard output: cannot write: No space left on device\n");
  EXPECT_EQ(closed.status, 3);
  EXPECT_EQ(closed.error, "orbseq: standard output: cannot write: Bad file descriptor\n");
}

TEST(Generate, ARequestToStopLeavesTheOldFile) {
  const TempFolder folder;
  const std::string file = folder.file("log.csv", "old");
  Program program({"generate", "--customers", "10000000", "--output", file});
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (folder.entries() < 2 && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));

  program.signal(SIGINT);
  const Outcome outcome = program.wait();

  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Generate, TrainFindsTheSequencesInTheLog) {
  const TempFolder folder;
  const std::string log = folder.path("log.csv"), model = folder.path("model.xml");
  ASSERT_EQ(generate({"--customers", "4000", "--output", log}).status, 0);

  const Outcome trained =
      run({"train", "--input", log, "--label", "label", "-s", "0.005", "--output", model});
  const Outcome listed = run({"inspect", "--model", model, "--sequences", "--labels"});

  EXPECT_EQ(trained.status, 0) << trained.error;
  EXPECT_THAT(listed.output,
              HasSubstr("\"TEA-001 coffee machine model 1\" -1 "
                        "\"TEA-002 coffee capsules for coffee machine model 1\" -1"));
}

TEST(Generate, HelpTellsRangesExamplesAndStatuses) {
  const Outcome outcome = generate({"--help"});

  EXPECT_EQ(outcome.status, 0);
  for (const char* part : {"1 to 10000000", "50 to 100000", "30 to 3650", "Examples:", "130"})
    EXPECT_THAT(outcome.output, HasSubstr(part));
}

}  // namespace

// Limits: what --limits prints, and what a history beyond one comes to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/Limits.h"
#include "tests/support/Program.h"

namespace {

using orbseq::test::contentOf;
using orbseq::test::Outcome;
using orbseq::test::run;
using orbseq::test::TempFolder;
using testing::HasSubstr;

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";

Outcome score(const std::string& history, std::vector<std::string> options) {
  options.insert(options.begin(), {"score", "--model", kModel, "--input", "-", "--quiet"});
  return run(options, {.input = "customer,history\nAnna,(102)\nBen,\"" + history + "\"\n"});
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int k = 0; k < times; ++k) all += text;
  return all;
}

struct Row {
  const char* name;
  std::string history;
  std::vector<std::string> options;
  const char* limit;
};

const Row kRows[] = {
    {"BytesOfStrangers", repeated("x", 65'537), {"--limits", "strangers"}, "65536 bytes"},
    {"SetsOfStrangers", repeated("()", 1'001), {"--limits", "strangers"}, "1000 item sets"},
    {"ItemsOfStrangers",
     [] {
       std::string items = "(";
       for (int k = 0; k < 10'001; ++k) items += std::to_string(k) + " ";
       return items + ")";
     }(),
     {"--limits", "strangers"},
     "10000 items"},
    {"Bytes", "(101)(102)", {"--max-case-bytes", "9"}, "9 bytes"},
    {"Sets", "(101)(102)", {"--max-case-sets", "1"}, "1 item sets"},
    {"Items", "(101 102)", {"--max-case-items", "1"}, "1 items"},
    {"OneInThePlaceOfStrangers",
     "(101)(102)",
     {"--max-case-sets", "1", "--limits", "strangers"},
     "1 item sets"},
};

class CaseLimitsOfScore : public testing::TestWithParam<Row> {};

TEST_P(CaseLimitsOfScore, AreErrorsThatNameTheRowAndTheLimit) {
  const Outcome outcome = score(GetParam().history, GetParam().options);

  EXPECT_EQ(outcome.error, std::string("orbseq: standard input:3: the history has more than ") +
                               GetParam().limit + ", the limit\n");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(score(GetParam().history, {}).status, 0) << "without limits";
}

INSTANTIATE_TEST_SUITE_P(All, CaseLimitsOfScore, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(CaseLimits, ASearchThatTakesTooManyStepsIsAnErrorAndNoShorterAnswer) {
  const Outcome outcome = score("(101)(102)(201)", {"--max-case-steps", "1"});

  EXPECT_EQ(outcome.error,
            "orbseq: standard input:3: the query takes more than 1 steps, the limit\n");
  EXPECT_EQ(outcome.output.find("Ben"), std::string::npos);
  EXPECT_EQ(outcome.status, 2);
}

TEST(CaseLimits, NothingChangesWithinThem) {
  EXPECT_EQ(score("(101)(102)", {"--limits", "strangers"}).output, score("(101)(102)", {}).output);
}

TEST(CaseLimits, APlugInKnowsNone) {
  const Outcome outcome = score("(101)", {"--limits", "strangers", "--module", "any.so"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("a plug-in searches without limits"));
}

TEST(CaseLimits, AnUnknownNameIsWrongUsage) {
  EXPECT_EQ(score("(101)", {"--limits", "friends"}).status, 1);
  EXPECT_EQ(score("(101)", {"--max-case-sets", "-1"}).status, 1);
}

TEST(Limits, APluginHasItsOwnLimitOfChains) {
  const Outcome outcome =
      run({"score", "--model", kModel, "--input", "-", "--module", "any.so", "--max-chain", "5"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error,
            "orbseq: --module: a plug-in has its own limit of chains; leave out --max-chain\n");
}

// Users rely on the figures: a change of one is a change of what is promised.
TEST(Limits, AreThose) {
  const orbseq::DocumentLimits document;
  EXPECT_EQ(document.bytes, 67'108'864U);
  EXPECT_EQ(document.depth, 64);
  EXPECT_EQ(document.attributes, 64);
  EXPECT_EQ(document.nameBytes, 1024U);
  EXPECT_EQ(document.elements, 4'000'000U);
  EXPECT_EQ(orbseq::LatticeLimits::kItemsInSequence, 32);
  EXPECT_EQ(orbseq::LatticeLimits::kLevels, 64);
  EXPECT_EQ(orbseq::LatticeLimits::kBuckets, 4'194'304);
  EXPECT_EQ(orbseq::kMostInChain, 1000);
  const orbseq::CsvLimits csv;
  EXPECT_EQ(csv.fieldBytes, 1'048'576U);
  EXPECT_EQ(csv.fields, 1024U);
  EXPECT_EQ(csv.rowBytes, 16'777'216U);
  const orbseq::CaseLimits usual, strangers = orbseq::CaseLimits::strangers();
  EXPECT_EQ(usual.textBytes, orbseq::CaseLimits::kNone);
  EXPECT_EQ(usual.sets, orbseq::CaseLimits::kNone);
  EXPECT_EQ(usual.items, orbseq::CaseLimits::kNone);
  EXPECT_EQ(strangers.textBytes, 65'536U);
  EXPECT_EQ(strangers.sets, 1000U);
  EXPECT_EQ(strangers.items, 10'000U);
  EXPECT_EQ(strangers.steps, 10'000'000U);
}

// The document's table is what the program prints.
TEST(Limits, ArePrintedAndDocumented) {
  const Outcome outcome = run({"--limits"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.error, "");
  EXPECT_THAT(outcome.output, HasSubstr("--limits strangers"));
  EXPECT_THAT(contentOf(ORBSEQ_SOURCE_DIR "/docs/limits.md"), HasSubstr(outcome.output));
}

TEST(Limits, TheChainOfABucketIsSet) {
  const TempFolder folder;
  const std::string model = folder.path("m.bin");
  ASSERT_EQ(run({"convert", "--model", kModel, "--output", model, "--quiet"}).status, 0);

  EXPECT_EQ(run({"inspect", "--model", model, "--max-chain", "1000"}).status, 0);
  const Outcome outcome = run({"inspect", "--model", model, "--max-chain", "1"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, HasSubstr("more than 1 sequences of the level share a bucket"));
  const Outcome document = run({"inspect", "--model", kModel, "--max-chain", "1"});
  EXPECT_EQ(document.status, 2);
  EXPECT_THAT(document.error, HasSubstr("more than 1 sequences of the level share a bucket"));
}

}  // namespace

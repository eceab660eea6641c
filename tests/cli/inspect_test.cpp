// `orbseq inspect` from its arguments to what it tells.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";

const char* const kSequences =
    "7 -1 #SUP: 8\n"
    "9 -1 #SUP: 5\n"
    "11 -1 #SUP: 4\n"
    "7 -1 9 -1 #SUP: 2\n"
    "7 9 -1 #SUP: 4\n"
    "9 -1 11 -1 #SUP: 3\n"
    "7 9 -1 11 -1 #SUP: 2\n";

Outcome inspect(std::vector<std::string> options = {}, std::string input = kSmallModel) {
  options.insert(options.begin(), {"inspect", "--model", "-"});
  return run(options, {.input = std::move(input)});
}

TEST(Inspect, AnOverviewTellsFactsLevelsAndItems) {
  const Outcome outcome = inspect();

  EXPECT_EQ(outcome.output,
            "customers             10\n"
            "sequences             7\n"
            "items                 3 (2 with labels)\n"
            "links                 11\n"
            "reduction threshold   0.2\n"
            "sliding window        0\n"
            "minimum gap           0\n"
            "maximum gap           0\n"
            "memory                about 0.0 MiB\n"
            "\n"
            "level   sequences     buckets\n"
            "    0           1           2\n"
            "    1           3           4\n"
            "    2           3           4\n"
            "    3           1           1\n"
            "\n"
            "      item   customers   support  label\n"
            "         7           8    0.8000  tea, green\n"
            "         9           5    0.5000  teapot\n"
            "        11           4    0.4000  \n");
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.status, 0);
}

TEST(Inspect, ItemsAreAsManyAsAskedFor) {
  EXPECT_THAT(inspect({"--items", "1"}).output,
              EndsWith("tea, green\n... and 2 more (--items N shows more)\n"));
  EXPECT_THAT(inspect({"--items", "0"}).output, EndsWith("    3           1           1\n"));
  EXPECT_EQ(inspect({"--items", "3"}).output, inspect().output);
}

TEST(Inspect, JsonTellsTheSameNumbers) {
  const Outcome outcome = inspect({"--json"});
  ASSERT_EQ(outcome.status, 0);
  EXPECT_EQ(linesIn(outcome.output), 1);

  const json root = json::parse(outcome.output);

  EXPECT_EQ(root["customers"], 10);
  EXPECT_EQ(root["sequences"], 7);
  EXPECT_EQ(root["links"], 11);
  EXPECT_EQ(root["lattice_built"], true);
  EXPECT_EQ(root["reduction_threshold"], 0.2);
  for (const char* name : {"sliding_window", "min_gap", "max_gap"}) EXPECT_EQ(root[name], 0.0);
  EXPECT_GT(root["memory_bytes"], 500);
  EXPECT_EQ(root["settings"]["levels"], 4);
  EXPECT_EQ(root["levels"], json({1, 3, 3, 1}));
  EXPECT_EQ(root["items"], json::parse(R"([{"item":7,"label":"tea, green","count":8,"support":0.8},
                            {"item":9,"label":"teapot","count":5,"support":0.5},
                            {"item":11,"label":"","count":4,"support":0.4}])"));
}

TEST(Inspect, JsonOfTheExampleAddsUp) {
  const json root = json::parse(run({"inspect", "--model", kShop, "--json"}).output);

  int sequences = 0;
  for (const int count : root["levels"]) sequences += count;
  EXPECT_EQ(root["customers"], 400);
  EXPECT_EQ(root["sequences"], sequences - 1);
  EXPECT_EQ(root["items"].size(), 15U);
}

TEST(Inspect, SequencesComeBySizeAndThenInOrder) {
  const Outcome outcome = inspect({"--sequences"});

  EXPECT_EQ(outcome.output, kSequences);
  EXPECT_EQ(outcome.error, "");
}

TEST(Inspect, LabelsStandInQuotesWhereTheyHoldABlank) {
  EXPECT_EQ(inspect({"--sequences", "--labels"}).output,
            "\"tea, green\" -1 #SUP: 8\n"
            "teapot -1 #SUP: 5\n"
            "11 -1 #SUP: 4\n"
            "\"tea, green\" -1 teapot -1 #SUP: 2\n"
            "\"tea, green\" teapot -1 #SUP: 4\n"
            "teapot -1 11 -1 #SUP: 3\n"
            "\"tea, green\" teapot -1 11 -1 #SUP: 2\n");
}

TEST(Inspect, QuotesAndLineEndsOfALabelStayOnItsLine) {
  const TempFolder folder;
  const std::string model = folder.file("m.xml", kSmallModel);
  folder.file("m.xml.labels.csv", "item,label\n11,\"a \"\"b\"\"\nc\"\n");

  EXPECT_THAT(run({"inspect", "--model", model, "--sequences", "--labels"}).output,
              HasSubstr("\n\"a \"\"b\"\"\\x0Ac\" -1 #SUP: 4\n"));
}

TEST(Inspect, EveryFormTellsTheSame) {
  const SmallModels models;
  const json wanted = json::parse(inspect({"--json"}).output);
  for (const std::string& path : models.paths()) {
    EXPECT_EQ(run({"inspect", "-m", path, "--sequences"}).output, kSequences) << path;
    EXPECT_EQ(run({"inspect", "-m", path, "--sequences", "--labels"}).output,
              inspect({"--sequences", "--labels"}).output)
        << path;
    const json root = json::parse(run({"inspect", "-m", path, "--json"}).output);
    for (const char* name : {"customers", "sequences", "links", "items", "reduction_threshold"})
      EXPECT_EQ(root[name], wanted[name]) << path << name;
  }
}

TEST(Inspect, AnOutputFileIsReplacedAsAWhole) {
  const TempFolder folder;
  const std::string path = folder.file("out", "old");

  EXPECT_EQ(inspect({"--sequences", "--output", path}).output, "");

  EXPECT_EQ(contentOf(path), kSequences);
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Inspect, HelpTellsOptionsAndExamples) {
  const Outcome outcome = run({"inspect", "--help"});

  EXPECT_EQ(outcome.status, 0);
  for (const char* option : {"--model", "--json", "--sequences", "--labels", "--items", "--output",
                             "--max-document-bytes", "--max-elements", "Examples:"})
    EXPECT_THAT(outcome.output, HasSubstr(option));
}

TEST(Inspect, WrongUsageIsToldInOneLine) {
  const std::vector<std::vector<std::string>> cases{
      {"inspect"},
      {"inspect", "--model"},
      {"inspect", "--model", kShop, "more"},
      {"inspect", "--model", kShop, "--json", "--sequences"},
      {"inspect", "--model", kShop, "--labels"},
      {"inspect", "--model", kShop, "--items", "-1"},
      {"inspect", "--model", kShop, "--items", "many"},
      {"inspect", "--model", kShop, "--max-elements", "0"},
  };
  for (const auto& arguments : cases) {
    const Outcome outcome = run(arguments);
    const std::string text = testing::PrintToString(arguments);
    EXPECT_EQ(outcome.status, 1) << text;
    EXPECT_EQ(outcome.output, "") << text;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: ")) << text;
    EXPECT_EQ(linesIn(outcome.error), 1) << text << outcome.error;
  }
}

TEST(Inspect, TheLimitsOfDocumentsAreTheCallers) {
  EXPECT_EQ(inspect({"--max-document-bytes", "100"}).status, 2);
  EXPECT_EQ(inspect({"--max-elements", "5"}).status, 2);
  EXPECT_EQ(inspect({"--max-elements", "500"}).status, 0);
}

}  // namespace

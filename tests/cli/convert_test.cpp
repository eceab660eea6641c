// `orbseq convert` from its arguments to its files, and what the other commands make of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";

Outcome convert(const std::string& from, const std::string& to,
                std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"convert", "--model", from, "--output", to});
  return run(options);
}

TEST(Convert, TheNameOfTheOutputTellsTheForm) {
  const SmallModels models;
  EXPECT_THAT(contentOf(models.folder.path("small.bin")), StartsWith("SD1DS"));
  EXPECT_THAT(contentOf(models.folder.path("small.pmml")), HasSubstr("<!DOCTYPE PMML "));
  EXPECT_THAT(contentOf(models.folder.path("small.objxml")), HasSubstr("<!DOCTYPE OrbXMLRoot "));
  const std::string path = models.folder.path("again.xml");

  const Outcome outcome = convert(models.folder.path("small.bin"), path);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.error, "orbseq: 7 sequences, 2 labels written as document\n");
  EXPECT_THAT(contentOf(path), HasSubstr("<!DOCTYPE SequentialAssociationLattice "));
}

TEST(Convert, ToTellsTheFormWhateverTheName) {
  const TempFolder folder;
  const std::vector<std::pair<std::string, std::string>> forms{
      {"document", "<!DOCTYPE SequentialAssociationLattice "},
      {"pmml", "<!DOCTYPE PMML "},
      {"binary", "SD1DS"},
      {"objxml", "<!DOCTYPE OrbXMLRoot "}};
  for (const auto& [form, text] : forms) {
    const Outcome outcome = convert(kShop, folder.path("m.bin"), {"--to", form});
    EXPECT_EQ(outcome.error, "orbseq: 237 sequences, 15 labels written as " + form + "\n");
    EXPECT_THAT(contentOf(folder.path("m.bin")), HasSubstr(text));
  }
}

TEST(Convert, StandardOutputTakesEveryForm) {
  const SmallModels models;
  const std::vector<std::pair<std::string, std::string>> forms{
      {"pmml", "small.pmml"}, {"binary", "small.bin"}, {"objxml", "small.objxml"}};
  for (const auto& [form, name] : forms) {
    const Outcome outcome =
        convert(models.folder.path("small.xml"), "-", {"--to", form, "--quiet"});
    EXPECT_EQ(outcome.error, "");
    EXPECT_TRUE(outcome.output == contentOf(models.folder.path(name))) << form;
  }
}

TEST(Convert, AFormThatNothingTellsIsWrongUsage) {
  EXPECT_EQ(convert(kShop, "model").error,
            "orbseq: --output: the name model does not tell the form; give --to document, pmml, "
            "binary or objxml\n");
  EXPECT_EQ(convert(kShop, "-").status, 1);
}

TEST(Convert, ADocumentIsClosedAndCarriesLabels) {
  const SmallModels models;
  const std::string text =
      convert(models.folder.path("small.bin"), "-", {"--to", "document"}).output;

  EXPECT_THAT(text, HasSubstr("maxSequenceSize=\"4\""));
  EXPECT_THAT(text, HasSubstr("<LatticeLevel level=\"4\" numberOfSequences=\"0\""));
  EXPECT_THAT(text, HasSubstr("mappedValue=\"tea, green\""));
}

TEST(Convert, AnOpenDocumentHasNeitherAClosingLevelNorLabels) {
  const SmallModels models;
  const Outcome outcome = convert(models.folder.path("small.bin"), models.folder.path("open.xml"),
                                  {"--to", "document", "--open"});
  const std::string text = contentOf(models.folder.path("open.xml"));

  EXPECT_EQ(outcome.error,
            "orbseq: 7 sequences, 0 labels written as document\norbseq: 2 labels left out\n");
  EXPECT_THAT(text, HasSubstr("maxSequenceSize=\"3\""));
  EXPECT_THAT(text, Not(HasSubstr("level=\"4\"")));
  EXPECT_THAT(text, Not(HasSubstr("mappedValue")));
  EXPECT_EQ(run({"inspect", "-m", models.folder.path("open.xml"), "--sequences"}).output,
            run({"inspect", "-m", models.folder.path("small.xml"), "--sequences"}).output);
}

TEST(Convert, LabelsGoBesideAndGoWhenThereAreNone) {
  const SmallModels models;
  const std::string labels = models.folder.path("small.bin.labels.csv");
  EXPECT_EQ(contentOf(labels), "item,label\n7,\"tea, green\"\n9,teapot\n");

  convert(models.folder.path("small.bin"), models.folder.path("bare.xml"), {"--open"});
  convert(models.folder.path("bare.xml"), models.folder.path("small.bin"));

  EXPECT_FALSE(std::filesystem::exists(labels));
}

TEST(Convert, AModelMayReplaceItself) {
  const SmallModels models;
  const std::string path = models.folder.path("small.bin");
  const std::string wanted = run({"inspect", "-m", path, "--sequences", "--labels"}).output;
  for (const char* form : {"objxml", "pmml", "document", "binary"}) {
    EXPECT_EQ(convert(path, path, {"--to", form}).status, 0) << form;
    EXPECT_EQ(run({"inspect", "-m", path, "--sequences", "--labels"}).output, wanted) << form;
  }
}

TEST(Convert, EveryFormIsScoredWithTheSameBytes) {
  const TempFolder folder;
  const std::string closed = folder.path("shop.xml");
  ASSERT_EQ(convert(kShop, closed).status, 0);
  for (const std::vector<std::string>& options :
       std::vector<std::vector<std::string>>{{},
                                             {"--return", "future"},
                                             {"--return", "future", "--all-prefixes"},
                                             {"--format", "jsonl"},
                                             {"--format", "table"}}) {
    const auto score = [&options](const std::string& model) {
      std::vector<std::string> arguments{"score", "--model", model, "--input", kCustomers};
      arguments.insert(arguments.end(), options.begin(), options.end());
      return run(arguments).output;
    };
    const std::string wanted = score(closed);
    EXPECT_THAT(wanted, HasSubstr("Cinnamon roll"));
    EXPECT_EQ(score(kShop), wanted);
    for (const char* name : {"shop.bin", "shop.objxml", "shop.pmml"}) {
      ASSERT_EQ(convert(closed, folder.path(name)).status, 0);
      EXPECT_EQ(score(folder.path(name)), wanted) << name;
    }
  }
}

TEST(Convert, AFifoIsScoredInEveryForm) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  for (const char* form : {"document", "pmml", "binary", "objxml"}) {
    const std::string bytes = convert(kShop, "-", {"--to", form}).output;
    auto writer = std::async(std::launch::async, [&] { std::ofstream(path) << bytes; });
    const Outcome outcome = run({"score", "--model", path, "--input", kCustomers});
    EXPECT_EQ(outcome.status, 0) << form;
    EXPECT_EQ(outcome.error, "orbseq: 8 customers, 31 answers\n") << form;
    if (outcome.status != 0) std::ifstream(path).get();  // lets the writer go
  }
}

TEST(Convert, StandardInputIsScoredInEveryFormAndIsNotTheHistoriesToo) {
  for (const char* form : {"document", "pmml", "binary", "objxml"}) {
    const std::string bytes = convert(kShop, "-", {"--to", form}).output;
    EXPECT_EQ(run({"score", "--model", "-", "--input", kCustomers}, {.input = bytes}).error,
              "orbseq: 8 customers, 31 answers\n");
  }
  const Outcome outcome = run({"score", "--model", "-", "--input", "-"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "orbseq: --model and --input cannot both be standard input\n");
}

TEST(Convert, LabelsBesideAModelAreUsedByEveryCommand) {
  const TempFolder folder;
  const std::string path = folder.path("shop.bin");
  convert(kShop, path);
  folder.file("shop.bin.labels.csv", "item,label\n302,Zimtschnecke\n");

  EXPECT_THAT(run({"score", "-m", path, "-i", kCustomers}).output, HasSubstr(",Zimtschnecke,"));
  EXPECT_THAT(run({"rules", "-m", path, "--with", "Zimt", "--format", "table"}).output,
              HasSubstr("Zimtschnecke"));
  EXPECT_THAT(run({"inspect", "-m", path}).output, HasSubstr("Zimtschnecke"));
}

TEST(Convert, ABadModelIsToldByEveryCommandInOneLineWithItsPlace) {
  const TempFolder folder;
  const SmallModels models;
  const auto cut = [&](const std::string& name, std::size_t size) {
    return folder.file(name, contentOf(models.folder.path("small." + name)).substr(0, size));
  };
  const std::vector<std::pair<std::string, std::string>> cases{
      {cut("bin", 200), ": offset 0x[0-9A-F]+, level [0-9]+, entry [0-9]+, .*"},
      {cut("objxml", 3000),
       ":[0-9]+: \".*\" is not what should stand here, or goes beyond a limit"},
      {cut("xml", 1000), ":[0-9]+:[0-9]+: .*"},
      {cut("pmml", 3000), ":[0-9]+:[0-9]+: .*"},
      {folder.file("empty", ""), ":1:1: the document is empty"}};
  for (const auto& [path, place] : cases)
    for (std::vector<std::string> arguments :
         std::vector<std::vector<std::string>>{{"convert", "--output", folder.path("out.bin")},
                                               {"inspect"},
                                               {"rules"},
                                               {"score", "--input", kCustomers}}) {
      arguments.insert(arguments.end(), {"--model", path});
      const Outcome outcome = run(arguments);
      EXPECT_EQ(outcome.status, 2) << path << arguments[0];
      EXPECT_EQ(outcome.output, "");
      EXPECT_THAT(outcome.error, MatchesRegex("orbseq: " + path + place + "\n"));
      EXPECT_EQ(linesIn(outcome.error), 1) << outcome.error;
    }
  EXPECT_FALSE(std::filesystem::exists(folder.path("out.bin")));
}

TEST(Convert, ABadModelLeavesTheOldOutputAndItsLabels) {
  const TempFolder folder;
  const SmallModels models;
  std::string twice = kSmallModel;
  twice.replace(twice.find("<Item id=\"2\""), 12, "<Item id=\"1\" ");
  const std::string binary = contentOf(models.folder.path("small.bin"));
  const std::string output = folder.file("output", "old");
  const std::string labels = folder.file("output.labels.csv", "old labels");
  for (const std::string& bad : {twice, binary.substr(0, 200)}) {
    const std::string path = folder.file("bad", bad);
    for (const char* form : {"document", "pmml", "binary", "objxml", "compiled"}) {
      EXPECT_EQ(convert(path, output, {"--to", form}).status, 2) << form;
      EXPECT_EQ(contentOf(output), "old") << form;
      EXPECT_EQ(contentOf(labels), "old labels") << form;
      EXPECT_EQ(convert(path, path, {"--to", form}).status, 2) << form;
      EXPECT_TRUE(contentOf(path) == bad) << form;
      EXPECT_EQ(folder.entries(), 3U) << form;
    }
  }
}

TEST(Convert, BadLabelsAndMissingFilesAreToldByEveryCommand) {
  const TempFolder folder;
  const std::string path = folder.file("m.xml", kSmallModel);
  folder.file("m.xml.labels.csv", "item,label\nseven,x\n");
  for (std::vector<std::string> arguments :
       std::vector<std::vector<std::string>>{{"convert", "--output", folder.path("out.bin")},
                                             {"inspect"},
                                             {"rules"},
                                             {"score", "--input", kCustomers}}) {
    arguments.insert(arguments.end(), {"--model", path});
    Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "orbseq: " + path +
                                 ".labels.csv:2:1: \"seven\" is no item number in "
                                 "-2147483648..2147483647\n");
    arguments.back() = folder.path("none");
    outcome = run(arguments);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.error,
              "orbseq: " + folder.path("none") + ": cannot open: No such file or directory\n");
  }
}

TEST(Convert, AFolderOrAFullDeviceAsOutputIsAnErrorOfFiles) {
  const TempFolder folder;
  EXPECT_EQ(convert(kShop, folder.path().string(), {"--to", "binary"}).status, 3);
  EXPECT_EQ(convert(kShop, folder.path("none/m.bin")).status, 3);
  EXPECT_EQ(convert(kShop, "/dev/full", {"--to", "binary"}).error,
            "orbseq: /dev/full: cannot write: No space left on device\n");
  EXPECT_EQ(run({"convert", "--model", kShop, "--output", "-", "--to", "pmml"},
                {.outputPath = "/dev/full"})
                .status,
            3);
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(Convert, HelpTellsOptionsFormsAndExamples) {
  const Outcome outcome = run({"convert", "--help"});

  EXPECT_EQ(outcome.status, 0);
  for (const char* text : {"--model", "--output", "--to", "--open", "--quiet", "--max-elements",
                           "document", "pmml", "binary", "objxml", "Examples:"})
    EXPECT_THAT(outcome.output, HasSubstr(text));
}

TEST(Convert, WrongUsageIsToldInOneLine) {
  const std::vector<std::vector<std::string>> cases{
      {"convert"},
      {"convert", "--model", kShop},
      {"convert", "--output", "a.bin"},
      {"convert", "--model", kShop, "--output", "a.bin", "--to", "xml"},
      {"convert", "--model", kShop, "--output", "a.bin", "--open"},
      {"convert", "--model", kShop, "--output", "a.xml", "--to", "pmml", "--open"},
      {"convert", "--model", kShop, "--output", "a.txt"},
      {"convert", "--model", kShop, "--output", "a.bin", "more"},
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

TEST(Convert, ARequestToStopEndsEveryCommandAndLeavesTheOldFile) {
  const SmallModels models;
  const std::string model = contentOf(models.folder.path("small.bin"));
  const std::string fifo = models.folder.path("fifo");
  const std::string output = models.folder.file("output", "old");
  ::signal(SIGPIPE, SIG_IGN);  // the program may be gone before it is fed
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"convert", "--to", "document"}, {"inspect"}, {"rules"}}) {
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), {"--model", fifo, "--output", output});
    Program program(arguments);
    std::ofstream feed(fifo, std::ios::binary);  // waits until the program reads
    feed << model.substr(0, model.size() / 2) << std::flush;
    program.signal(SIGTERM);
    feed << model.substr(model.size() / 2);
    feed.close();
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.status, 130) << command.front();
    EXPECT_EQ(outcome.error, "orbseq: interrupted\n") << command.front();
    EXPECT_EQ(contentOf(output), "old") << command.front();
    std::filesystem::remove(fifo);
  }
  ::signal(SIGPIPE, SIG_DFL);
}

}  // namespace

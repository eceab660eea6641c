// What the machine does to `orbseq score`: files, plug-ins, full disks, signals, locales.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/Program.h"

namespace {

namespace fs = std::filesystem;

using orbseq::test::contentOf;
using orbseq::test::Outcome;
using orbseq::test::Program;
using orbseq::test::run;
using orbseq::test::Surroundings;
using orbseq::test::TempFolder;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";

Outcome score(std::vector<std::string> options = {}, const Surroundings& surroundings = {}) {
  options.insert(options.begin(), {"score", "--model", kModel, "--input", kCustomers});
  return run(options, surroundings);
}

// Scores one history, which is the name of a failure, with the plug-in that fails so.
Outcome scoreFaulty(const std::string& failure) {
  return run({"score", "--model", kModel, "--input", "-", "--module", FAULTY_PLUGIN},
             {.input = "customer,history\n17," + failure + "\n"});
}

auto lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST(Surroundings, AFullDeviceAsStandardOutputIsAnError) {
  const Outcome outcome = score({}, {.outputPath = "/dev/full"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: standard output: cannot write: No space left on device\n");
}

TEST(Surroundings, AClosedStandardOutputIsAnError) {
  const Outcome outcome = score({}, {.closeOutput = true});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: standard output: cannot write: Bad file descriptor\n");
}

TEST(Surroundings, HelpOnAFullDeviceIsAnError) {
  EXPECT_EQ(run({"--help"}, {.outputPath = "/dev/full"}).status, 3);
  EXPECT_EQ(run({"--version"}, {.closeOutput = true}).status, 3);
}

TEST(Surroundings, AClosedStandardErrorDoesNotReachTheOutputFile) {
  const TempFolder folder;
  const Outcome open = score();

  const Outcome outcome =
      score({"--output", folder.path("out")}, {.closeOutput = true, .closeError = true});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(contentOf(folder.path("out")), open.output);
}

TEST(Surroundings, AFullDeviceAsOutputFileIsAnErrorAndStays) {
  const Outcome outcome = score({"--output", "/dev/full"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: /dev/full: cannot write: No space left on device\n");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(Surroundings, AnOutputFolderThatIsNoneIsAnError) {
  const TempFolder folder;
  const std::string file = folder.file("file", "old");

  const Outcome below = score({"--output", file + "/out"});
  const Outcome missing = score({"--output", folder.path("none/out")});

  EXPECT_EQ(below.status, 3);
  EXPECT_THAT(below.error, EndsWith("cannot make a file in the folder of it: Not a directory\n"));
  EXPECT_EQ(missing.status, 3);
  EXPECT_EQ(contentOf(file), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(Surroundings, ASymbolicLinkAsOutputStays) {
  const TempFolder folder;
  const std::string target = folder.file("target", "old");
  fs::create_symlink("target", folder.path("link"));

  EXPECT_EQ(score({"--output", folder.path("link")}).status, 0);

  EXPECT_TRUE(fs::is_symlink(folder.path("link")));
  EXPECT_THAT(contentOf(target), StartsWith("customer,rank"));
}

TEST(Surroundings, AFifoAsOutputIsWrittenInPlace) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  auto reader = std::async(std::launch::async, [&] { return contentOf(path); });

  EXPECT_EQ(score({"--output", path}).status, 0);

  EXPECT_THAT(reader.get(), StartsWith("customer,rank"));
  EXPECT_TRUE(fs::is_fifo(path));
}

TEST(Surroundings, AMissingModelIsAnErrorOfTheEnvironment) {
  const Outcome outcome = run({"score", "--model", "/nowhere/m.xml", "--input", kCustomers});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, StartsWith("orbseq: /nowhere/m.xml: "));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Surroundings, AMissingInputIsAnErrorOfTheEnvironment) {
  const Outcome outcome = run({"score", "--model", kModel, "--input", "/nowhere/h.csv"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: /nowhere/h.csv: cannot open: No such file or directory\n");
}

TEST(Surroundings, AFolderAsInputIsAnErrorOfTheEnvironment) {
  const TempFolder folder;
  const std::string path = folder.path("h.csv");
  fs::create_directory(path);

  const Outcome outcome = run({"score", "--model", kModel, "--input", path});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: " + path + ": cannot read: Is a directory\n");
}

TEST(Surroundings, AFileNameIsToldOnOneLine) {
  const Outcome outcome = run({"score", "--model", kModel, "--input", "/nowhere/a\nb.csv"});

  EXPECT_EQ(outcome.error,
            "orbseq: /nowhere/a\\x0Ab.csv: cannot open: No such file or directory\n");
}

TEST(Surroundings, ABrokenModelIsBadInput) {
  const TempFolder folder;
  const std::string model = folder.file("m.xml", "<SequentialAssociationLattice>\n<Item>");

  const Outcome outcome = run({"score", "--model", model, "--input", kCustomers});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("orbseq: " + model + ":2:"));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Surroundings, AModelBeyondALimitNamesTheOption) {
  const Outcome bytes = score({"--max-document-bytes", "100"});
  const Outcome elements = score({"--max-elements", "10"});

  EXPECT_EQ(bytes.status, 2);
  EXPECT_THAT(bytes.error, HasSubstr("--max-document-bytes"));
  EXPECT_EQ(elements.status, 2);
  EXPECT_THAT(elements.error, HasSubstr("--max-elements"));
}

TEST(Surroundings, AMissingPluginIsAnErrorOfTheEnvironment) {
  const Outcome outcome = score({"--module", "/nowhere/plugin.so"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("/nowhere/plugin.so"));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Surroundings, APluginThatIsNoLibraryIsAnErrorOfTheEnvironment) {
  const TempFolder folder;
  const std::string plugin = folder.file("plugin.so", "no library");

  const Outcome outcome = score({"--module", plugin});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr(plugin));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Surroundings, APluginWithoutEntryIsAnErrorOfTheEnvironment) {
  const Outcome outcome = score({"--module", HOST_LIBRARY});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("GiveMyTranslator"));
  EXPECT_EQ(lines(outcome.error), 1);
}

TEST(Surroundings, AnotherPluginCanBeGiven) {
  const Outcome outcome = scoreFaulty("fine");

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output,
            "customer,rank,item,label,confidence,support,cause\n17,1,7,,0.5,0.25,0.125\n");
}

TEST(Surroundings, ACaseThatThePluginRefusesIsBadInputWithItsPlace) {
  const Outcome outcome = scoreFaulty("QuException");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "orbseq: standard input:2: case refused: sequence: too long\n");
}

TEST(Surroundings, LackOfMemoryInThePluginIsAnErrorOfTheEnvironment) {
  for (const char* failure : {"bad_alloc", "DictionaryFailure"}) {
    const Outcome outcome = scoreFaulty(failure);

    EXPECT_EQ(outcome.status, 3) << failure;
    EXPECT_EQ(outcome.error, "orbseq: out of memory\n") << failure;
  }
}

TEST(Surroundings, WhateverElseThePluginThrowsIsABugToldInOneLine) {
  for (const char* failure : {"runtime_error", "own", "OrbStatus", "int", "error status"}) {
    const Outcome outcome = scoreFaulty(failure);

    EXPECT_EQ(outcome.status, 4) << failure;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: internal error: scoring standard input:2: "))
        << failure;
    EXPECT_EQ(lines(outcome.error), 1) << failure;
  }
  EXPECT_THAT(scoreFaulty("own").error, EndsWith(": an exception of the plug-in\n"));
}

TEST(Surroundings, AStoredLatticeThatThePluginCannotReadIsBadInput) {
  const Outcome outcome = scoreFaulty("IOException");

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, "orbseq: standard input:2: a stored lattice is broken\n");
}

TEST(Surroundings, APluginWhoseAnswerIsNoListIsAnErrorOfTheEnvironment) {
  for (const char* failure : {"no result", "no prediction", "text"}) {
    const Outcome outcome = scoreFaulty(failure);

    EXPECT_EQ(outcome.status, 3) << failure;
    EXPECT_EQ(outcome.error, "orbseq: the plug-in's answer is no list of items\n") << failure;
  }
}

TEST(Surroundings, TheLocaleChangesNoByte) {
  const std::vector<std::string> options{"--format", "table"};
  const Surroundings german{.environment = {"LC_ALL=de_DE.UTF-8", "LANG=de_DE.UTF-8"}};
  const Surroundings numeric{.environment = {"LC_NUMERIC=de_DE.UTF-8"}};

  EXPECT_EQ(score().output, score({}, german).output);
  EXPECT_EQ(score(options).output, score(options, german).output);
  EXPECT_EQ(score(options).output, score(options, numeric).output);
}

// Histories come through a FIFO, so that the program waits for more when the signal arrives.
class Interrupt : public testing::Test {
 protected:
  Interrupt() : input_(folder_.path("in.csv")), output_(folder_.file("out.csv", "old")) {
    ::mkfifo(input_.c_str(), 0600);
  }

  std::vector<std::string> arguments() const {
    return {"score", "--model", kModel, "--input", input_, "--output", output_};
  }

  // More than one block, so that scoring begins.
  static std::string manyRows() {
    std::string rows = "customer,history\n";
    for (int i = 0; i < 20'000; ++i) rows += "17,(102)(301)\n";
    return rows;
  }

  // Waits until the program has made its temporary file beside the output.
  void waitForTemporary() const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (folder_.entries() < 3 && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }

  const TempFolder folder_;
  const std::string input_;
  const std::string output_;
};

TEST_F(Interrupt, LeavesTheOldFileAndNothingElse) {
  for (const int signal : {SIGINT, SIGTERM}) {
    Program program(arguments());
    std::ofstream feed(input_, std::ios::binary);
    feed << manyRows() << std::flush;
    waitForTemporary();

    program.signal(signal);
    feed.close();
    const Outcome outcome = program.wait();

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
    EXPECT_EQ(contentOf(output_), "old");
    EXPECT_EQ(folder_.entries(), 2U);
  }
}

TEST_F(Interrupt, BeforeTheFirstRowLeavesTheOldFileAndNothingElse) {
  Program program(arguments());
  std::ofstream feed(input_, std::ios::binary);
  feed << "customer,history\n17,(102)\n" << std::flush;

  program.signal(SIGINT);
  feed.close();
  const Outcome outcome = program.wait();

  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(contentOf(output_), "old");
  EXPECT_EQ(folder_.entries(), 2U);
}

TEST_F(Interrupt, WithoutItTheSameInputIsScored) {
  Program program(arguments());
  std::ofstream feed(input_, std::ios::binary);
  feed << "customer,history\n17,(102)\n";
  feed.close();

  EXPECT_EQ(program.wait().status, 0);
  EXPECT_THAT(contentOf(output_), StartsWith("customer,rank"));
  EXPECT_EQ(folder_.entries(), 2U);
}

}  // namespace

// What the machine does to the program: plug-ins that are none, disks that are full, files that may
// not be written, writers that meet. The old file stands or the new one, and nothing else.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/Program.h"

namespace {

namespace fs = std::filesystem;
using orbseq::test::canRunAs;
using orbseq::test::contentOf;
using orbseq::test::kNobody;
using orbseq::test::Outcome;
using orbseq::test::Program;
using orbseq::test::run;
using orbseq::test::Surroundings;
using orbseq::test::TempFolder;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

const char* const kModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
const char* const kLog = "customer,time,item\na,1,5\na,2,6\nb,1,5\nb,2,6\nc,3,7\n";

auto lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

// A command that writes a file, which comes last among its arguments.
struct Writer {
  const char* name;
  Arguments arguments;
};
void PrintTo(const Writer& writer, std::ostream* os) { *os << writer.name; }

class Writers : public testing::TestWithParam<Writer> {
 protected:
  Writers() : log_(data_.file("log.csv", kLog)) { fs::permissions(data_.path(), fs::perms::all); }

  Arguments to(const std::string& output) const {
    Arguments arguments = GetParam().arguments;
    std::replace(arguments.begin(), arguments.end(), std::string("LOG"), log_);
    arguments.push_back(output);
    return arguments;
  }

 private:
  const TempFolder data_;
  const std::string log_;
};

TEST_P(Writers, AFullDeviceIsAnErrorAndStays) {
  const Outcome outcome = run(to("/dev/full"));

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: /dev/full: cannot write: No space left on device\n");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

// A file system in memory that takes one page.
TEST_P(Writers, AFullDiskLeavesTheOldFile) {
  const TempFolder folder;
  if (::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=4k") != 0)
    GTEST_SKIP() << "no file system can be mounted here";
  const std::string old = folder.file("out.xml", "old");

  const Outcome outcome = run(to(old));

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: " + old + ": cannot write: No space left on device\n");
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.entries(), 1U);
  EXPECT_EQ(::umount(folder.path().c_str()), 0);
}

TEST_P(Writers, AReadOnlyFileSystemLeavesTheOldFile) {
  const TempFolder folder;
  if (::mount("tmpfs", folder.path().c_str(), "tmpfs", 0, nullptr) != 0)
    GTEST_SKIP() << "no file system can be mounted here";
  const std::string old = folder.file("out.xml", "old");
  ASSERT_EQ(::mount(nullptr, folder.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);

  const Outcome outcome = run(to(old));

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, EndsWith(": Read-only file system\n"));
  EXPECT_EQ(lines(outcome.error), 1);
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.entries(), 1U);
  EXPECT_EQ(::umount(folder.path().c_str()), 0);
}

TEST_P(Writers, AFolderThatTakesNoFileLeavesTheOldFile) {
  if (!canRunAs(kNobody)) GTEST_SKIP() << "the program cannot be run with another user's rights";
  const TempFolder folder;
  const std::string old = folder.file("out.xml", "old");
  fs::permissions(old, fs::perms::all);
  fs::permissions(folder.path(),
                  fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);

  const Outcome outcome = run(to(old), {.user = kNobody});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error,
            "orbseq: " + old + ": cannot make a file in the folder of it: Permission denied\n");
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST_P(Writers, AnExistingFileIsReplacedAndALinkStays) {
  const TempFolder folder;
  const std::string old = folder.file("out.xml", "old");
  const std::string target = folder.file("target.xml", "old");
  fs::create_symlink("target.xml", folder.path("link.xml"));

  EXPECT_EQ(run(to(old)).status, 0);
  EXPECT_EQ(run(to(folder.path("link.xml"))).status, 0);

  EXPECT_GT(contentOf(old).size(), 100U);
  EXPECT_EQ(contentOf(target), contentOf(old));
  EXPECT_TRUE(fs::is_symlink(folder.path("link.xml")));
  EXPECT_EQ(folder.entries(), 3U);
}

const Writer kWriters[] = {
    {"Train",
     {"train", "--quiet", "--input", "LOG", "--min-support", "1", "--to", "document", "--output"}},
    {"Convert", {"convert", "--quiet", "--model", kModel, "--to", "document", "--output"}},
    {"Score",
     {"score", "--quiet", "--model", kModel, "--input", kCustomers, "--format", "csv", "--output"}},
    {"Rules", {"rules", "--quiet", "--model", kModel, "--output"}},
};
INSTANTIATE_TEST_SUITE_P(Surroundings, Writers, testing::ValuesIn(kWriters),
                         [](const auto& it) { return it.param.name; });

TEST(HostileSurroundings, AClosedStandardOutputIsAnErrorOfEveryCommandThatWritesThere) {
  for (const Arguments& arguments :
       {Arguments{"inspect", "--model", kModel},
        {"rules", "--model", kModel},
        {"score", "--model", kModel, "--input", kCustomers},
        {"convert", "--model", kModel, "--output", "-", "--to", "pmml"}}) {
    const Outcome closed = run(arguments, {.closeOutput = true});
    const Outcome full = run(arguments, {.outputPath = "/dev/full"});
    EXPECT_EQ(closed.status, 3) << arguments[0];
    EXPECT_EQ(closed.error, "orbseq: standard output: cannot write: Bad file descriptor\n");
    EXPECT_EQ(full.status, 3) << arguments[0];
    EXPECT_EQ(full.error, "orbseq: standard output: cannot write: No space left on device\n");
  }
}

Outcome scoreWith(const std::string& plugin, const std::string& failure = "") {
  return run({"score", "--model", kModel, "--input", kCustomers, "--module", plugin},
             {.environment = {"ORBSEQ_TEST_FAILURE=" + failure}});
}

TEST(HostileSurroundings, WhatIsNoPluginIsAnErrorOfTheEnvironment) {
  const TempFolder folder;
  const std::string text = folder.file("plugin.so", "no library");
  const std::string cut = folder.file("cut.so", contentOf(BROKEN_PLUGIN).substr(0, 40));

  for (const std::string& plugin : {std::string("/nowhere/plugin.so"), text, cut,
                                    std::string(HOST_LIBRARY), folder.path().string()}) {
    const Outcome outcome = scoreWith(plugin);
    EXPECT_EQ(outcome.status, 3) << outcome.error;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: " + plugin + ": "));
    EXPECT_EQ(lines(outcome.error), 1) << outcome.error;
  }
}

TEST(HostileSurroundings, APluginThatGivesNoTranslatorIsAnErrorOfTheEnvironment) {
  const Outcome outcome = scoreWith(BROKEN_PLUGIN, "entry null");

  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.error, "orbseq: " BROKEN_PLUGIN
                           ": not a scoring plug-in: GiveMyTranslator returned no translator\n");
}

TEST(HostileSurroundings, APluginThatMakesNoModelRefusesTheDocument) {
  const Outcome outcome = scoreWith(BROKEN_PLUGIN);

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error, std::string("orbseq: ") + kModel + ": the plug-in made no model\n");
}

TEST(HostileSurroundings, WhateverAPluginThrowsIsOneClearError) {
  const struct {
    const char* kind;
    int status;
    const char* text;
  } rows[] = {
      {"runtime_error", 2, "the plug-in failed: a standard exception"},
      {"own", 2, "the plug-in failed: an exception"},
      {"QuException", 2, "lattice refused: on purpose"},
      {"bad_alloc", 3, "out of memory"},
      {"DictionaryFailure", 3, "out of memory"},
      {"IOException", 2, "the plug-in failed: offset 0x0, marker: is not \"SD\""},
      {"OrbStatus", 2, "the plug-in failed: it threw the status 60001"},
      {"int", 2, "the plug-in failed: it threw an exception of an unknown type"},
  };
  for (const auto& row : rows)
    for (const char* place : {"entry ", "parse "}) {
      const Outcome outcome = scoreWith(BROKEN_PLUGIN, std::string(place) + row.kind);
      EXPECT_EQ(outcome.status, row.status) << place << row.kind;
      EXPECT_THAT(outcome.error, StartsWith("orbseq: ")) << place << row.kind;
      EXPECT_THAT(outcome.error, HasSubstr(row.text)) << place << row.kind;
      EXPECT_EQ(lines(outcome.error), 1) << outcome.error;
    }
}

// Two models of many sequences, written over each other again and again.
TEST(HostileSurroundings, OfTwoWritersAtOnceOneCompleteFileStands) {
  constexpr int kRounds = 10;
  const TempFolder folder, logs;
  const std::string output = folder.file("m.xml", "old");
  Arguments commands[2];
  std::string complete[2];
  for (int i = 0; i < 2; ++i) {
    std::string rows = "customer,time,item\n";
    for (int row = 0; row < 12; ++row)
      rows += "a," + std::to_string(row) + "," + std::to_string(100 * i + row) + "\n";
    const std::string log = logs.file(std::to_string(i) + ".csv", rows);
    const std::string alone = logs.path(std::to_string(i) + ".xml");
    commands[i] = {"train", "--quiet", "--input", log, "--min-support", "1", "--output", alone};
    ASSERT_EQ(run(commands[i]).status, 0);
    complete[i] = contentOf(alone);
    commands[i].back() = output;
  }
  ASSERT_NE(complete[0], complete[1]);

  for (int round = 0; round < kRounds; ++round) {
    Program one(commands[round % 2]), two(commands[1 - round % 2]);
    EXPECT_EQ(one.wait().status, 0);
    EXPECT_EQ(two.wait().status, 0);
    EXPECT_THAT(contentOf(output), AnyOf(complete[0], complete[1]));
    EXPECT_EQ(folder.entries(), 1U);
  }
}

}  // namespace

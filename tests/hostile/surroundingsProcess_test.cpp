// What the process itself meets: a request to stop while it mines or saves, another locale, small
// stacks.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <functional>
#include <locale>
#include <string>
#include <thread>
#include <vector>

#include "io/IoError.h"
#include "io/LogReader.h"
#include "io/ModelFile.h"
#include "tests/hostile/Feed.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/ownWork.h"
#include "tests/support/Program.h"
#include "tests/support/locales.h"

namespace {

using orbseq::ModelForm;
using orbseq::test::bitsOf;
using orbseq::test::contentOf;
using orbseq::test::deepJson;
using orbseq::test::errorOf;
using orbseq::test::Feed;
using orbseq::test::kForms;
using orbseq::test::kShopModel;
using orbseq::test::Meter;
using orbseq::test::Outcome;
using orbseq::test::Program;
using orbseq::test::repeated;
using orbseq::test::run;
using orbseq::test::savedAs;
using orbseq::test::ScopedCLocale;
using orbseq::test::scoredHistories;
using orbseq::test::TempFolder;
using orbseq::test::workedOut;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
const std::string kHead = "customer,time,item\n";
const char* const kGerman = "de_DE.UTF-8";

// Two customers who took the same sixty items one after the other: more sequences than anyone can
// mine.
std::string endlessWork() {
  std::string rows;
  for (const char* customer : {"a", "b"})
    for (int i = 0; i < 60; ++i) {
      const std::string number = std::to_string(i);
      (((((rows += customer) += ',') += number) += ',') += number) += '\n';
    }
  return rows;
}

// The bytes in a FIFO, as soon as they are so many; whatever they are after ten seconds or more.
int bytesOnceThereAre(int fifo, int wanted) {
  int bytes = -1;
  for (int i = 0; i < 10'000 && bytes != wanted; ++i) {
    ::ioctl(fifo, FIONREAD, &bytes);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return bytes;
}

TEST(Interruption, WhileMiningLeavesTheOldModel) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const TempFolder folder;
    const std::string old = folder.file("m.xml", "old");
    Feed feed(folder.path("log.csv"), kHead, endlessWork(), 1);
    Program program({"train", "--input", feed.path(), "--min-support", "2", "--threads", "2",
                     "--max-memory", "1000000000", "--output", old});
    feed.fed();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the log is read in less

    program.signal(signal);
    const Outcome outcome = program.wait();

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
    EXPECT_EQ(contentOf(old), "old");
    EXPECT_EQ(folder.entries(), 2U);
  }
}

// The labels of a binary model go beside it. Here that is a FIFO that is never read, so that the
// program waits there, its new model written under another name, until the signal comes.
TEST(Interruption, WhileSavingLeavesTheOldModel) {
  std::string rows = kHead;
  for (int i = 0; i < 40; ++i)
    rows += "a," + std::to_string(i) + ",x" + std::string(10'000, 'y') + std::to_string(i) + "\n";
  const TempFolder folder, logs;
  const std::string log = logs.file("log.csv", rows);
  const std::string old = folder.file("m.bin", "old");
  const std::string labels = folder.path("m.bin.labels.csv");
  ASSERT_EQ(::mkfifo(labels.c_str(), 0600), 0);
  const int fifo = ::open(labels.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int full = ::fcntl(fifo, F_GETPIPE_SZ);
  Program program({"train", "--quiet", "--input", log, "--min-support", "1", "--max-items", "1",
                   "--output", old});
  EXPECT_EQ(bytesOnceThereAre(fifo, full), full);
  EXPECT_EQ(folder.entries(), 3U) << "the new model is not there under another name";

  program.signal(SIGINT);
  const Outcome outcome = program.wait();
  ::close(fifo);

  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.entries(), 2U);
}

// Standard output is a pipe that is open and never read: the program waits in a write until the
// signal comes.
TEST(Interruption, WhileNobodyReadsTheAnswersEndsTheProgram) {
  const TempFolder folder;
  std::string rows = "customer,history\n";
  for (int i = 0; i < 20'000; ++i) rows += std::to_string(i) + ",(101)\n";
  const std::string input = folder.file("histories.csv", rows);
  const std::string output = folder.path("answers");
  ASSERT_EQ(::mkfifo(output.c_str(), 0600), 0);
  const int fifo = ::open(output.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const int full = ::fcntl(fifo, F_GETPIPE_SZ);
  Program program({"score", "--model", kShopModel, "--input", input}, {.outputPath = output});
  EXPECT_EQ(bytesOnceThereAre(fifo, full), full);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // it is in the next write

  program.signal(SIGINT);
  const Outcome outcome = program.wait();
  ::close(fifo);

  EXPECT_EQ(outcome.status, 130);
  EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
}

// The histories come through a pipe that stays open and brings no more. Whichever of the threads
// the signal reaches, the one that waits for the pipe ends.
TEST(Interruption, WhileNoHistoryComesEndsTheProgram) {
  const TempFolder folder;
  const std::string input = folder.path("histories.csv");
  ASSERT_EQ(::mkfifo(input.c_str(), 0600), 0);
  for (int round = 0; round < 8; ++round) {
    const int fifo = ::open(input.c_str(), O_RDWR | O_CLOEXEC);
    const std::string rows = "customer,history\n1,(101)\n";
    ASSERT_EQ(::write(fifo, rows.data(), rows.size()), static_cast<ssize_t>(rows.size()));
    Program program({"score", "--model", kShopModel, "--input", input, "--threads", "4"});
    EXPECT_EQ(bytesOnceThereAre(fifo, 0), 0);

    program.signal(SIGINT);
    const Outcome outcome = program.wait();
    ::close(fifo);

    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.error, "orbseq: interrupted\n");
  }
}

// Every command once, each with what it writes.
struct Commands {
  explicit Commands(const TempFolder& folder) {
    const std::string log = folder.file("log.csv", kHead + "a,1.5,5\na,2.5,6\nb,1.5,5\nc,1,tea\n");
    const auto out = [&](const char* name) {
      outputs.push_back(folder.path(name));
      return outputs.back();
    };
    lists = {
        {"train", "--quiet", "--input", log, "--min-support", "0.3", "--output", out("m.xml")},
        {"convert", "--quiet", "--model", kShopModel, "--output", out("m.bin")},
        {"convert", "--quiet", "--model", kShopModel, "--output", out("m.pmml")},
        {"convert", "--quiet", "--model", kShopModel, "--output", out("m.objxml")},
        {"convert", "--quiet", "--model", folder.path("m.bin"), "--output", out("again.objxml")},
        {"inspect", "--model", kShopModel},
        {"rules", "--model", kShopModel, "--format", "table"},
        {"rules", "--model", kShopModel, "--format", "csv"},
        {"score", "--model", kShopModel, "--input", kCustomers, "--format", "table"},
        {"score", "--model", kShopModel, "--input", kCustomers, "--format", "csv", "--return",
         "future"},
        {"score", "--model", kShopModel, "--input", kCustomers, "--format", "jsonl", "--module",
         ORBSEQ_MODULE},
        {"evaluate", "--help"},
    };
  }

  std::vector<Arguments> lists;
  std::vector<std::string> outputs;
};

// What the commands put out and write, one after the other.
std::string everything(const std::function<Outcome(const Arguments&)>& runner) {
  const TempFolder folder;
  const Commands commands(folder);
  std::string text;
  for (const Arguments& arguments : commands.lists) {
    const Outcome outcome = runner(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments[0] << ": " << outcome.error;
    text += outcome.output;
  }
  for (const std::string& path : commands.outputs) {
    EXPECT_NE(contentOf(path), "") << path;
    text += contentOf(path);
  }
  return text;
}

std::string everythingAsEver() {
  return everything([](const Arguments& arguments) { return run(arguments); });
}

TEST(Locale, OfTheEnvironmentChangesNoByte) {
  if (!ScopedCLocale({kGerman}).isInstalled())
    GTEST_SKIP() << "NOT TESTED: " << kGerman << " is not installed";
  const std::string expected = everythingAsEver();
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"})
    EXPECT_EQ(everything([&](const Arguments& arguments) {
                return run(arguments, {.environment = {std::string(variable) + "=" + kGerman}});
              }),
              expected)
        << variable;
}

TEST(Locale, WhatIsWorkedOutHasFractions) {
  const std::string text = workedOut();

  EXPECT_THAT(text, StartsWith(std::to_string(bitsOf(1.5)) + " "));
  EXPECT_THAT(text, HasSubstr("confidence=\"0.5\""));
  EXPECT_THAT(text, HasSubstr("avgNumberOfItemsPerTransaction=\"1.5\""));
  EXPECT_THAT(text, EndsWith("6:" + std::to_string(bitsOf(0.5)) + " "));
}

// Figures in groups of one, with a comma where the point should stand.
class OtherFigures final : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\1"; }
};

TEST(Locale, OfTheStreamsChangesNoByte) {
  std::vector<std::string> expected;
  for (const ModelForm form : kForms) expected.push_back(savedAs(form));
  expected.push_back(workedOut());

  const std::locale before = std::locale::global(std::locale(std::locale(), new OtherFigures));
  std::vector<std::string> found;
  for (const ModelForm form : kForms) found.push_back(savedAs(form));
  found.push_back(workedOut());
  std::locale::global(before);

  EXPECT_EQ(found, expected);
}

TEST(Locale, OfTheCLibraryChangesNoByte) {
  std::vector<std::string> expected;
  for (const ModelForm form : kForms) expected.push_back(savedAs(form));
  expected.push_back(workedOut());
  const ScopedCLocale german({kGerman});
  if (!german.isInstalled()) GTEST_SKIP() << "NOT TESTED: " << kGerman << " is not installed";
  EXPECT_EQ(std::string(std::localeconv()->decimal_point), ",");

  std::vector<std::string> found;
  for (const ModelForm form : kForms) found.push_back(savedAs(form));
  found.push_back(workedOut());

  EXPECT_EQ(found, expected);
}

// A sanitizer's frames are several times as large.
std::size_t smallStack() { return std::size_t{Meter::slowdown() == 1 ? 256U : 2048U} << 10U; }

TEST(SmallStack, EveryCommandWorksWithinIt) {
  const std::string expected = everythingAsEver();

  EXPECT_EQ(everything([](const Arguments& arguments) {
              return run(arguments, {.stackBytes = smallStack()});
            }),
            expected);
}

// In a thread of such a stack, to its end.
void runWithSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  ASSERT_EQ(::pthread_attr_init(&attributes), 0);
  ASSERT_EQ(::pthread_attr_setstacksize(&attributes, smallStack()), 0);
  pthread_t thread{};
  const auto call = [](void* function) -> void* {
    (*static_cast<const std::function<void()>*>(function))();
    return nullptr;
  };
  auto* const argument = const_cast<std::function<void()>*>(&work);
  ASSERT_EQ(::pthread_create(&thread, &attributes, call, argument), 0);
  ::pthread_join(thread, nullptr);
  ::pthread_attr_destroy(&attributes);
}

TEST(SmallStack, ModelsAreReadAndSavedInAThreadOfIt) {
  std::vector<std::string> expected;
  for (const ModelForm form : kForms) expected.push_back(savedAs(form));
  std::vector<std::string> found;

  runWithSmallStack([&found] {
    for (const ModelForm form : kForms) found.push_back(savedAs(form));
  });

  EXPECT_EQ(found, expected);
}

// The shop's model, with so many elements inside one another in front of it.
std::string deepDocument(int depth) {
  std::string document = contentOf(kShopModel);
  const std::size_t root = document.find("<SequentialAssociationLattice");
  const std::size_t end = root == std::string::npos ? root : document.find('>', root);
  EXPECT_NE(end, std::string::npos);
  return document.insert(end + 1, repeated("<Deep>", depth - 1) + repeated("</Deep>", depth - 1));
}

TEST(SmallStack, TheDeepestDocumentIsReadInAThreadOfIt) {
  const TempFolder folder;
  const std::string deepest = folder.file("deepest.xml", deepDocument(64));
  const std::string deeper = folder.file("deeper.xml", deepDocument(65));
  const std::string farDeeper = folder.file("far.xml", deepDocument(100'000));
  std::int32_t sequences = 0;
  std::vector<std::string> refusals;

  runWithSmallStack([&] {
    sequences = orbseq::readModel(deepest).lattice->NumberOfSequences();
    for (const std::string& path : {deeper, farDeeper})
      refusals.push_back(errorOf<std::exception>([&path] { orbseq::readModel(path); }));
  });

  EXPECT_EQ(sequences, orbseq::readModel(kShopModel).lattice->NumberOfSequences());
  EXPECT_THAT(refusals, testing::ElementsAre(HasSubstr("64"), HasSubstr("64")));
}

TEST(SmallStack, TheDeepestJsonIsReadInAThreadOfIt) {
  const TempFolder folder;
  const std::string deepest = folder.file("deepest", deepJson(64));
  const std::string deeper = folder.file("deeper", deepJson(65));
  const std::string farDeeper = folder.file("far", deepJson(1'000'000));
  orbseq::LogOptions options;
  options.format = orbseq::LogFormat::kJsonLines;
  std::size_t rows = 0;
  std::vector<std::string> refusals;

  runWithSmallStack([&] {
    rows = orbseq::readLog(deepest, options).rows;
    for (const std::string& path : {deeper, farDeeper})
      refusals.push_back(errorOf<orbseq::InputError>([&] { orbseq::readLog(path, options); }));
  });

  EXPECT_EQ(rows, 1U);
  EXPECT_THAT(refusals, testing::ElementsAre(HasSubstr("64"), HasSubstr("64")));
}

TEST(SmallStack, HistoriesAreScoredInAThreadOfIt) {
  const std::vector<std::uint64_t> expected = scoredHistories();
  ASSERT_GT(expected.size(), 20U);
  std::vector<std::uint64_t> found;

  runWithSmallStack([&found] { found = scoredHistories(); });

  EXPECT_EQ(found, expected);
}

}  // namespace

// Saves while calls of the system fail: a model that is converted or trained replaces its file as a
// whole, or not at all and says so.
//
// Every call of the program that a save needs is made to fail in its turn, by a library that is
// loaded before the others (failingCalls.cpp), once or with all that follow. Writes take only a
// part of their bytes, too: then the save goes on.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/hostile/saving.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

using namespace orbseq::test;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;

#ifdef FAILING_CALLS

// What stands in a file before a save and after it.
struct Content {
  Files before;
  Files after;
};

struct Failure {
  long first;  // number of the call
  bool all;    // it and all that follow
  int error;
  bool removals;  // removing a file fails, too
};

// A write that takes a part of its bytes.
constexpr int kShortWrite = 0;

std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << "call " << failure.first << (failure.all ? " and all that follow" : " alone")
             << (failure.removals ? "" : " but removals") << ", error " << failure.error;
}

struct Hindered {
  Outcome outcome;
  long calls = 0;      // that could have failed
  std::string failed;  // the name of the first that did, "none"
};

Hindered runHindered(std::vector<std::string> arguments, Surroundings surroundings,
                     const Failure& failure) {
  const TempFolder folder;
  surroundings.environment = {"LD_PRELOAD=" FAILING_CALLS,
                              "FAILING_CALLS_FIRST=" + std::to_string(failure.first),
                              "FAILING_CALLS_ERROR=" + std::to_string(failure.error),
                              "FAILING_CALLS_REPORT=" + folder.path("report")};
  if (failure.all) surroundings.environment.push_back("FAILING_CALLS_ALL=1");
  if (!failure.removals) surroundings.environment.push_back("FAILING_CALLS_KEPT=1");
  if (failure.error == kShortWrite) surroundings.environment.push_back("FAILING_CALLS_SHORT=1");
  Hindered hindered;
  hindered.outcome = run(std::move(arguments), surroundings);
  std::istringstream report(contentOf(folder.path("report")));
  report >> hindered.calls >> hindered.failed;
  return hindered;
}

// Whether a call of that name may fail and the save go on: what is only read may be closed without
// a question, and the file's owner be another one.
bool mayBeGotOver(const std::string& call) { return call == "close" || call == "fchown"; }

// What is wrong after a save over the files in the folder that was hindered so; empty: nothing.
std::vector<std::string> faultsOf(const Hindered& save, const Failure& failure,
                                  const Content& content, const TempFolder& folder) {
  const Files files = filesAt(folder.path("m"));
  const bool hasFailed = save.failed != "none";
  const bool hasNew = files.model == content.after.model;
  const auto lines = std::count(save.outcome.error.begin(), save.outcome.error.end(), '\n');
  std::vector<std::string> faults;
  const auto expect = [&faults](bool holds, const char* fault) {
    if (!holds) faults.emplace_back(fault);
  };
  expect(hasNew || (hasFailed && files.model == content.before.model), "the file is torn");
  expect(
      files.labels == content.after.labels || (hasFailed && files.labels == content.before.labels),
      "the labels are torn");
  // Both are on the disk before the first is renamed.
  expect(!hasNew || files.labels == content.after.labels || save.failed == "rename" ||
             save.failed == "fsync" || save.failed == "close" || save.failed == "remove",
         "the labels are another model's");
  expect(save.outcome.status == 0 || (hasFailed && save.outcome.status == 3),
         "a wrong exit status");
  expect(save.outcome.status != 0 || (hasNew && files.labels == content.after.labels),
         "not saved, and not told");
  const bool isShort = failure.error == kShortWrite;
  expect(!isShort || save.outcome.status == 0, "a short write is not gone on with");
  expect(save.outcome.status != 0 || !hasFailed || isShort || mayBeGotOver(save.failed),
         "a failure is not told");
  expect(lines == (save.outcome.status == 0 ? 0 : 1), "not one line of an error");
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    const std::string name = entry.path().filename();
    const bool isExpected = name == "m" || name == "m.labels.csv" || name == "link";
    // Where no file can be removed, nobody can remove the temporary one.
    expect(isExpected || (failure.all && failure.removals && hasFailed),
           "a temporary file is left");
  }
  return faults;
}

// Lets each call of the save fail in its turn; all the faults, each with its place.
// `argumentsFor` makes the save's arguments for a target.
template <class ArgumentsFor>
std::vector<std::string> faultsOfEveryFailure(const Content& content, ArgumentsFor argumentsFor,
                                              const Surroundings& surroundings = {},
                                              bool throughLink = false) {
  std::vector<std::string> all;
  for (Failure failure :
       {Failure{0, false, EIO, true}, Failure{0, true, ENOSPC, false}, Failure{0, true, EIO, true},
        Failure{0, false, kShortWrite, true}, Failure{0, true, kShortWrite, true}}) {
    bool completes = false;
    for (long first = 1; !completes && first < 1000; ++first) {
      failure.first = first;
      const TempFolder folder;
      put(content.before, folder);
      if (throughLink) fs::create_symlink("m", folder.path("link"));
      const Hindered save =
          runHindered(argumentsFor(folder.path(throughLink ? "link" : "m")), surroundings, failure);
      completes = save.failed == "none";
      for (const std::string& fault : faultsOf(save, failure, content, folder)) {
        std::ostringstream text;
        text << failure << " (" << save.failed << "): " << fault << ": status "
             << save.outcome.status << ", " << save.outcome.error;
        all.push_back(text.str());
      }
      if (throughLink && !fs::is_symlink(folder.path("link"))) all.emplace_back("the link is gone");
      // A save makes a file, writes it, brings it to the disk, closes and renames it.
      if (completes && first < (failure.error == kShortWrite ? 2 : 6))
        all.emplace_back("too few calls were seen");
    }
    if (!completes) all.emplace_back("the save does not complete");
  }
  return all;
}

// By the test's own program, from a file to a file.
std::vector<std::string> faultsOfCareless(const std::string& how) {
  const TempFolder folder;
  const Content content{{std::string(600, 'o'), ""}, {std::string(900, 'n'), ""}};
  const std::string source = folder.file("source", content.after.model);
  return faultsOfEveryFailure(content,
                              [&](const std::string& target) {
                                return std::vector<std::string>{how, source, target};
                              },
                              {.program = CARELESS_SAVER});
}

class FailingCalls : public testing::Test {};

// But it takes a short write for an error.
TEST_F(FailingCalls, ACarefulSaverPasses) {
  const std::vector<std::string> faults = faultsOfCareless("careful");

  EXPECT_THAT(faults, Each(HasSubstr("error 0 (write): ")));
  EXPECT_THAT(faults, Contains(HasSubstr("a short write is not gone on with")));
}

TEST_F(FailingCalls, ACarelessSaverIsFound) {
  const std::vector<std::string> write = faultsOfCareless("write");
  EXPECT_THAT(write, Contains(HasSubstr("error 5 (write): the file is torn")));
  EXPECT_THAT(write, Contains(HasSubstr("error 0 (write): the file is torn")));
  EXPECT_THAT(faultsOfCareless("sync"), Contains(HasSubstr("(fsync): a failure is not told")));
  EXPECT_THAT(faultsOfCareless("leave"), Contains(HasSubstr("a temporary file is left")));
  EXPECT_THAT(faultsOfCareless("silent"), Contains(HasSubstr("not one line of an error")));
  EXPECT_THAT(faultsOfCareless("in-place"), Contains(HasSubstr("the file is torn")));
}

TEST_F(FailingCalls, ConvertingKeepsTheOldFileOrMakesTheNew) {
  const TempFolder folder;
  const std::string source = folder.file("log.csv", log(40, 1));
  const std::string other = folder.path("other.xml");
  ASSERT_EQ(run(train("document", source, other)).status, 0);
  for (const std::string form : kForms) {
    const Content content{made(convert, form, other), made(convert, form, kShop)};
    ASSERT_NE(content.before.model, content.after.model);

    EXPECT_THAT(
        faultsOfEveryFailure(
            content, [&](const std::string& target) { return convert(form, kShop, target); }),
        IsEmpty())
        << form;
  }
}

// A document over a model with labels beside it, which go.
TEST_F(FailingCalls, ConvertingThroughALinkKeepsTheOldFileOrMakesTheNew) {
  const Content content{{"old", "item,label\n1,old\n"}, made(convert, "document", kShop)};

  EXPECT_THAT(
      faultsOfEveryFailure(
          content, [&](const std::string& target) { return convert("document", kShop, target); },
          {}, /*throughLink=*/true),
      IsEmpty());
}

TEST_F(FailingCalls, TrainingKeepsTheOldFileOrMakesTheNew) {
  const TempFolder folder;
  const std::string before = folder.file("before.csv", log(40, 1));
  const std::string after = folder.file("after.csv", log(60, 3));
  for (const std::string form : {"document", "pmml", "binary", "objxml"}) {
    const Content content{made(train, form, before), made(train, form, after)};
    ASSERT_NE(content.before.model, content.after.model);

    EXPECT_THAT(faultsOfEveryFailure(
                    content, [&](const std::string& target) { return train(form, after, target); }),
                IsEmpty())
        << form;
  }
}

#else

TEST(FailingCalls, NeedAProgramWithoutSanitizer) {
  GTEST_SKIP() << "calls cannot be made to fail in a sanitizer's program";
}

#endif

}  // namespace

// Saves while the disk or the system gives out: a model that is converted or trained replaces its
// file as a whole, or not at all and says so.
//
// Every call of the program that a save needs is made to fail in its turn, by a library that is
// loaded before the others (failingCalls.cpp), once or with all that follow.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/hostile/Process.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

using namespace orbseq::test;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kCustomers = ORBSEQ_SOURCE_DIR "/examples/shop/customers.csv";
const char* const kForms[] = {"document", "pmml", "binary", "objxml", "compiled"};

// A model's file and that of the labels beside it; empty: there is none.
struct Files {
  std::string model;
  std::string labels;
};

Files filesAt(const std::string& path) {
  return {contentOf(path), contentOf(path + ".labels.csv")};
}

void put(const Files& files, const TempFolder& folder) {
  folder.file("m", files.model);
  if (!files.labels.empty()) folder.file("m.labels.csv", files.labels);
}

// A log with labels; the products of all customers are numbered from `first`.
std::string log(int customers, int first) {
  std::string rows = "customer,time,item,text\n";
  for (int customer = 0; customer < customers; ++customer)
    for (int row = 0; row < 6; ++row) {
      const std::string item = std::to_string(first + (customer * row + row) % 5);
      rows += std::to_string(customer) + ',' + std::to_string(row / 2) + ',' + item + ",product " +
              item + '\n';
    }
  return rows;
}

// Makes a model at `path`.
using Maker = std::vector<std::string> (*)(const std::string& form, const std::string& source,
                                           const std::string& path);

std::vector<std::string> convert(const std::string& form, const std::string& source,
                                 const std::string& path) {
  return {"convert", "--quiet", "--model", source, "--to", form, "--output", path};
}

std::vector<std::string> train(const std::string& form, const std::string& source,
                               const std::string& path) {
  return {"train", "--quiet", "--threads", "1",  "--label", "text", "--input",
          source,  "--to",    form,        "-s", "10",      "-o",   path};
}

// What stands in a file before a save and after it.
struct Content {
  Files before;
  Files after;
};

Files made(Maker make, const std::string& form, const std::string& source) {
  const TempFolder folder;
  const Ended ended = run(orbseqCommand(make(form, source, folder.path("m"))));
  EXPECT_EQ(ended.status, 0) << ended.error;
  // It is whole: it answers.
  EXPECT_EQ(
      run(orbseqCommand({"score", "--model", folder.path("m"), "--input", kCustomers})).status, 0);
  return filesAt(folder.path("m"));
}

// --- Failing calls -------------------------------------------------------------------------------

struct Failure {
  long first;  // number of the call
  bool all;    // it and all that follow
  int error;
};

[[maybe_unused]] std::ostream& operator<<(std::ostream& out, const Failure& failure) {
  return out << "call " << failure.first << (failure.all ? " and all that follow" : " alone")
             << ", error " << failure.error;
}

struct Hindered {
  Ended ended;
  long calls = 0;      // that could have failed
  std::string failed;  // the name of the first that did, "none"
};

#ifdef FAILING_CALLS

Hindered runHindered(Command command, const Failure& failure) {
  const TempFolder folder;
  command.environment = {"LD_PRELOAD=" FAILING_CALLS,
                         "FAILING_CALLS_FIRST=" + std::to_string(failure.first),
                         "FAILING_CALLS_ERROR=" + std::to_string(failure.error),
                         "FAILING_CALLS_REPORT=" + folder.path("report")};
  if (failure.all) command.environment.push_back("FAILING_CALLS_ALL=1");
  Hindered hindered;
  hindered.ended = run(std::move(command));
  std::istringstream report(contentOf(folder.path("report")));
  report >> hindered.calls >> hindered.failed;
  return hindered;
}

// What is wrong after a save over the files in the folder that was hindered so; empty: nothing.
std::vector<std::string> faultsOf(const Hindered& save, const Content& content,
                                  const TempFolder& folder) {
  const Files files = filesAt(folder.path("m"));
  const bool hasFailed = save.failed != "none";
  const bool hasNew = files.model == content.after.model;
  const auto lines = std::count(save.ended.error.begin(), save.ended.error.end(), '\n');
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
             save.failed == "fsync" || save.failed == "close",
         "the labels are another model's");
  expect(save.ended.status == 0 || (hasFailed && save.ended.status == 3), "a wrong exit status");
  expect(save.ended.status != 0 || (hasNew && files.labels == content.after.labels),
         "not saved, and not told");
  // What is only read may be closed without a question.
  expect(save.ended.status != 0 || !hasFailed || save.failed == "close", "a failure is not told");
  expect(lines == (save.ended.status == 0 ? 0 : 1), "not one line of an error");
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    const std::string name = entry.path().filename();
    expect(name == "m" || name == "m.labels.csv" || name == "link", "a temporary file is left");
  }
  return faults;
}

// Lets each call of the save fail in its turn; all the faults, each with its place. `command` makes
// the command for a target.
template <class MakeCommand>
std::vector<std::string> faultsOfEveryFailure(const Content& content, MakeCommand command,
                                              bool throughLink = false) {
  std::vector<std::string> all;
  for (const auto& [forEver, error] : {std::pair{false, EIO}, std::pair{true, ENOSPC}}) {
    bool completes = false;
    for (long first = 1; !completes && first < 1000; ++first) {
      const Failure failure{first, forEver, error};
      const TempFolder folder;
      put(content.before, folder);
      if (throughLink) fs::create_symlink("m", folder.path("link"));
      const Hindered save = runHindered(command(folder.path(throughLink ? "link" : "m")), failure);
      completes = save.failed == "none";
      for (const std::string& fault : faultsOf(save, content, folder)) {
        std::ostringstream text;
        text << failure << " (" << save.failed << "): " << fault << ": status " << save.ended.status
             << ", " << save.ended.error;
        all.push_back(text.str());
      }
      if (throughLink && !fs::is_symlink(folder.path("link"))) all.emplace_back("the link is gone");
      // A save makes a file, writes it, brings it to the disk, closes and renames it.
      if (completes && first < 6) all.emplace_back("too few calls were seen");
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
  return faultsOfEveryFailure(content, [&](const std::string& target) {
    return Command{.words = {CARELESS_SAVER, how, source, target}};
  });
}

class FailingCalls : public testing::Test {};

TEST_F(FailingCalls, ACarefulSaverPasses) { EXPECT_THAT(faultsOfCareless("careful"), IsEmpty()); }

TEST_F(FailingCalls, ACarelessSaverIsFound) {
  EXPECT_THAT(faultsOfCareless("write"), Contains(HasSubstr("(write): the file is torn")));
  EXPECT_THAT(faultsOfCareless("sync"), Contains(HasSubstr("(fsync): a failure is not told")));
  EXPECT_THAT(faultsOfCareless("leave"), Contains(HasSubstr("a temporary file is left")));
  EXPECT_THAT(faultsOfCareless("silent"), Contains(HasSubstr("not one line of an error")));
  EXPECT_THAT(faultsOfCareless("in-place"), Contains(HasSubstr("the file is torn")));
}

TEST_F(FailingCalls, ConvertingKeepsTheOldFileOrMakesTheNew) {
  const TempFolder folder;
  const std::string source = folder.file("log.csv", log(40, 1));
  const std::string other = folder.path("other.xml");
  ASSERT_EQ(run(orbseqCommand(train("document", source, other))).status, 0);
  for (const std::string form : kForms) {
    const Content content{made(convert, form, other), made(convert, form, kShop)};
    ASSERT_NE(content.before.model, content.after.model);

    EXPECT_THAT(faultsOfEveryFailure(content,
                                     [&](const std::string& target) {
                                       return orbseqCommand(convert(form, kShop, target));
                                     }),
                IsEmpty())
        << form;
  }
}

// A document over a model with labels beside it, which go.
TEST_F(FailingCalls, ConvertingThroughALinkKeepsTheOldFileOrMakesTheNew) {
  const Content content{{"old", "item,label\n1,old\n"}, made(convert, "document", kShop)};

  EXPECT_THAT(faultsOfEveryFailure(
                  content,
                  [&](const std::string& target) {
                    return orbseqCommand(convert("document", kShop, target));
                  },
                  /*throughLink=*/true),
              IsEmpty());
}

TEST_F(FailingCalls, TrainingKeepsTheOldFileOrMakesTheNew) {
  const TempFolder folder;
  const std::string before = folder.file("before.csv", log(40, 1));
  const std::string after = folder.file("after.csv", log(60, 3));
  for (const std::string form : {"document", "pmml", "binary", "objxml"}) {
    const Content content{made(train, form, before), made(train, form, after)};
    ASSERT_NE(content.before.model, content.after.model);

    EXPECT_THAT(faultsOfEveryFailure(content,
                                     [&](const std::string& target) {
                                       return orbseqCommand(train(form, after, target));
                                     }),
                IsEmpty())
        << form;
  }
}

#else

TEST(FailingCalls, NeedAProgramWithoutSanitizer) {
  GTEST_SKIP() << "calls cannot be made to fail in a sanitizer's program";
}

#endif

// --- Places that take no file --------------------------------------------------------------------

// Each command that saves, to a target.
std::vector<Command> savesTo(const std::string& target, const std::string& source) {
  std::vector<Command> all;
  for (const char* form : kForms) all.push_back(orbseqCommand(convert(form, kShop, target)));
  for (const char* form : {"document", "pmml", "binary", "objxml"})
    all.push_back(orbseqCommand(train(form, source, target)));
  return all;
}

TEST(Saves, ToAFullDeviceAreAnError) {
  const TempFolder folder;
  const std::string source = folder.file("log.csv", log(40, 1));
  for (const Command& save : savesTo("/dev/full", source)) {
    const Ended ended = run(save);

    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.error, "orbseq: /dev/full: cannot write: No space left on device\n");
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(Saves, ToStandardOutputThatIsFullOrClosedAreAnError) {
  for (const char* form : kForms) {
    Command full = orbseqCommand(convert(form, kShop, "-"));
    Command closed = full;
    full.outputPath = "/dev/full";
    closed.closeOutput = true;

    const Ended outcomes[] = {run(full), run(closed)};

    EXPECT_EQ(outcomes[0].status, 3) << form;
    EXPECT_EQ(outcomes[0].error,
              "orbseq: standard output: cannot write: No space left on device\n");
    EXPECT_EQ(outcomes[1].status, 3) << form;
    EXPECT_EQ(outcomes[1].error, "orbseq: standard output: cannot write: Bad file descriptor\n");
  }
}

// A disk of a few blocks, seen by this process and its children alone. The test's process ends with
// it: each test runs in a process of its own.
class SmallDisk {
 public:
  explicit SmallDisk(const std::string& size) {
    isMounted_ =
        ::unshare(CLONE_NEWNS) == 0 &&
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        ::mount("tmpfs", folder_.path().c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
  }
  ~SmallDisk() {
    if (isMounted_) ::umount2(folder_.path().c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  bool isMounted() const noexcept { return isMounted_; }
  const TempFolder& folder() const noexcept { return folder_; }

 private:
  TempFolder folder_;
  bool isMounted_ = false;
};

TEST(Saves, ToAFullDiskLeaveTheOldFileAndNothingElse) {
  const SmallDisk disk("16k");
  if (!disk.isMounted()) GTEST_SKIP() << "no disk can be mounted here: " << std::strerror(errno);
  disk.folder().file("filler", std::string(std::size_t{3} * 4096, 'x'));
  const std::string target = disk.folder().file("m", "old");
  for (const char* form : kForms) {
    const Ended ended = run(orbseqCommand(convert(form, kShop, target)));

    EXPECT_EQ(ended.status, 3) << form;
    EXPECT_THAT(ended.error, StartsWith("orbseq: " + target));
    EXPECT_THAT(ended.error, EndsWith(": No space left on device\n"));
    EXPECT_EQ(contentOf(target), "old") << form;
    EXPECT_EQ(disk.folder().entries(), 2U) << form;
  }
}

// The labels are brought to the disk before the model changes its name.
TEST(Saves, ToADiskThatIsFullOfTheModelLeaveTheOldModelAndItsLabels) {
  const Files made = ::made(convert, "binary", kShop);
  const std::size_t blocks = 2 + (made.model.size() + 4095) / 4096;
  const SmallDisk disk(std::to_string(4 * blocks) + 'k');
  if (!disk.isMounted()) GTEST_SKIP() << "no disk can be mounted here: " << std::strerror(errno);
  put({"old", "item,label\n1,old\n"}, disk.folder());

  const Ended ended = run(orbseqCommand(convert("binary", kShop, disk.folder().path("m"))));

  EXPECT_EQ(ended.status, 3);
  EXPECT_THAT(ended.error, HasSubstr("m.labels.csv: cannot write: No space left on device"));
  EXPECT_EQ(contentOf(disk.folder().path("m")), "old");
  EXPECT_EQ(contentOf(disk.folder().path("m.labels.csv")), "item,label\n1,old\n");
  EXPECT_EQ(disk.folder().entries(), 2U);
}

// As nobody, since root may write anywhere.
TEST(Saves, ToAFolderThatMayOnlyBeReadAreAnError) {
  const TempFolder folder;
  const std::string source = folder.file("log.csv", log(40, 1));
  const TempFolder target;
  const std::string path = target.file("m", "old");
  ::chmod(folder.path().c_str(), 0755);
  ::chmod(path.c_str(), 0666);
  ::chmod(target.path().c_str(), 0555);
  const bool isRoot = ::geteuid() == 0;
  Command version = orbseqCommand({"--version"});
  version.asNobody = isRoot;
  if (run(version).status != 0) GTEST_SKIP() << "nobody cannot run the program here";

  for (Command save : savesTo(path, source)) {
    save.asNobody = isRoot;
    const Ended ended = run(save);

    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.error,
              "orbseq: " + path + ": cannot make a file in the folder of it: Permission denied\n");
    EXPECT_EQ(contentOf(path), "old");
  }
  ::chmod(target.path().c_str(), 0755);
  EXPECT_EQ(target.entries(), 1U);
}

// --- Links, and others that write ----------------------------------------------------------------

TEST(Saves, ThroughALinkReplaceItsTarget) {
  const TempFolder folder;
  for (const char* form : {"document", "binary"}) {
    folder.file("m", "old");
    std::error_code ignored;
    fs::create_symlink("m", folder.path("link"), ignored);

    EXPECT_EQ(run(orbseqCommand(convert(form, kShop, folder.path("link")))).status, 0);

    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_FALSE(fs::is_symlink(folder.path("m")));
    EXPECT_EQ(contentOf(folder.path("m")), made(convert, form, kShop).model);
  }
}

TEST(Saves, OfTwoWritersAtOnceOneStands) {
  constexpr int kRounds = 20;
  const TempFolder sources;
  const std::string other = sources.path("other.xml");
  ASSERT_EQ(
      run(orbseqCommand(train("document", sources.file("log.csv", log(40, 1)), other))).status, 0);
  const Files first = made(convert, "document", kShop);
  const Files second = made(convert, "document", other);
  const TempFolder folder;
  const std::string path = folder.path("m");
  for (int round = 0; round < kRounds; ++round) {
    Process one(orbseqCommand(convert("document", kShop, path)));
    Process two(orbseqCommand(convert("document", other, path)));

    EXPECT_EQ(one.wait().status, 0);
    EXPECT_EQ(two.wait().status, 0);

    const std::string content = contentOf(path);
    EXPECT_TRUE(content == first.model || content == second.model) << "round " << round;
    EXPECT_EQ(folder.entries(), 1U);
  }
}

}  // namespace

// Saves to places that take no file, through links, and beside others that write: a model that is
// converted or trained replaces its file as a whole, or not at all and says so.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "tests/hostile/saving.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

using namespace orbseq::test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// --- Places that take no file --------------------------------------------------------------------

// The arguments of each command that saves, to a target.
std::vector<std::vector<std::string>> savesTo(const std::string& target,
                                              const std::string& source) {
  std::vector<std::vector<std::string>> all;
  for (const char* form : kForms) all.push_back(convert(form, kShop, target));
  for (const char* form : {"document", "pmml", "binary", "objxml"})
    all.push_back(train(form, source, target));
  return all;
}

TEST(Saves, ToAFullDeviceAreAnError) {
  const TempFolder folder;
  const std::string source = folder.file("log.csv", log(40, 1));
  for (const std::vector<std::string>& save : savesTo("/dev/full", source)) {
    const Outcome outcome = run(save);

    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.error, "orbseq: /dev/full: cannot write: No space left on device\n");
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(Saves, ToStandardOutputThatIsFullOrClosedAreAnError) {
  for (const char* form : kForms) {
    const Outcome full = run(convert(form, kShop, "-"), {.outputPath = "/dev/full"});
    const Outcome closed = run(convert(form, kShop, "-"), {.closeOutput = true});

    EXPECT_EQ(full.status, 3) << form;
    EXPECT_EQ(full.error, "orbseq: standard output: cannot write: No space left on device\n");
    EXPECT_EQ(closed.status, 3) << form;
    EXPECT_EQ(closed.error, "orbseq: standard output: cannot write: Bad file descriptor\n");
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
    const Outcome outcome = run(convert(form, kShop, target));

    EXPECT_EQ(outcome.status, 3) << form;
    EXPECT_THAT(outcome.error, StartsWith("orbseq: " + target));
    EXPECT_THAT(outcome.error, EndsWith(": No space left on device\n"));
    EXPECT_EQ(contentOf(target), "old") << form;
    EXPECT_EQ(disk.folder().entries(), 2U) << form;
  }
}

// The labels are brought to the disk before the model changes its name.
TEST(Saves, ToADiskThatIsFullOfTheModelLeaveTheOldModelAndItsLabels) {
  const std::size_t modelBytes = made(convert, "binary", kShop).model.size();
  const std::size_t blocks = 2 + (modelBytes + 4095) / 4096;
  const SmallDisk disk(std::to_string(4 * blocks) + 'k');
  if (!disk.isMounted()) GTEST_SKIP() << "no disk can be mounted here: " << std::strerror(errno);
  put({"old", "item,label\n1,old\n"}, disk.folder());

  const Outcome outcome = run(convert("binary", kShop, disk.folder().path("m")));

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.error, HasSubstr("m.labels.csv: cannot write: No space left on device"));
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
  const Surroundings rights{.user = ::geteuid() == 0 ? kNobody : 0};
  if (run({"--version"}, rights).status != 0) GTEST_SKIP() << "nobody cannot run the program here";

  for (const std::vector<std::string>& save : savesTo(path, source)) {
    const Outcome outcome = run(save, rights);

    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.error,
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

    EXPECT_EQ(run(convert(form, kShop, folder.path("link"))).status, 0);

    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_FALSE(fs::is_symlink(folder.path("m")));
    EXPECT_EQ(contentOf(folder.path("m")), made(convert, form, kShop).model);
  }
}

TEST(Saves, OfTwoWritersAtOnceOneStands) {
  constexpr int kRounds = 20;
  const TempFolder sources;
  const std::string other = sources.path("other.xml");
  ASSERT_EQ(run(train("document", sources.file("log.csv", log(40, 1)), other)).status, 0);
  const Files first = made(convert, "document", kShop);
  const Files second = made(convert, "document", other);
  const TempFolder folder;
  const std::string path = folder.path("m");
  for (int round = 0; round < kRounds; ++round) {
    Program one(convert("document", kShop, path));
    Program two(convert("document", other, path));

    EXPECT_EQ(one.wait().status, 0);
    EXPECT_EQ(two.wait().status, 0);

    const std::string content = contentOf(path);
    EXPECT_TRUE(content == first.model || content == second.model) << "round " << round;
    EXPECT_EQ(folder.entries(), 1U);
  }
}

}  // namespace

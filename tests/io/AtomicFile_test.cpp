#include "io/AtomicFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <future>
#include <string>

#include "io/IoError.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;

using orbseq::AtomicFile;
using orbseq::FileError;
using orbseq::test::contentOf;
using orbseq::test::errorOf;
using orbseq::test::kNobody;
using orbseq::test::TempFolder;
using testing::EndsWith;

void save(const std::string& path, const std::string& content) {
  AtomicFile file(path);
  file.write(content);
  file.commit();
}

unsigned modeOf(const std::string& path) {
  return static_cast<unsigned>(fs::status(path).permissions());
}

// Files of this process end at so many bytes while an object of this class lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

TEST(AtomicFile, ANewFileAppearsWithCommit) {
  const TempFolder folder;
  AtomicFile file(folder.path("f"));
  file.write("new");
  EXPECT_FALSE(fs::exists(folder.path("f")));

  file.commit();

  EXPECT_EQ(contentOf(folder.path("f")), "new");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, AnExistingFileStandsUntilCommit) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  AtomicFile file(path);
  file.write("new");
  EXPECT_EQ(contentOf(path), "old");

  file.commit();

  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, WithoutCommitNothingChangesAndNothingStays) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  {
    AtomicFile file(path);
    file.write(std::string(1'000'000, 'x'));
  }

  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, LargeContentIsWrittenWhole) {
  const TempFolder folder;
  const std::string content(3'000'000, 'x');

  save(folder.path("f"), content);

  EXPECT_EQ(contentOf(folder.path("f")), content);
}

TEST(AtomicFile, AnEmptyFileCanBeWritten) {
  const TempFolder folder;

  save(folder.file("f", "old"), "");

  EXPECT_EQ(contentOf(folder.path("f")), "");
}

TEST(AtomicFile, ANameWithoutFolderIsInTheCurrentFolder) {
  const TempFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());

  save("f", "new");

  fs::current_path(before);
  EXPECT_EQ(contentOf(folder.path("f")), "new");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, TheLongestNameThatAFolderTakesCanBeWritten) {
  const TempFolder folder;
  const std::string path = folder.path(std::string(255, 'n'));

  save(path, "new");

  EXPECT_EQ(contentOf(path), "new");
}

TEST(AtomicFile, ASymbolicLinkStaysAndItsTargetIsReplaced) {
  const TempFolder folder;
  const std::string target = folder.file("target", "old");
  fs::create_symlink("target", folder.path("second"));
  fs::create_symlink(folder.path("second"), folder.path("first"));

  save(folder.path("first"), "new");

  EXPECT_TRUE(fs::is_symlink(folder.path("first")));
  EXPECT_TRUE(fs::is_symlink(folder.path("second")));
  EXPECT_FALSE(fs::is_symlink(target));
  EXPECT_EQ(contentOf(target), "new");
  EXPECT_EQ(folder.entries(), 3U);
}

TEST(AtomicFile, ALinkToNothingYetGetsItsTarget) {
  const TempFolder folder;
  fs::create_symlink("target", folder.path("link"));

  save(folder.path("link"), "new");

  EXPECT_TRUE(fs::is_symlink(folder.path("link")));
  EXPECT_EQ(contentOf(folder.path("target")), "new");
}

TEST(AtomicFile, LinksInACircleAreAnError) {
  const TempFolder folder;
  fs::create_symlink("b", folder.path("a"));
  fs::create_symlink("a", folder.path("b"));

  EXPECT_THAT(errorOf<FileError>([&] { AtomicFile file(folder.path("a")); }),
              EndsWith("/a: cannot write: Too many levels of symbolic links"));
}

TEST(AtomicFile, PermissionsOfAnExistingFileAreKept) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  ::chmod(path.c_str(), 0640);

  save(path, "new");

  EXPECT_EQ(modeOf(path), 0640U);
}

TEST(AtomicFile, ANewFileHasWhatTheMaskLeaves) {
  const TempFolder folder;
  const mode_t before = ::umask(0027);

  save(folder.path("f"), "new");

  ::umask(before);
  EXPECT_EQ(modeOf(folder.path("f")), 0640U);
}

TEST(AtomicFile, AnotherHardLinkKeepsTheOldContent) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  fs::create_hard_link(path, folder.path("other"));

  save(path, "new");

  EXPECT_EQ(contentOf(folder.path("other")), "old");
}

// In a process of its own, which gives up the rights of root where it has them.
TEST(AtomicFile, AFileThatMayNotBeWrittenIsNotReplaced) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  ::chmod(path.c_str(), 0444);
  ::chmod(folder.path().c_str(), 0777);

  const pid_t child = ::fork();
  if (child == 0) {
    const bool plain = ::geteuid() != 0 || ::seteuid(kNobody) == 0;
    const std::string error = errorOf<FileError>([&] { AtomicFile file(path); });
    ::_exit(plain && error.ends_with("/f: cannot write: Permission denied") ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

// Deliberate: what is no regular file is written in place, never renamed over.
TEST(AtomicFile, AFifoIsWrittenInPlace) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  auto reader = std::async(std::launch::async, [&] { return contentOf(path); });

  save(path, "new");

  EXPECT_EQ(reader.get(), "new");
  EXPECT_TRUE(fs::is_fifo(path));
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, AFullDeviceIsAnErrorAndStaysADevice) {
  EXPECT_EQ(errorOf<FileError>([] { save("/dev/full", "new"); }),
            "/dev/full: cannot write: No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(AtomicFile, ALinkToADeviceIsWrittenInPlace) {
  const TempFolder folder;
  fs::create_symlink("/dev/null", folder.path("link"));

  save(folder.path("link"), "new");

  EXPECT_TRUE(fs::is_symlink(folder.path("link")));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(AtomicFile, AFolderIsAnError) {
  const TempFolder folder;
  EXPECT_THAT(errorOf<FileError>([&] { AtomicFile file(folder.path().string()); }),
              EndsWith(": cannot write: Is a directory"));
  EXPECT_THAT(errorOf<FileError>([&] { AtomicFile file(folder.path("new/")); }),
              EndsWith("/new/: cannot write: Is a directory"));
}

TEST(AtomicFile, AMissingFolderIsAnError) {
  const TempFolder folder;
  EXPECT_THAT(
      errorOf<FileError>([&] { AtomicFile file(folder.path("none/f")); }),
      EndsWith("/none/f: cannot make a file in the folder of it: No such file or directory"));
}

TEST(AtomicFile, AParentThatIsAFileIsAnError) {
  const TempFolder folder;
  folder.file("parent", "old");
  EXPECT_THAT(errorOf<FileError>([&] { AtomicFile file(folder.path("parent/f")); }),
              EndsWith("/parent/f: cannot make a file in the folder of it: Not a directory"));
  EXPECT_EQ(contentOf(folder.path("parent")), "old");
}

TEST(AtomicFile, AnEmptyNameIsAnError) {
  EXPECT_EQ(errorOf<FileError>([] { AtomicFile file(""); }), ": cannot write: Is a directory");
}

TEST(AtomicFile, AWriteThatFailsLeavesTheOldFileAndNothingElse) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  std::string error;
  {
    const FileSizeLimit limit(4096);
    error = errorOf<FileError>([&] { save(path, std::string(100'000, 'x')); });
  }

  EXPECT_THAT(error, EndsWith("/f: cannot write: File too large"));
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, AFailureOfTheLastBytesIsToldByCommit) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  std::string error;
  {
    AtomicFile file(path);
    file.write("new content");
    const FileSizeLimit limit(4);
    error = errorOf<FileError>([&] { file.commit(); });
  }

  EXPECT_THAT(error, EndsWith("/f: cannot write: File too large"));
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, ATargetThatBecomesAFolderIsAnErrorOfCommit) {
  const TempFolder folder;
  AtomicFile file(folder.path("f"));
  file.write("new");
  fs::create_directory(folder.path("f"));

  EXPECT_THAT(errorOf<FileError>([&] { file.commit(); }),
              EndsWith("/f: cannot replace: Is a directory"));
}

TEST(AtomicFile, TwoWritersAtOnceLeaveOneOfTheTwoFiles) {
  const TempFolder folder;
  const std::string path = folder.file("f", "old");
  {
    AtomicFile first(path);
    AtomicFile second(path);
    first.write("first");
    second.write("second");
    second.commit();
    first.commit();
  }

  EXPECT_EQ(contentOf(path), "first");
  EXPECT_EQ(folder.entries(), 1U);
}

TEST(AtomicFile, ALeftOverOfAKilledProcessIsNoObstacle) {
  const TempFolder folder;
  // The names that this process takes next.
  const std::string prefix = ".orbseq-" + std::to_string(::getpid()) + "-";
  for (int i = 1; i <= 200; ++i) folder.file(prefix + std::to_string(i) + ".tmp", "left over");

  save(folder.path("f"), "new");

  EXPECT_EQ(contentOf(folder.path("f")), "new");
  EXPECT_EQ(folder.entries(), 201U);
}

}  // namespace

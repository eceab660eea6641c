#include "io/SourceStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>

#include "io/IoError.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using orbseq::FileError;
using orbseq::SourceStream;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::EndsWith;

std::string restOf(SourceStream& stream) {
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string lineOf(SourceStream& stream) {
  std::string line;
  std::getline(stream, line);
  return line;
}

TEST(SourceStream, TheHeadIsLookedAtAndStillRead) {
  const TempFolder folder;
  SourceStream stream(folder.file("f", "one\ntwo"));

  EXPECT_EQ(stream.head(), "one\ntwo");
  EXPECT_EQ(stream.head(), "one\ntwo");
  EXPECT_EQ(stream.offset(), 0U);
  EXPECT_EQ(restOf(stream), "one\ntwo");
}

TEST(SourceStream, TheHeadOfALargeFileIsItsFirstBlock) {
  const TempFolder folder;
  std::string content;
  for (int i = 0; content.size() < 300'000; ++i) content += std::to_string(i) + "\n";
  SourceStream stream(folder.file("f", content));

  EXPECT_TRUE(stream.head() == content.substr(0, 65'536));
  EXPECT_TRUE(restOf(stream) == content);
  EXPECT_EQ(stream.offset(), content.size());
}

TEST(SourceStream, AnEmptyFileHasAnEmptyHead) {
  const TempFolder folder;
  SourceStream stream(folder.file("f", ""));

  EXPECT_EQ(stream.head(), "");
  EXPECT_EQ(restOf(stream), "");
  EXPECT_EQ(stream.line(), 1U);
  EXPECT_NO_THROW(stream.throwIfUnreadable());
}

TEST(SourceStream, LinesAndBytesAreCountedAcrossBlocks) {
  const TempFolder folder;
  std::string content;
  for (int i = 0; i < 50'000; ++i) content += "line\n";
  SourceStream stream(folder.file("f", content + "last"));

  EXPECT_EQ(stream.line(), 1U);
  for (std::size_t i = 1; i <= 50'000; ++i) {
    ASSERT_EQ(lineOf(stream), "line");
    ASSERT_EQ(stream.line(), i);  // of the line feed that was taken
    ASSERT_EQ(stream.offset(), 5 * i);
  }
  EXPECT_EQ(lineOf(stream), "last");
  EXPECT_EQ(stream.line(), 50'001U);
  EXPECT_EQ(stream.offset(), 250'004U);
}

TEST(SourceStream, AFifoIsRead) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string content(200'000, 'x');
  auto writer = std::async(std::launch::async, [&] { std::ofstream(path) << content; });
  SourceStream stream(path);

  EXPECT_EQ(stream.name(), path);
  EXPECT_EQ(stream.head().size(), 65'536U);
  EXPECT_TRUE(restOf(stream) == content);
}

TEST(SourceStream, StandardInputHasANameForPeople) {
  EXPECT_EQ(SourceStream("-").name(), "standard input");
}

TEST(SourceStream, AMissingFileIsAnError) {
  const TempFolder folder;

  EXPECT_EQ(errorOf<FileError>([&] { SourceStream stream(folder.path("none")); }),
            folder.path("none") + ": cannot open: No such file or directory");
}

TEST(SourceStream, AFolderIsAnError) {
  const TempFolder folder;

  EXPECT_EQ(errorOf<FileError>([&] { SourceStream stream(folder.path().string()); }),
            folder.path().string() + ": cannot read: Is a directory");
}

TEST(SourceStream, AFileThatCannotBeReadFailsAndTellsWhy) {
  const std::string path = "/proc/self/mem";  // opens, and its first byte is not there
  if (!fs::exists(path)) GTEST_SKIP() << "no " << path;
  SourceStream stream(path);

  EXPECT_EQ(stream.head(), "");
  EXPECT_FALSE(stream.get() != std::char_traits<char>::eof());
  EXPECT_THAT(errorOf<FileError>([&] { stream.throwIfUnreadable(); }),
              EndsWith("mem: cannot read: Input/output error"));
}

}  // namespace

// Documents from files and pipes: what is opened, and what is read of it.

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <thread>

#include "host/EnvironmentError.h"
#include "host/SafeDocument.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "tests/host/messageOf.h"
#include "tests/support/TempFolder.h"

namespace {

using OrbScore::BaseTranslator;
using OrbScore::DocumentLimits;
using OrbScore::EnvironmentError;
using OrbScore::QuException;
using OrbScore::SafeDocument;
using orbseq::test::TempFolder;
using test::messageOf;

// Notices whether a file is opened.
class OpenWatch {
 public:
  explicit OpenWatch(const std::string& path) : queue_(inotify_init1(IN_NONBLOCK)) {
    if (inotify_add_watch(queue_, path.c_str(), IN_OPEN) < 0)
      throw std::runtime_error("cannot watch " + path);
  }
  ~OpenWatch() { close(queue_); }
  OpenWatch(const OpenWatch&) = delete;
  OpenWatch& operator=(const OpenWatch&) = delete;

  bool opened() {
    alignas(inotify_event) char events[4096];
    return read(queue_, events, sizeof events) > 0;
  }

 private:
  int queue_;
};

// Changes to a folder and back.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& path) : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
  }
  ~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  std::filesystem::path before_;
};

std::string refusal(const std::string& path, const DocumentLimits& limits = {}) {
  return messageOf<QuException>([&] { SafeDocument::Load(path, limits); });
}

std::string failure(const std::string& path) {
  return messageOf<EnvironmentError>([&] { SafeDocument::Load(path); });
}

TEST(SafeDocumentFile, LoadsAFile) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a><b/></a>");

  const SafeDocument document = SafeDocument::Load(path);

  EXPECT_EQ(document.GetName(), path);
  EXPECT_TRUE(BaseTranslator::HasTagName(document.GetRoot(), u"a"));
}

TEST(SafeDocumentFile, LoadsAFileOfSeveralBlocks) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a>" + std::string(1'000'000, ' ') + "<b/></a>");

  const SafeDocument document = SafeDocument::Load(path);

  EXPECT_EQ(BaseTranslator::GetPosition(BaseTranslator::GetFirstChildElt(document.GetRoot())),
            "line 1, column 1000004");
}

TEST(SafeDocumentFile, ADashIsAFileLikeAnyOther) {
  const TempFolder folder;
  const WorkingFolder here(folder.path().string());

  EXPECT_EQ(failure("-"), "-: cannot open the document: No such file or directory");

  folder.file("-", "<a/>");
  EXPECT_EQ(refusal("-"), "no error");
}

TEST(SafeDocumentFile, ErrorsOfContentNameTheFile) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a>\n</b>");

  EXPECT_EQ(refusal(path), path + ":2:3: expected end of tag 'a'");
}

TEST(SafeDocumentFile, AFileThatIsNotThereIsNoQuestionOfContent) {
  EXPECT_EQ(failure("/no/such\nfile"),
            "/no/such\\nfile: cannot open the document: No such file or directory");
  EXPECT_EQ(failure(""), "cannot open the document: No such file or directory");
}

TEST(SafeDocumentFile, AFolderIsNoQuestionOfContent) {
  const TempFolder folder;

  EXPECT_EQ(failure(folder.path().string()),
            folder.path().string() + ": cannot read the document: Is a directory");
}

TEST(SafeDocumentFile, AFileThatMayNotBeReadIsNoQuestionOfContent) {
  if (geteuid() == 0) GTEST_SKIP() << "the administrator may read everything";
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a/>");
  std::filesystem::permissions(path, std::filesystem::perms::none);

  EXPECT_EQ(failure(path), path + ": cannot open the document: Permission denied");
}

TEST(SafeDocumentFile, AFileOfTheLimitLoadsAndOneByteMoreIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a/>");

  EXPECT_EQ(refusal(path, {.bytes = 4}), "no error");
  EXPECT_EQ(refusal(path, {.bytes = 3}),
            path + ": document too large: 4 bytes, limit 3 (raise it with --max-document-bytes)");
}

// No size is one byte more than it, which is what is read of a file to see that it is too large.
TEST(SafeDocumentFile, TheLargestLimitIsNoLimit) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a/>");

  EXPECT_EQ(refusal(path, {.bytes = std::numeric_limits<std::size_t>::max()}), "no error");
}

TEST(SafeDocumentFile, AFileThatIsTooLargeIsNotEvenOpened) {
  const TempFolder folder;
  const std::string path = folder.file("d.xml", "<a/>");
  std::filesystem::resize_file(path, std::uintmax_t{2} << 30);
  OpenWatch watch(path);

  EXPECT_EQ(refusal(path), path +
                               ": document too large: 2147483648 bytes, limit 67108864 "
                               "(raise it with --max-document-bytes)");

  EXPECT_FALSE(watch.opened());
}

TEST(SafeDocumentFile, LoadsFromAPipe) {
  const TempFolder folder;
  const std::string path = folder.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&path] { std::ofstream(path) << "<a><b/></a>"; });

  const SafeDocument document = SafeDocument::Load(path);
  writer.join();

  EXPECT_TRUE(BaseTranslator::HasTagName(document.GetRoot(), u"a"));
}

TEST(SafeDocumentFile, ReadsOneByteBeyondTheLimitOfWhatHasNoEnd) {
  EXPECT_EQ(refusal("/dev/zero", {.bytes = 1'000'000}),
            "/dev/zero: document too large: more than 1000000 bytes, limit 1000000 (raise it with "
            "--max-document-bytes)");
}

TEST(SafeDocumentFile, NeverOpensTheDtd) {
  const TempFolder folder;
  const std::string dtd = folder.file("x.dtd", "<!ENTITY zz 'never'><!this is an error");
  const WorkingFolder here(folder.path().string());
  OpenWatch watch(dtd);

  for (const std::string& id : {std::string("x.dtd"), dtd, "file://" + dtd}) {
    const std::string path = folder.file("d.xml", "<!DOCTYPE a SYSTEM '" + id + "'>\n<a v='1'/>");
    EXPECT_EQ(refusal(path), "no error");
    folder.file("d.xml", "<!DOCTYPE a PUBLIC 'p' '" + id + "'>\n<a v='1&zz;2'/>");
    EXPECT_EQ(refusal(path), path + ":2:12: entity 'zz' not found");
  }

  EXPECT_FALSE(watch.opened());
  std::ifstream opened(dtd);
  EXPECT_TRUE(watch.opened()) << "the watch itself does not work";
}

// To open a pipe without a writer would wait for ever.
TEST(SafeDocumentFile, NeverWaitsForADtdThatIsAPipe) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo(folder.path("x.dtd").c_str(), 0600), 0);
  const WorkingFolder here(folder.path().string());
  const std::string path = folder.file("d.xml", "<!DOCTYPE a SYSTEM 'x.dtd'><a/>");

  EXPECT_EQ(refusal(path), "no error");
}

TEST(SafeDocumentFile, NeverOpensASchema) {
  const TempFolder folder;
  const std::string schema = folder.file("x.xsd", "<error");
  const WorkingFolder here(folder.path().string());
  OpenWatch watch(schema);
  const std::string path = folder.file(
      "d.xml",
      "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
      "xsi:noNamespaceSchemaLocation='x.xsd' xmlns:xi='http://www.w3.org/2001/XInclude'>"
      "<xi:include href='x.xsd'/></a>");

  EXPECT_EQ(refusal(path), "no error");

  EXPECT_FALSE(watch.opened());
}

}  // namespace

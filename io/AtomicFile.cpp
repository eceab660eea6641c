#include "io/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>
#include <utility>

#include "io/IoError.h"
#include "io/descriptor.h"

namespace orbseq {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 16U;

// Where the path leads to, also when nothing is there yet.
fs::path followLinks(const std::string& name) {
  constexpr int kMostLinks = 40;  // as the system's own limit
  fs::path path = name;
  std::error_code error;
  for (int links = 0; fs::is_symlink(path, error); ++links) {
    if (links == kMostLinks) throw FileError(name, "write", ELOOP);
    const fs::path next = fs::read_symlink(path, error);
    if (error) throw FileError(name, "read the link", error.value());
    path = path.parent_path() / next;
  }
  return path;
}

fs::path folderOf(const fs::path& file) {
  const fs::path folder = file.parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

}  // namespace

AtomicFile::AtomicFile(const std::string& path) : name_(path), target_(path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  // Only a file is looked for behind its links: /dev/stdout leads to a pipe that has no name.
  if (!fs::exists(status) || fs::is_regular_file(status)) target_ = followLinks(path);
  if (fs::is_directory(status)) fail("write", EISDIR);
  if (!fs::exists(status) || fs::is_regular_file(status))
    openTemporary();
  else
    openInPlace();
}

AtomicFile::~AtomicFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void AtomicFile::openInPlace() {
  descriptor_ = ::open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail("open");
}

void AtomicFile::openTemporary() {
  static std::atomic<unsigned> counter = 0;
  const bool replaces = ::access(target_.c_str(), F_OK) == 0;
  if (replaces && ::faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) fail("write");
  if (target_.filename().empty()) fail("write", EISDIR);

  constexpr int kTries = 1000;  // names that earlier, killed processes of our number left behind
  for (int tries = 0; descriptor_ < 0; ++tries) {
    fs::path candidate = folderOf(target_) / (".orbseq-" + std::to_string(::getpid()) + "-" +
                                              std::to_string(++counter) + ".tmp");
    descriptor_ = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ >= 0)
      temporary_ = std::move(candidate);
    else if (errno != EEXIST || tries == kTries)
      fail("make a file in the folder of it");
  }
  if (replaces) keepModeOf(target_);
}

// Also called from the constructor, whose exception the destructor does not follow.
void AtomicFile::keepModeOf(const fs::path& existing) {
  struct stat status {};
  bool kept = ::stat(existing.c_str(), &status) == 0;
  if (kept) {
    mode_t mode = status.st_mode & 07777U;
    // A foreign owner stays only where the process may give files away; otherwise the bits that
    // lend the owner's rights must not move to another one.
    if (::fchown(descriptor_, status.st_uid, status.st_gid) != 0) mode &= 01777U;
    kept = ::fchmod(descriptor_, mode) == 0;
  }
  if (kept) return;
  const int error = errno;
  ::close(descriptor_);
  ::unlink(temporary_.c_str());
  fail("keep the permissions", error);
}

void AtomicFile::write(std::string_view bytes) {
  buffer_.append(bytes);
  if (buffer_.size() >= kBufferBytes) flush();
}

void AtomicFile::flush() {
  writeAll(descriptor_, buffer_, name_);
  buffer_.clear();
}

void AtomicFile::prepare() {
  flush();
  if (!temporary_.empty() && ::fsync(descriptor_) != 0) fail("flush to the disk");
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) fail("close");
}

void AtomicFile::commit() {
  if (descriptor_ >= 0) prepare();
  if (temporary_.empty()) return;

  if (::rename(temporary_.c_str(), target_.c_str()) != 0) fail("replace");
  temporary_.clear();
  syncFolder();
}

void AtomicFile::syncFolder() const {
  const int folder = ::open(folderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) fail("open the folder of it");
  const bool synced = ::fsync(folder) == 0 || errno == EINVAL;  // EINVAL: needs no flush there
  const int error = errno;
  ::close(folder);
  if (!synced) fail("flush the folder of it to the disk", error);
}

void AtomicFile::fail(const char* action) const { fail(action, errno); }

void AtomicFile::fail(const char* action, int error) const {
  throw FileError(name_, action, error);
}

}  // namespace orbseq

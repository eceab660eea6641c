#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "common/guards.h"
#include "common/platform/MappedFile.h"

namespace orbseq::platform {

namespace {

[[noreturn]] void fail(int error) { throw std::system_error(error, std::generic_category()); }

// Closes the descriptor at the end; a mapping lasts without it.
class Descriptor {
 public:
  explicit Descriptor(const std::string& path)
      : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (number_ < 0) fail(errno);
  }
  ~Descriptor() { ::close(number_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const noexcept { return number_; }

 private:
  int number_;
};

}  // namespace

MappedFile::MappedFile(const std::string& path) {
  const Descriptor descriptor(path);
  struct stat status {};
  if (::fstat(descriptor.number(), &status) != 0) fail(errno);
  if (S_ISDIR(status.st_mode)) fail(EISDIR);
  if (!S_ISREG(status.st_mode) && guarded("file.mapped kind")) fail(EINVAL);
  if (status.st_size == 0) return;
  size_ = static_cast<std::size_t>(status.st_size);
  void* const data =
      ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE | MAP_POPULATE, descriptor.number(), 0);
  if (data == MAP_FAILED) fail(errno);
  data_ = static_cast<const std::byte*>(data);
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) ::munmap(const_cast<std::byte*>(data_), size_);
}

}  // namespace orbseq::platform

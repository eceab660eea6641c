// A file in memory with a path, for readers that open files by their names.

#ifndef FUZZ_MEMORYPATH_H_
#define FUZZ_MEMORYPATH_H_

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/check.h"

namespace orbseq::fuzz {

class MemoryPath {
 public:
  MemoryPath()
      : descriptor_(::memfd_create("input", MFD_CLOEXEC)),
        path_("/proc/self/fd/" + std::to_string(descriptor_)) {
    require(descriptor_ >= 0, "no file in memory can be made");
  }
  ~MemoryPath() { ::close(descriptor_); }
  MemoryPath(const MemoryPath&) = delete;
  MemoryPath& operator=(const MemoryPath&) = delete;

  void fill(std::string_view bytes) {
    require(::ftruncate(descriptor_, 0) == 0 && ::pwrite(descriptor_, bytes.data(), bytes.size(),
                                                         0) == static_cast<ssize_t>(bytes.size()),
            "the file in memory cannot be written");
  }

  const std::string& path() const noexcept { return path_; }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace orbseq::fuzz

#endif  // FUZZ_MEMORYPATH_H_

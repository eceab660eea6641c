// A file's bytes in memory, read as they are touched.
//
// The file must not be cut short while it is mapped: what reads a byte that is gone ends the
// process. A file that is replaced under its name stays as it was for who has mapped it.
//
// Threads: any number of readers.

#ifndef COMMON_PLATFORM_MAPPEDFILE_H_
#define COMMON_PLATFORM_MAPPEDFILE_H_

#include <cstddef>
#include <span>
#include <string>

namespace orbseq::platform {

class MappedFile {
 public:
  // Throws std::system_error with the errno value of what failed. An empty file has no bytes.
  explicit MappedFile(const std::string& path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // Begins at a page.
  std::span<const std::byte> bytes() const noexcept { return {data_, size_}; }

 private:
  const std::byte* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace orbseq::platform

#endif  // COMMON_PLATFORM_MAPPEDFILE_H_

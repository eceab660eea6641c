// A file stream whose own buffer is replaced by one over bytes in memory: the readers of stored
// forms take file streams, and must read them whether or not a file is open.

#ifndef TESTS_HOSTILE_MEMORYFILE_H_
#define TESTS_HOSTILE_MEMORYFILE_H_

#include <fstream>
#include <ios>
#include <streambuf>
#include <string_view>

namespace orbseq::test {

// Reads the bytes where they are, without a copy. They must outlive the buffer.
class MemoryBuffer : public std::streambuf {
 public:
  explicit MemoryBuffer(std::string_view bytes) {
    char* const begin = const_cast<char*>(bytes.data());  // a buffer that is read alone
    setg(begin, begin, begin + bytes.size());
  }
};

template <class FileStream = std::fstream>
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view bytes) : buffer_(bytes) {
    static_cast<std::ios&>(stream_).rdbuf(&buffer_);
  }

  FileStream& stream() noexcept { return stream_; }

 private:
  MemoryBuffer buffer_;
  FileStream stream_;
};

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_MEMORYFILE_H_

// The bytes of a text file or of standard input, block by block.
//
// The name "-" is standard input, which is not closed at the end. A UTF-8 byte order mark at the
// beginning is skipped; one of UTF-16 is refused. Nothing else is looked at.
//
// Memory: one block of 64 KiB, whatever the file's size.
// Threads: one at a time on one source; standard input has one source a process.
// Errors: FileError when the file cannot be opened or read (a folder, say), also when a signal
//         interrupts a read that waits; InputError for UTF-16.

#ifndef IO_TEXTSOURCE_H_
#define IO_TEXTSOURCE_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orbseq {

class TextSource {
 public:
  explicit TextSource(const std::string& path);

  // The next bytes; empty at the end. The view is valid until the next call.
  std::string_view next();

  // The name for messages: the path, or "standard input".
  const std::string& name() const noexcept { return name_; }
  // Bytes taken from the file so far, the mark included.
  std::uintmax_t bytesRead() const noexcept { return bytesRead_; }
  // The file's size in bytes when it was opened; nothing for a pipe, a device, standard input.
  std::optional<std::uintmax_t> size() const noexcept { return size_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const noexcept;
  };

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;
  std::string block_;
  std::uintmax_t bytesRead_ = 0;
  std::optional<std::uintmax_t> size_;
};

}  // namespace orbseq

#endif  // IO_TEXTSOURCE_H_

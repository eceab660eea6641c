// The bytes of a text file or of standard input, block by block.
//
// The name "-" is standard input, which is not closed at the end. Bytes that begin as gzip does are
// decompressed, member after member; more than kMostExpansion times as many bytes as were read, or
// a member that is cut off, are refused. A UTF-8 byte order mark at the beginning is skipped; one
// of UTF-16 is refused. Nothing else is looked at.
//
// Memory: one block of 64 KiB, or two for gzip, whatever the file's size.
// Threads: one at a time on one source; standard input has one source a process.
// Errors: FileError when the file cannot be opened or read (a folder, say), also when a signal
//         interrupts a read that waits; EnvironmentError when the file has grown or shrunk by the
//         end, so that nobody takes a part for the whole; InputError for UTF-16 and for what is no
//         gzip.

#ifndef IO_TEXTSOURCE_H_
#define IO_TEXTSOURCE_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/Limits.h"

namespace orbseq {

class TextSource {
 public:
  static constexpr std::uintmax_t kMostExpansion = LogLimits::kGzipExpansion;

  explicit TextSource(const std::string& path);
  ~TextSource();
  TextSource(TextSource&&) noexcept;
  TextSource& operator=(TextSource&&) noexcept;

  // The next bytes; empty at the end. The view is valid until the next call.
  std::string_view next();

  // The name for messages: the path, or "standard input".
  const std::string& name() const noexcept { return name_; }
  // Bytes taken from the file so far, the mark included; compressed ones where it is gzip.
  std::uintmax_t bytesRead() const noexcept { return bytesRead_; }
  // The file's size in bytes when it was opened; nothing for a pipe, a device, standard input.
  std::optional<std::uintmax_t> size() const noexcept { return size_; }

 private:
  class Inflater;

  std::string_view nextRaw();
  void checkSize() const;
  std::string_view nextInflated();

  struct Close {
    void operator()(std::FILE* file) const noexcept;
  };

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;
  std::string block_;
  std::uintmax_t bytesRead_ = 0;
  std::uintmax_t bytesGiven_ = 0;       // decompressed, where it is gzip
  std::unique_ptr<Inflater> inflater_;  // null: plain
  std::optional<std::uintmax_t> size_;
};

}  // namespace orbseq

#endif  // IO_TEXTSOURCE_H_

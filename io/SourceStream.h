// An input stream over a file, a pipe or standard input, whose first bytes can be looked at before
// it is read, and which knows its line.
//
// The name "-" is standard input, which is not closed at the end.
//
// Threads: one at a time; standard input has one source a process. Errors: FileError when it cannot
// be opened; after that a stream like any other, which fails where the file cannot be read.

#ifndef IO_SOURCESTREAM_H_
#define IO_SOURCESTREAM_H_

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace orbseq {

class SourceStream : public std::istream {
 public:
  explicit SourceStream(const std::string& path);
  ~SourceStream() override;

  // The name for messages: the path, or "standard input".
  const std::string& name() const noexcept { return name_; }

  // The first bytes, up to 64 KiB; nothing is consumed. Only before anything is read.
  std::string_view head();

  // Throws FileError when the file could not be read, as opposed to: has ended.
  void throwIfUnreadable() const;

  std::uint64_t offset() const noexcept;  // bytes consumed
  std::size_t line() const noexcept;      // of the latest byte consumed, from 1
  // What that line says as far as it is consumed and still held, without its line feed; valid until
  // more is read.
  std::string_view lineText() const noexcept;

 private:
  class Buffer;

  std::string name_;
  std::unique_ptr<Buffer> buffer_;
};

}  // namespace orbseq

#endif  // IO_SOURCESTREAM_H_

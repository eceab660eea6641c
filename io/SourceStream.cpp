#include "io/SourceStream.h"

#include <stdio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <locale>
#include <streambuf>

#include "common/guards.h"
#include "io/IoError.h"
#include "io/descriptor.h"

namespace orbseq {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

}  // namespace

class SourceStream::Buffer final : public std::streambuf {
 public:
  Buffer() = default;
  ~Buffer() override {
    if (file_ != stdin) std::fclose(file_);
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  // Reads this file, which it then owns, in the place of standard input.
  void take(std::FILE* file) noexcept { file_ = file; }

  std::string_view block() {
    if (gptr() == egptr()) underflow();
    return {gptr(), static_cast<std::size_t>(egptr() - gptr())};
  }
  std::uint64_t offset() const noexcept {
    return offset_ + static_cast<std::uint64_t>(gptr() - eback());
  }
  std::size_t line() const noexcept {
    const char latest = gptr() != eback() ? gptr()[-1] : last_;
    return lines_ + linesTo(gptr()) + (latest == '\n' ? 0 : 1);
  }
  std::string_view lineText() const noexcept {
    std::string_view text(eback(), static_cast<std::size_t>(gptr() - eback()));
    if (text.ends_with('\n')) text.remove_suffix(1);
    return text.substr(text.rfind('\n') + 1);  // from 0 where there is none
  }
  int error() const noexcept { return error_; }

 protected:
  int_type underflow() override {
    lines_ += linesTo(egptr());
    if (egptr() != eback()) last_ = egptr()[-1];
    offset_ += static_cast<std::uint64_t>(egptr() - eback());
    const auto read = readAll(::fileno(file_), block_);  // past the buffer of the file
    if (!read) error_ = errno;
    const std::size_t got = read.value_or(0);
    setg(block_.data(), block_.data(), block_.data() + got);
    return got == 0 ? traits_type::eof() : traits_type::to_int_type(block_.front());
  }

 private:
  std::size_t linesTo(const char* end) const noexcept {
    return static_cast<std::size_t>(std::count(static_cast<const char*>(eback()), end, '\n'));
  }

  std::FILE* file_ = stdin;
  std::array<char, kBlockBytes> block_;
  std::uint64_t offset_ = 0;  // of the block's first byte
  std::size_t lines_ = 0;     // line feeds before the block
  char last_ = ' ';           // of the block before
  int error_ = 0;
};

SourceStream::SourceStream(const std::string& path)
    : std::istream(nullptr), name_(path == "-" ? "standard input" : path) {
  buffer_ = std::make_unique<Buffer>();  // first, so that no file is left open without memory
  if (path != "-") {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored) && guarded("file.directory"))
      throw FileError(name_, "read", EISDIR);
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    if (file == nullptr) throw FileError(name_, "open", errno);
    buffer_->take(file);
  }
  imbue(std::locale::classic());
  rdbuf(buffer_.get());
}

SourceStream::~SourceStream() = default;

std::string_view SourceStream::head() { return buffer_->block(); }

void SourceStream::throwIfUnreadable() const {
  if (buffer_->error() != 0 && guarded("file.stream"))
    throw FileError(name_, "read", buffer_->error());
}

std::uint64_t SourceStream::offset() const noexcept { return buffer_->offset(); }

std::size_t SourceStream::line() const noexcept { return buffer_->line(); }

std::string_view SourceStream::lineText() const noexcept { return buffer_->lineText(); }

}  // namespace orbseq

#include "io/TextSource.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "io/IoError.h"

namespace orbseq {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

std::FILE* openFile(const std::string& path) {
  if (path == "-") return stdin;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw FileError(path, "open", errno);
  // Blocks are read whole, so that the stream's own buffer would only be one copy more.
  std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

std::optional<std::uintmax_t> sizeOf(const std::string& path) {
  std::error_code error;
  if (path == "-" || !std::filesystem::is_regular_file(path, error)) return std::nullopt;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? std::nullopt : std::optional(size);
}

}  // namespace

void TextSource::Close::operator()(std::FILE* file) const noexcept {
  if (file != stdin) std::fclose(file);
}

TextSource::TextSource(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(openFile(path)),
      block_(kBlockBytes, '\0'),
      size_(sizeOf(path)) {}

std::string_view TextSource::next() {
  errno = 0;
  const std::size_t count = std::fread(block_.data(), 1, block_.size(), file_.get());
  if (count < block_.size() && std::ferror(file_.get()) != 0) throw FileError(name_, "read", errno);

  std::string_view bytes(block_.data(), count);
  if (bytesRead_ == 0) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
      throw InputError(name_, 1, 1, "the file is UTF-16; UTF-8 is wanted");
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  }
  bytesRead_ += count;
  if (bytes.empty() && count > 0) return next();
  return bytes;
}

}  // namespace orbseq

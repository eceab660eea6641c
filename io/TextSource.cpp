#include "io/TextSource.h"

#include <stdio.h>
#include <zlib.h>

#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

#include "common/guards.h"
#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/descriptor.h"

namespace orbseq {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

std::FILE* openFile(const std::string& path) {
  if (path == "-") return stdin;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw FileError(path, "open", errno);
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

// Decompresses gzip members from one block of raw bytes into another of plain ones.
class TextSource::Inflater {
 public:
  Inflater() : plain_(kBlockBytes, '\0') {
    constexpr int kGzip = 16 + MAX_WBITS;  // gzip headers alone
    if (inflateInit2(&stream_, kGzip) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  bool wantsBytes() const noexcept { return stream_.avail_in == 0; }
  bool isInMember() const noexcept { return isInMember_; }
  void give(std::string_view raw) noexcept {
    // zlib reads from it alone.
    stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(raw.data()));
    stream_.avail_in = static_cast<uInt>(raw.size());
  }

  // Plain bytes of what was given; nothing when it is used up. False when it is no gzip.
  bool inflateSome(std::string_view& plain) {
    if (!isInMember_) inflateReset(&stream_);
    isInMember_ = true;
    stream_.next_out = reinterpret_cast<Bytef*>(plain_.data());
    stream_.avail_out = static_cast<uInt>(plain_.size());
    const int status = ::inflate(&stream_, Z_NO_FLUSH);
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) return false;
    if (status == Z_STREAM_END) isInMember_ = false;
    plain = std::string_view(plain_).substr(0, plain_.size() - stream_.avail_out);
    return true;
  }

 private:
  z_stream stream_{};
  std::string plain_;
  bool isInMember_ = false;
};

TextSource::TextSource(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(openFile(path)),
      block_(kBlockBytes, '\0'),
      size_(sizeOf(path)) {}

TextSource::~TextSource() = default;
TextSource::TextSource(TextSource&&) noexcept = default;
TextSource& TextSource::operator=(TextSource&&) noexcept = default;

std::string_view TextSource::nextRaw() {
  // Blocks are read whole, past the stream's own buffer, which would only be one copy more.
  const auto read = readAll(::fileno(file_.get()), block_);
  if (!read && guarded("file.read")) throw FileError(name_, "read", errno);
  const std::size_t count = read.value_or(0);
  bytesRead_ += count;
  if (count == 0) checkSize();
  return {block_.data(), count};
}

// At the end. Files that the system makes up have no size of their own.
void TextSource::checkSize() const {
  if (size_.value_or(0) != 0 && bytesRead_ != *size_ && guarded("file.changed"))
    throw OrbScore::EnvironmentError(name_ + ": the file changed while it was read: of " +
                                     std::to_string(*size_) + " bytes at the beginning, " +
                                     std::to_string(bytesRead_) + " at the end");
}

std::string_view TextSource::nextInflated() {
  for (;;) {
    if (inflater_->wantsBytes()) {
      const std::string_view raw = nextRaw();
      if (raw.empty()) {
        if (inflater_->isInMember() && guarded("gzip.end"))
          throw InputError(name_, 0, "the gzip data end too early");
        return {};
      }
      inflater_->give(raw);
    }
    std::string_view plain;
    if (!inflater_->inflateSome(plain) && guarded("gzip.data"))
      throw InputError(name_, 0, "byte " + std::to_string(bytesRead_) + " or before: no gzip data");
    bytesGiven_ += plain.size();
    if (bytesGiven_ > kMostExpansion * bytesRead_ && guarded("gzip.expansion"))
      throw InputError(name_, 0,
                       "the gzip data expand to more than " + std::to_string(kMostExpansion) +
                           " times their size, the limit");
    if (!plain.empty()) return plain;
  }
}

std::string_view TextSource::next() {
  const bool isFirst = bytesRead_ == 0;
  std::string_view bytes = inflater_ ? nextInflated() : nextRaw();
  if (!isFirst) return bytes;
  if (bytes.starts_with("\x1F\x8B")) {
    inflater_ = std::make_unique<Inflater>();
    inflater_->give(bytes);
    bytes = nextInflated();
  }
  if ((bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) && guarded("text.UTF-16"))
    throw InputError(name_, 1, 1, "the file is UTF-16; UTF-8 is wanted");
  if (!bytes.starts_with("\xEF\xBB\xBF")) return bytes;
  bytes.remove_prefix(3);
  return bytes.empty() ? next() : bytes;
}

}  // namespace orbseq

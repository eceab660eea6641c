#include "io/SinkStream.h"

#include <exception>
#include <locale>
#include <streambuf>
#include <utility>
#include <vector>

namespace orbseq {

class SinkStream::Buffer final : public std::streambuf {
 public:
  explicit Buffer(Sink sink) : sink_(std::move(sink)), block_(kBlockBytes) {
    setp(block_.data(), block_.data() + block_.size());
  }

  bool handOver() {
    if (error_) return false;
    try {
      sink_({pbase(), static_cast<std::size_t>(pptr() - pbase())});
    } catch (...) {
      error_ = std::current_exception();
      return false;
    }
    setp(block_.data(), block_.data() + block_.size());
    return true;
  }

  void rethrow() const {
    if (error_) std::rethrow_exception(error_);
  }

 protected:
  int_type overflow(int_type c) override {
    if (!handOver()) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }
  // A flush of the stream is no reason to hand over a small block; finish() is.
  int sync() override { return error_ ? -1 : 0; }

 private:
  static constexpr std::size_t kBlockBytes = std::size_t{1} << 16U;

  Sink sink_;
  std::vector<char> block_;
  std::exception_ptr error_;
};

SinkStream::SinkStream(Sink sink)
    : std::ostream(nullptr), buffer_(std::make_unique<Buffer>(std::move(sink))) {
  imbue(std::locale::classic());
  rdbuf(buffer_.get());
}

SinkStream::~SinkStream() = default;

void SinkStream::finish() {
  static_cast<void>(buffer_->handOver());
  buffer_->rethrow();
}

}  // namespace orbseq

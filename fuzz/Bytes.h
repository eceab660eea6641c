// Draws small numbers from the bytes of a fuzz input, one after the other. Used up, it draws zeros,
// so that every input has a meaning and a short one a simple meaning.

#ifndef FUZZ_BYTES_H_
#define FUZZ_BYTES_H_

#include <cstddef>
#include <cstdint>

namespace orbseq::fuzz {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) noexcept : data_(data), size_(size) {}

  bool isUsedUp() const noexcept { return at_ == size_; }

  // 0 .. 255
  int byte() noexcept { return at_ == size_ ? 0 : data_[at_++]; }

  // 0 .. bound - 1. Requires 1 <= bound <= 256.
  int below(int bound) noexcept { return byte() % bound; }

  std::int32_t integer() noexcept {
    std::uint32_t value = 0;
    for (int shift = 0; shift < 32; shift += 8)
      value |= static_cast<std::uint32_t>(byte()) << shift;
    return static_cast<std::int32_t>(value);
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

}  // namespace orbseq::fuzz

#endif  // FUZZ_BYTES_H_

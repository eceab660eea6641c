// An array that only grows and whose elements are not initialised: working memory that is filled
// anew again and again.
//
// Threads: one at a time.

#ifndef MINING_SCRATCH_H_
#define MINING_SCRATCH_H_

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>

namespace orbseq {

template <class T>
class Scratch {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  // Room for `size` elements, of undefined content.
  T* resize(std::size_t size) {
    if (size > room_) {
      const std::size_t room = std::max(size, room_ + room_ / 2);
      data_.reset();  // first, so that the peak is not both
      room_ = 0;
      data_ = std::make_unique_for_overwrite<T[]>(room);
      room_ = room;
    }
    size_ = size;
    return data_.get();
  }
  T* assign(std::size_t size, const T& value) {
    std::fill_n(resize(size), size, value);
    return data();
  }

  T* data() noexcept { return data_.get(); }
  const T* data() const noexcept { return data_.get(); }
  std::size_t size() const noexcept { return size_; }
  T& operator[](std::size_t i) noexcept { return data_[i]; }
  const T& operator[](std::size_t i) const noexcept { return data_[i]; }
  std::span<const T> view() const noexcept { return {data_.get(), size_}; }
  std::size_t memoryBytes() const noexcept { return room_ * sizeof(T); }

 private:
  std::unique_ptr<T[]> data_;
  std::size_t size_ = 0;
  std::size_t room_ = 0;
};

}  // namespace orbseq

#endif  // MINING_SCRATCH_H_

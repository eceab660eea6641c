// Scratch objects that threads borrow from each other: as many are made as are in use at once, and
// some of them kept.
//
// No locks: a thread takes what stands in one of kSlots places, or makes a new object, and puts it
// back where a place is free.
//
// Threads: any number. The pool must outlive what was borrowed.

#ifndef ENGINE_POOL_H_
#define ENGINE_POOL_H_

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>

namespace orbseq::engine {

template <class T>
class Pool {
 public:
  static constexpr std::size_t kSlots = 64;

  Pool() = default;
  ~Pool() {
    for (auto& slot : slots_) delete slot.load(std::memory_order_acquire);
  }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;

  class Borrowed {
   public:
    explicit Borrowed(Pool& pool) : pool_(pool), object_(pool.take()) {}
    ~Borrowed() { pool_.put(std::move(object_)); }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_.get(); }

   private:
    Pool& pool_;
    std::unique_ptr<T> object_;
  };

 private:
  std::unique_ptr<T> take() {
    for (auto& slot : slots_) {
      if (slot.load(std::memory_order_relaxed) == nullptr) continue;
      if (T* const object = slot.exchange(nullptr, std::memory_order_acquire))
        return std::unique_ptr<T>(object);
    }
    return std::make_unique<T>();
  }

  void put(std::unique_ptr<T> object) noexcept {
    for (auto& slot : slots_) {
      T* none = nullptr;
      if (slot.load(std::memory_order_relaxed) == nullptr &&
          slot.compare_exchange_strong(none, object.get(), std::memory_order_release,
                                       std::memory_order_relaxed)) {
        static_cast<void>(object.release());
        return;
      }
    }
  }

  std::array<std::atomic<T*>, kSlots> slots_{};
};

}  // namespace orbseq::engine

#endif  // ENGINE_POOL_H_

// A customer's history as the engine reads it: item sets, oldest first, of items by their numbers.
//
// The items of a set ascend without duplicates; a set may be empty, and counts as one. Times play
// no part in answers and are not kept. An object can be refilled without allocating anew.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef ENGINE_HISTORY_H_
#define ENGINE_HISTORY_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace orbseq::engine {

class History {
 public:
  void clear() noexcept {
    items_.clear();
    ends_.clear();
  }

  // Items of the set that is being filled, in any order; then endSet().
  void addItem(std::int32_t item) { items_.push_back(item); }
  void endSet() {
    const std::ptrdiff_t begin = ends_.empty() ? 0 : static_cast<std::ptrdiff_t>(ends_.back());
    const auto first = items_.begin() + begin;
    // Most sets come in order.
    if (std::adjacent_find(first, items_.end(), std::greater_equal<>()) != items_.end()) {
      std::sort(first, items_.end());
      items_.erase(std::unique(first, items_.end()), items_.end());
    }
    ends_.push_back(items_.size());
  }
  void addSet(std::span<const std::int32_t> items) {
    items_.insert(items_.end(), items.begin(), items.end());
    endSet();
  }

  std::size_t sets() const noexcept { return ends_.size(); }
  std::size_t items() const noexcept { return items_.size(); }
  std::span<const std::int32_t> set(std::size_t k) const noexcept {
    return {items_.data() + firstItem(k), ends_[k] - firstItem(k)};
  }
  std::size_t firstItem(std::size_t k) const noexcept { return k == 0 ? 0 : ends_[k - 1]; }

 private:
  std::vector<std::int32_t> items_;
  std::vector<std::size_t> ends_;  // one past each set's last item
};

}  // namespace orbseq::engine

#endif  // ENGINE_HISTORY_H_

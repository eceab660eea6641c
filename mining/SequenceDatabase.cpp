#include "mining/SequenceDatabase.h"

#include <algorithm>

namespace orbseq {

void SequenceDatabase::beginCustomer() {
  finish();
  isInCustomer_ = true;
}

void SequenceDatabase::beginSet(double time) {
  endSet();
  times_.push_back(time);
  isInSet_ = true;
}

void SequenceDatabase::finish() {
  endSet();
  if (isInCustomer_) customerEnds_.push_back(setEnds_.size());
  isInCustomer_ = false;
}

// Sorts the open set, and drops it when it is empty and not to be kept.
void SequenceDatabase::endSet() {
  if (!isInSet_) return;
  isInSet_ = false;
  const auto begin =
      items_.begin() + static_cast<std::ptrdiff_t>(setEnds_.empty() ? 0 : setEnds_.back());
  if (!std::is_sorted(begin, items_.end())) std::sort(begin, items_.end());
  items_.erase(std::unique(begin, items_.end()), items_.end());
  if (!keepsEmptySets_ && items_.size() == (setEnds_.empty() ? 0 : setEnds_.back()))
    times_.pop_back();
  else
    setEnds_.push_back(items_.size());
}

std::size_t SequenceDatabase::memoryBytes() const noexcept {
  return items_.capacity() * sizeof(std::int32_t) +
         (setEnds_.capacity() + customerEnds_.capacity()) * sizeof(std::size_t) +
         times_.capacity() * sizeof(double);
}

}  // namespace orbseq

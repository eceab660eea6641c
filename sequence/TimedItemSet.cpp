#include "sequence/TimedItemSet.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace SEQUENCE_NAMESPACE_800 {

namespace {

constexpr double kTimeTolerance = std::numeric_limits<double>::epsilon();  // 2^-52

}  // namespace

struct TimedItemSet::Body {
  std::vector<std::int32_t> items;  // strictly ascending
  double time = 0.0;
};

TimedItemSet::TimedItemSet() : body_(std::make_unique<Body>()) {}

TimedItemSet::TimedItemSet(int, double time) : TimedItemSet() { body_->time = time; }

TimedItemSet::TimedItemSet(const TimedItemSet& other)
    : body_(std::make_unique<Body>(*other.body_)) {}

TimedItemSet::~TimedItemSet() = default;

// Deliberate: assignment is a union, and the target keeps its own time.
TimedItemSet& TimedItemSet::operator=(const TimedItemSet& other) {
  if (this == &other) return *this;
  const std::vector<std::int32_t>& theirs = other.body_->items;
  std::vector<std::int32_t> merged;
  merged.reserve(body_->items.size() + theirs.size());
  std::set_union(body_->items.begin(), body_->items.end(), theirs.begin(), theirs.end(),
                 std::back_inserter(merged));
  body_->items.swap(merged);
  return *this;
}

void TimedItemSet::AddItem(std::int32_t item) {
  std::vector<std::int32_t>& items = body_->items;
  if (items.empty() || items.back() < item) {
    items.push_back(item);
    return;
  }
  const auto place = std::lower_bound(items.begin(), items.end(), item);
  if (*place != item) items.insert(place, item);
}

void TimedItemSet::AddAllItems(const std::int32_t* items, std::int32_t count, double time) {
  std::vector<std::int32_t> sorted;
  if (count > 0) sorted.assign(items, items + count);
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  body_->items.swap(sorted);
  body_->time = time;
}

void TimedItemSet::Clear() noexcept {
  body_->items.clear();
  body_->time = 0.0;
}

std::int32_t TimedItemSet::Size() const noexcept {
  return static_cast<std::int32_t>(body_->items.size());
}

double TimedItemSet::GetTime() const noexcept { return body_->time; }

void TimedItemSet::SetTime(double time) noexcept { body_->time = time; }

TimedItemSet::const_iterator TimedItemSet::Begin() const noexcept { return body_->items.cbegin(); }

TimedItemSet::const_iterator TimedItemSet::End() const noexcept { return body_->items.cend(); }

bool TimedItemSet::operator<(const TimedItemSet& other) const noexcept {
  return body_->items < other.body_->items;
}

bool TimedItemSet::operator==(const TimedItemSet& other) const noexcept {
  return std::fabs(other.body_->time - body_->time) < kTimeTolerance &&
         body_->items == other.body_->items;
}

}  // namespace SEQUENCE_NAMESPACE_800

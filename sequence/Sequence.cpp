#include "sequence/Sequence.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include "common/OrbStatus.h"

namespace SEQUENCE_NAMESPACE_800 {

using OrbCommon_830::OrbStatus;

namespace {

constexpr std::int32_t kIndexOutOfRange = 60001;
constexpr int kUsualCapacity = 2;

[[noreturn]] void throwIndexOutOfRange(std::int32_t datum) {
  OrbStatus status(kIndexOutOfRange, false);
  status.SetDiscreteDatum(0, datum);
  throw status;
}

}  // namespace

struct Sequence::Body {
  std::vector<std::unique_ptr<TimedItemSet>> sets;  // none is null

  bool has(std::int32_t i) const noexcept {
    return i >= 0 && static_cast<std::size_t>(i) < sets.size();
  }

  // Appends copies of source[from ..]; either all of them or, on failure, none.
  void append(const std::vector<std::unique_ptr<TimedItemSet>>& source, std::size_t from) {
    const std::size_t end = source.size();  // fixed: `source` may be `sets`
    if (from >= end) return;
    std::vector<std::unique_ptr<TimedItemSet>> copies;
    copies.reserve(end - from);
    for (std::size_t i = from; i < end; ++i)
      copies.push_back(std::make_unique<TimedItemSet>(*source[i]));
    sets.insert(sets.end(), std::make_move_iterator(copies.begin()),
                std::make_move_iterator(copies.end()));
  }
};

Sequence::Sequence() : Sequence(kUsualCapacity) {}

Sequence::Sequence(int capacity) : body_(std::make_unique<Body>()) {
  if (capacity > 0) body_->sets.reserve(static_cast<std::size_t>(capacity));
}

Sequence::Sequence(const Sequence& other) : Sequence(other.Length()) {
  body_->append(other.body_->sets, 0);
}

Sequence::~Sequence() = default;

// Deliberate: assignment appends, like a set's assignment merges.
Sequence& Sequence::operator=(const Sequence& other) {
  if (this != &other) body_->append(other.body_->sets, 0);
  return *this;
}

std::int32_t Sequence::Size() const noexcept {
  std::int32_t items = 0;
  for (const auto& set : body_->sets) items += set->Size();
  return items;
}

std::int32_t Sequence::Length() const noexcept {
  return static_cast<std::int32_t>(body_->sets.size());
}

const TimedItemSet* Sequence::operator[](std::int32_t i) const {
  if (!body_->has(i)) throwIndexOutOfRange(Length());
  return body_->sets[static_cast<std::size_t>(i)].get();
}

double Sequence::GetTimeOfTimedItemSet(std::int32_t i) const {
  if (!body_->has(i)) throwIndexOutOfRange(i);
  return body_->sets[static_cast<std::size_t>(i)]->GetTime();
}

void Sequence::AddTimedItemSet(const TimedItemSet* set) {
  if (set != nullptr) body_->sets.push_back(std::make_unique<TimedItemSet>(*set));
}

void Sequence::JoinTemporal(const Sequence* other) {
  if (other != nullptr) body_->append(other->body_->sets, 0);
}

void Sequence::JoinCurrent(const Sequence* other) {
  if (other == nullptr || other->body_->sets.empty()) return;
  if (body_->sets.empty()) {
    body_->append(other->body_->sets, 0);
    return;
  }
  auto merged = std::make_unique<TimedItemSet>(*body_->sets.back());
  *merged = *other->body_->sets.front();  // a union that keeps the time
  const std::size_t last = body_->sets.size() - 1;
  body_->append(other->body_->sets, 1);
  body_->sets[last] = std::move(merged);
}

void Sequence::Clear() noexcept { body_->sets.clear(); }

bool Sequence::operator<(const Sequence& other) const noexcept {
  const auto less = [](const auto& a, const auto& b) { return *a < *b; };
  return std::lexicographical_compare(body_->sets.begin(), body_->sets.end(),
                                      other.body_->sets.begin(), other.body_->sets.end(), less);
}

bool Sequence::operator==(const Sequence& other) const noexcept {
  const auto equal = [](const auto& a, const auto& b) { return *a == *b; };
  return std::equal(body_->sets.begin(), body_->sets.end(), other.body_->sets.begin(),
                    other.body_->sets.end(), equal);
}

}  // namespace SEQUENCE_NAMESPACE_800

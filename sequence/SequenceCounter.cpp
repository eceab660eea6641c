#include "sequence/SequenceCounter.h"

#include <limits>
#include <new>

#include "sequence/SeqExceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

StatsBucket::~StatsBucket() = default;

SequenceCounter::SequenceCounter() = default;

SequenceCounter::SequenceCounter(std::int32_t ordinalOfEntry, std::int32_t count,
                                 StatsBucket* stats)
    : count_(count), ordinalOfEntry_(ordinalOfEntry), stats_(stats) {}

SequenceCounter::~SequenceCounter() = default;

void SequenceCounter::incrementCount() noexcept {
  if (count_ < std::numeric_limits<std::int32_t>::max()) ++count_;
}

void SequenceCounter::decrementMaxMissed() noexcept {
  if (maxMissed_ > 0) --maxMissed_;
}

// Deliberate: the caller, not the counter, disposes of the previous bucket.
void SequenceCounter::setStatsBucket(StatsBucket* stats) noexcept {
  static_cast<void>(stats_.release());
  stats_.reset(stats);
}

void SequenceCounter::addAdjacentItem(std::int32_t item, std::int32_t position) {
  try {
    if (!adjacent_) adjacent_ = std::make_unique<AdjacentItems>();
    // Who adds pairs in their order waits for no search.
    adjacent_->emplace_hint(adjacent_->end(), item, position);
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

// Deliberate: the caller, not the counter, disposes of the previous set.
void SequenceCounter::setAdjacentItems(AdjacentItems* items) noexcept {
  static_cast<void>(adjacent_.release());
  adjacent_.reset(items);
}

std::int32_t SequenceCounter::getNAdjacent() const noexcept {
  return adjacent_ ? static_cast<std::int32_t>(adjacent_->size()) : 0;
}

void SequenceCounter::clearAdjacentItems() noexcept {
  if (adjacent_) adjacent_->clear();
}

CarmaSequenceDescriptor::CarmaSequenceDescriptor() = default;

CarmaSequenceDescriptor::~CarmaSequenceDescriptor() = default;

CarmaSequenceDescriptor::CarmaSequenceDescriptor(std::int32_t ordinalOfEntry,
                                                 std::int32_t maxMissed, std::int32_t count)
    : SequenceCounter(ordinalOfEntry, count, nullptr) {
  setMaxMissed(maxMissed);
}

}  // namespace SEQUENCE_NAMESPACE_800

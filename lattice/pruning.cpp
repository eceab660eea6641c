// Thinning a dictionary out: by counts, by bounds, by age, or altogether.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "lattice/SequenceDictionary.h"
#include "lattice/integerThreshold.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqExceptions.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

std::int32_t saturatedSum(std::int32_t a, std::int32_t b) noexcept {
  using Range = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(std::int64_t{a} + b, Range::min(), Range::max()));
}

std::int64_t countOf(const SequenceCounter& counter) noexcept { return counter.getCount(); }

// The upper bound of the true count.
std::int64_t boundOf(const SequenceCounter& counter) noexcept {
  return std::int64_t{counter.getCount()} + counter.getMaxMissed();
}

// Removes what `keeps` refuses. An entry without a counter counts as one of
// zeros. Each step is taken before the entry that it leaves is removed.
template <class Keeps>
std::int32_t removeUnless(HashtableSQPair& table, Keeps keeps) {
  static const SequenceCounter none;
  std::int32_t removed = 0;
  for (auto next = table.begin(); next != table.end();) {
    const ISQCPair entry = *next++;
    if (keeps(entry.value != nullptr ? *entry.value : none)) continue;
    table.remove(entry.key);
    ++removed;
  }
  return removed;
}

}  // namespace

std::int64_t toIntegerThreshold(double threshold) noexcept {
  constexpr double kNoise = 100 * 2.220446049250313e-16;  // of the threshold
  constexpr double kMost = 9e18;
  if (threshold == 0.0 || std::isnan(threshold)) return 0;
  if (threshold > kMost) return static_cast<std::int64_t>(kMost);
  if (threshold < -kMost) return -static_cast<std::int64_t>(kMost);
  const double whole = std::trunc(threshold);
  const double fraction = std::abs(threshold) - std::abs(whole);
  const bool isInteger = whole != 0.0 && fraction / std::abs(threshold) <= kNoise;
  if (isInteger) return static_cast<std::int64_t>(std::floor(threshold + 0.5));
  return static_cast<std::int64_t>(whole) + 1;
}

void SequenceDictionary::remove(const NTSequence* sequence) noexcept {
  if (sequence == nullptr) return;
  if (HashtableSQPair* const table = level(sequence->size())) table->remove(sequence);
}

void SequenceDictionary::remove(const int* const* sets, int n) {
  if (const ISQCPair* const entry = findByScratch(sets, n)) remove(entry->key);
}

void SequenceDictionary::remove(const Sequence& sequence) {
  if (sequence.Size() > NTSequence::kMaxItems) return;
  try {
    const NTSequence packed(&sequence);
    remove(&packed);
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

std::int32_t SequenceDictionary::reduceDictionaryWithCount(int size, double threshold) {
  HashtableSQPair* const table = level(size);
  if (table == nullptr) return 0;
  const std::int64_t least = toIntegerThreshold(threshold);
  return removeUnless(*table, [least](const SequenceCounter& c) { return countOf(c) >= least; });
}

std::int32_t SequenceDictionary::reduceDictionary(int size, double threshold) {
  HashtableSQPair* const table = level(size);
  if (table == nullptr) return 0;
  const std::int64_t least = toIntegerThreshold(threshold);
  return removeUnless(*table, [least](const SequenceCounter& c) { return boundOf(c) >= least; });
}

std::int32_t SequenceDictionary::reduceAllWithCount(double threshold) {
  std::int32_t removed = 0;
  for (std::int32_t i = 1; i < numLevels_; ++i) removed += reduceDictionaryWithCount(i, threshold);
  return removed;
}

std::int32_t SequenceDictionary::reduceAll(double threshold) {
  std::int32_t removed = 0;
  // A level that was empty before ends the walk, one that this call empties
  // does not.
  for (std::int32_t i = 1; i < numLevels_ && CountSequencesOfSize(i) > 0; ++i)
    removed += reduceDictionary(i, threshold);
  const std::int32_t total = customers();
  if (total != 0) reductionThreshold_ = threshold / total;
  return removed;
}

OrbCommon_830::OrbStatus SequenceDictionary::dropAfter(int ordinal) {
  for (std::int32_t i = 1; i < numLevels_; ++i) {
    HashtableSQPair* const table = level(i);
    if (table == nullptr) continue;
    removeUnless(*table,
                 [ordinal](const SequenceCounter& c) { return c.getOrdinalOfEntry() <= ordinal; });
    for (const ISQCPair& entry : *table) {
      if (entry.value == nullptr) continue;
      entry.value->setCount(saturatedSum(entry.value->getCount(), entry.value->getMaxMissed()));
      entry.value->setMaxMissed(0);
    }
  }
  return {};
}

void SequenceDictionary::reset() {
  for (std::int32_t i = 0; i < numLevels_; ++i)
    if (HashtableSQPair* const table = level(i)) table->clear();
  defineLevel0();
}

}  // namespace SEQUENCE_NAMESPACE_800

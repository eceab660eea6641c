// Storing sequences and finding them.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqExceptions.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

bool canBePacked(const int* const* sets, int n) noexcept {
  std::int64_t items = 0;
  for (int k = 0; k < n; ++k) items += std::max(sets[k][0], 0);
  return items <= NTSequence::kMaxItems;
}

}  // namespace

const HashtableSQPair* SequenceDictionary::level(std::int32_t index) const noexcept {
  return levels_ != nullptr && index >= 0 && index < numLevels_ ? levels_[index] : nullptr;
}

HashtableSQPair* SequenceDictionary::level(std::int32_t index) noexcept {
  return const_cast<HashtableSQPair*>(std::as_const(*this).level(index));
}

const ISQCPair* SequenceDictionary::find(const NTSequence& sequence) const noexcept {
  const HashtableSQPair* const table = level(sequence.size());
  return table != nullptr ? table->get(&sequence) : nullptr;
}

const ISQCPair* SequenceDictionary::findByScratch(const int* const* sets, int n) const {
  if (scratch_ == nullptr || !canBePacked(sets, n)) return nullptr;
  try {
    scratch_->reuseAs(sets, n);
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
  return find(*scratch_);
}

const ISQCPair* SequenceDictionary::findEmpty() const noexcept {
  const HashtableSQPair* const bottom = level(0);
  if (bottom == nullptr) return nullptr;
  for (const ISQCPair& entry : *bottom)  // not by look-up: it must not need memory for a key
    if (entry.key->size() == 0 && entry.key->getPattern() == 0 && entry.key->HashCode() == 0)
      return &entry;
  return nullptr;
}

bool SequenceDictionary::addSequence(const int* const* sets, int n,
                                     const SequenceCounter* counter) {
  if (!canBePacked(sets, n)) return false;
  try {
    auto key = std::make_unique<NTSequence>(sets, n);
    HashtableSQPair* const table = level(key->size());
    if (table == nullptr) return false;
    std::unique_ptr<SequenceCounter> own;
    if (counter != nullptr) {
      own = std::make_unique<SequenceCounter>(counter->getOrdinalOfEntry(), counter->getCount(),
                                              nullptr);
      own->setMaxMissed(counter->getMaxMissed());
    }
    table->putOverwrite(key.get(), own.get());
    static_cast<void>(key.release());
    static_cast<void>(own.release());
    return true;
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

SequenceCounter* SequenceDictionary::incrementCount(const int* const* sets, int n) {
  SequenceCounter* const counter = getDescriptor(sets, n);
  if (counter != nullptr) counter->incrementCount();
  return counter;
}

SequenceCounter* SequenceDictionary::getDescriptor(const NTSequence* sequence) const noexcept {
  const ISQCPair* const entry = find(*sequence);
  return entry != nullptr ? entry->value : nullptr;
}

const SequenceCounter* SequenceDictionary::getDescriptor(const Sequence* sequence) const {
  if (scratch_ == nullptr || sequence->Size() > NTSequence::kMaxItems) return nullptr;
  try {
    scratch_->reuseAs(sequence);
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
  return getDescriptor(scratch_);
}

SequenceCounter* SequenceDictionary::getDescriptor(const int* const* sets, int n) const {
  const ISQCPair* const entry = findByScratch(sets, n);
  return entry != nullptr ? entry->value : nullptr;
}

NTSequence* SequenceDictionary::getSequence(const int* const* sets, int n) const {
  const ISQCPair* const entry = findByScratch(sets, n);
  return entry != nullptr ? entry->key : nullptr;
}

bool SequenceDictionary::isStored(const NTSequence& sequence) const noexcept {
  return find(sequence) != nullptr;
}

std::int32_t SequenceDictionary::customers() const noexcept {
  const ISQCPair* const empty = findEmpty();
  return empty != nullptr && empty->value != nullptr ? empty->value->getCount() : 0;
}

bool SequenceDictionary::hasSequence(const int* const* sets, int n) const {
  return findByScratch(sets, n) != nullptr;
}

}  // namespace SEQUENCE_NAMESPACE_800

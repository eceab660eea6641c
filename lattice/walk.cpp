// The upward walks: every stored sequence that can be reached from a start by adding items.

#include <memory>
#include <set>
#include <utility>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Which adjacency codes of a sequence a walk follows.
using Allows = bool (*)(std::int32_t code, std::int32_t sets);

bool isEven(std::int32_t code) { return code % 2 == 0; }
bool anywhere(std::int32_t, std::int32_t) { return true; }
bool endingAlike(std::int32_t code, std::int32_t) { return code == 1 || isEven(code); }
bool beginningAlike(std::int32_t code, std::int32_t sets) {
  return code == 2 * sets + 1 || isEven(code);
}

struct Walk {
  const SequenceDictionary& dictionary;
  std::set<Sequence*>& out;
  std::int32_t minCount;
  std::int32_t maxCount;
  Allows allows;

  void run(const Sequence* start) const;

 private:
  const SequenceCounter* counterOf(const NTSequence& sequence) const {
    return dictionary.getDescriptor(&sequence);
  }
  void extend(const NTSequence& sequence, HashtableSQPair& next) const;
  void report(const NTSequence& sequence) const;
};

void Walk::run(const Sequence* start) const {
  if (start == nullptr || start->Size() > NTSequence::kMaxItems) return;
  auto first = std::make_unique<NTSequence>(start);
  const SequenceCounter* const counter = counterOf(*first);
  if (counter == nullptr || counter->getCount() < minCount) return;

  auto frontier = std::make_unique<HashtableSQPair>();
  frontier->put(first.get(), nullptr);
  static_cast<void>(first.release());
  while (frontier->getSize() > 0) {
    auto next = std::make_unique<HashtableSQPair>();
    for (const ISQCPair& entry : *frontier) {
      extend(*entry.key, *next);
      report(*entry.key);
    }
    frontier = std::move(next);
  }
}

void Walk::extend(const NTSequence& sequence, HashtableSQPair& next) const {
  const SequenceCounter* const counter = counterOf(sequence);
  if (counter == nullptr || counter->getNAdjacent() == 0) return;
  if (sequence.size() >= NTSequence::kMaxItems) return;
  for (const auto& [item, code] : *counter->getAdjacentItems()) {
    if (!allows(code, sequence.getNSets()) || !sequence.isPosition(code)) continue;
    auto longer = std::make_unique<NTSequence>(sequence, item, code);
    const SequenceCounter* const longerCounter = counterOf(*longer);
    if (longerCounter == nullptr || longerCounter->getCount() < minCount) continue;
    if (next.put(longer.get(), nullptr)) static_cast<void>(longer.release());
  }
}

void Walk::report(const NTSequence& sequence) const {
  const SequenceCounter* const counter = counterOf(sequence);
  if (counter == nullptr || counter->getCount() > maxCount) return;
  std::unique_ptr<Sequence> owned(sequence.createSequence());
  out.insert(owned.get());
  static_cast<void>(owned.release());
}

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::FindSequences(const Sequence* start,
                                                           std::set<Sequence*>& out, int minCount,
                                                           int maxCount) const {
  Walk{*this, out, minCount, maxCount, anywhere}.run(start);
  return {};
}

OrbCommon_830::OrbStatus SequenceDictionary::FindSequencesBeginning(const Sequence* start,
                                                                    std::set<Sequence*>& out,
                                                                    int minCount,
                                                                    int maxCount) const {
  Walk{*this, out, minCount, maxCount, beginningAlike}.run(start);
  return {};
}

OrbCommon_830::OrbStatus SequenceDictionary::FindSequencesEnding(const Sequence* start,
                                                                 std::set<Sequence*>& out,
                                                                 int minCount, int maxCount) const {
  Walk{*this, out, minCount, maxCount, endingAlike}.run(start);
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

// What the stored sequences of a history propose, one proposal at a time. For this room alone.
//
// Each stored sequence found in the history proposes its one-item extensions at one kind of place:
// as a new last item set (future items), or in the last one (current items). An extension without a
// counter is none; a count of 0 under a fraction leaves the proposal out; an item that is not
// stored by itself has the cause 0.

#ifndef LATTICE_PROPOSALS_H_
#define LATTICE_PROPOSALS_H_

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

// `consequent`, from `sequence`, which `count` customers hold, and `together` with the extension.
struct Proposed {
  const NTSequence& sequence;
  std::int32_t count;
  std::int32_t together;
  std::int32_t position;  // adjacency code of the place
  std::int32_t skipped;   // item sets left out at the end of the history
  SeqConsequentDescriptor consequent;
};

// Whether a proposal takes the place of another for the same item; the first of equals stays.
inline bool isBetter(const SeqConsequentDescriptor& a, const SeqConsequentDescriptor& b) noexcept {
  if (a.GetConfidence() != b.GetConfidence()) return a.GetConfidence() > b.GetConfidence();
  return a.GetSupport() > b.GetSupport();
}

// The order of an answer: confidence descending, larger items first among equals.
inline bool ranksBefore(const SeqConsequentDescriptor& a,
                        const SeqConsequentDescriptor& b) noexcept {
  if (a.GetConfidence() != b.GetConfidence()) return a.GetConfidence() > b.GetConfidence();
  return a.GetItem() > b.GetItem();
}

inline bool isWithoutSets(const Sequence* customer) {
  return customer == nullptr || customer->Length() == 0;
}

class Proposals {
 public:
  explicit Proposals(const SequenceDictionary& dictionary) : dictionary_(dictionary) {
    const SequenceCounter* const all = dictionary.getDescriptor(&empty_);
    customers_ = all == nullptr ? 0 : all->getCount();
  }

  // Deliberate: without a history the answer is what is most popular.
  template <class Each>
  void popular(Each each) const {
    const HashtableSQPair* const singles = dictionary_.getTable(1);
    if (singles == nullptr || customers_ == 0) return;
    for (const ISQCPair& entry : *singles) {
      if (entry.key->size() != 1 || entry.value == nullptr) continue;
      const std::int32_t count = entry.value->getCount();
      const double share = static_cast<double>(count) / customers_;
      each(Proposed{
          empty_, customers_, count, 1, 0, {entry.key->items().front(), share, share, 1.0}});
    }
  }

  template <class Each>
  void current(const Sequence& customer, Each each) const {
    Items present;  // of the customer's own last set, known to the lattice or not
    addItems(present, *customer[customer.Length() - 1]);
    const auto joinsLastSet = [](const NTSequence& found) { return 2 * (found.getNSets() - 1); };
    extensions(customer, 0, joinsLastSet, present, each);
  }

  // False when `isCancelled` answered true between two passes.
  template <class Each, class IsCancelled>
  bool future(const Sequence& customer, bool wholeOnly, Each each, IsCancelled isCancelled) const {
    Items skipped;  // an item seen after a beginning of the history is not predicted from it
    const std::int32_t sets = customer.Length();
    const auto newLastSet = [](const NTSequence& found) { return 2 * found.getNSets() + 1; };
    for (std::int32_t skip = 0; skip < sets; ++skip) {
      if (isCancelled()) return false;
      if (skip >= 1 && wholeOnly) break;
      if (skip >= 1) addItems(skipped, *customer[sets - skip]);
      extensions(customer, skip, newLastSet, skipped, each);
    }
    return true;
  }

 private:
  using Items = std::set<std::int32_t>;

  static void addItems(Items& items, const TimedItemSet& set) {
    items.insert(set.Begin(), set.End());
  }

  std::vector<std::unique_ptr<NTSequence>> search(const Sequence& customer,
                                                  std::int32_t skip) const {
    std::vector<NTSequence*> found;
    dictionary_.getSubsequencesInSequence(found, &customer, skip);
    std::vector<std::unique_ptr<NTSequence>> owned;
    try {
      owned.reserve(found.size());
    } catch (...) {
      for (const NTSequence* sequence : found) delete sequence;
      throw;
    }
    for (NTSequence* sequence : found) owned.emplace_back(sequence);
    return owned;
  }

  // What the sequences found propose at the place whose adjacency code `positionOf` tells.
  template <class PositionOf, class Each>
  void extensions(const Sequence& customer, std::int32_t skip, PositionOf positionOf,
                  const Items& excluded, Each& each) const {
    for (const auto& sequence : search(customer, skip)) {
      const SequenceCounter* const counter = dictionary_.getDescriptor(sequence.get());
      if (counter == nullptr || counter->getNAdjacent() == 0) continue;
      const std::int32_t wanted = positionOf(*sequence);
      for (const auto& [item, position] : *counter->getAdjacentItems())
        if (position == wanted && !excluded.contains(item))
          extension(*sequence, counter->getCount(), {item, position}, skip, each);
    }
  }

  template <class Each>
  void extension(const NTSequence& sequence, std::int32_t count,
                 const SequenceCounter::AdjacentItem& adjacent, std::int32_t skip,
                 Each& each) const {
    const auto& [item, position] = adjacent;
    const NTSequence extended(sequence, item, position);
    const SequenceCounter* const longer = dictionary_.getDescriptor(&extended);
    if (longer == nullptr || count == 0 || customers_ == 0) return;
    const std::int32_t one[] = {1, item};
    const NTSequence single(one);
    const SequenceCounter* const alone = dictionary_.getDescriptor(&single);
    if (alone != nullptr && alone->getCount() == 0) return;
    const double together = longer->getCount();
    each(Proposed{sequence,
                  count,
                  longer->getCount(),
                  position,
                  skip,
                  {item, together / customers_, together / count,
                   alone != nullptr ? together / alone->getCount() : 0.0}});
  }

  const NTSequence empty_;
  const SequenceDictionary& dictionary_;
  std::int32_t customers_ = 0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_PROPOSALS_H_

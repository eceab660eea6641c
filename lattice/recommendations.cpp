// What a customer takes next, and what completes the basket.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "lattice/statusCodes.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

using Items = std::set<std::int32_t>;

// Candidates of one query: the best per item.
class Candidates {
 public:
  Candidates(const SequenceDictionary& dictionary, std::int32_t customers)
      : dictionary_(dictionary), customers_(customers) {}

  // A stored item as it stands, whatever the history.
  void addPopular(std::int32_t item, std::int32_t count) {
    if (customers_ == 0) return;
    const double share = static_cast<double>(count) / customers_;
    merge({item, share, share, 1.0});
  }

  // What the stored sequences of a history propose at one kind of place.
  // `positionOf` gives the adjacency code of that place; items in `excluded` are left out.
  template <class PositionOf>
  void addExtensions(const std::vector<std::unique_ptr<NTSequence>>& found, PositionOf positionOf,
                     const Items& excluded) {
    for (const auto& sequence : found) {
      const SequenceCounter* const counter = dictionary_.getDescriptor(sequence.get());
      if (counter == nullptr || counter->getNAdjacent() == 0) continue;
      const std::int32_t wanted = positionOf(*sequence);
      for (const auto& [item, position] : *counter->getAdjacentItems())
        if (position == wanted && !excluded.contains(item))
          addExtension(*sequence, counter->getCount(), item, position);
    }
  }

  // Appends the best min(maxCount, candidates): confidence descending, larger items first.
  void appendTo(std::vector<SeqConsequentDescriptor>& out, int maxCount) const {
    std::vector<SeqConsequentDescriptor> ranked;
    ranked.reserve(best_.size());
    for (const auto& [item, descriptor] : best_) ranked.push_back(descriptor);
    std::sort(ranked.begin(), ranked.end(),
              [](const SeqConsequentDescriptor& a, const SeqConsequentDescriptor& b) {
                if (a.GetConfidence() != b.GetConfidence())
                  return a.GetConfidence() > b.GetConfidence();
                return a.GetItem() > b.GetItem();
              });
    const std::size_t wanted = maxCount > 0 ? static_cast<std::size_t>(maxCount) : 0;
    const auto count = static_cast<std::ptrdiff_t>(std::min(wanted, ranked.size()));
    out.insert(out.end(), ranked.begin(), ranked.begin() + count);
  }

 private:
  std::int32_t countOf(const NTSequence& sequence, bool& known) const {
    const SequenceCounter* const counter = dictionary_.getDescriptor(&sequence);
    known = counter != nullptr;
    return known ? counter->getCount() : 0;
  }

  // A count of 0 below a fraction leaves the candidate out; an item that is not stored by itself
  // has the cause 0.
  void addExtension(const NTSequence& sequence, std::int32_t count, std::int32_t item,
                    std::int32_t position) {
    bool known = false;
    const std::int32_t longer = countOf(NTSequence(sequence, item, position), known);
    if (!known || count == 0 || customers_ == 0) return;
    const std::int32_t one[] = {1, item};
    const std::int32_t alone = countOf(NTSequence(one), known);
    if (known && alone == 0) return;
    const double together = longer;
    merge({item, together / customers_, together / count, known ? together / alone : 0.0});
  }

  void merge(const SeqConsequentDescriptor& candidate) {
    const auto [place, added] = best_.try_emplace(candidate.GetItem(), candidate);
    if (added) return;
    SeqConsequentDescriptor& best = place->second;
    const bool better = candidate.GetConfidence() > best.GetConfidence();
    const bool equal = candidate.GetConfidence() == best.GetConfidence();
    if (better || (equal && candidate.GetSupport() > best.GetSupport())) best = candidate;
  }

  const SequenceDictionary& dictionary_;
  const std::int32_t customers_;
  std::map<std::int32_t, SeqConsequentDescriptor> best_;
};

void addItems(Items& items, const TimedItemSet& set) { items.insert(set.Begin(), set.End()); }

std::vector<std::unique_ptr<NTSequence>> search(const SequenceDictionary& dictionary,
                                                const Sequence& customer, std::int32_t skip) {
  std::vector<NTSequence*> found;
  dictionary.getSubsequencesInSequence(found, &customer, skip);
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

bool isEmpty(const Sequence* customer) { return customer == nullptr || customer->Length() == 0; }

// {item} as a new last set.
std::int32_t newLastSet(const NTSequence& sequence) { return 2 * sequence.getNSets() + 1; }
// The item joins the last set.
std::int32_t joinsLastSet(const NTSequence& sequence) { return 2 * (sequence.getNSets() - 1); }

}  // namespace

// Deliberate: without a history the answer is what is most popular.
void SequenceDictionary::appendPopular(std::vector<SeqConsequentDescriptor>& out,
                                       int maxCount) const {
  Candidates candidates(*this, customers());
  if (const HashtableSQPair* const singles = level(1))
    for (const ISQCPair& entry : *singles)
      if (entry.key->size() == 1 && entry.value != nullptr)
        candidates.addPopular(entry.key->items().front(), entry.value->getCount());
  candidates.appendTo(out, maxCount);
}

OrbCommon_830::OrbStatus SequenceDictionary::GetCurrentItems(
    std::vector<SeqConsequentDescriptor>& out, const Sequence* customer, int maxCount) const {
  if (isEmpty(customer)) {
    appendPopular(out, maxCount);
    return {};
  }
  Candidates candidates(*this, customers());
  Items present;  // of the customer's own last set, known to the lattice or not
  addItems(present, *(*customer)[customer->Length() - 1]);
  candidates.addExtensions(search(*this, *customer, 0), joinsLastSet, present);
  candidates.appendTo(out, maxCount);
  return {};
}

OrbCommon_830::OrbStatus SequenceDictionary::GetFutureItems(
    std::vector<SeqConsequentDescriptor>& out, const Sequence* customer, int maxCount,
    bool wholeOnly) const {
  if (isEmpty(customer)) {
    appendPopular(out, maxCount);
    return {};
  }
  Candidates candidates(*this, customers());
  Items skipped;  // an item seen after a beginning of the history is not predicted from it
  const std::int32_t sets = customer->Length();
  for (std::int32_t skip = 0; skip < sets; ++skip) {
    if (cancelled_.load(std::memory_order_relaxed)) return {kCancelled, false};
    if (skip >= 1 && wholeOnly) break;
    if (skip >= 1) addItems(skipped, *(*customer)[sets - skip]);
    candidates.addExtensions(search(*this, *customer, skip), newLastSet, skipped);
  }
  candidates.appendTo(out, maxCount);
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

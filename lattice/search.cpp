// The subsequence search: which stored sequences a history contains.
//
// The search climbs the lattice's links from the items of the last item set toward the front, so
// that it visits nothing that is not stored. It is a stated algorithm, not a definition by
// containment: a first item set is matched to one item set of the history only, the latest that
// the way up allows.

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

constexpr std::int32_t kJoinsFirstSet = 0;  // adjacency codes that extend at the front
constexpr std::int32_t kNewFirstSet = 1;
constexpr std::int32_t kSmallLattice = 2;

using Found = std::vector<std::unique_ptr<NTSequence>>;
using Frontier = std::set<NTSequence>;  // sequences of at most 31 items: larger have no order

NTSequence single(std::int32_t item) {
  const std::int32_t items[] = {1, item};
  return NTSequence(items);
}

// One search: the filtered history, the frontiers, and what has been found.
class Search {
 public:
  Search(const SequenceDictionary& dictionary, const Sequence& customer, std::int32_t usedSets)
      : dictionary_(dictionary), largest_(dictionary.LargestSequence()) {
    for (std::int32_t k = 0; k < usedSets; ++k) addKnownItems(*customer[k]);
  }

  Found run() {
    if (!sets_.empty()) {
      const std::size_t last = sets_.size() - 1;
      frontiers_.resize(sets_.size());
      for (const std::int32_t item : sets_[last]) {
        NTSequence seed = single(item);
        note(seed);
        frontiers_[last].insert(std::move(seed));
      }
      // Deliberate: a small lattice yields the items of the last set and nothing else.
      if (largest_ > kSmallLattice)
        for (std::size_t j = sets_.size(); j-- > 0;) expandFrontier(j);
    }
    return std::move(found_);
  }

 private:
  // Keeps the items that the lattice stores as one-item sequences; a set without any is dropped.
  void addKnownItems(const TimedItemSet& set) {
    std::vector<std::int32_t> known;
    for (auto item = set.Begin(); item != set.End(); ++item)
      if (isStored(*item)) known.push_back(*item);
    if (known.empty()) return;
    for (const std::int32_t item : known) occurrences_[item].push_back(sets_.size());
    itemCount_ += known.size();
    sets_.push_back(std::move(known));
  }

  bool isStored(std::int32_t item) {
    if (occurrences_.contains(item)) return true;
    return dictionary_.isStored(single(item));
  }

  // Takes the sequences of frontier j smallest first. Working on one may add to the same frontier,
  // also in front of it, so it leaves the frontier before the work. A sequence that comes again
  // after its turn would find only what is known by then: it is expanded once per frontier.
  void expandFrontier(std::size_t j) {
    Frontier expanded;
    Frontier& frontier = frontiers_[j];
    while (!frontier.empty()) {
      const auto taken = expanded.insert(frontier.extract(frontier.begin()));
      expand(*taken.position, j, expanded);
    }
  }

  void expand(const NTSequence& sequence, std::size_t j, const Frontier& expanded) {
    if (static_cast<std::size_t>(sequence.size()) >= itemCount_ || sequence.size() >= largest_ ||
        static_cast<std::size_t>(sequence.getNSets()) > sets_.size())
      return;
    const SequenceCounter* const counter = dictionary_.getDescriptor(&sequence);
    if (counter == nullptr || counter->getNAdjacent() == 0) return;
    for (const auto& [item, code] : *counter->getAdjacentItems()) {
      std::size_t target = j;
      if (code == kNewFirstSet ? !latestBefore(j, item, target)
                               : code != kJoinsFirstSet || !holds(j, item))
        continue;
      NTSequence extended(sequence, item, code);
      if (extended.size() >= NTSequence::kMaxItems) continue;
      if (fits(extended)) note(extended);
      if (target != j || !expanded.contains(extended))
        frontiers_[target].insert(std::move(extended));
    }
  }

  bool fits(const NTSequence& sequence) const {
    return static_cast<std::size_t>(sequence.getNSets()) <= sets_.size() &&
           static_cast<std::size_t>(sequence.size()) <= itemCount_ && sequence.size() <= largest_;
  }

  void note(const NTSequence& sequence) {
    if (seen_.insert(sequence).second) found_.push_back(std::make_unique<NTSequence>(sequence));
  }

  bool holds(std::size_t j, std::int32_t item) const {
    return std::binary_search(sets_[j].begin(), sets_[j].end(), item);
  }

  // The latest set before j that holds the item.
  bool latestBefore(std::size_t j, std::int32_t item, std::size_t& target) const {
    const auto sets = occurrences_.find(item);
    if (sets == occurrences_.end()) return false;
    const auto bound = std::lower_bound(sets->second.begin(), sets->second.end(), j);
    if (bound == sets->second.begin()) return false;
    target = *(bound - 1);
    return true;
  }

  const SequenceDictionary& dictionary_;
  const std::int32_t largest_;
  std::vector<std::vector<std::int32_t>> sets_;  // known items of the history, ascending per set
  std::size_t itemCount_ = 0;                    // over all sets_
  std::map<std::int32_t, std::vector<std::size_t>> occurrences_;  // item: sets that hold it
  std::vector<Frontier> frontiers_;  // [sets_.size()] first set matched to set j
  Frontier seen_;
  Found found_;
};

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::getSubsequencesInSequence(
    std::vector<NTSequence*>& found, const Sequence* customer, int skipLast) const {
  if (customer == nullptr) return {};
  const std::int32_t usedSets = customer->Length() - std::max(skipLast, 0);
  if (usedSets < 1) return {};
  Found owned = Search(*this, *customer, usedSets).run();

  found.reserve(found.size() + owned.size());  // the last step that can throw
  for (auto& sequence : owned) found.push_back(sequence.release());
  return {};
}

OrbCommon_830::OrbStatus SequenceDictionary::getSubsequencesInSequence(
    std::vector<NTSequence*>& found, const Sequence& customer, int skipLast) const {
  return getSubsequencesInSequence(found, &customer, skipLast);
}

OrbCommon_830::OrbStatus SequenceDictionary::getSequencesOfSize(std::vector<const Sequence*>& out,
                                                                int size, bool maximalOnly) const {
  const HashtableSQPair* const table = level(size);
  if (table == nullptr) return {};
  std::vector<std::unique_ptr<const Sequence>> owned;
  for (const ISQCPair& entry : *table)
    if (!maximalOnly || entry.value == nullptr || entry.value->getNAdjacent() == 0)
      owned.push_back(std::unique_ptr<const Sequence>(entry.key->createSequence()));

  out.reserve(out.size() + owned.size());  // the last step that can throw
  for (auto& sequence : owned) out.push_back(sequence.release());
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

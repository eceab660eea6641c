// Makes a prefix tree of a dictionary.

#include <algorithm>
#include <stdexcept>

#include "bench/PrefixTree.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq::bench {

using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

class PrefixTreeMaker {
 public:
  PrefixTreeMaker(const SequenceDictionary& dictionary, PrefixTree& tree)
      : dictionary_(dictionary), tree_(tree) {}

  void run() {
    const NTSequence none;
    if (const auto* const all = dictionary_.getDescriptor(&none))
      tree_.customers_ = all->getCount();
    readItems();
    // A lattice of sequences of at most two items is asked for single items alone.
    const int largest = dictionary_.LargestSequence();
    for (int size = 1; size <= (largest > 2 ? largest : std::min(largest, 1)); ++size)
      for (const ISQCPair& entry : *dictionary_.getTable(size)) readSequence(entry);
    std::sort(sequences_.begin(), sequences_.end(),
              [](const Sequence& a, const Sequence& b) { return a.keys < b.keys; });
    makeNodes();
  }

 private:
  // An item of a sequence, in the order of siblings: those that open a set first.
  using Key = std::uint64_t;
  static constexpr Key kJoins = Key{1} << 32U;
  struct Sequence {
    std::vector<Key> keys;
    std::vector<PrefixTree::Proposal> proposals;
  };
  struct Range {
    std::size_t begin;
    std::size_t end;
    std::size_t depth;
  };

  void readItems() {
    if (dictionary_.LargestSequence() < 1) return;
    for (const ISQCPair& entry : *dictionary_.getTable(1))
      if (entry.value != nullptr)
        tree_.items_.push_back(
            {entry.key->items().front(), entry.value->getCount(), PrefixTree::kNone});
    std::sort(tree_.items_.begin(), tree_.items_.end(),
              [](const auto& a, const auto& b) { return a.number < b.number; });
    if (tree_.items_.empty()) return;
    tree_.leastItem_ = tree_.items_.front().number;
    const std::int64_t span = std::int64_t{tree_.items_.back().number} - tree_.leastItem_ + 1;
    if (span > PrefixTree::kMostLookup) throw std::length_error("items are too far apart");
    tree_.lookup_.assign(static_cast<std::size_t>(span), PrefixTree::kNone);
    for (PrefixTree::Id id = 0; id < tree_.items_.size(); ++id)
      tree_.lookup_[static_cast<std::size_t>(tree_.items_[id].number - tree_.leastItem_)] = id;
  }

  void readSequence(const ISQCPair& entry) {
    if (entry.value == nullptr || entry.value->getCount() == 0) return;
    Sequence sequence;
    readProposals(entry, sequence);
    if (sequence.proposals.empty()) return;
    std::size_t setBegin = 0;
    for (std::int32_t p = 0; p < entry.key->size(); ++p) {
      sequence.keys.push_back(tree_.find(entry.key->items()[static_cast<std::size_t>(p)]));
      if (!entry.key->endsSet(p)) continue;
      const auto first = sequence.keys.begin() + static_cast<std::ptrdiff_t>(setBegin);
      std::sort(first, sequence.keys.end());
      for (auto key = first + 1; key != sequence.keys.end(); ++key) *key |= kJoins;
      setBegin = sequence.keys.size();
    }
    sequences_.push_back(std::move(sequence));
  }

  void readProposals(const ISQCPair& entry, Sequence& sequence) const {
    const auto* const adjacent = entry.value->getAdjacentItems();
    if (adjacent == nullptr || tree_.customers_ == 0) return;
    const std::int32_t sets = entry.key->getNSets();
    const std::int32_t wanted =
        tree_.place_ == PrefixTree::Place::kJoinsLastSet ? 2 * (sets - 1) : 2 * sets + 1;
    for (const auto& [item, code] : *adjacent) {
      if (code != wanted) continue;
      const NTSequence longer(*entry.key, item, code);
      const auto* const counter = dictionary_.getDescriptor(&longer);
      const PrefixTree::Id id = tree_.find(item);
      if (counter == nullptr || id == PrefixTree::kNone || tree_.items_[id].count == 0) continue;
      const double together = counter->getCount();
      sequence.proposals.push_back({together / entry.value->getCount(), counter->getCount(), id});
    }
    std::sort(sequence.proposals.begin(), sequence.proposals.end(),
              [](const auto& a, const auto& b) { return a.confidence > b.confidence; });
  }

  // Breadth first, so that siblings lie side by side.
  void makeNodes() {
    std::vector<Range> ranges = {{0, sequences_.size(), 0}};
    tree_.nodes_.push_back({0, 0, 0, 0, false});
    tree_.nodeItem_.push_back(PrefixTree::kNone);
    for (PrefixTree::Id node = 0; node < ranges.size(); ++node) {
      Range range = ranges[node];
      tree_.nodes_[node].proposals = counted(tree_.proposals_.size());
      if (range.begin < range.end && sequences_[range.begin].keys.size() == range.depth) {
        const auto& proposals = sequences_[range.begin++].proposals;
        tree_.proposals_.insert(tree_.proposals_.end(), proposals.begin(), proposals.end());
      }
      tree_.nodes_[node].opens = counted(ranges.size());
      makeChildren(node, range, Key{0}, ranges);
      tree_.nodes_[node].joins = counted(ranges.size());
      makeChildren(node, range, kJoins, ranges);
    }
    tree_.nodes_.push_back({counted(ranges.size()), 0, counted(tree_.proposals_.size()), 0, false});
    markFurther();
  }

  // Of one kind, from the beginning of the range, which is moved behind them.
  void makeChildren(PrefixTree::Id node, Range& range, Key kind, std::vector<Range>& ranges) {
    while (range.begin < range.end &&
           (sequences_[range.begin].keys[range.depth] & kJoins) == kind) {
      const Key key = sequences_[range.begin].keys[range.depth];
      std::size_t end = range.begin + 1;
      while (end < range.end && sequences_[end].keys[range.depth] == key) ++end;
      const auto item = static_cast<PrefixTree::Id>(key & (kJoins - 1));
      if (node == 0) tree_.items_[item].child = counted(ranges.size());
      ranges.push_back({range.begin, end, range.depth + 1});
      tree_.nodes_.push_back({0, 0, 0, node, false});
      tree_.nodeItem_.push_back(item);
      range.begin = end;
    }
  }

  void markFurther() {
    auto& nodes = tree_.nodes_;
    for (std::size_t node = nodes.size() - 1; node-- > 0;) {
      if (nodes[node].opens < nodes[node].joins) nodes[node].opensFurther = true;
      if (nodes[node].opensFurther && nodes[nodes[node].parent].joins <= node)
        nodes[nodes[node].parent].opensFurther = true;
    }
  }

  static std::uint32_t counted(std::size_t size) {
    if (size >= PrefixTree::kNone) throw std::length_error("a tree of too many nodes");
    return static_cast<std::uint32_t>(size);
  }

  const SequenceDictionary& dictionary_;
  PrefixTree& tree_;
  std::vector<Sequence> sequences_;
};

PrefixTree::PrefixTree(const SequenceDictionary& dictionary, Place place) : place_(place) {
  PrefixTreeMaker(dictionary, *this).run();
}

}  // namespace orbseq::bench

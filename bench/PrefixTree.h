// A plain alternative to the compiled lattice, to measure it against: the sequences that propose
// something, as a tree of prefixes, matched to a history from its front.
//
// Shape. A node is a prefix; its children are numbered side by side, those that open a new set
// first, then those whose item joins the last set, each by item. A node's proposals stand by
// confidence, the largest first. Two trees, one a place, leave out what the other alone needs.
//
// Search. From the root down, each prefix at the earliest place where it ends: the next set that
// holds the item or, where an item joins, all items of the last set. Where a node has many more
// children than the history has different items, these are looked up among the children.
//
//  - endingInLastSet: what ends in the history's last known set, with everything else before it.
//    Sets before the last are gone through only as far as something opens a set further on.
//  - anywhere: everything contained; items seen behind the latest place where it can end are not
//    proposed.
//
// Answers are those of the recommender (engine/Recommender.h), but for what contained sequences
// with sets of several items propose: the lattice's search misses some of them (bench/queries.cpp).
//
// Requires a dictionary in which every item is stored alone, as mining leaves it, and with every
// part of its sequences; items whose numbers span at most kMostLookup.
//
// Threads: any number may query a tree, each with a scratch of its own. A query allocates only what
// the scratch has to grow. Errors: std::length_error when made; std::bad_alloc.

#ifndef BENCH_PREFIXTREE_H_
#define BENCH_PREFIXTREE_H_

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/History.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceDictionary;
}

namespace orbseq::bench {

class PrefixTree {
 public:
  static constexpr std::uint32_t kMostLookup = std::uint32_t{1} << 24U;

  // Where the item of a proposal goes.
  enum class Place { kJoinsLastSet, kOpensNewSet };
  using Answers = std::vector<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;
  class Scratch;

  PrefixTree(const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary, Place place);

  // Append at most maxCount answers, which is greater than 0. A history without known items has
  // none.
  void endingInLastSet(const engine::History& history, std::size_t maxCount, Scratch& scratch,
                       Answers& out) const;
  void anywhere(const engine::History& history, std::size_t maxCount, Scratch& scratch,
                Answers& out) const;

  std::size_t nodeCount() const noexcept { return nodes_.size() - 1; }

 private:
  friend class PrefixTreeMaker;
  friend class PrefixTreeSearch;

  using Id = std::uint32_t;  // of a node or of an item

  struct Node {
    std::uint32_t opens;      // the first child that opens a set; ends where the joins begin
    std::uint32_t joins;      // the first that joins; ends where the next node's opens begin
    std::uint32_t proposals;  // the first; ends where the next node's begin
    Id parent;
    bool opensFurther;  // whether anything below opens a set
  };
  struct Proposal {
    double confidence;
    std::int32_t count;
    Id item;
  };
  struct Item {
    std::int32_t number;
    std::int32_t count;  // customers that hold the item
    Id child;            // of the root; kNone: none
  };
  static constexpr Id kNone = 0xFFFFFFFFU;

  Id find(std::int32_t number) const noexcept {
    const std::uint32_t offset =
        static_cast<std::uint32_t>(number) - static_cast<std::uint32_t>(leastItem_);
    return offset < lookup_.size() ? lookup_[offset] : kNone;
  }

  const Place place_;
  std::int32_t customers_ = 0;
  std::vector<Node> nodes_;   // [nodes + 1] breadth first; the first is the root
  std::vector<Id> nodeItem_;  // [nodes] the item that is added
  std::vector<Proposal> proposals_;
  std::vector<Item> items_;  // by number
  std::vector<Id> lookup_;   // a number from the least item to the greatest
  std::int32_t leastItem_ = 0;
};

// What a thread needs to search.
class PrefixTree::Scratch {
 private:
  friend class PrefixTreeSearch;

  struct Occurrences {
    std::uint32_t begin;  // in sets_
    std::uint32_t count;
  };
  struct Frame {
    Id node;
    std::uint32_t end;   // the set in which the prefix ends first
    std::uint32_t from;  // the first set that its last set may be matched to
  };
  struct Candidate {
    double confidence;
    std::int32_t count;
    Id item;
  };

  // [items] of the tree; all 0, and kNone, between two queries.
  std::vector<std::uint32_t> last_;  // the last set that holds it, from 1
  std::vector<Id> candidate_;        // index in candidates_
  std::vector<Occurrences> occurrences_;

  std::vector<Id> history_;          // known items, set after set
  std::vector<std::uint32_t> ends_;  // one past each set's last item; sets without any are left out
  std::vector<Id> different_;        // the history's items, those seen last first
  std::vector<std::uint32_t> sets_;  // of each different item, the sets that hold it
  std::vector<Frame> frames_;
  std::vector<Id> atLast_;
  std::vector<Candidate> candidates_;
  std::vector<Candidate> ranked_;
  std::vector<double> confidences_;
};

}  // namespace orbseq::bench

#endif  // BENCH_PREFIXTREE_H_

#include "bench/PrefixTree.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <span>

namespace orbseq::bench {

class PrefixTreeSearch {
 public:
  PrefixTreeSearch(const PrefixTree& tree, PrefixTree::Scratch& scratch, std::size_t maxCount)
      : tree_(tree), s_(scratch), maxCount_(maxCount), nextBar_(std::max(kFew, 4 * maxCount)) {
    s_.last_.resize(tree.items_.size(), 0);
    s_.candidate_.resize(tree.items_.size(), PrefixTree::kNone);
    s_.occurrences_.resize(tree.items_.size());
  }
  ~PrefixTreeSearch() {
    for (const Id item : s_.different_) s_.last_[item] = 0;
    for (const auto& candidate : s_.candidates_) s_.candidate_[candidate.item] = PrefixTree::kNone;
    s_.different_.clear();
    s_.candidates_.clear();
  }
  PrefixTreeSearch(const PrefixTreeSearch&) = delete;
  PrefixTreeSearch& operator=(const PrefixTreeSearch&) = delete;

  void askLast(const engine::History& history) {
    const bool lastIsKnown = read(history);
    if (s_.ends_.empty()) return;
    const std::uint32_t last = sets() - 1;
    // Items of the history's own last set are there already.
    excluded_ = sets();
    if (tree_.place_ == PrefixTree::Place::kJoinsLastSet && lastIsKnown) excluded_ = last;
    s_.frames_.push_back({0, 0, 0});
    while (!s_.frames_.empty()) {
      const Frame frame = s_.frames_.back();
      s_.frames_.pop_back();
      const std::uint32_t begin = frame.node == 0 ? 0 : frame.end + 1;
      forOpens(frame.node, begin, [&](Id child, Id item) {
        if (s_.last_[item] == sets()) proposeAtLast(child);
        if (!tree_.nodes_[child].opensFurther) return;
        const std::uint32_t end = next(item, begin);
        if (end < last) s_.frames_.push_back({child, end, begin});
      });
      forJoins(frame.node, frame.end, [&](Id child) {
        if (!tree_.nodes_[child].opensFurther) return;
        const std::uint32_t end = earliest(child, frame.end);
        if (end < last) s_.frames_.push_back({child, end, frame.from});
      });
    }
  }

  void askAnywhere(const engine::History& history) {
    read(history);
    if (s_.ends_.empty()) return;
    s_.frames_.push_back({0, 0, 0});
    while (!s_.frames_.empty()) {
      const Frame frame = s_.frames_.back();
      s_.frames_.pop_back();
      const std::uint32_t begin = frame.node == 0 ? 0 : frame.end + 1;
      forOpens(frame.node, begin, [&](Id child, Id item) {
        excluded_ = s_.last_[item];
        propose(child);
        if (isInner(child)) s_.frames_.push_back({child, next(item, begin), begin});
      });
      forJoins(frame.node, frame.end, [&](Id child) {
        const std::uint32_t end = earliest(child, frame.end);
        if (end == PrefixTree::kNone) return;
        excluded_ = latest(child) + 1;
        propose(child);
        if (isInner(child)) s_.frames_.push_back({child, end, frame.from});
      });
    }
  }

  void appendTo(PrefixTree::Answers& out) {
    const std::size_t count = rank();
    for (std::size_t k = 0; k < count; ++k) {
      const Candidate& best = s_.ranked_[k];
      const PrefixTree::Item& item = tree_.items_[best.item];
      const double together = best.count;
      out.emplace_back(item.number, together / tree_.customers_, best.confidence,
                       together / item.count);
    }
  }

 private:
  using Id = PrefixTree::Id;
  using Node = PrefixTree::Node;
  using Frame = PrefixTree::Scratch::Frame;
  using Candidate = PrefixTree::Scratch::Candidate;
  static constexpr std::size_t kFew = 64;          // candidates below which no cut is looked for
  static constexpr std::size_t kFewRanks = 32;     // put in order by insertion
  static constexpr std::size_t kManyChildren = 8;  // an item of the history are not gone through
  static constexpr std::uint32_t kShort = 8;       // lists of sets that are gone through

  std::uint32_t sets() const noexcept { return static_cast<std::uint32_t>(s_.ends_.size()); }
  bool isInner(Id node) const noexcept {
    return tree_.nodes_[node].opens < tree_.nodes_[node + 1].opens;
  }
  bool isOpening(Id node) const noexcept {
    return node < tree_.nodes_[tree_.nodes_[node].parent].joins;
  }

  // Whether the history's last set has known items.
  bool read(const engine::History& history) {
    s_.history_.clear();
    s_.ends_.clear();
    bool isKnown = false;
    for (std::size_t k = 0; k < history.sets(); ++k) {
      const std::size_t before = s_.history_.size();
      for (const std::int32_t number : history.set(k))
        if (const Id item = tree_.find(number); item != PrefixTree::kNone)
          s_.history_.push_back(item);
      isKnown = s_.history_.size() > before;
      if (isKnown) s_.ends_.push_back(static_cast<std::uint32_t>(s_.history_.size()));
    }
    listSets();
    return isKnown;
  }

  void listSets() {
    for (std::uint32_t set = sets(); set-- > 0;)
      for (std::uint32_t p = s_.ends_[set]; p-- > (set == 0 ? 0 : s_.ends_[set - 1]);) {
        const Id item = s_.history_[p];
        if (s_.last_[item] == 0) {
          s_.last_[item] = set + 1;
          s_.occurrences_[item].count = 0;
          s_.different_.push_back(item);
        }
        ++s_.occurrences_[item].count;
      }
    std::uint32_t begin = 0;
    for (const Id item : s_.different_) {
      auto& occurrences = s_.occurrences_[item];
      occurrences.begin = begin;
      begin += occurrences.count;
      occurrences.count = 0;
    }
    s_.sets_.resize(begin);
    std::uint32_t p = 0;
    for (std::uint32_t set = 0; set < sets(); ++set)
      for (; p < s_.ends_[set]; ++p) {
        auto& occurrences = s_.occurrences_[s_.history_[p]];
        s_.sets_[occurrences.begin + occurrences.count++] = set;
      }
  }

  std::span<const std::uint32_t> setsOf(Id item) const noexcept {
    const auto& occurrences = s_.occurrences_[item];
    return {s_.sets_.data() + occurrences.begin, occurrences.count};
  }
  // The first set from `begin` on that holds the item. Requires that there is one.
  std::uint32_t next(Id item, std::uint32_t begin) const noexcept {
    const std::span<const std::uint32_t> list = setsOf(item);
    if (list.size() > kShort) return *std::lower_bound(list.begin(), list.end(), begin);
    const std::uint32_t* set = list.data();
    while (*set < begin) ++set;
    return *set;
  }
  // The last set up to `end`. Requires that there is one.
  std::uint32_t previous(Id item, std::uint32_t end) const noexcept {
    const std::span<const std::uint32_t> list = setsOf(item);
    return *(std::upper_bound(list.begin(), list.end(), end) - 1);
  }

  // The first set from `begin` on that holds all items of the node's last set; kNone: there is
  // none.
  std::uint32_t earliest(Id node, std::uint32_t begin) const noexcept {
    for (;;) {
      const std::uint32_t before = begin;
      for (Id at = node;; at = tree_.nodes_[at].parent) {
        const Id item = tree_.nodeItem_[at];
        if (s_.last_[item] <= begin) return PrefixTree::kNone;
        begin = next(item, begin);
        if (isOpening(at)) break;
      }
      if (begin == before) return begin;
    }
  }
  // The last one. Requires that there is one.
  std::uint32_t latest(Id node) const noexcept {
    std::uint32_t end = sets() - 1;
    for (;;) {
      const std::uint32_t before = end;
      for (Id at = node;; at = tree_.nodes_[at].parent) {
        end = previous(tree_.nodeItem_[at], end);
        if (isOpening(at)) break;
      }
      if (end == before) return end;
    }
  }

  // Calls each(child, item) for the children that open a set, by an item seen at or behind `begin`.
  template <class Each>
  void forOpens(Id node, std::uint32_t begin, Each each) {
    const Id first = tree_.nodes_[node].opens;
    const Id end = tree_.nodes_[node].joins;
    if (node == 0) {
      for (const Id item : s_.different_)
        if (const Id child = tree_.items_[item].child; child != PrefixTree::kNone)
          each(child, item);
      return;
    }
    forChildren(first, end, begin, each);
  }

  template <class Each>
  void forJoins(Id node, std::uint32_t begin, Each each) {
    if (node == 0) return;
    forChildren(tree_.nodes_[node].joins, tree_.nodes_[node + 1].opens, begin,
                [&each](Id child, Id) { each(child); });
  }

  template <class Each>
  void forChildren(Id first, Id end, std::uint32_t begin, Each each) {
    const Id* const items = tree_.nodeItem_.data();
    if (end - first <= kManyChildren * s_.different_.size()) {
      for (Id child = first; child < end; ++child)
        if (s_.last_[items[child]] > begin) each(child, items[child]);
      return;
    }
    for (const Id item : s_.different_) {
      if (s_.last_[item] <= begin) return;
      const Id* const found = std::lower_bound(items + first, items + end, item);
      if (found != items + end && *found == item) each(static_cast<Id>(found - items), item);
    }
  }

  // What ends in the last set: the node, and those whose items all join there.
  void proposeAtLast(Id node) {
    s_.atLast_.push_back(node);
    while (!s_.atLast_.empty()) {
      const Id at = s_.atLast_.back();
      s_.atLast_.pop_back();
      propose(at);
      forJoins(at, sets() - 1, [&](Id child) { s_.atLast_.push_back(child); });
    }
  }

  void propose(Id node) {
    const PrefixTree::Proposal* const end =
        tree_.proposals_.data() + tree_.nodes_[node + 1].proposals;
    for (const PrefixTree::Proposal* proposal =
             tree_.proposals_.data() + tree_.nodes_[node].proposals;
         proposal != end && proposal->confidence >= bar_; ++proposal)
      if (s_.last_[proposal->item] <= excluded_) offer(*proposal);
  }

  // The best for each item: the highest confidence, among equals the highest support.
  void offer(const PrefixTree::Proposal& proposal) {
    Id& known = s_.candidate_[proposal.item];
    if (known == PrefixTree::kNone) {
      known = static_cast<Id>(s_.candidates_.size());
      s_.candidates_.push_back({proposal.confidence, proposal.count, proposal.item});
      if (s_.candidates_.size() >= nextBar_) raiseBar();
      return;
    }
    Candidate& best = s_.candidates_[known];
    if (proposal.confidence < best.confidence ||
        (proposal.confidence == best.confidence && proposal.count <= best.count))
      return;
    best.confidence = proposal.confidence;
    best.count = proposal.count;
  }

  // Forgets candidates that maxCount others are more confident than.
  void raiseBar() {
    s_.confidences_.clear();
    for (const Candidate& candidate : s_.candidates_)
      s_.confidences_.push_back(candidate.confidence);
    const auto least = s_.confidences_.begin() + static_cast<std::ptrdiff_t>(maxCount_ - 1);
    std::nth_element(s_.confidences_.begin(), least, s_.confidences_.end(), std::greater<>());
    bar_ = *least;
    std::size_t kept = 0;
    for (const Candidate& candidate : s_.candidates_) {
      if (candidate.confidence < bar_) {
        s_.candidate_[candidate.item] = PrefixTree::kNone;
        continue;
      }
      s_.candidate_[candidate.item] = static_cast<Id>(kept);
      s_.candidates_[kept++] = candidate;
    }
    s_.candidates_.resize(kept);
    nextBar_ = std::max(nextBar_, 2 * kept);
  }

  // Puts the best of the candidates in order; how many.
  std::size_t rank() {
    const auto isBefore = [](const Candidate& a, const Candidate& b) {
      return a.confidence != b.confidence ? a.confidence > b.confidence : a.item > b.item;
    };
    const std::size_t count = std::min(maxCount_, s_.candidates_.size());
    s_.ranked_.resize(std::max(s_.ranked_.size(), count));
    Candidate* const ranked = s_.ranked_.data();
    if (count > kFewRanks) {
      std::partial_sort_copy(s_.candidates_.begin(), s_.candidates_.end(), ranked, ranked + count,
                             isBefore);
      return count;
    }
    std::size_t kept = 0;
    for (const Candidate& candidate : s_.candidates_) {
      if (kept == count && isBefore(ranked[kept - 1], candidate)) continue;
      std::size_t place = kept < count ? kept++ : count - 1;
      for (; place > 0 && isBefore(candidate, ranked[place - 1]); --place)
        ranked[place] = ranked[place - 1];
      ranked[place] = candidate;
    }
    return count;
  }

  const PrefixTree& tree_;
  PrefixTree::Scratch& s_;
  const std::size_t maxCount_;
  std::size_t nextBar_;
  double bar_ = -std::numeric_limits<double>::infinity();
  std::uint32_t excluded_ = 0;  // items seen in a set behind so many are not proposed
};

void PrefixTree::endingInLastSet(const engine::History& history, std::size_t maxCount,
                                 Scratch& scratch, Answers& out) const {
  PrefixTreeSearch search(*this, scratch, maxCount);
  search.askLast(history);
  search.appendTo(out);
}

void PrefixTree::anywhere(const engine::History& history, std::size_t maxCount, Scratch& scratch,
                          Answers& out) const {
  PrefixTreeSearch search(*this, scratch, maxCount);
  search.askAnywhere(history);
  search.appendTo(out);
}

}  // namespace orbseq::bench

#include "engine/Query.h"

#include <limits>

namespace orbseq::engine {

namespace {

// A run of so many links for each different item of the history is searched, not gone through.
constexpr std::size_t kManyLinks = 16;
const Climb* findClimb(const Climb* begin, const Climb* end, ItemId item) noexcept {
  const Climb* const found = std::lower_bound(
      begin, end, item, [](const Climb& climb, ItemId wanted) { return climb.item < wanted; });
  return found != end && found->item == item ? found : nullptr;
}

}  // namespace

Query::Query(const CompiledLattice& lattice, Workspace& workspace, std::int32_t maxCount,
             std::uint32_t kind)
    : lattice_(lattice),
      w_(workspace),
      maxCount_(static_cast<std::size_t>(maxCount)),
      kind_(kind),
      hasJoins_(lattice.hasJoins(kind)),
      customers_(lattice.customers()),
      bar_(-std::numeric_limits<double>::infinity()),
      nextBar_(std::max(kFewCandidates, 4 * std::min(maxCount_, lattice.itemCount()))) {
  w_.fit(lattice);
}

Query::~Query() {
  for (Position position = 0; position < w_.itemCount_; ++position)
    w_.last_[w_.items_[position]] = 0;
  for (const ItemId item : w_.strangers_) w_.latest_[item] = 0;
  for (const Candidate& candidate : w_.candidates_) w_.candidate_[candidate.item] = kNone;
  w_.itemCount_ = 0;
  w_.strangers_.clear();
  w_.candidates_.clear();
  w_.matches_.clear();
}

// --- The history ---------------------------------------------------------------------------------

void Query::addStranger(ItemId item, std::size_t set) {
  if (w_.latest_[item] == 0) w_.strangers_.push_back(item);
  w_.latest_[item] = static_cast<std::uint32_t>(set + 1);
}

// Keeps the items that the lattice stores alone, and the sets that have any.
void Query::read(const History& history, Strangers strangers) {
  if (w_.items_.size() < history.items()) w_.items_.resize(history.items());
  if (w_.occurrences_.size() <= history.items()) w_.occurrences_.resize(history.items() + 1);
  w_.ends_.clear();
  w_.numbers_.clear();
  ItemId* const items = w_.items_.data();
  Workspace::Occurrence* const occurrences = w_.occurrences_.data();
  Position* const lasts = w_.last_.data();
  occurrences[0] = {0, 0, 0, 0};
  const bool notes = strangers == Strangers::kNote && lattice_.hasStrangers();
  Position count = 0;
  for (std::size_t k = 0; k < history.sets(); ++k) {
    const Position before = count;
    const std::uint32_t set = sets();
    for (const std::int32_t number : history.set(k)) {
      const ItemId item = lattice_.find(number);
      if (item >= kStranger) {
        w_.itemCount_ = count;  // should memory run out
        if (notes && item != kNone) addStranger(item - kStranger, k);
        continue;
      }
      const Position previous = lasts[item];
      const Workspace::Occurrence& last = occurrences[previous];
      const Workspace::Occurrence& jumped = occurrences[last.jump];
      const bool jumpsOn = last.rank - jumped.rank == jumped.rank - occurrences[jumped.jump].rank;
      items[count] = item;
      lasts[item] = ++count;
      occurrences[count] = {previous, jumpsOn ? jumped.jump : previous, last.rank + 1, set};
    }
    w_.itemCount_ = count;
    if (count == before) continue;
    w_.ends_.push_back(count);
    w_.numbers_.push_back(static_cast<std::uint32_t>(k));
  }
}

// --- The search ----------------------------------------------------------------------------------

inline void Query::take(std::uint64_t steps) {
  steps_ += steps;
  if (steps_ > w_.budget_) throw StepBudgetSpent(w_.budget_);
}

// A sequence is to be worked on when it leads to something that is not known yet. In one search
// only one that is joined can be reached more than once. When the history is searched again, with
// an earlier last set, a sequence found before can stand in an earlier place.
template <bool kAgain, Query::Reached kReached>
inline void Query::reach(NodeId node, std::uint32_t place, std::uint32_t size) {
  bool isNew = true;
  if (kAgain ? hasJoins_ : kReached == Reached::kByJoining) {
    Workspace::Visit& visit = w_.visits_[node];
    isNew = visit.query != w_.query_;
    if (!isNew && (!kAgain || visit.place == place || !lattice_.growsAbove(node))) return;
    visit = {w_.query_, place};
  }
  w_.matches_.push_back({node, place, static_cast<std::uint16_t>(size), isNew});
}

// Reaches sequences with one more item in front, in an earlier set.
template <bool kAgain>
void Query::openSets(const Match& match, const Climb* begin, const Climb* end) {
  const Position bound = beginOf(match.place);
  if (bound == 0 || begin == end) return;
  const auto* const occurrences = w_.occurrences_.data();
  const std::uint32_t size = match.size + 1U;
  if (static_cast<std::size_t>(end - begin) > kManyLinks * bound) {
    take(bound);
    for (Position position = 1; position <= bound; ++position) {
      const ItemId item = w_.items_[position - 1];
      if (latest(item, bound) != position) continue;
      if (const Climb* const climb = findClimb(begin, end, item); climb != nullptr && leads(*climb))
        reach<kAgain, Reached::kByOpening>(climb->node(), occurrences[position].set, size);
    }
    return;
  }
  take(static_cast<std::uint64_t>(end - begin));
  for (const Climb* climb = begin; climb != end; ++climb) {
    if (!leads(*climb)) continue;
    if (const Position position = latest(climb->item, bound); position != 0)
      reach<kAgain, Reached::kByOpening>(climb->node(), occurrences[position].set, size);
  }
}

// Reaches sequences with one more item in the first set.
template <bool kAgain>
void Query::joinSets(const Match& match, const Climb* begin, const Climb* end) {
  if (begin == end) return;
  const Position bound = beginOf(match.place);
  const Position last = w_.ends_[match.place];
  const std::uint32_t size = match.size + 1U;
  if (static_cast<std::size_t>(end - begin) > kManyLinks * (last - bound)) {
    take(last - bound);
    for (Position position = bound; position < last; ++position)
      if (const Climb* const climb = findClimb(begin, end, w_.items_[position]);
          climb != nullptr && leads(*climb))
        reach<kAgain, Reached::kByJoining>(climb->node(), match.place, size);
    return;
  }
  take(static_cast<std::uint64_t>(end - begin));
  for (const Climb* climb = begin; climb != end; ++climb)
    if (leads(*climb) && latest(climb->item, last) > bound)
      reach<kAgain, Reached::kByJoining>(climb->node(), match.place, size);
}

template <bool kAgain>
void Query::search(std::uint32_t last) {
  const std::uint32_t items = w_.ends_[last];  // of the sets up to the last
  for (Position position = beginOf(last); position < items; ++position) {
    const ItemId item = w_.items_[position];
    // Where nothing joins, what ends in an item is all found from its last occurrence.
    if (kAgain && !hasJoins_ && w_.last_[item] != position + 1) continue;
    if (const NodeId node = lattice_.item(item).node; node != kNone)
      reach<kAgain, Reached::kBySeed>(node, last, 1);
  }
  const Climb* const climbs = lattice_.climbs();
  while (!w_.matches_.empty()) {
    const Match match = w_.matches_.back();
    w_.matches_.pop_back();
    const Node* const node = lattice_.node(match.node);
    if (match.isNew != 0) propose(node);
    if (match.size >= items) continue;
    openSets<kAgain>(match, climbs + node[0].climbs, climbs + node[0].joins);
    joinSets<kAgain>(match, climbs + node[0].joins, climbs + node[1].climbs);
  }
}

void Query::askCurrent(const History& history) {
  read(history, Strangers::kLeaveOut);
  if (sets() == 0) return;
  const std::size_t last = history.sets() - 1;
  if (lattice_.hasStrangers())
    for (const std::int32_t number : history.set(last))
      if (const ItemId item = lattice_.find(number); item >= kStranger && item != kNone)
        addStranger(item - kStranger, last);
  // Items of the last set, known or not, are there already.
  excluded_ = w_.numbers_.back() == last ? beginOf(sets() - 1) : w_.ends_.back();
  excludedSet_ = static_cast<std::uint32_t>(last);
  search<false>(sets() - 1);
}

void Query::askWhole(const History& history) {
  read(history, Strangers::kLeaveOut);
  if (sets() == 0) return;
  excluded_ = w_.ends_.back();
  excludedSet_ = static_cast<std::uint32_t>(history.sets());
  search<false>(sets() - 1);
}

void Query::askBeginnings(const History& history) {
  read(history, Strangers::kNote);
  if (sets() == 0) return;
  excluded_ = w_.ends_.back();
  excludedSet_ = static_cast<std::uint32_t>(history.sets());
  for (std::uint32_t last = sets(); last-- > 0;) {
    search<true>(last);
    // Of the beginnings that end in the set before, the longest excludes least: all from here on.
    excluded_ = beginOf(last);
    excludedSet_ = w_.numbers_[last];
  }
}

// --- Answers -------------------------------------------------------------------------------------

void Query::propose(const Node* node) {
  const bool joins = kind_ == kJoining;
  const Proposal* const begin = lattice_.proposals() + (joins ? node[0].proposals : node[0].opens);
  const Proposal* const end = lattice_.proposals() + (joins ? node[0].opens : node[1].proposals);
  if (begin == end) return;
  take(1);
  const auto isSeen = [this](ItemId item) { return w_.last_[item] > excluded_; };
  if (!lattice_.hasStrangers()) return proposeRun(begin, end, node->count, isSeen);
  proposeRun(begin, end, node->count, [this, isSeen](ItemId item) {
    return isSeen(item) || w_.latest_[item] > excludedSet_;
  });
}

template <class IsExcluded>
inline void Query::proposeRun(const Proposal* begin, const Proposal* end, double count,
                              IsExcluded isExcluded) {
  for (const Proposal* proposal = begin; proposal != end; ++proposal) {
    const double confidence = proposal->count / count;
    if (confidence < bar_) {
      if (count > 0.0) break;  // those that follow have less still
      continue;
    }
    if (!isExcluded(proposal->item)) offer(proposal->item, confidence, proposal->count);
  }
}

// Keeps the best for each item: the highest confidence, among equals the highest support.
void Query::offer(ItemId item, double confidence, std::int32_t count) {
  const std::uint32_t known = w_.candidate_[item];
  if (known != kNone) {
    Candidate& best = w_.candidates_[known];
    if (confidence > best.confidence ||
        (confidence == best.confidence && count / customers_ > best.count / customers_)) {
      best.confidence = confidence;
      best.count = count;
    }
    return;
  }
  w_.candidates_.push_back({confidence, count, item});
  w_.candidate_[item] = static_cast<std::uint32_t>(w_.candidates_.size() - 1);
  if (w_.candidates_.size() >= nextBar_) raiseBar();
}

// Forgets candidates that maxCount others are more confident than.
void Query::raiseBar() {
  if (maxCount_ >= w_.candidates_.size()) {
    nextBar_ = std::max(nextBar_, 2 * w_.candidates_.size());
    return;
  }
  w_.confidences_.clear();
  for (const Candidate& candidate : w_.candidates_) w_.confidences_.push_back(candidate.confidence);
  const auto least = w_.confidences_.begin() + static_cast<std::ptrdiff_t>(maxCount_ - 1);
  std::nth_element(w_.confidences_.begin(), least, w_.confidences_.end(), std::greater<>());
  bar_ = *least;
  std::size_t kept = 0;
  for (const Candidate& candidate : w_.candidates_) {
    if (candidate.confidence < bar_) {
      w_.candidate_[candidate.item] = kNone;
      continue;
    }
    w_.candidate_[candidate.item] = static_cast<std::uint32_t>(kept);
    w_.candidates_[kept++] = candidate;
  }
  w_.candidates_.resize(kept);
  nextBar_ = std::max(nextBar_, 2 * kept);
}

// Puts the best of the candidates in order; how many.
std::size_t Query::rank() {
  const auto isBefore = [](const Candidate& a, const Candidate& b) {
    return a.confidence != b.confidence ? a.confidence > b.confidence : a.item > b.item;
  };
  const std::size_t count = std::min(maxCount_, w_.candidates_.size());
  if (count > kFewRanks) {
    w_.ranked_.resize(count);
    std::partial_sort_copy(w_.candidates_.begin(), w_.candidates_.end(), w_.ranked_.begin(),
                           w_.ranked_.end(), isBefore);
    return count;
  }
  // A few are kept in order from the beginning; most others are not among them.
  w_.ranked_.resize(kFewRanks + 1);
  Candidate* const ranked = w_.ranked_.data();
  std::size_t kept = 0;
  for (const Candidate& candidate : w_.candidates_) {
    if (kept == count && isBefore(ranked[kept - 1], candidate)) continue;
    std::size_t place = kept < count ? kept++ : count - 1;
    for (; place > 0 && isBefore(candidate, ranked[place - 1]); --place)
      ranked[place] = ranked[place - 1];
    ranked[place] = candidate;
  }
  return count;
}

void Query::appendTo(Answers& out) {
  const std::size_t count = rank();
  out.reserve(out.size() + count);  // the last step that can throw
  for (std::size_t k = 0; k < count; ++k) {
    const Candidate& candidate = w_.ranked_[k];
    const Item& item = lattice_.item(candidate.item);
    const double together = candidate.count;
    out.emplace_back(item.number, together / customers_, candidate.confidence,
                     item.node == kNone ? 0.0 : together / item.count);
  }
}

}  // namespace orbseq::engine

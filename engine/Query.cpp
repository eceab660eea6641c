#include "engine/Query.h"

#include "common/guards.h"

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
      climbing_(marksOfClimb(kind)),
      starting_(kind == kJoining ? kStartsJoining : kStartsOpening),
      hasJoins_(lattice.hasJoins(kind)),
      customers_(lattice.customers()),
      bar_(-std::numeric_limits<double>::infinity()),
      nextBar_(std::max(kFewCandidates, 2 * std::min(maxCount_, lattice.itemCount()))) {
  w_.fit(lattice);
}

Query::~Query() {
  for (Position position = 0; position < w_.kept_; ++position)
    w_.last_[w_.items_[position] & kMostItems] = 0;
  for (Position position = w_.lastBegin_; position < w_.lastEnd_; ++position)
    w_.last_[w_.items_[position] & kMostItems] = 0;
  for (const ItemId item : w_.strangers_) w_.latest_[item] = 0;
  for (const Candidate& candidate : w_.candidates_) w_.candidate_[candidate.item] = kNone;
  w_.kept_ = w_.lastBegin_ = w_.lastEnd_ = 0;
  w_.strangers_.clear();
  w_.candidates_.clear();
  w_.matches_.clear();
}

// --- The history ---------------------------------------------------------------------------------

void Query::prepare(const History& history) {
  const std::size_t items = history.items();
  if (w_.items_.size() <= items) w_.items_.resize(items + 1);
  if (w_.occurrences_.size() <= items) w_.occurrences_.resize(items + 1);
  if (w_.sets_.size() < history.sets()) w_.sets_.resize(history.sets());
  w_.occurrences_[0] = {0, 0, 0, 0};
}

// An item of the set takes its place, where those before it have theirs.
inline void Query::keep(Position position, std::uint32_t set) {
  const std::uint32_t marked = w_.items_[position];
  Position& last = w_.last_[marked & kMostItems];
  const Position previous = last;
  last = position + 1;
  if ((marked & climbing_) == 0) return;
  const auto* const occurrences = w_.occurrences_.data();
  const Workspace::Occurrence& before = occurrences[previous];
  const Workspace::Occurrence& jumped = occurrences[before.jump];
  const bool jumpsOn = before.rank - jumped.rank == jumped.rank - occurrences[jumped.jump].rank;
  w_.occurrences_[position + 1] = {previous, jumpsOn ? jumped.jump : previous, before.rank + 1,
                                   set};
}

// Reads the last set that has known items, and keeps these, where they stand when everything
// before is kept. Most of what is before need not be read, and for many histories nothing.
bool Query::readLast(const History& history) {
  prepare(history);
  std::uint32_t* const items = w_.items_.data();
  for (std::size_t k = history.sets(); k-- > 0;) {
    const auto begin = static_cast<Position>(history.firstItem(k));
    Position end = begin;
    for (const std::int32_t number : history.set(k)) {
      items[end] = lattice_.find(number);
      end += static_cast<Position>(items[end] < kStranger);
    }
    if (end == begin) continue;
    lastSet_ = static_cast<std::uint32_t>(k);
    unread_ = &history;
    w_.lastBegin_ = begin;
    w_.lastEnd_ = end;
    w_.sets_[k] = {begin, end, end - begin};
    for (Position position = begin; position < end; ++position) keep(position, lastSet_);
    return true;
  }
  return false;
}

// Reads the sets before the last known one; only what climbs go by is kept of them.
void Query::readBeforeLast() {
  for (Position position = w_.lastBegin_; position < w_.lastEnd_; ++position)
    w_.last_[w_.items_[position] & kMostItems] = 0;
  readFirst(*unread_, lastSet_, climbing_);
  unread_ = nullptr;
  for (Position position = w_.lastBegin_; position < w_.lastEnd_; ++position)
    keep(position, lastSet_);
  if (lastSet_ > 0) w_.sets_[lastSet_].known += w_.sets_[lastSet_ - 1].known;
}

// Reads so many sets and keeps the known items that have any of the marks.
void Query::readFirst(const History& history, std::size_t sets, std::uint32_t marks) {
  std::uint32_t* const items = w_.items_.data();
  Position end = 0;
  Position known = 0;
  for (std::size_t k = 0; k < sets; ++k) {
    const Position begin = end;
    for (const std::int32_t number : history.set(k)) {
      const std::uint32_t marked = lattice_.find(number);
      items[end] = marked;
      end += static_cast<Position>(isKept(marked, marks));
      known += static_cast<Position>(marked < kStranger);
    }
    w_.sets_[k] = {begin, end, known};
    for (Position position = begin; position < end; ++position)
      keep(position, static_cast<std::uint32_t>(k));
    w_.kept_ = end;
  }
}

// Notes in which set strangers were seen last, from a set on.
void Query::noteStrangers(const History& history, std::size_t first) {
  if (!lattice_.hasStrangers()) return;
  for (std::size_t k = first; k < history.sets(); ++k)
    for (const std::int32_t number : history.set(k)) {
      const std::uint32_t marked = lattice_.find(number);
      if (marked < kStranger || marked == kNone) continue;
      const ItemId item = marked & kMostItems;
      if (w_.latest_[item] == 0) w_.strangers_.push_back(item);
      w_.latest_[item] = static_cast<std::uint32_t>(k + 1);
    }
}

// --- The search ----------------------------------------------------------------------------------

inline void Query::take(std::uint64_t steps) {
  steps_ += steps;
  if (steps_ > w_.budget_ && guarded("case.steps")) throw StepBudgetSpent(w_.budget_);
}

// A sequence found proposes, and is to be climbed from, when that leads to something that is not
// known yet. In one search only one that is joined can be reached more than once. When the history
// is searched again, with an earlier last set, a sequence found before can stand in an earlier
// place.
template <bool kAgain, Query::Reached kReached>
inline void Query::reach(NodeId id, std::uint32_t place, std::uint32_t size) {
  bool isNew = true;
  if (kAgain ? hasJoins_ : kReached == Reached::kByJoining) {
    Workspace::Visit& visit = w_.visits_[id];
    isNew = visit.query != w_.query_;
    if (!isNew && (!kAgain || visit.place == place || !lattice_.growsAbove(id))) return;
    visit = {w_.query_, place};
  }
  const Node* const node = lattice_.node(id);
  if (isNew) propose(node);
  if (node[0].climbs != node[1].climbs) w_.matches_.push_back({id, place, size});
}

// Reaches sequences with one more item in front, in an earlier set.
template <bool kAgain>
void Query::openSets(const Match& match, const Climb* begin, const Climb* end) {
  if (match.place == 0 || begin == end) return;
  if (unread_ != nullptr) readBeforeLast();
  const Position bound = endBefore(match.place);
  if (bound == 0) return;
  const auto* const occurrences = w_.occurrences_.data();
  const std::uint32_t size = match.size + 1;
  if (static_cast<std::size_t>(end - begin) > kManyLinks * bound) {
    take(bound);
    for (Position position = 1; position <= bound; ++position) {
      const ItemId item = w_.items_[position - 1] & kMostItems;
      if ((w_.items_[position - 1] & climbing_) == 0 || latest(item, bound) != position) continue;
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
  const Position bound = w_.sets_[match.place].begin;
  const Position last = w_.sets_[match.place].end;
  const std::uint32_t size = match.size + 1;
  if (static_cast<std::size_t>(end - begin) > kManyLinks * (last - bound)) {
    take(last - bound);
    for (Position position = bound; position < last; ++position)
      if (const Climb* const climb = findClimb(begin, end, w_.items_[position] & kMostItems);
          climb != nullptr && leads(*climb))
        reach<kAgain, Reached::kByJoining>(climb->node(), match.place, size);
    return;
  }
  take(static_cast<std::uint64_t>(end - begin));
  for (const Climb* climb = begin; climb != end; ++climb)
    if (leads(*climb) && latest(climb->item, last) > bound)
      reach<kAgain, Reached::kByJoining>(climb->node(), match.place, size);
}

// Whether a match takes all of the history up to the set: nothing can be in front of it.
inline bool Query::isWhole(const Match& match, std::uint32_t last) {
  if (unread_ != nullptr && match.size >= w_.sets_[last].known) readBeforeLast();
  return match.size >= w_.sets_[last].known;
}

template <bool kAgain>
void Query::search(std::uint32_t last) {
  const Workspace::Set set = w_.sets_[last];
  for (Position position = set.begin; position < set.end; ++position) {
    if ((w_.items_[position] & starting_) == 0) continue;
    const ItemId item = w_.items_[position] & kMostItems;
    const NodeId node = lattice_.item(item).node;
    if (node == kNone) continue;
    // Where nothing joins above, what ends in an item is all found from its last occurrence.
    if (kAgain && w_.last_[item] != position + 1 && (!hasJoins_ || !lattice_.growsAbove(node)))
      continue;
    reach<kAgain, Reached::kBySeed>(node, last, 1);
  }
  const Climb* const climbs = lattice_.climbs();
  while (!w_.matches_.empty()) {
    const Match match = w_.matches_.back();
    w_.matches_.pop_back();
    const Node* const node = lattice_.node(match.node);
    if (isWhole(match, last)) continue;
    openSets<kAgain>(match, climbs + node[0].climbs, climbs + node[0].joins);
    joinSets<kAgain>(match, climbs + node[0].joins, climbs + node[1].climbs);
  }
}

void Query::askCurrent(const History& history) {
  if (!readLast(history)) return;
  const std::size_t last = history.sets() - 1;
  noteStrangers(history, last);
  // Items of the last set, known or not, are there already.
  if (lastSet_ == last) excluded_ = w_.lastBegin_;
  excludedSet_ = static_cast<std::uint32_t>(last);
  search<false>(lastSet_);
}

void Query::askWhole(const History& history) {
  if (readLast(history)) search<false>(lastSet_);
}

void Query::askBeginnings(const History& history) {
  prepare(history);
  readFirst(history, history.sets(), starting_ | climbing_ | kIsOpening);
  noteStrangers(history, 0);
  for (auto last = static_cast<std::uint32_t>(history.sets()); last-- > 0;) {
    if (w_.sets_[last].known == (last == 0 ? 0 : w_.sets_[last - 1].known)) continue;
    search<true>(last);
    // Of the beginnings that end in the known set before, the longest excludes least: all from
    // here on.
    excluded_ = w_.sets_[last].begin;
    excludedSet_ = last;
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
    // Most of what is below the bar is told by a product; what is near it, by the quotient.
    if (count > 0.0 && proposal->count < bar_ * count * kNearlyOne) break;  // the rest have less
    const double confidence = proposal->count / count;
    if (confidence < bar_) continue;
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

#include "engine/Query.h"

#include <limits>

namespace orbseq::engine {

namespace {

// A run of so many links for each different item of the history is searched, not gone through.
constexpr std::size_t kManyLinks = 16;
constexpr std::uint32_t kFewOccurrences = 8;  // gone through, not searched

const Climb* findClimb(const Climb* begin, const Climb* end, ItemId item) noexcept {
  const Climb* const found = std::lower_bound(
      begin, end, item, [](const Climb& climb, ItemId wanted) { return climb.item < wanted; });
  return found != end && found->item == item ? found : nullptr;
}

}  // namespace

Query::Query(const CompiledLattice& lattice, Workspace& workspace, std::int32_t maxCount,
             Place place)
    : lattice_(lattice),
      w_(workspace),
      maxCount_(static_cast<std::size_t>(maxCount)),
      place_(place),
      customers_(lattice.customers()),
      bar_(-std::numeric_limits<double>::infinity()),
      nextBar_(std::max(kFewCandidates, 4 * std::min(maxCount_, lattice.itemCount()))) {
  w_.fit(lattice);
}

Query::~Query() {
  for (const ItemId item : w_.distinct_) w_.first_[item] = kNone;
  for (const ItemId item : w_.named_) w_.latest_[item] = 0;
  for (const Candidate& candidate : w_.candidates_) w_.candidate_[candidate.item] = kNone;
  w_.distinct_.clear();
  w_.named_.clear();
  w_.candidates_.clear();
  w_.matches_.clear();
}

// --- The history ---------------------------------------------------------------------------------

// Keeps the items that the lattice stores alone, and the sets that have any.
void Query::read(const History& history) {
  w_.items_.clear();
  w_.ends_.clear();
  w_.numbers_.clear();
  for (std::size_t k = 0; k < history.sets(); ++k) {
    const std::size_t before = w_.items_.size();
    for (const std::int32_t number : history.set(k)) {
      const ItemId item = lattice_.find(number);
      if (item != kNone && lattice_.item(item).isKnown != 0) w_.items_.push_back(item);
    }
    if (w_.items_.size() == before) continue;
    w_.ends_.push_back(static_cast<std::uint32_t>(w_.items_.size()));
    w_.numbers_.push_back(static_cast<std::uint32_t>(k));
  }
}

// The last set of each item, known or not, from a set on.
void Query::noteLatest(const History& history, std::size_t firstSet) {
  for (std::size_t k = firstSet; k < history.sets(); ++k)
    for (const std::int32_t number : history.set(k)) {
      const ItemId item = lattice_.find(number);
      if (item == kNone) continue;
      if (w_.latest_[item] == 0) w_.named_.push_back(item);
      w_.latest_[item] = static_cast<std::uint32_t>(k + 1);
    }
}

// Where each known item occurs.
void Query::index() {
  w_.occurrences_.clear();
  std::uint32_t set = 0;
  for (std::uint32_t k = 0; k < w_.items_.size(); ++k) {
    while (k == w_.ends_[set]) ++set;
    const ItemId item = w_.items_[k];
    if (w_.first_[item] == kNone) {
      w_.occurrences_.push_back({0, 0});
      w_.slot_[item] = static_cast<std::uint32_t>(w_.distinct_.size());
      w_.distinct_.push_back(item);
      w_.first_[item] = set;
    }
    ++w_.occurrences_[w_.slot_[item]].count;
  }
  if (w_.distinct_.size() == w_.items_.size()) return;  // the first are the only ones
  std::uint32_t begin = 0;
  for (auto& occurrences : w_.occurrences_) {
    occurrences.begin = begin;
    begin += occurrences.count;
    occurrences.count = 0;
  }
  w_.positions_.resize(w_.items_.size());
  set = 0;
  for (std::uint32_t k = 0; k < w_.items_.size(); ++k) {
    while (k == w_.ends_[set]) ++set;
    auto& occurrences = w_.occurrences_[w_.slot_[w_.items_[k]]];
    w_.positions_[occurrences.begin + occurrences.count++] = set;
  }
}

// The latest set before `set` that holds the item. Requires that there is one.
std::uint32_t Query::latestBefore(ItemId item, std::uint32_t set) const noexcept {
  const auto& occurrences = w_.occurrences_[w_.slot_[item]];
  if (occurrences.count == 1) return w_.first_[item];
  const std::uint32_t* const begin = w_.positions_.data() + occurrences.begin;
  const std::uint32_t* end = begin + occurrences.count;
  if (occurrences.count > kFewOccurrences) return *(std::lower_bound(begin, end, set) - 1);
  do --end;
  while (*end >= set);
  return *end;
}

bool Query::isIn(ItemId item, std::uint32_t set) const noexcept {
  const std::uint32_t first = w_.first_[item];
  return first == set || (first < set && latestBefore(item, set + 1) == set);
}

// --- The search ----------------------------------------------------------------------------------

void Query::take(std::uint64_t steps) {
  steps_ += steps;
  if (steps_ > w_.budget_) throw StepBudgetSpent(w_.budget_);
}

// Matches of sequences with one more item in front, in an earlier set.
void Query::openSets(const Match& match, const Climb* begin, const Climb* end) {
  if (match.place == 0) return;
  const std::uint32_t* const first = w_.first_.data();
  if (static_cast<std::size_t>(end - begin) > kManyLinks * w_.distinct_.size()) {
    take(w_.distinct_.size());
    for (const ItemId item : w_.distinct_)
      if (first[item] < match.place)
        if (const Climb* const climb = findClimb(begin, end, item))
          w_.matches_.push_back({climb->node, latestBefore(item, match.place), match.size + 1});
    return;
  }
  take(static_cast<std::uint64_t>(end - begin));
  for (const Climb* climb = begin; climb != end; ++climb)
    if (first[climb->item] < match.place)
      w_.matches_.push_back(
          {climb->node, latestBefore(climb->item, match.place), match.size + 1});
}

// Matches of sequences with one more item in the first set.
void Query::joinSets(const Match& match, const Climb* begin, const Climb* end) {
  const std::uint32_t setBegin = match.place == 0 ? 0 : w_.ends_[match.place - 1];
  const std::uint32_t setEnd = w_.ends_[match.place];
  if (static_cast<std::size_t>(end - begin) > kManyLinks * (setEnd - setBegin)) {
    take(setEnd - setBegin);
    for (std::uint32_t k = setBegin; k < setEnd; ++k)
      if (const Climb* const climb = findClimb(begin, end, w_.items_[k]))
        w_.matches_.push_back({climb->node, match.place, match.size + 1});
    return;
  }
  take(static_cast<std::uint64_t>(end - begin));
  for (const Climb* climb = begin; climb != end; ++climb)
    if (isIn(climb->item, match.place))
      w_.matches_.push_back({climb->node, match.place, match.size + 1});
}

// Whether a match leads to something that is not known yet; `isNew`: also itself. kAgain: the
// history was searched before, with a later last set.
template <bool kAgain>
bool Query::isToWorkOn(const Match& match, bool& isNew) {
  isNew = true;
  if (w_.visits_.empty()) return true;
  Workspace::Visit& visit = w_.visits_[match.node];
  isNew = visit.query != w_.query_;
  if (!isNew && (!kAgain || visit.place == match.place || !lattice_.growsAbove(match.node)))
    return false;
  visit = {w_.query_, match.place};
  return true;
}

template <bool kAgain>
void Query::search(std::uint32_t last) {
  const std::uint32_t begin = last == 0 ? 0 : w_.ends_[last - 1];
  const std::uint32_t items = w_.ends_[last];  // of the sets up to the last
  for (std::uint32_t k = begin; k < items; ++k) {
    const ItemId item = w_.items_[k];
    // Where nothing joins, what ends in an item is all found from its last occurrence.
    if (kAgain && w_.visits_.empty() && latestBefore(item, sets()) != last) continue;
    if (const NodeId node = lattice_.item(item).node; node != kNone)
      w_.matches_.push_back({node, last, 1});
  }
  while (!w_.matches_.empty()) {
    const Match match = w_.matches_.back();
    w_.matches_.pop_back();
    bool isNew = true;
    if (!isToWorkOn<kAgain>(match, isNew)) continue;
    if (isNew) propose(match.node);
    if (match.size >= items) continue;
    const Node* const node = lattice_.node(match.node);
    const Climb* const climbs = lattice_.climbs();
    openSets(match, climbs + node[0].climbs, climbs + node[0].joins);
    joinSets(match, climbs + node[0].joins, climbs + node[1].climbs);
  }
}

void Query::askCurrent(const History& history) {
  read(history);
  if (sets() == 0) return;
  index();
  noteLatest(history, history.sets() - 1);
  excluded_ = static_cast<std::uint32_t>(history.sets() - 1);
  search<false>(sets() - 1);
}

void Query::askWhole(const History& history) {
  read(history);
  if (sets() == 0) return;
  index();
  excluded_ = static_cast<std::uint32_t>(history.sets());
  search<false>(sets() - 1);
}

void Query::askBeginnings(const History& history) {
  read(history);
  if (sets() == 0) return;
  index();
  noteLatest(history, 0);
  excluded_ = static_cast<std::uint32_t>(history.sets());
  for (std::uint32_t last = sets(); last-- > 0;) {
    search<true>(last);
    // The beginning that ends before this set excludes least of those that end in the next one.
    excluded_ = w_.numbers_[last];
  }
}

// --- Answers -------------------------------------------------------------------------------------

void Query::propose(NodeId id) {
  const Node* const node = lattice_.node(id);
  const bool joins = place_ == Place::kJoinsLastSet;
  const Proposal* proposal = lattice_.proposals() + (joins ? node[0].proposals : node[0].opens);
  const Proposal* const end = lattice_.proposals() + (joins ? node[0].opens : node[1].proposals);
  if (proposal == end) return;
  take(1);
  const double count = node->count;
  for (; proposal != end; ++proposal) {
    const double confidence = proposal->count / count;
    if (confidence < bar_) {
      if (count > 0.0) break;  // those that follow have less still
      continue;
    }
    if (w_.latest_[proposal->item] <= excluded_)
      offer(proposal->item, confidence, proposal->count);
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

void Query::appendTo(Answers& out) {
  const std::size_t count = std::min(maxCount_, w_.candidates_.size());
  const auto first = w_.candidates_.begin();
  std::partial_sort(first, first + static_cast<std::ptrdiff_t>(count), w_.candidates_.end(),
                    [](const Candidate& a, const Candidate& b) {
                      return a.confidence != b.confidence ? a.confidence > b.confidence
                                                          : a.item > b.item;
                    });
  out.reserve(out.size() + count);  // the last step that can throw
  for (std::size_t k = 0; k < count; ++k) {
    const Candidate& candidate = w_.candidates_[k];
    const Item& item = lattice_.item(candidate.item);
    const double together = candidate.count;
    out.emplace_back(item.number, together / customers_, candidate.confidence,
                     item.node == kNone ? 0.0 : together / item.count);
  }
}

}  // namespace orbseq::engine

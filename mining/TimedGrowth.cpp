#include "mining/TimedGrowth.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace orbseq {

namespace {

constexpr double kNever = -std::numeric_limits<double>::infinity();

std::int32_t customersOf(const std::vector<TimedGrowth::Match>& matches) {
  std::int32_t count = 0;
  for (std::size_t i = 0; i < matches.size(); ++i)
    count += i == 0 || matches[i].customer != matches[i - 1].customer ? 1 : 0;
  return count;
}

}  // namespace

TimedGrowth::TimedGrowth(const FrequentLog& log, const MinerOptions& options, MinerRun& run,
                         int worker)
    : log_(log), options_(options), run_(run), worker_(worker) {}

void TimedGrowth::grow(std::uint32_t item, std::vector<PatternNode>& out) {
  Prefix prefix;
  for (std::size_t c = 0; c < log_.customers(); ++c)
    for (std::uint32_t place = 1; place <= log_.placesOf(c); ++place) {
      const auto items = log_.itemsAt(c, place);
      if (std::binary_search(items.begin(), items.end(), item))
        prefix.matches.push_back({static_cast<std::uint32_t>(c), place, log_.timeAt(c, place)});
    }
  prefix.lastItem = item;
  prefix.count = log_.support(item);
  prefix.items = prefix.sets = prefix.itemsInLastSet = 1;
  grow(prefix, out);
}

void TimedGrowth::grow(const Prefix& prefix, std::vector<PatternNode>& out) {
  run_.check(worker_, 1);
  PatternNode node;
  node.item = log_.item(prefix.lastItem);
  node.count = prefix.count;
  node.depth = static_cast<std::int16_t>(prefix.items);
  node.opensSet = prefix.opensSet;
  out.push_back(node);
  if (prefix.items >= options_.maxItems) return;
  if (prefix.sets < options_.maxSets) {
    Extensions next;
    findNext(prefix, next);
    growAll(prefix, next, false, out);
  }
  if (prefix.itemsInLastSet < options_.maxItemsPerSet) {
    Extensions joins;
    findJoins(prefix, joins);
    growAll(prefix, joins, true, out);
  }
}

void TimedGrowth::add(Extensions& found, std::uint32_t item, const Match& match) const {
  if (found.matches.empty()) found.matches.resize(log_.itemCount());
  if (found.matches[item].empty()) found.items.push_back(item);
  found.matches[item].push_back(match);
}

// A later place can follow a match when both gap and span allow it; of all matches that it can
// follow, the one with the latest beginning leaves the most room for what comes.
void TimedGrowth::findNext(const Prefix& prefix, Extensions& found) const {
  const auto& matches = prefix.matches;
  for (std::size_t from = 0; from < matches.size();) {
    const std::uint32_t customer = matches[from].customer;
    std::size_t to = from;
    while (to < matches.size() && matches[to].customer == customer) ++to;
    for (std::uint32_t place = matches[from].place + 1; place <= log_.placesOf(customer); ++place) {
      const double time = log_.timeAt(customer, place);
      double begin = kNever;
      for (std::size_t i = from; i < to && matches[i].place < place; ++i) {
        const double gap = time - log_.timeAt(customer, matches[i].place);
        const bool fits = gap >= options_.minGap && gap <= options_.maxGap &&
                          time - matches[i].begin <= options_.maxSpan;
        if (fits) begin = std::max(begin, matches[i].begin);
      }
      if (begin == kNever) continue;
      for (const std::uint32_t item : log_.itemsAt(customer, place))
        add(found, item, {customer, place, begin});
    }
    from = to;
  }
}

void TimedGrowth::findJoins(const Prefix& prefix, Extensions& found) const {
  for (const Match& match : prefix.matches) {
    const auto items = log_.itemsAt(match.customer, match.place);
    for (std::size_t k = items.size(); k > 0 && items[k - 1] > prefix.lastItem; --k)
      add(found, items[k - 1], match);
  }
}

void TimedGrowth::growAll(const Prefix& prefix, Extensions& found, bool joined,
                          std::vector<PatternNode>& out) {
  std::sort(found.items.begin(), found.items.end());
  for (const std::uint32_t item : found.items) {
    Prefix longer;
    longer.matches = std::move(found.matches[item]);
    longer.count = customersOf(longer.matches);
    if (longer.count < options_.minCustomers) continue;
    longer.lastItem = item;
    longer.items = prefix.items + 1;
    longer.sets = prefix.sets + (joined ? 0 : 1);
    longer.itemsInLastSet = joined ? prefix.itemsInLastSet + 1 : 1;
    longer.opensSet = !joined;
    const auto bytes = static_cast<std::ptrdiff_t>(longer.matches.capacity() * sizeof(Match));
    run_.account(bytes);
    grow(longer, out);
    run_.account(-bytes);
  }
}

}  // namespace orbseq

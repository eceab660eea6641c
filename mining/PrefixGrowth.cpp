#include "mining/PrefixGrowth.h"

#include <algorithm>
#include <limits>

namespace orbseq {

namespace {

constexpr std::uint32_t kNone = Projection::Extensions::kNone;

using Ends = Projection::Ends;
using Entry = Projection::Entry;
using Extensions = Projection::Extensions;

// Forgets the numbers of the former extensions before the new ones are set.
void clearNumbers(Extensions& extensions, std::size_t itemCount) {
  if (extensions.numbers.size() != itemCount) {
    extensions.numbers.assign(itemCount, kNone);
    return;
  }
  for (const std::uint32_t item : extensions.items.view()) extensions.numbers[item] = kNone;
}

}  // namespace

PrefixGrowth::PrefixGrowth(const FrequentLog& log, const MinerOptions& options, MinerRun& run,
                           int worker)
    : log_(log),
      options_(options),
      run_(run),
      worker_(worker),
      least_(static_cast<std::uint32_t>(std::max(options.minCustomers, 1))) {}

void PrefixGrowth::projectAll(const FrequentLog& log, Projection& all) {
  const std::size_t n = log.itemCount();
  const std::size_t rows = log.customers();
  std::uint32_t* const customers = all.customers.resize(rows);
  for (std::size_t c = 0; c < rows; ++c) customers[c] = static_cast<std::uint32_t>(c);
  std::copy_n(log.entryBegins().data(), rows + 1, all.entryBegins.resize(rows + 1));
  std::copy_n(log.entries().data(), log.entries().size(), all.entries.resize(log.entries().size()));

  Extensions& next = all.next;
  next.items.resize(n);
  next.numbers.resize(n);
  next.begins.assign(n + 1, 0);
  for (std::size_t i = 0; i < n; ++i) {
    next.items[i] = next.numbers[i] = static_cast<std::uint32_t>(i);
    next.begins[i + 1] = next.begins[i] + static_cast<std::uint32_t>(log.support(i));
  }
  std::vector<std::uint32_t> cursors(next.begins.data(), next.begins.data() + n);
  next.ends.resize(next.begins[n]);
  for (std::size_t c = 0; c < rows; ++c)
    for (std::uint32_t i = log.entryBegins()[c]; i < log.entryBegins()[c + 1]; ++i) {
      const Entry& entry = log.entries()[i];
      next.ends[cursors[entry.item]++] = {static_cast<std::uint32_t>(c), entry.first, entry.end};
    }
  all.join.items.resize(0);
  all.join.begins.assign(1, 0);
  all.join.numbers.assign(n, kNone);
}

PrefixGrowth::Prefix PrefixGrowth::extended(const Prefix& prefix, const Projection& projection,
                                            bool joined, std::size_t k, const FrequentLog& log) {
  const Extensions& extensions = joined ? projection.join : projection.next;
  Prefix longer;
  longer.before = &projection;
  longer.ends = extensions.endsOf(k);
  longer.places = joined ? projection.joinPlaces.data() : log.places();
  longer.lastItem = extensions.items[k];
  longer.joined = joined;
  longer.items = prefix.items + 1;
  longer.sets = prefix.sets + (joined ? 0 : 1);
  longer.itemsInLastSet = joined ? prefix.itemsInLastSet + 1 : 1;
  return longer;
}

PatternNode PrefixGrowth::nodeOf(const Prefix& prefix) const {
  PatternNode node;
  node.item = log_.item(prefix.lastItem);
  node.count = static_cast<std::int32_t>(prefix.ends.size());
  node.depth = static_cast<std::int16_t>(prefix.items);
  node.opensSet = !prefix.joined;
  return node;
}

void PrefixGrowth::grow(const Prefix& prefix, std::vector<PatternNode>& out) {
  constexpr std::size_t kCheckEvery = 256;
  if (++unchecked_ == kCheckEvery) {
    run_.check(worker_, unchecked_);
    unchecked_ = 0;
  }
  const auto depth = static_cast<std::size_t>(prefix.items);
  while (levels_.size() <= depth) levels_.push_back(std::make_unique<Projection>());
  Projection& projection = *levels_[depth];
  const std::size_t before = projection.memoryBytes();
  const bool extends = project(prefix, projection);
  keepBudget(projection, before);
  if (!extends) return;
  for (const bool joined : {false, true}) {
    const std::size_t n = (joined ? projection.join : projection.next).size();
    for (std::size_t k = 0; k < n; ++k) {
      const Prefix longer = extended(prefix, projection, joined, k, log_);
      out.push_back(nodeOf(longer));
      grow(longer, out);
    }
  }
}

void PrefixGrowth::keepBudget(const Projection& projection, std::size_t before) {
  const std::size_t now = projection.memoryBytes();
  if (now != before) run_.account(static_cast<std::ptrdiff_t>(now - before));
}

bool PrefixGrowth::project(const Prefix& prefix, Projection& projection) {
  clearNumbers(projection.next, log_.itemCount());
  clearNumbers(projection.join, log_.itemCount());
  projection.next.items.resize(0);
  projection.join.items.resize(0);
  projection.next.begins.assign(1, 0);
  projection.join.begins.assign(1, 0);
  if (prefix.items >= options_.maxItems) return false;
  if (prefix.sets < options_.maxSets) countNext(prefix, projection);
  if (log_.hasLargeSets() && prefix.itemsInLastSet < options_.maxItemsPerSet)
    countJoins(prefix, projection);
  if (projection.next.size() + projection.join.size() == 0) return false;
  fillNext(prefix, projection);
  if (projection.join.size() > 0) fillJoins(prefix, projection);
  return true;
}

// Which items of the rows' later sets are frequent. Each row's entries come with the latest last
// place first, so that those behind the end stand in front, each once.
void PrefixGrowth::countNext(const Prefix& prefix, Projection& projection) {
  const Projection& before = *prefix.before;
  const std::size_t n = before.next.size();
  std::uint32_t* const counts = counts_.assign(n, 0);
  const Entry* const entries = before.entries.data();
  const std::uint32_t* const begins = before.entryBegins.data();
  for (const Ends& ends : prefix.ends) {
    const std::uint32_t place = prefix.places[ends.begin];
    const Entry* const end = entries + begins[ends.row + 1];
    for (const Entry* entry = entries + begins[ends.row]; entry != end && entry->last > place;
         ++entry)
      ++counts[entry->item];
  }
  take(before.next, projection.next);
}

// The candidates whose counts_ suffice become the extensions; renumbered_ leads from one to the
// other.
void PrefixGrowth::take(const Extensions& candidates, Extensions& extensions) {
  const std::size_t n = candidates.size();
  std::uint32_t* const renumbered = renumbered_.resize(n);
  std::uint32_t* const items = extensions.items.resize(n);
  std::uint32_t* const begins = extensions.begins.resize(n + 1);
  std::size_t taken = 0;
  begins[0] = 0;
  for (std::size_t c = 0; c < n; ++c) {
    const bool isFrequent = counts_[c] >= least_;
    renumbered[c] = isFrequent ? static_cast<std::uint32_t>(taken) : kNone;
    if (!isFrequent) continue;
    items[taken] = candidates.items[c];
    extensions.numbers[items[taken]] = static_cast<std::uint32_t>(taken);
    begins[taken + 1] = begins[taken] + counts_[c];
    ++taken;
  }
  extensions.items.resize(taken);
  extensions.begins.resize(taken + 1);
  extensions.ends.resize(begins[taken]);
}

void PrefixGrowth::fillNext(const Prefix& prefix, Projection& projection) {
  const Projection& before = *prefix.before;
  const std::size_t rows = prefix.ends.size();
  const std::size_t n = projection.next.size();
  std::uint32_t* const customers = projection.customers.resize(rows);
  std::uint32_t* const rowBegins = projection.entryBegins.resize(rows + 1);
  // Each end of an extension comes of one entry.
  Entry* const entries = projection.entries.resize(projection.next.begins[n]);
  std::uint32_t* const cursors = cursors_.resize(n);
  std::copy_n(projection.next.begins.data(), n, cursors);
  Ends* const allEnds = projection.next.ends.data();
  const std::uint32_t* const places = log_.places();
  std::uint32_t used = 0;
  for (std::size_t row = 0; row < rows; ++row) {
    const Ends& ends = prefix.ends[row];
    customers[row] = before.customers[ends.row];
    rowBegins[row] = used;
    if (n == 0) continue;
    const std::uint32_t place = prefix.places[ends.begin];
    const Entry* const end = before.entries.data() + before.entryBegins[ends.row + 1];
    for (const Entry* entry = before.entries.data() + before.entryBegins[ends.row];
         entry != end && entry->last > place; ++entry) {
      const std::uint32_t number = renumbered_[entry->item];
      if (number == kNone) continue;
      std::uint32_t first = entry->first;
      while (places[first] <= place) ++first;  // the last one is behind
      entries[used++] = {number, entry->last, first, entry->end};
      allEnds[cursors[number]++] = {static_cast<std::uint32_t>(row), first, entry->end};
    }
  }
  rowBegins[rows] = used;
}

// Calls `each(row, place, item)` for every item that could join the prefix's last set where that
// ends; the candidates are what was frequent one item earlier.
template <class Each>
void PrefixGrowth::forEachJoin(const Prefix& prefix, Each each) const {
  const Projection& before = *prefix.before;
  for (std::size_t row = 0; row < prefix.ends.size(); ++row) {
    const Ends& ends = prefix.ends[row];
    const std::size_t customer = before.customers[ends.row];
    for (std::uint32_t i = ends.begin; i < ends.end; ++i) {
      const auto items = log_.itemsAt(customer, prefix.places[i]);
      for (std::size_t k = items.size(); k > 0 && items[k - 1] > prefix.lastItem; --k)
        each(static_cast<std::uint32_t>(row), prefix.places[i], items[k - 1]);
    }
  }
}

void PrefixGrowth::countJoins(const Prefix& prefix, Projection& projection) {
  const Extensions& candidates = prefix.joined ? prefix.before->join : prefix.before->next;
  std::uint32_t* const counts = counts_.assign(candidates.size(), 0);
  std::uint32_t* const placeCounts = placeCounts_.assign(candidates.size(), 0);
  std::uint32_t* const stamps = stamps_.assign(candidates.size(), kNone);
  forEachJoin(prefix, [&](std::uint32_t row, std::uint32_t, std::uint32_t item) {
    const std::uint32_t c = candidates.numbers[item];
    if (c == kNone) return;
    ++placeCounts[c];
    counts[c] += stamps[c] != row ? 1 : 0;
    stamps[c] = row;
  });
  // take() writes renumbered_, which fillNext still wants.
  std::swap(renumbered_, joinRenumbered_);
  take(candidates, projection.join);
  std::swap(renumbered_, joinRenumbered_);

  std::uint32_t* const cursors = placeCursors_.resize(projection.join.size());
  std::uint32_t used = 0;
  for (std::size_t c = 0; c < candidates.size(); ++c) {
    if (joinRenumbered_[c] == kNone) continue;
    cursors[joinRenumbered_[c]] = used;
    used += placeCounts[c];
  }
  projection.joinPlaces.resize(used);
}

void PrefixGrowth::fillJoins(const Prefix& prefix, Projection& projection) {
  const std::size_t n = projection.join.size();
  std::uint32_t* const cursors = cursors_.resize(n);
  for (std::size_t k = 0; k < n; ++k) cursors[k] = projection.join.begins[k];
  std::uint32_t* const stamps = stamps_.assign(n, kNone);
  Ends* const allEnds = projection.join.ends.data();
  std::uint32_t* const places = projection.joinPlaces.data();
  forEachJoin(prefix, [&](std::uint32_t row, std::uint32_t place, std::uint32_t item) {
    const std::uint32_t k = projection.join.numbers[item];
    if (k == kNone) return;
    if (stamps[k] != row) {
      stamps[k] = row;
      allEnds[cursors[k]++] = {row, placeCursors_[k], placeCursors_[k]};
    }
    places[placeCursors_[k]++] = place;
    ++allEnds[cursors[k] - 1].end;
  });
}

}  // namespace orbseq

#include "mining/FrequentLog.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <unordered_map>

#include "mining/SequenceDatabase.h"

namespace orbseq {

namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

}  // namespace

FrequentLog::FrequentLog(const SequenceDatabase& database, const MinerOptions& options) {
  if (database.occurrences() >= kNone || database.sets() >= kNone)
    throw std::length_error("a log of 2^32 - 1 items and more cannot be mined in memory");
  findItems(database, options);

  firstSets_.reserve(database.customers() + 1);
  firstSets_.push_back(0);
  setBegins_.push_back(0);
  for (std::size_t c = 0; c < database.customers(); ++c) {
    for (std::size_t set = database.firstSet(c); set < database.firstSet(c + 1); ++set) {
      auto known = items_.begin();
      for (const std::int32_t item : database.items(set)) {
        known = std::lower_bound(known, items_.end(), item);  // both ascend
        if (known == items_.end()) break;
        if (*known == item) setItems_.push_back(static_cast<std::uint32_t>(known - items_.begin()));
      }
      if (setItems_.size() == setBegins_.back()) continue;
      hasLargeSets_ = hasLargeSets_ || setItems_.size() - setBegins_.back() > 1;
      setBegins_.push_back(static_cast<std::uint32_t>(setItems_.size()));
      times_.push_back(database.time(set));
    }
    firstSets_.push_back(static_cast<std::uint32_t>(setBegins_.size() - 1));
  }
  makeEntries();
}

// The items that may be looked at and that enough customers have.
void FrequentLog::findItems(const SequenceDatabase& database, const MinerOptions& options) {
  struct Seen {
    std::int32_t customers = 0;
    std::size_t latest = 0;  // customer, counted from 1
  };
  std::unordered_map<std::int32_t, Seen> seen;
  for (std::size_t c = 0; c < database.customers(); ++c)
    for (std::size_t set = database.firstSet(c); set < database.firstSet(c + 1); ++set)
      for (const std::int32_t item : database.items(set)) {
        Seen& entry = seen[item];
        if (entry.latest == c + 1) continue;
        entry.latest = c + 1;
        ++entry.customers;
      }
  const auto isIn = [](const std::vector<std::int32_t>& items, std::int32_t item) {
    return std::find(items.begin(), items.end(), item) != items.end();
  };
  for (const auto& [item, entry] : seen) {
    if (entry.customers < options.minCustomers || isIn(options.exclude, item)) continue;
    if (options.include.empty() || isIn(options.include, item)) items_.push_back(item);
  }
  std::sort(items_.begin(), items_.end());
  for (const std::int32_t item : items_) supports_.push_back(seen[item].customers);
}

void FrequentLog::makeEntries() {
  places_.resize(setItems_.size());
  entryBegins_.reserve(firstSets_.size());
  entryBegins_.push_back(0);
  std::vector<std::uint32_t> counts(items_.size(), 0);
  std::vector<std::uint32_t> ofItem(items_.size(), kNone);  // entry of the customer's items
  std::uint32_t nextPlace = 0;
  for (std::size_t c = 0; c < customers(); ++c) {
    const std::uint32_t begin = setBegins_[firstSets_[c]];
    const std::uint32_t end = setBegins_[firstSets_[c + 1]];
    for (std::uint32_t i = begin; i < end; ++i) ++counts[setItems_[i]];
    // From the last set to the first: entries come in the order of their last places.
    const std::size_t firstEntry = entries_.size();
    for (std::uint32_t place = placesOf(c); place > 0; --place)
      for (const std::uint32_t item : itemsAt(c, place)) {
        if (ofItem[item] == kNone) {
          ofItem[item] = static_cast<std::uint32_t>(entries_.size());
          nextPlace += counts[item];
          entries_.push_back({item, place, nextPlace, nextPlace});
          counts[item] = 0;
        }
        places_[--entries_[ofItem[item]].first] = place;
      }
    for (std::size_t i = firstEntry; i < entries_.size(); ++i) ofItem[entries_[i].item] = kNone;
    entryBegins_.push_back(static_cast<std::uint32_t>(entries_.size()));
  }
}

std::size_t FrequentLog::memoryBytes() const noexcept {
  return entries_.capacity() * sizeof(Entry) + times_.capacity() * sizeof(double) +
         (items_.capacity() + supports_.capacity()) * sizeof(std::int32_t) +
         (firstSets_.capacity() + setBegins_.capacity() + setItems_.capacity() +
          entryBegins_.capacity() + places_.capacity()) *
             sizeof(std::uint32_t);
}

}  // namespace orbseq

// A database reduced to its frequent items, in the layout that growing prefixes wants.
//
// Shape. Items are numbered 0 .. itemCount() - 1, ascending by their number in the log. Each
// customer has one entry an item, the item with the latest last place first; places count the
// customer's sets from 1, sets that lost all their items left out. An entry's places stand in
// places(), ascending.
//
// Threads: any number of readers.

#ifndef MINING_FREQUENTLOG_H_
#define MINING_FREQUENTLOG_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mining/MinerOptions.h"

namespace orbseq {

class SequenceDatabase;

class FrequentLog {
 public:
  struct Entry {
    std::uint32_t item;   // number of the item
    std::uint32_t last;   // its last place
    std::uint32_t first;  // index of its first place in places()
    std::uint32_t end;    // one past its last place there
  };

  // Throws std::length_error when there are more than 2^32 - 1 occurrences.
  FrequentLog(const SequenceDatabase& database, const MinerOptions& options);

  std::size_t itemCount() const noexcept { return items_.size(); }
  std::int32_t item(std::size_t number) const noexcept { return items_[number]; }
  std::int32_t support(std::size_t number) const noexcept { return supports_[number]; }
  std::size_t customers() const noexcept { return firstSets_.size() - 1; }
  bool hasLargeSets() const noexcept { return hasLargeSets_; }  // any of two or more items

  std::span<const Entry> entries() const noexcept { return entries_; }
  // [customers() + 1] where each customer's entries begin.
  std::span<const std::uint32_t> entryBegins() const noexcept { return entryBegins_; }
  const std::uint32_t* places() const noexcept { return places_.data(); }

  // The items at a place of a customer, ascending.
  std::span<const std::uint32_t> itemsAt(std::size_t customer, std::uint32_t place) const noexcept {
    const std::size_t set = firstSets_[customer] + place - 1;
    return {setItems_.data() + setBegins_[set], setBegins_[set + 1] - setBegins_[set]};
  }
  std::uint32_t placesOf(std::size_t customer) const noexcept {
    return firstSets_[customer + 1] - firstSets_[customer];
  }
  double timeAt(std::size_t customer, std::uint32_t place) const noexcept {
    return times_[firstSets_[customer] + place - 1];
  }

  std::size_t memoryBytes() const noexcept;

 private:
  void findItems(const SequenceDatabase& database, const MinerOptions& options);
  void makeEntries();

  std::vector<std::int32_t> items_;         // [items] the log's number, ascending
  std::vector<std::int32_t> supports_;      // [items]
  std::vector<std::uint32_t> firstSets_;    // [customers + 1]
  std::vector<std::uint32_t> setBegins_;    // [sets + 1]
  std::vector<std::uint32_t> setItems_;     // [occurrences]
  std::vector<double> times_;               // [sets]
  std::vector<std::uint32_t> entryBegins_;  // [customers + 1]
  std::vector<Entry> entries_;
  std::vector<std::uint32_t> places_;  // [occurrences] by entry, ascending
  bool hasLargeSets_ = false;
};

}  // namespace orbseq

#endif  // MINING_FREQUENTLOG_H_

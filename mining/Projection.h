// What is left of a log behind a prefix, and where each of the prefix's extensions ends in it.
//
// Shape. A row for each customer that holds the prefix, with an entry for each item that is
// frequent in a later set, the latest last place first. The extensions by a new set ("next") and
// into the last set ("join") have a list of Ends each: in which row, and at which places the
// extension's last set matches, ascending - of a next one only the first is looked at unless sets
// have several items.
//
// Lifecycle. Filled by PrefixGrowth for one prefix, read while the prefix's extensions are grown;
// filled anew for another one. Its arrays only grow.
//
// Threads: any number of readers, or one writer.

#ifndef MINING_PROJECTION_H_
#define MINING_PROJECTION_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "mining/FrequentLog.h"
#include "mining/Scratch.h"

namespace orbseq {

struct Projection {
  using Entry = FrequentLog::Entry;  // the item is a number among `next`

  struct Ends {
    std::uint32_t row;
    std::uint32_t begin;  // of the places, in the log's places or in `joinPlaces`
    std::uint32_t end;
  };

  // The extensions of one kind.
  struct Extensions {
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    Scratch<std::uint32_t> items;    // [n] the log's number, ascending
    Scratch<std::uint32_t> begins;   // [n + 1] where each one's ends begin
    Scratch<Ends> ends;              // one after the other
    Scratch<std::uint32_t> numbers;  // [items of the log] number here, or kNone

    std::size_t size() const noexcept { return items.size(); }
    std::span<const Ends> endsOf(std::size_t k) const noexcept {
      return ends.view().subspan(begins[k], begins[k + 1] - begins[k]);
    }
  };

  Scratch<std::uint32_t> customers;    // [rows]
  Scratch<std::uint32_t> entryBegins;  // [rows + 1]
  Scratch<Entry> entries;
  Extensions next;
  Extensions join;
  Scratch<std::uint32_t> joinPlaces;  // places of the join extensions' ends

  std::size_t memoryBytes() const noexcept {
    const auto of = [](const Extensions& e) {
      return e.items.memoryBytes() + e.begins.memoryBytes() + e.ends.memoryBytes() +
             e.numbers.memoryBytes();
    };
    return customers.memoryBytes() + entryBegins.memoryBytes() + entries.memoryBytes() +
           joinPlaces.memoryBytes() + of(next) + of(join);
  }
};

}  // namespace orbseq

#endif  // MINING_PROJECTION_H_

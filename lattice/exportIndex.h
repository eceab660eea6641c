// The ids that a document gives to items and item sets.
//
// Shape. Items ascend; item sets are ordered lexicographically by their items, a proper prefix
// first, and times play no part. Ids are 1, 2, 3 .. in that order, whatever the order of adding.
// Every item of a listed set is listed.
//
// Lifecycle. add() the sequences, then assignIds() once, then look up.
//
// Threads: as std::map - any number of readers, or one writer.

#ifndef LATTICE_EXPORTINDEX_H_
#define LATTICE_EXPORTINDEX_H_

#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

constexpr std::int32_t kNoId = -1;  // what a document writes for something that is not listed

// Lexicographic order of item lists, owned or not.
struct ItemListOrder {
  using is_transparent = void;
  using View = std::span<const std::int32_t>;
  bool operator()(View a, View b) const noexcept;
};

class ExportIndex {
 public:
  using Sequence = SEQUENCE_NAMESPACE_800::Sequence;
  using TimedItemSet = SEQUENCE_NAMESPACE_800::TimedItemSet;
  using Items = std::map<std::int32_t, std::int32_t>;                                 // item: id
  using ItemSets = std::map<std::vector<std::int32_t>, std::int32_t, ItemListOrder>;  // items: id

  void add(const Sequence& sequence);  // its item sets, and their items
  void assignIds() noexcept;

  // The id, or kNoId.
  std::int32_t idOf(std::int32_t item) const noexcept;
  std::int32_t idOf(const TimedItemSet& set) const noexcept;

  const Items& items() const noexcept { return items_; }
  const ItemSets& itemSets() const noexcept { return itemSets_; }

 private:
  Items items_;
  ItemSets itemSets_;
};

}  // namespace orbseq

#endif  // LATTICE_EXPORTINDEX_H_

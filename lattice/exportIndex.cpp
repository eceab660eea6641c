#include "lattice/exportIndex.h"

#include <algorithm>

namespace orbseq {

namespace {

ItemListOrder::View viewOf(const SEQUENCE_NAMESPACE_800::TimedItemSet& set) noexcept {
  return {set.Begin(), set.End()};
}

template <class Map>
void numberInOrder(Map& map) noexcept {
  std::int32_t id = 0;
  for (auto& entry : map) entry.second = ++id;
}

template <class Map, class Key>
std::int32_t find(const Map& map, const Key& key) noexcept {
  const auto entry = map.find(key);
  return entry != map.end() ? entry->second : kNoId;
}

}  // namespace

bool ItemListOrder::operator()(View a, View b) const noexcept {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
}

void ExportIndex::add(const Sequence& sequence) {
  for (std::int32_t k = 0; k < sequence.Length(); ++k) {
    const TimedItemSet& set = *sequence[k];
    if (itemSets_.contains(viewOf(set))) continue;
    for (auto item = set.Begin(); item != set.End(); ++item) items_.emplace(*item, kNoId);
    itemSets_.emplace(std::vector<std::int32_t>(set.Begin(), set.End()), kNoId);
  }
}

void ExportIndex::assignIds() noexcept {
  numberInOrder(items_);
  numberInOrder(itemSets_);
}

std::int32_t ExportIndex::idOf(std::int32_t item) const noexcept { return find(items_, item); }

std::int32_t ExportIndex::idOf(const TimedItemSet& set) const noexcept {
  return find(itemSets_, viewOf(set));
}

}  // namespace orbseq

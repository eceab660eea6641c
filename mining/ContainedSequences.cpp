#include "mining/ContainedSequences.h"

#include <algorithm>
#include <utility>

#include "lattice/SequenceDictionary.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

namespace {

bool isIn(const std::vector<std::int32_t>& items, std::int32_t item) {
  return std::find(items.begin(), items.end(), item) != items.end();
}

}  // namespace

void ContainedSequences::visit(Sets customer, const Stored& stored, const Absent& absent) {
  const NTSequence empty;
  if (SequenceCounter* const counter = dictionary_.getDescriptor(&empty)) stored(*counter);
  findItems(customer);
  places_.clear();
  firstLevel(stored, absent);
  for (std::int32_t items = 2; items <= options_.maxItems && !current_.empty(); ++items)
    nextLevel(stored, absent);
  current_.clear();
}

void ContainedSequences::findItems(Sets customer) {
  occurrences_.clear();
  for (std::size_t set = 0; set < customer.size(); ++set)
    for (const std::int32_t item : customer[set]) {
      if (isIn(options_.exclude, item)) continue;
      if (options_.include.empty() || isIn(options_.include, item))
        occurrences_.emplace_back(item, static_cast<std::uint32_t>(set));
    }
  std::sort(occurrences_.begin(), occurrences_.end());
  items_.clear();
  itemBegins_.clear();
  itemPlaces_.clear();
  for (const auto& [item, set] : occurrences_) {
    if (items_.empty() || items_.back() != item) {
      items_.push_back(item);
      itemBegins_.push_back(static_cast<std::uint32_t>(itemPlaces_.size()));
    }
    itemPlaces_.push_back(set);
  }
  itemBegins_.push_back(static_cast<std::uint32_t>(itemPlaces_.size()));
}

void ContainedSequences::firstLevel(const Stored& stored, const Absent& absent) {
  current_.clear();
  if (options_.maxItems < 1 || options_.maxSets < 1 || options_.maxItemsPerSet < 1) return;
  for (std::size_t k = 0; k < items_.size(); ++k) {
    Element element;
    element.sequence.addItemAfterLast(items_[k]);
    SequenceCounter* const counter = dictionary_.getDescriptor(&element.sequence);
    if (counter == nullptr) {
      absent(element.sequence);
      continue;
    }
    if (!stored(*counter)) continue;
    element.item = items_[k];
    element.sets = element.itemsInLastSet = 1;
    element.firstPlace = static_cast<std::uint32_t>(places_.size());
    places_.insert(places_.end(), itemPlaces_.begin() + itemBegins_[k],
                   itemPlaces_.begin() + itemBegins_[k + 1]);
    element.endPlace = static_cast<std::uint32_t>(places_.size());
    current_.push_back(std::move(element));
  }
}

// Joins every contained sequence with those that begin as it goes on behind its first item.
void ContainedSequences::nextLevel(const Stored& stored, const Absent& absent) {
  above_.clear();
  const bool isSecond = !current_.empty() && current_.front().sequence.size() == 1;
  for (std::uint32_t u = 0; u < current_.size(); ++u) {
    current_[u].firstLonger = static_cast<std::uint32_t>(above_.size());
    if (isSecond) {
      for (std::uint32_t w = 0; w < current_.size(); ++w) {
        const std::int32_t item = current_[w].item;
        extend(u, w, item, true, stored, absent);
        if (item > current_[u].item) extend(u, w, item, false, stored, absent);
      }
    } else {
      const Element& suffix = below_[current_[u].suffix];
      for (std::uint32_t w = suffix.firstLonger; w < suffix.endLonger; ++w)
        extend(u, w, current_[w].item, current_[w].opensSet, stored, absent);
    }
    current_[u].endLonger = static_cast<std::uint32_t>(above_.size());
  }
  std::swap(below_, current_);
  std::swap(current_, above_);
}

void ContainedSequences::extend(std::uint32_t prefix, std::uint32_t suffix, std::int32_t item,
                                bool opensSet, const Stored& stored, const Absent& absent) {
  const Element& shorter = current_[prefix];
  Element element;
  element.prefix = prefix;
  element.suffix = suffix;
  element.item = item;
  element.opensSet = opensSet;
  element.sets = shorter.sets + (opensSet ? 1 : 0);
  element.itemsInLastSet = opensSet ? 1 : shorter.itemsInLastSet + 1;
  if (element.sets > options_.maxSets || element.itemsInLastSet > options_.maxItemsPerSet) return;
  const std::size_t before = places_.size();
  if (!match(element, shorter)) return;
  const std::int32_t position = opensSet ? 2 * shorter.sets + 1 : 2 * (shorter.sets - 1);
  element.sequence = NTSequence(shorter.sequence, item, position);
  SequenceCounter* const counter = dictionary_.getDescriptor(&element.sequence);
  if (counter == nullptr) {
    absent(element.sequence);
    places_.resize(before);
    return;
  }
  if (stored(*counter))
    above_.push_back(std::move(element));
  else
    places_.resize(before);
}

// Appends the places where the element's last set matches; false when there is none.
bool ContainedSequences::match(Element& element, const Element& prefix) {
  const auto k = static_cast<std::size_t>(
      std::lower_bound(items_.begin(), items_.end(), element.item) - items_.begin());
  const std::uint32_t* place = itemPlaces_.data() + itemBegins_[k];
  const std::uint32_t* const end = itemPlaces_.data() + itemBegins_[k + 1];
  element.firstPlace = static_cast<std::uint32_t>(places_.size());
  if (element.opensSet) {
    place = std::upper_bound(place, end, places_[prefix.firstPlace]);
    places_.insert(places_.end(), place, end);
  } else {
    for (std::uint32_t i = prefix.firstPlace; i < prefix.endPlace; ++i) {
      const std::uint32_t wanted = places_[i];
      place = std::lower_bound(place, end, wanted);
      if (place == end) break;
      if (*place == wanted) places_.push_back(wanted);
    }
  }
  element.endPlace = static_cast<std::uint32_t>(places_.size());
  return element.firstPlace != element.endPlace;
}

}  // namespace orbseq

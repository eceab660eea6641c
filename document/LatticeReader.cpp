#include "document/LatticeReader.h"

#include <cstddef>
#include <string>
#include <utility>

#include "common/Limits.h"
#include "common/guards.h"
#include "document/DomPlace.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/DictVar.h"
#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

namespace {

using OrbScore::BaseTranslator;
using OrbScore::DOMElement;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

constexpr std::int32_t kNoItem = -1;  // the reference to a pruned item

// An element name in the two forms in which it is needed.
struct Name {
  const char* text;
  const char16_t* dom;
};
constexpr Name kStatistics = {"SeqInputStats", u"SeqInputStats"};
constexpr Name kItem = {"Item", u"Item"};
constexpr Name kItemset = {"Itemset", u"Itemset"};
constexpr Name kLevel = {"LatticeLevel", u"LatticeLevel"};
constexpr Name kSequence = {"Sequence", u"Sequence"};

std::size_t index(std::int32_t id) { return static_cast<std::size_t>(id) - 1; }

const DOMElement* firstBelow(const DOMElement* element, const Name& name) {
  return BaseTranslator::GetElt(BaseTranslator::GetElementsByTagName(element, name.dom), 0);
}

class Reader {
 public:
  Reader(const DOMElement* lattice, const OrbScore::QuillonTranscoder& transcoder)
      : root_("SeqAssociationLattice", lattice), transcoder_(transcoder) {}

  LatticeTables read() {
    const DOMElement* const element = firstBelow(root_.element(), kStatistics);
    if (element == nullptr && guarded("document.no SeqInputStats"))
      root_.refuse("SeqInputStats not found; a PMML document of rules alone holds no lattice");
    const DomPlace statistics(root_, kStatistics.text, 0, element);
    tables_.numberOfSequences = statistics.integer(u"numberOfSequences");
    const std::int32_t numberOfSets = statistics.integer(u"numberOfSets", 0);
    tables_.maxSequenceSize = statistics.integer(u"maxSequenceSize", -1);
    const std::int32_t numberOfItems = statistics.integer(u"numberOfItems", 0);

    readItems(statistics, numberOfItems);
    readItemSets(statistics, numberOfSets);
    readLevels(statistics);
    return std::move(tables_);
  }

 private:
  // The first of `announced` siblings of that name; refuses when fewer are there. Null when none
  // is announced.
  const DOMElement* firstOf(const DomPlace& statistics, const char16_t* attribute, const Name& name,
                            std::int64_t announced) const {
    if (announced == 0) return nullptr;
    const DOMElement* const first = firstBelow(root_.element(), name);
    const std::int64_t present = kGuards ? countSiblings(first, name.dom, announced) : announced;
    if (present < announced && guarded("document.announced ", name.text))
      statistics.refuse(attribute, "announces " + std::to_string(announced) + ", " +
                                       std::to_string(present) + " present: " + name.text + " " +
                                       std::to_string(present + 1) + " of " +
                                       std::to_string(announced) + " missing");
    return first;
  }

  void readItems(const DomPlace& statistics, std::int32_t count);
  void readLabel(const DomPlace& item);
  void readItemSets(const DomPlace& statistics, std::int32_t count);
  std::unique_ptr<TimedItemSet> readItemSet(const DomPlace& itemSet) const;
  void readLevels(const DomPlace& statistics);
  void readLevel(const DomPlace& level);
  void readSequence(const DomPlace& sequence, HashtableSQPair& table) const;
  const DOMElement* readItemsetRefs(const DomPlace& sequence, Sequence& sets) const;
  void readAdjacency(const DomPlace& list, const NTSequence& key, SequenceCounter& counter) const;

  // Refuses when `place` announces more children than it has.
  static const DOMElement* announcedChildren(const DomPlace& place, const char16_t* attribute,
                                             const char16_t* name, std::int64_t count) {
    const DOMElement* const first = BaseTranslator::GetFirstChildElt(place.element());
    const std::int64_t present = kGuards ? countSiblings(first, name, count) : count;
    if (present < count && guarded("document.announced in ", place.name()))
      place.refuse(attribute, "announces " + std::to_string(count) + ", " +
                                  std::to_string(present) + " present");
    return first;
  }

  DomPlace root_;
  const OrbScore::QuillonTranscoder& transcoder_;
  LatticeTables tables_;
  std::vector<std::int32_t> items_;                      // [numberOfItems] value by id - 1
  std::vector<std::unique_ptr<TimedItemSet>> itemSets_;  // [numberOfSets] by id - 1
};

void Reader::readItems(const DomPlace& statistics, std::int32_t count) {
  const DOMElement* element = firstOf(statistics, u"numberOfItems", kItem, count);
  items_.resize(static_cast<std::size_t>(count));
  std::vector<bool> given(items_.size());
  for (std::int32_t k = 1; k <= count; ++k) {
    const DomPlace item(root_, kItem.text, k, element);
    const std::int32_t id = item.integer(u"id", 1, count);
    if (given[index(id)] && guarded("document.Item duplicate"))
      item.refuse(u"id", "duplicate id " + std::to_string(id));
    given[index(id)] = true;
    items_[index(id)] = item.integer(u"value");
    readLabel(item);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
}

void Reader::readLabel(const DomPlace& item) {
  const OrbScore::DomChar* const label =
      BaseTranslator::GetAttribute(item.element(), u"mappedValue");
  if (label == nullptr || *label == 0) return;
  if (!tables_.labels) tables_.labels = std::make_unique<OrbScore::BaseDictionary>();
  const std::string name = transcoder_.transcodeTo(item.text(u"value"));
  auto variable = std::make_unique<OrbScore::DictVar>(name, OrbScore::ScoreDictVar::kCategorical);
  variable->SetMappedLabel(transcoder_.transcodeTo(label));
  tables_.labels->AddVariable(name, variable.release());
}

void Reader::readItemSets(const DomPlace& statistics, std::int32_t count) {
  const DOMElement* element = firstOf(statistics, u"numberOfSets", kItemset, count);
  itemSets_.resize(static_cast<std::size_t>(count));
  for (std::int32_t k = 1; k <= count; ++k) {
    const DomPlace itemSet(root_, kItemset.text, k, element);
    const std::int32_t id = itemSet.integer(u"id", 1, count);
    if (itemSets_[index(id)] && guarded("document.Itemset duplicate"))
      itemSet.refuse(u"id", "duplicate id " + std::to_string(id));
    itemSets_[index(id)] = readItemSet(itemSet);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
}

std::unique_ptr<TimedItemSet> Reader::readItemSet(const DomPlace& itemSet) const {
  const std::int32_t count = itemSet.integer(u"numberOfItems", 0);
  const DOMElement* element = announcedChildren(itemSet, u"numberOfItems", nullptr, count);
  std::vector<std::int32_t> items;
  items.reserve(static_cast<std::size_t>(count));
  for (std::int32_t k = 1; k <= count; ++k) {
    const DomPlace reference(itemSet, "ItemRef", k, element);
    const auto highest = static_cast<std::int32_t>(items_.size());
    items.push_back(items_[index(reference.integer(u"itemRef", 1, highest))]);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
  auto set = std::make_unique<TimedItemSet>();
  set->AddAllItems(items.data(), count, 0.0);  // ascending, duplicates merged
  return set;
}

void Reader::readLevels(const DomPlace& statistics) {
  const std::int64_t count = static_cast<std::int64_t>(tables_.maxSequenceSize) + 1;
  const DOMElement* element = firstOf(statistics, u"maxSequenceSize", kLevel, count);
  if (count > LatticeLimits::kLevels && guarded("document.levels"))
    statistics.refuse(u"maxSequenceSize", std::to_string(tables_.maxSequenceSize) +
                                              " is outside -1.." +
                                              std::to_string(LatticeLimits::kLevels - 1));
  tables_.levels.resize(static_cast<std::size_t>(count));
  for (std::int64_t k = 1; k <= count; ++k) {
    readLevel(DomPlace(root_, kLevel.text, k, element));
    element = BaseTranslator::GetNextSiblingElt(element);
  }
}

void Reader::readLevel(const DomPlace& place) {
  const std::int32_t level = place.integer(u"level", 0, tables_.maxSequenceSize);
  auto& table = tables_.levels[static_cast<std::size_t>(level)];
  if (table && guarded("document.LatticeLevel duplicate"))
    place.refuse(u"level", "duplicate level " + std::to_string(level));
  const std::int32_t count = place.integer(u"numberOfSequences", 0);
  const DOMElement* element = announcedChildren(place, u"numberOfSequences", kSequence.dom, count);
  // Count x 1.5, truncated; level 0 holds the empty sequence alone. So many children are present.
  const std::int64_t capacity = level == 0 ? 2 : static_cast<std::int64_t>(count) * 3 / 2;
  table = std::make_unique<HashtableSQPair>(static_cast<int>(capacity));
  for (std::int32_t k = 1; k <= count; ++k) {
    readSequence(DomPlace(place, kSequence.text, k, element), *table);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
}

void Reader::readSequence(const DomPlace& sequence, HashtableSQPair& table) const {
  Sequence sets;
  const DOMElement* const listElement = readItemsetRefs(sequence, sets);
  auto counter = std::make_unique<SequenceCounter>();
  counter->setCount(sequence.integer(u"occurrence", 0));
  auto key = std::make_unique<NTSequence>(sets, 0);
  readAdjacency(DomPlace(sequence, "SeqAdjacentList", 1, listElement), *key, *counter);
  if (const std::int32_t most = mostInChain();
      kGuards && table.chainLength(key.get(), most) == most && guarded("document.chain"))
    sequence.refuse("more than " + std::to_string(most) + " sequences of the level share a bucket");
  if (!table.put(key.get(), counter.get())) return;  // an equal one stands; these two are freed
  static_cast<void>(key.release());
  static_cast<void>(counter.release());
}

// Returns the element that follows the references: the list of adjacent items.
const DOMElement* Reader::readItemsetRefs(const DomPlace& sequence, Sequence& sets) const {
  const std::int32_t count = sequence.integer(u"numberOfSets", 0);
  const DOMElement* element = announcedChildren(sequence, u"numberOfSets", nullptr, count);
  std::int64_t items = 0;
  for (std::int32_t k = 1; k <= count; ++k) {
    const DomPlace reference(sequence, "ItemsetRef", k, element);
    const auto highest = static_cast<std::int32_t>(itemSets_.size());
    const TimedItemSet& set = *itemSets_[index(reference.integer(u"itemsetRef", 1, highest))];
    if (set.Size() == 0 && guarded("document.empty set"))
      reference.refuse(u"itemsetRef", "empty item set in a sequence");
    items += set.Size();
    if (items > NTSequence::kMaxItems && guarded("document.items of Sequence"))
      sequence.refuse("more than " + std::to_string(NTSequence::kMaxItems) + " items");
    sets.AddTimedItemSet(&set);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
  if (element == nullptr && guarded("document.no adjacency"))
    sequence.refuse("list of adjacent items missing");
  return element;
}

void Reader::readAdjacency(const DomPlace& list, const NTSequence& key,
                           SequenceCounter& counter) const {
  const std::int32_t count = list.integer(u"numberOfAdjacentItems", 0);
  const DOMElement* element = announcedChildren(list, u"numberOfAdjacentItems", nullptr, count);
  for (std::int32_t k = 1; k <= count; ++k) {
    const DomPlace entry(list, "AdjacentItem", k, element);
    const auto highest = static_cast<std::int32_t>(items_.size());
    const std::int32_t reference = entry.integer(u"itemRef");
    if ((reference < 1 || reference > highest) && reference != kNoItem &&
        guarded("document.AdjacentItem"))
      entry.refuse(u"itemRef", std::to_string(reference) + " is outside 1.." +
                                   std::to_string(highest) + " and not -1");
    const std::int32_t position = entry.integer(u"position", 0, 2 * key.getNSets() + 1);
    if (!key.isPosition(position) && guarded("document.position"))
      entry.refuse(u"position", std::to_string(position) + " names no extension of a sequence of " +
                                    std::to_string(key.getNSets()) +
                                    " item sets (allowed: " + key.positionsText() + ")");
    if (reference != kNoItem) counter.addAdjacentItem(items_[index(reference)], position);
    element = BaseTranslator::GetNextSiblingElt(element);
  }
}

}  // namespace

const DOMElement* latticeIn(const DOMElement* modelElement) {
  const DOMElement* const lattice = BaseTranslator::GetElt(
      BaseTranslator::GetElementsByTagName(modelElement, u"SeqAssociationLattice"), 0);
  return lattice != nullptr ? lattice : modelElement;
}

LatticeTables readLattice(const DOMElement* lattice,
                          const OrbScore::QuillonTranscoder& transcoder) {
  return Reader(lattice, transcoder).read();
}

}  // namespace orbseq

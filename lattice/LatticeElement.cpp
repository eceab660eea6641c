#include "lattice/LatticeElement.h"

#include <cstddef>
#include <memory>
#include <set>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;

// Calls `each` with every key of a level and the sequence unpacked from it, in the table's order.
template <class Each>
void forEachSequence(const SequenceDictionary& dictionary, std::int32_t level, Each each) {
  const HashtableSQPair* const table = dictionary.getTable(level);
  if (table == nullptr) return;
  for (const ISQCPair& entry : *table) {
    const std::unique_ptr<const Sequence> sequence(entry.key->createSequence());
    each(*entry.key, *sequence);
  }
}

// Whether the items of every set ascend, as in every key that is packed from a sequence.
bool isAscending(const NTSequence& key) noexcept {
  const auto items = key.items();
  for (std::int32_t p = 0; p + 1 < key.size(); ++p) {
    const auto i = static_cast<std::size_t>(p);
    if (!key.endsSet(p) && items[i] >= items[i + 1]) return false;
  }
  return true;
}

// Counts different sequences. Keys that ascend and stand in the level of their size differ from
// each other; all others, which only a table made by hand has, are kept and looked up at the end.
class DifferentSequences {
 public:
  void add(const NTSequence& key, const Sequence& sequence, std::int32_t level) {
    if (key.size() == level && isAscending(key))
      ++inPlace_;
    else
      others_.insert(sequence);
  }

  std::int32_t count(const SequenceDictionary& dictionary) const {
    std::int32_t total = inPlace_;
    for (const Sequence& sequence : others_)
      if (!dictionary.isStored(NTSequence(&sequence))) ++total;
    return total;
  }

 private:
  std::int32_t inPlace_ = 0;
  std::set<Sequence> others_;
};

void addAdjacentItems(Element& parent, const SequenceCounter* counter, const ExportIndex& index) {
  Element& list = addElement(parent, "SeqAdjacentList");
  list.AddAttribute("numberOfAdjacentItems", counter != nullptr ? counter->getNAdjacent() : 0);
  if (counter == nullptr || counter->getAdjacentItems() == nullptr) return;
  for (const auto& [item, position] : *counter->getAdjacentItems()) {
    Element& entry = addElement(list, "AdjacentItem");
    entry.AddAttribute("itemRef", index.idOf(item));
    entry.AddAttribute("position", position);
  }
}

}  // namespace

LatticeElement::LatticeElement(const SequenceDictionary& dictionary,
                               const LatticeDocumentOptions& options)
    : dictionary_(dictionary),
      options_(options),
      largest_(dictionary.LargestSequence()),
      customers_(customersOf(dictionary)) {
  DifferentSequences different;
  for (std::int32_t level = 0; level < dictionary.getNumLevels(); ++level)
    forEachSequence(dictionary, level, [&](const NTSequence& key, const Sequence& sequence) {
      index_.add(sequence);
      different.add(key, sequence, level);
    });
  different_ = different.count(dictionary);
  index_.assignIds();
}

ElementPtr LatticeElement::make() const {
  ElementPtr lattice = makeElement("SeqAssociationLattice");
  addStatistics(*lattice);
  addItems(*lattice, index_, options_.labels);
  addItemSets(*lattice, index_);
  std::int32_t firstId = 1;
  for (std::int32_t level = 0; level <= largest_; ++level) {
    addLevel(*lattice, level, firstId);
    firstId += dictionary_.CountSequencesOfSize(level);
  }
  if (options_.closed) {
    Element& closing = addElement(*lattice, "LatticeLevel");
    closing.AddAttribute("level", largest_ + 1.0);
    closing.AddAttribute("numberOfSequences", 0);
  }
  return lattice;
}

void LatticeElement::addStatistics(Element& lattice) const {
  Element& statistics = addElement(lattice, "SeqInputStats");
  statistics.AddAttribute("numberOfTransactions", customers_);
  statistics.AddAttribute("minimumSupport", minimumSupportOf(dictionary_, options_.minimumSupport));
  statistics.AddAttribute("maxSequenceSize", largest_ + (options_.closed ? 1.0 : 0.0));
  statistics.AddAttribute("numberOfItems", static_cast<double>(index_.items().size()));
  statistics.AddAttribute("numberOfSets", static_cast<double>(index_.itemSets().size()));
  statistics.AddAttribute("numberOfSequences", different_);
}

// The sequences are unpacked while they are written, one at a time.
void LatticeElement::addLevel(Element& lattice, std::int32_t level, std::int32_t firstId) const {
  Element& element = addElement(lattice, "LatticeLevel");
  element.AddAttribute("level", level);
  const std::int32_t count = dictionary_.CountSequencesOfSize(level);
  element.AddAttribute("numberOfSequences", count);
  if (count == 0) return;
  addGenerated(element, [this, level, firstId](const GeneratedElements::Consumer& take) {
    std::int32_t id = firstId;
    forEachSequence(dictionary_, level, [&](const NTSequence&, const Sequence& sequence) {
      take(*sequenceElement(sequence, id++));
    });
  });
}

ElementPtr LatticeElement::sequenceElement(const Sequence& sequence, std::int32_t id) const {
  const SequenceCounter* const counter = counterOf(dictionary_, sequence);
  ElementPtr element = makeElement("Sequence");
  element->AddAttribute("id", id);
  element->AddAttribute("support", countOf(counter) / customers_);
  element->AddAttribute("occurrence", countOf(counter));
  element->AddAttribute("numberOfSets", sequence.Length());
  for (std::int32_t k = 0; k < sequence.Length(); ++k)
    addElement(*element, "ItemsetRef").AddAttribute("itemsetRef", index_.idOf(*sequence[k]));
  addAdjacentItems(*element, counter, index_);
  return element;
}

}  // namespace orbseq

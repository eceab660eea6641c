// What the lattice document and the PMML document have in common.
//
// Everything that a function here returns belongs to the caller; an index or labels that are handed
// in must outlive the elements made from them.

#ifndef LATTICE_EXPORTPARTS_H_
#define LATTICE_EXPORTPARTS_H_

#include <cstdint>
#include <memory>

#include "lattice/GeneratedElements.h"
#include "lattice/LatticeDocument.h"
#include "lattice/exportIndex.h"
#include "xml/XMLElement.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceCounter;
}

namespace orbseq {

constexpr const char* kExtender = "OrbSequence";
constexpr const char* kLatticeVersion = "1.2.1";

using Element = OrbXML_830::XMLElement;
using ElementPtr = std::unique_ptr<Element>;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

ElementPtr makeElement(const char* name);
Element& addElement(Element& parent, const char* name);  // a new last child, owned by the parent
void addElement(Element& parent, ElementPtr child);
void addGenerated(Element& parent, GeneratedElements::Generator generate);

// Header with its Application.
void addHeader(Element& root, const char* description);
// One Item or Itemset per entry of the index, in its order.
void addItems(Element& parent, const ExportIndex& index, const ItemLabelMap* labels);
void addItemSets(Element& parent, const ExportIndex& index);

// The counter of an equal sequence that is stored, or null; uses no scratch.
const SequenceCounter* counterOf(const SequenceDictionary& dictionary, const Sequence& sequence);
std::int32_t countOf(const SequenceCounter* counter) noexcept;   // 0 for null
std::int32_t customersOf(const SequenceDictionary& dictionary);  // the empty sequence's count
// The dictionary's own threshold, or `asked` where that is not smaller.
double minimumSupportOf(const SequenceDictionary& dictionary, double asked) noexcept;

}  // namespace orbseq

#endif  // LATTICE_EXPORTPARTS_H_

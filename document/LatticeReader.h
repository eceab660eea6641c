// Reads the lattice vocabulary of a document into one table per level.
//
// Below the given element it expects, each found by its name,
//   SeqInputStats   numberOfSequences, numberOfSets, maxSequenceSize, numberOfItems
//   Item            id (1 .. numberOfItems, each once), value; mappedValue is an optional label
//   Itemset         id (1 .. numberOfSets, each once), numberOfItems; children with itemRef
//   LatticeLevel    level (0 .. maxSequenceSize, each once), numberOfSequences; children:
//   Sequence        numberOfSets, occurrence; so many children with itemsetRef, and then a list
//   with
//                   numberOfAdjacentItems and so many children with itemRef and position
// Elements of one kind are siblings that follow each other; what comes after the announced number
// of them is ignored. A maxSequenceSize of -1 announces no level.
//
// Everything is checked before it is used, and nothing is allocated from a count that was not
// compared with the elements that are there. numberOfSequences of SeqInputStats is kept and
// compared with nothing: an export of a lattice with a gap announces more than it lists.
//
// An adjacent item with the itemRef -1 stands for an item that a pruned lattice no longer holds,
// and is skipped. Of equal sequences in one level the first stands. A sequence whose number of
// items is not its level is stored where the level says and never found.

#ifndef DOCUMENT_LATTICEREADER_H_
#define DOCUMENT_LATTICEREADER_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "scoring/hostapi/BaseDictionary.h"
#include "scoring/hostapi/DomTypes.h"
#include "scoring/hostapi/QuillonTranscoder.h"
#include "sequence/HashtableSQPair.h"

namespace orbseq {

struct LatticeTables {
  std::int32_t numberOfSequences = 0;  // as announced
  std::int32_t maxSequenceSize = -1;   // the highest level; -1: none
  // [maxSequenceSize + 1] by level; none is null.
  std::vector<std::unique_ptr<SEQUENCE_NAMESPACE_800::HashtableSQPair>> levels;
  // Label by item value; null when no item has one.
  std::unique_ptr<OrbScore::BaseDictionary> labels;
};

// The lattice's element below a model element: the first SeqAssociationLattice, or the model
// element itself where there is none. Requires a model element.
const OrbScore::DOMElement* latticeIn(const OrbScore::DOMElement* modelElement);

// Throws QuException that names the place and the allowed range.
LatticeTables readLattice(const OrbScore::DOMElement* lattice,
                          const OrbScore::QuillonTranscoder& transcoder);

}  // namespace orbseq

#endif  // DOCUMENT_LATTICEREADER_H_

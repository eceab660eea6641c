// The element SeqAssociationLattice: the part of a document from which a lattice is read back.
//
// Lifecycle. Made over a dictionary, which it walks once to number items and item sets and to count
// the sequences. The elements it makes read the dictionary again while they are written; the
// dictionary must stay as it is, and this object must outlive them.
//
// Threads: any number of readers.

#ifndef LATTICE_LATTICEELEMENT_H_
#define LATTICE_LATTICEELEMENT_H_

#include <cstdint>

#include "lattice/LatticeDocument.h"
#include "lattice/exportIndex.h"
#include "lattice/exportParts.h"

namespace orbseq {

class LatticeElement {
 public:
  LatticeElement(const SequenceDictionary& dictionary, const LatticeDocumentOptions& options);
  LatticeElement(const LatticeElement&) = delete;
  LatticeElement& operator=(const LatticeElement&) = delete;

  ElementPtr make() const;

 private:
  void addStatistics(Element& lattice) const;
  void addLevel(Element& lattice, std::int32_t level, std::int32_t firstId) const;
  ElementPtr sequenceElement(const Sequence& sequence, std::int32_t id) const;

  const SequenceDictionary& dictionary_;
  const LatticeDocumentOptions options_;
  const std::int32_t largest_;  // the highest level that is listed
  const double customers_;
  ExportIndex index_;
  std::int32_t different_ = 0;  // sequences over all levels, equal ones counted once
};

}  // namespace orbseq

#endif  // LATTICE_LATTICEELEMENT_H_

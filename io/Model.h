// A model as people keep it: the lattice, and the labels of its items.

#ifndef IO_MODEL_H_
#define IO_MODEL_H_

#include <memory>

#include "lattice/LatticeDocument.h"
#include "lattice/SequenceDictionary.h"

namespace orbseq {

// A dictionary that can be owned by a pointer to itself.
class Lattice final : public SEQUENCE_NAMESPACE_800::SequenceDictionary {
 public:
  using SequenceDictionary::SequenceDictionary;
};

struct Model {
  std::unique_ptr<Lattice> lattice = std::make_unique<Lattice>();  // never null
  ItemLabelMap labels;                                             // of the items that have one
};

}  // namespace orbseq

#endif  // IO_MODEL_H_

// A model as it is asked: the compiled lattice, and the labels of its items.
//
// It is read from every form of a model (io/ModelFile.h) and answers as the scoring module does: a
// document's highest level is left out. A compiled form in a file is mapped and checked, and
// answers at once; labels are those of the file beside it. Other forms are compiled.
//
// Errors: as io/ModelFile.h; a bad compiled form is InputError "FILE: offset 0x1A4: detail".

#ifndef IO_COMPILEDMODEL_H_
#define IO_COMPILEDMODEL_H_

#include <string>

#include "engine/CompiledLattice.h"
#include "host/DocumentLimits.h"
#include "io/Model.h"

namespace orbseq {

struct CompiledModel {
  engine::CompiledLattice lattice;
  ItemLabelMap labels;
};

// `path` "-" is standard input.
CompiledModel readCompiledModel(const std::string& path,
                                const OrbScore::DocumentLimits& limits = {});

}  // namespace orbseq

#endif  // IO_COMPILEDMODEL_H_

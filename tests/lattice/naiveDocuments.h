// The documents a second time, written down as plainly as possible: over vectors and maps of
// copies, as one text, with nothing of the writers but the dictionary's own answers.

#ifndef TESTS_LATTICE_NAIVEDOCUMENTS_H_
#define TESTS_LATTICE_NAIVEDOCUMENTS_H_

#include <string>

#include "lattice/LatticeDocument.h"
#include "tests/support/World.h"

namespace orbseq::test {

std::string naiveLatticeDocument(const SequenceDictionary& dictionary,
                                 const LatticeDocumentOptions& options);
std::string naivePmml(const SequenceDictionary& dictionary, const PmmlOptions& options);

}  // namespace orbseq::test

#endif  // TESTS_LATTICE_NAIVEDOCUMENTS_H_

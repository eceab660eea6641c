// The documents of a lattice: its own vocabulary, which the scoring module reads, and PMML 3.2 with
// its rules, which may carry the lattice as an extension.
//
// Shape. docs/formats/lattice-document.md and docs/formats/pmml.md describe both, element by
// element. ExportLatticeXML and ExportRulesXML of a dictionary are these writers with the options
// that add nothing; equal dictionaries give equal bytes, whatever the locale.
//
// Closing. A model hides its document's highest level from look-ups. A closed document ends with
// one more, empty level, so that nothing of the lattice is hidden.
//
// Memory. The elements that repeat are written one at a time; beside the dictionary a writer holds
// the ids of items and item sets, and one sequence unpacked. For the rules it holds the rules.
//
// Streams. Any stream will do; its locale and flags play no part. Its state is not looked at: flush
// it and check it afterwards. What a failing write has put out stays.
//
// Threads: the dictionary is only read; any number of threads may write its documents at once.

#ifndef LATTICE_LATTICEDOCUMENT_H_
#define LATTICE_LATTICEDOCUMENT_H_

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <map>
#include <string>

#include "common/OrbExport.h"
#include "common/OrbStatus.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceDictionary;
}

namespace orbseq {

// What the documents of this system say of their copyright.
inline constexpr const char* kCopyright = "Copyright (c) OrbSequence";

// Text by item, in UTF-8. What XML cannot hold is shown as U+FFFD. An empty text is no label.
using ItemLabelMap = std::map<std::int32_t, std::string>;

struct LatticeDocumentOptions {
  bool closed = false;                   // see Closing above
  const ItemLabelMap* labels = nullptr;  // the caller's, for the time of the call; null: none
  // A fraction of the customers; written where it is not below the dictionary's own threshold.
  double minimumSupport = 0.0;
};

// Writes the lattice document. Exceptions pass through: std::bad_alloc, and whatever the stream is
// set to throw.
ORBSEQ_EXPORT void writeLatticeDocument(
    std::ostream& os, const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary,
    const LatticeDocumentOptions& options);

struct PmmlOptions {
  // Which rules, as SequenceDictionary::GetRules takes it: inclusive fractions. The defaults
  // select every rule. A cause can exceed 1 where counts are not those of one log.
  double minSupport = 0.0;  // written as the minimum support, as in LatticeDocumentOptions
  double maxSupport = 1.0;
  double minConfidence = 0.0;  // written as the minimum confidence
  double maxConfidence = 1.0;
  double minCause = 0.0;
  double maxCause = std::numeric_limits<double>::max();
  char sortBy = 'C';  // 'S' support, 'C' confidence, 'A' cause; else as discovered
  bool maximalOnly = false;

  // Statistics of the training data, which only this document records.
  int maxItemsPerTransaction = 0;
  double avgItemsPerTransaction = 0.0;

  bool lattice = true;                   // carry the closed lattice, so that the module can score
  const ItemLabelMap* labels = nullptr;  // the caller's, for the time of the call; null: none
};

// Writes the rules as PMML. The status is that of GetRules, and when that is an error nothing is
// written. When something fails later (memory, a stream that throws) the status is an error of code
// 60000, and a part may have been written.
ORBSEQ_EXPORT OrbCommon_830::OrbStatus writePmml(
    std::ostream& os, const SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary,
    const PmmlOptions& options);

}  // namespace orbseq

#endif  // LATTICE_LATTICEDOCUMENT_H_

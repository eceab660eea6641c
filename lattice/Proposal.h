// Why an item is recommended: every stored sequence of a history that proposes it.
//
// The answers of GetCurrentItems and GetFutureItems are the winners: for each item the proposal of
// the highest confidence, among equals that of the highest support, among these the first.
//
// Plain values. Threads: as the queries of SequenceDictionary. Errors: std::bad_alloc.

#ifndef LATTICE_PROPOSAL_H_
#define LATTICE_PROPOSAL_H_

#include <cstdint>
#include <vector>

#include "common/OrbExport.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace SEQUENCE_NAMESPACE_800 {

class SequenceDictionary;

struct Proposal {
  NTSequence sequence;        // found in the history; without items: what is popular
  std::int32_t count = 0;     // customers that hold it
  std::int32_t together = 0;  // customers that hold it with the item
  bool joinsLastSet = false;  // the item completes the last item set; else it opens a new one
  std::int32_t skipped = 0;   // item sets that were left out at the end of the history
  bool wins = false;          // this is what the item's answer says
  SeqConsequentDescriptor consequent{0, 0.0, 0.0, 0.0};
};

// All proposals, items in the order of the answer, each item's winner first and the others as they
// are found. A null customer, or one without item sets, asks for what is popular.
ORBSEQ_EXPORT std::vector<Proposal> explainCurrentItems(const SequenceDictionary& dictionary,
                                                        const Sequence* customer);
ORBSEQ_EXPORT std::vector<Proposal> explainFutureItems(const SequenceDictionary& dictionary,
                                                       const Sequence* customer, bool wholeOnly);

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_PROPOSAL_H_

// What a customer takes next, and what completes the basket: the answers of SequenceDictionary's
// GetFutureItems and GetCurrentItems, bit for bit, from a compiled lattice.
//
// How a history is searched. Sequences that end in the history's last known set are found from
// their end: single items of that set first, then what has one more item in front, which stands in
// the latest set before, or joins the set where the front is matched.
//
//  - A sequence is matched to one place alone. Let its first item set A be opened by item x, with
//    the rest matched from set q on. The place is the latest set before q that holds x, and holds
//    all of A. A later set before q that holds all of A would hold x. So the place is the latest
//    set before q that holds A, whichever item opened it, and by induction q depends on the
//    sequence alone.
//  - So a sequence is worked on once. Only one whose first set has several items can be reached by
//    several ways (as many as items); what opens its first set has one way.
//  - What is best for an item does not depend on the order in which sequences are found: among
//    proposals of equal confidence and support the counts are equal, and with them the cause.
//
// Beginnings. Asking every beginning searches once for each known set e as the last one, from the
// latest. What a beginning excludes - items seen after it - grows on the way, so a sequence
// proposes where it is found first; later it has nothing new to say. A sequence that is found again
// stands at the same place or an earlier one; what opens a set in front of it was found before, in
// front of its later place, where there was as much history or more. Only what joins sets can be
// new then, so a sequence above which nothing joins is not worked on again, nor is one at the place
// where it was.
//
// Cost. Linear in the history and in the links of the sequences found; where a sequence has many
// more links than the history has different items, these are looked up in the links instead. What
// is before the last known set is read when something climbs there, and only items that climbs go
// by are kept of it; beginnings keep what starts a search, too, or is proposed.
//
// Threads: any number may query one recommender, each with a workspace of its own.

#ifndef ENGINE_RECOMMENDER_H_
#define ENGINE_RECOMMENDER_H_

#include <cstdint>
#include <vector>

#include "common/OrbExport.h"
#include "engine/CompiledLattice.h"
#include "engine/History.h"
#include "engine/Workspace.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace orbseq::engine {

using Answers = std::vector<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;

class ORBSEQ_EXPORT Recommender {
 public:
  // The lattice must outlive the recommender.
  explicit Recommender(const CompiledLattice& lattice) noexcept : lattice_(lattice) {}

  // Append at most maxCount answers: by confidence descending, greater items first among equals. A
  // history without sets asks for what most customers hold. With wholeOnly false every beginning of
  // the history is asked.
  // Errors: StepBudgetSpent, std::bad_alloc; then `out` is unchanged and the workspace usable.
  void currentItems(const History& history, std::int32_t maxCount, Workspace& workspace,
                    Answers& out) const;
  void futureItems(const History& history, std::int32_t maxCount, bool wholeOnly,
                   Workspace& workspace, Answers& out) const;

 private:
  void popularItems(std::int32_t maxCount, Answers& out) const;

  const CompiledLattice& lattice_;
};

}  // namespace orbseq::engine

#endif  // ENGINE_RECOMMENDER_H_

// The scratch of queries: what a thread needs beside a compiled lattice and a history.
//
// One query at a time uses a workspace; it can be used again and again, and for one lattice after
// the other, and then allocates only where a history or a lattice is larger than any before.
// Memory: 12 bytes an item of the lattice; 8 bytes a node where the lattice has joins; and what the
// largest history and search took.
//
// Threads: one at a time on one workspace.

#ifndef ENGINE_WORKSPACE_H_
#define ENGINE_WORKSPACE_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include "common/OrbExport.h"
#include "engine/CompiledLattice.h"

namespace orbseq::engine {

// A query took more steps than it may.
class ORBSEQ_EXPORT StepBudgetSpent : public std::runtime_error {
 public:
  explicit StepBudgetSpent(std::uint64_t budget);
  ~StepBudgetSpent() override;
};

class ORBSEQ_EXPORT Workspace {
 public:
  // A query takes a step for each link of a sequence that it finds. Without a call there is no
  // limit.
  void setStepBudget(std::uint64_t steps) noexcept { budget_ = steps; }

 private:
  friend class Query;

  // A place in items_, counted from 1; 0: none.
  using Position = std::uint32_t;
  // An item in a set. Jumps lead to earlier occurrences of the same item, further the more there
  // are, so that one of any time is found in logarithmic steps (Myers, An applicative random-access
  // stack, 1983).
  struct Occurrence {
    Position previous;
    Position jump;
    std::uint32_t rank;  // among the item's occurrences, from 1
    std::uint32_t set;   // of the history, from 0
  };
  struct Set {
    Position begin;  // of the first kept item, less 1
    Position end;    // of the last kept item
    Position known;  // items up to here, kept or not, that the lattice stores alone
  };
  // A sequence found, of so many items, whose first item set is matched to a set.
  struct Match {
    NodeId node;
    std::uint32_t place;
    std::uint32_t size;  // at most 31
  };
  struct Visit {
    std::uint32_t query;  // in which the node was met last
    std::uint32_t place;  // and where
  };
  struct Candidate {
    double confidence;
    std::int32_t count;
    ItemId item;
  };

  void fit(const CompiledLattice& lattice);

  std::uint64_t budget_ = std::numeric_limits<std::uint64_t>::max();

  // [items] of the lattice; all as here between two queries.
  std::vector<Position> last_;            // last occurrence of a kept item; 0: none
  std::vector<std::uint32_t> latest_;     // of a stranger: the last set, counted from 1; 0: none
  std::vector<std::uint32_t> candidate_;  // index in candidates_; kNone: none
  std::vector<ItemId> strangers_;         // items whose latest_ is set

  // What is kept of the history, at positions that ascend, with a gap before the last known set
  // where it was read by itself.
  std::vector<std::uint32_t> items_;     // [history's items] with their marks; position - 1
  std::vector<Occurrence> occurrences_;  // [history's items + 1] of items that climbs go by
  std::vector<Set> sets_;                // [history's sets]
  Position kept_ = 0;                    // one past the last position but those of the last set
  Position lastBegin_ = 0;               // where the last known set was read by itself
  Position lastEnd_ = 0;

  std::vector<Match> matches_;  // to be worked on
  std::vector<Visit> visits_;   // [nodes] where the lattice has joins
  std::uint32_t query_ = 0;
  std::vector<Candidate> candidates_;
  std::vector<Candidate> ranked_;
  std::vector<double> confidences_;
};

}  // namespace orbseq::engine

#endif  // ENGINE_WORKSPACE_H_

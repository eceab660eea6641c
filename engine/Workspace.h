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
  // A query takes a step for each link of a sequence that it finds. Without a call there is no limit.
  void setStepBudget(std::uint64_t steps) noexcept { budget_ = steps; }

 private:
  friend class Query;

  // The occurrences of an item in the history's known sets.
  struct Occurrences {
    std::uint32_t begin;  // in positions_
    std::uint32_t count;
  };
  // A sequence found, of so many items, whose first item set is matched to a set.
  struct Match {
    NodeId node;
    std::uint32_t place;
    std::uint32_t size;
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
  std::vector<std::uint32_t> first_;      // first known set that holds the item; kNone: none
  std::vector<std::uint32_t> latest_;     // last set that holds it, counted from 1; 0: none
  std::vector<std::uint32_t> candidate_;  // index in candidates_; kNone: none
  std::vector<ItemId> named_;             // items whose latest_ is set

  // The history's known sets: those that hold items which the lattice stores alone, and these.
  std::vector<ItemId> items_;           // set after set, ascending
  std::vector<std::uint32_t> ends_;     // one past each set's last item
  std::vector<std::uint32_t> numbers_;  // of each set in the whole history
  std::vector<ItemId> distinct_;        // items whose first_ is set
  std::vector<Occurrences> occurrences_;   // [distinct]
  std::vector<std::uint32_t> slot_;        // [items] of the lattice: index in distinct_
  std::vector<std::uint32_t> positions_;   // known sets of each distinct item, ascending

  std::vector<Match> matches_;  // to be worked on
  std::vector<Visit> visits_;   // [nodes] where the lattice has joins
  std::uint32_t query_ = 0;
  std::vector<Candidate> candidates_;
  std::vector<double> confidences_;
};

}  // namespace orbseq::engine

#endif  // ENGINE_WORKSPACE_H_

// One query on a workspace. For this room alone.

#ifndef ENGINE_QUERY_H_
#define ENGINE_QUERY_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "engine/CompiledLattice.h"
#include "engine/History.h"
#include "engine/Recommender.h"
#include "engine/Workspace.h"

namespace orbseq::engine {

class Query {
 public:
  // `kind`: which links of a sequence answer, kJoining or kOpening. Requires maxCount > 0.
  Query(const CompiledLattice& lattice, Workspace& workspace, std::int32_t maxCount,
        std::uint32_t kind);
  ~Query();  // leaves the workspace as it was
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  void askCurrent(const History& history);
  void askWhole(const History& history);
  void askBeginnings(const History& history);

  void appendTo(Answers& out);

 private:
  using Match = Workspace::Match;
  using Candidate = Workspace::Candidate;
  static constexpr std::size_t kFewCandidates = 64;  // below, a cut is not looked for
  static constexpr std::size_t kFewRanks = 32;       // put in order by insertion

  using Position = Workspace::Position;

  // What is done with strangers: nothing, or their last set is noted.
  enum class Strangers { kLeaveOut, kNote };
  void read(const History& history, Strangers strangers);
  void addStranger(ItemId item, std::size_t set);

  std::uint32_t sets() const noexcept { return static_cast<std::uint32_t>(w_.ends_.size()); }
  Position beginOf(std::uint32_t set) const noexcept { return set == 0 ? 0 : w_.ends_[set - 1]; }
  // The latest occurrence at or before a position; 0: none.
  Position latest(ItemId item, Position bound) const noexcept {
    Position position = w_.last_[item];
    while (position > bound) {
      const auto& occurrence = w_.occurrences_[position];
      position = occurrence.jump > bound ? occurrence.jump : occurrence.previous;
    }
    return position;
  }

  template <bool kAgain>
  void search(std::uint32_t last);
  // Whether the climb leads to anything that answers.
  bool leads(const Climb& climb) const noexcept { return (climb.marked & kind_) != 0; }
  template <bool kAgain>
  void openSets(const Match& match, const Climb* begin, const Climb* end);
  template <bool kAgain>
  void joinSets(const Match& match, const Climb* begin, const Climb* end);
  enum class Reached { kBySeed, kByOpening, kByJoining };
  template <bool kAgain, Reached kReached>
  void reach(NodeId node, std::uint32_t place, std::uint32_t size);
  void take(std::uint64_t steps);
  void propose(const Node* node);
  template <class IsExcluded>
  void proposeRun(const Proposal* begin, const Proposal* end, double count, IsExcluded isExcluded);
  void offer(ItemId item, double confidence, std::int32_t count);
  void raiseBar();
  std::size_t rank();

  const CompiledLattice& lattice_;
  Workspace& w_;
  const std::size_t maxCount_;
  const std::uint32_t kind_;
  const bool hasJoins_;  // of the kind
  const double customers_;
  double bar_;  // confidence below which a proposal cannot be an answer
  // Not proposed are known items seen behind the position, and strangers in a set of this number,
  // from 0, or a greater one.
  Position excluded_ = 0;
  std::uint32_t excludedSet_ = 0;
  std::uint64_t steps_ = 0;
  std::size_t nextBar_;  // candidates at which the bar is looked for again
};

}  // namespace orbseq::engine

#endif  // ENGINE_QUERY_H_

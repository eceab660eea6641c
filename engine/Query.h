// One query on a workspace. For this room alone.

#ifndef ENGINE_QUERY_H_
#define ENGINE_QUERY_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

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
  static constexpr double kNearlyOne = 1.0 - 0x1p-50;  // more than rounding takes from a product
  static constexpr std::size_t kFewCandidates = 40;    // below, a cut is not looked for
  static constexpr std::size_t kFewRanks = 32;         // put in order by insertion

  using Position = Workspace::Position;

  // Which items are kept: those with any of the marks, of what is known.
  static bool isKept(std::uint32_t marked, std::uint32_t marks) noexcept {
    return (marked & (marks | kStranger)) - 1U < kStranger - 1U;
  }
  void prepare(const History& history);
  bool readLast(const History& history);
  void readFirst(const History& history, std::size_t sets, std::uint32_t marks);
  void readBeforeLast();
  void keep(Position position, std::uint32_t set);
  void noteStrangers(const History& history, std::size_t first);

  // Where what stands before a set ends.
  Position endBefore(std::uint32_t set) const noexcept {
    return set == 0 ? 0 : w_.sets_[set - 1].end;
  }
  // The latest occurrence at or before a position of an item that climbs go by; 0: none.
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
  bool isWhole(const Match& match, std::uint32_t last);
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
  const std::uint32_t climbing_;     // mark of the items that climbs of the kind go by
  const std::uint32_t starting_;     // of those that alone propose in the kind's way, or lead to it
  const bool hasJoins_;              // of the kind
  const History* unread_ = nullptr;  // of which only the last known set was read
  std::uint32_t lastSet_ = 0;        // this one
  const double customers_;
  double bar_;  // confidence below which a proposal cannot be an answer
  // Not proposed are known items seen behind the position, and strangers in a set of this number
  // or a greater one.
  Position excluded_ = std::numeric_limits<Position>::max();
  std::uint32_t excludedSet_ = std::numeric_limits<std::uint32_t>::max();
  std::uint64_t steps_ = 0;
  std::size_t nextBar_;  // candidates at which the bar is looked for again
};

}  // namespace orbseq::engine

#endif  // ENGINE_QUERY_H_

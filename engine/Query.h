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
  // Which links of a sequence answer.
  enum class Place { kJoinsLastSet, kOpensNewSet };

  // Requires maxCount > 0.
  Query(const CompiledLattice& lattice, Workspace& workspace, std::int32_t maxCount, Place place);
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

  void read(const History& history);
  void noteLatest(const History& history, std::size_t firstSet);
  void index();
  std::uint32_t sets() const noexcept { return static_cast<std::uint32_t>(w_.ends_.size()); }
  std::uint32_t latestBefore(ItemId item, std::uint32_t set) const noexcept;
  bool isIn(ItemId item, std::uint32_t set) const noexcept;

  template <bool kAgain>
  void search(std::uint32_t last);
  void openSets(const Match& match, const Climb* begin, const Climb* end);
  void joinSets(const Match& match, const Climb* begin, const Climb* end);
  void take(std::uint64_t steps);
  template <bool kAgain>
  bool isToWorkOn(const Match& match, bool& isNew);

  void propose(NodeId id);
  void offer(ItemId item, double confidence, std::int32_t count);
  void raiseBar();

  const CompiledLattice& lattice_;
  Workspace& w_;
  const std::size_t maxCount_;
  const Place place_;
  const double customers_;
  double bar_;                   // confidence below which a proposal cannot be an answer
  std::uint32_t excluded_ = 0;   // items seen in a set of a greater number are not proposed
  std::uint64_t steps_ = 0;
  std::size_t nextBar_ = 0;      // candidates at which the bar is looked for again
};

}  // namespace orbseq::engine

#endif  // ENGINE_QUERY_H_

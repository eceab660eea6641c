// Grows frequent prefixes, without bounds of time (see mining/ExactMiner.h for the method).
//
// Threads: one object for one worker of a run; they share the log alone, and projections that are
// finished.

#ifndef MINING_PREFIXGROWTH_H_
#define MINING_PREFIXGROWTH_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "mining/FrequentLog.h"
#include "mining/MinerRun.h"
#include "mining/Projection.h"

namespace orbseq {

class PrefixGrowth {
 public:
  PrefixGrowth(const FrequentLog& log, const MinerOptions& options, MinerRun& run, int worker);

  // A frequent prefix and where it ends.
  struct Prefix {
    const Projection* before = nullptr;      // the projection of the prefix less its last item
    std::span<const Projection::Ends> ends;  // in that projection
    const std::uint32_t* places = nullptr;   // what `ends` index
    std::uint32_t lastItem = 0;              // the log's number
    bool joined = false;                     // the last item joined the last set
    std::int32_t items = 0;
    std::int32_t sets = 0;
    std::int32_t itemsInLastSet = 0;
  };

  // The projection of the empty prefix: all there is.
  static void projectAll(const FrequentLog& log, Projection& all);

  // Appends all frequent sequences that begin with the prefix, itself left out.
  void grow(const Prefix& prefix, std::vector<PatternNode>& out);

  // Fills the prefix's projection; false when nothing extends it.
  bool project(const Prefix& prefix, Projection& projection);

  // Extension k of a projection's prefix, and its node.
  static Prefix extended(const Prefix& prefix, const Projection& projection, bool joined,
                         std::size_t k, const FrequentLog& log);
  PatternNode nodeOf(const Prefix& prefix) const;

 private:
  void countNext(const Prefix& prefix, Projection& projection);
  void countJoins(const Prefix& prefix, Projection& projection);
  void take(const Projection::Extensions& candidates, Projection::Extensions& extensions);
  void fillNext(const Prefix& prefix, Projection& projection);
  void fillJoins(const Prefix& prefix, Projection& projection);
  template <class Each>
  void forEachJoin(const Prefix& prefix, Each each) const;
  void keepBudget(const Projection& projection, std::size_t before);

  const FrequentLog& log_;
  const MinerOptions& options_;
  MinerRun& run_;
  const int worker_;
  const std::uint32_t least_;                        // customers
  std::vector<std::unique_ptr<Projection>> levels_;  // by number of items
  Scratch<std::uint32_t> counts_;                    // of the extensions that are possible
  Scratch<std::uint32_t> placeCounts_;
  Scratch<std::uint32_t> stamps_;      // row that was counted last, from 1
  Scratch<std::uint32_t> renumbered_;  // candidate's number among the frequent ones, or kNone
  Scratch<std::uint32_t> joinRenumbered_;
  Scratch<std::uint32_t> cursors_;
  Scratch<std::uint32_t> placeCursors_;
  std::size_t unchecked_ = 0;  // sequences since the run was asked
};

}  // namespace orbseq

#endif  // MINING_PREFIXGROWTH_H_

// Grows frequent prefixes within bounds of time (see mining/ExactMiner.h for the method).
//
// With a largest gap a sequence may be frequent although a part of it, less an inner set, is not.
// So extensions are looked for among all items of the log, and only a prefix must be frequent.
//
// Threads: one object for one worker of a run; they share the log alone.

#ifndef MINING_TIMEDGROWTH_H_
#define MINING_TIMEDGROWTH_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mining/FrequentLog.h"
#include "mining/MinerRun.h"

namespace orbseq {

class TimedGrowth {
 public:
  TimedGrowth(const FrequentLog& log, const MinerOptions& options, MinerRun& run, int worker);

  // A place where a match of the prefix ends, and the latest time at which such a match begins.
  struct Match {
    std::uint32_t customer;
    std::uint32_t place;
    double begin;
  };

  // Appends all frequent sequences that begin with {item}, itself included.
  void grow(std::uint32_t item, std::vector<PatternNode>& out);

 private:
  struct Prefix {
    std::vector<Match> matches;  // by customer, then by place
    std::uint32_t lastItem = 0;  // the log's number
    std::int32_t count = 0;      // customers
    std::int32_t items = 0;
    std::int32_t sets = 0;
    std::int32_t itemsInLastSet = 0;
    bool opensSet = true;
  };
  // The matches of each possible extension, by item.
  struct Extensions {
    std::vector<std::vector<Match>> matches;  // [items of the log]
    std::vector<std::uint32_t> items;         // those with matches
  };

  void grow(const Prefix& prefix, std::vector<PatternNode>& out);
  void findNext(const Prefix& prefix, Extensions& found) const;
  void findJoins(const Prefix& prefix, Extensions& found) const;
  void growAll(const Prefix& prefix, Extensions& found, bool joined, std::vector<PatternNode>& out);
  void add(Extensions& found, std::uint32_t item, const Match& match) const;

  const FrequentLog& log_;
  const MinerOptions& options_;
  MinerRun& run_;
  const int worker_;
};

}  // namespace orbseq

#endif  // MINING_TIMEDGROWTH_H_

// What is mined, and within which limits.

#ifndef MINING_MINEROPTIONS_H_
#define MINING_MINEROPTIONS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace orbseq {

struct MinerStatus {
  std::size_t sequences = 0;    // found so far
  double done = 0.0;            // share of the work that is over, 0 to 1
  std::size_t memoryBytes = 0;  // about what the miner holds now
};

struct MinerOptions {
  // Most items of a sequence: what a lattice can hold and search.
  static constexpr std::int32_t kMostItems = 31;

  std::int32_t minCustomers = 1;  // least support, in customers; 1 or more
  std::int32_t maxItems = kMostItems;
  std::int32_t maxSets = kMostItems;
  std::int32_t maxItemsPerSet = kMostItems;
  std::vector<std::int32_t> include;  // items to look at; empty: all
  std::vector<std::int32_t> exclude;  // items not to look at

  // Between item sets that follow each other in a match, and from its first to its last, in the
  // log's unit of time. A match is any choice of sets, not the earliest one alone.
  double minGap = 0.0;
  double maxGap = std::numeric_limits<double>::infinity();
  double maxSpan = std::numeric_limits<double>::infinity();

  int threads = 1;
  std::size_t memoryBytes = std::numeric_limits<std::size_t>::max();  // of the miner's own
  double seconds = std::numeric_limits<double>::infinity();

  // Called now and then by the calling thread; answering false ends the run. May be empty.
  std::function<bool(const MinerStatus&)> progress;

  bool hasTimeBounds() const noexcept {
    return minGap > 0.0 || maxGap < std::numeric_limits<double>::infinity() ||
           maxSpan < std::numeric_limits<double>::infinity();
  }
};

// A limit of memory or time was reached, or the run was ended: there is no result.
class MinerStopped : public std::runtime_error {
 public:
  enum class Reason { kMemory, kTime, kRequest };
  MinerStopped(Reason reason, const std::string& text)
      : std::runtime_error(text), reason_(reason) {}
  Reason reason() const noexcept { return reason_; }

 private:
  Reason reason_;
};

}  // namespace orbseq

#endif  // MINING_MINEROPTIONS_H_

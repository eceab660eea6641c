// Finds frequent sequences in a log that is read customer by customer, with the dictionary itself
// as the working store (after Hidber's CARMA for item sets, 1999).
//
// Phase one. For customer i, counted from 1, with the share s of customers asked for and at most L
// items a sequence, s' = max(0, s - L / i). Every stored sequence that the customer contains is
// counted. Every contained one that is not stored, but all of whose one-item-shorter parts were
// before this customer and may have s' i customers, is stored: with count 1, ordinal i, and a bound
// on the customers that were missed, min(floor((i - 1) s'(i - 1)) + items - 1, the least count +
// missed - 1 of the parts); nothing is missed of single items. Now and then sequences of two and
// more items are dropped whose count + missed is below s' i. With the plain s in place of s',
// sequences at the border would be lost.
//
// Then either finishByBounds(), which adds the bounds to the counts - upper bounds, so that too
// much may be kept, never too little - or a second pass over the same customers, in the same order:
// beginSecondPass(), recount() for each until it answers false, finishSecondPass(). Then every
// count is exact, and exactly the frequent sequences of up to L items are stored.
//
// The dictionary must be fresh, with at least L + 1 levels, and is nobody else's until the end.
// Links are left to buildLattice().
//
// Threads: one at a time. Memory: the dictionary's, and about 100 bytes for each stored sequence
// that one customer contains. Errors: MinerStopped for memory and time; SeqExceptions::
// DictionaryFailure and std::bad_alloc.

#ifndef MINING_CARMAMINER_H_
#define MINING_CARMAMINER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "mining/MinerOptions.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceDictionary;
}

namespace orbseq {

// The item sets of a customer, oldest first; the items of each ascend without duplicates.
using CustomerSets = std::span<const std::span<const std::int32_t>>;

class CarmaMiner {
 public:
  // Of the options all but support, gaps, span and threads are heeded. 0 < support <= 1. Throws
  // std::invalid_argument when the dictionary has too few levels.
  CarmaMiner(SEQUENCE_NAMESPACE_800::SequenceDictionary& dictionary, double support,
             const MinerOptions& options);
  ~CarmaMiner();
  CarmaMiner(const CarmaMiner&) = delete;
  CarmaMiner& operator=(const CarmaMiner&) = delete;

  void add(CustomerSets customer);
  std::int32_t customers() const noexcept;  // added so far
  // Whether enough customers were added: support x customers reaches the largest number of items.
  // Below that, sequences of more items than that many customers may be missing.
  bool isComplete() const noexcept;

  void finishByBounds();

  void beginSecondPass();
  // False when no later customer can change anything.
  bool recount(CustomerSets customer);
  void finishSecondPass();

 private:
  class Implementation;

  std::unique_ptr<Implementation> implementation_;
};

}  // namespace orbseq

#endif  // MINING_CARMAMINER_H_

// Finds every sequence of item sets that enough customers hold.
//
// A customer holds a sequence when each of its item sets is contained in another of the customer's
// sets, in order; a customer counts once. With bounds of time a match must keep to them.
//
// Method. Depth-first growth of prefixes by one item, over projections: of each customer that holds
// the prefix, the first place where the match can end and the items that come later, latest last
// place first, so that a pass over them counts each item once (last positions: Yang, Wang,
// Kitsuregawa 2007; projection: Pei et al. 2001). Items that are no longer frequent behind a prefix
// are left out of its projections. With bounds of time all ends of matches are kept instead, each
// with the latest beginning that leads to it.
//
// The result does not depend on the number of threads: sequences stand in the order of prefixes,
// new sets before joined ones, items ascending.
//
// Threads: the caller's and options.threads - 1 more, all over when the function returns.
// Memory: about 16 bytes for each item of each customer, once for the log and once for each level
// of the prefix that a thread works on; 12 bytes a result. options.memoryBytes bounds it. Errors:
// MinerStopped when a limit is reached or the caller ends the run; std::bad_alloc.

#ifndef MINING_EXACTMINER_H_
#define MINING_EXACTMINER_H_

#include "mining/MinerOptions.h"
#include "mining/PatternTree.h"

namespace orbseq {

class SequenceDatabase;

PatternTree mineExactly(const SequenceDatabase& database, const MinerOptions& options);

}  // namespace orbseq

#endif  // MINING_EXACTMINER_H_

#include "cli/customerSequence.h"

#include "sequence/TimedItemSet.h"

namespace orbseq {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

Sequence sequenceOf(const SequenceDatabase& database, std::size_t first, std::size_t last) {
  Sequence sequence(static_cast<int>(last - first));
  TimedItemSet set;
  for (std::size_t k = first; k < last; ++k) {
    const auto items = database.items(k);
    set.AddAllItems(items.data(), static_cast<std::int32_t>(items.size()), database.time(k));
    sequence.AddTimedItemSet(&set);
  }
  return sequence;
}

Sequence historyOf(const SequenceDatabase& database, std::size_t customer) {
  return sequenceOf(database, database.firstSet(customer), database.firstSet(customer + 1));
}

}  // namespace orbseq

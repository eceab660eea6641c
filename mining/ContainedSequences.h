// Which stored sequences one customer contains, found level by level: a sequence of n + 1 items is
// looked for only where its first n items and its last n are both stored and contained.
//
// Shape. Level n holds the contained stored sequences of n items; an element knows the element of
// its prefix (less the last item) and of its suffix (less the first), and where in the customer its
// last set can match once the sets before it are matched as early as possible. Elements of one
// prefix stand side by side.
//
// The store must hold with a sequence its prefix and its suffix, as every mined one does.
//
// Threads: one at a time.

#ifndef MINING_CONTAINEDSEQUENCES_H_
#define MINING_CONTAINEDSEQUENCES_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "mining/MinerOptions.h"
#include "sequence/NTSequence.h"

namespace SEQUENCE_NAMESPACE_800 {
class SequenceCounter;
class SequenceDictionary;
}  // namespace SEQUENCE_NAMESPACE_800

namespace orbseq {

class ContainedSequences {
 public:
  using NTSequence = SEQUENCE_NAMESPACE_800::NTSequence;
  using SequenceCounter = SEQUENCE_NAMESPACE_800::SequenceCounter;
  using SequenceDictionary = SEQUENCE_NAMESPACE_800::SequenceDictionary;
  using Sets = std::span<const std::span<const std::int32_t>>;

  ContainedSequences(const SequenceDictionary& dictionary, const MinerOptions& options)
      : dictionary_(dictionary), options_(options) {}

  // Calls stored(counter) for each contained stored sequence, and absent(sequence) for each
  // contained one that is not stored while its prefix and suffix are; level after level, the empty
  // sequence first. `absent` may store the sequence; it counts as stored from the next customer on.
  // A sequence whose counter is refused by `stored` (answers false) is not built upon.
  using Stored = std::function<bool(SequenceCounter&)>;
  using Absent = std::function<void(const NTSequence&)>;
  void visit(Sets customer, const Stored& stored, const Absent& absent);

 private:
  struct Element {
    NTSequence sequence;
    std::uint32_t prefix = 0;       // in the level below
    std::uint32_t suffix = 0;       // in the level below
    std::uint32_t firstLonger = 0;  // elements of the level above that have it as prefix
    std::uint32_t endLonger = 0;
    std::uint32_t firstPlace = 0;  // in places_
    std::uint32_t endPlace = 0;
    std::int32_t item = 0;  // the last one
    std::int32_t sets = 0;
    std::int32_t itemsInLastSet = 0;
    bool opensSet = true;
  };
  using Level = std::vector<Element>;

  void findItems(Sets customer);
  void firstLevel(const Stored& stored, const Absent& absent);
  void nextLevel(const Stored& stored, const Absent& absent);
  void extend(std::uint32_t prefix, std::uint32_t suffix, std::int32_t item, bool opensSet,
              const Stored& stored, const Absent& absent);
  bool match(Element& element, const Element& prefix);

  const SequenceDictionary& dictionary_;
  const MinerOptions& options_;
  Level below_;
  Level current_;
  Level above_;
  std::vector<std::int32_t> items_;                                  // of the customer, ascending
  std::vector<std::uint32_t> itemBegins_;                            // [items + 1] in itemPlaces_
  std::vector<std::uint32_t> itemPlaces_;                            // sets of each item, ascending
  std::vector<std::uint32_t> places_;                                // of all elements
  std::vector<std::pair<std::int32_t, std::uint32_t>> occurrences_;  // scratch: item, set
};

}  // namespace orbseq

#endif  // MINING_CONTAINEDSEQUENCES_H_

// How many sequences there are, and a look at them.

#include <ostream>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

std::int32_t SequenceDictionary::CountSequencesOfSize(int size) const {
  const HashtableSQPair* const table = level(size);
  return table != nullptr ? table->getSize() : 0;
}

std::int32_t SequenceDictionary::NumberOfSequences() const {
  std::int32_t total = 0;
  for (std::int32_t i = 0; i < numLevels_; ++i) total += CountSequencesOfSize(i);
  return total;
}

std::int32_t SequenceDictionary::LargestSequence() const {
  std::int32_t largest = 0;
  while (largest + 1 < numLevels_ && CountSequencesOfSize(largest + 1) > 0) ++largest;
  return largest;
}

// Deliberate: level `size` itself is counted; exports rely on it.
std::int32_t SequenceDictionary::CountSequencesBiggerThan(int size) const {
  const std::int32_t largest = LargestSequence();
  std::int32_t total = 0;
  for (std::int32_t i = size < 0 ? 0 : size; i <= largest; ++i) total += CountSequencesOfSize(i);
  return total;
}

void SequenceDictionary::displaySize(int levelIndex, int maxCount, std::ostream& out) const {
  const HashtableSQPair* const table = level(levelIndex);
  if (table == nullptr) return;
  std::int32_t shown = 0;
  for (const ISQCPair& entry : *table) {
    entry.key->display(out);
    if (entry.value != nullptr) entry.value->display(out, false);
    // Deliberate: tested after printing, so one more than maxCount is shown.
    if (++shown > maxCount) break;
  }
}

}  // namespace SEQUENCE_NAMESPACE_800

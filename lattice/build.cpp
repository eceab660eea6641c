// Linking every sequence to its one-item extensions.

#include <memory>
#include <new>

#include "lattice/SequenceDictionary.h"
#include "lattice/statusCodes.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqExceptions.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Gives the counter a new, empty adjacency set and frees the earlier one.
void dropLinks(SequenceCounter* counter) {
  if (counter == nullptr) return;
  auto fresh = std::make_unique<SequenceCounter::AdjacentItems>();
  const std::unique_ptr<SequenceCounter::AdjacentItems> earlier(counter->getAdjacentItems());
  counter->setAdjacentItems(fresh.release());
}

// Tells each one-item-shorter part of `longer` that it can be extended to it. `part` is scratch.
void linkParts(const SequenceDictionary& dictionary, const NTSequence& longer, NTSequence& part) {
  std::int32_t set = 0;
  for (std::int32_t p = 0; p < longer.size(); ++p) {
    const bool alone = part.removeItem(p, &longer);
    SequenceCounter* const counter = dictionary.getDescriptor(&part);
    if (counter != nullptr)
      counter->addAdjacentItem(longer.items()[static_cast<std::size_t>(p)],
                               alone ? 2 * set + 1 : 2 * set);
    if (longer.endsSet(p)) ++set;
  }
}

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::buildLattice() {
  try {
    const std::int32_t largest = LargestSequence();
    if (const ISQCPair* const empty = findEmpty()) dropLinks(empty->value);
    NTSequence part;
    for (std::int32_t l = 1; l <= largest; ++l) {
      const HashtableSQPair* const table = level(l);
      if (table == nullptr) break;  // an overridden LargestSequence may promise more
      for (const ISQCPair& entry : *table) {
        dropLinks(entry.value);
        if (entry.key->size() == l) linkParts(*this, *entry.key, part);
      }
    }
  } catch (const std::bad_alloc&) {
    return {kFailure, false};
  } catch (const SeqExceptions::DictionaryFailure&) {
    return {kFailure, false};
  }
  latticeBuilt_ = true;
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

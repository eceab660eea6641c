#include "cli/ModelSummary.h"

#include <algorithm>

#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SQCPairNode;
using SEQUENCE_NAMESPACE_800::StatsBucket;

// What a request of so many bytes takes with an allocator of 16-byte steps and 8 bytes of its own.
std::size_t allocated(std::size_t bytes) {
  constexpr std::size_t kStep = 16;
  return std::max<std::size_t>(2 * kStep, (bytes + 8 + kStep - 1) / kStep * kStep);
}

std::size_t memoryOf(const ISQCPair& entry) {
  const auto items = static_cast<std::size_t>(entry.key->size());
  std::size_t bytes = allocated(sizeof(SQCPairNode)) + allocated(sizeof(NTSequence)) +
                      allocated(items * sizeof(std::int32_t));
  if (entry.value == nullptr) return bytes;
  bytes += allocated(sizeof(SequenceCounter));
  if (entry.value->getStatsBucket() != nullptr) bytes += allocated(sizeof(StatsBucket));
  if (entry.value->getAdjacentItems() == nullptr) return bytes;
  constexpr std::size_t kLinkNode = 4 * sizeof(void*) + sizeof(SequenceCounter::AdjacentItem);
  return bytes + allocated(sizeof(SequenceCounter::AdjacentItems)) +
         static_cast<std::size_t>(entry.value->getNAdjacent()) * allocated(kLinkNode);
}

}  // namespace

ModelSummary summaryOf(const Lattice& lattice) {
  ModelSummary summary;
  for (std::int32_t level = 0; level < lattice.getNumLevels(); ++level) {
    const HashtableSQPair* const table = lattice.getTable(level);
    summary.byLevel.push_back(table == nullptr ? 0 : table->getSize());
    if (table == nullptr) continue;
    summary.memoryBytes +=
        allocated(sizeof *table) +
        allocated(static_cast<std::size_t>(table->getCapacity()) * sizeof(void*));
    for (const ISQCPair& entry : *table) {
      summary.memoryBytes += memoryOf(entry);
      if (entry.key->size() > 0) ++summary.sequences;
      if (entry.value == nullptr) continue;
      summary.links += static_cast<std::size_t>(entry.value->getNAdjacent());
      if (entry.key->size() == 0) summary.customers = entry.value->getCount();
      if (level == 1 && entry.key->size() == 1)
        summary.items.push_back({entry.key->items().front(), entry.value->getCount()});
    }
  }
  std::sort(summary.items.begin(), summary.items.end(), [](const ItemCount& a, const ItemCount& b) {
    return a.count != b.count ? a.count > b.count : a.item < b.item;
  });
  return summary;
}

}  // namespace orbseq

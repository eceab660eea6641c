// What there is to tell about a model, gathered once.

#ifndef CLI_MODELSUMMARY_H_
#define CLI_MODELSUMMARY_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "io/Model.h"

namespace orbseq {

struct ItemCount {
  std::int32_t item = 0;
  std::int32_t count = 0;  // customers that have the item
};

struct ModelSummary {
  std::int32_t customers = 0;         // count of the empty sequence
  std::int32_t sequences = 0;         // the empty one left out
  std::vector<std::int32_t> byLevel;  // [levels] sequences of so many items
  std::size_t links = 0;              // adjacency pairs
  std::vector<ItemCount> items;       // by count descending, then by item
  std::size_t memoryBytes = 0;        // about what the lattice takes on the heap
};

ModelSummary summaryOf(const Lattice& lattice);

}  // namespace orbseq

#endif  // CLI_MODELSUMMARY_H_

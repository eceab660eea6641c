// Seeded lattices and histories to measure on: equal options give equal ones, on every machine.
//
// A lattice holds the items 1 .. n, a share of the pairs (a)(b), a fifth as large a share of the
// pairs (a b), and every (a)(b)(c) and (a b)(c) all of whose pairs are stored; so it is closed
// under leaving items out. Counts are by chance, and smaller the longer a sequence is.

#ifndef BENCH_WORLDS_H_
#define BENCH_WORLDS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/History.h"
#include "io/Model.h"

namespace orbseq::bench {

struct WorldOptions {
  std::size_t sequences = 1000;  // about so many
  double pairShare = 0.8;  // of all pairs of items, those that are stored; the fewer, the more
                           // items
};

// The number of items that makes so many sequences.
std::int32_t itemsOf(const WorldOptions& options);

// A linked lattice, with a label for each item.
Model makeModel(const WorldOptions& options);

struct HistoryOptions {
  std::size_t histories = 64;
  std::size_t sets = 10;        // of each history
  std::size_t itemsPerSet = 2;  // drawn; equal ones count once
  std::int32_t items = 100;     // known ones are 1 .. items; one in ten drawn is greater
};

std::vector<engine::History> makeHistories(const HistoryOptions& options);

}  // namespace orbseq::bench

#endif  // BENCH_WORLDS_H_

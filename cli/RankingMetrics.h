// How well ranked lists of items meet what was wanted.
//
// For one customer, with the first k of a list and the set of wanted items:
//   hit rate  1 when any of them is wanted
//   recall    wanted ones among them, as a share of all wanted
//   MRR       1 / rank of the first wanted one, 0 without any (Voorhees, TREC-8, 1999)
//   NDCG      the sum over wanted ones of 1 / log2(rank + 1), as a share of what the best order
//   would
//             give: its first min(k, wanted) places (Jarvelin and Kekalainen, 2002)
// averaged over all customers; one without wanted items has 0 everywhere.
//   coverage  different items among all the lists' first k, as a share of a catalogue's items
//   answered  customers with any answer, as a share
//
// Threads: one at a time on one object.

#ifndef CLI_RANKINGMETRICS_H_
#define CLI_RANKINGMETRICS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_set>

namespace orbseq {

struct RankingScores {
  double hitRate = 0.0;
  double recall = 0.0;
  double mrr = 0.0;
  double ndcg = 0.0;
  double coverage = 0.0;
};

class RankingMetrics {
 public:
  static constexpr std::array<std::size_t, 4> kCuts = {1, 5, 10, 20};

  // Adds a customer. `list` is best first, without duplicates; `wanted` ascends, without
  // duplicates.
  void add(std::span<const std::int32_t> list, std::span<const std::int32_t> wanted);

  std::size_t customers() const noexcept { return customers_; }
  // Averages for the first kCuts[cut] of the lists; 0 without customers. `items`: of the catalogue.
  RankingScores at(std::size_t cut, std::size_t items) const;
  double answered() const;

 private:
  struct Cut {
    RankingScores sums;
    std::unordered_set<std::int32_t> items;  // recommended to anyone
  };

  std::size_t customers_ = 0;
  std::size_t answered_ = 0;
  std::array<Cut, kCuts.size()> cuts_;
};

}  // namespace orbseq

#endif  // CLI_RANKINGMETRICS_H_

#include "cli/RankingMetrics.h"

#include <algorithm>
#include <cmath>

namespace orbseq {

namespace {

double gainAt(std::size_t rank) { return 1.0 / std::log2(static_cast<double>(rank) + 1.0); }

double share(double part, std::size_t whole) {
  return whole == 0 ? 0.0 : part / static_cast<double>(whole);
}

}  // namespace

void RankingMetrics::add(std::span<const std::int32_t> list, std::span<const std::int32_t> wanted) {
  ++customers_;
  if (!list.empty()) ++answered_;
  for (std::size_t c = 0; c < kCuts.size(); ++c) {
    const std::size_t length = std::min(kCuts[c], list.size());
    RankingScores& sums = cuts_[c].sums;
    std::size_t hits = 0;
    double gain = 0.0;
    for (std::size_t rank = 1; rank <= length; ++rank) {
      const std::int32_t item = list[rank - 1];
      cuts_[c].items.insert(item);
      if (!std::binary_search(wanted.begin(), wanted.end(), item)) continue;
      if (++hits == 1) sums.mrr += 1.0 / static_cast<double>(rank);
      gain += gainAt(rank);
    }
    if (hits == 0) continue;
    double best = 0.0;
    for (std::size_t rank = 1; rank <= std::min(kCuts[c], wanted.size()); ++rank)
      best += gainAt(rank);
    sums.hitRate += 1.0;
    sums.recall += share(static_cast<double>(hits), wanted.size());
    sums.ndcg += gain / best;
  }
}

RankingScores RankingMetrics::at(std::size_t cut, std::size_t items) const {
  const RankingScores& sums = cuts_[cut].sums;
  return {share(sums.hitRate, customers_), share(sums.recall, customers_),
          share(sums.mrr, customers_), share(sums.ndcg, customers_),
          share(static_cast<double>(cuts_[cut].items.size()), items)};
}

double RankingMetrics::answered() const {
  return share(static_cast<double>(answered_), customers_);
}

}  // namespace orbseq

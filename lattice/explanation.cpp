// Every proposal behind an answer.

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include "lattice/Proposal.h"
#include "lattice/proposals.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

class Collector {
 public:
  void add(const Proposed& proposed, bool joinsLastSet) {
    all_.push_back({proposed.sequence, proposed.count, proposed.together, joinsLastSet,
                    proposed.skipped, false, proposed.consequent});
    const std::size_t index = all_.size() - 1;
    const auto [best, isNew] = best_.emplace(proposed.consequent.GetItem(), index);
    if (!isNew && isBetter(proposed.consequent, all_[best->second].consequent))
      best->second = index;
  }

  std::vector<Proposal> ranked() {
    for (const auto& [item, index] : best_) all_[index].wins = true;
    std::vector<std::size_t> order(all_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
      const std::size_t bestOfA = bestOf(a);
      const std::size_t bestOfB = bestOf(b);
      if (bestOfA != bestOfB)
        return ranksBefore(all_[bestOfA].consequent, all_[bestOfB].consequent);
      return all_[a].wins != all_[b].wins ? all_[a].wins : a < b;
    });
    std::vector<Proposal> sorted;
    sorted.reserve(order.size());
    for (const std::size_t index : order) sorted.push_back(std::move(all_[index]));
    return sorted;
  }

 private:
  std::size_t bestOf(std::size_t index) const { return best_.at(all_[index].consequent.GetItem()); }

  std::vector<Proposal> all_;
  std::unordered_map<std::int32_t, std::size_t> best_;  // item: index of its winner
};

std::vector<Proposal> popularOf(const Proposals& proposals) {
  Collector collector;
  proposals.popular([&collector](const Proposed& proposed) { collector.add(proposed, false); });
  return collector.ranked();
}

}  // namespace

std::vector<Proposal> explainCurrentItems(const SequenceDictionary& dictionary,
                                          const Sequence* customer) {
  const Proposals proposals(dictionary);
  if (isWithoutSets(customer)) return popularOf(proposals);
  Collector collector;
  proposals.current(*customer,
                    [&collector](const Proposed& proposed) { collector.add(proposed, true); });
  return collector.ranked();
}

std::vector<Proposal> explainFutureItems(const SequenceDictionary& dictionary,
                                         const Sequence* customer, bool wholeOnly) {
  const Proposals proposals(dictionary);
  if (isWithoutSets(customer)) return popularOf(proposals);
  Collector collector;
  proposals.future(
      *customer, wholeOnly,
      [&collector](const Proposed& proposed) { collector.add(proposed, false); },
      [] { return false; });
  return collector.ranked();
}

}  // namespace SEQUENCE_NAMESPACE_800

// What a customer takes next, and what completes the basket.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "lattice/proposals.h"
#include "lattice/statusCodes.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The best proposal per item.
class Candidates {
 public:
  void operator()(const Proposed& proposed) {
    const SeqConsequentDescriptor& candidate = proposed.consequent;
    const auto [place, added] = best_.try_emplace(candidate.GetItem(), candidate);
    if (!added && isBetter(candidate, place->second)) place->second = candidate;
  }

  // Appends the best min(maxCount, candidates).
  void appendTo(std::vector<SeqConsequentDescriptor>& out, int maxCount) const {
    std::vector<SeqConsequentDescriptor> ranked;
    ranked.reserve(best_.size());
    for (const auto& [item, descriptor] : best_) ranked.push_back(descriptor);
    std::sort(ranked.begin(), ranked.end(), ranksBefore);
    const std::size_t wanted = maxCount > 0 ? static_cast<std::size_t>(maxCount) : 0;
    const auto count = static_cast<std::ptrdiff_t>(std::min(wanted, ranked.size()));
    out.insert(out.end(), ranked.begin(), ranked.begin() + count);
  }

 private:
  std::map<std::int32_t, SeqConsequentDescriptor> best_;
};

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::GetCurrentItems(
    std::vector<SeqConsequentDescriptor>& out, const Sequence* customer, int maxCount) const {
  const Proposals proposals(*this);
  Candidates candidates;
  const auto add = [&candidates](const Proposed& proposed) { candidates(proposed); };
  if (isWithoutSets(customer))
    proposals.popular(add);
  else
    proposals.current(*customer, add);
  candidates.appendTo(out, maxCount);
  return {};
}

OrbCommon_830::OrbStatus SequenceDictionary::GetFutureItems(
    std::vector<SeqConsequentDescriptor>& out, const Sequence* customer, int maxCount,
    bool wholeOnly) const {
  const Proposals proposals(*this);
  Candidates candidates;
  const auto add = [&candidates](const Proposed& proposed) { candidates(proposed); };
  const auto isCancelled = [this] { return cancelled_.load(std::memory_order_relaxed); };
  if (isWithoutSets(customer))
    proposals.popular(add);
  else if (!proposals.future(*customer, wholeOnly, add, isCancelled))
    return {kCancelled, false};
  candidates.appendTo(out, maxCount);
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

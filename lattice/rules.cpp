// The lattice's rules: all item sets of a stored sequence but the last => the last.

#include <algorithm>
#include <cstddef>
#include <exception>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "lattice/statusCodes.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqAssociationRule.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

constexpr int kFollowsLater = 1;  // join type: the consequent comes in a later item set

// Truncates toward zero; what 32 bits cannot hold is clamped, and a NaN counts as 0.
std::int32_t toCount(double value) noexcept {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  if (!(value == value)) return 0;
  return static_cast<std::int32_t>(std::clamp(value, kLowest, kHighest));
}

struct Bounds {
  double lowest;
  double highest;
  bool hold(double value) const noexcept { return lowest <= value && value <= highest; }
};

struct RuleFilter {
  double customers;
  std::int32_t minCount;
  std::int32_t maxCount;
  Bounds confidence;
  Bounds cause;
  bool maximalOnly;
};

// Appends the rule of a stored sequence, if it has one and it passes. A part that is not stored,
// or has a count of 0, leaves no fraction to judge: no rule.
void appendRule(std::vector<SeqAssociationRule>& rules, const SequenceDictionary& dictionary,
                const ISQCPair& entry, const RuleFilter& filter) {
  if (entry.value == nullptr || entry.key->getNSets() < 2) return;
  const std::int32_t count = entry.value->getCount();
  if (count < filter.minCount || count > filter.maxCount) return;
  if (filter.maximalOnly && entry.value->getNAdjacent() > 0) return;

  const std::unique_ptr<const Sequence> whole(entry.key->createSequence());
  const std::int32_t last = whole->Length() - 1;
  Sequence antecedent(last);
  for (std::int32_t k = 0; k < last; ++k) antecedent.AddTimedItemSet((*whole)[k]);
  Sequence consequent(1);
  consequent.AddTimedItemSet((*whole)[last]);

  const auto countOf = [&dictionary](const Sequence& part) {
    const NTSequence packed(&part);
    const SequenceCounter* const counter = dictionary.getDescriptor(&packed);
    return counter != nullptr ? counter->getCount() : 0;
  };
  const std::int32_t antecedentCount = countOf(antecedent);
  if (antecedentCount == 0) return;
  const double confidence = static_cast<double>(count) / antecedentCount;
  if (!filter.confidence.hold(confidence)) return;
  const std::int32_t consequentCount = countOf(consequent);
  if (consequentCount == 0) return;
  const double cause = static_cast<double>(count) / consequentCount;
  if (!filter.cause.hold(cause)) return;
  rules.emplace_back(antecedent, consequent, count / filter.customers, confidence, cause,
                     kFollowsLater);
}

// The positions of the rules in the order asked for: by (1 - key, position) ascending, so that
// equal keys keep the order of discovery.
std::vector<std::size_t> orderOf(const std::vector<SeqAssociationRule>& rules, char sortBy) {
  const auto keyOf = [sortBy](const SeqAssociationRule& rule) {
    switch (sortBy) {
      case 'S':
        return rule.GetSupport();
      case 'C':
        return rule.GetConfidence();
      case 'A':
        return rule.GetCause();
      default:
        return 1.0;
    }
  };
  std::vector<std::pair<double, std::size_t>> keys;
  keys.reserve(rules.size());
  for (std::size_t i = 0; i < rules.size(); ++i) keys.emplace_back(1.0 - keyOf(rules[i]), i);
  std::sort(keys.begin(), keys.end());
  std::vector<std::size_t> order;
  order.reserve(keys.size());
  for (const auto& [key, position] : keys) order.push_back(position);
  return order;
}

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::GetRules(std::vector<SeqAssociationRule>& rules,
                                                      double minSupport, double maxSupport,
                                                      double minConfidence, double maxConfidence,
                                                      double minCause, double maxCause, char sortBy,
                                                      bool maximalOnly) const {
  const double total = customers();
  const RuleFilter filter{total,
                          toCount(total * minSupport),
                          toCount(total * maxSupport + 0.5),
                          {minConfidence, maxConfidence},
                          {minCause, maxCause},
                          maximalOnly};
  try {
    std::vector<SeqAssociationRule> working;
    const std::int32_t largest = LargestSequence();
    for (std::int32_t l = 2; l <= largest; ++l) {
      if (cancelled_.load(std::memory_order_relaxed)) return {kCancelled, false};
      if (total == 0.0) continue;  // support would have a 0 under its fraction
      const HashtableSQPair* const table = level(l);
      if (table == nullptr) break;  // an overridden LargestSequence may promise more
      for (const ISQCPair& entry : *table) appendRule(working, *this, entry, filter);
    }
    std::vector<SeqAssociationRule> ordered;
    ordered.reserve(rules.size() + working.size());
    for (SeqAssociationRule& rule : rules) ordered.push_back(rule);
    for (const std::size_t position : orderOf(working, sortBy))
      ordered.push_back(working[position]);
    rules.swap(ordered);
  } catch (const std::exception&) {
    return {kFailure, false};
  }
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

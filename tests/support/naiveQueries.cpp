// The rules and recommendations of the naive lattice.

#include <algorithm>
#include <cmath>

#include "tests/support/naiveLattice.h"

namespace orbseq::test {

namespace {

// Toward zero, kept within 32 bits.
int truncated(double value) {
  if (value >= 2147483647.0) return 2147483647;
  if (value <= -2147483648.0) return -2147483647 - 1;
  return static_cast<int>(value);
}

double fraction(int part, int whole) {
  return static_cast<double>(part) / static_cast<double>(whole);
}

double keyOf(const Rule& rule, char sortBy) {
  if (sortBy == 'S') return rule.support;
  return sortBy == 'C' ? rule.confidence : rule.cause;
}

void keepBest(std::map<int, Advice>& merged, const Advice& candidate) {
  const auto [place, isNew] = merged.emplace(candidate.item, candidate);
  Advice& known = place->second;
  if (isNew) return;
  if (candidate.confidence > known.confidence ||
      (candidate.confidence == known.confidence && candidate.support > known.support))
    known = candidate;
}

std::vector<Advice> ranked(const std::map<int, Advice>& merged, int maxCount) {
  std::vector<Advice> all;
  for (const auto& [item, advice] : merged) all.push_back(advice);
  std::sort(all.begin(), all.end(), [](const Advice& a, const Advice& b) {
    return a.confidence != b.confidence ? a.confidence > b.confidence : a.item > b.item;
  });
  const std::size_t most = maxCount <= 0 ? 0 : static_cast<std::size_t>(maxCount);
  if (all.size() > most) all.erase(all.begin() + static_cast<std::ptrdiff_t>(most), all.end());
  return all;
}

}  // namespace

std::optional<Rule> NaiveLattice::ruleOf(const History& stored, const RuleQuery& query) const {
  const Entry* entry = find(stored);
  const int n0 = customers();
  if (!entry->count || stored.size() < 2 || n0 == 0) return std::nullopt;
  if (query.maximalOnly && entry->links && !entry->links->empty()) return std::nullopt;
  const int count = *entry->count;
  if (count < truncated(n0 * query.minSupport) || count > truncated(n0 * query.maxSupport + 0.5))
    return std::nullopt;

  History antecedent = normalised(stored);
  const History consequent = History{antecedent.back()};
  antecedent.pop_back();
  const int whole = countOf(antecedent).value_or(0), alone = countOf(consequent).value_or(0);
  if (whole == 0 || alone == 0) return std::nullopt;
  const double confidence = fraction(count, whole), cause = fraction(count, alone);
  if (confidence < query.minConfidence || confidence > query.maxConfidence) return std::nullopt;
  if (cause < query.minCause || cause > query.maxCause) return std::nullopt;
  return Rule{antecedent, consequent, fraction(count, n0), confidence, cause, 1};
}

std::vector<Rule> NaiveLattice::rules(const RuleQuery& query, const TableOrder& tableOrder) const {
  std::map<History, History> storedAs;
  for (const auto& [sequence, entry] : entries_) storedAs[normalised(sequence)] = sequence;

  std::vector<Rule> list;
  for (int level = 2; level <= largest(); ++level)
    for (const History& sequence : tableOrder(level))
      if (const auto rule = ruleOf(storedAs.at(sequence), query)) list.push_back(*rule);
  if (query.sortBy != 'S' && query.sortBy != 'C' && query.sortBy != 'A') return list;

  std::vector<std::pair<double, std::size_t>> order;
  for (std::size_t n = 0; n < list.size(); ++n)
    order.emplace_back(1.0 - keyOf(list[n], query.sortBy), n);
  std::sort(order.begin(), order.end());
  std::vector<Rule> sorted;
  for (const auto& [key, position] : order) sorted.push_back(list[position]);
  return sorted;
}

std::vector<Advice> NaiveLattice::popular(int maxCount) const {
  Merged merged;
  const int n0 = customers();
  for (const auto& [sequence, entry] : entries_) {
    if (itemCount(sequence) != 1 || !entry.count || n0 == 0) continue;
    const double share = fraction(*entry.count, n0);
    keepBest(merged, {sequence[0][0], share, share, 1.0});
  }
  return ranked(merged, maxCount);
}

void NaiveLattice::addCandidate(const History& shorter, int item, int position,
                                Merged& merged) const {
  const History longer = extended(shorter, item, position);
  const std::optional<int> count = countOf(longer), alone = countOf(single(item));
  const int whole = countOf(shorter).value_or(0), n0 = customers();
  if (!count || whole == 0 || n0 == 0 || (alone && *alone == 0)) return;
  keepBest(merged, {item, fraction(*count, whole), fraction(*count, n0),
                    alone ? fraction(*count, *alone) : 0.0});
}

std::vector<Advice> NaiveLattice::futureItems(const History& customer, int maxCount,
                                              bool wholeOnly) const {
  if (customer.empty()) return popular(maxCount);
  Merged merged;
  std::set<int> excluded;
  for (int skip = 0; skip < static_cast<int>(customer.size()); ++skip) {
    if (skip >= 1 && wholeOnly) break;
    if (skip >= 1) {
      const Items& left = customer[customer.size() - static_cast<std::size_t>(skip)];
      excluded.insert(left.begin(), left.end());
    }
    for (const History& s : found(customer, skip)) {
      const Entry* entry = find(s);
      if (entry == nullptr || !entry->count) continue;
      for (const auto& [item, position] : entry->links.value_or(Links()))
        if (position == 2 * static_cast<int>(s.size()) + 1 && excluded.count(item) == 0)
          addCandidate(s, item, position, merged);
    }
  }
  return ranked(merged, maxCount);
}

std::vector<Advice> NaiveLattice::currentItems(const History& customer, int maxCount) const {
  if (customer.empty()) return popular(maxCount);
  Merged merged;
  const std::set<int> excluded(customer.back().begin(), customer.back().end());
  for (const History& s : found(customer, 0)) {
    const Entry* entry = find(s);
    if (entry == nullptr || !entry->count) continue;
    for (const auto& [item, position] : entry->links.value_or(Links()))
      if (position == 2 * (static_cast<int>(s.size()) - 1) && excluded.count(item) == 0)
        addCandidate(s, item, position, merged);
  }
  return ranked(merged, maxCount);
}

}  // namespace orbseq::test

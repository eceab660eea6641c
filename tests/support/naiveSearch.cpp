// The subsequence search of the naive lattice, step by step as it is described.

#include <algorithm>

#include "tests/support/naiveLattice.h"

namespace orbseq::test {

namespace {

bool holds(const Items& set, int item) {
  return std::find(set.begin(), set.end(), item) != set.end();
}

using Sequences = std::set<History, PackedLess>;

}  // namespace

std::vector<History> NaiveLattice::found(const History& customer, int skipLast) const {
  const int used = static_cast<int>(customer.size()) - skipLast;
  const History sets = normalised(customer);
  History known;
  for (int k = 0; k < used; ++k) {
    Items kept;
    for (const int item : sets[static_cast<std::size_t>(k)])
      if (find(single(item)) != nullptr) kept.push_back(item);
    if (!kept.empty()) known.push_back(kept);
  }
  if (known.empty()) return {};
  if (largest() > 2) return climb(known);

  std::vector<History> answer;
  for (const int item : known.back()) answer.push_back(single(item));
  return answer;
}

std::vector<History> NaiveLattice::climb(const History& known) const {
  const int last = static_cast<int>(known.size()) - 1;
  const int items = itemCount(known), sets = last + 1, top = largest();
  std::vector<History> answer;
  Sequences seen;
  std::vector<Sequences> frontier(known.size());

  for (const int item : known.back()) {
    if (seen.insert(single(item)).second) answer.push_back(single(item));
    frontier.back().insert(single(item));
  }
  for (int j = last; j >= 0; --j) {
    Sequences& open = frontier[static_cast<std::size_t>(j)];
    while (!open.empty()) {
      const History s = *open.begin();
      const Entry* entry = find(s);
      const bool grows = itemCount(s) < items && static_cast<int>(s.size()) <= sets &&
                         itemCount(s) < top && entry != nullptr && entry->count && entry->links;
      for (const auto& [item, position] : grows ? *entry->links : Links()) {
        if (position > 1) continue;
        int place = position == 1 ? j - 1 : j;
        if (position == 1)
          while (place >= 0 && !holds(known[static_cast<std::size_t>(place)], item)) --place;
        if (place < 0 || !holds(known[static_cast<std::size_t>(place)], item)) continue;
        const History t = extended(s, item, position);
        if (static_cast<int>(t.size()) <= sets && itemCount(t) <= items && itemCount(t) <= top &&
            seen.insert(t).second)
          answer.push_back(t);
        frontier[static_cast<std::size_t>(place)].insert(t);
      }
      open.erase(s);
    }
  }
  return answer;
}

}  // namespace orbseq::test

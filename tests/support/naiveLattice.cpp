#include "tests/support/naiveLattice.h"

#include <algorithm>

namespace orbseq::test {

namespace {

struct Flat {
  int item;
  bool ends;  // the last of its set
};

std::vector<Flat> flat(const History& sequence) {
  std::vector<Flat> all;
  for (const Items& set : sequence)
    for (std::size_t i = 0; i < set.size(); ++i) all.push_back({set[i], i + 1 == set.size()});
  return all;
}

}  // namespace

bool packedLess(const History& left, const History& right) {
  const std::vector<Flat> a = flat(left), b = flat(right);
  if (a.size() >= 32 || b.size() >= 32) return false;
  if (a.empty() || b.empty()) return a.empty() && !b.empty();
  for (std::size_t p = 0; p < a.size(); ++p) {
    if (p >= b.size()) return false;
    if (a[p].ends && !b[p].ends) return a[p].item <= b[p].item;
    if (!a[p].ends && b[p].ends) return a[p].item < b[p].item;
    if (a[p].item != b[p].item) return a[p].item < b[p].item;
  }
  return a.back().ends && a.size() < b.size();
}

History extended(const History& sequence, int item, int position) {
  History longer = sequence;
  const auto place = longer.begin() + position / 2;
  if (position % 2 != 0) {
    longer.insert(place, Items{item});
  } else {
    const auto greater =
        std::find_if(place->begin(), place->end(), [item](int other) { return other > item; });
    place->insert(greater, item);
  }
  return longer;
}

const Entry* NaiveLattice::find(const History& sequence) const {
  if (itemCount(sequence) >= levels_) return nullptr;
  const auto entry = entries_.find(sequence);
  return entry == entries_.end() ? nullptr : &entry->second;
}

std::optional<int> NaiveLattice::countOf(const History& sequence) const {
  const Entry* entry = find(sequence);
  return entry == nullptr ? std::nullopt : entry->count;
}

int NaiveLattice::customers() const { return countOf(History()).value_or(0); }

int NaiveLattice::countOfSize(int size) const {
  return static_cast<int>(
      std::count_if(entries_.begin(), entries_.end(),
                    [size](const auto& entry) { return itemCount(entry.first) == size; }));
}

int NaiveLattice::largest() const {
  int level = 0;
  while (level + 1 < levels_ && countOfSize(level + 1) > 0) ++level;
  return level;
}

int NaiveLattice::countBiggerThan(int size) const {
  int sum = 0;
  for (int level = size; level <= largest(); ++level) sum += countOfSize(level);
  return sum;
}

void NaiveLattice::link() {
  const int top = largest();
  for (auto& [sequence, entry] : entries_)
    if (entry.count && itemCount(sequence) <= top) entry.links = Links();

  for (const auto& [sequence, entry] : entries_) {
    if (itemCount(sequence) > top) continue;
    for (std::size_t s = 0; s < sequence.size(); ++s) {
      for (std::size_t i = 0; i < sequence[s].size(); ++i) {
        const bool alone = sequence[s].size() == 1;
        History shorter = sequence;
        shorter[s].erase(shorter[s].begin() + static_cast<std::ptrdiff_t>(i));
        if (alone) shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(s));
        const auto target = entries_.find(shorter);
        if (target != entries_.end() && target->second.count)
          target->second.links->emplace(sequence[s][i], 2 * static_cast<int>(s) + (alone ? 1 : 0));
      }
    }
  }
}

std::vector<History> NaiveLattice::ofSize(int size, bool maximalOnly) const {
  std::vector<History> all;
  for (const auto& [sequence, entry] : entries_) {
    if (itemCount(sequence) != size) continue;
    if (maximalOnly && entry.links && !entry.links->empty()) continue;
    all.push_back(normalised(sequence));
  }
  std::sort(all.begin(), all.end());
  return all;
}

std::vector<History> NaiveLattice::reached(Walk walk, const History& start, int minCount,
                                           int maxCount) const {
  History first;  // item sets without items are skipped
  for (const Items& set : normalised(start))
    if (!set.empty()) first.push_back(set);
  std::vector<History> answer;
  if (!countOf(first) || *countOf(first) < minCount) return answer;

  std::set<History> frontier{first};
  while (!frontier.empty()) {
    std::set<History> next;
    for (const History& s : frontier) {
      const Entry* entry = find(s);
      for (const auto& [item, position] : entry->links.value_or(Links())) {
        const int edge =
            walk == Walk::kBeginning ? 2 * static_cast<int>(s.size()) + 1 : 1;  // the new set's
        if (walk != Walk::kAnywhere && position % 2 != 0 && position != edge) continue;
        const History t = extended(s, item, position);
        if (countOf(t) && *countOf(t) >= minCount) next.insert(t);
      }
      if (entry->count && *entry->count <= maxCount) answer.push_back(normalised(s));
    }
    frontier = std::move(next);
  }
  std::sort(answer.begin(), answer.end());
  return answer;
}

}  // namespace orbseq::test

// Every small lattice: what a test goes through that leaves nothing to chance.

#ifndef TESTS_SUPPORT_SMALLLATTICES_H_
#define TESTS_SUPPORT_SMALLLATTICES_H_

#include <algorithm>
#include <initializer_list>
#include <map>
#include <vector>

#include "tests/support/World.h"

namespace orbseq::test {

// Every history of one to three sets over the items 1 and 2.
inline std::vector<History> smallHistories() {
  const std::vector<Items> sets = {{1}, {2}, {1, 2}};
  std::vector<History> all, longest = {History()};
  for (int length = 1; length <= 3; ++length) {
    std::vector<History> longer;
    for (const History& shorter : longest) {
      for (const Items& set : sets) {
        longer.push_back(shorter);
        longer.back().push_back(set);
      }
    }
    all.insert(all.end(), longer.begin(), longer.end());
    longest = std::move(longer);
  }
  return all;
}

// The sequences with counts that differ, and the empty one with 60.
inline std::map<History, Entry> countedEntries(const std::vector<History>& stored) {
  std::map<History, Entry> entries = {{History(), {60, {}}}};
  for (std::size_t n = 0; n < stored.size(); ++n)
    entries[stored[n]] = {60 / itemCount(stored[n]) - static_cast<int>(n * 7 % 13), {}};
  return entries;
}

class SmallLattices {
 public:
  // Calls visit(stored) for downward-closed lattices over the items 1 and 2 with sequences of up to
  // three items; of those with the same pairs, every `stride`-th where they are many.
  template <typename Visit>
  void each(unsigned stride, Visit visit) const {
    for (unsigned singleMask = 0; singleMask < 1U << singles_.size(); ++singleMask) {
      const std::vector<History> singles = chosen(singles_, singleMask);
      const std::vector<History> possible = closed(pairs_, singles_, singles);
      for (unsigned pairMask = 0; pairMask < 1U << possible.size(); ++pairMask)
        eachWith(singles, chosen(possible, pairMask), stride, visit);
    }
  }

 private:
  static std::vector<History> histories(std::initializer_list<const char*> texts) {
    std::vector<History> all;
    for (const char* one : texts) all.push_back(history(one));
    return all;
  }

  static bool contains(const History& sequence, const History& part) {
    std::size_t matched = 0;
    for (const Items& set : sequence)
      if (matched < part.size() &&
          std::includes(set.begin(), set.end(), part[matched].begin(), part[matched].end()))
        ++matched;
    return matched == part.size();
  }

  // The members of `all` whose bits are set in `mask`.
  static std::vector<History> chosen(const std::vector<History>& all, unsigned mask) {
    std::vector<History> some;
    for (std::size_t n = 0; n < all.size(); ++n)
      if ((mask >> n & 1U) != 0) some.push_back(all[n]);
    return some;
  }

  // Those of `longer` whose parts among `shorter` are all stored.
  static std::vector<History> closed(const std::vector<History>& longer,
                                     const std::vector<History>& shorter,
                                     const std::vector<History>& stored) {
    std::vector<History> closed;
    for (const History& one : longer) {
      const auto isStored = [&](const History& part) {
        return !contains(one, part) ||
               std::find(stored.begin(), stored.end(), part) != stored.end();
      };
      if (std::all_of(shorter.begin(), shorter.end(), isStored)) closed.push_back(one);
    }
    return closed;
  }

  template <typename Visit>
  void eachWith(const std::vector<History>& singles, const std::vector<History>& pairs,
                unsigned stride, Visit visit) const {
    const std::vector<History> possible = closed(triples_, pairs_, pairs);
    const unsigned count = 1U << possible.size(), step = count > 64 ? stride : 1;
    for (unsigned mask = 0; mask < count; mask += step) {
      std::vector<History> stored = singles;
      stored.insert(stored.end(), pairs.begin(), pairs.end());
      const std::vector<History> triples = chosen(possible, mask ^ (count - 1));
      stored.insert(stored.end(), triples.begin(), triples.end());
      visit(stored);
    }
  }

  const std::vector<History> singles_ = histories({"(1)", "(2)"});
  const std::vector<History> pairs_ = histories({"(1)(1)", "(1)(2)", "(2)(1)", "(2)(2)", "(1 2)"});
  const std::vector<History> triples_ =
      histories({"(1)(1)(1)", "(1)(1)(2)", "(1)(2)(1)", "(1)(2)(2)", "(2)(1)(1)", "(2)(1)(2)",
                 "(2)(2)(1)", "(2)(2)(2)", "(1 2)(1)", "(1 2)(2)", "(1)(1 2)", "(2)(1 2)"});
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_SMALLLATTICES_H_

// Sequence values from literals, and back: `packed({{3, 7}, {9}})` is (3 7)(9).

#ifndef TESTS_SUPPORT_SEQUENCEVALUES_H_
#define TESTS_SUPPORT_SEQUENCEVALUES_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace orbseq::test {

using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

using Items = std::vector<std::int32_t>;
using ItemSets = std::vector<Items>;
using Times = std::vector<double>;

inline TimedItemSet itemSet(const Items& items, double time = 0.0) {
  TimedItemSet set(0, time);
  for (const std::int32_t item : items) set.AddItem(item);
  return set;
}

inline Items itemsOf(const TimedItemSet& set) { return {set.Begin(), set.End()}; }

// The sets with the given times; a set beyond the last time has the time 0.
inline Sequence sequence(const ItemSets& sets, const Times& times = {}) {
  Sequence result;
  for (std::size_t k = 0; k < sets.size(); ++k) {
    const TimedItemSet set = itemSet(sets[k], k < times.size() ? times[k] : 0.0);
    result.AddTimedItemSet(&set);
  }
  return result;
}

inline ItemSets setsOf(const Sequence& sequence) {
  ItemSets sets;
  for (std::int32_t k = 0; k < sequence.Length(); ++k) sets.push_back(itemsOf(*sequence[k]));
  return sets;
}

inline Times timesOf(const Sequence& sequence) {
  Times times;
  for (std::int32_t k = 0; k < sequence.Length(); ++k)
    times.push_back(sequence.GetTimeOfTimedItemSet(k));
  return times;
}

// Arrays that begin with their number of items, as the packed form's builders take them.
class CountedArrays {
 public:
  explicit CountedArrays(const ItemSets& sets) {
    for (const Items& set : sets) {
      Items& array = arrays_.emplace_back(1, static_cast<std::int32_t>(set.size()));
      array.insert(array.end(), set.begin(), set.end());
    }
    for (const Items& array : arrays_) pointers_.push_back(array.data());
  }
  CountedArrays(const CountedArrays&) = delete;
  CountedArrays& operator=(const CountedArrays&) = delete;

  const int* const* data() const { return pointers_.data(); }
  int count() const { return static_cast<int>(pointers_.size()); }

 private:
  ItemSets arrays_;
  std::vector<const int*> pointers_;
};

inline NTSequence packed(const ItemSets& sets) {
  const CountedArrays arrays(sets);
  return NTSequence(arrays.data(), arrays.count());
}

inline ItemSets setsOf(const NTSequence& sequence) {
  ItemSets sets;
  bool opens = true;
  for (std::int32_t p = 0; p < sequence.size(); ++p) {
    if (opens) sets.emplace_back();
    sets.back().push_back(sequence.items()[static_cast<std::size_t>(p)]);
    opens = sequence.endsSet(p);
  }
  return sets;
}

inline std::string text(const ItemSets& sets) {
  std::string result;
  for (const Items& set : sets) {
    result += '(';
    for (std::size_t k = 0; k < set.size(); ++k)
      result += (k == 0 ? "" : " ") + std::to_string(set[k]);
    result += ')';
  }
  return result;
}

// `count` items, one a set.
inline ItemSets singletons(std::int32_t count) {
  ItemSets sets;
  for (std::int32_t item = 1; item <= count; ++item) sets.push_back({item});
  return sets;
}

inline std::int32_t randomInt(std::mt19937& random, std::int32_t least, std::int32_t most) {
  return std::uniform_int_distribution<std::int32_t>(least, most)(random);
}

// `count` items from least .. most in sets of one item and more, in any order.
inline ItemSets randomSets(std::mt19937& random, std::int32_t count, std::int32_t least,
                           std::int32_t most) {
  ItemSets sets;
  for (std::int32_t p = 0; p < count; ++p) {
    if (p == 0 || randomInt(random, 0, 1) == 1) sets.emplace_back();
    sets.back().push_back(randomInt(random, least, most));
  }
  return sets;
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_SEQUENCEVALUES_H_

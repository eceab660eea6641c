// Plain models of the packed form: what its pattern, hash and order must be, written down a second
// time over vectors of vectors and without a line in common.

#ifndef TESTS_SUPPORT_SEQUENCEMODEL_H_
#define TESTS_SUPPORT_SEQUENCEMODEL_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/sequenceValues.h"

namespace orbseq::test {

inline Items flatItems(const ItemSets& sets) {
  Items items;
  for (const Items& set : sets) items.insert(items.end(), set.begin(), set.end());
  return items;
}

// One flag per item: it is the last of its set.
inline std::vector<bool> setEnds(const ItemSets& sets) {
  std::vector<bool> ends;
  for (const Items& set : sets)
    for (std::size_t k = 0; k < set.size(); ++k) ends.push_back(k + 1 == set.size());
  return ends;
}

constexpr std::int64_t kTwoTo32 = 4294967296;

// The residue 0 .. 2^32 - 1.
constexpr std::int64_t reduced(std::int64_t x) {
  const std::int64_t remainder = x % kTwoTo32;
  return remainder < 0 ? remainder + kTwoTo32 : remainder;
}

constexpr std::int32_t asSigned32(std::int64_t residue) {
  return static_cast<std::int32_t>(residue < kTwoTo32 / 2 ? residue : residue - kTwoTo32);
}

// The residue of a x b for two residues, in two steps that fit into 63 bits.
constexpr std::int64_t productOf(std::int64_t a, std::int64_t b) {
  const std::int64_t high = reduced(a * (b / 65536));
  return reduced(high * 65536 + a * (b % 65536));
}

inline std::int64_t modelPatternResidue(const ItemSets& sets) {
  std::int64_t pattern = 0;
  for (const bool end : setEnds(sets)) pattern = reduced(pattern * 2 + (end ? 1 : 0));
  return pattern;
}

inline std::int32_t modelPattern(const ItemSets& sets) {
  return asSigned32(modelPatternResidue(sets));
}

inline std::int32_t modelHash(const ItemSets& sets) {
  static constexpr std::int64_t kMultipliers[] = {
      9587, 9601, 9613, 9619, 9623, 9619, 9623, 9629, 9631, 9643, 9649, 9661, 9677,
      9679, 9689, 9697, 9719, 9721, 9733, 9739, 9743, 9749, 9767, 9769, 9781, 9787,
      9791, 9803, 9811, 9817, 9829, 9833, 9839, 9851, 9857, 9859, 9871, 9883, 9887};
  const Items items = flatItems(sets);
  const std::int64_t pattern = modelPatternResidue(sets);
  if (items.empty()) return 0;
  if (items.size() == 1) return items[0];
  std::int64_t h = 0;
  if (items.size() == 2) {
    h = reduced(reduced(items[0]) * 9829 + reduced(items[1]) * 9817);
    std::int64_t shifted = h;
    for (std::int64_t step = 0; step < pattern % 32; ++step) shifted = reduced(shifted * 2);
    h = reduced(h + shifted + 1);
  } else {
    for (std::size_t p = 0; p < items.size(); ++p) {
      const std::int64_t factor = kMultipliers[p] * kMultipliers[p + 1];
      h = reduced(2 * h + productOf(reduced(items[p]), reduced(factor)));
    }
    h = productOf(pattern, h);
  }
  const std::int32_t hash = asSigned32(h);
  return hash < 0 ? asSigned32(reduced(-std::int64_t{hash})) : hash;
}

// The order in the words of its definition, with the masks of the two sides.
inline bool modelLess(const ItemSets& left, const ItemSets& right) {
  const Items a = flatItems(left), b = flatItems(right);
  const std::vector<bool> endsA = setEnds(left), endsB = setEnds(right);
  if (a.size() > 31 || b.size() > 31) return false;
  if (a.empty()) return !b.empty();
  for (std::size_t p = 0;; ++p) {
    if (p >= b.size()) return false;
    if (endsA[p] && !endsB[p]) return a[p] <= b[p];
    if (!endsA[p] && endsB[p]) return a[p] < b[p];
    if (a[p] > b[p]) return false;
    if (a[p] < b[p]) return true;
    if (p + 1 == a.size()) return endsA[p] && p + 1 < b.size();
  }
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_SEQUENCEMODEL_H_

// Hash, equality and order of packed sequences.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "sequence/NTSequence.h"
#include "tests/support/sequenceModel.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::PackedSequence;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

std::int32_t hashOf(const ItemSets& sets) { return packed(sets).HashCode(); }

bool less(const ItemSets& a, const ItemSets& b) { return packed(a) < packed(b); }

// The items of singletons(count) in one set.
ItemSets oneSet(std::int32_t count) { return {flatItems(singletons(count))}; }

TEST(NTSequenceHash, NoItemsHashToZero) { EXPECT_EQ(hashOf({}), 0); }

TEST(NTSequenceHash, OneItemHashesToItself) { EXPECT_EQ(hashOf({{5}}), 5); }

// Deliberate: no absolute value is taken of a single item.
TEST(NTSequenceHash, ANegativeItemHashesToItself) {
  EXPECT_EQ(hashOf({{-5}}), -5);
  EXPECT_EQ(hashOf({{kLeast}}), kLeast);
}

TEST(NTSequenceHash, TwoItemsAreMixedWithThePattern) {
  EXPECT_EQ(hashOf({{1, 2}}), 88390);
  EXPECT_EQ(hashOf({{1}, {2}}), 265168);
}

TEST(NTSequenceHash, TwoZerosHashToOne) { EXPECT_EQ(hashOf({{0}, {0}}), 1); }

TEST(NTSequenceHash, ThreeItemsAndMoreAreMultipliedByThePattern) {
  EXPECT_EQ(hashOf({{1, 2, 3}}), 1014759141);
  EXPECT_EQ(hashOf({{3, 7}, {2}, {5, 8, 9}}), 1977625001);
}

TEST(NTSequenceHash, NegativeResultsAreNegated) {
  EXPECT_EQ(hashOf({{-1, -2}}), 88388);
  EXPECT_EQ(hashOf({{1}, {2}, {3}}), 1486620605);
  EXPECT_EQ(hashOf({{1, 2}, {3}}), 1250689873);
}

TEST(NTSequenceHash, ItWrapsAroundAtThirtyTwoBits) {
  EXPECT_EQ(hashOf({{100000}, {200000}}), 746896225);
  EXPECT_EQ(hashOf({{kMost, kMost}}), 58937);
  EXPECT_EQ(hashOf({{kLeast, 0, -7}}), 647272129);
}

// Deliberate: the most negative number is its own negation and stays.
TEST(NTSequenceHash, TheMostNegativeResultStaysNegative) {
  EXPECT_EQ(hashOf({{180684, 183681}}), -2147483647 - 1);
}

TEST(NTSequenceHash, TheLongestSequencesUseTheWholeTable) {
  EXPECT_EQ(hashOf(singletons(31)), 436217973);
  EXPECT_EQ(hashOf(oneSet(31)), 1711265675);
  EXPECT_EQ(hashOf(singletons(32)), 2071502858);
  EXPECT_EQ(hashOf(oneSet(32)), 2071502858);
}

TEST(NTSequenceHash, EqualsTheModelsOnRandomSequences) {
  for (std::uint32_t seed = 1; seed <= 5000; ++seed) {
    std::mt19937 random(seed);
    const std::int32_t bound = seed % 3 == 0 ? kMost : seed % 3 == 1 ? 50 : 1'000'000;
    const ItemSets sets =
        randomSets(random, randomInt(random, 0, 32), seed % 2 == 0 ? -bound : 0, bound);
    ASSERT_EQ(hashOf(sets), modelHash(sets)) << "seed " << seed << ", " << text(sets);
  }
}

TEST(NTSequenceEquality, EqualItemsAndBoundariesAreEqual) {
  EXPECT_TRUE(packed({{3, 7}, {2}}) == packed({{3, 7}, {2}}));
  EXPECT_TRUE(NTSequence() == NTSequence());
}

TEST(NTSequenceEquality, DifferentItemsAreUnequal) {
  EXPECT_FALSE(packed({{1, 2}}) == packed({{1, 3}}));
  EXPECT_FALSE(packed({{1, 2}}) == packed({{2, 1}}));
}

TEST(NTSequenceEquality, DifferentBoundariesAreUnequalAlsoAtEqualHashes) {
  const NTSequence oneSetOfZeros = packed({{0, 0, 0}}), threeSetsOfZeros = packed({{0}, {0}, {0}});

  EXPECT_EQ(oneSetOfZeros.HashCode(), threeSetsOfZeros.HashCode());
  EXPECT_FALSE(oneSetOfZeros == threeSetsOfZeros);
  EXPECT_FALSE(packed(singletons(32)) == packed(oneSet(32)));
}

TEST(NTSequenceEquality, DifferentItemsAreUnequalAlsoAtEqualHashes) {
  const NTSequence ascending = packed({{9817, -9829}}), zeros = packed({{0, 0}});

  EXPECT_EQ(ascending.HashCode(), zeros.HashCode());
  EXPECT_FALSE(ascending == zeros);
}

TEST(NTSequenceEquality, DifferentLengthsAreUnequalAlsoAtEqualHashes) {
  EXPECT_EQ(hashOf({{0}}), hashOf({}));
  EXPECT_FALSE(packed({{0}}) == NTSequence());
  EXPECT_FALSE(NTSequence() == packed({{0}}));
}

// Deliberate: the cached hash counts, also where a packed record brought another one.
TEST(NTSequenceEquality, DifferentHashesOfEqualItemsAreUnequal) {
  const std::int32_t items[] = {5};
  const PackedSequence record{1, 1, 6, 1, items};
  NTSequence sequence;
  sequence.reuseAs(&record);

  EXPECT_FALSE(sequence == packed({{5}}));
}

TEST(NTSequenceOrder, TheEmptySequenceIsLessThanAnyOther) {
  EXPECT_TRUE(less({}, {{kLeast}}));
  EXPECT_FALSE(less({{kLeast}}, {}));
  EXPECT_FALSE(less({}, {}));
}

TEST(NTSequenceOrder, TheSmallerItemDecides) {
  EXPECT_TRUE(less({{1, 2}, {9}}, {{1, 3}, {1}}));
  EXPECT_FALSE(less({{1, 3}, {1}}, {{1, 2}, {9}}));
}

TEST(NTSequenceOrder, ItemsCompareAsSignedNumbers) {
  EXPECT_TRUE(less({{-1}}, {{1}}));
  EXPECT_TRUE(less({{kLeast}}, {{kMost}}));
}

TEST(NTSequenceOrder, ASetThatEndsEarlierIsLessAtEqualItems) {
  EXPECT_TRUE(less({{1, 2}}, {{1, 2, 3}}));
  EXPECT_FALSE(less({{1, 2, 3}}, {{1, 2}}));
  EXPECT_TRUE(less({{1}, {2}}, {{1, 2}}));
  EXPECT_FALSE(less({{1, 2}}, {{1}, {2}}));
}

TEST(NTSequenceOrder, TheItemDecidesBeforeTheSetEnd) {
  EXPECT_TRUE(less({{1, 9}}, {{2}}));
  EXPECT_FALSE(less({{2}}, {{1, 9}}));
  EXPECT_TRUE(less({{1}}, {{2, 9}}));
  EXPECT_FALSE(less({{2, 9}}, {{1}}));
}

TEST(NTSequenceOrder, AProperPrefixIsLess) {
  EXPECT_TRUE(less({{1}}, {{1}, {2}}));
  EXPECT_FALSE(less({{1}, {2}}, {{1}}));
}

TEST(NTSequenceOrder, NoSequenceIsLessThanItself) {
  EXPECT_FALSE(less({{1, 2}, {3}}, {{1, 2}, {3}}));
}

TEST(NTSequenceOrder, ThirtyOneItemsAreStillOrdered) {
  ItemSets greater = singletons(31);
  greater.back() = {99};

  EXPECT_TRUE(less(singletons(31), greater));
  EXPECT_FALSE(less(greater, singletons(31)));
  EXPECT_TRUE(less(singletons(30), singletons(31)));
}

// Deliberate: the order works for up to 31 items.
TEST(NTSequenceOrder, ThirtyTwoItemsAreNeitherLessNorGreaterThanAnything) {
  const ItemSets full = singletons(32);

  for (const ItemSets& other :
       {ItemSets{}, ItemSets{{0}}, ItemSets{{99}}, singletons(31), singletons(32), oneSet(32)}) {
    EXPECT_FALSE(less(full, other)) << text(other);
    EXPECT_FALSE(less(other, full)) << text(other);
  }
}

TEST(NTSequenceOrder, ASequenceWhoseLastSetIsOpenIsNoPrefix) {
  const std::int32_t items[] = {1, 2};
  const PackedSequence open{2, 1, 0, 0, items};  // neither item ends a set
  const std::int32_t longerItems[] = {1, 2, 3};
  const PackedSequence openLonger{3, 1, 0, 0, longerItems};
  NTSequence shorter, longer;
  shorter.reuseAs(&open);
  longer.reuseAs(&openLonger);

  EXPECT_FALSE(shorter < longer);
  EXPECT_FALSE(longer < shorter);
}

// Sequences that share beginnings, so that every step of the comparison decides somewhere.
std::vector<ItemSets> relatives(std::mt19937& random, std::int32_t most) {
  std::vector<ItemSets> family{{}};
  const ItemSets ancestor = randomSets(random, randomInt(random, 1, most), 0, 3);
  for (int k = 0; k < 14; ++k) {
    ItemSets sets = ancestor;
    const auto set =
        static_cast<std::size_t>(randomInt(random, 0, static_cast<std::int32_t>(sets.size()) - 1));
    switch (randomInt(random, 0, 3)) {
      case 0:
        sets.resize(set + 1);
        break;
      case 1:
        sets[set].back() = randomInt(random, -1, 4);
        break;
      case 2:
        sets = randomSets(random, randomInt(random, 1, most), 0, 1);
        break;
      default:
        if (sets[set].size() > 1) {
          sets.insert(sets.begin() + static_cast<std::ptrdiff_t>(set), {sets[set].front()});
          sets[set + 1].erase(sets[set + 1].begin());
        }
    }
    family.push_back(sets);
  }
  return family;
}

TEST(NTSequenceOrder, EqualsTheModelsOnRandomSequences) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const std::vector<ItemSets> family = relatives(random, seed % 4 == 0 ? 32 : 6);
    std::vector<NTSequence> packedFamily;
    for (const ItemSets& sets : family) packedFamily.push_back(packed(sets));
    for (std::size_t a = 0; a < family.size(); ++a)
      for (std::size_t b = 0; b < family.size(); ++b)
        ASSERT_EQ(packedFamily[a] < packedFamily[b], modelLess(family[a], family[b]))
            << "seed " << seed << ", " << text(family[a]) << " and " << text(family[b]);
  }
}

TEST(NTSequenceOrder, IsAStrictTotalOrderUpToThirtyOneItems) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    std::vector<NTSequence> family;
    for (const ItemSets& sets : relatives(random, seed % 4 == 0 ? 31 : 5))
      family.push_back(packed(sets));
    for (const NTSequence& a : family)
      for (const NTSequence& b : family) {
        ASSERT_EQ((a < b) + (b < a), a == b ? 0 : 1) << "seed " << seed;
        for (const NTSequence& c : family)
          ASSERT_FALSE(a < b && b < c && !(a < c)) << "seed " << seed;
      }
  }
}

}  // namespace

// The packed form against sets of items in plain vectors, on random sequences.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "tests/support/sequenceModel.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::PackedSequence;

// Everything that a packed sequence of these sets says about itself.
void expectIs(const NTSequence& sequence, const ItemSets& sets) {
  const Items items = flatItems(sets);
  ASSERT_EQ(Items(sequence.items().begin(), sequence.items().end()), items);
  EXPECT_EQ(sequence.size(), static_cast<std::int32_t>(items.size()));
  EXPECT_EQ(sequence.getNSets(), static_cast<std::int32_t>(sets.size()));
  EXPECT_EQ(sequence.getPattern(), modelPattern(sets));
  EXPECT_EQ(sequence.HashCode(), modelHash(sets));
  EXPECT_TRUE(sequence == packed(sets));
  for (std::int32_t item = -2; item <= 9; ++item) {
    const auto found = std::find(items.begin(), items.end(), item);
    EXPECT_EQ(sequence.getItemIndex(item), found == items.end() ? -1 : found - items.begin());
  }
  for (std::size_t s = 0; s < sets.size() + 2; ++s) {
    const Items expected = s < sets.size() ? sets[s] : Items{};
    const auto set = static_cast<std::int32_t>(s);
    Items written(expected.size());
    sequence.getSetAsArray(set, written.data());
    EXPECT_EQ(written, expected);
    EXPECT_EQ(sequence.getSizeOfSet(set), static_cast<std::int32_t>(expected.size()));
    for (std::size_t k = 0; k < expected.size() + 2; ++k)
      EXPECT_EQ(sequence.getItemInSet(static_cast<std::int32_t>(k), set),
                k < expected.size() ? expected[k] : 0);
  }
}

void insertBeforeFirstGreater(Items& set, std::int32_t item) {
  const auto greater =
      std::find_if(set.begin(), set.end(), [item](std::int32_t other) { return other > item; });
  set.insert(greater, item);
}

ItemSets modelExtension(ItemSets sets, std::int32_t item, std::int32_t position) {
  const std::int32_t set = position / 2;
  if (position % 2 == 1)
    sets.insert(sets.begin() + set, Items{item});
  else
    insertBeforeFirstGreater(sets[static_cast<std::size_t>(set)], item);
  return sets;
}

ItemSets modelRemoval(ItemSets sets, std::int32_t position) {
  auto set = sets.begin();
  for (; position >= static_cast<std::int32_t>(set->size()); ++set)
    position -= static_cast<std::int32_t>(set->size());
  set->erase(set->begin() + position);
  if (set->empty()) sets.erase(set);
  return sets;
}

// A random sequence of at most `most` items, for 400 seeds.
template <typename Check>
void onRandomSequences(std::int32_t most, Check&& check) {
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    std::mt19937 random(seed);
    const std::int32_t limit = seed % 5 == 0 ? most : std::min(most, 8);
    const ItemSets sets = randomSets(random, randomInt(random, 0, limit), -1, 8);
    check(random, sets);
    if (testing::Test::HasFailure()) FAIL() << "seed " << seed << ", " << text(sets);
  }
}

TEST(NTSequenceParity, EveryBuilderPacksTheSameSequence) {
  onRandomSequences(32, [](std::mt19937& random, const ItemSets& sets) {
    const CountedArrays arrays(sets);
    const NTSequence built(arrays.data(), arrays.count());
    expectIs(built, sets);
    expectIs(NTSequence(built), sets);

    NTSequence refilled = packed(randomSets(random, randomInt(random, 0, 32), 0, 9));
    refilled.reuseAs(arrays.data(), arrays.count());
    expectIs(refilled, sets);

    const PackedSequence record{built.size(), built.getNSets(), built.HashCode(),
                                built.getPattern(), built.items().data()};
    NTSequence taken;
    taken.reuseAs(&record);
    expectIs(taken, sets);

    if (sets.size() == 1) {
      Items array{static_cast<std::int32_t>(sets[0].size())};
      array.insert(array.end(), sets[0].begin(), sets[0].end());
      expectIs(NTSequence(array.data()), sets);
    }
  });
}

TEST(NTSequenceParity, EveryExtensionEqualsTheModels) {
  onRandomSequences(31, [](std::mt19937& random, const ItemSets& sets) {
    const NTSequence source = packed(sets);
    const std::int32_t item = randomInt(random, -2, 9);
    for (std::int32_t position = -3; position <= source.getNSets() * 2 + 3; ++position)
      if (source.isPosition(position))
        expectIs(NTSequence(source, item, position), modelExtension(sets, item, position));
    expectIs(source, sets);
  });
}

TEST(NTSequenceParity, EveryAdditionEqualsTheModels) {
  onRandomSequences(31, [](std::mt19937& random, const ItemSets& sets) {
    const std::int32_t item = randomInt(random, -2, 9);
    for (std::size_t set = 0; set < sets.size(); ++set) {
      ItemSets expected = sets;
      insertBeforeFirstGreater(expected[set], item);
      NTSequence sequence = packed(sets);
      sequence.addItemToSet(item, static_cast<std::int32_t>(set));
      expectIs(sequence, expected);
    }
    ItemSets expected = sets;
    expected.push_back({item});
    NTSequence sequence = packed(sets);
    sequence.addItemAfterLast(item);
    expectIs(sequence, expected);
  });
}

TEST(NTSequenceParity, EveryRemovalEqualsTheModels) {
  onRandomSequences(32, [](std::mt19937&, const ItemSets& sets) {
    const NTSequence source = packed(sets);
    NTSequence rest;
    for (std::int32_t position = 0; position < source.size(); ++position) {
      const ItemSets expected = modelRemoval(sets, position);
      EXPECT_EQ(rest.removeItem(position, &source), expected.size() < sets.size());
      expectIs(rest, expected);
    }
  });
}

TEST(NTSequenceParity, RemovalUndoesExtension) {
  onRandomSequences(31, [](std::mt19937&, const ItemSets& sets) {
    constexpr std::int32_t kNewItem = 77;
    const NTSequence source = packed(sets);
    NTSequence rest;
    for (std::int32_t position = 0; position <= 2 * source.getNSets() + 1; ++position) {
      if (!source.isPosition(position)) continue;
      const NTSequence longer(source, kNewItem, position);
      EXPECT_EQ(rest.removeItem(longer.getItemIndex(kNewItem), &longer), position % 2 == 1);
      expectIs(rest, sets);
    }
  });
}

TEST(NTSequenceParity, UnpackingAndPackingEqualsSortingTheSets) {
  onRandomSequences(32, [](std::mt19937& random, const ItemSets& sets) {
    ItemSets sorted;
    Times times;
    for (const Items& set : sets) {
      const std::set<std::int32_t> distinct(set.begin(), set.end());
      sorted.emplace_back(distinct.begin(), distinct.end());
      times.push_back(static_cast<double>(sorted.size()));
    }

    const std::unique_ptr<Sequence> unpacked(packed(sets).createSequence());
    EXPECT_EQ(setsOf(*unpacked), sorted);
    EXPECT_EQ(timesOf(*unpacked), times);
    expectIs(NTSequence(unpacked.get()), sorted);

    const auto drop =
        static_cast<std::size_t>(randomInt(random, 0, static_cast<std::int32_t>(sorted.size())));
    sorted.resize(sorted.size() - drop);
    expectIs(NTSequence(*unpacked, static_cast<std::int32_t>(drop)), sorted);
  });
}

}  // namespace

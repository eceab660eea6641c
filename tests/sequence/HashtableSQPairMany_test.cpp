// Many keys looked up at once: the same entries as one by one.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/sequence/tableValues.h"

namespace {

using namespace orbseq::test;

// A place that nothing stands at, to tell what was written from what was not.
const ISQCPair kUntouched;

// What getAll answers for the keys, with one more place behind them.
std::vector<const ISQCPair*> allOf(const HashtableSQPair& table,
                                   const std::vector<NTSequence>& keys) {
  std::vector<const ISQCPair*> found(keys.size() + 1, &kUntouched);
  table.getAll(keys, found.data());
  return found;
}

// The same, a key at a time.
std::vector<const ISQCPair*> oneByOne(const HashtableSQPair& table,
                                      const std::vector<NTSequence>& keys) {
  std::vector<const ISQCPair*> found;
  for (const NTSequence& key : keys) found.push_back(table.get(&key));
  found.push_back(&kUntouched);
  return found;
}

ItemSets randomKey(std::mt19937& random) {
  return randomSets(random, randomInt(random, 1, 4), 1, 5);
}

void fill(HashtableSQPair& table, std::mt19937& random, int entries) {
  for (int k = 0; k < entries; ++k) {
    NTSequence* const key = newKey(randomKey(random));
    auto* const counter = newCounter(k);
    if (table.put(key, counter)) continue;
    delete key;
    delete counter;
  }
}

constexpr std::size_t kCounts[] = {0, 1, 2, 31, 32, 33, 63, 64, 65, 100};

TEST(HashtableSQPairMany, AreFoundAsOneByOne) {
  std::size_t present = 0, absent = 0;
  for (const int capacity : {0, 1, 2, 89}) {
    std::mt19937 random(static_cast<std::uint32_t>(capacity) + 1);
    HashtableSQPair table(capacity);
    fill(table, random, 400);
    for (const std::size_t count : kCounts) {
      std::vector<NTSequence> keys;
      while (keys.size() < count) keys.push_back(packed(randomKey(random)));

      const auto found = allOf(table, keys);

      EXPECT_EQ(found, oneByOne(table, keys)) << "capacity " << capacity << ", keys " << count;
      for (std::size_t k = 0; k < count; ++k) ++(found[k] == nullptr ? absent : present);
    }
  }
  EXPECT_GT(present, 300U);
  EXPECT_GT(absent, 300U);
}

TEST(HashtableSQPairMany, AreFoundInLongChains) {
  OpenTable table(1001);
  std::vector<NTSequence> keys;
  for (std::int32_t k = 0; k < 40; ++k) {
    const std::int32_t item = 7 + 1001 * k;  // one bucket
    if (k % 2 == 0) putItem(table, item);
    keys.push_back(packed({{item}}));
  }
  ASSERT_EQ(table.chainLength(&keys[0], 100), 20);

  const auto found = allOf(table, keys);

  EXPECT_EQ(found, oneByOne(table, keys));
  for (std::size_t k = 0; k < keys.size(); ++k) {
    if (k % 2 != 0) {
      EXPECT_EQ(found[k], nullptr) << k;
    } else {
      ASSERT_NE(found[k], nullptr) << k;
      EXPECT_EQ(found[k]->value->getCount(), 7 + 1001 * static_cast<std::int32_t>(k));
    }
  }
}

TEST(HashtableSQPairMany, AreAbsentFromAnEmptyTable) {
  for (const int capacity : {-1, 0, 1, 89}) {
    const HashtableSQPair table(capacity);
    for (const std::size_t count : kCounts) {
      const std::vector<NTSequence> keys(count, packed({{1}, {2}}));

      const auto found = allOf(table, keys);

      for (std::size_t k = 0; k < count; ++k)
        EXPECT_EQ(found[k], nullptr) << "capacity " << capacity << ", key " << k;
      EXPECT_EQ(found[count], &kUntouched) << "capacity " << capacity << ", keys " << count;
    }
  }
}

TEST(HashtableSQPairMany, TheSameKeyOftenIsTheSameEntry) {
  HashtableSQPair table(3);
  putItems(table, {1, 2, 3});
  const std::vector<NTSequence> keys(70, packed({{2}}));

  const auto found = allOf(table, keys);

  const ISQCPair* const entry = table.get(&keys[0]);
  ASSERT_NE(entry, nullptr);
  for (std::size_t k = 0; k < keys.size(); ++k) EXPECT_EQ(found[k], entry) << k;
}

TEST(HashtableSQPairMany, NullCountersAreFoundWithTheirEntries) {
  HashtableSQPair table(3);
  table.put(newKey({{4}}), nullptr);
  const std::vector<NTSequence> keys = {packed({{4}}), packed({{5}})};

  const auto found = allOf(table, keys);

  ASSERT_NE(found[0], nullptr);
  EXPECT_EQ(found[0]->value, nullptr);
  EXPECT_EQ(found[1], nullptr);
}

}  // namespace

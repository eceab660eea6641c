// The table against a map and a plain model of its chains, on long random runs of operations.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "tests/sequence/tableValues.h"
#include "tests/support/sequenceModel.h"

namespace {

using namespace orbseq::test;

using Entry = std::pair<ItemSets, std::int32_t>;  // key, count
using Chain = std::vector<Entry>;                 // the head first

// Chains as vectors, with the rules of growth and order written down a second time.
class ChainModel {
 public:
  explicit ChainModel(std::int32_t capacity) : chains_(static_cast<std::size_t>(capacity)) {}

  bool put(const ItemSets& key, std::int32_t count) {
    if (find(key) != nullptr) return false;
    if (size_ + 1 > threshold()) grow();
    chainOf(key).insert(chainOf(key).begin(), Entry{key, count});
    ++size_;
    return true;
  }

  void putOverwrite(const ItemSets& key, std::int32_t count) {
    if (Entry* const entry = find(key))
      entry->second = count;
    else
      put(key, count);
  }

  void remove(const ItemSets& key) {
    Entry* const entry = find(key);
    if (entry == nullptr) return;
    *entry = chainOf(key).front();
    chainOf(key).erase(chainOf(key).begin());
    --size_;
  }

  void clear() {
    for (Chain& chain : chains_) chain.clear();
    size_ = 0;
  }

  // Three quarters, rounded half up, in whole numbers.
  std::int32_t threshold() const { return (capacity() * 3 + 2) / 4; }
  std::int32_t capacity() const { return static_cast<std::int32_t>(chains_.size()); }
  std::int32_t growths() const { return growths_; }
  std::int32_t size() const { return size_; }

  Chain inOrder() const {
    Chain all;
    for (const Chain& chain : chains_) all.insert(all.end(), chain.begin(), chain.end());
    return all;
  }

 private:
  Chain& chainOf(const ItemSets& key) {
    const std::int64_t buckets = capacity();
    const std::int64_t bucket = ((modelHash(key) % buckets) + buckets) % buckets;
    return chains_[static_cast<std::size_t>(bucket)];
  }

  Entry* find(const ItemSets& key) {
    if (chains_.empty()) return nullptr;
    for (Entry& entry : chainOf(key))
      if (entry.first == key) return &entry;
    return nullptr;
  }

  void grow() {
    std::vector<Chain> old(chains_.size() * 2 + 1);
    old.swap(chains_);
    for (const Chain& chain : old)
      for (const Entry& entry : chain)
        chainOf(entry.first).insert(chainOf(entry.first).begin(), entry);
    ++growths_;
  }

  std::vector<Chain> chains_;
  std::int32_t size_ = 0;
  std::int32_t growths_ = 0;
};

Chain inOrder(const HashtableSQPair& table) {
  Chain all;
  for (const ISQCPair& entry : table) all.emplace_back(setsOf(*entry.key), entry.value->getCount());
  return all;
}

// Table, model and map side by side; every operation goes to all three.
struct World {
  explicit World(std::int32_t capacity) : table(capacity), model(capacity) {}

  void put(const ItemSets& key, std::int32_t count) {
    auto* const stored = newKey(key);
    auto* const counter = newCounter(count);
    const bool accepted = table.put(stored, counter);
    if (!accepted) {
      delete stored;
      delete counter;
    }
    EXPECT_EQ(accepted, model.put(key, count));
    EXPECT_EQ(accepted, map.emplace(key, count).second);
  }

  void putOverwrite(const ItemSets& key, std::int32_t count) {
    table.putOverwrite(newKey(key), newCounter(count));
    model.putOverwrite(key, count);
    map[key] = count;
  }

  void remove(const ItemSets& key, bool byStoredKey) {
    const NTSequence probe = packed(key);
    const ISQCPair* const entry = table.get(&probe);
    table.remove(byStoredKey && entry != nullptr ? entry->key : &probe);
    model.remove(key);
    map.erase(key);
  }

  void clear() {
    table.clear();
    model.clear();
    map.clear();
  }

  void expectEqual() const {
    const Chain entries = inOrder(table);
    EXPECT_EQ(entries, model.inOrder());
    EXPECT_EQ((std::map<ItemSets, std::int32_t>(entries.begin(), entries.end())), map);
    EXPECT_EQ(table.getSize(), static_cast<std::int32_t>(map.size()));
    EXPECT_EQ(table.getCapacity(), model.capacity());
    EXPECT_EQ(table.getThreshold(), model.threshold());
    EXPECT_EQ(table.getRehashCount(), model.growths());
  }

  HashtableSQPair table;
  ChainModel model;
  std::map<ItemSets, std::int32_t> map;
};

ItemSets randomKey(std::mt19937& random) {
  // Few items, so that keys return; now and then a multiple that shares its bucket.
  if (randomInt(random, 0, 3) == 0) return {{randomInt(random, -3, 6) * 89 * 179}};
  return randomSets(random, randomInt(random, 0, 3), -2, 4);
}

TEST(HashtableSQPairParity, LongRandomRunsEqualTheModelInEveryStep) {
  constexpr std::int32_t kCapacities[] = {0, 1, 2, 3, 7, 89};
  for (std::uint32_t seed = 1; seed <= 24; ++seed) {
    std::mt19937 random(seed);
    World world(kCapacities[seed % 6]);
    for (std::int32_t step = 0; step < 250; ++step) {
      const ItemSets key = randomKey(random);
      const std::int32_t choice = randomInt(random, 0, 99);
      if (choice < 50)
        world.put(key, step);
      else if (choice < 65)
        world.putOverwrite(key, step);
      else if (choice < 99)
        world.remove(key, choice % 2 == 0);
      else
        world.clear();
      world.expectEqual();
      ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << step << ", " << text(key);
      ASSERT_EQ(countOf(world.table, key), world.map.count(key) == 0 ? -1 : world.map.at(key));
    }
  }
}

TEST(HashtableSQPairParity, ThousandsOfEntriesEqualTheModel) {
  for (std::uint32_t seed = 1; seed <= 3; ++seed) {
    std::mt19937 random(seed);
    World world(89);
    for (std::int32_t step = 0; step < 4000; ++step)
      world.put(randomSets(random, randomInt(random, 1, 6), 0, 500), step);
    world.expectEqual();
    ASSERT_GT(world.table.getRehashCount(), 4);
    ASSERT_FALSE(HasFailure()) << "seed " << seed;
  }
}

}  // namespace

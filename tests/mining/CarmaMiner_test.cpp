#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "mining/CarmaMiner.h"
#include "mining/ExactMiner.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "tests/mining/naiveMiner.h"

namespace {

using namespace orbseq;
using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

SeqDictionarySettings levelsFor(const MinerOptions& options) {
  SeqDictionarySettings settings;
  settings.levelTableSize.fill(7);
  settings.numLevels = options.maxItems + 1;
  return settings;
}

// The item sets as a miner takes them.
class SetsOf {
 public:
  explicit SetsOf(const Customer& customer) {
    for (const Basket& basket : customer) {
      items_.push_back(basket.items);
      std::sort(items_.back().begin(), items_.back().end());
      items_.back().erase(std::unique(items_.back().begin(), items_.back().end()),
                          items_.back().end());
    }
    for (const Items& set : items_) views_.emplace_back(set);
  }
  operator CustomerSets() const { return views_; }

 private:
  std::vector<Items> items_;
  std::vector<std::span<const std::int32_t>> views_;
};

Supports supportsOf(const SequenceDictionary& dictionary) {
  Supports supports;
  for (std::int32_t level = 1; level < dictionary.getNumLevels(); ++level)
    for (const ISQCPair& entry : *dictionary.getTable(level)) {
      std::string text;
      for (std::int32_t p = 0; p < entry.key->size(); ++p) {
        if (p > 0) text += entry.key->endsSet(p - 1) ? "|" : " ";
        text += std::to_string(entry.key->items()[static_cast<std::size_t>(p)]);
      }
      supports[text] = entry.value->getCount();
    }
  return supports;
}

void addAll(CarmaMiner& miner, const std::vector<Customer>& customers) {
  for (const Customer& customer : customers) miner.add(SetsOf(customer));
}

// The number of customers that the second pass looked at.
std::size_t recountAll(CarmaMiner& miner, const std::vector<Customer>& customers) {
  std::size_t looked = 0;
  miner.beginSecondPass();
  for (const Customer& customer : customers) {
    if (!miner.recount(SetsOf(customer))) break;
    ++looked;
  }
  miner.finishSecondPass();
  return looked;
}

// Many customers, so that both pruning and ordinals matter.
std::vector<Customer> manyCustomers(std::uint32_t seed) {
  return randomCustomers(seed, 1800, 5, 4, 2);
}

MinerOptions upTo(std::int32_t items) {
  MinerOptions options;
  options.maxItems = items;
  return options;
}

double shareOf(std::int32_t count, const std::vector<Customer>& customers) {
  return static_cast<double>(count) / static_cast<double>(customers.size());
}

TEST(CarmaMiner, WithASecondPassItAgreesWithTheExactMiner) {
  for (std::uint32_t seed = 1; seed <= 12; ++seed) {
    const auto customers = manyCustomers(seed);
    MinerOptions options = upTo(2 + static_cast<std::int32_t>(seed % 3));
    options.minCustomers = 30 + static_cast<std::int32_t>(seed) * 20;
    SequenceDictionary dictionary(levelsFor(options));
    CarmaMiner miner(dictionary, shareOf(options.minCustomers, customers), options);
    addAll(miner, customers);
    recountAll(miner, customers);
    EXPECT_EQ(supportsOf(dictionary),
              orbseq::test::supportsOf(mineExactly(databaseOf(customers), options)))
        << seed;
  }
}

TEST(CarmaMiner, SmallLogsAgreeWithTheDefinition) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    const auto customers = randomCustomers(seed, 25, 4, 5, 2);
    MinerOptions options = upTo(4);
    options.minCustomers = 4 + static_cast<std::int32_t>(seed % 6);
    options.maxSets = seed % 4 == 0 ? 2 : 31;
    options.maxItemsPerSet = seed % 5 == 0 ? 1 : 31;
    if (seed % 7 == 0) options.exclude = {2};
    SequenceDictionary dictionary(levelsFor(options));
    CarmaMiner miner(dictionary, shareOf(options.minCustomers, customers), options);
    addAll(miner, customers);
    recountAll(miner, customers);
    ASSERT_EQ(supportsOf(dictionary), naivelyMined(customers, options)) << seed;
  }
}

TEST(CarmaMiner, InOnePassTheCountsAreUpperBoundsAndNothingFrequentIsLost) {
  for (std::uint32_t seed = 1; seed <= 8; ++seed) {
    const auto customers = manyCustomers(seed);
    MinerOptions options = upTo(3);
    options.minCustomers = 90;
    SequenceDictionary dictionary(levelsFor(options));
    CarmaMiner miner(dictionary, shareOf(options.minCustomers, customers), options);
    addAll(miner, customers);
    miner.finishByBounds();
    const Supports bounds = supportsOf(dictionary);
    for (const auto& [sequence, count] : naivelyMined(customers, options)) {
      ASSERT_TRUE(bounds.contains(sequence)) << sequence;
      EXPECT_GE(bounds.at(sequence), count) << sequence;
    }
    for (std::int32_t level = 1; level < dictionary.getNumLevels(); ++level)
      for (const ISQCPair& entry : *dictionary.getTable(level))
        EXPECT_EQ(entry.value->getMaxMissed(), 0);
  }
}

// Deliberate: the bounds count what may have been missed before a sequence was stored.
TEST(CarmaMiner, ASequenceIsStoredWithItsOrdinalAndABound) {
  const std::vector<Customer> customers = {{{1, {1}}, {2, {2}}}, {{1, {1}}, {2, {2}}}};
  const MinerOptions options = upTo(2);
  SequenceDictionary dictionary(levelsFor(options));
  CarmaMiner miner(dictionary, 0.5, options);
  miner.add(SetsOf(customers[0]));
  EXPECT_THAT(supportsOf(dictionary), UnorderedElementsAre(Pair("1", 1), Pair("2", 1)));
  miner.add(SetsOf(customers[1]));
  EXPECT_THAT(supportsOf(dictionary),
              UnorderedElementsAre(Pair("1", 2), Pair("2", 2), Pair("1|2", 1)));
  NTSequence pair;
  pair.addItemAfterLast(1);
  pair.addItemAfterLast(2);
  EXPECT_EQ(dictionary.getDescriptor(&pair)->getOrdinalOfEntry(), 2);
  EXPECT_EQ(dictionary.getDescriptor(&pair)->getMaxMissed(), 1);  // of 0 + 2 - 1 and 2 - 1
  EXPECT_EQ(miner.customers(), 2);
  EXPECT_EQ(dictionary.getDescriptor(std::make_unique<NTSequence>().get())->getCount(), 2);
}

// Deliberate: a sequence is stored one item later with each customer that has it, so that one of L
// items wants L customers.
TEST(CarmaMiner, AThresholdBelowTheLargestNumberOfItemsIsNotComplete) {
  const std::vector<Customer> customers(3, Customer{{1, {1, 2, 3, 4}}});
  const MinerOptions options = upTo(4);
  SequenceDictionary dictionary(levelsFor(options));
  CarmaMiner miner(dictionary, 1.0, options);
  EXPECT_TRUE(miner.isComplete());  // nobody yet
  addAll(miner, customers);
  EXPECT_FALSE(miner.isComplete());
  recountAll(miner, customers);
  EXPECT_FALSE(supportsOf(dictionary).contains("1 2 3 4"));

  SequenceDictionary other(levelsFor(options));
  CarmaMiner enough(other, 1.0, options);
  addAll(enough, std::vector<Customer>(4, customers[0]));
  EXPECT_TRUE(enough.isComplete());
}

TEST(CarmaMiner, TheSecondPassEndsWhenEveryOrdinalIsBehind) {
  std::vector<Customer> customers(1000, Customer{{1, {1}}, {2, {2}}});
  const MinerOptions options = upTo(2);
  SequenceDictionary dictionary(levelsFor(options));
  CarmaMiner miner(dictionary, 0.5, options);
  addAll(miner, customers);
  EXPECT_EQ(recountAll(miner, customers), 1U);  // (1)(2) came with the second
  EXPECT_THAT(supportsOf(dictionary),
              UnorderedElementsAre(Pair("1", 1000), Pair("2", 1000), Pair("1|2", 1000)));
}

TEST(CarmaMiner, ASupportOrADictionaryThatDoesNotFitIsRefused) {
  const MinerOptions options = upTo(3);
  SequenceDictionary small(3);
  EXPECT_THROW(CarmaMiner(small, 0.5, options), std::invalid_argument);
  SequenceDictionary enough(4);
  for (const double support : {0.0, -0.1, 1.1, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_THROW(CarmaMiner(enough, support, options), std::invalid_argument);
}

TEST(CarmaMiner, ALimitThatIsHitEndsTheRun) {
  MinerOptions options = upTo(3);
  options.memoryBytes = 1000;
  SequenceDictionary dictionary(levelsFor(options));
  CarmaMiner miner(dictionary, 0.1, options);
  EXPECT_THROW(addAll(miner, manyCustomers(1)), MinerStopped);
  options = upTo(3);
  options.seconds = 0.0;
  SequenceDictionary other(levelsFor(options));
  CarmaMiner slow(other, 0.1, options);
  EXPECT_THROW(addAll(slow, manyCustomers(1)), MinerStopped);
}

}  // namespace

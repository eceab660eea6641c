#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "mining/ExactMiner.h"
#include "tests/mining/naiveMiner.h"

namespace {

using namespace orbseq;
using namespace orbseq::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

const std::vector<Customer> kShop = {
    {{1, {1, 2}}, {2, {3}}}, {{1, {1}}, {2, {2}}, {3, {3}}}, {{1, {3}}, {2, {1, 2}}}};

std::vector<std::string> inOrder(const PatternTree& tree) {
  std::vector<std::string> lines;
  tree.forEach([&lines](const Pattern& pattern) {
    std::string line;
    for (std::size_t k = 0; k < pattern.setBegins.size(); ++k) {
      line += '(';
      for (const std::int32_t item : pattern.set(k)) line += std::to_string(item);
      line += ')';
    }
    lines.push_back(line + ":" + std::to_string(pattern.count));
  });
  return lines;
}

MinerOptions atLeast(std::int32_t customers) {
  MinerOptions options;
  options.minCustomers = customers;
  return options;
}

TEST(ExactMiner, PrefixesComeFirstThenNewSetsThenJoins) {
  EXPECT_THAT(inOrder(mineExactly(databaseOf(kShop), atLeast(2))),
              ElementsAre("(1):3", "(1)(3):2", "(12):2", "(2):3", "(2)(3):2", "(3):3"));
}

TEST(ExactMiner, ACustomerCountsOnceAndNeedsABasketForEachSet) {
  const std::vector<Customer> customers = {{{1, {1}}, {2, {1}}, {3, {1}}}, {{1, {1, 1}}}};
  EXPECT_THAT(supportsOf(mineExactly(databaseOf(customers), atLeast(1))),
              ElementsAre(Pair("1", 2), Pair("1|1", 1), Pair("1|1|1", 1)));
}

TEST(ExactMiner, NothingComesOfNothing) {
  EXPECT_THAT(mineExactly(databaseOf({}), atLeast(1)).nodes, IsEmpty());
  EXPECT_THAT(mineExactly(databaseOf({{}, {{1, {}}}}), atLeast(1)).nodes, IsEmpty());
  EXPECT_THAT(mineExactly(databaseOf(kShop), atLeast(4)).nodes, IsEmpty());
}

TEST(ExactMiner, AnyItemNumberIsAnItem) {
  const std::int32_t least = std::numeric_limits<std::int32_t>::min();
  const std::int32_t most = std::numeric_limits<std::int32_t>::max();
  const std::vector<Customer> customers = {{{1, {most, least, 0, -1}}}};
  MinerOptions options = atLeast(1);
  options.maxItems = 2;
  EXPECT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
            naivelyMined(customers, options));
}

// A customer of 40 equal baskets holds a sequence of 31 items and no longer one.
TEST(ExactMiner, SequencesEndAt31Items) {
  Customer customer;
  for (int k = 0; k < 40; ++k) customer.push_back({static_cast<double>(k), {7}});
  const PatternTree tree = mineExactly(databaseOf({customer}), atLeast(1));
  ASSERT_EQ(tree.nodes.size(), 31U);
  EXPECT_EQ(tree.nodes.back().depth, 31);
}

struct Limits {
  std::int32_t items, sets, perSet;
};

TEST(ExactMiner, LimitsOfLengthAreThoseOfTheDefinition) {
  const auto customers = randomCustomers(5, 25, 4, 5, 3);
  for (const Limits& limits :
       {Limits{1, 31, 31}, Limits{3, 31, 31}, Limits{31, 1, 31}, Limits{31, 2, 31},
        Limits{31, 31, 1}, Limits{5, 3, 2}, Limits{0, 31, 31}, Limits{31, 31, 2}}) {
    MinerOptions options = atLeast(3);
    options.maxItems = limits.items;
    options.maxSets = limits.sets;
    options.maxItemsPerSet = limits.perSet;
    EXPECT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
              naivelyMined(customers, options))
        << limits.items << ' ' << limits.sets << ' ' << limits.perSet;
  }
}

TEST(ExactMiner, IncludedAndExcludedItemsAreThoseOfTheDefinition) {
  const auto customers = randomCustomers(6, 25, 5, 4, 3);
  MinerOptions options = atLeast(2);
  options.include = {1, 2, 3, 99};
  EXPECT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
            naivelyMined(customers, options));
  options.exclude = {3};
  EXPECT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
            naivelyMined(customers, options));
  options.include = {};
  EXPECT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
            naivelyMined(customers, options));
}

TEST(ExactMiner, RandomLogsAgreeWithTheDefinition) {
  for (std::uint32_t seed = 1; seed <= 150; ++seed) {
    const int width = seed % 3 == 0 ? 1 : 3;  // also logs of one item a set
    const auto customers = randomCustomers(seed, 30, 3 + static_cast<int>(seed % 4), 6, width);
    const MinerOptions options = atLeast(1 + static_cast<std::int32_t>(seed % 9));
    ASSERT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
              naivelyMined(customers, options))
        << seed;
  }
}

TEST(ExactMiner, BoundsOfTimeAgreeWithTheDefinition) {
  constexpr double kNoBound = std::numeric_limits<double>::infinity();
  for (std::uint32_t seed = 1; seed <= 150; ++seed) {
    const auto customers = randomCustomers(seed, 20, 3, 6, 2);
    MinerOptions options = atLeast(1 + static_cast<std::int32_t>(seed % 5));
    options.minGap = seed % 2 == 0 ? 0.0 : 1.0 + seed % 3;
    options.maxGap = seed % 3 == 0 ? kNoBound : 1.0 + seed % 4;
    options.maxSpan = seed % 5 == 0 ? kNoBound : 2.0 + seed % 6;
    ASSERT_EQ(supportsOf(mineExactly(databaseOf(customers), options)),
              naivelyMined(customers, options))
        << seed;
  }
}

// The earliest match of (1) is too early for (2); a later one is not.
TEST(ExactMiner, AGapIsMeasuredFromEveryPossibleStart) {
  const std::vector<Customer> customers = {{{0, {1}}, {5, {1}}, {7, {2}}}};
  MinerOptions options = atLeast(1);
  options.maxGap = 2.0;
  EXPECT_THAT(supportsOf(mineExactly(databaseOf(customers), options)),
              ElementsAre(Pair("1", 1), Pair("1|2", 1), Pair("2", 1)));
}

// Deliberate: with a largest gap a sequence may be frequent whose ends alone are not.
TEST(ExactMiner, WithALargestGapInnerSetsAreNotLeftOutOfFrequentSequences) {
  const std::vector<Customer> customers = {{{0, {1}}, {2, {2}}, {4, {3}}}};
  MinerOptions options = atLeast(1);
  options.maxGap = 2.0;
  const Supports supports = supportsOf(mineExactly(databaseOf(customers), options));
  EXPECT_TRUE(supports.contains("1|2|3"));
  EXPECT_FALSE(supports.contains("1|3"));
}

TEST(ExactMiner, TheResultDoesNotDependOnTheNumberOfThreads) {
  for (const bool timed : {false, true}) {
    const auto customers = randomCustomers(11, 6000, 12, 10, 4);
    MinerOptions options = atLeast(60);
    if (timed) options.maxGap = 4.0;
    options.threads = 1;
    const auto one = inOrder(mineExactly(databaseOf(customers), options));
    ASSERT_GT(one.size(), 500U);
    for (const int threads : {2, 3, 8}) {
      options.threads = threads;
      EXPECT_EQ(inOrder(mineExactly(databaseOf(customers), options)), one) << threads;
    }
  }
}

TEST(ExactMiner, ALimitThatIsHitEndsTheRunWithoutAResult) {
  const auto database = databaseOf(randomCustomers(12, 2000, 12, 8, 3));
  for (const int threads : {1, 4}) {
    MinerOptions options = atLeast(2);
    options.threads = threads;
    options.memoryBytes = 1 << 20;
    try {
      mineExactly(database, options);
      FAIL();
    } catch (const MinerStopped& stopped) {
      EXPECT_EQ(stopped.reason(), MinerStopped::Reason::kMemory);
      EXPECT_THAT(stopped.what(), HasSubstr("1048576 bytes"));
    }
    options = atLeast(2);
    options.threads = threads;
    options.seconds = 0.0;
    try {
      mineExactly(database, options);
      FAIL();
    } catch (const MinerStopped& stopped) {
      EXPECT_EQ(stopped.reason(), MinerStopped::Reason::kTime);
    }
  }
}

TEST(ExactMiner, TheCallerIsToldAndCanEndTheRun) {
  const auto database = databaseOf(randomCustomers(12, 4000, 12, 10, 4));
  MinerOptions options = atLeast(2);
  options.seconds = 60.0;  // should nobody be told
  int told = 0;
  options.progress = [&told](const MinerStatus& status) {
    EXPECT_GE(status.done, 0.0);
    EXPECT_LE(status.done, 1.0);
    EXPECT_GT(status.memoryBytes, 0U);
    return ++told < 2;
  };
  try {
    mineExactly(database, options);
    FAIL();
  } catch (const MinerStopped& stopped) {
    EXPECT_EQ(stopped.reason(), MinerStopped::Reason::kRequest);
  }
  EXPECT_EQ(told, 2);
}

}  // namespace

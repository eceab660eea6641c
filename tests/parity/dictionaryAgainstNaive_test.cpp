// The dictionary against the naive reference: every answer equal, doubles bit for bit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/SmallLattices.h"
#include "tests/support/World.h"
#include "tests/support/naiveLattice.h"

namespace {

using namespace orbseq::test;

constexpr std::uint32_t kWorlds = 320;

NaiveLattice naiveOf(const World& world) {
  NaiveLattice naive(world.entries, world.options.levels);
  if (!world.options.randomLinks) naive.link();
  return naive;
}

// Calls compare(world, naive) for every seed.
template <typename Compare>
void inEveryWorld(Compare compare) {
  for (std::uint32_t seed = 1; seed <= kWorlds && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const World world = randomWorld(seed);
    compare(world, naiveOf(world));
  }
}

TEST(DictionaryParity, LinksAndCountsEqualTheNaiveLattices) {
  inEveryWorld([](const World& world, const NaiveLattice& naive) {
    const SequenceDictionary& dictionary = world.dictionary;

    EXPECT_EQ(dictionary.NumberOfSequences(), naive.numberOfSequences());
    EXPECT_EQ(dictionary.LargestSequence(), naive.largest());
    for (int size = 0; size <= world.options.levels + 1; ++size) {
      EXPECT_EQ(dictionary.CountSequencesOfSize(size), naive.countOfSize(size)) << size;
      EXPECT_EQ(dictionary.CountSequencesBiggerThan(size), naive.countBiggerThan(size)) << size;
    }
    for (const auto& [sequence, entry] : naive.entries())
      EXPECT_EQ(linksOf(dictionary, sequence).value_or(Links()), entry.links.value_or(Links()))
          << text(sequence);
  });
}

TEST(DictionaryParity, SequencesOfSizeEqualTheNaiveLattices) {
  inEveryWorld([](const World& world, const NaiveLattice& naive) {
    for (int size = 0; size <= world.options.levels; ++size) {
      for (const bool maximalOnly : {false, true}) {
        std::vector<History> answer = sequencesOfSize(world.dictionary, size, maximalOnly);
        std::sort(answer.begin(), answer.end());
        EXPECT_EQ(answer, naive.ofSize(size, maximalOnly)) << size;
      }
    }
  });
}

TEST(DictionaryParity, FoundSubsequencesAreDiscoveredInTheNaiveSearchsOrder) {
  inEveryWorld([](const World& world, const NaiveLattice& naive) {
    for (const History& history : world.histories) {
      for (int skip = 0; skip <= static_cast<int>(history.size()) + 1; ++skip)
        EXPECT_EQ(found(world.dictionary, history, skip), naive.found(history, skip))
            << "history " << text(history) << ", skip " << skip;
    }
  });
}

TEST(DictionaryParity, WalksReachWhatTheNaiveWalksReach) {
  inEveryWorld([](const World& world, const NaiveLattice& naive) {
    std::vector<History> starts = world.histories;
    for (const auto& [sequence, entry] : naive.entries())
      if (starts.size() < 20) starts.push_back(sequence);
    for (const History& start : starts) {
      for (const Walk walk : {Walk::kAnywhere, Walk::kBeginning, Walk::kEnding}) {
        for (const auto& [least, most] : {std::pair(0, 1000), std::pair(2, 3), std::pair(3, 2)})
          EXPECT_EQ(reached(world.dictionary, walk, start, least, most),
                    naive.reached(walk, start, least, most))
              << "start " << text(start) << ", walk " << static_cast<int>(walk) << ", counts "
              << least << " to " << most;
      }
    }
  });
}

RuleQuery randomQuery(std::mt19937& random) {
  const auto fraction = [&random] { return static_cast<double>(random() % 1000) / 997.0; };
  RuleQuery query;
  if (random() % 2 != 0) query.minSupport = fraction();
  if (random() % 3 == 0) query.maxSupport = fraction();
  if (random() % 2 != 0) query.minConfidence = fraction();
  if (random() % 3 == 0) query.maxConfidence = fraction();
  if (random() % 2 != 0) query.minCause = fraction();
  if (random() % 3 == 0) query.maxCause = fraction();
  if (random() % 8 == 0) query.minSupport = -1e300;
  if (random() % 8 == 0) query.maxSupport = 1e300;
  query.sortBy = "SCA sx"[random() % 6];
  query.maximalOnly = random() % 2 != 0;
  return query;
}

TEST(DictionaryParity, RulesEqualTheNaiveLatticesInEveryOrder) {
  inEveryWorld([](const World& world, const NaiveLattice& naive) {
    const auto tableOrder = [&](int level) { return sequencesOfSize(world.dictionary, level); };
    std::mt19937 random(world.options.seed);
    for (const char sortBy : {'S', 'C', 'A', ' '})
      EXPECT_EQ(rules(world.dictionary, {.sortBy = sortBy}),
                naive.rules({.sortBy = sortBy}, tableOrder))
          << "sorted by " << sortBy;
    for (int n = 0; n < 10; ++n) {
      const RuleQuery query = randomQuery(random);
      EXPECT_EQ(rules(world.dictionary, query), naive.rules(query, tableOrder)) << "query " << n;
    }
  });
}

void compareRecommendations(const SequenceDictionary& dictionary, const NaiveLattice& naive,
                            const History& history, int maxCount) {
  EXPECT_EQ(futureItems(dictionary, history, maxCount, true),
            naive.futureItems(history, maxCount, true))
      << "whole history " << text(history);
  EXPECT_EQ(futureItems(dictionary, history, maxCount, false),
            naive.futureItems(history, maxCount, false))
      << "every beginning of " << text(history);
  EXPECT_EQ(currentItems(dictionary, history, maxCount), naive.currentItems(history, maxCount))
      << "current items of " << text(history);
}

TEST(DictionaryParity, RecommendationsEqualTheNaiveLatticesBitForBit) {
  std::size_t answers = 0;

  inEveryWorld([&answers](const World& world, const NaiveLattice& naive) {
    for (const int maxCount : {1000, 2, 0}) {
      compareRecommendations(world.dictionary, naive, {}, maxCount);
      for (const History& history : world.histories)
        compareRecommendations(world.dictionary, naive, history, maxCount);
    }
    for (const History& history : world.histories)
      answers += naive.futureItems(history, 20, false).size();
  });

  EXPECT_GT(answers, kWorlds) << "the worlds are too poor to compare anything";
}

// --- Every small lattice -------------------------------------------------------------------------

TEST(DictionaryParity, EverySmallClosedLatticeAnswersAsTheNaiveOne) {
  const std::vector<History> asked = smallHistories();
  std::size_t lattices = 0;

  SmallLattices().each(/*stride=*/11, [&](const std::vector<History>& stored) {
    if (HasFailure()) return;
    const std::map<History, Entry> entries = countedEntries(stored);
    SequenceDictionary dictionary(smallTables(4));
    for (const auto& [sequence, entry] : entries) store(dictionary, sequence, entry.count);
    dictionary.buildLattice();
    NaiveLattice naive(entries, 4);
    naive.link();

    for (const History& history : asked) {
      ASSERT_EQ(found(dictionary, history), naive.found(history, 0))
          << "lattice " << text(stored) << ", history " << text(history);
      SCOPED_TRACE(testing::Message() << "lattice " << text(stored));
      compareRecommendations(dictionary, naive, history, 20);
    }
    ++lattices;
  });

  EXPECT_GT(lattices, 500U);
}

}  // namespace

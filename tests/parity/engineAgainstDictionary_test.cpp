// The compiled lattice against the dictionary's own queries, and against the naive reference: every
// answer equal, doubles bit for bit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/parity/engineParity.h"
#include "tests/support/SmallLattices.h"
#include "tests/support/World.h"
#include "tests/support/naiveLattice.h"

namespace {

using namespace orbseq::test;

constexpr std::uint32_t kWorlds = 4000;
constexpr std::uint32_t kNaiveWorlds = 600;

// The reference is a dictionary or a naive lattice.
struct OfNaive {
  const NaiveLattice& naive;
  std::vector<Advice> current(const History& history, int maxCount) const {
    return naive.currentItems(history, maxCount);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) const {
    return naive.futureItems(history, maxCount, wholeOnly);
  }
};

// More histories than the world's own: pieces of these, in several orders.
std::vector<History> askedIn(const World& world) {
  std::vector<History> asked = world.histories;
  asked.push_back({});
  std::mt19937 random(world.options.seed);
  for (std::size_t n = 0; n < world.histories.size(); ++n) {
    History mixed;
    for (int k = 0; k < 6; ++k) {
      const History& from = world.histories[random() % world.histories.size()];
      if (!from.empty()) mixed.push_back(from[random() % from.size()]);
    }
    asked.push_back(mixed);
  }
  return asked;
}

TEST(EngineParity, RandomWorldsAreAnsweredAsByTheDictionary) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 1; seed <= kWorlds && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const World world = randomWorld(seed);
    Engine engine(world.dictionary);
    for (const History& history : askedIn(world))
      for (const int maxCount : {1000, 2, 1, 0, -1})
        answers += compare(engine, OfDictionary{world.dictionary}, history, maxCount);
  }
  EXPECT_GT(answers, kWorlds) << "the worlds are too poor to compare anything";
}

TEST(EngineParity, RandomWorldsAreAnsweredAsByTheNaiveLattice) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 10'001; seed <= 10'000 + kNaiveWorlds && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const World world = randomWorld(seed);
    NaiveLattice naive(world.entries, world.options.levels);
    if (!world.options.randomLinks) naive.link();
    Engine engine(world.dictionary);
    for (const History& history : askedIn(world))
      for (const int maxCount : {1000, 3})
        answers += compare(engine, OfNaive{naive}, history, maxCount);
  }
  EXPECT_GT(answers, kNaiveWorlds) << "the worlds are too poor to compare anything";
}

TEST(EngineParity, APrunedLatticeWithStaleLinksIsAnsweredAsByTheDictionary) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 1; seed <= kWorlds / 8 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    World world = randomWorld(seed);
    const int level = 1 + static_cast<int>(seed % 4);
    if (level < world.dictionary.getNumLevels())
      world.dictionary.reduceDictionaryWithCount(level, 3.0);
    Engine engine(world.dictionary);
    for (const History& history : askedIn(world))
      answers += compare(engine, OfDictionary{world.dictionary}, history, 5);
  }
  EXPECT_GT(answers, kWorlds / 8);
}

TEST(EngineParity, EverySmallClosedLatticeAnswersAsTheDictionary) {
  const std::vector<History> asked = smallHistories();
  std::size_t lattices = 0;
  std::size_t answers = 0;
  SmallLattices().each(/*stride=*/1, [&](const std::vector<History>& stored) {
    if (HasFailure()) return;
    SequenceDictionary dictionary(smallTables(4));
    for (const auto& [sequence, entry] : countedEntries(stored))
      store(dictionary, sequence, entry.count);
    dictionary.buildLattice();
    Engine engine(dictionary);
    SCOPED_TRACE(testing::Message() << "lattice " << text(stored));
    for (const History& history : asked)
      answers += compare(engine, OfDictionary{dictionary}, history, 20);
    ++lattices;
  });
  EXPECT_EQ(lattices, 4751U) << "all of them";
  EXPECT_GT(answers, lattices);
}

}  // namespace

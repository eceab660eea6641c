// The compiled lattice against the dictionary's own queries, and against the naive reference: every
// answer equal, doubles bit for bit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "tests/support/SmallLattices.h"
#include "tests/support/World.h"
#include "tests/support/naiveLattice.h"

namespace {

using namespace orbseq::test;
using orbseq::engine::CompiledLattice;
using orbseq::engine::Recommender;
using orbseq::engine::Workspace;

constexpr std::uint32_t kWorlds = 4000;
constexpr std::uint32_t kNaiveWorlds = 600;

// A compiled lattice with all that asking it takes.
class Engine {
 public:
  explicit Engine(const SequenceDictionary& dictionary)
      : lattice_(orbseq::engine::compile(dictionary)), recommender_(lattice_) {}

  std::vector<Advice> current(const History& history, int maxCount) {
    orbseq::engine::Answers answers;
    recommender_.currentItems(made(history), maxCount, workspace_, answers);
    return adviceOf(answers);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) {
    orbseq::engine::Answers answers;
    recommender_.futureItems(made(history), maxCount, wholeOnly, workspace_, answers);
    return adviceOf(answers);
  }

 private:
  const orbseq::engine::History& made(const History& history) {
    history_.clear();
    for (const Items& set : history) history_.addSet(set);
    return history_;
  }

  CompiledLattice lattice_;
  Recommender recommender_;
  Workspace workspace_;
  orbseq::engine::History history_;
};

// The reference is a dictionary or a naive lattice.
struct OfDictionary {
  const SequenceDictionary& dictionary;
  std::vector<Advice> current(const History& history, int maxCount) const {
    return currentItems(dictionary, history, maxCount);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) const {
    return futureItems(dictionary, history, maxCount, wholeOnly);
  }
};
struct OfNaive {
  const NaiveLattice& naive;
  std::vector<Advice> current(const History& history, int maxCount) const {
    return naive.currentItems(history, maxCount);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) const {
    return naive.futureItems(history, maxCount, wholeOnly);
  }
};

template <class Reference>
std::size_t compare(Engine& engine, const Reference& reference, const History& history,
                    int maxCount) {
  const auto whole = engine.future(history, maxCount, true);
  EXPECT_EQ(whole, reference.future(history, maxCount, true)) << "whole history " << text(history);
  const auto beginnings = engine.future(history, maxCount, false);
  EXPECT_EQ(beginnings, reference.future(history, maxCount, false))
      << "every beginning of " << text(history);
  const auto current = engine.current(history, maxCount);
  EXPECT_EQ(current, reference.current(history, maxCount)) << "current items of " << text(history);
  return whole.size() + beginnings.size() + current.size();
}

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

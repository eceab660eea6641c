// One compiled lattice, many threads: each answer is the one that a single thread gets.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "engine/Pool.h"
#include "engine/Recommender.h"
#include "engine/compile.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using orbseq::engine::CompiledLattice;
using orbseq::engine::Pool;
using orbseq::engine::Recommender;
using orbseq::engine::Workspace;

constexpr int kThreads = 8;
constexpr int kRounds = 40;

World largeWorld() {
  WorldOptions options;
  options.seed = 5;
  options.items = 8;
  options.customers = 60;
  options.itemsACustomer = 9;
  options.levels = 9;
  options.histories = 40;
  return World(options);
}

std::vector<std::vector<Advice>> askAll(const CompiledLattice& lattice,
                                        const std::vector<History>& histories,
                                        Workspace& workspace) {
  const Recommender recommender(lattice);
  std::vector<std::vector<Advice>> all;
  for (const History& history : histories) {
    orbseq::engine::History asked;
    for (const Items& set : history) asked.addSet(set);
    orbseq::engine::Answers current, whole, beginnings;
    recommender.currentItems(asked, 5, workspace, current);
    recommender.futureItems(asked, 5, true, workspace, whole);
    recommender.futureItems(asked, 5, false, workspace, beginnings);
    for (const auto& answers : {current, whole, beginnings}) all.push_back(adviceOf(answers));
  }
  return all;
}

std::size_t countOf(const std::vector<std::vector<Advice>>& answers) {
  std::size_t count = 0;
  for (const auto& answer : answers) count += answer.size();
  return count;
}

// Calls work() on kThreads threads at once.
template <class Work>
void onThreads(Work work) {
  std::vector<std::jthread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(work);
}

TEST(EngineThreads, EightThreadsOnOneLatticeGetOneThreadsAnswers) {
  const World world = largeWorld();
  const CompiledLattice lattice = orbseq::engine::compile(world.dictionary);
  Workspace first;
  const auto expected = askAll(lattice, world.histories, first);
  std::atomic<int> differences = 0;

  onThreads([&] {
    Workspace workspace;
    for (int round = 0; round < kRounds; ++round)
      if (askAll(lattice, world.histories, workspace) != expected) ++differences;
  });

  EXPECT_EQ(differences, 0);
  EXPECT_GT(countOf(expected), 100U);
}

TEST(EngineThreads, WorkspacesOfAPoolServeAnyThread) {
  const World world = largeWorld();
  const CompiledLattice lattice = orbseq::engine::compile(world.dictionary);
  Workspace first;
  const auto expected = askAll(lattice, world.histories, first);
  Pool<Workspace> pool;
  std::atomic<int> differences = 0;

  onThreads([&] {
    for (int round = 0; round < kRounds; ++round) {
      const Pool<Workspace>::Borrowed workspace(pool);
      if (askAll(lattice, world.histories, *workspace) != expected) ++differences;
    }
  });

  EXPECT_EQ(differences, 0);
  EXPECT_GT(countOf(expected), 100U);
}

TEST(EngineThreads, EightThreadsCompileOneDictionaryToTheSameBytes) {
  const World world = largeWorld();
  const CompiledLattice expected = orbseq::engine::compile(world.dictionary);
  std::atomic<int> differences = 0;

  onThreads([&] {
    const CompiledLattice lattice = orbseq::engine::compile(world.dictionary);
    const auto bytes = lattice.image();
    const auto wanted = expected.image();
    if (!std::equal(bytes.begin(), bytes.end(), wanted.begin(), wanted.end())) ++differences;
  });

  EXPECT_EQ(differences, 0);
  EXPECT_GT(expected.nodeCount(), 100U);
}

}  // namespace

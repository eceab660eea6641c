#include "engine/Pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace {

using orbseq::engine::Pool;

struct Counted {
  static inline std::atomic<int> alive = 0;
  static inline std::atomic<int> made = 0;
  Counted() {
    ++alive;
    ++made;
  }
  ~Counted() { --alive; }
  std::atomic<bool> isUsed = false;
};

TEST(Pool, WhatWasBorrowedIsLentAgain) {
  Counted::made = 0;
  {
    Pool<Counted> pool;
    for (int k = 0; k < 5; ++k) const Pool<Counted>::Borrowed one(pool);
    EXPECT_EQ(Counted::made, 1);
    const Pool<Counted>::Borrowed first(pool);
    const Pool<Counted>::Borrowed second(pool);
    EXPECT_NE(&*first, &*second);
    EXPECT_EQ(Counted::made, 2);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(Pool, MoreThanItKeepsAreFreed) {
  Pool<Counted> pool;
  {
    std::vector<std::unique_ptr<Pool<Counted>::Borrowed>> many;
    for (std::size_t k = 0; k < 2 * Pool<Counted>::kSlots; ++k)
      many.push_back(std::make_unique<Pool<Counted>::Borrowed>(pool));
  }
  EXPECT_EQ(Counted::alive, static_cast<int>(Pool<Counted>::kSlots));
}

TEST(PoolThreads, NoTwoThreadsHaveTheSameObject) {
  Pool<Counted> pool;
  std::atomic<int> clashes = 0;
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 8; ++t)
      threads.emplace_back([&] {
        for (int k = 0; k < 20'000; ++k) {
          const Pool<Counted>::Borrowed one(pool);
          if (one->isUsed.exchange(true)) ++clashes;
          one->isUsed = false;
        }
      });
  }
  EXPECT_EQ(clashes, 0);
  EXPECT_LE(Counted::alive, 8);
}

}  // namespace

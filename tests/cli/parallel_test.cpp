// Work on many numbered things by several threads: each once, and failures come out.

#include "cli/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using orbseq::forEachInParallel;
using orbseq::threadsOf;

constexpr int kThreads[] = {1, 2, 4, 9};
constexpr std::size_t kSizes[] = {0, 1, 63, 64, 65, 1000};

const auto kTellNothing = [](std::size_t) {};

TEST(Parallel, EveryNumberIsWorkedOnOnce) {
  for (const int threads : kThreads) {
    for (const std::size_t count : kSizes) {
      std::vector<std::atomic<int>> calls(count + 1);

      forEachInParallel(
          count, threads, [&](std::size_t i) { ++calls.at(i); }, kTellNothing);

      for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(calls[i], 1) << i << " of " << count << ", threads " << threads;
      EXPECT_EQ(calls[count], 0) << "of " << count << ", threads " << threads;
    }
  }
}

TEST(Parallel, WhatWorkThrowsComesOutAndEndsTheRest) {
  constexpr std::size_t kMany = 1'000'000;
  for (const int threads : kThreads) {
    std::atomic<std::size_t> done = 0;
    const auto work = [&](std::size_t i) {
      if (i == 100) throw std::out_of_range("the hundredth");
      ++done;
    };

    EXPECT_THROW(forEachInParallel(kMany, threads, work, kTellNothing), std::out_of_range);

    EXPECT_LT(done, kMany - 1) << "threads " << threads;
  }
}

// The teller may be late where other threads take all blocks, so it is asked alone here.
TEST(Parallel, WhatTellingThrowsComesOutAndEndsTheRest) {
  std::size_t done = 0;
  const auto tell = [](std::size_t begun) {
    if (begun >= 128) throw std::runtime_error("stop");
  };

  EXPECT_THROW(forEachInParallel(
                   1000, 1, [&](std::size_t) { ++done; }, tell),
               std::runtime_error);

  EXPECT_EQ(done, 128U);
}

TEST(Parallel, OneThreadTellsEachBlockThatItBegins) {
  std::vector<std::size_t> told;

  forEachInParallel(
      150, 1, [](std::size_t) {}, [&](std::size_t begun) { told.push_back(begun); });

  EXPECT_EQ(told, (std::vector<std::size_t>{0, 64, 128}));
}

TEST(Parallel, OnlyTheCallingThreadTells) {
  const std::thread::id caller = std::this_thread::get_id();
  std::atomic<int> elsewhere = 0;

  forEachInParallel(
      100'000, 4, [](std::size_t) {},
      [&](std::size_t) { elsewhere += std::this_thread::get_id() == caller ? 0 : 1; });

  EXPECT_EQ(elsewhere, 0);
}

TEST(Parallel, ZeroThreadsAreAllCores) {
  EXPECT_GE(threadsOf(0), 1);
  EXPECT_EQ(threadsOf(1), 1);
  EXPECT_EQ(threadsOf(7), 7);
}

}  // namespace

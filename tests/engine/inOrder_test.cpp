#include "engine/inOrder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/TempFolder.h"

namespace {

using orbseq::engine::inOrder;
using orbseq::test::errorOf;
using Numbers = std::vector<int>;

struct Block {
  static inline std::atomic<int> made = 0;
  Block() { ++made; }
  int number = -1;
  std::string text;
};

// The blocks 0 .. count - 1.
class Reader {
 public:
  explicit Reader(int count) : count_(count) {}
  bool operator()(Block& block) {
    if (next_ == count_) return false;
    block.number = next_++;
    return true;
  }

 private:
  int count_;
  int next_ = 0;
};

// Numbers below `count`.
Numbers upTo(int count) {
  Numbers numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

const auto kIdle = [] { return [](Block&) {}; };

TEST(InOrder, WhatIsWrittenDoesNotDependOnTheNumberOfThreads) {
  std::string wanted;
  for (const int number : upTo(500)) wanted += std::to_string(number * number) + "\n";
  for (const int threads : {0, 1, 2, 3, 8}) {
    std::string written;
    Reader read(500);
    inOrder<Block>(
        threads, [&](Block& block) { return read(block); },
        [] {
          return [](Block& block) {
            if (block.number % 7 == 0) std::this_thread::sleep_for(std::chrono::microseconds(50));
            block.text = std::to_string(block.number * block.number) + "\n";
          };
        },
        [&](Block& block) { written += block.text; });
    EXPECT_EQ(written, wanted) << threads << " threads";
  }
}

TEST(InOrder, NoBlocksWriteNothing) {
  for (const int threads : {1, 2, 8}) {
    int writes = 0;
    inOrder<Block>(threads, Reader(0), kIdle, [&](Block&) { ++writes; });
    EXPECT_EQ(writes, 0) << threads << " threads";
  }
}

TEST(InOrder, ABlockAThreadIsMade) {
  for (const int threads : {1, 2, 3, 8}) {
    Block::made = 0;
    int writes = 0;
    inOrder<Block>(threads, Reader(300), kIdle, [&](Block&) { ++writes; });
    EXPECT_EQ(writes, 300);
    EXPECT_GE(Block::made, 1);
    EXPECT_LE(Block::made, threads);
  }
}

TEST(InOrder, EachThreadHasAWorkerOfItsOwn) {
  std::atomic<int> clashes = 0;
  int writes = 0;
  inOrder<Block>(
      8, Reader(2000),
      [&] {
        return [&, isUsed = std::make_shared<std::atomic<bool>>(false)](Block&) {
          if (isUsed->exchange(true)) ++clashes;
          *isUsed = false;
        };
      },
      [&](Block&) { ++writes; });
  EXPECT_EQ(clashes, 0);
  EXPECT_EQ(writes, 2000);
}

// What is written, and what is thrown, when `step` fails at block k.
enum class Step { kRead, kWork, kWrite };
struct Outcome {
  Numbers written;
  std::string error;
};
Outcome failing(Step step, int k, int threads) {
  Outcome outcome;
  Reader read(60);
  const auto failAt = [&](Step here, int number) {
    if (step == here && number == k) fail("block " + std::to_string(k));
  };
  outcome.error = errorOf<std::runtime_error>([&] {
    inOrder<Block>(
        threads,
        [&](Block& block) {
          if (!read(block)) return false;
          failAt(Step::kRead, block.number);
          return true;
        },
        [&] { return [&](Block& block) { failAt(Step::kWork, block.number); }; },
        [&](Block& block) {
          failAt(Step::kWrite, block.number);
          outcome.written.push_back(block.number);
        });
  });
  return outcome;
}

TEST(InOrder, WhenABlockFailsThoseBeforeItAreWrittenAndNoneBehind) {
  for (const Step step : {Step::kRead, Step::kWork, Step::kWrite})
    for (const int threads : {1, 2, 3, 8})
      for (const int k : {0, 1, 2, 7, 30, 58, 59}) {
        const Outcome outcome = failing(step, k, threads);
        SCOPED_TRACE("step " + std::to_string(static_cast<int>(step)) + ", block " +
                     std::to_string(k) + ", " + std::to_string(threads) + " threads");
        EXPECT_EQ(outcome.written, upTo(k));
        EXPECT_EQ(outcome.error, "block " + std::to_string(k));
      }
}

// Block 5 fails while block 3, which fails as well, is worked on.
TEST(InOrder, TheFirstBlocksErrorLeavesAlsoWhenALaterBlockFailsSooner) {
  for (int round = 0; round < 50; ++round) {
    std::atomic<bool> hasFifthFailed = false;
    Numbers written;
    const std::string error = errorOf<std::runtime_error>([&] {
      inOrder<Block>(
          4, Reader(60),
          [&] {
            return [&](Block& block) {
              if (block.number == 3) {
                while (!hasFifthFailed) std::this_thread::yield();
                fail("block 3");
              }
              if (block.number == 5) {
                hasFifthFailed = true;
                fail("block 5");
              }
            };
          },
          [&](Block& block) { written.push_back(block.number); });
    });
    EXPECT_EQ(error, "block 3");
    EXPECT_EQ(written, upTo(3));
  }
}

TEST(InOrder, AnErrorAtTheEndOfReadingComesAfterAllBlocks) {
  for (const int threads : {1, 2, 8}) {
    Reader read(20);
    Numbers written;
    const std::string error = errorOf<std::runtime_error>([&] {
      inOrder<Block>(
          threads, [&](Block& block) { return read(block) || (fail("cut off"), false); }, kIdle,
          [&](Block& block) { written.push_back(block.number); });
    });
    EXPECT_EQ(error, "cut off");
    EXPECT_EQ(written, upTo(20));
  }
}

TEST(InOrder, ReadingIsNotAskedAgainAfterItsEnd) {
  std::atomic<int> ends = 0;
  Reader read(5);
  int writes = 0;
  inOrder<Block>(
      8,
      [&](Block& block) {
        if (read(block)) return true;
        ++ends;
        return false;
      },
      kIdle, [&](Block&) { ++writes; });
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(writes, 5);
}

TEST(InOrder, AWorkerThatCannotBeMadeEndsTheRun) {
  for (const int threads : {1, 2, 3, 8}) {
    int writes = 0;
    const std::string error = errorOf<std::runtime_error>([&] {
      inOrder<Block>(
          threads, Reader(60), []() -> std::function<void(Block&)> { fail("no worker"); },
          [&](Block&) { ++writes; });
    });
    EXPECT_EQ(error, "no worker");
    EXPECT_EQ(writes, 0);
  }
}

TEST(InOrder, OneOfSeveralWorkersThatCannotBeMadeEndsTheRun) {
  for (int round = 0; round < 50; ++round) {
    std::atomic<int> workers = 0;
    Numbers written;
    const std::string error = errorOf<std::runtime_error>([&] {
      inOrder<Block>(
          4, Reader(100'000),
          [&] {
            if (++workers == 3) fail("no third worker");
            return [](Block&) {};
          },
          [&](Block& block) { written.push_back(block.number); });
    });
    EXPECT_EQ(error, "no third worker");
    EXPECT_EQ(written, upTo(static_cast<int>(written.size()))) << "what is written is a beginning";
  }
}

TEST(InOrderThreads, ManyBlocksOnEightThreadsAreWrittenInOrder) {
  Numbers written;
  inOrder<Block>(
      8, Reader(20'000), [] { return [](Block& block) { block.text.assign(8, 'x'); }; },
      [&](Block& block) { written.push_back(block.number); });
  EXPECT_EQ(written, upTo(20'000));
}

TEST(InOrderThreads, AFailureAmongEightThreadsIsTheFirstBlocks) {
  for (const int k : {3, 11, 40}) {
    const Outcome outcome = failing(Step::kWork, k, 8);
    EXPECT_EQ(outcome.written, upTo(k));
    EXPECT_EQ(outcome.error, "block " + std::to_string(k));
  }
}

}  // namespace

// The meter of the hostile lists, and the allocator below it: each check fails when it must.

#include "tests/hostile/Meter.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/FailingAllocator.h"

namespace {

using orbseq::test::FailAllocation;
using orbseq::test::Failing;
using orbseq::test::largestBlock;
using orbseq::test::livingBytes;
using orbseq::test::messageUnder;
using orbseq::test::Meter;
using orbseq::test::peakBytes;
using orbseq::test::resetPeaks;

constexpr std::size_t kMiB = std::size_t{1} << 20;

// A clock that stands still until it is moved.
Meter::Clock::time_point fakeTime;
Meter::Clock::time_point fakeNow() { return fakeTime; }

// Takes so many bytes and gives them back, out of the compiler's sight.
void takeAndReturn(std::size_t bytes) { ::operator delete(::operator new(bytes)); }

TEST(Meter, AnOperationThatKeepsToAllPasses) {
  const Meter meter(0);

  takeAndReturn(60 * kMiB);
  static_cast<void>(std::make_unique<std::vector<int>>(1000));

  meter.check();
  EXPECT_GE(meter.peakBytes(), 60 * kMiB);
  EXPECT_LT(meter.peakBytes(), 61 * kMiB);
  EXPECT_EQ(Meter::largestBlock(), 60 * kMiB);
}

TEST(Meter, TellsABlockThatIsLeft) {
  static void* leaked = nullptr;
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0);
        leaked = ::operator new(1);
        meter.check();
      },
      "blocks left behind");
  ::operator delete(leaked);
}

TEST(Meter, TellsABlockThatIsGoneThoughItWasThereBefore) {
  static void* block = nullptr;
  block = ::operator new(1);
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0);
        ::operator delete(block);
        meter.check();
      },
      "blocks left behind");
}

TEST(Meter, TellsTooMuchMemory) {
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0);
        takeAndReturn(64 * kMiB + 1);
        meter.check();
      },
      "too much memory for 0 bytes of input");
}

TEST(Meter, TellsTooMuchMemoryInManySmallBlocks) {
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0);
        {
          std::vector<std::unique_ptr<char[]>> blocks(70);
          for (auto& block : blocks) block = std::make_unique<char[]>(kMiB);
        }
        meter.check();
      },
      "too much memory");
}

TEST(Meter, AllowsAHundredBytesForEachOfTheInput) {
  const Meter meter(kMiB);
  takeAndReturn(163 * kMiB);
  meter.check();

  EXPECT_EQ(meter.allowedBytes(), 164 * kMiB);
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter tooMuch(kMiB);
        takeAndReturn(164 * kMiB + 1);
        tooMuch.check();
      },
      "too much memory for 1048576 bytes of input");
}

TEST(Meter, WhatWasThereBeforeIsNotTheOperations) {
  const std::vector<char> before(80 * kMiB);
  const Meter meter(0);
  takeAndReturn(kMiB);

  meter.check();
  EXPECT_LT(meter.peakBytes(), 2 * kMiB);
}

TEST(Meter, MemoryMayBeLeftUnchecked) {
  const Meter meter(0);
  takeAndReturn(65 * kMiB);

  meter.checkButMemory();
}

TEST(Meter, TellsTooMuchTime) {
  const auto allowed = Meter(0).allowedTime();
  EXPECT_EQ(allowed, std::chrono::seconds(1) * Meter::slowdown());
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0, fakeNow);
        fakeTime += meter.allowedTime() + std::chrono::nanoseconds(1);
        meter.check();
      },
      "too many nanoseconds for 0 bytes of input");
  EXPECT_NONFATAL_FAILURE(
      {
        const Meter meter(0, fakeNow);
        fakeTime += meter.allowedTime() + std::chrono::nanoseconds(1);
        meter.checkButMemory();
      },
      "too many nanoseconds");
}

TEST(Meter, AllowsASecondForEachMebibyteOfTheInput) {
  const Meter meter(3 * kMiB, fakeNow);
  fakeTime += std::chrono::seconds(4) * Meter::slowdown();

  EXPECT_EQ(meter.elapsed(), meter.allowedTime());
  meter.check();
}

TEST(Meter, MeasuresByTheSteadyClock) {
  const Meter meter(0);
  std::this_thread::sleep_for(std::chrono::milliseconds(20));

  EXPECT_GE(meter.elapsed(), std::chrono::milliseconds(20));
}

TEST(Meter, MessageUnderGivesTheMessageAndChecks) {
  EXPECT_EQ(messageUnder(0, [] { throw std::runtime_error("a message too long to stand inside"); }),
            "a message too long to stand inside");
  EXPECT_EQ(messageUnder(0, [] {}), "");
  EXPECT_THROW(messageUnder<std::logic_error>(0, [] { throw std::runtime_error("other"); }),
               std::runtime_error);
  EXPECT_NONFATAL_FAILURE(messageUnder(0,
                                       [] {
                                         takeAndReturn(65 * kMiB);
                                         throw std::runtime_error("greedy");
                                       }),
                          "too much memory");
}

TEST(FailingAllocator, CountsBytesThatLiveAndTheirPeak) {
  resetPeaks();
  const std::size_t before = livingBytes();
  EXPECT_EQ(peakBytes(), before);

  void* const large = ::operator new(100'000);
  void* const aligned = ::operator new (5'000, std::align_val_t{256});
  const std::size_t both = livingBytes();
  ::operator delete(large);
  ::operator delete (aligned, std::align_val_t{256});

  EXPECT_GE(both, before + 105'000);
  EXPECT_EQ(livingBytes(), before);
  EXPECT_EQ(peakBytes(), both);
  EXPECT_EQ(largestBlock(), 100'000U);
  resetPeaks();
  EXPECT_EQ(largestBlock(), 0U);
}

TEST(FailingAllocator, ARefusedBlockIsTheLargestToo) {
  resetPeaks();
  {
    const FailAllocation failing(1);
    EXPECT_THROW(takeAndReturn(std::size_t{1} << 40), std::bad_alloc);
  }

  EXPECT_EQ(largestBlock(), std::size_t{1} << 40);
}

// Which of five allocations fail, as text.
std::string failures(const FailAllocation&) {
  std::string text(5, '.');
  for (char& mark : text) {
    try {
      takeAndReturn(1);
    } catch (const std::bad_alloc&) {
      mark = 'x';
    }
  }
  return text;
}

TEST(FailingAllocator, FailsOnceOrForEver) {
  // Five characters stand inside the text: it takes no memory of its own.
  EXPECT_EQ(failures(FailAllocation(2)), ".x...");
  EXPECT_EQ(failures(FailAllocation(2, Failing::kOnce)), ".x...");
  EXPECT_EQ(failures(FailAllocation(2, Failing::kForEver)), ".xxxx");
  EXPECT_EQ(failures(FailAllocation(6, Failing::kForEver)), ".....");
}

TEST(FailingAllocator, ForEverEndsWithTheObject) {
  {
    const FailAllocation failing(1, Failing::kForEver);
    EXPECT_THROW(takeAndReturn(1), std::bad_alloc);
    EXPECT_TRUE(failing.hasFailed());
  }

  EXPECT_NO_THROW(takeAndReturn(1));
}

}  // namespace

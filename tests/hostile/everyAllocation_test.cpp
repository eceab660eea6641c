// The harness of memory that runs out finds what an operation does wrong.

#include "tests/hostile/everyAllocation.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <new>
#include <string>
#include <thread>
#include <utility>

namespace {

using namespace orbseq::test;

// Two allocations, the second of which may fail: both are given back, or one stays.
template <bool kKeepsTheFirst>
class TwoBlocks {
 public:
  ~TwoBlocks() {
    ::operator delete(first_);
    ::operator delete(second_);
  }
  End run() {
    first_ = ::operator new(8);
    try {
      second_ = ::operator new(8);
    } catch (const std::bad_alloc&) {
      if (kKeepsTheFirst) lost = std::exchange(first_, nullptr);
      throw;
    }
    return End::kDone;
  }
  void check(End) {}

  inline static void* lost = nullptr;

 private:
  void* first_ = nullptr;
  void* second_ = nullptr;
};

struct ForeignException {
  End run() {
    void* const block = ::operator new(8, std::nothrow);
    if (block == nullptr) throw 1;
    ::operator delete(block);
    return End::kDone;
  }
  void check(End) {}
};

// Says that it is done when it is not.
struct HalfAnAnswer {
  End run() {
    void* const block = ::operator new(8, std::nothrow);
    isWhole = block != nullptr;
    ::operator delete(block);
    return End::kDone;
  }
  void check(End end) { EXPECT_TRUE(end != End::kDone || isWhole) << "half an answer"; }
  bool isWhole = false;
};

TEST(EveryAllocation, AnOperationThatKeepsItsPromisesPasses) {
  failEveryAllocationOf<TwoBlocks<false>>({End::kBadAlloc});
}

TEST(EveryAllocation, ALeakIsFound) {
  for (const Failing failing : {Failing::kOnce, Failing::kForEver}) {
    static Failing how;
    how = failing;
    EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<TwoBlocks<true>>(how, {End::kBadAlloc}),
                            "blocks left behind, allocation 2");
    ::operator delete(TwoBlocks<true>::lost);
  }
}

// Opens a file, and forgets it when there is no memory to go on.
struct OpenFile {
  ~OpenFile() { ::close(file); }
  End run() {
    file = ::dup(STDERR_FILENO);
    void* const block = ::operator new(8, std::nothrow);
    if (block == nullptr) {
      lost = std::exchange(file, -1);
      throw std::bad_alloc();
    }
    ::operator delete(block);
    return End::kDone;
  }
  void check(End) {}
  int file = -1;
  inline static int lost = -1;
};

TEST(EveryAllocation, AFileThatIsLeftOpenIsFound) {
  EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<OpenFile>(Failing::kOnce, {End::kBadAlloc}),
                          "a file left open, allocation 1, once");
  ::close(OpenFile::lost);
}

// Leaves what it has when there is no memory for more, in a thread of its own.
class LeakElsewhere {
 public:
  End run() {
    std::thread([] {
      void* const first = ::operator new(8, std::nothrow);
      void* const second = ::operator new(8, std::nothrow);
      if (second == nullptr)
        lost = first;
      else
        ::operator delete(first);
      ::operator delete(second);
    }).join();
    return End::kDone;
  }
  void check(End) {}

  inline static void* lost = nullptr;
};

TEST(EveryAllocation, ALeakInAnotherThreadIsFound) {
  EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<LeakElsewhere>(Failing::kOnce, {}, kMostAllocations,
                                                               FailingIn::kOtherThreads),
                          "blocks left behind, allocation 2, once");
  ::operator delete(LeakElsewhere::lost);
}

TEST(EveryAllocation, AForeignExceptionIsFound) {
  EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<ForeignException>(Failing::kOnce, {End::kBadAlloc}),
                          "allocation 1, once: a foreign exception");
}

TEST(EveryAllocation, AnExceptionThatIsNotAllowedIsFound) {
  EXPECT_NONFATAL_FAILURE(
      failEveryAllocationOf<ForeignException>(Failing::kForEver, {End::kQuException}),
      "allocation 1, and all that follow: a foreign exception");
}

// What a failed check keeps of itself is seen as left behind, too.
TEST(EveryAllocation, AnAnswerThatIsNotWholeIsFound) {
  using Reporter = testing::ScopedFakeTestPartResultReporter;
  testing::TestPartResultArray failures;
  {
    const Reporter reporter(Reporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    failEveryAllocationOf<HalfAnAnswer>(Failing::kOnce, {End::kBadAlloc});
  }

  ASSERT_GE(failures.size(), 1);
  EXPECT_NE(std::string(failures.GetTestPartResult(0).message()).find("half an answer"),
            std::string::npos);
}

}  // namespace

// Replaces the program's operator new and delete: counts what is allocated, and makes one chosen
// allocation, or all from it on, fail.
//
// Linking orbseq_test_allocator into a test program does the replacement. Memory comes from malloc,
// so that sanitizers see every block.
//
// Threads: a FailAllocation concerns the allocations of the thread that made it, or else those of
// all the others; the counts are the whole program's.

#ifndef TESTS_SUPPORT_FAILINGALLOCATOR_H_
#define TESTS_SUPPORT_FAILINGALLOCATOR_H_

#include <cstddef>

namespace orbseq::test {

// Blocks that operator new gave out and operator delete has not seen yet.
long livingBlocks() noexcept;

// Their bytes, as the C library rounds them up.
std::size_t livingBytes() noexcept;

// Since the latest resetPeaks(), or the program's start.
std::size_t peakBytes() noexcept;     // the most bytes alive at once, those before it included
std::size_t largestBlock() noexcept;  // the most bytes asked for at once, granted or not
void resetPeaks() noexcept;

enum class Failing { kOnce, kForEver };
enum class FailingIn { kThisThread, kOtherThreads };

// While it lives, the n-th allocation from its construction on throws std::bad_alloc, n = 1, 2 ..;
// the others succeed, or, for ever, those before it. At most one lives in a thread, and in the
// program one that concerns other threads: those count together.
class FailAllocation {
 public:
  explicit FailAllocation(long n, Failing failing = Failing::kOnce,
                          FailingIn threads = FailingIn::kThisThread) noexcept;
  ~FailAllocation();
  FailAllocation(const FailAllocation&) = delete;
  FailAllocation& operator=(const FailAllocation&) = delete;

  bool hasFailed() const noexcept;  // whether the n-th allocation was asked for

 private:
  const FailingIn threads_;
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_FAILINGALLOCATOR_H_

// Replaces the program's operator new and delete: counts what is allocated, and makes one chosen
// allocation fail.
//
// Linking orbseq_test_allocator into a test program does the replacement. Memory comes from malloc,
// so that sanitizers see every block.
//
// Threads: a FailAllocation concerns the allocations of the thread that made it; the count of
// living blocks is the whole program's.

#ifndef TESTS_SUPPORT_FAILINGALLOCATOR_H_
#define TESTS_SUPPORT_FAILINGALLOCATOR_H_

namespace orbseq::test {

// Blocks that operator new gave out and operator delete has not seen yet.
long livingBlocks() noexcept;

// While it lives, the n-th allocation from its construction on throws std::bad_alloc, n = 1, 2 ..;
// the others succeed. At most one lives in a thread.
class FailAllocation {
 public:
  explicit FailAllocation(long n) noexcept;
  ~FailAllocation();
  FailAllocation(const FailAllocation&) = delete;
  FailAllocation& operator=(const FailAllocation&) = delete;

  bool hasFailed() const noexcept;  // whether the n-th allocation was asked for
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_FAILINGALLOCATOR_H_

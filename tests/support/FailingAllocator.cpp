#include "tests/support/FailingAllocator.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace orbseq::test {

namespace {

std::atomic<long> living{0};
thread_local long untilFailure = 0;  // 0: none is asked for, or it has happened
thread_local bool failed = false;

bool mustFail() noexcept {
  if (untilFailure == 0 || --untilFailure > 0) return false;
  failed = true;
  return true;
}

void* counted(void* block) noexcept {
  if (block != nullptr) living.fetch_add(1, std::memory_order_relaxed);
  return block;
}

void* allocate(std::size_t size) noexcept {
  return mustFail() ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}

void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
  const auto step = static_cast<std::size_t>(alignment);
  const std::size_t whole = (size + step - 1) / step * step;
  return mustFail() ? nullptr : counted(std::aligned_alloc(step, whole == 0 ? step : whole));
}

void* orThrow(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) living.fetch_sub(1, std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

long livingBlocks() noexcept { return living.load(std::memory_order_relaxed); }

FailAllocation::FailAllocation(long n) noexcept {
  failed = false;
  untilFailure = n;
}

FailAllocation::~FailAllocation() { untilFailure = 0; }

bool FailAllocation::hasFailed() const noexcept { return failed; }

}  // namespace orbseq::test

namespace test = orbseq::test;
using std::align_val_t;
using std::nothrow_t;
using std::size_t;

void* operator new(size_t size) { return test::orThrow(test::allocate(size)); }
void* operator new[](size_t size) { return test::orThrow(test::allocate(size)); }
void* operator new(size_t size, const nothrow_t&) noexcept { return test::allocate(size); }
void* operator new[](size_t size, const nothrow_t&) noexcept { return test::allocate(size); }
void* operator new(size_t size, align_val_t alignment) {
  return test::orThrow(test::allocate(size, alignment));
}
void* operator new[](size_t size, align_val_t alignment) {
  return test::orThrow(test::allocate(size, alignment));
}
void* operator new(size_t size, align_val_t alignment, const nothrow_t&) noexcept {
  return test::allocate(size, alignment);
}
void* operator new[](size_t size, align_val_t alignment, const nothrow_t&) noexcept {
  return test::allocate(size, alignment);
}

void operator delete(void* block) noexcept { test::release(block); }
void operator delete[](void* block) noexcept { test::release(block); }
void operator delete(void* block, size_t) noexcept { test::release(block); }
void operator delete[](void* block, size_t) noexcept { test::release(block); }
void operator delete(void* block, const nothrow_t&) noexcept { test::release(block); }
void operator delete[](void* block, const nothrow_t&) noexcept { test::release(block); }
void operator delete(void* block, align_val_t) noexcept { test::release(block); }
void operator delete[](void* block, align_val_t) noexcept { test::release(block); }
void operator delete(void* block, size_t, align_val_t) noexcept { test::release(block); }
void operator delete[](void* block, size_t, align_val_t) noexcept { test::release(block); }
void operator delete(void* block, align_val_t, const nothrow_t&) noexcept { test::release(block); }
void operator delete[](void* block, align_val_t, const nothrow_t&) noexcept {
  test::release(block);
}

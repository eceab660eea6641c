#include "tests/support/FailingAllocator.h"

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace orbseq::test {

namespace {

std::atomic<long> living{0};
std::atomic<std::size_t> bytes{0};
std::atomic<std::size_t> peak{0};
std::atomic<std::size_t> largest{0};
thread_local long untilFailure = 0;  // 0: none is asked for, or it has happened once
thread_local bool forEver = false;
thread_local bool failed = false;

// The same of other threads than the one that is spared.
std::atomic<long> untilFailureElsewhere{0};
std::atomic<bool> forEverElsewhere{false};
std::atomic<bool> failedElsewhere{false};
thread_local bool isSpared = false;

bool mustFailElsewhere() noexcept {
  if (isSpared) return false;
  long until = untilFailureElsewhere.load(std::memory_order_relaxed);
  long then = 0;
  do {
    if (until == 0) return false;
    then = until == 1 && forEverElsewhere.load(std::memory_order_relaxed) ? 1 : until - 1;
  } while (!untilFailureElsewhere.compare_exchange_weak(until, then, std::memory_order_relaxed));
  if (until == 1) failedElsewhere.store(true, std::memory_order_relaxed);
  return until == 1;
}

bool mustFail() noexcept {
  if (mustFailElsewhere()) return true;
  if (untilFailure == 0 || --untilFailure > 0) return false;
  if (forEver) untilFailure = 1;
  failed = true;
  return true;
}

void raise(std::atomic<std::size_t>& highest, std::size_t value) noexcept {
  std::size_t seen = highest.load(std::memory_order_relaxed);
  while (seen < value && !highest.compare_exchange_weak(seen, value, std::memory_order_relaxed)) {
  }
}

void* counted(void* block) noexcept {
  if (block == nullptr) return nullptr;
  living.fetch_add(1, std::memory_order_relaxed);
  const std::size_t size = ::malloc_usable_size(block);
  raise(peak, bytes.fetch_add(size, std::memory_order_relaxed) + size);
  return block;
}

void* allocate(std::size_t size) noexcept {
  raise(largest, size);
  return mustFail() ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}

void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
  raise(largest, size);
  const auto step = static_cast<std::size_t>(alignment);
  const std::size_t whole = (size + step - 1) / step * step;
  return mustFail() ? nullptr : counted(std::aligned_alloc(step, whole == 0 ? step : whole));
}

void* orThrow(void* block) {
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block == nullptr) return;
  living.fetch_sub(1, std::memory_order_relaxed);
  bytes.fetch_sub(::malloc_usable_size(block), std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

long livingBlocks() noexcept { return living.load(std::memory_order_relaxed); }

std::size_t livingBytes() noexcept { return bytes.load(std::memory_order_relaxed); }

std::size_t peakBytes() noexcept { return peak.load(std::memory_order_relaxed); }

std::size_t largestBlock() noexcept { return largest.load(std::memory_order_relaxed); }

void resetPeaks() noexcept {
  peak.store(livingBytes(), std::memory_order_relaxed);
  largest.store(0, std::memory_order_relaxed);
}

FailAllocation::FailAllocation(long n, Failing failing, FailingIn threads) noexcept
    : threads_(threads) {
  if (threads == FailingIn::kOtherThreads) {
    isSpared = true;
    failedElsewhere = false;
    forEverElsewhere = failing == Failing::kForEver;
    untilFailureElsewhere = n;
    return;
  }
  failed = false;
  forEver = failing == Failing::kForEver;
  untilFailure = n;
}

FailAllocation::~FailAllocation() {
  if (threads_ == FailingIn::kThisThread) {
    untilFailure = 0;
    return;
  }
  untilFailureElsewhere = 0;
  isSpared = false;
}

bool FailAllocation::hasFailed() const noexcept {
  return threads_ == FailingIn::kThisThread ? failed : failedElsewhere.load();
}

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

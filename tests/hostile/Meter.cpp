#include "tests/hostile/Meter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/FailingAllocator.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORBSEQ_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define ORBSEQ_TEST_SANITIZED 1
#endif
#endif

namespace orbseq::test {

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr std::size_t kBytesAtLeast = 64 * kMiB;
constexpr std::size_t kBytesPerByte = 100;

bool isSlow() noexcept {
#ifdef ORBSEQ_TEST_SANITIZED
  return true;
#else
  // Valgrind loads its part of the program in this way.
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return preloaded != nullptr && std::strstr(preloaded, "vgpreload") != nullptr;
#endif
}

}  // namespace

Meter::Meter(std::size_t inputBytes, Now now) noexcept
    : inputBytes_(inputBytes), now_(now), blocks_(livingBlocks()), bytes_(livingBytes()) {
  resetPeaks();
  start_ = now_();
}

int Meter::slowdown() noexcept {
  constexpr int kSlow = 20;
  static const int slowdown = isSlow() ? kSlow : 1;
  return slowdown;
}

std::size_t Meter::allowedBytes() const noexcept {
  return kBytesAtLeast + kBytesPerByte * inputBytes_;
}

std::chrono::nanoseconds Meter::allowedTime() const {
  const double seconds = 1.0 + static_cast<double>(inputBytes_) / static_cast<double>(kMiB);
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
      std::chrono::duration<double>(seconds * slowdown()));
}

std::size_t Meter::peakBytes() const noexcept {
  const std::size_t peak = test::peakBytes();
  return peak > bytes_ ? peak - bytes_ : 0;
}

std::size_t Meter::largestBlock() noexcept { return test::largestBlock(); }

std::chrono::nanoseconds Meter::elapsed() const { return now_() - start_; }

void Meter::check() const {
  const std::size_t peak = peakBytes();  // before a failure's message takes memory of its own
  checkButMemory();
  EXPECT_LE(peak, allowedBytes()) << "too much memory for " << inputBytes_ << " bytes of input";
}

void Meter::checkButMemory() const {
  const std::chrono::nanoseconds passed = elapsed();
  const long left = livingBlocks() - blocks_;
  EXPECT_EQ(left, 0) << "blocks left behind";
  EXPECT_LE(passed.count(), allowedTime().count())
      << "too many nanoseconds for " << inputBytes_ << " bytes of input";
}

}  // namespace orbseq::test

// What every operation on hostile input must keep to: no block left, little memory, little time.
//
//   const Meter meter(input.size());
//   ... the operation, and the end of everything that it made ...
//   meter.check();
//
// Whatever is to outlive the check must have its memory before the meter is made: a text that
// takes up an error's message is reserved first (see messageUnder()).
//
// The program must be linked with orbseq_test_allocator. What a library makes once and keeps, its
// tables and its session, is not the operation's: make it before the meter.
//
// Threads: one meter at a time in a program; the counts are the whole program's.

#ifndef TESTS_HOSTILE_METER_H_
#define TESTS_HOSTILE_METER_H_

#include <chrono>
#include <cstddef>
#include <exception>
#include <string>

namespace orbseq::test {

class Meter {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = Clock::time_point (*)();

  // `now` is another clock than the steady one only where the meter itself is tested.
  explicit Meter(std::size_t inputBytes, Now now = &Clock::now) noexcept;
  Meter(const Meter&) = delete;
  Meter& operator=(const Meter&) = delete;

  // Expects that as many blocks live as before, that there never were more bytes than
  // allowedBytes() beyond those of before, and that no more than allowedTime() has passed.
  void check() const;
  // The first and the last of them, for an operation that may take its memory.
  void checkButMemory() const;

  std::size_t allowedBytes() const noexcept;     // 64 MiB and 100 bytes for each of the input
  std::chrono::nanoseconds allowedTime() const;  // 1 s and 1 s for each MiB of the input; longer
                                                 // where slowdown() says so
  std::size_t peakBytes() const noexcept;        // beyond those of before
  static std::size_t largestBlock() noexcept;    // since the meter was made
  std::chrono::nanoseconds elapsed() const;

  // How many times slower than by itself the program may run: 20 under a sanitizer or valgrind.
  static int slowdown() noexcept;

 private:
  std::size_t inputBytes_;
  Now now_;
  long blocks_;
  std::size_t bytes_;
  Clock::time_point start_;
};

// The message of the Error that the operation throws, empty when it throws none, under a meter
// whose checks are all made. Anything else passes through.
template <class Error = std::exception, class Operation>
std::string messageUnder(std::size_t inputBytes, Operation&& operation) {
  constexpr std::size_t kLongestMessage = 64 << 10;
  std::string message;
  message.reserve(kLongestMessage);
  const Meter meter(inputBytes);
  try {
    operation();
  } catch (const Error& error) {
    message.append(error.what(), 0, kLongestMessage);
  }
  meter.check();
  return message;
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_METER_H_

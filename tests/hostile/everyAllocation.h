// Memory that runs out in an operation: it is repeated with its first allocation failing, once and
// for ever, then with its second, and so on until none fails.
//
// An operation is a class of the test's own:
//
//   class Operation {
//    public:
//     Operation();            // everything that it works on, made anew for each failure
//     End run();              // the operation itself, with an allocation that fails
//     void check(End end);    // with memory again: what promises hold after that end
//   };                        // whose destruction leaves no block and no open file behind
//
// run() answers kDone when it says that all went well, and kReported when it says by its value, or
// by the state of a stream, that it failed; what it throws is told by the harness. check() of an
// operation that went well expects its answer, and of any other that it can be repeated.

#ifndef TESTS_HOSTILE_EVERYALLOCATION_H_
#define TESTS_HOSTILE_EVERYALLOCATION_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iostream>
#include <new>
#include <streambuf>
#include <string>

#include "scoring/hostapi/QuException.h"
#include "sequence/SeqExceptions.h"
#include "tests/hostile/Meter.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/longRun.h"

namespace orbseq::test {

enum class End {
  kDone,
  kReported,
  kBadAlloc,
  kDictionaryFailure,
  kIoException,  // by pointer
  kQuException,
  kForeign  // whatever else is thrown
};

inline std::ostream& operator<<(std::ostream& out, End end) {
  constexpr std::array kNames = {
      "done",         "failure reported", "bad_alloc",          "DictionaryFailure",
      "IOException*", "QuException",      "a foreign exception"};
  return out << kNames[static_cast<std::size_t>(end)];
}

// Takes in, without memory, what is printed to standard output and standard error while it lives.
class Unheard {
 public:
  Unheard() : output_(std::cout.rdbuf(&buffer_)), error_(std::cerr.rdbuf(&buffer_)) {}
  ~Unheard() {
    std::cout.rdbuf(output_);
    std::cerr.rdbuf(error_);
  }
  Unheard(const Unheard&) = delete;
  Unheard& operator=(const Unheard&) = delete;

 private:
  class Buffer : public std::streambuf {
   protected:
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize size) override { return size; }
  };

  Buffer buffer_;
  std::streambuf* output_;
  std::streambuf* error_;
};

// The number that the next file to be opened gets: the same again when all are closed.
inline int nextDescriptor() {
  const int file = ::dup(STDERR_FILENO);
  ::close(file);
  return file;
}

// How the operation ends when its n-th allocation fails; `hasFailed`: whether it asked for so many.
template <class Operation>
End endOf(Operation& operation, long n, Failing failing, FailingIn threads, bool& hasFailed) {
  using SEQUENCE_NAMESPACE_800::SeqExceptions;
  const Unheard unheard;
  End end = End::kForeign;
  const FailAllocation failure(n, failing, threads);
  try {
    end = operation.run();
  } catch (const SeqExceptions::DictionaryFailure&) {  // a bad_alloc as well
    end = End::kDictionaryFailure;
  } catch (const std::bad_alloc&) {
    end = End::kBadAlloc;
  } catch (SeqExceptions::IOException* error) {
    delete error;
    end = End::kIoException;
  } catch (const OrbScore::QuException&) {
    end = End::kQuException;
  } catch (...) {
    end = End::kForeign;
  }
  hasFailed = failure.hasFailed();
  return end;
}

inline constexpr long kMostAllocations = 100'000;  // of an operation

// The allocation from which on only every seventh fails, of operations that take long: of a save to
// a file, and of any under a sanitizer. Each fails when ORBSEQ_LONG_RUN is set.
inline long eachOfALongOne() { return isLongRun() ? kMostAllocations : 200; }
inline long eachOfAny() { return Meter::slowdown() > 1 ? eachOfALongOne() : kMostAllocations; }

// What the object that an operation fills holds before.
enum class Former { kNone, kOther };

// Expects that the operation, however its memory fails, ends in one of the allowed ways, keeps its
// promises and leaves nothing behind. Without a failure it must be done. From allocation `each` on,
// every seventh alone fails: for operations that are long. Those of other threads than the calling
// one fail where that is asked for, and then none of its own.
template <class Operation>
void failEveryAllocationOf(Failing failing, std::initializer_list<End> allowed,
                           long each = eachOfAny(), FailingIn threads = FailingIn::kThisThread) {
  constexpr long kStep = 7;
  const char* const when = failing == Failing::kOnce ? ", once" : ", and all that follow";
  {
    Operation operation;  // what a library makes once and keeps is made now
    bool hasFailed = false;
    const End end = endOf(operation, 0, failing, threads, hasFailed);
    ASSERT_EQ(end, End::kDone) << "with enough memory";
    const testing::ScopedTrace trace(__FILE__, __LINE__, "with enough memory");
    operation.check(end);
  }
  // How much other threads do is chance: whether they come to an allocation is tried often.
  const int tries = threads == FailingIn::kThisThread ? 1 : 20;
  int left = tries;
  for (long n = 1; left > 0;) {
    bool hasFailed = false;
    ASSERT_LT(n, kMostAllocations) << "the operation does not end";
    End end = End::kForeign;
    const int file = nextDescriptor();
    const long before = livingBlocks();
    {
      Operation operation;
      end = endOf(operation, n, failing, threads, hasFailed);
      const testing::ScopedTrace trace(__FILE__, __LINE__,
                                       "allocation " + std::to_string(n) + when);
      operation.check(end);
    }
    EXPECT_EQ(livingBlocks(), before) << "blocks left behind, allocation " << n << when;
    EXPECT_EQ(nextDescriptor(), file) << "a file left open, allocation " << n << when;
    // A failure may be got over: fewer threads, or no message, do as well.
    const bool isAllowed =
        end == End::kDone ||
        (hasFailed && std::find(allowed.begin(), allowed.end(), end) != allowed.end());
    EXPECT_TRUE(isAllowed) << "allocation " << n << when << ": " << end;
    if (testing::Test::HasFatalFailure()) return;
    left = hasFailed ? tries : left - 1;
    if (hasFailed) n += n < each ? 1 : kStep;
  }
}

template <class Operation>
void failEveryAllocationOf(std::initializer_list<End> allowed, long each = eachOfAny(),
                           FailingIn threads = FailingIn::kThisThread) {
  failEveryAllocationOf<Operation>(Failing::kOnce, allowed, each, threads);
  failEveryAllocationOf<Operation>(Failing::kForEver, allowed, each, threads);
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_EVERYALLOCATION_H_

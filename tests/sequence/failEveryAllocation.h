// Lets an operation run out of memory at each of its allocations in turn.

#ifndef TESTS_SEQUENCE_FAILEVERYALLOCATION_H_
#define TESTS_SEQUENCE_FAILEVERYALLOCATION_H_

#include "tests/support/FailingAllocator.h"

namespace orbseq::test {

// Runs `operation` with its 1st, 2nd, 3rd ... allocation failing, until it asks for fewer and has
// succeeded; after each `Failure` that it throws calls `check`. Returns the number of failures.
template <typename Failure, typename Operation, typename Check>
int failEveryAllocation(Operation&& operation, Check&& check) {
  for (int failures = 0;; ++failures) {
    try {
      const FailAllocation failing(failures + 1);
      operation();
      return failures;
    } catch (const Failure&) {
    }
    check();
  }
}

}  // namespace orbseq::test

#endif  // TESTS_SEQUENCE_FAILEVERYALLOCATION_H_

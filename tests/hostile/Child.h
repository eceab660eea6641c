// Runs the program within limits that the system sets, and feeds what is too large for a file.

#ifndef TESTS_HOSTILE_CHILD_H_
#define TESTS_HOSTILE_CHILD_H_

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "tests/cli/Program.h"

namespace orbseq::test {

struct ChildLimits {
  std::size_t dataBytes = 0;   // of memory that can be written; 0: as much as there is
  std::size_t stackBytes = 0;  // of every thread; 0: as the system has it
  uid_t user = 0;              // whose rights the program has; 0: the test's own
};

// The program to its end, which a signal brings after a minute. Under a sanitizer or valgrind,
// which take memory of their own, memory is not limited.
Outcome runWithin(const ChildLimits& limits, std::vector<std::string> arguments);

// Whether the program can run with the rights of that user: the test may give its own up, and the
// user may read the program and what it loads.
bool canRunAs(uid_t user);
constexpr uid_t kNobody = 65534;

// A FIFO that gives `head`, and then `piece` so many times, to the first who reads it.
class Feed {
 public:
  Feed(std::string path, std::string head, std::string piece, std::size_t times);
  // Ends also when nobody has come to read.
  ~Feed();
  Feed(const Feed&) = delete;
  Feed& operator=(const Feed&) = delete;

  const std::string& path() const noexcept { return path_; }
  // Waits for the reader's end, or the feed's; the bytes that went into the FIFO.
  std::size_t fed();

 private:
  void feed();
  bool give(int fifo, const std::string& bytes);

  const std::string path_;
  const std::string head_;
  const std::string piece_;
  const std::size_t times_;
  std::atomic<bool> isOver_ = false;
  std::size_t bytes_ = 0;  // of the thread, until it is joined
  std::thread thread_;
};

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_CHILD_H_

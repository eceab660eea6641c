// Reads blocks of work, works on them on several threads, and writes them in the order in which
// they were read.
//
// Memory: a block a thread, however many blocks there are.

#ifndef ENGINE_INORDER_H_
#define ENGINE_INORDER_H_

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>
#include <vector>

namespace orbseq::engine {

// The turns of the threads of one run.
class Turns {
 public:
  // The next block's number where `read` answers true, else the end. Calls of `read` come one after
  // the other.
  template <class Read>
  std::size_t take(Read read) {
    const std::lock_guard lock(reading_);
    if (hasEnded_) return kEnd;
    const std::size_t number = next_++;
    try {
      if (read()) return number;
    } catch (...) {
      fail(number, std::current_exception());
    }
    hasEnded_ = true;
    return kEnd;
  }

  // Calls `write` when all blocks before have been written; false, without a call, when one of
  // these has failed.
  template <class Write>
  bool give(std::size_t number, Write write) {
    std::unique_lock lock(writing_);
    changed_.wait(lock, [&] { return written_ == number || failed_ < number; });
    if (failed_ < number) return false;
    write();
    ++written_;
    changed_.notify_all();
    return true;
  }

  // Block `number` failed: none behind it is written.
  void fail(std::size_t number, std::exception_ptr error) {
    const std::lock_guard lock(writing_);
    if (number >= failed_) return;
    failed_ = number;
    error_ = std::move(error);
    changed_.notify_all();
  }

  bool hasFailed() {
    const std::lock_guard lock(writing_);
    return failed_ < kEnd;
  }

  void rethrow() const {
    if (error_) std::rethrow_exception(error_);
  }

  static constexpr std::size_t kEnd = std::numeric_limits<std::size_t>::max();

 private:
  std::mutex reading_;
  std::size_t next_ = 0;
  bool hasEnded_ = false;

  std::mutex writing_;
  std::condition_variable changed_;
  std::size_t written_ = 0;
  std::size_t failed_ = kEnd;  // the first block that failed
  std::exception_ptr error_;
};

// On each of `threads` threads, this one among them, makes a worker and a Block and has them go
// round: read(block) fills it, and answers false at the end; worker(block) works on it;
// write(block) takes it. Reads come one after the other, and so do writes, in the same order; what
// is written does not depend on the number of threads. What the first block to fail throws leaves
// this function, once the blocks before it are written.
template <class Block, class Read, class MakeWorker, class Write>
void inOrder(int threads, Read read, MakeWorker makeWorker, Write write) {
  Turns turns;
  const auto run = [&] {
    std::size_t number = 0;
    try {
      auto worker = makeWorker();
      Block block;
      while (!turns.hasFailed()) {
        number = turns.take([&] { return read(block); });
        if (number == Turns::kEnd) return;
        worker(block);
        if (!turns.give(number, [&] { write(block); })) return;
      }
    } catch (...) {
      turns.fail(number, std::current_exception());
    }
  };
  {
    std::vector<std::jthread> others;
    for (int t = 1; t < threads; ++t) others.emplace_back(run);
    run();
  }
  turns.rethrow();
}

}  // namespace orbseq::engine

#endif  // ENGINE_INORDER_H_

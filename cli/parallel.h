// Work on many numbered things by several threads.

#ifndef CLI_PARALLEL_H_
#define CLI_PARALLEL_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace orbseq {

// The number of threads that an option means: 0 is all cores.
inline int threadsOf(int option) {
  return option > 0 ? option : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

// Calls work(i) for i = 0 .. count - 1, each once, by `threads` threads, this one among them, in no
// promised order. `tell` is called by this thread now and then with the number of things begun. The
// first thing that work or tell throws ends the rest and leaves this function.
template <class Work, class Tell>
void forEachInParallel(std::size_t count, int threads, Work work, Tell tell) {
  constexpr std::size_t kBlock = 64;
  std::atomic<std::size_t> next = 0;
  std::mutex mutex;
  std::exception_ptr error;
  const auto run = [&](bool tells) {
    try {
      for (std::size_t begin; (begin = next.fetch_add(kBlock)) < count;) {
        if (tells) tell(begin);
        for (std::size_t i = begin; i < std::min(begin + kBlock, count); ++i) work(i);
      }
    } catch (...) {
      next = count;
      const std::lock_guard lock(mutex);
      if (!error) error = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> others;
    for (int t = 1; t < threads; ++t) others.emplace_back(run, false);
    run(true);
  }
  if (error) std::rethrow_exception(error);
}

}  // namespace orbseq

#endif  // CLI_PARALLEL_H_

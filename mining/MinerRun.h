// One run of a miner: its threads, its tasks, its limits, and the order of its results.
//
// Shape. A task mines a part of the prefix tree and writes to its own Chunk. It may hand parts of
// it over as further tasks, each with a chunk below its own; the result is the chunks' nodes in
// pre-order, whatever thread ran a task and when.
//
// Threads: run() is called once; the tasks may call everything else at the same time.
// Errors: what a task throws ends the run and leaves run(); MinerStopped for limits.

#ifndef MINING_MINERRUN_H_
#define MINING_MINERRUN_H_

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "mining/MinerOptions.h"
#include "mining/PatternTree.h"

namespace orbseq {

// The results of a task, and of those that it handed over.
struct Chunk {
  std::vector<PatternNode> nodes;
  std::vector<std::unique_ptr<Chunk>> parts;  // behind the nodes, in their order

  Chunk& addPart() { return *parts.emplace_back(std::make_unique<Chunk>()); }
};

class MinerRun {
 public:
  // `worker` is 0 .. threads - 1.
  using Task = std::function<void(int worker)>;

  explicit MinerRun(const MinerOptions& options);

  // Runs the task and all that it hands over; when all are done, the chunks' nodes.
  PatternTree run(Task first, std::unique_ptr<Chunk> root);

  // Tasks handed over later run earlier.
  void handOver(Task task);
  // So much of the work is over.
  void finished(double share) noexcept;

  // Called for every few sequences: throws when the run is to end.
  void check(int worker, std::size_t newSequences);
  // Memory that was taken (or given back, when negative).
  void account(std::ptrdiff_t bytes);

 private:
  void work(int worker);
  void stop(std::exception_ptr error) noexcept;
  MinerStatus status() const noexcept;

  const MinerOptions& options_;
  const std::chrono::steady_clock::time_point end_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Task> tasks_;   // the last one runs next
  std::size_t running_ = 0;   // tasks
  std::exception_ptr error_;  // the first
  std::atomic<bool> stopped_ = false;
  std::atomic<std::size_t> sequences_ = 0;
  std::atomic<std::ptrdiff_t> bytes_ = 0;
  std::atomic<double> done_ = 0.0;
  std::chrono::steady_clock::time_point told_;  // of worker 0
};

}  // namespace orbseq

#endif  // MINING_MINERRUN_H_

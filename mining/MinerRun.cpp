#include "mining/MinerRun.h"

#include <algorithm>
#include <string>
#include <thread>
#include <utility>

namespace orbseq {

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point endOf(double seconds) {
  constexpr double kNever = 1e9;  // seconds: longer than any run
  if (!(seconds < kNever)) return Clock::time_point::max();
  return Clock::now() +
         std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

void append(std::vector<PatternNode>& nodes, Chunk& chunk) {
  nodes.insert(nodes.end(), chunk.nodes.begin(), chunk.nodes.end());
  std::vector<PatternNode>().swap(chunk.nodes);
  for (auto& part : chunk.parts) {
    append(nodes, *part);
    part.reset();
  }
}

std::size_t sizeOf(const Chunk& chunk) {
  std::size_t size = chunk.nodes.size();
  for (const auto& part : chunk.parts) size += sizeOf(*part);
  return size;
}

}  // namespace

MinerRun::MinerRun(const MinerOptions& options) : options_(options), end_(endOf(options.seconds)) {}

PatternTree MinerRun::run(Task first, std::unique_ptr<Chunk> root) {
  tasks_.push_back(std::move(first));
  std::vector<std::thread> others;
  for (int worker = 1; worker < options_.threads; ++worker) {
    try {
      others.emplace_back([this, worker] { work(worker); });
    } catch (...) {
      break;  // fewer threads do as well
    }
  }
  work(0);
  for (std::thread& thread : others) thread.join();
  if (error_) std::rethrow_exception(error_);
  PatternTree tree;
  if (root->nodes.empty() && root->parts.empty()) return tree;
  tree.nodes.reserve(sizeOf(*root));
  append(tree.nodes, *root);
  return tree;
}

void MinerRun::work(int worker) {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return !tasks_.empty() || running_ == 0 || error_; });
    if (error_ || tasks_.empty()) break;
    const Task task = std::move(tasks_.back());
    tasks_.pop_back();
    ++running_;
    lock.unlock();
    try {
      task(worker);
    } catch (...) {
      stop(std::current_exception());
    }
    lock.lock();
    --running_;
    if (running_ == 0 && tasks_.empty()) changed_.notify_all();
  }
}

void MinerRun::stop(std::exception_ptr error) noexcept {
  const std::scoped_lock lock(mutex_);
  if (!error_) error_ = std::move(error);
  stopped_.store(true, std::memory_order_relaxed);
  changed_.notify_all();
}

void MinerRun::handOver(Task task) {
  const std::scoped_lock lock(mutex_);
  tasks_.push_back(std::move(task));
  changed_.notify_one();
}

void MinerRun::finished(double share) noexcept {
  done_.fetch_add(share, std::memory_order_relaxed);
}

void MinerRun::check(int worker, std::size_t newSequences) {
  sequences_.fetch_add(newSequences, std::memory_order_relaxed);
  using Reason = MinerStopped::Reason;
  if (stopped_.load(std::memory_order_relaxed))
    throw MinerStopped(Reason::kRequest, "mining was ended");
  const auto now = Clock::now();
  if (now >= end_)
    throw MinerStopped(Reason::kTime, "mining takes longer than the limit of " +
                                          std::to_string(options_.seconds) + " seconds; " +
                                          std::to_string(sequences_) + " sequences so far");
  constexpr auto kPause = std::chrono::milliseconds(100);
  if (worker != 0 || !options_.progress || now - told_ < kPause) return;
  told_ = now;
  if (!options_.progress(status())) throw MinerStopped(Reason::kRequest, "mining was ended");
}

void MinerRun::account(std::ptrdiff_t bytes) {
  const std::ptrdiff_t now = bytes_.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  if (bytes > 0 &&
      static_cast<std::size_t>(std::max<std::ptrdiff_t>(now, 0)) > options_.memoryBytes)
    throw MinerStopped(MinerStopped::Reason::kMemory,
                       "mining needs more memory than the limit of " +
                           std::to_string(options_.memoryBytes) + " bytes; " +
                           std::to_string(sequences_) + " sequences so far");
}

MinerStatus MinerRun::status() const noexcept {
  MinerStatus status;
  status.sequences = sequences_.load(std::memory_order_relaxed);
  status.done = std::min(done_.load(std::memory_order_relaxed), 1.0);
  status.memoryBytes =
      static_cast<std::size_t>(std::max<std::ptrdiff_t>(bytes_.load(std::memory_order_relaxed), 0));
  return status;
}

}  // namespace orbseq

#include "mining/ExactMiner.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "mining/FrequentLog.h"
#include "mining/MinerRun.h"
#include "mining/PrefixGrowth.h"
#include "mining/SequenceDatabase.h"
#include "mining/TimedGrowth.h"

namespace orbseq {

namespace {

// Prefixes of so many entries are shared among the threads extension by extension.
constexpr std::size_t kLargePrefix = 20'000;

// The tasks of a run without bounds of time.
class GrowthTasks {
 public:
  GrowthTasks(const FrequentLog& log, const MinerOptions& options, MinerRun& run)
      : log_(log), run_(run) {
    for (int worker = 0; worker < options.threads; ++worker)
      workers_.push_back(std::make_unique<PrefixGrowth>(log, options, run, worker));
  }

  void start(Chunk& root) {
    const auto all = newProjection();
    PrefixGrowth::projectAll(log_, *all);
    run_.account(static_cast<std::ptrdiff_t>(all->memoryBytes()));
    share(PrefixGrowth::Prefix(), all, root, 1.0);
  }

 private:
  using Prefix = PrefixGrowth::Prefix;

  // One that several tasks read; its memory is given back with the last of them.
  std::shared_ptr<Projection> newProjection() {
    return {new Projection, [&run = run_](Projection* projection) {
              run.account(-static_cast<std::ptrdiff_t>(projection->memoryBytes()));
              delete projection;
            }};
  }

  // A task for each extension, the largest running first.
  void share(const Prefix& prefix, const std::shared_ptr<const Projection>& projection,
             Chunk& chunk, double work) {
    struct Part {
      Prefix prefix;
      Chunk* chunk;
    };
    std::vector<Part> parts;
    std::size_t ends = 0;
    for (const bool joined : {false, true}) {
      const std::size_t n = (joined ? projection->join : projection->next).size();
      for (std::size_t k = 0; k < n; ++k) {
        parts.push_back(
            {PrefixGrowth::extended(prefix, *projection, joined, k, log_), &chunk.addPart()});
        ends += parts.back().prefix.ends.size();
      }
    }
    std::stable_sort(parts.begin(), parts.end(), [](const Part& a, const Part& b) {
      return a.prefix.ends.size() < b.prefix.ends.size();
    });
    for (const Part& part : parts) {
      const double partWork =
          work * static_cast<double>(part.prefix.ends.size()) / static_cast<double>(ends);
      run_.handOver([this, part, projection, partWork](int worker) {
        grow(worker, part.prefix, *part.chunk, partWork);
      });
    }
  }

  // The prefix's node and everything below it.
  void grow(int worker, const Prefix& prefix, Chunk& chunk, double work) {
    PrefixGrowth& growth = *workers_[static_cast<std::size_t>(worker)];
    run_.check(worker, 1);
    chunk.nodes.push_back(growth.nodeOf(prefix));
    const std::size_t entries =
        prefix.before->entries.size() / prefix.before->customers.size() * prefix.ends.size();
    if (prefix.items <= 2 && entries > kLargePrefix && workers_.size() > 1) {
      const auto projection = newProjection();
      const bool extends = growth.project(prefix, *projection);
      run_.account(static_cast<std::ptrdiff_t>(projection->memoryBytes()));
      if (extends) return share(prefix, projection, chunk, work);
    } else {
      growth.grow(prefix, chunk.nodes);
    }
    run_.account(static_cast<std::ptrdiff_t>(chunk.nodes.capacity() * sizeof(PatternNode)));
    run_.finished(work);
  }

  const FrequentLog& log_;
  MinerRun& run_;
  std::vector<std::unique_ptr<PrefixGrowth>> workers_;
};

// A task for each item, the most frequent running first.
void startTimed(const FrequentLog& log, const MinerOptions& options, MinerRun& run, Chunk& root) {
  std::vector<std::pair<std::uint32_t, Chunk*>> parts;
  double ends = 0.0;
  for (std::size_t item = 0; item < log.itemCount(); ++item) {
    parts.emplace_back(static_cast<std::uint32_t>(item), &root.addPart());
    ends += log.support(item);
  }
  std::stable_sort(parts.begin(), parts.end(), [&log](const auto& a, const auto& b) {
    return log.support(a.first) < log.support(b.first);
  });
  for (const auto& part : parts)
    run.handOver([&log, &options, &run, part, ends](int worker) {
      TimedGrowth(log, options, run, worker).grow(part.first, part.second->nodes);
      run.account(static_cast<std::ptrdiff_t>(part.second->nodes.capacity() * sizeof(PatternNode)));
      run.finished(log.support(part.first) / ends);
    });
}

}  // namespace

PatternTree mineExactly(const SequenceDatabase& database, const MinerOptions& options) {
  MinerRun run(options);
  const FrequentLog log(database, options);
  run.account(static_cast<std::ptrdiff_t>(log.memoryBytes()));
  auto root = std::make_unique<Chunk>();
  Chunk& chunk = *root;
  GrowthTasks tasks(log, options, run);
  if (log.itemCount() == 0 || options.maxItems < 1) return {};
  const auto start = [&](int) {
    if (options.hasTimeBounds())
      startTimed(log, options, run, chunk);
    else
      tasks.start(chunk);
  };
  return run.run(start, std::move(root));
}

}  // namespace orbseq

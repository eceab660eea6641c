// What the engine's parts cost, by size of the lattice and by length of the history.
//
//   engine_bench [options of Google Benchmark]
//
// Everything is seeded (bench/worlds.h) and made outside the measured loops. Names end in the
// number of sequences, about, or say what the number is:
//
//   NTSequence/extend        a sequence of 2 items becomes one of 3
//   table/get/N              look-ups of all 3-item sequences of the lattice, one after the other
//   build/N                  buildLattice()
//   compile/N                compile()
//   load/FORM/N              readCompiledModel(): a file becomes what answers. Documents, binary
//   and
//                            object-XML are parsed and compiled; a compiled form is mapped and
//                            checked
//   search/N                 the dictionary's getSubsequencesInSequence, histories of 5 sets
//   query/KIND/N             a query of the recommender, histories of 10 sets; current items,
//   future
//                            items from the whole history, from all its beginnings
//   history/KIND/S           the same with histories of S sets, on a lattice of 100,000 sequences
//                            over some 7000 items, so that it is the history that grows
//   repeats/KIND/S           the same on one over 56 items, all of which come again and again
//   batch/threads:T          1024 histories of 10 sets on T threads, N = 100,000
//
// Items a second are queries, or sequences where the whole lattice is worked on. With compile/N
// stand the compiled lattice's bytes a sequence, in all and by section.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/worlds.h"
#include "engine/Recommender.h"
#include "engine/compile.h"
#include "io/CompiledModel.h"
#include "io/ModelFile.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace {

using namespace orbseq;
using bench::WorldOptions;
using engine::Answers;
using engine::CompiledLattice;
using engine::History;
using engine::Recommender;
using engine::Workspace;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;
namespace fs = std::filesystem;

constexpr std::int32_t kMaxCount = 20;
constexpr std::int64_t kLarge = 1'000'000;
constexpr std::int64_t kLargeDocument = 100'000;
constexpr std::int64_t kMedium = 100'000;
constexpr double kFewPairs = 0.002;

// --- Inputs, made when they are first asked for --------------------------------------------------

WorldOptions dense(std::int64_t sequences) {
  return {.sequences = static_cast<std::size_t>(sequences)};
}
WorldOptions sparse() {
  return {.sequences = static_cast<std::size_t>(kMedium), .pairShare = kFewPairs};
}

Model& modelOf(std::int64_t sequences) {
  static std::map<std::int64_t, Model> models;
  const auto [place, isNew] = models.try_emplace(sequences);
  if (isNew) place->second = bench::makeModel(dense(sequences));
  return place->second;
}

const CompiledLattice& latticeOf(std::int64_t sequences) {
  static std::map<std::int64_t, CompiledLattice> lattices;
  auto place = lattices.find(sequences);
  if (place == lattices.end())
    place = lattices.emplace(sequences, engine::compile(*modelOf(sequences).lattice)).first;
  return place->second;
}

const CompiledLattice& sparseLattice() {
  static const CompiledLattice lattice = engine::compile(*bench::makeModel(sparse()).lattice);
  return lattice;
}

// Files live in a folder of their own until the program ends.
class Folder {
 public:
  Folder() : path_(fs::temp_directory_path() / ("orbseq-engine-" + std::to_string(::getpid()))) {
    fs::create_directories(path_);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string fileOf(ModelForm form, std::int64_t sequences) const {
    const fs::path file = path_ / (std::string(nameOf(form)) + "-" + std::to_string(sequences));
    if (!fs::exists(file)) saveModel(file.string(), modelOf(sequences), form);
    return file.string();
  }

 private:
  fs::path path_;
};

// --- Parts ---------------------------------------------------------------------------------------

void extend(benchmark::State& state) {
  const int one[] = {2, 3, 7};
  const NTSequence source(one);
  for (auto _ : state) {
    NTSequence longer(source, 5, 3);
    benchmark::DoNotOptimize(longer);
  }
  state.SetItemsProcessed(state.iterations());
}

void tableGet(benchmark::State& state) {
  const HashtableSQPair& table = *modelOf(state.range(0)).lattice->getTable(3);
  std::vector<NTSequence> keys;
  for (const ISQCPair& entry : table) keys.push_back(*entry.key);
  std::sort(keys.begin(), keys.end());  // not in the table's own order
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(table.get(&keys[next]));
    next = next + 1 < keys.size() ? next + 1 : 0;
  }
  state.SetItemsProcessed(state.iterations());
}

void build(benchmark::State& state) {
  Lattice& lattice = *modelOf(state.range(0)).lattice;
  for (auto _ : state)
    if (!lattice.buildLattice().IsOK()) state.SkipWithError("the lattice cannot be linked");
  state.SetItemsProcessed(state.iterations() * lattice.NumberOfSequences());
}

void compileAll(benchmark::State& state) {
  const Lattice& lattice = *modelOf(state.range(0)).lattice;
  for (auto _ : state) benchmark::DoNotOptimize(engine::compile(lattice).nodeCount());
  state.SetItemsProcessed(state.iterations() * lattice.NumberOfSequences());
  const CompiledLattice& compiled = latticeOf(state.range(0));
  const auto sequences = static_cast<double>(compiled.nodeCount());
  state.counters["bytes"] = static_cast<double>(compiled.image().size()) / sequences;
  for (const auto& [section, bytes] : compiled.bytesBySection())
    state.counters["bytes_" + std::string(section)] = static_cast<double>(bytes) / sequences;
}

void load(benchmark::State& state, const Folder& folder, ModelForm form) {
  const std::string file = folder.fileOf(form, state.range(0));
  OrbScore::DocumentLimits limits;
  limits.bytes = std::size_t{1} << 36U;
  limits.elements = std::size_t{1} << 36U;
  for (auto _ : state)
    benchmark::DoNotOptimize(readCompiledModel(file, limits).lattice.nodeCount());
  state.SetItemsProcessed(state.iterations() *
                          modelOf(state.range(0)).lattice->NumberOfSequences());
}

// --- Queries -------------------------------------------------------------------------------------

enum class Kind { kCurrent, kWhole, kBeginnings };

void ask(const Recommender& recommender, Kind kind, const History& history, Workspace& workspace,
         Answers& out) {
  out.clear();
  if (kind == Kind::kCurrent)
    recommender.currentItems(history, kMaxCount, workspace, out);
  else
    recommender.futureItems(history, kMaxCount, kind == Kind::kWhole, workspace, out);
}

void askInTurn(benchmark::State& state, const CompiledLattice& lattice, Kind kind,
               const std::vector<History>& histories) {
  const Recommender recommender(lattice);
  Workspace workspace;
  Answers out;
  std::size_t next = 0;
  for (auto _ : state) {
    ask(recommender, kind, histories[next], workspace, out);
    benchmark::DoNotOptimize(out.data());
    next = next + 1 < histories.size() ? next + 1 : 0;
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["nodes"] = static_cast<double>(lattice.nodeCount());
}

void query(benchmark::State& state, Kind kind) {
  const std::int32_t items = bench::itemsOf(dense(state.range(0)));
  askInTurn(state, latticeOf(state.range(0)), kind,
            bench::makeHistories({.histories = 256, .items = items}));
}

// A few histories, so that the longest fit into the caches as the shortest do.
void longHistory(benchmark::State& state, Kind kind, bool repeats) {
  const auto sets = static_cast<std::size_t>(state.range(0));
  const std::int32_t items = bench::itemsOf(repeats ? dense(kMedium) : sparse());
  askInTurn(state, repeats ? latticeOf(kMedium) : sparseLattice(), kind,
            bench::makeHistories({.histories = 16, .sets = sets, .items = items}));
}

void batch(benchmark::State& state) {
  const Recommender recommender(latticeOf(kMedium));
  const auto histories =
      bench::makeHistories({.histories = 1024, .items = bench::itemsOf(dense(kMedium))});
  const auto threads = static_cast<std::size_t>(state.range(0));
  std::vector<Workspace> workspaces(threads);
  const auto part = [&](std::size_t t) {
    Answers out;
    for (std::size_t k = t * histories.size() / threads; k < (t + 1) * histories.size() / threads;
         ++k) {
      ask(recommender, Kind::kBeginnings, histories[k], workspaces[t], out);
      benchmark::DoNotOptimize(out.data());
    }
  };
  for (auto _ : state) {
    std::vector<std::jthread> others;
    for (std::size_t t = 1; t < threads; ++t) others.emplace_back(part, t);
    part(0);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(histories.size()));
}

void search(benchmark::State& state) {
  const Lattice& lattice = *modelOf(state.range(0)).lattice;
  std::vector<Sequence> sequences;
  const std::int32_t items = bench::itemsOf(dense(state.range(0)));
  for (const History& history : bench::makeHistories({.sets = 5, .items = items})) {
    Sequence& sequence = sequences.emplace_back();
    for (std::size_t s = 0; s < history.sets(); ++s) {
      TimedItemSet set;
      for (const std::int32_t item : history.set(s)) set.AddItem(item);
      sequence.AddTimedItemSet(&set);
    }
  }
  std::size_t next = 0;
  for (auto _ : state) {
    std::vector<NTSequence*> found;
    lattice.getSubsequencesInSequence(found, sequences[next], 0);
    for (const NTSequence* sequence : found) delete sequence;
    next = next + 1 < sequences.size() ? next + 1 : 0;
  }
  state.SetItemsProcessed(state.iterations());
}

// --- All of them ---------------------------------------------------------------------------------

void registerLoads(const Folder& folder) {
  for (const ModelForm form :
       {ModelForm::kDocument, ModelForm::kBinary, ModelForm::kObjectXml, ModelForm::kCompiled}) {
    const bool isText = form == ModelForm::kDocument || form == ModelForm::kObjectXml;
    benchmark::RegisterBenchmark(
        ("load/" + std::string(nameOf(form))).c_str(),
        [&folder, form](benchmark::State& state) { load(state, folder, form); })
        ->RangeMultiplier(10)
        ->Range(1000, isText ? kLargeDocument : kLarge)
        ->Unit(benchmark::kMillisecond);
  }
}

void registerQueries() {
  const std::map<std::string, Kind> kinds = {
      {"current", Kind::kCurrent}, {"whole", Kind::kWhole}, {"beginnings", Kind::kBeginnings}};
  for (const auto& named : kinds) {
    const Kind kind = named.second;
    benchmark::RegisterBenchmark(("query/" + named.first).c_str(),
                                 [kind](benchmark::State& state) { query(state, kind); })
        ->RangeMultiplier(10)
        ->Range(1000, kLarge)
        ->Unit(benchmark::kMicrosecond);
    for (const bool repeats : {false, true})
      benchmark::RegisterBenchmark(
          ((repeats ? "repeats/" : "history/") + named.first).c_str(),
          [kind, repeats](benchmark::State& state) { longHistory(state, kind, repeats); })
          ->Arg(10)
          ->Arg(100)
          ->Arg(1000)
          ->Arg(5000)
          ->Unit(benchmark::kMicrosecond);
  }
}

void registerAll(const Folder& folder) {
  const auto sized = [](const char* name, void (*run)(benchmark::State&), std::int64_t most,
                        benchmark::TimeUnit unit) {
    benchmark::RegisterBenchmark(name, run)->RangeMultiplier(10)->Range(1000, most)->Unit(unit);
  };
  benchmark::RegisterBenchmark("NTSequence/extend", extend);
  sized("table/get", tableGet, kLarge, benchmark::kNanosecond);
  sized("build", build, kLarge, benchmark::kMillisecond);
  sized("compile", compileAll, kLarge, benchmark::kMillisecond);
  registerLoads(folder);
  sized("search", search, kMedium, benchmark::kMicrosecond);
  registerQueries();
  benchmark::RegisterBenchmark("batch", batch)
      ->ArgName("threads")
      ->Arg(1)
      ->Arg(2)
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Folder folder;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    registerAll(folder);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

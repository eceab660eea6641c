// How long a query takes: of the dictionary itself, of a prefix tree (bench/PrefixTree.h), and of
// the recommender, on one thread and on two.
//
//   queries_bench [FOLDER [ROUNDS]]
//
// FOLDER holds retail/lattice.xml, retail/histories.csv and logs/BMS1.spmf.gz; what is missing is
// left out. The model of BMS1 is mined here, at 40 customers. Every history is asked for current
// items, for future items from the whole history, and for future items from all its beginnings, at
// most 20 answers each. All in memory: neither input nor output is measured, and histories have the
// form that each matcher reads.
//
// The matchers take turns, ROUNDS times (10); the dictionary only as often as it takes some seconds
// in all, once at least. A figure is the median, in microseconds a history; in parentheses the
// number of rounds and the spread, (largest - least) / median. On two threads each has a workspace
// and takes the next histories, kBlock at a time; making the threads is measured, too.
//
// "look and rank" is what no matcher can leave out: it looks up every item of the history, and puts
// the answers, known beforehand, in order and writes them. It tells how much faster than the prefix
// tree anything could be at all.
//
// Answers. "differ" counts the histories whose answer is not, bit for bit, the dictionary's. For
// the recommender it is 0, or the program ends with status 1. The prefix tree differs for a few
// where sets have several items. Of (a b)(c) the lattice's search goes to the latest set before c
// that holds a, and to the latest that holds b, and goes on where the other one is there as well;
// when a set that holds both is earlier than either, it does not find the sequence, which
// containment does, and which may raise an item's confidence. Checksums add up the items of all
// answers of a round, so that none is left out; they do not see confidences.

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bench/PrefixTree.h"
#include "bench/steps.h"
#include "engine/Recommender.h"
#include "engine/compile.h"
#include "io/LogReader.h"
#include "io/ModelFile.h"
#include "mining/ExactMiner.h"
#include "mining/fillDictionary.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace {

using namespace orbseq;
using bench::PrefixTree;
using engine::Answers;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;
namespace fs = std::filesystem;

constexpr std::int32_t kMaxCount = 20;
constexpr std::int32_t kSupport = 40;       // customers, of BMS1
constexpr std::size_t kBlock = 64;          // histories that a thread takes at a time
constexpr double kDictionarySeconds = 8.0;  // of a mode; it is not asked again after so many

enum class Mode { kCurrent, kWhole, kBeginnings };
struct NamedMode {
  Mode mode;
  const char* name;
};
constexpr NamedMode kModes[] = {{Mode::kCurrent, "current items"},
                                {Mode::kWhole, "future items, whole history"},
                                {Mode::kBeginnings, "future items, all beginnings"}};

// --- What is asked -------------------------------------------------------------------------------

struct Subject {
  std::string name;
  Model model;
  std::vector<engine::History> histories;
  std::vector<Sequence> sequences;  // the same histories
};

void addHistories(const SequenceDatabase& database, Subject& subject) {
  for (std::size_t c = 0; c < database.customers(); ++c) {
    engine::History& history = subject.histories.emplace_back();
    Sequence& sequence = subject.sequences.emplace_back();
    for (std::size_t s = database.firstSet(c); s < database.firstSet(c + 1); ++s) {
      const SequenceDatabase::Items items = database.items(s);
      history.addSet(items);
      TimedItemSet set;
      for (const std::int32_t item : items) set.AddItem(item);
      sequence.AddTimedItemSet(&set);
    }
  }
}

Subject readRetail(const fs::path& model, const fs::path& histories) {
  Subject subject;
  subject.name = "retail";
  subject.model = readScoredModel(model.string());
  addHistories(readLog(histories.string(), {}).database, subject);
  return subject;
}

Subject mineLog(const std::string& name, const fs::path& path) {
  Subject subject;
  subject.name = name;
  LogOptions reading;
  reading.format = LogFormat::kSpmf;
  const TransactionLog log = readLog(path.string(), reading);
  MinerOptions options;
  options.minCustomers = kSupport;
  const PatternTree tree = mineExactly(log.database, options);
  subject.model.lattice = std::make_unique<Lattice>(settingsFor(tree));
  fillDictionary(tree, static_cast<std::int32_t>(log.database.customers()), options,
                 *subject.model.lattice);
  if (!subject.model.lattice->buildLattice().IsOK())
    throw std::runtime_error("the lattice cannot be linked");
  addHistories(log.database, subject);
  return subject;
}

// --- Who is asked --------------------------------------------------------------------------------

// Answers history k.
using Ask = std::function<void(std::size_t k, Answers& out)>;

struct Matchers {
  explicit Matchers(const Subject& asked)
      : subject(asked),
        lattice(engine::compile(*asked.model.lattice)),
        recommender(lattice),
        current(*asked.model.lattice, PrefixTree::Place::kJoinsLastSet),
        future(*asked.model.lattice, PrefixTree::Place::kOpensNewSet) {}

  void askDictionary(Mode mode, std::size_t k, Answers& out) const {
    const Lattice& dictionary = *subject.model.lattice;
    if (mode == Mode::kCurrent)
      dictionary.GetCurrentItems(out, &subject.sequences[k], kMaxCount);
    else
      dictionary.GetFutureItems(out, &subject.sequences[k], kMaxCount, mode == Mode::kWhole);
  }
  void askTree(Mode mode, std::size_t k, PrefixTree::Scratch& scratch, Answers& out) const {
    const engine::History& history = subject.histories[k];
    if (mode == Mode::kCurrent)
      current.endingInLastSet(history, kMaxCount, scratch, out);
    else if (mode == Mode::kWhole)
      future.endingInLastSet(history, kMaxCount, scratch, out);
    else
      future.anywhere(history, kMaxCount, scratch, out);
  }
  void askEngine(Mode mode, std::size_t k, engine::Workspace& workspace, Answers& out) const {
    const engine::History& history = subject.histories[k];
    if (mode == Mode::kCurrent)
      recommender.currentItems(history, kMaxCount, workspace, out);
    else
      recommender.futureItems(history, kMaxCount, mode == Mode::kWhole, workspace, out);
  }

  const Subject& subject;
  const engine::CompiledLattice lattice;
  const engine::Recommender recommender;
  const PrefixTree current;
  const PrefixTree future;
};

// Asks histories begin .. end - 1; what the items of the answers add up to.
template <class AskOne>
std::uint64_t askAll(std::size_t begin, std::size_t end, AskOne ask) {
  Answers out;
  std::uint64_t sum = 0;
  for (std::size_t k = begin; k < end; ++k) {
    out.clear();
    ask(k, out);
    for (const SeqConsequentDescriptor& answer : out)
      sum += static_cast<std::uint64_t>(answer.GetItem());
  }
  return sum;
}

// What is known beforehand of a history's answers: these, by item.
using Known = std::vector<Answers>;

Known answersByItem(const Matchers& matchers, Mode mode) {
  engine::Workspace workspace;
  Known known(matchers.subject.histories.size());
  for (std::size_t k = 0; k < known.size(); ++k) {
    matchers.askEngine(mode, k, workspace, known[k]);
    std::sort(known[k].begin(), known[k].end(),
              [](const auto& a, const auto& b) { return a.GetItem() < b.GetItem(); });
  }
  return known;
}

// Looks up the items of the history, and writes the answers in their order.
void lookAndRank(const engine::CompiledLattice& lattice, const engine::History& history,
                 const Answers& answers, Answers& out) {
  std::size_t known = 0;
  for (std::size_t k = 0; k < history.sets(); ++k)
    for (const std::int32_t number : history.set(k)) known += lattice.find(number) < engine::kNone;
  if (known == 0) return;  // no answer, unless the history is empty; and so the look-ups count
  struct Key {
    double confidence;
    std::size_t index;  // the greater, the greater the item
  };
  std::array<Key, kMaxCount> keys;
  for (std::size_t k = 0; k < answers.size(); ++k) {
    const Key key{answers[k].GetConfidence(), k};
    std::size_t place = k;
    for (; place > 0 && keys[place - 1].confidence <= key.confidence; --place)
      keys[place] = keys[place - 1];
    keys[place] = key;
  }
  for (std::size_t k = 0; k < answers.size(); ++k) out.push_back(answers[keys[k].index]);
}

// --- Figures -------------------------------------------------------------------------------------

struct Timing {
  const char* name;
  std::function<std::uint64_t()> run;
  double mostSeconds;  // not run again after so many
  std::vector<double> seconds;
  double total = 0.0;
  std::uint64_t checksum = 0;
};

void measure(std::vector<Timing>& timings, int rounds) {
  for (int round = 0; round < rounds; ++round)
    for (Timing& timing : timings) {
      if (timing.total > timing.mostSeconds) continue;
      timing.seconds.push_back(bench::secondsOf([&] { timing.checksum = timing.run(); }));
      timing.total += timing.seconds.back();
    }
}

double medianOf(std::vector<double> seconds) {
  std::sort(seconds.begin(), seconds.end());
  return (seconds[(seconds.size() - 1) / 2] + seconds[seconds.size() / 2]) / 2.0;
}

void print(const Timing& timing, std::size_t histories) {
  const double median = medianOf(timing.seconds);
  const auto [least, largest] = std::minmax_element(timing.seconds.begin(), timing.seconds.end());
  std::printf("  %-22s %12.3f us  (%2zu, %3.0f %%)  checksum %ju\n", timing.name,
              median / static_cast<double>(histories) * 1e6, timing.seconds.size(),
              (*largest - *least) / median * 100.0, static_cast<std::uintmax_t>(timing.checksum));
}

bool isSame(const Answers& a, const Answers& b) {
  const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](const auto& x, const auto& y) {
    return x.GetItem() == y.GetItem() && bits(x.GetConfidence()) == bits(y.GetConfidence()) &&
           bits(x.GetSupport()) == bits(y.GetSupport()) && bits(x.GetCause()) == bits(y.GetCause());
  });
}

// Histories whose answers are not the dictionary's, of the recommender and of the tree.
std::pair<std::size_t, std::size_t> differences(const Matchers& matchers, Mode mode) {
  engine::Workspace workspace;
  PrefixTree::Scratch scratch;
  Answers expected;
  Answers answers;
  std::pair<std::size_t, std::size_t> differ;
  for (std::size_t k = 0; k < matchers.subject.histories.size(); ++k) {
    expected.clear();
    matchers.askDictionary(mode, k, expected);
    answers.clear();
    matchers.askEngine(mode, k, workspace, answers);
    if (!isSame(expected, answers)) ++differ.first;
    answers.clear();
    matchers.askTree(mode, k, scratch, answers);
    if (!isSame(expected, answers)) ++differ.second;
  }
  return differ;
}

std::vector<Timing> timingsOf(const Matchers& matchers, Mode mode) {
  const std::size_t count = matchers.subject.histories.size();
  const auto dictionary = [&matchers, mode, count] {
    return askAll(0, count,
                  [&](std::size_t k, Answers& out) { matchers.askDictionary(mode, k, out); });
  };
  const auto tree = [&matchers, mode, count, scratch = PrefixTree::Scratch()]() mutable {
    return askAll(0, count,
                  [&](std::size_t k, Answers& out) { matchers.askTree(mode, k, scratch, out); });
  };
  const auto one = [&matchers, mode, count, workspace = engine::Workspace()]() mutable {
    return askAll(0, count, [&](std::size_t k, Answers& out) {
      matchers.askEngine(mode, k, workspace, out);
    });
  };
  const auto two = [&matchers, mode, count, a = engine::Workspace(),
                    b = engine::Workspace()]() mutable {
    std::atomic<std::size_t> next = 0;
    const auto work = [&](engine::Workspace& workspace) {
      std::uint64_t sum = 0;
      for (std::size_t begin = next.fetch_add(kBlock); begin < count;
           begin = next.fetch_add(kBlock))
        sum += askAll(begin, std::min(begin + kBlock, count), [&](std::size_t k, Answers& out) {
          matchers.askEngine(mode, k, workspace, out);
        });
      return sum;
    };
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    {
      const std::jthread other([&] { second = work(b); });
      first = work(a);
    }
    return first + second;
  };
  const auto floor = [&matchers, count, known = answersByItem(matchers, mode)] {
    return askAll(0, count, [&](std::size_t k, Answers& out) {
      lookAndRank(matchers.lattice, matchers.subject.histories[k], known[k], out);
    });
  };
  constexpr double kNoEnd = 1e9;
  return {{"dictionary", dictionary, kDictionarySeconds, {}},
          {"prefix tree", tree, kNoEnd, {}},
          {"engine, 1 thread", one, kNoEnd, {}},
          {"engine, 2 threads", two, kNoEnd, {}},
          {"look and rank", floor, kNoEnd, {}}};
}

// Whether the recommender answered as the dictionary did.
bool compare(const Matchers& matchers, const NamedMode& mode, int rounds) {
  const std::size_t count = matchers.subject.histories.size();
  std::vector<Timing> timings = timingsOf(matchers, mode.mode);
  measure(timings, rounds);
  const auto [engineDiffers, treeDiffers] = differences(matchers, mode.mode);

  std::printf("%s: %s\n", matchers.subject.name.c_str(), mode.name);
  for (const Timing& timing : timings) print(timing, count);
  const double engineSeconds = medianOf(timings[2].seconds);
  std::printf(
      "  ratios to the engine on 1 thread: dictionary %.1f, prefix tree %.2f; "
      "2 threads are %.2f times as fast\n"
      "  prefix tree to look and rank: %.2f\n",
      medianOf(timings[0].seconds) / engineSeconds, medianOf(timings[1].seconds) / engineSeconds,
      engineSeconds / medianOf(timings[3].seconds),
      medianOf(timings[1].seconds) / medianOf(timings[4].seconds));
  std::printf("  differ from the dictionary: engine %zu, prefix tree %zu of %zu histories\n",
              engineDiffers, treeDiffers, count);
  std::fflush(stdout);
  return engineDiffers == 0;
}

bool run(const Subject& subject, int rounds) {
  const Matchers matchers(subject);
  std::printf("%s: %d sequences, %zu histories, prefix trees of %zu and %zu nodes\n",
              subject.name.c_str(), subject.model.lattice->NumberOfSequences(),
              subject.histories.size(), matchers.current.nodeCount(), matchers.future.nodeCount());
  bool isRight = true;
  for (const NamedMode& mode : kModes) isRight = compare(matchers, mode, rounds) && isRight;
  return isRight;
}

// Runs on what `make` makes of files that are there.
template <class Make>
bool runOn(const std::vector<fs::path>& files, int rounds, Make make) {
  for (const fs::path& file : files)
    if (!fs::exists(file)) {
      std::fprintf(stderr, "left out: no %s\n", file.c_str());
      return true;
    }
  return run(make(), rounds);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const fs::path folder = argc > 1 ? argv[1] : ORBSEQ_DATA_DIR;
    const int rounds = argc > 2 ? std::max(std::atoi(argv[2]), 1) : 10;
    const fs::path model = folder / "retail" / "lattice.xml";
    const fs::path histories = folder / "retail" / "histories.csv";
    const fs::path log = folder / "logs" / "BMS1.spmf.gz";
    bool isRight = runOn({model, histories}, rounds, [&] { return readRetail(model, histories); });
    isRight = runOn({log}, rounds, [&] { return mineLog("BMS1", log); }) && isRight;
    return isRight ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

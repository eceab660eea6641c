// How long the dictionary's own queries take, in a program that needs nothing but the rooms below
// io, so that bench/baseline.sh can build it against an earlier version of them.
//
//   dictionaryQueries NAME SEQUENCES CUSTOMERS HISTORIES ROUNDS
//
// SEQUENCES is a file of lines "1 2 -1 3 -1 #SUP: 120": items, -1 behind each item set, and the
// customers that hold the sequence; CUSTOMERS the number of all customers; HISTORIES a file of
// lines "1 2 -1 3 -1 -2". Output is as of queries_bench: for each kind of query the median of
// ROUNDS in microseconds a history, and what the items of a round's answers add up to.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "lattice/SeqDictionarySettings.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/TimedItemSet.h"

namespace {

using namespace SEQUENCE_NAMESPACE_800;

constexpr int kMaxCount = 20;

struct Dictionary final : SequenceDictionary {
  using SequenceDictionary::SequenceDictionary;
};

struct Line {
  std::vector<std::vector<int>> sets;
  int items = 0;
  int count = 0;  // behind "#SUP: "
};

Line parse(const std::string& text) {
  Line line;
  std::vector<int> set;
  const char* at = text.c_str();
  for (char* end = nullptr;; at = end) {
    const long number = std::strtol(at, &end, 10);
    if (end == at || number == -2) break;
    if (number >= 0) {
      set.push_back(static_cast<int>(number));
      ++line.items;
      continue;
    }
    line.sets.push_back(set);
    set.clear();
  }
  const std::size_t count = text.find("#SUP: ");
  if (count != std::string::npos) line.count = std::atoi(text.c_str() + count + 6);
  return line;
}

std::vector<Line> read(const char* path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(std::string("cannot open ") + path);
  std::vector<Line> lines;
  for (std::string text; std::getline(file, text);) lines.push_back(parse(text));
  return lines;
}

// A level for each size, and an empty one, whose tables hold the sequences without growing.
SeqDictionarySettings settingsFor(const std::vector<Line>& lines) {
  int largest = 0;
  for (const Line& line : lines) largest = std::max(largest, line.items);
  SeqDictionarySettings settings;
  settings.numLevels = largest + 2;
  const int buckets = static_cast<int>(lines.size()) + 1;
  for (std::size_t k = 1; k < settings.levelTableSize.size(); ++k)
    settings.levelTableSize[k] = buckets;
  settings.upperTableSize = buckets;
  return settings;
}

void store(Dictionary& dictionary, const Line& line) {
  std::vector<std::vector<int>> sets;
  std::vector<const int*> pointers;
  for (const std::vector<int>& items : line.sets) {
    sets.push_back({static_cast<int>(items.size())});
    sets.back().insert(sets.back().end(), items.begin(), items.end());
  }
  for (const std::vector<int>& set : sets) pointers.push_back(set.data());
  const SequenceCounter counter(0, line.count, nullptr);
  dictionary.addSequence(pointers.data(), static_cast<int>(pointers.size()), &counter);
}

Sequence historyOf(const Line& line) {
  Sequence history;
  for (const std::vector<int>& items : line.sets) {
    TimedItemSet set;
    for (const int item : items) set.AddItem(item);
    history.AddTimedItemSet(&set);
  }
  return history;
}

template <class Ask>
void measure(const std::string& title, const std::vector<Sequence>& histories, int rounds,
             Ask ask) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> seconds;
  std::uint64_t sum = 0;
  std::vector<SeqConsequentDescriptor> out;
  for (int round = 0; round < rounds; ++round) {
    sum = 0;
    const auto begin = Clock::now();
    for (const Sequence& history : histories) {
      out.clear();
      ask(history, out);
      for (const SeqConsequentDescriptor& answer : out)
        sum += static_cast<std::uint64_t>(answer.GetItem());
    }
    seconds.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
  }
  std::sort(seconds.begin(), seconds.end());
  std::printf("%s\n  %-22s %12.3f us  checksum %ju\n", title.c_str(), "baseline dictionary",
              seconds[seconds.size() / 2] / static_cast<double>(histories.size()) * 1e6,
              static_cast<std::uintmax_t>(sum));
  std::fflush(stdout);
}

void run(const std::string& name, const char* sequences, int customers, const char* histories,
         int rounds) {
  const std::vector<Line> lines = read(sequences);
  Dictionary dictionary(settingsFor(lines));
  Line all;
  all.count = customers;
  store(dictionary, all);
  for (const Line& line : lines) store(dictionary, line);
  if (!dictionary.buildLattice().IsOK()) throw std::runtime_error("the lattice cannot be linked");
  std::vector<Sequence> asked;
  for (const Line& line : read(histories)) asked.push_back(historyOf(line));

  measure(name + ": current items", asked, rounds, [&](const Sequence& history, auto& out) {
    dictionary.GetCurrentItems(out, &history, kMaxCount);
  });
  measure(name + ": future items, whole history", asked, rounds,
          [&](const Sequence& history, auto& out) {
            dictionary.GetFutureItems(out, &history, kMaxCount, true);
          });
  measure(name + ": future items, all beginnings", asked, rounds,
          [&](const Sequence& history, auto& out) {
            dictionary.GetFutureItems(out, &history, kMaxCount, false);
          });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fprintf(stderr, "dictionaryQueries NAME SEQUENCES CUSTOMERS HISTORIES ROUNDS\n");
    return 1;
  }
  try {
    run(argv[1], argv[2], std::atoi(argv[3]), argv[4], std::max(std::atoi(argv[5]), 1));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}

// How long it takes to mine a log, as a whole job and in its parts, and how much memory.
//
//   miners_bench [FOLDER [ROUNDS]] [--only TEXT] [--json FILE]
//
// FOLDER holds the logs, NAME.spmf.gz each; a case without its log is left out, and with --only so
// is every one whose name, such as BMS1@36, lacks TEXT. Every step runs in a process of its own,
// ROUNDS times (3), the steps of a case in turn; the table shows the median time, its ratio to that
// of another step, and the largest peak of memory.
//
//   whole    a decompressed log is read, mined by the exact miner, and what was found written to a
//            file, a sequence a line: "1 2 -1 3 -1 #SUP: 5"
//   parse    the log is read
//   mine     what was read, and is already in memory, is mined; "10 x" has every customer ten times
//            and asks for ten times the support, so that the same sequences are found
//   fill     what was mined, and is already in memory, is stored in a dictionary
//   link     buildLattice() of that dictionary

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/steps.h"
#include "io/LogReader.h"
#include "io/Model.h"
#include "io/TextSource.h"
#include "mining/ExactMiner.h"
#include "mining/fillDictionary.h"

namespace {

using namespace orbseq;
using bench::secondsOf;
using bench::Step;
namespace fs = std::filesystem;

struct Case {
  const char* log;
  std::int32_t support;  // customers
};

constexpr std::array<Case, 7> kCases = {{{"online_retail", 100},
                                         {"BMS1", 40},
                                         {"BMS1", 36},
                                         {"SIGN", 73},
                                         {"MSNBC", 400},
                                         {"BIBLE", 1000},
                                         {"Kosarak25k", 125}}};
constexpr int kTimes = 10;  // the larger log

std::string nameOf(const Case& one) {
  return std::string(one.log) + "@" + std::to_string(one.support);
}

// --- Files ---------------------------------------------------------------------------------------

// A file that is written or read in large blocks; what fails throws.
class File {
 public:
  File(const std::string& path, const char* mode) : file_(std::fopen(path.c_str(), mode)) {
    if (!file_) throw std::runtime_error("cannot open " + path);
  }

  template <class Value>
  void write(const Value* values, std::size_t count) {
    if (std::fwrite(values, sizeof(Value), count, file_.get()) != count)
      throw std::runtime_error("cannot write");
  }
  template <class Value>
  bool read(Value& value) {
    return std::fread(&value, sizeof value, 1, file_.get()) == 1;
  }
  void finish() {
    if (std::fflush(file_.get()) != 0) throw std::runtime_error("cannot write");
  }

 private:
  struct Close {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> file_;
};

// Where the inputs of a case's steps are, each in the form that a step starts from.
struct Inputs {
  std::string text;  // the log, decompressed
  std::string
      database;  // as read: items, kSetEnd behind each set, kCustomerEnd behind each customer
  std::string patterns;  // as mined: customers, the tree's nodes
  std::string output;    // what the whole job writes
};

constexpr std::int32_t kSetEnd = -1;
constexpr std::int32_t kCustomerEnd = -2;

void decompress(const std::string& from, const std::string& to) {
  TextSource source(from);
  File file(to, "wb");
  for (std::string_view block = source.next(); !block.empty(); block = source.next())
    file.write(block.data(), block.size());
  file.finish();
}

TransactionLog parsed(const std::string& text) {
  LogOptions options;
  options.format = LogFormat::kSpmf;
  return readLog(text, options);
}

void saveDatabase(const SequenceDatabase& database, const std::string& path) {
  File file(path, "wb");
  for (std::size_t c = 0; c < database.customers(); ++c) {
    for (std::size_t s = database.firstSet(c); s < database.firstSet(c + 1); ++s) {
      const SequenceDatabase::Items items = database.items(s);
      file.write(items.data(), items.size());
      file.write(&kSetEnd, 1);
    }
    file.write(&kCustomerEnd, 1);
  }
  file.finish();
}

// With every customer `times` times. Sets have their numbers as times.
SequenceDatabase loadDatabase(const std::string& path, int times) {
  SequenceDatabase database;
  for (int k = 0; k < times; ++k) {
    File file(path, "rb");
    double time = 0.0;
    bool isInCustomer = false;
    bool isInSet = false;
    for (std::int32_t value = 0; file.read(value);) {
      if (!isInCustomer) database.beginCustomer();
      isInCustomer = value != kCustomerEnd;
      if (value >= 0 && !isInSet) database.beginSet(time++);
      isInSet = value >= 0;
      if (isInSet) database.addItem(value);
    }
  }
  database.finish();
  return database;
}

struct Patterns {
  std::int32_t customers = 0;  // of the log
  PatternTree tree;
};

void savePatterns(const Patterns& patterns, const std::string& path) {
  File file(path, "wb");
  file.write(&patterns.customers, 1);
  file.write(patterns.tree.nodes.data(), patterns.tree.nodes.size());
  file.finish();
}

std::uintmax_t sizeOfPatterns(const std::string& path) {
  return (fs::file_size(path) - sizeof(std::int32_t)) / sizeof(PatternNode);
}

Patterns loadPatterns(const std::string& path) {
  Patterns patterns;
  patterns.tree.nodes.reserve(sizeOfPatterns(path));
  File file(path, "rb");
  file.read(patterns.customers);
  for (PatternNode node; file.read(node);) patterns.tree.nodes.push_back(node);
  return patterns;
}

// --- Steps ---------------------------------------------------------------------------------------

void appendNumber(std::string& out, std::int32_t value) {
  char digits[16];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

// The text of a node is that of its parent and the new item.
void writeLines(const PatternTree& tree, const std::string& path) {
  constexpr std::size_t kBlock = std::size_t{1} << 16U;
  File file(path, "wb");
  std::string block;
  std::string line;
  std::array<std::size_t, MinerOptions::kMostItems + 1> ends{};  // of the line, by depth
  for (const PatternNode& node : tree.nodes) {
    const auto depth = static_cast<std::size_t>(node.depth);
    line.resize(ends[depth - 1]);
    if (depth > 1) line += node.opensSet ? " -1 " : " ";
    appendNumber(line, node.item);
    ends[depth] = line.size();
    block += line;
    block += " -1 #SUP: ";
    appendNumber(block, node.count);
    block += '\n';
    if (block.size() < kBlock) continue;
    file.write(block.data(), block.size());
    block.clear();
  }
  file.write(block.data(), block.size());
  file.finish();
}

MinerOptions optionsOf(std::int32_t support, int threads) {
  MinerOptions options;
  options.minCustomers = support;
  options.threads = threads;
  return options;
}

double wholeJob(const Inputs& inputs, std::int32_t support, int threads) {
  return secondsOf([&] {
    const TransactionLog log = parsed(inputs.text);
    writeLines(mineExactly(log.database, optionsOf(support, threads)), inputs.output);
  });
}

double mine(const Inputs& inputs, std::int32_t support, int threads, int times) {
  const SequenceDatabase database = loadDatabase(inputs.database, times);
  return secondsOf([&] { mineExactly(database, optionsOf(times * support, threads)); });
}

enum class Part { kFill, kLink };

double fillAndLink(const Inputs& inputs, std::int32_t support, Part part) {
  const Patterns patterns = loadPatterns(inputs.patterns);
  std::unique_ptr<Lattice> lattice;
  const double filling = secondsOf([&] {
    lattice = std::make_unique<Lattice>(settingsFor(patterns.tree));
    fillDictionary(patterns.tree, patterns.customers, optionsOf(support, 1), *lattice);
  });
  if (part == Part::kFill) return filling;
  bool isLinked = false;
  const double linking = secondsOf([&] { isLinked = lattice->buildLattice().IsOK(); });
  if (!isLinked) throw std::runtime_error("the lattice cannot be linked");
  return linking;
}

// --- A case --------------------------------------------------------------------------------------

// In a process of its own: what is written here is all that the steps take over.
void prepare(const std::string& log, const Inputs& inputs, std::int32_t support) {
  decompress(log, inputs.text);
  const TransactionLog read = parsed(inputs.text);
  saveDatabase(read.database, inputs.database);
  Patterns patterns;
  patterns.customers = static_cast<std::int32_t>(read.database.customers());
  patterns.tree = mineExactly(read.database, optionsOf(support, 2));
  savePatterns(patterns, inputs.patterns);
}

// The steps of a case, each with the index of the one that it is compared to.
constexpr std::array<std::size_t, 9> kReferences = {0, 0, 0, 0, 3, 3, 5, 3, 3};

std::vector<Step> stepsOf(const Inputs& inputs, std::int32_t support) {
  const auto whole = [=](int threads) {
    return [=] { return wholeJob(inputs, support, threads); };
  };
  const auto mining = [=](int threads, int times) {
    return [=] { return mine(inputs, support, threads, times); };
  };
  const auto storing = [=](Part part) {
    return [=] { return fillAndLink(inputs, support, part); };
  };
  const auto parsing = [=] { return secondsOf([&] { parsed(inputs.text); }); };
  return {{"whole, 1 thread", whole(1), {}},
          {"whole, 2 threads", whole(2), {}},
          {"parse", parsing, {}},
          {"mine, 1 thread", mining(1, 1), {}},
          {"mine, 2 threads", mining(2, 1), {}},
          {"mine 10 x, 1 thread", mining(1, kTimes), {}},
          {"mine 10 x, 2 threads", mining(2, kTimes), {}},
          {"fill", storing(Part::kFill), {}},
          {"link", storing(Part::kLink), {}}};
}

double ratioOf(const std::vector<Step>& steps, std::size_t k) {
  return medianSeconds(steps[k]) / medianSeconds(steps[kReferences[k]]);
}

void printTable(const std::string& name, std::uintmax_t sequences, const std::vector<Step>& steps) {
  std::printf("\n%s: %ju sequences\n", name.c_str(), sequences);
  std::printf("%-22s %10s %8s of %-20s %10s\n", "step", "seconds", "ratio", "", "peak MiB");
  for (std::size_t k = 0; k < steps.size(); ++k)
    std::printf("%-22s %10.4f %8.2f    %-20s %10.1f\n", steps[k].name.c_str(),
                medianSeconds(steps[k]), ratioOf(steps, k), steps[kReferences[k]].name.c_str(),
                peakMebibytes(steps[k]));
  std::fflush(stdout);
}

// Names hold nothing that JSON would want escaped.
std::string jsonOf(const std::string& name, std::uintmax_t sequences,
                   const std::vector<Step>& steps) {
  std::string text =
      "{\"case\": \"" + name + "\", \"sequences\": " + std::to_string(sequences) + ", \"steps\": [";
  for (std::size_t k = 0; k < steps.size(); ++k) {
    text +=
        std::string(k > 0 ? "," : "") + "\n  {\"step\": \"" + steps[k].name + "\", \"seconds\": [";
    for (std::size_t r = 0; r < steps[k].samples.size(); ++r)
      text += (r > 0 ? ", " : "") + std::to_string(steps[k].samples[r].seconds);
    text += "], \"median\": " + std::to_string(medianSeconds(steps[k])) +
            ", \"peak_mib\": " + std::to_string(peakMebibytes(steps[k])) + "}";
  }
  return text + "]}";
}

// The case's figures as JSON.
std::string run(const Case& one, const fs::path& log, const fs::path& folder, int rounds) {
  const auto in = [&](const char* name) { return (folder / name).string(); };
  const Inputs inputs = {in("log.spmf"), in("database"), in("patterns"), in("output")};
  bench::measured([&] {
    prepare(log.string(), inputs, one.support);
    return 0.0;
  });
  std::vector<Step> steps = stepsOf(inputs, one.support);
  bench::measure(steps, rounds);
  const std::uintmax_t sequences = sizeOfPatterns(inputs.patterns);
  printTable(nameOf(one), sequences, steps);
  return jsonOf(nameOf(one), sequences, steps);
}

struct Arguments {
  fs::path logs = fs::path(ORBSEQ_DATA_DIR) / "logs";
  int rounds = 3;
  std::string only;
  std::string json;  // a path; empty: none
};

Arguments argumentsOf(int argc, char** argv) {
  Arguments arguments;
  int plain = 0;
  for (int k = 1; k < argc; ++k) {
    const std::string_view text = argv[k];
    const bool hasValue = k + 1 < argc;
    if (text == "--only" && hasValue)
      arguments.only = argv[++k];
    else if (text == "--json" && hasValue)
      arguments.json = argv[++k];
    else if (plain++ == 0)
      arguments.logs = text;
    else
      arguments.rounds = std::max(std::atoi(argv[k]), 1);
  }
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Arguments arguments = argumentsOf(argc, argv);
    const fs::path folder =
        fs::temp_directory_path() / ("orbseq-miners-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    std::string json;
    for (const Case& one : kCases) {
      const fs::path log = arguments.logs / (std::string(one.log) + ".spmf.gz");
      if (nameOf(one).find(arguments.only) == std::string::npos) continue;
      if (!fs::exists(log)) {
        std::fprintf(stderr, "%s is left out: no log at %s\n", nameOf(one).c_str(), log.c_str());
        continue;
      }
      json += (json.empty() ? "[" : ",\n") + run(one, log, folder, arguments.rounds);
    }
    fs::remove_all(folder);
    if (arguments.json.empty()) return 0;
    json += json.empty() ? "[]\n" : "]\n";
    File file(arguments.json, "wb");
    file.write(json.data(), json.size());
    file.finish();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}

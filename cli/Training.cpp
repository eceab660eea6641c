#include "cli/Training.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <span>

#include "cli/StatusLine.h"
#include "cli/exitStatus.h"
#include "cli/parallel.h"
#include "io/ItemNames.h"
#include "io/process.h"
#include "io/statusError.h"
#include "lattice/integerThreshold.h"
#include "mining/CarmaMiner.h"
#include "mining/ExactMiner.h"
#include "mining/SequenceDatabase.h"
#include "mining/fillDictionary.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::toIntegerThreshold;

std::vector<std::int32_t> itemsNamed(const char* option, const std::vector<std::string>& texts,
                                     const ItemNames& names) {
  std::vector<std::int32_t> items;
  for (const std::string& text : texts) {
    const auto item = names.find(text);
    if (!item)
      throw UsageError(std::string(option) + ": " + OrbScore::QuErrorFormater::Quote(text) +
                       " is neither a label nor an item from 0 to 2147483647");
    items.push_back(*item);
  }
  return items;
}

std::vector<std::span<const std::int32_t>> setsOf(const SequenceDatabase& database,
                                                  std::size_t customer) {
  std::vector<std::span<const std::int32_t>> sets;
  for (std::size_t set = database.firstSet(customer); set < database.firstSet(customer + 1); ++set)
    sets.push_back(database.items(set));
  return sets;
}

std::unique_ptr<Lattice> trainExactly(const SequenceDatabase& database,
                                      const MinerOptions& options) {
  const PatternTree tree = mineExactly(database, options);
  auto lattice = std::make_unique<Lattice>(settingsFor(tree));
  fillDictionary(tree, static_cast<std::int32_t>(database.customers()), options, *lattice);
  return lattice;
}

std::unique_ptr<Lattice> trainByCarma(const SequenceDatabase& database, const MinerOptions& options,
                                      bool onePass) {
  if (options.minCustomers < options.maxItems)
    throw UsageError(
        fmt::format("--algorithm carma wants a support of at least --max-items "
                    "customers: {} is below {}",
                    options.minCustomers, options.maxItems));
  SeqDictionarySettings settings;
  settings.numLevels = options.maxItems + 1;
  auto lattice = std::make_unique<Lattice>(settings);
  const double support =
      static_cast<double>(options.minCustomers) / static_cast<double>(database.customers());
  CarmaMiner miner(*lattice, std::min(support, 1.0), options);
  for (std::size_t c = 0; c < database.customers(); ++c) miner.add(setsOf(database, c));
  if (onePass) {
    miner.finishByBounds();
    return lattice;
  }
  miner.beginSecondPass();
  for (std::size_t c = 0; c < database.customers() && miner.recount(setsOf(database, c));) ++c;
  miner.finishSecondPass();
  return lattice;
}

}  // namespace

const char* const kTrainingHelp =
    R"help(--min-support below 1 is a share of the customers, from 1 up a number of them.
--algorithm exact finds every sequence by growing them. carma counts in the lattice itself, customer by
customer, with a second pass that makes the counts exact; with --one-pass the counts are upper bounds
instead.)help";

CLI::Option* addTrainingOptions(CLI::App& command, Training& training) {
  CLI::Option* const support =
      command
          .add_option("-s,--min-support", training.minSupport,
                      "Least support: below 1 a share of the customers, from 1 up a number of them")
          ->check(CLI::PositiveNumber.description(""))
          ->type_name("X");
  const auto length = [&command](const char* name, std::int32_t& value, const char* text) {
    command.add_option(name, value, text)
        ->check(CLI::Range(1, MinerOptions::kMostItems).description(""))
        ->type_name("N")
        ->capture_default_str();
  };
  length("--max-items", training.maxItems, "Most items of a sequence, 1 to 31");
  length("--max-sets", training.maxSets, "Most item sets of a sequence, 1 to 31");
  length("--max-items-per-set", training.maxItemsPerSet, "Most items of an item set, 1 to 31");
  const auto gap = [&command](const char* name, double& value, const char* text) {
    command.add_option(name, value, text)
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("T");
  };
  gap("--min-gap", training.minGap, "Least time between item sets that follow each other");
  gap("--max-gap", training.maxGap, "Most time between item sets that follow each other");
  gap("--max-span", training.maxSpan, "Most time from the first item set to the last");
  const auto items = [&command](const char* name, std::vector<std::string>& value,
                                const char* text) {
    command.add_option(name, value, text)->type_name("ITEM")->allow_extra_args(false);
  };
  items("--include", training.include,
        "Look at this item alone: a number, a label or its first word; may stand often");
  items("--exclude", training.exclude, "Leave out this item; may stand often");
  command.add_option("--algorithm", training.algorithm, "exact or carma")
      ->check(CLI::IsMember({"exact", "carma"}).description(""))
      ->type_name("NAME")
      ->capture_default_str();
  command.add_flag("--one-pass", training.onePass, "With carma: upper bounds, no second pass");
  command.add_option("--threads", training.threads, "Threads that work; 0: all cores")
      ->check(CLI::Range(0, 1024).description(""))
      ->type_name("N")
      ->capture_default_str();
  command.add_option("--max-memory", training.maxMemory, "Most bytes that mining takes")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("BYTES");
  command.add_option("--max-seconds", training.maxSeconds, "Most seconds that mining takes")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("S");
  return support;
}

void checkTraining(const Training& training) {
  if (training.onePass && training.algorithm != "carma")
    throw UsageError("--one-pass wants --algorithm carma");
  MinerOptions bounds;
  bounds.minGap = training.minGap;
  bounds.maxGap = training.maxGap;
  bounds.maxSpan = training.maxSpan;
  if (training.algorithm == "carma" && bounds.hasTimeBounds())
    throw UsageError("--algorithm carma knows no --min-gap, --max-gap and --max-span");
}

MinerOptions minerOptionsOf(const Training& training, std::size_t customers,
                            const ItemLabelMap& labels) {
  MinerOptions miner;
  const double least = training.minSupport < 1.0
                           ? training.minSupport * static_cast<double>(customers)
                           : training.minSupport;
  miner.minCustomers = static_cast<std::int32_t>(std::clamp<std::int64_t>(
      toIntegerThreshold(least), 1, std::numeric_limits<std::int32_t>::max()));
  miner.maxItems = training.maxItems;
  miner.maxSets = training.maxSets;
  miner.maxItemsPerSet = training.maxItemsPerSet;
  const ItemNames names(labels);
  miner.include = itemsNamed("--include", training.include, names);
  miner.exclude = itemsNamed("--exclude", training.exclude, names);
  miner.minGap = training.minGap;
  miner.maxGap = training.maxGap;
  miner.maxSpan = training.maxSpan;
  miner.memoryBytes = training.maxMemory;
  miner.seconds = training.maxSeconds;
  miner.threads = threadsOf(training.threads);
  return miner;
}

std::unique_ptr<Lattice> trainLattice(const Training& training, const MinerOptions& options,
                                      const SequenceDatabase& database, bool showsProgress) {
  StatusLine line(showsProgress);
  MinerOptions miner = options;
  miner.progress = [&](const MinerStatus& status) {
    line.show([&] {
      return fmt::format("mining {} customers: {:.0f} %, {} sequences, {:.0f} MiB",
                         database.customers(), status.done * 100.0, status.sequences,
                         static_cast<double>(status.memoryBytes) / 1048576.0);
    });
    return !interrupted();
  };
  auto lattice = training.algorithm == "carma" ? trainByCarma(database, miner, training.onePass)
                                               : trainExactly(database, miner);
  if (interrupted()) throw Interrupted();
  line.show(
      [&lattice] { return fmt::format("linking {} sequences", lattice->NumberOfSequences()); });
  throwIfError(lattice->buildLattice());
  if (interrupted()) throw Interrupted();
  return lattice;
}

}  // namespace orbseq

#include "cli/train.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>
#include <span>
#include <thread>
#include <utility>
#include <vector>

#include "cli/ModelOptions.h"
#include "cli/ModelSummary.h"
#include "cli/Progress.h"
#include "cli/messages.h"
#include "io/LogReader.h"
#include "io/ModelFile.h"
#include "io/modelLabels.h"
#include "io/process.h"
#include "io/statusError.h"
#include "lattice/integerThreshold.h"
#include "mining/CarmaMiner.h"
#include "mining/ExactMiner.h"
#include "mining/fillDictionary.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::toIntegerThreshold;

const char* const kFooter =
    R"help(Logs (each may be compressed with gzip):
  csv, tsv  a row an item, with a header: customer,time,item; --customer, --time and --item name the
            columns, --label one with descriptions; rows may come in any order
  spmf      a customer a line: 1 2 -1 3 -1 -2
  basket    a basket a line: customer, time, number of items, items
Times are numbers, or dates and times such as 2011-01-18 10:01:00, which count in seconds. Rows of one
customer and time are one basket; --basket day (minute, hour, week, month, or a number in the unit of
the times) puts a longer period into one.

--min-support below 1 is a share of the customers, from 1 up a number of them.
--algorithm exact holds the log in memory and finds every sequence. carma counts in the lattice itself,
customer by customer, with a second pass that makes the counts exact; with --one-pass the counts are
upper bounds instead.

Examples:
  orbseq train --input log.csv --min-support 0.02 --output model.xml
  orbseq train --input log.csv.gz --basket day --label description --min-support 100 --output m.bin
  orbseq train --input log.spmf --min-support 40 --max-items 5 --threads 2 --output model.pmml

Exit status: 0 done, 1 wrong usage, 2 bad log, 3 files, memory or a limit that was hit, 4 a bug,
130 interrupted. The model is replaced as a whole, and not at all when anything fails.)help";

// --- Options
// ---------------------------------------------------------------------------------------

void addLogOptions(CLI::App& command, TrainOptions& options) {
  command
      .add_option("-i,--input", options.input, "Log of what customers took; - is standard input")
      ->required()
      ->type_name("FILE");
  command
      .add_option("--input-format", options.inputFormat,
                  "csv, tsv, spmf or basket (default: told by the name; standard input is csv)")
      ->check(CLI::IsMember({"csv", "tsv", "spmf", "basket"}).description(""))
      ->type_name("FORMAT");
  const auto column = [&command](const char* name, std::string& value, const char* text) {
    command.add_option(name, value, text)->type_name("COLUMN")->capture_default_str();
  };
  column("--customer", options.customer, "Column of the customer");
  column("--time", options.time, "Column of the time");
  column("--item", options.item, "Column of the item");
  column("--label", options.label, "Column with a description of the item");
  command
      .add_option(
          "--items", options.items,
          "auto, integer or text: whether items are numbers of their own, or texts that get "
          "numbers")
      ->check(CLI::IsMember({"auto", "integer", "text"}).description(""))
      ->type_name("KIND")
      ->capture_default_str();
  command
      .add_option(
          "--basket", options.basket,
          "Put a customer's rows of one minute, hour, day, week, month or duration together")
      ->type_name("PERIOD");
  command
      .add_option("--skip-bad-rows", options.skipBadRows,
                  "Leave out up to so many rows whose customer, time or item is bad")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N")
      ->capture_default_str();
}

void addMiningOptions(CLI::App& command, TrainOptions& options) {
  command
      .add_option("-s,--min-support", options.minSupport,
                  "Least support: below 1 a share of the customers, from 1 up a number of them")
      ->required()
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("X");
  const auto length = [&command](const char* name, std::int32_t& value, const char* text) {
    command.add_option(name, value, text)
        ->check(CLI::Range(1, MinerOptions::kMostItems).description(""))
        ->type_name("N")
        ->capture_default_str();
  };
  length("--max-items", options.maxItems, "Most items of a sequence, 1 to 31");
  length("--max-sets", options.maxSets, "Most item sets of a sequence, 1 to 31");
  length("--max-items-per-set", options.maxItemsPerSet, "Most items of an item set, 1 to 31");
  const auto gap = [&command](const char* name, double& value, const char* text) {
    command.add_option(name, value, text)
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("T");
  };
  gap("--min-gap", options.minGap, "Least time between item sets that follow each other");
  gap("--max-gap", options.maxGap, "Most time between item sets that follow each other");
  gap("--max-span", options.maxSpan, "Most time from the first item set to the last");
  command.add_option("--algorithm", options.algorithm, "exact or carma")
      ->check(CLI::IsMember({"exact", "carma"}).description(""))
      ->type_name("NAME")
      ->capture_default_str();
  command.add_flag("--one-pass", options.onePass, "With carma: upper bounds, no second pass");
  command.add_option("--threads", options.threads, "Threads that mine; 0: all cores")
      ->check(CLI::Range(0, 1024).description(""))
      ->type_name("N")
      ->capture_default_str();
  command.add_option("--max-memory", options.maxMemory, "Most bytes that mining takes")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("BYTES");
  command.add_option("--max-seconds", options.maxSeconds, "Most seconds that mining takes")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("S");
}

LogOptions logOptionsOf(const TrainOptions& options) {
  LogOptions log;
  if (!options.inputFormat.empty())
    log.format = *logFormatNamed(options.inputFormat);
  else if (const auto format = logFormatOf(options.input))
    log.format = *format;
  else if (options.input != "-")
    throw UsageError("--input: the name " + options.input +
                     " does not tell the format; give --input-format csv, tsv, spmf or basket");
  log.customer = options.customer;
  log.time = options.time;
  log.item = options.item;
  log.label = options.label;
  log.skipBadRows = options.skipBadRows;
  if (options.items == "integer") log.builder.items = ItemKind::kInteger;
  if (options.items == "text") log.builder.items = ItemKind::kText;
  if (!options.basket.empty()) {
    log.builder.basket = Period::of(options.basket);
    if (!log.builder.basket)
      throw UsageError("--basket: " + options.basket +
                       " is neither minute, hour, day, week, month nor a number above 0");
  }
  return log;
}

MinerOptions minerOptionsOf(const TrainOptions& options, std::size_t customers) {
  MinerOptions miner;
  const double least = options.minSupport < 1.0
                           ? options.minSupport * static_cast<double>(customers)
                           : options.minSupport;
  miner.minCustomers = static_cast<std::int32_t>(std::clamp<std::int64_t>(
      toIntegerThreshold(least), 1, std::numeric_limits<std::int32_t>::max()));
  miner.maxItems = options.maxItems;
  miner.maxSets = options.maxSets;
  miner.maxItemsPerSet = options.maxItemsPerSet;
  miner.minGap = options.minGap;
  miner.maxGap = options.maxGap;
  miner.maxSpan = options.maxSpan;
  miner.memoryBytes = options.maxMemory;
  miner.seconds = options.maxSeconds;
  miner.threads = options.threads > 0
                      ? options.threads
                      : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  return miner;
}

// --- Work
// ------------------------------------------------------------------------------------------

bool showsProgress(const TrainOptions& options) {
  return !options.quiet && isTerminal(StandardStream::kError);
}

TransactionLog readLog(const TrainOptions& options) {
  LogOptions log = logOptionsOf(options);
  std::unique_ptr<Progress> bar;
  log.progress = [&](std::size_t, std::uintmax_t bytes, std::optional<std::uintmax_t> size) {
    if (interrupted()) throw Interrupted();
    if (!bar) bar = std::make_unique<Progress>(showsProgress(options), size);
    bar->reach(bytes);
  };
  TransactionLog read = readLog(options.input, log);
  if (interrupted()) throw Interrupted();
  return read;
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
  if (options.hasTimeBounds())
    throw UsageError("--algorithm carma knows no --min-gap, --max-gap and --max-span");
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

std::unique_ptr<Lattice> trained(const TrainOptions& options, const SequenceDatabase& database,
                                 MinerOptions miner) {
  constexpr std::uintmax_t kSteps = 1000;
  Progress bar(showsProgress(options), kSteps);
  miner.progress = [&bar](const MinerStatus& status) {
    bar.reach(static_cast<std::uintmax_t>(status.done * static_cast<double>(kSteps)));
    return !interrupted();
  };
  auto lattice = options.algorithm == "carma" ? trainByCarma(database, miner, options.onePass)
                                              : trainExactly(database, miner);
  if (interrupted()) throw Interrupted();
  throwIfError(lattice->buildLattice());
  return lattice;
}

void printSummary(const TrainOptions& options, const TransactionLog& log, const MinerOptions& miner,
                  const Lattice& lattice, double seconds) {
  const ModelSummary summary = summaryOf(lattice);
  printMessage(fmt::format("{} rows{}, {} customers, {} baskets, {} item occurrences", log.rows,
                           log.badRows > 0 ? fmt::format(" ({} bad, left out)", log.badRows) : "",
                           log.database.customers(), log.database.sets(),
                           log.database.occurrences()));
  std::string levels;
  for (std::size_t level = 1; level < summary.byLevel.size(); ++level)
    if (summary.byLevel[level] > 0)
      levels +=
          fmt::format("{}{} of {}", levels.empty() ? "" : ", ", summary.byLevel[level], level);
  printMessage(fmt::format("{} sequences of at least {} customers{}: {} items", summary.sequences,
                           miner.minCustomers, options.onePass ? " (counts are upper bounds)" : "",
                           levels.empty() ? "none of any" : levels));
  printMessage(fmt::format("{} links, about {:.1f} MiB, {:.2f} s", summary.links,
                           static_cast<double>(summary.memoryBytes) / 1048576.0, seconds));
}

}  // namespace

CLI::App* addTrainCommand(CLI::App& program, TrainOptions& options) {
  CLI::App* command =
      program.add_subcommand("train", "Make a model from a log of what customers took");
  addLogOptions(*command, options);
  addMiningOptions(*command, options);
  command->add_option("-o,--output", options.output, "Where the model goes; replaced as a whole")
      ->required()
      ->type_name("FILE");
  addFormOption(*command, options.to);
  command->add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  command->footer(kFooter);
  return command;
}

ExitStatus runTrain(const TrainOptions& options) {
  const auto begin = std::chrono::steady_clock::now();
  const ModelForm form = outputForm(options.output, options.to);
  if (options.onePass && options.algorithm != "carma")
    throw UsageError("--one-pass wants --algorithm carma");
  const TransactionLog log = readLog(options);
  const MinerOptions miner = minerOptionsOf(options, log.database.customers());
  Model model;
  model.lattice = trained(options, log.database, miner);
  model.labels = log.labels;
  saveModel(options.output, model, form);
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
  if (!options.quiet) printSummary(options, log, miner, *model.lattice, spent.count());
  return ExitStatus::kDone;
}

}  // namespace orbseq

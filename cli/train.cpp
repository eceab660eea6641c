#include "cli/train.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <utility>

#include "cli/ModelOptions.h"
#include "cli/ModelSummary.h"
#include "cli/messages.h"
#include "io/ModelFile.h"
#include "io/process.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

const char* const kFooter =
    R"help(
Examples:
  orbseq train --input log.csv --min-support 0.02 --output model.xml
  orbseq train --input log.csv.gz --basket day --label description --min-support 100 --output m.bin
  orbseq train --input log.spmf --min-support 40 --max-items 5 --threads 2 --output model.pmml
  orbseq train --input shop.db --query "SELECT customer, time, item FROM sales" --min-support 50 \
    --output model.xml

Exit status: 0 done, 1 wrong usage, 2 bad log, 3 files, memory or a limit that was hit, 4 a bug,
130 interrupted. The model is replaced as a whole, and not at all when anything fails.)help";

void printSummary(const TrainOptions& options, const TransactionLog& log, const MinerOptions& miner,
                  const Lattice& lattice, double seconds) {
  const ModelSummary summary = summaryOf(lattice);
  printMessage(fmt::format("{} rows{}, {} customers, {} baskets, {} item occurrences", log.rows,
                           log.badRows > 0 ? fmt::format(" ({} bad, left out)", log.badRows) : "",
                           log.database.customers(), log.database.sets(),
                           log.database.occurrences()));
  if (!log.textItem.empty())
    printMessage("items are texts: " + OrbScore::QuErrorFormater::Quote(log.textItem) +
                 " is no integer from 0 to 2147483647");
  std::string levels;
  for (std::size_t level = 1; level < summary.byLevel.size(); ++level)
    if (summary.byLevel[level] > 0)
      levels +=
          fmt::format("{}{} of {}", levels.empty() ? "" : ", ", summary.byLevel[level], level);
  printMessage(fmt::format("{} sequences of at least {} customers{}: {} items", summary.sequences,
                           miner.minCustomers,
                           options.training.onePass ? " (counts are upper bounds)" : "",
                           levels.empty() ? "none of any" : levels));
  const Training& limits = options.training;
  const bool isCut = limits.maxItems == MinerOptions::kMostItems &&
                     summary.byLevel.size() > MinerOptions::kMostItems &&
                     summary.byLevel[MinerOptions::kMostItems] > 0;
  if (isCut || limits.maxItems < MinerOptions::kMostItems ||
      limits.maxSets < MinerOptions::kMostItems || limits.maxItemsPerSet < MinerOptions::kMostItems)
    printMessage(fmt::format("looked at up to {} items, {} item sets, {} items in a set",
                             limits.maxItems, limits.maxSets, limits.maxItemsPerSet));
  printMessage(fmt::format("{} links, about {:.1f} MiB, {:.2f} s", summary.links,
                           static_cast<double>(summary.memoryBytes) / 1048576.0, seconds));
}

}  // namespace

CLI::App* addTrainCommand(CLI::App& program, TrainOptions& options) {
  CLI::App* command =
      program.add_subcommand("train", "Make a model from a log of what customers took");
  addLogInput(*command, options.log, "Log of what customers took", true)->required();
  addTrainingOptions(*command, options.training)->required();
  command->add_option("-o,--output", options.output, "Where the model goes; replaced as a whole")
      ->required()
      ->type_name("FILE");
  addFormOption(*command, options.to);
  command->add_flag("-q,--quiet", options.quiet, "No progress and no summary");
  command->footer(std::string(kLogForms) + "\n\n" + kTrainingHelp + "\n" + kFooter);
  return command;
}

ExitStatus runTrain(const TrainOptions& options) {
  const auto begin = std::chrono::steady_clock::now();
  const ModelForm form = outputForm(options.output, options.to);
  if (form == ModelForm::kCompiled)
    throw UsageError(
        "--to: a compiled form is never a model's only copy; train another form and convert it");
  checkTraining(options.training);
  const LogOptions logOptions = logOptionsOf(options.log);
  const bool showsProgress = !options.quiet && isTerminal(StandardStream::kError);
  TransactionLog log = readLog(options.log, logOptions, showsProgress);
  const MinerOptions miner = minerOptionsOf(options.training, log.database.customers(), log.labels);
  Model model;
  model.lattice = trainLattice(options.training, miner, log.database, showsProgress);
  model.labels = std::move(log.labels);
  saveModel(options.output, model, form);
  if (log.rows == 0) printMessage("warning: the log has no rows, and the model no sequences");
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
  if (!options.quiet) printSummary(options, log, miner, *model.lattice, spent.count());
  return ExitStatus::kDone;
}

}  // namespace orbseq

#include "cli/score.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/CsvWriter.h"
#include "cli/EngineScorer.h"
#include "cli/JsonLinesWriter.h"
#include "cli/Output.h"
#include "cli/PluginScorer.h"
#include "cli/Progress.h"
#include "cli/TableWriter.h"
#include "cli/messages.h"
#include "cli/parallel.h"
#include "common/Limits.h"
#include "engine/inOrder.h"
#include "host/PluginLoader.h"
#include "host/SafeDocument.h"
#include "io/CompiledModel.h"
#include "io/HistoryReader.h"
#include "io/ItemNames.h"
#include "io/ModelFile.h"
#include "io/modelLabels.h"
#include "io/process.h"

namespace orbseq {

namespace {

const char* const kFooter =
    R"help(An empty history asks for what most customers take. Items of rows and baskets are looked up in the
model's labels: a label, its first word, or the item's number; others are counted and left out. Items
of spmf and of histories as text are numbers.

Answers have the columns customer, rank, item, label, confidence, support, cause:
  confidence   of the customers with the history found, the share that took the item: 0 to 1
  support      of all customers, the share that has that history and the item: 0 to 1
  cause        of the customers who took the item, the share that has that history: 0 to 1

Examples:
  orbseq score --model lattice.xml --input customers.csv
  orbseq score --model lattice.xml --input customers.csv --return future --max-return 5
  orbseq score --model model.bin --input log.csv.gz --basket day --return future
  cat day.jsonl | orbseq score --model lattice.xml --input - --input-format jsonl --format jsonl
  orbseq score --model lattice.xml --input customers.csv --format csv --output answers.csv

Exit status: 0 done, 1 wrong usage, 2 bad input data, 3 files, plug-in or memory, 4 a bug,
130 interrupted. Nothing half written is left under the name given to --output.)help";

void addInputOptions(CLI::App& command, ScoreOptions& options) {
  addModelOptions(command, options.model);
  addLogInput(command, options.log, "Customers' histories, or a log of what they took", false)
      ->required();
  command
      .add_option("--module", options.module,
                  "Have this scoring plug-in answer, as a host would; the answers are the same")
      ->type_name("FILE");
}

void addAnswerOptions(CLI::App& command, ScoreOptions& options) {
  command
      .add_option("--return", options.returnType,
                  "current: items that complete the customer's last item set; future: items of a "
                  "later one")
      ->check(CLI::IsMember({"current", "future"}).description(""))
      ->type_name("KIND")
      ->capture_default_str();
  command.add_option("--max-return", options.maxReturn, "Most answers a customer")
      ->check(CLI::Range(0, 2147483647).description(""))
      ->type_name("N")
      ->capture_default_str();
  command.add_flag("--all-prefixes", options.allPrefixes,
                   "With --return future: match shorter beginnings of the history as well");
  addCaseLimitOptions(command, options.cases);
  addOutputOptions(command, options.output, {"table", "csv", "jsonl", "none"}, "answers");
  command.add_option("--threads", options.threads, "Threads that score; 0: all cores")
      ->check(CLI::Range(0, 1024).description(""))
      ->type_name("N")
      ->capture_default_str();
  command.add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  command.add_flag("--dry-run", options.dryRun,
                   "Read model and histories, score nothing, write no answers");
}

// What answers, and how its items are called: the engine, or a plug-in's model where one is named.
struct ScoringModel {
  std::optional<CompiledModel> compiled;
  std::shared_ptr<const OrbScore::ScoreModel> pluginModel;
  ItemLabelMap labels;

  std::unique_ptr<CaseScorer> makeScorer(const ScoreOptions& options) const {
    if (pluginModel) return std::make_unique<PluginScorer>(pluginModel, options);
    return std::make_unique<EngineScorer>(compiled->lattice, options);
  }
};

ScoringModel loadModel(const ScoreOptions& options) {
  ScoringModel loaded;
  if (options.module.empty()) {
    loaded.compiled = readCompiledModel(options.model.model, options.model.limits);
    loaded.labels = std::move(loaded.compiled->labels);
    return loaded;
  }
  const OrbScore::SafeDocument document = readDocument(options.model.model, options.model.limits);
  loaded.pluginModel = OrbScore::PluginLoader(options.module).LoadModel(document);
  loaded.labels = labelsOf(loaded.pluginModel->GetScoreDictionary());
  addLabelsBeside(options.model.model, loaded.labels);
  return loaded;
}

// Null: answers are not written.
std::unique_ptr<ResultWriter> makeWriter(const ScoreOptions& options, const ItemLabelMap& labels) {
  const std::string format = formatOf(options.output);
  if (format == "none") return nullptr;
  if (format == "table") return std::make_unique<TableWriter>(labels);
  if (format == "jsonl") return std::make_unique<JsonLinesWriter>(labels);
  return std::make_unique<CsvWriter>(labels);
}

// A bar among answers on one terminal would tear them apart.
bool showsProgress(const ScoreOptions& options) {
  const bool answersOnTerminal =
      !options.dryRun && options.output.path == "-" && isTerminal(StandardStream::kOutput);
  return !options.quiet && isTerminal(StandardStream::kError) && !answersOnTerminal;
}

// Some customers' histories, and what becomes of them.
struct Block {
  static constexpr std::size_t kCustomers = 128;

  std::vector<CustomerHistory> histories{kCustomers};
  std::size_t customers = 0;
  std::string text;  // their answers
  std::size_t answers = 0;
};

// False at the end of the histories.
bool fill(Block& block, HistoryReader& reader) {
  block.customers = 0;
  block.answers = 0;
  block.text.clear();
  while (block.customers < Block::kCustomers && reader.next(block.histories[block.customers])) {
    if (interrupted()) throw Interrupted();
    ++block.customers;
  }
  if (interrupted()) throw Interrupted();
  return block.customers > 0;
}

struct Totals {
  std::size_t customers = 0;
  std::size_t answers = 0;
};

std::string counted(std::size_t number, const char* one, const char* many) {
  return fmt::format("{} {}", number, number == 1 ? one : many);
}

void warn(const ScoreOptions& options, std::size_t customers, const HistoryReader& reader) {
  if (options.quiet) return;
  if (customers == 0) printMessage("warning: " + reader.name() + ": no histories");
  warnOfOmissions(reader.badRows(), reader.unknown());
}

Totals scoreAll(HistoryReader& reader, const ScoringModel& model, const ScoreOptions& options,
                Output& output) {
  Progress progress(showsProgress(options), reader.size());
  Totals totals;
  const auto makeWorker = [&] {
    // Each thread has what it takes of its own.
    return [scorer = std::shared_ptr(model.makeScorer(options)),
            writer = std::shared_ptr(makeWriter(options, model.labels)), &reader](Block& block) {
      for (std::size_t k = 0; k < block.customers; ++k) {
        const CustomerHistory& history = block.histories[k];
        const Answers answers = scorer->score(reader.name(), history);
        block.answers += answers.size();
        if (writer) writer->appendAnswers(block.text, history.customer, answers);
      }
    };
  };
  const auto write = [&](Block& block) {
    totals.customers += block.customers;
    totals.answers += block.answers;
    output.text() += block.text;
    output.flushIfFull();
  };
  engine::inOrder<Block>(
      threadsOf(options.threads),
      [&](Block& block) {
        const bool more = fill(block, reader);
        progress.reach(reader.bytesRead());
        return more;
      },
      makeWorker, write);
  return totals;
}

ExitStatus runDry(HistoryReader& reader, const ScoreOptions& options) {
  Progress progress(showsProgress(options), reader.size());
  std::size_t customers = 0;
  for (Block block; fill(block, reader); customers += block.customers)
    progress.reach(reader.bytesRead());
  warn(options, customers, reader);
  printMessage("dry run: " + counted(customers, "customer", "customers") + " read, nothing scored");
  return ExitStatus::kDone;
}

}  // namespace

CLI::App* addScoreCommand(CLI::App& program, ScoreOptions& options) {
  CLI::App* command = program.add_subcommand(
      "score", "Answer, for each customer's history, which items come next or complete it");
  addInputOptions(*command, options);
  addAnswerOptions(*command, options);
  command->footer(std::string(kLogForms) + "\n\n" + kFooter);
  return command;
}

ExitStatus runScore(const ScoreOptions& options) {
  if (options.model.model == "-" && options.log.path == "-")
    throw UsageError("--model and --input cannot both be standard input");
  if (!options.module.empty() && isLimited(options.cases))
    throw UsageError(
        "--module: a plug-in searches without limits; leave out --limits and --max-case-...");
  if (!options.module.empty() && mostInChain() != kMostInChain)
    throw UsageError("--module: a plug-in has its own limit of chains; leave out --max-chain");
  LogOptions logOptions = logOptionsOf(options.log);
  const ScoringModel loaded = loadModel(options);
  const ItemNames names(loaded.labels);
  logOptions.builder.known = &names;
  HistoryReader reader(options.log.path, logOptions);
  if (options.dryRun) return runDry(reader, options);

  Output output(options.output.path);
  if (const auto writer = makeWriter(options, loaded.labels)) writer->appendHeader(output.text());
  const Totals totals = scoreAll(reader, loaded, options, output);
  output.finish();
  warn(options, totals.customers, reader);
  if (!options.quiet)
    printMessage(counted(totals.customers, "customer", "customers") + ", " +
                 counted(totals.answers, "answer", "answers"));
  return ExitStatus::kDone;
}

}  // namespace orbseq

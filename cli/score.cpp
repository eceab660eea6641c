#include "cli/score.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>

#include "cli/CsvWriter.h"
#include "cli/JsonLinesWriter.h"
#include "cli/Output.h"
#include "cli/Progress.h"
#include "cli/Scorer.h"
#include "cli/TableWriter.h"
#include "cli/messages.h"
#include "host/PluginLoader.h"
#include "host/SafeDocument.h"
#include "io/HistoryReader.h"
#include "io/ItemNames.h"
#include "io/ModelFile.h"
#include "io/modelLabels.h"
#include "io/process.h"

namespace orbseq {

namespace {

const char* const kModuleFile = "liborbseq.so";

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
                  std::string("Scoring plug-in (default: ") + kModuleFile + " beside the program)")
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
  command
      .add_option("--format", options.format,
                  "table, csv or jsonl (default: table on a terminal, else csv)")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}).description(""))
      ->type_name("FORMAT");
  command
      .add_option("-o,--output", options.output,
                  "Where answers go; the file is replaced as a whole; - is standard output")
      ->type_name("FILE")
      ->capture_default_str();
  command.add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  command.add_flag("--dry-run", options.dryRun,
                   "Read model and histories, score nothing, write no answers");
}

// What scores, and how its items are called.
struct ScoringModel {
  std::shared_ptr<const OrbScore::ScoreModel> model;
  ItemLabelMap labels;
};

ScoringModel loadModel(const ScoreOptions& options) {
  const OrbScore::SafeDocument document = readDocument(options.model.model, options.model.limits);
  const std::string module =
      options.module.empty()
          ? OrbScore::PluginLoader::FindBeside(OrbScore::PluginLoader::ProgramFolder(), kModuleFile)
          : options.module;
  ScoringModel loaded;
  loaded.model = OrbScore::PluginLoader(module).LoadModel(document);
  loaded.labels = labelsOf(loaded.model->GetScoreDictionary());
  addLabelsBeside(options.model.model, loaded.labels);
  return loaded;
}

std::unique_ptr<ResultWriter> makeWriter(const ScoreOptions& options, const ItemLabelMap& labels) {
  std::string format = options.format;
  const bool forPeople = options.output == "-" && isTerminal(StandardStream::kOutput);
  if (format.empty()) format = forPeople ? "table" : "csv";
  if (format == "table") return std::make_unique<TableWriter>(labels);
  if (format == "jsonl") return std::make_unique<JsonLinesWriter>(labels);
  return std::make_unique<CsvWriter>(labels);
}

// A bar among answers on one terminal would tear them apart.
bool showsProgress(const ScoreOptions& options) {
  const bool answersOnTerminal =
      !options.dryRun && options.output == "-" && isTerminal(StandardStream::kOutput);
  return !options.quiet && isTerminal(StandardStream::kError) && !answersOnTerminal;
}

// Calls `each` for every history, and stops when a person asks to.
template <class Each>
std::size_t forEachHistory(HistoryReader& reader, const ScoreOptions& options, Each each) {
  Progress progress(showsProgress(options), reader.size());
  CustomerHistory history;
  std::size_t customers = 0;
  while (reader.next(history)) {
    if (interrupted()) throw Interrupted();
    each(history);
    ++customers;
    progress.reach(reader.bytesRead());
  }
  if (interrupted()) throw Interrupted();
  return customers;
}

std::string counted(std::size_t number, const char* one, const char* many) {
  return fmt::format("{} {}", number, number == 1 ? one : many);
}

void warnIfNone(std::size_t customers, const HistoryReader& reader) {
  if (customers == 0) printMessage("warning: " + reader.name() + ": no histories");
}

ExitStatus runDry(HistoryReader& reader, Scorer& scorer, const ScoreOptions& options) {
  const std::size_t customers = forEachHistory(
      reader, options, [&](const CustomerHistory& history) { scorer.prepare(history); });
  if (!options.quiet) {
    warnIfNone(customers, reader);
    warnOfOmissions(reader.badRows(), reader.unknown());
  }
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
  LogOptions logOptions = logOptionsOf(options.log);
  const ScoringModel loaded = loadModel(options);
  const ItemNames names(loaded.labels);
  logOptions.builder.known = &names;
  HistoryReader reader(options.log.path, logOptions);
  Scorer scorer(loaded.model, options);
  if (options.dryRun) return runDry(reader, scorer, options);

  Output output(options.output);
  const auto writer = makeWriter(options, loaded.labels);
  writer->appendHeader(output.text());
  std::size_t answerCount = 0;
  const std::size_t customers =
      forEachHistory(reader, options, [&](const CustomerHistory& history) {
        scorer.prepare(history);
        const Answers answers = scorer.score(reader.name(), history);
        answerCount += answers.size();
        writer->appendAnswers(output.text(), history.customer, answers);
        output.flushIfFull();
      });
  output.finish();

  if (options.quiet) return ExitStatus::kDone;
  warnIfNone(customers, reader);
  warnOfOmissions(reader.badRows(), reader.unknown());
  printMessage(counted(customers, "customer", "customers") + ", " +
               counted(answerCount, "answer", "answers"));
  return ExitStatus::kDone;
}

}  // namespace orbseq

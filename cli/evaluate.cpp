#include "cli/evaluate.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <unordered_set>
#include <utility>
#include <vector>

#include "cli/HoldOut.h"
#include "cli/ModelSummary.h"
#include "cli/Output.h"
#include "cli/RankingMetrics.h"
#include "cli/StatusLine.h"
#include "cli/messages.h"
#include "cli/numberText.h"
#include "cli/parallel.h"
#include "engine/Pool.h"
#include "engine/Recommender.h"
#include "engine/Scratch.h"
#include "engine/compile.h"
#include "io/ItemNames.h"
#include "io/process.h"
#include "io/statusError.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using Items = std::vector<std::int32_t>;

constexpr std::size_t kLongest = RankingMetrics::kCuts.back();

const char* const kFooter =
    R"help(
Baskets are held back, each customer's last one or those of the last share of the log's time. With
--min-support a model is trained on the rest, else --model is asked. The question is which items
come next; "popularity" answers everybody with the items that most customers take, and "model, then
popularity" fills the model's answer up with them. Per number of answers, averaged over customers:
  hit rate  any of them was taken             MRR   1 / rank of the first that was taken
  recall    of what was taken, their share    NDCG  hits by rank, as a share of the best order
  coverage  different items recommended, as a share of all items
--hold-back last leaves customers of one basket in the training, and does not ask for them. A model
that was trained on what is held back foretells it too well: give --model one that has not seen it.

Examples:
  orbseq evaluate --input log.csv.gz --min-support 0.01
  orbseq evaluate --input log.csv --min-support 100 --hold-back 0.2 --max-items 4
  orbseq evaluate --input log.csv --model model.xml --format csv

Exit status: 0 done, 1 wrong usage, 2 bad log or model, 3 files, memory or a limit that was hit, 4 a
bug, 130 interrupted.)help";

// --- What is asked and answered ------------------------------------------------------------------

// What is measured: the lists of one recommender.
struct Recommender {
  const char* name;
  RankingMetrics metrics;
};

struct Evaluation {
  std::array<Recommender, 3> recommenders{
      {{"model", {}}, {"popularity", {}}, {"model, then popularity", {}}}};
  std::size_t customers = 0;  // of the log
  std::size_t items = 0;      // that the model's makers could recommend
};

// Items by the number of customers that hold them, most first; larger items first among equals, as
// in the model's own answers.
Items popularItems(const SequenceDatabase& database) {
  std::map<std::int32_t, std::size_t> counts;
  std::unordered_set<std::int32_t> held;
  for (std::size_t customer = 0; customer < database.customers(); ++customer) {
    held.clear();
    for (std::size_t set = database.firstSet(customer); set < database.firstSet(customer + 1);
         ++set)
      held.insert(database.items(set).begin(), database.items(set).end());
    for (const std::int32_t item : held) ++counts[item];
  }
  std::vector<std::pair<std::size_t, std::int32_t>> order;
  order.reserve(counts.size());
  for (const auto& [item, count] : counts) order.emplace_back(count, item);
  std::sort(order.rbegin(), order.rend());
  Items items;
  for (const auto& [count, item] : order) items.push_back(item);
  return items;
}

Items itemsOf(const std::vector<SeqConsequentDescriptor>& answers) {
  Items items;
  for (const auto& answer : answers) items.push_back(answer.GetItem());
  return items;
}

// The same of a ready model, as far as it stores single items.
Items popularItems(const Lattice& lattice) {
  std::vector<SeqConsequentDescriptor> answers;
  throwIfError(lattice.GetFutureItems(answers, nullptr, std::numeric_limits<int>::max(), true));
  return itemsOf(answers);
}

Items filledUp(Items list, const Items& popular) {
  for (std::size_t i = 0; i < popular.size() && list.size() < kLongest; ++i)
    if (std::find(list.begin(), list.end(), popular[i]) == list.end()) list.push_back(popular[i]);
  return list;
}

void ask(const EvaluateOptions& options, const Lattice& lattice, const SequenceDatabase& log,
         const std::vector<HeldOut>& cases, const Items& popular, StatusLine& line,
         Evaluation& evaluation) {
  std::vector<Items> lists(cases.size());
  const engine::CompiledLattice compiled = engine::compile(lattice);
  const engine::Recommender recommender(compiled);
  engine::Pool<engine::Scratch> pool;
  const auto answer = [&](std::size_t i) {
    const engine::Pool<engine::Scratch>::Borrowed scratch(pool);
    scratch->history.clear();
    for (std::size_t set = cases[i].firstSet; set < cases[i].lastSet; ++set)
      scratch->history.addSet(log.items(set));
    scratch->answers.clear();
    recommender.futureItems(scratch->history, static_cast<std::int32_t>(kLongest),
                            !options.allPrefixes, scratch->workspace, scratch->answers);
    lists[i] = itemsOf(scratch->answers);
  };
  forEachInParallel(
      cases.size(), threadsOf(options.training.threads), answer, [&](std::size_t done) {
        if (interrupted()) throw Interrupted();
        line.show([&] { return fmt::format("asking: {} of {} customers", done, cases.size()); });
      });
  const Items shortPopular(popular.begin(), popular.begin() + static_cast<std::ptrdiff_t>(std::min(
                                                                  popular.size(), kLongest)));
  for (std::size_t i = 0; i < cases.size(); ++i) {
    evaluation.recommenders[0].metrics.add(lists[i], cases[i].wanted);
    evaluation.recommenders[1].metrics.add(shortPopular, cases[i].wanted);
    evaluation.recommenders[2].metrics.add(filledUp(lists[i], popular), cases[i].wanted);
  }
}

// --- Output --------------------------------------------------------------------------------------

void appendTable(std::string& out, const Evaluation& evaluation) {
  fmt::format_to(std::back_inserter(out), "{} of {} customers asked for\n",
                 evaluation.recommenders[0].metrics.customers(), evaluation.customers);
  out +=
      "\nrecommender             answers  hit rate  recall     MRR    NDCG  coverage  answered\n";
  for (const Recommender& recommender : evaluation.recommenders)
    for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut) {
      const RankingScores scores = recommender.metrics.at(cut, evaluation.items);
      fmt::format_to(std::back_inserter(out),
                     "{:<22}  {:>7}  {:>8.4f}  {:>6.4f}  {:>6.4f}  {:>6.4f}  {:>8.4f}  {:>8.4f}\n",
                     recommender.name, RankingMetrics::kCuts[cut], scores.hitRate, scores.recall,
                     scores.mrr, scores.ndcg, scores.coverage, recommender.metrics.answered());
    }
}

constexpr std::array<const char*, 6> kMeasures = {"hit_rate", "recall",   "mrr",
                                                  "ndcg",     "coverage", "answered"};

std::array<double, kMeasures.size()> measuresOf(const Recommender& recommender, std::size_t cut,
                                                std::size_t items) {
  const RankingScores scores = recommender.metrics.at(cut, items);
  return {scores.hitRate, scores.recall,   scores.mrr,
          scores.ndcg,    scores.coverage, recommender.metrics.answered()};
}

void appendCsv(std::string& out, const Evaluation& evaluation) {
  out += "recommender,customers,answers";
  for (const char* measure : kMeasures) out.append(",").append(measure);
  out += '\n';
  for (const Recommender& recommender : evaluation.recommenders)
    for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut) {
      fmt::format_to(std::back_inserter(out), "\"{}\",{},{}", recommender.name,
                     recommender.metrics.customers(), RankingMetrics::kCuts[cut]);
      for (const double value : measuresOf(recommender, cut, evaluation.items)) {
        out += ',';
        appendExact(out, value);
      }
      out += '\n';
    }
}

void appendJsonLines(std::string& out, const Evaluation& evaluation) {
  for (const Recommender& recommender : evaluation.recommenders)
    for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut) {
      nlohmann::ordered_json line;
      line["recommender"] = recommender.name;
      line["customers"] = recommender.metrics.customers();
      line["answers"] = RankingMetrics::kCuts[cut];
      const auto values = measuresOf(recommender, cut, evaluation.items);
      for (std::size_t i = 0; i < values.size(); ++i) line[kMeasures[i]] = values[i];
      out += line.dump() + "\n";
    }
}

void write(const EvaluateOptions& options, const Evaluation& evaluation) {
  Output output(options.output.path);
  const std::string format = formatOf(options.output);
  if (format == "jsonl")
    appendJsonLines(output.text(), evaluation);
  else if (format == "table")
    appendTable(output.text(), evaluation);
  else
    appendCsv(output.text(), evaluation);
  output.finish();
}

void check(const EvaluateOptions& options) {
  if (options.model.model.empty() == (options.training.minSupport == 0.0))
    throw UsageError("evaluate wants either --model or --min-support");
  if (options.model.model == "-" && options.log.path == "-")
    throw UsageError("--model and --input cannot both be standard input");
  if (!holdBackOf(options.holdBack))
    throw UsageError("--hold-back: " + options.holdBack +
                     " is neither last nor a share above 0 and below 1");
  const bool isReady = !options.model.model.empty();
  const bool trains = !options.training.include.empty() || !options.training.exclude.empty() ||
                      options.training.onePass || !options.log.label.empty();
  if (isReady && trains)
    throw UsageError("--model is a ready one: options of training want --min-support");
  checkTraining(options.training);
}

void tell(const EvaluateOptions& options, const Evaluation& evaluation, const TransactionLog& log,
          const Lattice& lattice) {
  if (options.quiet) return;
  warnOfOmissions(log.badRows, log.unknown);
  if (evaluation.recommenders[0].metrics.customers() == 0)
    printMessage("warning: no customer has baskets both before and after the cut");
  printMessage(fmt::format("{} customers, of whom {} were asked for; {} sequences",
                           evaluation.customers, evaluation.recommenders[0].metrics.customers(),
                           summaryOf(lattice).sequences));
}

}  // namespace

CLI::App* addEvaluateCommand(CLI::App& program, EvaluateOptions& options) {
  CLI::App* command = program.add_subcommand(
      "evaluate", "Measure how well a model foretells what customers took next");
  addLogInput(*command, options.log, "Log of what customers took", true)->required();
  addModelOptions(*command, options.model, false);
  addTrainingOptions(*command, options.training);
  command
      ->add_option("--hold-back", options.holdBack,
                   "last: each customer's last basket; or a share of the log's time")
      ->type_name("last|SHARE")
      ->capture_default_str();
  command->add_flag("--all-prefixes", options.allPrefixes,
                    "Match shorter beginnings of the history as well");
  addOutputOptions(*command, options.output, {"table", "csv", "jsonl"}, "the measures");
  command->add_flag("-q,--quiet", options.quiet, "No progress and no summary");
  command->footer(std::string(kLogForms) + "\n\n" + kTrainingHelp + "\n" + kFooter);
  return command;
}

ExitStatus runEvaluate(const EvaluateOptions& options) {
  check(options);
  LogOptions logOptions = logOptionsOf(options.log);
  const bool showsProgress = !options.quiet && isTerminal(StandardStream::kError);
  Model model;
  ItemNames names;
  const bool isReady = !options.model.model.empty();
  if (isReady) {
    model = readScoredModel(options.model);
    names = ItemNames(model.labels);
    logOptions.builder.known = &names;
  }
  const TransactionLog log = readLog(options.log, logOptions, showsProgress);
  const HoldOut parts = holdOut(log.database, *holdBackOf(options.holdBack));
  if (!isReady)
    model.lattice = trainLattice(
        options.training, minerOptionsOf(options.training, parts.seen.customers(), log.labels),
        parts.seen, showsProgress);
  const Items popular = isReady ? popularItems(*model.lattice) : popularItems(parts.seen);
  Evaluation evaluation;
  evaluation.customers = log.database.customers();
  evaluation.items = popular.size();
  {
    StatusLine line(showsProgress);
    ask(options, *model.lattice, log.database, parts.cases, popular, line, evaluation);
  }
  write(options, evaluation);
  tell(options, evaluation, log, *model.lattice);
  return ExitStatus::kDone;
}

}  // namespace orbseq

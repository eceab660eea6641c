#include "cli/explain.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <unordered_set>
#include <utility>

#include "cli/ItemFinder.h"
#include "cli/Output.h"
#include "cli/ProposalWriter.h"
#include "cli/customerSequence.h"
#include "cli/messages.h"
#include "cli/sequenceText.h"
#include "io/ItemNames.h"
#include "io/historyText.h"
#include "io/process.h"
#include "lattice/Proposal.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::Proposal;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

const char* const kFooter =
    R"help(
For each answer that `score` gives to a history in its order of time, every stored sequence of the history that proposes the item:
  confidence, support, cause   as in the answer; the highest confidence wins, then support
  together, of                 customers that hold the sequence with the item, and the sequence
  skipped                      baskets left out at the end of the history (--all-prefixes)
In --took and --why an item is a number, a label, or how a label begins. In --history and in texts of
--input a history is read strictly: what is no item set is an error.

Examples:
  orbseq explain --model model.xml --took "tea,milk" --took bread --return future
  orbseq explain --model model.xml --history "(1 2)(3)" --why bread
  orbseq explain --model model.bin --input log.csv.gz --who C000017 --max-return 3 --format csv

Exit status: 0 done, 1 wrong usage, 2 bad input data, 3 files or memory, 4 a bug, 130 interrupted.)help";

// One history to explain.
struct Case {
  std::string customer;
  Sequence history;
};

void addSet(Sequence& history, const std::vector<std::int32_t>& items, double time) {
  TimedItemSet set;
  set.AddAllItems(items.data(), static_cast<std::int32_t>(items.size()), time);
  history.AddTimedItemSet(&set);
}

Case caseOfText(const std::string& text) {
  Case made{"-", Sequence()};
  try {
    for (const HistorySet& set : parseHistory(text)) addSet(made.history, set.items, 0.0);
  } catch (const HistoryTextError& error) {
    throw UsageError(std::string("--history: ") + error.what());
  }
  return made;
}

Case caseOfBaskets(const std::vector<std::string>& baskets, const ItemFinder& finder) {
  Case made{"-", Sequence()};
  for (const std::string& basket : baskets) {
    std::vector<std::int32_t> items;
    for (const std::string& text : CLI::detail::split(basket, ','))
      items.push_back(finder.find("--took", CLI::detail::trim_copy(text)));
    addSet(made.history, items, 0.0);
  }
  return made;
}

std::vector<Case> casesOfLog(const ExplainOptions& options, const Model& model) {
  LogOptions logOptions = logOptionsOf(options.log);
  const ItemNames names(model.labels);
  logOptions.builder.known = &names;
  const TransactionLog log =
      readLog(options.log, logOptions, !options.quiet && isTerminal(StandardStream::kError));
  if (!options.quiet) warnOfOmissions(log.badRows, log.unknown);
  std::unordered_set<std::string> wanted(options.who.begin(), options.who.end());
  std::vector<Case> cases;
  for (std::size_t c = 0; c < log.customers.size(); ++c)
    if (options.who.empty() || wanted.erase(log.customers[c]) > 0)
      cases.push_back({log.customers[c], historyOf(log.database, c)});
  if (!wanted.empty()) throw UsageError("--who: no customer " + *wanted.begin() + " in the input");
  return cases;
}

// The proposals that are to be shown, items by their rank.
std::vector<RankedProposal> shown(const std::vector<Proposal>& proposals, std::int32_t most,
                                  std::optional<std::int32_t> item) {
  std::vector<RankedProposal> ranked;
  std::size_t rank = 0;
  for (const Proposal& proposal : proposals) {
    if (proposal.wins) ++rank;
    const bool isShown =
        item ? proposal.consequent.GetItem() == *item : rank <= static_cast<std::size_t>(most);
    if (isShown) ranked.push_back({rank, &proposal});
  }
  return ranked;
}

void check(const ExplainOptions& options) {
  const int sources = (options.log.path.empty() ? 0 : 1) + (options.history ? 1 : 0) +
                      (options.took.empty() ? 0 : 1);
  if (sources != 1) throw UsageError("explain wants one of --input, --history and --took");
  if (options.log.path.empty() && !options.who.empty()) throw UsageError("--who wants --input");
  if (options.model.model == "-" && options.log.path == "-")
    throw UsageError("--model and --input cannot both be standard input");
}

void addSourceOptions(CLI::App& command, ExplainOptions& options) {
  addModelOptions(command, options.model);
  addLogInput(command, options.log, "Customers' histories, or a log of what they took", false);
  command.add_option("--history", options.history, "One history, as text: \"(1 2)(3)\"")
      ->type_name("TEXT");
  command
      .add_option("--took", options.took,
                  "A basket of one history, items separated by commas; the oldest first")
      ->type_name("ITEMS")
      ->allow_extra_args(false);
  command.add_option("--who", options.who, "Of the input, this customer alone; may stand often")
      ->type_name("CUSTOMER")
      ->allow_extra_args(false);
}

}  // namespace

CLI::App* addExplainCommand(CLI::App& program, ExplainOptions& options) {
  CLI::App* command = program.add_subcommand(
      "explain", "Tell why items are recommended: the stored sequences behind each answer");
  addSourceOptions(*command, options);
  command->add_option("--why", options.item, "Explain this item alone")->type_name("ITEM");
  command
      ->add_option("--return", options.returnType,
                   "current: items that complete the last item set; future: items of a later one")
      ->check(CLI::IsMember({"current", "future"}).description(""))
      ->type_name("KIND")
      ->capture_default_str();
  command->add_option("--max-return", options.maxReturn, "Most answers a customer")
      ->check(CLI::Range(0, 2147483647).description(""))
      ->type_name("N")
      ->capture_default_str();
  command->add_flag("--all-prefixes", options.allPrefixes,
                    "With --return future: match shorter beginnings of the history as well");
  addOutputOptions(*command, options.output, {"table", "csv", "jsonl"}, "the reasons");
  command->add_flag("-q,--quiet", options.quiet, "No progress and no warnings");
  command->footer(std::string(kLogForms) + "\n" + kFooter);
  return command;
}

ExitStatus runExplain(const ExplainOptions& options) {
  check(options);
  const Model model = readScoredModel(options.model);
  const ItemFinder finder(model);
  std::optional<std::int32_t> item;
  if (!options.item.empty()) item = finder.find("--why", options.item);
  std::vector<Case> cases;
  if (!options.log.path.empty())
    cases = casesOfLog(options, model);
  else
    cases.push_back(options.took.empty() ? caseOfText(*options.history)
                                         : caseOfBaskets(options.took, finder));
  Output output(options.output.path);
  const auto writer = ProposalWriter::make(formatOf(options.output), model.labels);
  writer->appendHeader(output.text());
  for (const Case& one : cases) {
    if (interrupted()) throw Interrupted();
    const std::vector<Proposal> proposals =
        options.returnType == "future"
            ? explainFutureItems(*model.lattice, &one.history, !options.allPrefixes)
            : explainCurrentItems(*model.lattice, &one.history);
    writer->append(output.text(), one.customer, readableSets(one.history, model.labels),
                   shown(proposals, options.maxReturn, item));
    output.flushIfFull();
  }
  output.finish();
  return ExitStatus::kDone;
}

}  // namespace orbseq

#include "cli/rules.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "cli/ItemFinder.h"
#include "cli/Output.h"
#include "cli/RuleWriter.h"
#include "cli/messages.h"
#include "io/process.h"
#include "io/statusError.h"
#include "lattice/LatticeDocument.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqAssociationRule.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

const char* const kFooter =
    R"help(A rule says: who had the antecedents, item set after item set, later took the consequents. It has
  support      of all customers, the share that has the whole sequence: 0 to 1
  confidence   of the customers with the antecedents, the share that took the consequents: 0 to 1
  cause        of the customers with the consequents, the share that had the antecedents: 0 to 1
  lift         confidence by the share of all customers that has the consequents
  count        customers that have the whole sequence

--with and --consequent take an item's number, its label, or how the label begins.

Examples:
  orbseq rules --model lattice.xml --min-confidence 0.4 --top 20
  orbseq rules --model lattice.xml --consequent 22423 --format csv --labels
  orbseq rules --model lattice.bin --min-support 0.05 --format pmml --output rules.pmml

Exit status: 0 done, 1 wrong usage, 2 bad model, 3 files or memory, 4 a bug, 130 interrupted.)help";

// A range lets a NaN pass, which no comparison puts outside.
std::string refusalOfNan(const std::string& text) {
  const bool isNan = std::isnan(std::strtod(text.c_str(), nullptr));
  return isNan ? "Value " + text + " not in range 0 to 1" : std::string();
}

void addBounds(CLI::App& command, RulesOptions& options) {
  const auto bound = [&command](const char* name, double& value, const char* text) {
    command.add_option(name, value, text)
        ->check(CLI::Range(0.0, 1.0).description(""))
        ->check(&refusalOfNan)
        ->type_name("X")
        ->capture_default_str();
  };
  bound("--min-support", options.minSupport, "Least support, 0 to 1");
  bound("--max-support", options.maxSupport, "Largest support, 0 to 1");
  bound("--min-confidence", options.minConfidence, "Least confidence, 0 to 1");
  bound("--max-confidence", options.maxConfidence, "Largest confidence, 0 to 1");
  bound("--min-cause", options.minCause, "Least cause, 0 to 1");
  command.add_option("--max-cause", options.maxCause, "Largest cause (default: any)")
      ->check(CLI::NonNegativeNumber.description(""))
      ->check(&refusalOfNan)
      ->type_name("X");
}

void addSelection(CLI::App& command, RulesOptions& options) {
  command
      .add_option("--sort", options.sort,
                  "support, confidence, cause (largest first) or none (by sequence)")
      ->check(CLI::IsMember({"support", "confidence", "cause", "none"}).description(""))
      ->type_name("BY")
      ->capture_default_str();
  command.add_flag("--maximal", options.maximal,
                   "Only rules of sequences that no stored sequence extends");
  command.add_option("--top", options.top, "Most rules, after sorting; 0: all")
      ->check(CLI::Range(std::size_t{0}, std::size_t{1} << 40U).description(""))
      ->type_name("N")
      ->capture_default_str();
  command.add_option("--with", options.with, "Only rules that hold the item; may be repeated")
      ->type_name("ITEM")
      ->expected(1)
      ->take_all();
  command
      .add_option("--consequent", options.consequent,
                  "Only rules whose consequents hold the item; may be repeated")
      ->type_name("ITEM")
      ->expected(1)
      ->take_all();
}

char sortCode(const std::string& sort) {
  if (sort == "support") return 'S';
  if (sort == "confidence") return 'C';
  return sort == "cause" ? 'A' : ' ';
}

bool holds(const Sequence& sequence, std::int32_t item) {
  for (std::int32_t k = 0; k < sequence.Length(); ++k) {
    const TimedItemSet& set = *sequence[k];
    if (std::binary_search(set.Begin(), set.End(), item)) return true;
  }
  return false;
}

// Which rules are asked for beyond the bounds.
struct Selection {
  std::vector<std::int32_t> with;
  std::vector<std::int32_t> consequent;

  bool takes(const SeqAssociationRule& rule) const {
    const auto inConsequent = [&rule](std::int32_t item) {
      return holds(rule.GetConsequent(), item);
    };
    const auto anywhere = [&rule, &inConsequent](std::int32_t item) {
      return inConsequent(item) || holds(rule.GetAntecedent(), item);
    };
    return std::all_of(with.begin(), with.end(), anywhere) &&
           std::all_of(consequent.begin(), consequent.end(), inConsequent);
  }
};

double keyOf(const SeqAssociationRule& rule, char sortBy) {
  if (sortBy == 'S') return rule.GetSupport();
  if (sortBy == 'C') return rule.GetConfidence();
  return sortBy == 'A' ? rule.GetCause() : 0.0;
}

// The largest first, and equal ones by their sequences: the order of the tables, which another form
// of the same model need not have, plays no part.
std::vector<const SeqAssociationRule*> inOrder(const std::vector<SeqAssociationRule>& rules,
                                               char sortBy) {
  std::vector<const SeqAssociationRule*> ordered;
  ordered.reserve(rules.size());
  for (const SeqAssociationRule& rule : rules) ordered.push_back(&rule);
  std::stable_sort(ordered.begin(), ordered.end(),
                   [sortBy](const SeqAssociationRule* a, const SeqAssociationRule* b) {
                     const double keyA = keyOf(*a, sortBy);
                     const double keyB = keyOf(*b, sortBy);
                     if (keyA != keyB) return keyA > keyB;
                     if (a->GetAntecedent() < b->GetAntecedent()) return true;
                     if (b->GetAntecedent() < a->GetAntecedent()) return false;
                     return a->GetConsequent() < b->GetConsequent();
                   });
  return ordered;
}

std::int32_t countOf(const Lattice& lattice, const Sequence& sequence) {
  const NTSequence packed(&sequence);
  const auto* const counter = lattice.getDescriptor(&packed);
  return counter == nullptr ? 0 : counter->getCount();
}

RatedRule rated(const Lattice& lattice, const SeqAssociationRule& rule) {
  Sequence whole(rule.GetAntecedent());
  whole.JoinTemporal(&rule.GetConsequent());
  const NTSequence nothing;
  const double customers = lattice.getDescriptor(&nothing)->getCount();
  const double share = countOf(lattice, rule.GetConsequent()) / customers;
  return {&rule, countOf(lattice, whole), rule.GetConfidence() / share};
}

void checkPmml(const RulesOptions& options) {
  if (options.top != 0 || !options.with.empty() || !options.consequent.empty())
    throw UsageError("--top, --with and --consequent do not go with --format pmml");
}

void writePmmlRules(const RulesOptions& options, const Model& model) {
  Output output(options.output);
  OutputStream stream(output);
  PmmlOptions pmml;
  pmml.minSupport = options.minSupport;
  pmml.maxSupport = options.maxSupport;
  pmml.minConfidence = options.minConfidence;
  pmml.maxConfidence = options.maxConfidence;
  pmml.minCause = options.minCause;
  pmml.maxCause = options.maxCause;
  pmml.sortBy = sortCode(options.sort);
  pmml.maximalOnly = options.maximal;
  pmml.lattice = false;
  pmml.labels = &model.labels;
  const auto status = writePmml(stream, *model.lattice, pmml);
  stream.finish();
  throwIfError(status);
  output.finish();
}

std::string formatOf(const RulesOptions& options) {
  if (!options.format.empty()) return options.format;
  return options.output == "-" && isTerminal(StandardStream::kOutput) ? "table" : "csv";
}

}  // namespace

CLI::App* addRulesCommand(CLI::App& program, RulesOptions& options) {
  CLI::App* command = program.add_subcommand(
      "rules", "List a model's rules: who had these item sets later took those");
  addModelOptions(*command, options.model);
  addBounds(*command, options);
  addSelection(*command, options);
  command->add_flag("--labels", options.labels, "With csv and text: labels instead of numbers");
  command
      ->add_option("--format", options.format,
                   "table, csv, jsonl, text or pmml (default: table on a terminal, else csv)")
      ->check(CLI::IsMember({"table", "csv", "jsonl", "text", "pmml"}).description(""))
      ->type_name("FORMAT");
  command
      ->add_option("-o,--output", options.output,
                   "Where rules go; the file is replaced as a whole; - is standard output")
      ->type_name("FILE")
      ->capture_default_str();
  command->add_flag("-q,--quiet", options.quiet, "No summary");
  command->footer(kFooter);
  return command;
}

ExitStatus runRules(const RulesOptions& options) {
  const std::string format = formatOf(options);
  if (format == "pmml") checkPmml(options);
  const Model model = readModel(options.model);
  if (format == "pmml") {
    writePmmlRules(options, model);
    return ExitStatus::kDone;
  }
  const ItemFinder finder(model);
  const Selection selection{finder.findAll("--with", options.with),
                            finder.findAll("--consequent", options.consequent)};
  std::vector<SeqAssociationRule> rules;
  throwIfError(model.lattice->GetRules(
      rules, options.minSupport, options.maxSupport, options.minConfidence, options.maxConfidence,
      options.minCause, options.maxCause, sortCode(options.sort), options.maximal));

  Output output(options.output);
  const std::vector<const SeqAssociationRule*> ordered = inOrder(rules, sortCode(options.sort));
  const auto writer = RuleWriter::make(format, model.labels, options.labels);
  writer->appendHeader(output.text());
  std::size_t written = 0;
  for (const SeqAssociationRule* const rule : ordered) {
    if (options.top != 0 && written == options.top) break;
    if (!selection.takes(*rule)) continue;
    writer->appendRule(output.text(), rated(*model.lattice, *rule));
    output.flushIfFull();
    ++written;
  }
  output.finish();
  if (!options.quiet)
    printMessage(fmt::format("{} rule{} of {} within the bounds", written, written == 1 ? "" : "s",
                             rules.size()));
  return ExitStatus::kDone;
}

}  // namespace orbseq

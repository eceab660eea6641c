#include "cli/inspect.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "cli/ModelSummary.h"
#include "cli/Output.h"
#include "cli/displayText.h"
#include "cli/numberText.h"
#include "cli/sequenceText.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

namespace {

using nlohmann::ordered_json;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

const char* const kFooter =
    R"help(Without --json and --sequences an overview for people. With --sequences every stored sequence
but the empty one, and nothing else, by number of items and then in order, a line each:
  1 2 -1 3 -1 #SUP: 120
items separated by blanks, -1 behind each item set, and the number of customers. With --labels an
item's label stands for its number, in double quotes where it holds a blank.

Examples:
  orbseq inspect --model lattice.xml
  orbseq inspect --model lattice.bin --json
  orbseq inspect --model lattice.bin --sequences --labels

Exit status: 0 done, 1 wrong usage, 2 bad model, 3 files or memory, 4 a bug, 130 interrupted.)help";

std::string labelOf(const Model& model, std::int32_t item) {
  const auto found = model.labels.find(item);
  return found == model.labels.end() ? std::string() : found->second;
}

double shareOf(std::int32_t count, std::int32_t customers) {
  return customers == 0 ? 0.0 : static_cast<double>(count) / customers;
}

// --- Overview for people -------------------------------------------------------------------------

void appendFacts(std::string& out, const Model& model, const ModelSummary& summary) {
  const Lattice& lattice = *model.lattice;
  const auto line = [&out](const char* name, const std::string& value) {
    fmt::format_to(std::back_inserter(out), "{:<22}{}\n", name, value);
  };
  line("customers", std::to_string(summary.customers));
  line("sequences", std::to_string(summary.sequences));
  line("items", fmt::format("{} ({} with labels)", summary.items.size(), model.labels.size()));
  line("links", fmt::format("{}{}", summary.links, lattice.isLatticeBuilt() ? "" : " (not built)"));
  line("reduction threshold", fmt::format("{:.6g}", lattice.getReductionThreshold()));
  line("sliding window", fmt::format("{:.6g}", lattice.getSlidingWindow()));
  line("minimum gap", fmt::format("{:.6g}", lattice.getMinGap()));
  line("maximum gap", fmt::format("{:.6g}", lattice.getMaxGap()));
  line("memory", fmt::format("about {:.1f} MiB",
                             static_cast<double>(summary.memoryBytes) / (1024.0 * 1024.0)));
}

void appendLevels(std::string& out, const Model& model, const ModelSummary& summary) {
  out += "\nlevel   sequences     buckets\n";
  for (std::size_t level = 0; level < summary.byLevel.size(); ++level) {
    const HashtableSQPair* const table = model.lattice->getTable(static_cast<std::int32_t>(level));
    fmt::format_to(std::back_inserter(out), "{:>5}  {:>10}  {:>10}\n", level,
                   summary.byLevel[level], table == nullptr ? 0 : table->getCapacity());
  }
}

void appendItems(std::string& out, const Model& model, const ModelSummary& summary,
                 std::size_t most) {
  const std::size_t shown = std::min(most, summary.items.size());
  if (shown == 0) return;
  out += "\n      item   customers   support  label\n";
  for (std::size_t i = 0; i < shown; ++i) {
    const auto [item, count] = summary.items[i];
    fmt::format_to(std::back_inserter(out), "{:>10}  {:>10}  {:>8.4f}  {}\n", item, count,
                   shareOf(count, summary.customers), printable(labelOf(model, item)));
  }
  if (shown < summary.items.size())
    fmt::format_to(std::back_inserter(out), "... and {} more (--items N shows more)\n",
                   summary.items.size() - shown);
}

// --- For programs --------------------------------------------------------------------------------

ordered_json settingsJson(const Lattice& lattice) {
  ordered_json settings;
  settings["level_table_size"] = lattice.getSettings().levelTableSize;
  settings["upper_table_size"] = lattice.getSettings().upperTableSize;
  settings["levels"] = lattice.getNumLevels();
  return settings;
}

void appendJson(std::string& out, const Model& model, const ModelSummary& summary) {
  const Lattice& lattice = *model.lattice;
  ordered_json root;
  root["customers"] = summary.customers;
  root["sequences"] = summary.sequences;
  root["links"] = summary.links;
  root["lattice_built"] = lattice.isLatticeBuilt();
  root["reduction_threshold"] = lattice.getReductionThreshold();
  root["sliding_window"] = lattice.getSlidingWindow();
  root["min_gap"] = lattice.getMinGap();
  root["max_gap"] = lattice.getMaxGap();
  root["memory_bytes"] = summary.memoryBytes;
  root["settings"] = settingsJson(lattice);
  root["levels"] = summary.byLevel;
  root["items"] = ordered_json::array();
  for (const auto& [item, count] : summary.items) {
    ordered_json entry;
    entry["item"] = item;
    entry["label"] = labelOf(model, item);
    entry["count"] = count;
    entry["support"] = shareOf(count, summary.customers);
    root["items"].push_back(std::move(entry));
  }
  out += root.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

void writeSequences(Output& output, const Model& model, bool withLabels) {
  const ItemLabelMap* const labels = withLabels ? &model.labels : nullptr;
  for (std::int32_t level = 0; level < model.lattice->getNumLevels(); ++level) {
    const HashtableSQPair* const table = model.lattice->getTable(level);
    if (table == nullptr) continue;
    std::vector<std::pair<std::unique_ptr<const Sequence>, const SequenceCounter*>> sequences;
    sequences.reserve(static_cast<std::size_t>(table->getSize()));
    for (const ISQCPair& entry : *table)
      if (entry.key->size() > 0) sequences.emplace_back(entry.key->createSequence(), entry.value);
    std::sort(sequences.begin(), sequences.end(),
              [](const auto& a, const auto& b) { return *a.first < *b.first; });
    for (const auto& [sequence, counter] : sequences) {
      appendSets(output.text(), *sequence, labels, true);
      output.text() += " #SUP: ";
      appendInteger(output.text(), counter == nullptr ? 0 : counter->getCount());
      output.text() += '\n';
      output.flushIfFull();
    }
  }
}

}  // namespace

CLI::App* addInspectCommand(CLI::App& program, InspectOptions& options) {
  CLI::App* command = program.add_subcommand("inspect", "Tell what a model holds");
  addModelOptions(*command, options.model);
  CLI::Option* const json =
      command->add_flag("--json", options.json, "One JSON object instead of tables");
  CLI::Option* const sequences =
      command->add_flag("--sequences", options.sequences, "Every stored sequence, a line each");
  sequences->excludes(json);
  command
      ->add_flag("--labels", options.labels,
                 "With --sequences: labels instead of the items' numbers")
      ->needs(sequences);
  command->add_option("--items", options.items, "Items listed, the most frequent first")
      ->check(CLI::Range(std::size_t{0}, std::size_t{1} << 40U).description(""))
      ->type_name("N")
      ->capture_default_str();
  command
      ->add_option("-o,--output", options.output,
                   "Where the text goes; the file is replaced as a whole; - is standard output")
      ->type_name("FILE")
      ->capture_default_str();
  command->footer(kFooter);
  return command;
}

ExitStatus runInspect(const InspectOptions& options) {
  const Model model = readModel(options.model);
  Output output(options.output);
  if (options.sequences) {
    writeSequences(output, model, options.labels);
  } else {
    const ModelSummary summary = summaryOf(*model.lattice);
    if (options.json) {
      appendJson(output.text(), model, summary);
    } else {
      appendFacts(output.text(), model, summary);
      appendLevels(output.text(), model, summary);
      appendItems(output.text(), model, summary, options.items);
    }
  }
  output.finish();
  return ExitStatus::kDone;
}

}  // namespace orbseq

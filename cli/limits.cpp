#include "cli/limits.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>

#include "common/Limits.h"

namespace orbseq {

namespace {

constexpr std::uint64_t kNone = std::numeric_limits<std::uint64_t>::max();

struct Row {
  const char* what;
  std::uint64_t usual;
  std::uint64_t strangers;
  const char* option;
};

std::string numberText(std::uint64_t limit) {
  return limit == kNone ? "none" : fmt::format("{}", limit);
}

}  // namespace

std::string limitsText() {
  const DocumentLimits document;
  const CsvLimits csv;
  const CaseLimits usual;
  const CaseLimits strangers = CaseLimits::strangers();
  const auto fixed = [](const char* what, std::uint64_t limit, const char* option = "") {
    return Row{what, limit, limit, option};
  };
  const Row rows[] = {
      fixed("document: bytes", document.bytes, "--max-document-bytes"),
      fixed("document: elements", document.elements, "--max-elements"),
      fixed("document: elements inside one another", static_cast<std::uint64_t>(document.depth)),
      fixed("document: attributes of an element", static_cast<std::uint64_t>(document.attributes)),
      fixed("document: bytes of a name", document.nameBytes),
      fixed("document: different names", document.names),
      fixed("lattice: items of a sequence", LatticeLimits::kItemsInSequence),
      fixed("lattice: levels (at least 1)", LatticeLimits::kLevels),
      fixed("lattice: buckets of all levels", LatticeLimits::kBuckets),
      fixed("lattice: sequences that share a bucket", kMostInChain, "--max-chain"),
      fixed("csv: bytes of a field", csv.fieldBytes),
      fixed("csv: fields of a row", csv.fields),
      fixed("csv and lines: bytes of a row", csv.rowBytes),
      fixed("labels beside a model: bytes of a field", kLabelLimits.fieldBytes),
      fixed("labels beside a model: bytes of a row", kLabelLimits.rowBytes),
      fixed("json: arrays and objects inside one another", LogLimits::kJsonDepth),
      fixed("log: different items that are texts", LogLimits::kTexts),
      fixed("log: bytes of an item or a description", LogLimits::kTextBytes),
      fixed("gzip: bytes for each compressed one", LogLimits::kGzipExpansion),
      fixed("database in memory: bytes", LogLimits::kDatabaseInMemory),
      fixed("database: bytes of a text or a row", LogLimits::kDatabaseBytes),
      {"history: bytes", usual.textBytes, strangers.textBytes, "--max-case-bytes"},
      {"history: item sets", usual.sets, strangers.sets, "--max-case-sets"},
      {"history: items of its sets", usual.items, strangers.items, "--max-case-items"},
      {"history: links its search goes through", usual.steps, strangers.steps, "--max-case-steps"},
  };
  std::string text =
      fmt::format("{:<44} {:>10}  {:>18}  {}\n", "most", "default", "--limits strangers", "option");
  for (const Row& row : rows) {
    std::string line = fmt::format("{:<44} {:>10}  {:>18}  {}", row.what, numberText(row.usual),
                                   numberText(row.strangers), row.option);
    line.resize(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace orbseq

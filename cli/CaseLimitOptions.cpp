#include "cli/CaseLimitOptions.h"

#include <CLI/CLI.hpp>

namespace orbseq {

namespace {

template <class Number>
void addLimit(CLI::App& command, const char* name, std::optional<Number>& limit,
              const char* meaning) {
  command.add_option(name, limit, meaning)
      ->check(CLI::Range(Number{0}, Number{1} << 40U).description(""))
      ->type_name("N");
}

}  // namespace

void addCaseLimitOptions(CLI::App& command, CaseLimitOptions& options) {
  command
      .add_option("--limits", options.limits,
                  "none, or strangers: histories that are larger, or whose search takes longer, "
                  "than a stranger's should are an error (see: orbseq --limits)")
      ->check(CLI::IsMember({"none", "strangers"}).description(""))
      ->type_name("NAME")
      ->capture_default_str();
  addLimit(command, "--max-case-bytes", options.textBytes, "Most bytes of a history");
  addLimit(command, "--max-case-sets", options.sets, "Most item sets of a history");
  addLimit(command, "--max-case-items", options.items, "Most items of a history's sets");
  addLimit(command, "--max-case-steps", options.steps,
           "Most links that the search of a history may go through");
}

bool isLimited(const CaseLimitOptions& options) noexcept {
  return options.limits != "none" || options.textBytes || options.sets || options.items ||
         options.steps;
}

CaseLimits limitsOf(const CaseLimitOptions& options) noexcept {
  CaseLimits limits = options.limits == "strangers" ? CaseLimits::strangers() : CaseLimits();
  limits.textBytes = options.textBytes.value_or(limits.textBytes);
  limits.sets = options.sets.value_or(limits.sets);
  limits.items = options.items.value_or(limits.items);
  limits.steps = options.steps.value_or(limits.steps);
  return limits;
}

}  // namespace orbseq

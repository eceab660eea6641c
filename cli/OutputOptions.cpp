#include "cli/OutputOptions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>

#include "io/process.h"

namespace orbseq {

void addOutputOptions(CLI::App& command, OutputOptions& options,
                      const std::vector<std::string>& forms, const std::string& what) {
  command
      .add_option(
          "--format", options.format,
          fmt::format("{} (default: table on a terminal, else csv)", fmt::join(forms, ", ")))
      ->check(CLI::IsMember(forms).description(""))
      ->type_name("FORMAT");
  command
      .add_option(
          "-o,--output", options.path,
          fmt::format("Where {} go; the file is replaced as a whole; - is standard output", what))
      ->type_name("FILE")
      ->capture_default_str();
}

std::string formatOf(const OutputOptions& options) {
  if (!options.format.empty()) return options.format;
  const bool forPeople = options.path == "-" && isTerminal(StandardStream::kOutput);
  return forPeople ? "table" : "csv";
}

}  // namespace orbseq

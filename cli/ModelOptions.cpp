#include "cli/ModelOptions.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <limits>

#include "cli/exitStatus.h"
#include "common/Limits.h"
#include "io/ModelFile.h"
#include "io/process.h"

namespace orbseq {

void addModelOptions(CLI::App& command, ModelOptions& options, bool isRequired) {
  command
      .add_option("-m,--model", options.model,
                  "Model in any form: lattice document, PMML document with one, binary, object-XML")
      ->required(isRequired)
      ->type_name("FILE");
  command
      .add_option("--max-document-bytes", options.limits.bytes,
                  "Largest XML document that is read, in bytes")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1} << 40U).description(""))
      ->type_name("N")
      ->capture_default_str();
  command
      .add_option("--max-elements", options.limits.elements,
                  "Most XML elements of a document that is read")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1} << 40U).description(""))
      ->type_name("N")
      ->capture_default_str();
  command
      .add_option_function<std::int32_t>(
          "--max-chain", setMostInChain,
          "Most sequences of a model's level that may share a bucket (default: 1000)")
      ->check(CLI::Range(std::int32_t{1}, std::numeric_limits<std::int32_t>::max()).description(""))
      ->type_name("N");
}

void addFormOption(CLI::App& command, std::string& to) {
  command
      .add_option(
          "--to", to,
          "document, pmml, binary, objxml or compiled (default: told by the name of the output)")
      ->check(CLI::IsMember({"document", "pmml", "binary", "objxml", "compiled"}).description(""))
      ->type_name("FORM");
}

ModelForm outputForm(const std::string& output, const std::string& to) {
  const auto form = to.empty() ? modelFormOfFile(output) : modelFormOf(to);
  if (form) return *form;
  throw UsageError("--output: the name " + output +
                   " does not tell the form; give --to document, pmml, binary or objxml");
}

Model readModel(const ModelOptions& options) {
  Model model = readModel(options.model, options.limits);
  if (interrupted()) throw Interrupted();
  return model;
}

Model readScoredModel(const ModelOptions& options) {
  Model model = readScoredModel(options.model, options.limits);
  if (interrupted()) throw Interrupted();
  return model;
}

}  // namespace orbseq

#include "cli/convert.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/ModelSummary.h"
#include "cli/Output.h"
#include "cli/messages.h"
#include "io/ModelFile.h"
#include "io/modelLabels.h"
#include "lattice/LatticeDocument.h"

namespace orbseq {

namespace {

const char* const kFooter =
    R"help(Forms:
  document  lattice document (XML), which a host hands to the scoring module; .xml
  pmml      PMML document: every rule, and the lattice for the scoring module; .pmml
  binary    compact and fast to read; .bin
  objxml    objects in lines of XML; .objxml
  compiled  what `score` answers from, at once and on this version alone: a second form of a model
            that is kept in another one, since no lattice can be read back from it; .compiled
Binary, objxml and compiled have no room for labels: they go into FILE.labels.csv beside the file,
and are read from there; a former file of that name is replaced, or removed where it is not needed.

A document is closed by one more, empty level, since the scoring module leaves the highest level of
a document out; --open writes it without that level and without labels.

Examples:
  orbseq convert --model lattice.xml --output lattice.bin
  orbseq convert --model lattice.bin --output shop.pmml
  orbseq convert --model lattice.xml --output lattice.compiled
  orbseq convert --model lattice.bin --to document --output - | xmllint --format -

Exit status: 0 done, 1 wrong usage, 2 bad model, 3 files or memory, 4 a bug, 130 interrupted.
The output is replaced as a whole: whatever happens, its name leads to the old file or to the new.)help";

// Onto standard output, or open, which no file of ours is for scoring.
void writeTo(const ConvertOptions& options, const Model& model, ModelForm form) {
  Output output(options.output);
  OutputStream stream(output);
  if (options.open)
    writeLatticeDocument(stream, *model.lattice, {});
  else
    writeModel(stream, model, form);
  stream.finish();
  output.finish();
}

}  // namespace

CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options) {
  CLI::App* command = program.add_subcommand("convert", "Turn a model from one form into another");
  addModelOptions(*command, options.model);
  command
      ->add_option("-o,--output", options.output,
                   "Where the model goes; the file is replaced as a whole; - is standard output")
      ->required()
      ->type_name("FILE");
  addFormOption(*command, options.to);
  command->add_flag("--open", options.open,
                    "With document: without the closing level and the labels");
  command->add_flag("-q,--quiet", options.quiet, "No summary");
  command->footer(kFooter);
  return command;
}

ExitStatus runConvert(const ConvertOptions& options) {
  const ModelForm form = outputForm(options.output, options.to);
  if (options.open && form != ModelForm::kDocument) throw UsageError("--open is for --to document");
  const Model model = readModel(options.model);
  bool removedLabels = false;
  if (options.open || options.output == "-")
    writeTo(options, model, form);
  else
    removedLabels = saveModel(options.output, model, form);
  if (options.quiet) return ExitStatus::kDone;
  const bool keeps = !options.open && keepsLabels(options.output, form);
  printMessage(fmt::format("{} sequences, {} labels written as {}",
                           summaryOf(*model.lattice).sequences, keeps ? model.labels.size() : 0,
                           nameOf(form)));
  if (!keeps && !model.labels.empty())
    printMessage(fmt::format("{} labels left out", model.labels.size()));
  if (removedLabels)
    printMessage("removed " + labelFileOf(options.output) + ", the labels of a former model");
  return ExitStatus::kDone;
}

}  // namespace orbseq

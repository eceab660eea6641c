// The options by which the commands name the model that they read, and the form of one that they
// write.

#ifndef CLI_MODELOPTIONS_H_
#define CLI_MODELOPTIONS_H_

#include <string>

#include "host/DocumentLimits.h"
#include "io/Model.h"
#include "io/ModelForm.h"

namespace CLI {
class App;
}

namespace orbseq {

struct ModelOptions {
  std::string model;  // path of a model in any form
  OrbScore::DocumentLimits limits;
};

// `options` must outlive the parsing.
void addModelOptions(CLI::App& command, ModelOptions& options, bool isRequired = true);

// Errors: as io/ModelFile.h.
Model readModel(const ModelOptions& options);
Model readScoredModel(const ModelOptions& options);

// The option --to of a command that writes a model, and the form that it and the output's name come
// to. Throws UsageError when neither tells one.
void addFormOption(CLI::App& command, std::string& to);
ModelForm outputForm(const std::string& output, const std::string& to);

}  // namespace orbseq

#endif  // CLI_MODELOPTIONS_H_

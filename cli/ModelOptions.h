// The options by which every command names the model that it reads.

#ifndef CLI_MODELOPTIONS_H_
#define CLI_MODELOPTIONS_H_

#include <string>

#include "host/DocumentLimits.h"
#include "io/Model.h"

namespace CLI {
class App;
}

namespace orbseq {

struct ModelOptions {
  std::string model;  // path of a model in any form
  OrbScore::DocumentLimits limits;
};

// `options` must outlive the parsing.
void addModelOptions(CLI::App& command, ModelOptions& options);

// Errors: as io/ModelFile.h.
Model readModel(const ModelOptions& options);

}  // namespace orbseq

#endif  // CLI_MODELOPTIONS_H_

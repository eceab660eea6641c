// The command `orbseq evaluate`: how well a model, or what would be trained so, foretells what was
// held back, beside what is popular.

#ifndef CLI_EVALUATE_H_
#define CLI_EVALUATE_H_

#include <string>

#include "cli/LogInput.h"
#include "cli/ModelOptions.h"
#include "cli/OutputOptions.h"
#include "cli/Training.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct EvaluateOptions {
  LogInput log;
  ModelOptions model;  // without a path: one is trained
  Training training;
  std::string holdBack = "last";  // or a share of the log's time, above 0 and below 1
  bool allPrefixes = false;
  OutputOptions output;
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addEvaluateCommand(CLI::App& program, EvaluateOptions& options);

ExitStatus runEvaluate(const EvaluateOptions& options);

}  // namespace orbseq

#endif  // CLI_EVALUATE_H_

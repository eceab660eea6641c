// The command `orbseq train`: from a log of what customers took to a model.

#ifndef CLI_TRAIN_H_
#define CLI_TRAIN_H_

#include <string>

#include "cli/LogInput.h"
#include "cli/Training.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct TrainOptions {
  LogInput log;
  Training training;
  std::string output;
  std::string to;  // document, pmml, binary or objxml; empty: told by the output's name
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addTrainCommand(CLI::App& program, TrainOptions& options);

ExitStatus runTrain(const TrainOptions& options);

}  // namespace orbseq

#endif  // CLI_TRAIN_H_

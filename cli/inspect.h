// The command `orbseq inspect`: what a model holds.

#ifndef CLI_INSPECT_H_
#define CLI_INSPECT_H_

#include <cstddef>
#include <string>

#include "cli/ModelOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct InspectOptions {
  ModelOptions model;
  bool json = false;       // one JSON object instead of tables
  bool sequences = false;  // every stored sequence instead of an overview
  bool labels = false;     // with sequences: labels instead of numbers
  std::size_t items = 20;  // items that the overview lists, most frequent first
  std::string output = "-";
};

// `options` must outlive the program's parsing and run.
CLI::App* addInspectCommand(CLI::App& program, InspectOptions& options);

ExitStatus runInspect(const InspectOptions& options);

}  // namespace orbseq

#endif  // CLI_INSPECT_H_

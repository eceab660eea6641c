// The command `orbseq convert`: a model from one form into another.

#ifndef CLI_CONVERT_H_
#define CLI_CONVERT_H_

#include <string>

#include "cli/ModelOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct ConvertOptions {
  ModelOptions model;
  std::string output;  // path; "-": standard output
  std::string to;      // document, pmml, binary or objxml; empty: told by the output's name
  bool open = false;   // with document: without the closing level and the labels
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addConvertCommand(CLI::App& program, ConvertOptions& options);

ExitStatus runConvert(const ConvertOptions& options);

}  // namespace orbseq

#endif  // CLI_CONVERT_H_

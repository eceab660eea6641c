// The command `orbseq rules`: a model's rules.

#ifndef CLI_RULES_H_
#define CLI_RULES_H_

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "cli/ModelOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct RulesOptions {
  ModelOptions model;
  // Inclusive bounds, fractions.
  double minSupport = 0.0;
  double maxSupport = 1.0;
  double minConfidence = 0.0;
  double maxConfidence = 1.0;
  double minCause = 0.0;
  double maxCause = std::numeric_limits<double>::max();
  std::string sort = "confidence";      // support, confidence, cause or none
  bool maximal = false;                 // only sequences that extend to nothing
  std::size_t top = 0;                  // most rules, after sorting; 0: all
  std::vector<std::string> with;        // items, all of which the rule holds
  std::vector<std::string> consequent;  // items, all of which the consequent holds
  bool labels = false;                  // csv and text: labels instead of numbers
  std::string format;                   // table, csv, jsonl, text or pmml; empty: as the output is
  std::string output = "-";
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addRulesCommand(CLI::App& program, RulesOptions& options);

ExitStatus runRules(const RulesOptions& options);

}  // namespace orbseq

#endif  // CLI_RULES_H_

// The command `orbseq explain`: why items are recommended.

#ifndef CLI_EXPLAIN_H_
#define CLI_EXPLAIN_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/LogInput.h"
#include "cli/ModelOptions.h"
#include "cli/OutputOptions.h"
#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct ExplainOptions {
  ModelOptions model;
  LogInput log;                        // the histories; no path: one of the two below
  std::optional<std::string> history;  // as text
  std::vector<std::string> took;       // baskets, oldest first: items separated by commas
  std::vector<std::string> who;        // customers to explain; empty: all
  std::string item;                    // explain this item alone; empty: every answer
  std::string returnType = "current";  // or future
  std::int32_t maxReturn = 20;         // most answers a customer
  bool allPrefixes = false;
  OutputOptions output;
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addExplainCommand(CLI::App& program, ExplainOptions& options);

ExitStatus runExplain(const ExplainOptions& options);

}  // namespace orbseq

#endif  // CLI_EXPLAIN_H_

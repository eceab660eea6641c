// What the command line of `orbseq score` says.

#ifndef CLI_SCOREOPTIONS_H_
#define CLI_SCOREOPTIONS_H_

#include <cstdint>
#include <string>

#include "cli/CaseLimitOptions.h"
#include "cli/LogInput.h"
#include "cli/ModelOptions.h"
#include "cli/OutputOptions.h"

namespace orbseq {

struct ScoreOptions {
  ModelOptions model;
  LogInput log;                        // the histories
  std::string returnType = "current";  // current or future
  std::int32_t maxReturn = 20;         // most answers a customer; 0 or more
  bool allPrefixes = false;            // future items: shorter beginnings are searched as well
  OutputOptions output;
  bool quiet = false;      // no progress, no summary
  bool dryRun = false;     // read everything, score nothing
  int threads = 0;         // 0: all cores
  std::string module;      // path of a plug-in that answers; empty: the engine does
  CaseLimitOptions cases;  // what bounds a history and its search
};

}  // namespace orbseq

#endif  // CLI_SCOREOPTIONS_H_

// The command `orbseq train`: from a log of what customers took to a model.

#ifndef CLI_TRAIN_H_
#define CLI_TRAIN_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct TrainOptions {
  std::string input;        // path of the log; "-": standard input
  std::string inputFormat;  // csv, tsv, spmf or basket; empty: told by the input's name
  std::string customer = "customer";
  std::string time = "time";
  std::string item = "item";
  std::string label;
  std::string items = "auto";  // auto, integer or text
  std::string basket;          // period that makes one basket; empty: equal times do
  std::size_t skipBadRows = 0;

  double minSupport = 0.0;  // below 1 a share of the customers, else a number of them
  std::int32_t maxItems = 31;
  std::int32_t maxSets = 31;
  std::int32_t maxItemsPerSet = 31;
  double minGap = 0.0;
  double maxGap = std::numeric_limits<double>::infinity();
  double maxSpan = std::numeric_limits<double>::infinity();
  std::string algorithm = "exact";  // exact or carma
  bool onePass = false;             // carma: bounds instead of a second pass
  int threads = 1;
  std::size_t maxMemory = std::numeric_limits<std::size_t>::max();
  double maxSeconds = std::numeric_limits<double>::infinity();

  std::string output;
  std::string to;  // document, pmml, binary or objxml; empty: told by the output's name
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addTrainCommand(CLI::App& program, TrainOptions& options);

ExitStatus runTrain(const TrainOptions& options);

}  // namespace orbseq

#endif  // CLI_TRAIN_H_

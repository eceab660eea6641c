// The options of mining, and from a log to a lattice by them, for the commands that make a model.

#ifndef CLI_TRAINING_H_
#define CLI_TRAINING_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "io/Model.h"
#include "mining/MinerOptions.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace orbseq {

class SequenceDatabase;

struct Training {
  double minSupport = 0.0;  // below 1 a share of the customers, else a number of them
  std::int32_t maxItems = MinerOptions::kMostItems;
  std::int32_t maxSets = MinerOptions::kMostItems;
  std::int32_t maxItemsPerSet = MinerOptions::kMostItems;
  std::vector<std::string> include;  // items by number, label or a label's first word
  std::vector<std::string> exclude;
  double minGap = 0.0;
  double maxGap = std::numeric_limits<double>::infinity();
  double maxSpan = std::numeric_limits<double>::infinity();
  std::string algorithm = "exact";  // or carma
  bool onePass = false;             // carma: upper bounds, no second pass
  int threads = 0;                  // 0: all cores
  std::size_t maxMemory = std::numeric_limits<std::size_t>::max();  // bytes
  double maxSeconds = std::numeric_limits<double>::infinity();
};

// Adds the options, --min-support first, which it answers. `training` must outlive the parsing.
CLI::Option* addTrainingOptions(CLI::App& command, Training& training);

// What the help of such a command says of mining.
extern const char* const kTrainingHelp;

// Throws UsageError for options that do not go together.
void checkTraining(const Training& training);

// The limits for a log of so many customers, whose items have those labels. Throws UsageError for
// an item that nothing is called.
MinerOptions minerOptionsOf(const Training& training, std::size_t customers,
                            const ItemLabelMap& labels);

// Mines, fills and links. Throws MinerStopped, UsageError, Interrupted.
std::unique_ptr<Lattice> trainLattice(const Training& training, const MinerOptions& options,
                                      const SequenceDatabase& database, bool showsProgress);

}  // namespace orbseq

#endif  // CLI_TRAINING_H_

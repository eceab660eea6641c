// The command `orbseq generate`: a log of a simulated shop, to try the other commands on.

#ifndef CLI_GENERATE_H_
#define CLI_GENERATE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "cli/exitStatus.h"

namespace CLI {
class App;
}

namespace orbseq {

struct GenerateOptions {
  std::uint64_t customers = 0;  // 1 to 10'000'000
  std::uint64_t seed = 1;
  std::size_t items = 400;           // products of the shop, 50 to 100'000
  std::int32_t days = 365;           // 30 to 3650
  std::string start = "2025-01-01";  // first day, YYYY-MM-DD, 1970 to 2199
  std::string output = "-";          // path of the log; "-": standard output
  bool quiet = false;
};

// `options` must outlive the program's parsing and run.
CLI::App* addGenerateCommand(CLI::App& program, GenerateOptions& options);

// Writes CSV: the columns customer, time, item and label, a row for each product that a customer
// takes, by customer, time and item. Customer k is the same however many there are.
ExitStatus runGenerate(const GenerateOptions& options);

}  // namespace orbseq

#endif  // CLI_GENERATE_H_

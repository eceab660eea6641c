// The options by which the commands name a log of what customers took, or customers' histories.

#ifndef CLI_LOGINPUT_H_
#define CLI_LOGINPUT_H_

#include <cstddef>
#include <string>

#include "io/LogReader.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace orbseq {

struct LogInput {
  std::string path;    // "-": standard input
  std::string format;  // of io/LogFormat.h; empty: told by the path
  std::string query;   // of a database
  std::string customer = "customer";
  std::string time = "time";
  std::string item = "item";
  std::string label;
  std::string items = "auto";  // auto, integer or text
  std::string basket;          // period that makes one basket; empty: equal times do
  std::size_t skipBadRows = 0;
};

// Adds --input and what describes it. With `numbersItems`, also --label and --items, for commands
// that make a model. `input` must outlive the parsing.
CLI::Option* addLogInput(CLI::App& command, LogInput& input, const std::string& text,
                         bool numbersItems);

// What the help of such a command says of the forms.
extern const char* const kLogForms;

// Throws UsageError.
LogOptions logOptionsOf(const LogInput& input);

// Reads the log with a progress bar where `showsProgress`; Interrupted when a person asks to stop.
TransactionLog readLog(const LogInput& input, const LogOptions& options, bool showsProgress);

// Warns of what was left out: bad rows, and items that a model does not know.
void warnOfOmissions(std::size_t badRows, const UnknownItems& unknown);

}  // namespace orbseq

#endif  // CLI_LOGINPUT_H_

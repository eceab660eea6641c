// Where a command's answers go, and in which form.

#ifndef CLI_OUTPUTOPTIONS_H_
#define CLI_OUTPUTOPTIONS_H_

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace orbseq {

struct OutputOptions {
  std::string format;      // of the command's forms; empty: as the output is
  std::string path = "-";  // "-": standard output
};

// Adds --format and --output; `forms` begins with table, csv. `what` goes there ("answers").
// `options` must outlive the parsing.
void addOutputOptions(CLI::App& command, OutputOptions& options,
                      const std::vector<std::string>& forms, const std::string& what);

// The form that is asked for, or else: table where people look on, csv where they do not.
std::string formatOf(const OutputOptions& options);

}  // namespace orbseq

#endif  // CLI_OUTPUTOPTIONS_H_

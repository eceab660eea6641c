// The program's exit statuses, and the one place where a failure becomes one of them.

#ifndef CLI_EXITSTATUS_H_
#define CLI_EXITSTATUS_H_

#include <stdexcept>

namespace orbseq {

enum class ExitStatus : int {
  kDone = 0,
  kUsage = 1,          // the command line is wrong
  kInput = 2,          // the input's data are bad
  kEnvironment = 3,    // files, plug-in or memory
  kBug = 4,            // a bug of this program
  kInterrupted = 130,  // stopped by a signal
};

// The command line is wrong in a way that only the command itself sees.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A person asked to stop; thrown between two customers.
class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};

// Prints one line on standard error for the exception that is being handled and answers the status
// that belongs to it. Requires a call from within a catch block. Whatever fails after a request to
// stop counts as interrupted, since the request itself makes waiting reads and writes fail.
ExitStatus reportCurrentException() noexcept;

}  // namespace orbseq

#endif  // CLI_EXITSTATUS_H_

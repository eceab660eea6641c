// What went wrong, for whoever has caught it: every family of exceptions that this system throws,
// told apart and put into one line. Names of files stand in it as they were given: who prints the
// line escapes what is not printable.

#ifndef IO_FAILURE_H_
#define IO_FAILURE_H_

#include <string>

namespace orbseq {

enum class FailureKind {
  kInput,        // what was given is refused: the text names the place, the value and the range
  kEnvironment,  // files, plug-in, memory, time: look at the machine
  kBug,          // nothing that this system should let out
};

struct Failure {
  FailureKind kind;
  std::string text;  // "what: where: detail"
};

// Tells of the exception that is being handled. Requires a call from within a catch block. One that
// was thrown by pointer is deleted: this is its catcher.
Failure currentFailure();

}  // namespace orbseq

#endif  // IO_FAILURE_H_

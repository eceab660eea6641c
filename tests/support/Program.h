// Runs a program as a process, the built `orbseq` unless told otherwise, and tells what it did.
//
// A process that hangs is ended by a signal after five minutes.

#ifndef TESTS_SUPPORT_PROGRAM_H_
#define TESTS_SUPPORT_PROGRAM_H_

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace orbseq::test {

inline constexpr uid_t kNobody = 65534;  // the user, and the group, without any rights

struct Outcome {
  int status = -1;  // exit status; 128 + the signal's number when a signal ended the process
  std::string output;
  std::string error;
};

// How the process is started, beside its arguments.
struct Surroundings {
  std::string program = ORBSEQ_BINARY_DIR "/orbseq";  // its path
  std::string input{};                                // what standard input gives
  std::string outputPath{};                // standard output goes there; empty: it is captured
  std::string errorPath{};                 // standard error likewise
  std::vector<std::string> environment{};  // "NAME=value", added to the test's own
  bool closeOutput = false;                // the process starts without standard output
  bool closeError = false;                 // ... without standard error
  uid_t user = 0;                          // whose rights it has; 0: the test's own
  std::size_t dataBytes = 0;               // of memory that it can write; 0: as much as there is
  std::size_t stackBytes = 0;              // of every thread; 0: as the system has it
};

// One run of a program. Destruction waits for the process.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments, const Surroundings& surroundings = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Requires that wait() has not been called.
  void signal(int number) const;
  // Waits for the end; at most once.
  Outcome wait();

 private:
  TempFolder folder_;
  pid_t process_ = -1;
};

// Runs a program to its end.
Outcome run(std::vector<std::string> arguments, const Surroundings& surroundings = {});

// Whether `orbseq` can run with the rights of that user: the test may give its own up, and the user
// may read the program and what it loads.
bool canRunAs(uid_t user);

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_PROGRAM_H_

// Runs the built program as a process and tells what it did.

#ifndef TESTS_CLI_PROGRAM_H_
#define TESTS_CLI_PROGRAM_H_

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace orbseq::test {

struct Outcome {
  int status = -1;  // exit status; 128 + the signal's number when a signal ended the process
  std::string output;
  std::string error;
};

// How the process is started, beside its arguments.
struct Surroundings {
  std::string input{};                     // what standard input gives
  std::string outputPath{};                // standard output goes there; empty: it is captured
  std::string errorPath{};                 // standard error likewise
  std::vector<std::string> environment{};  // "NAME=value", added to the test's own
  bool closeOutput = false;                // the process starts without standard output
  bool closeError = false;                 // ... without standard error
};

// One run of the program. Destruction waits for the process.
class Program {
 public:
  explicit Program(std::vector<std::string> arguments, const Surroundings& surroundings = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void signal(int number) const;
  // Waits for the end; at most once.
  Outcome wait();

 private:
  TempFolder folder_;
  pid_t process_ = -1;
};

// Runs the program to its end.
Outcome run(std::vector<std::string> arguments, const Surroundings& surroundings = {});

}  // namespace orbseq::test

#endif  // TESTS_CLI_PROGRAM_H_

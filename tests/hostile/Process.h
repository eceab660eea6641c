// A program under test as a process: run to its end, or killed on the way.

#ifndef TESTS_HOSTILE_PROCESS_H_
#define TESTS_HOSTILE_PROCESS_H_

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace orbseq::test {

struct Command {
  std::vector<std::string> words{};        // the program's path and its arguments
  std::vector<std::string> environment{};  // "NAME=value", added to the test's own
  std::string outputPath{};                // standard output goes there; empty: nowhere
  bool closeOutput = false;                // the process starts without standard output
  bool asNobody = false;                   // ... and without the rights of root
};

struct Ended {
  int status = -1;  // exit status; 128 + the signal's number when a signal ended the process
  std::string error;
};

// Destruction waits for the process.
class Process {
 public:
  explicit Process(Command command);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  void kill() const;  // by SIGKILL
  bool hasEnded();
  // Waits for the end; at most once.
  Ended wait();

 private:
  TempFolder folder_;
  pid_t process_ = -1;
  int status_ = 0;
  bool hasEnded_ = false;
};

Ended run(Command command);

// The command of the built `orbseq` with the arguments.
Command orbseqCommand(const std::vector<std::string>& arguments);

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_PROCESS_H_

#include "tests/cli/Program.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace orbseq::test {

namespace {

constexpr int kCannotStart = 125;  // a status that the program itself never answers

void redirect(int stream, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, stream) < 0) ::_exit(kCannotStart);
  ::close(file);
}

struct Streams {
  std::string input;
  std::string output;
  std::string error;
};

[[noreturn]] void start(std::vector<char*>& arguments, const Surroundings& surroundings,
                        const Streams& streams) {
  constexpr int kWrite = O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY;
  redirect(STDIN_FILENO, streams.input, O_RDONLY);
  redirect(STDOUT_FILENO, streams.output, kWrite);
  redirect(STDERR_FILENO, streams.error, kWrite);
  if (surroundings.closeOutput) ::close(STDOUT_FILENO);
  if (surroundings.closeError) ::close(STDERR_FILENO);
  ::signal(SIGINT, SIG_DFL);
  ::signal(SIGPIPE, SIG_DFL);
  for (const std::string& variable : surroundings.environment)
    ::putenv(const_cast<char*>(variable.c_str()));
  ::execv(arguments.front(), arguments.data());
  ::_exit(kCannotStart);
}

}  // namespace

Program::Program(std::vector<std::string> arguments, const Surroundings& surroundings) {
  std::string program = ORBSEQ_BINARY_DIR "/orbseq";
  std::vector<char*> pointers{program.data()};
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  Streams streams{folder_.file("input", surroundings.input), surroundings.outputPath,
                  surroundings.errorPath};
  if (streams.output.empty()) streams.output = folder_.path("output");
  if (streams.error.empty()) streams.error = folder_.path("error");

  process_ = ::fork();
  if (process_ < 0) throw std::runtime_error("cannot start a process");
  if (process_ == 0) start(pointers, surroundings, streams);
}

Program::~Program() {
  if (process_ > 0) wait();
}

void Program::signal(int number) const { ::kill(process_, number); }

Outcome Program::wait() {
  int status = 0;
  ::waitpid(std::exchange(process_, -1), &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          contentOf(folder_.path("output")), contentOf(folder_.path("error"))};
}

Outcome run(std::vector<std::string> arguments, const Surroundings& surroundings) {
  return Program(std::move(arguments), surroundings).wait();
}

}  // namespace orbseq::test

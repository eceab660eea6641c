#include "tests/support/Program.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace orbseq::test {

namespace {

constexpr int kCannotStart = 125;  // a status that no program here answers
constexpr unsigned kSeconds = 300;

struct Streams {
  std::string input;
  std::string output;
  std::string error;
};

void redirect(int stream, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, stream) < 0) ::_exit(kCannotStart);
  ::close(file);
}

void setLimit(decltype(RLIMIT_DATA) resource, std::size_t bytes) {
  const rlimit limit{bytes, bytes};
  if (bytes != 0 && ::setrlimit(resource, &limit) != 0) ::_exit(kCannotStart);
}

void becomeUser(uid_t user) {
  if (user != 0 && (::setgid(user) != 0 || ::setuid(user) != 0)) ::_exit(kCannotStart);
}

// Nothing here allocates by the test's own operator new: another of its threads may hold it.
[[noreturn]] void start(std::vector<char*>& words, const Surroundings& surroundings,
                        const Streams& streams) {
  constexpr int kWrite = O_WRONLY | O_CREAT | O_APPEND | O_NOCTTY;
  redirect(STDIN_FILENO, streams.input, O_RDONLY);
  redirect(STDOUT_FILENO, streams.output, kWrite);
  redirect(STDERR_FILENO, streams.error, kWrite);
  if (surroundings.closeOutput) ::close(STDOUT_FILENO);
  if (surroundings.closeError) ::close(STDERR_FILENO);
  for (const std::string& variable : surroundings.environment)
    ::putenv(const_cast<char*>(variable.c_str()));
  setLimit(RLIMIT_DATA, surroundings.dataBytes);
  setLimit(RLIMIT_STACK, surroundings.stackBytes);
  becomeUser(surroundings.user);
  ::signal(SIGINT, SIG_DFL);
  ::signal(SIGPIPE, SIG_DFL);
  ::alarm(kSeconds);
  ::execv(words.front(), words.data());
  ::_exit(kCannotStart);
}

}  // namespace

Program::Program(std::vector<std::string> arguments, const Surroundings& surroundings) {
  std::string program = surroundings.program;
  std::vector<char*> words{program.data()};
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  Streams streams{folder_.file("input", surroundings.input), surroundings.outputPath,
                  surroundings.errorPath};
  if (streams.output.empty()) streams.output = folder_.path("output");
  if (streams.error.empty()) streams.error = folder_.path("error");

  process_ = ::fork();
  if (process_ < 0) throw std::runtime_error("cannot start a process");
  if (process_ == 0) start(words, surroundings, streams);
}

Program::~Program() {
  if (process_ > 0) wait();
}

void Program::signal(int number) const {
  if (process_ <= 0) throw std::logic_error("no process to signal");  // -1 would be all of them
  ::kill(process_, number);
}

Outcome Program::wait() {
  int status = 0;
  ::waitpid(std::exchange(process_, -1), &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          contentOf(folder_.path("output")), contentOf(folder_.path("error"))};
}

Outcome run(std::vector<std::string> arguments, const Surroundings& surroundings) {
  return Program(std::move(arguments), surroundings).wait();
}

bool canRunAs(uid_t user) {
  return ::geteuid() == 0 && run({"--version"}, {.user = user}).status == 0;
}

}  // namespace orbseq::test

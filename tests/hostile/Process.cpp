#include "tests/hostile/Process.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace orbseq::test {

namespace {

constexpr int kCannotStart = 125;  // a status that no program here answers
constexpr unsigned kNobody = 65534;

void redirect(int stream, const std::string& path, int flags) {
  const int file = ::open(path.c_str(), flags, 0600);
  if (file < 0 || ::dup2(file, stream) < 0) ::_exit(kCannotStart);
  ::close(file);
}

[[noreturn]] void start(std::vector<char*>& words, Command& command, const std::string& error) {
  const std::string output = command.outputPath.empty() ? "/dev/null" : command.outputPath;
  redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
  redirect(STDOUT_FILENO, output, O_WRONLY | O_CREAT);
  redirect(STDERR_FILENO, error, O_WRONLY | O_CREAT);
  if (command.closeOutput) ::close(STDOUT_FILENO);
  if (command.asNobody && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) ::_exit(kCannotStart);
  for (std::string& variable : command.environment) ::putenv(variable.data());
  ::execv(words.front(), words.data());
  ::_exit(kCannotStart);
}

}  // namespace

Process::Process(Command command) {
  std::vector<char*> words;
  for (std::string& word : command.words) words.push_back(word.data());
  words.push_back(nullptr);
  const std::string error = folder_.path("error");
  process_ = ::fork();
  if (process_ < 0) throw std::runtime_error("cannot start a process");
  if (process_ == 0) start(words, command, error);
}

Process::~Process() {
  if (process_ > 0 && !hasEnded_) ::waitpid(process_, &status_, 0);
}

void Process::kill() const {
  if (!hasEnded_) ::kill(process_, SIGKILL);
}

bool Process::hasEnded() {
  if (!hasEnded_) hasEnded_ = ::waitpid(process_, &status_, WNOHANG) == process_;
  return hasEnded_;
}

Ended Process::wait() {
  if (!hasEnded_) ::waitpid(process_, &status_, 0);
  hasEnded_ = true;
  return {WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_),
          contentOf(folder_.path("error"))};
}

Ended run(Command command) { return Process(std::move(command)).wait(); }

Command orbseqCommand(const std::vector<std::string>& arguments) {
  Command command;
  command.words.emplace_back(ORBSEQ_BINARY_DIR "/orbseq");
  for (const std::string& argument : arguments) command.words.push_back(argument);
  return command;
}

}  // namespace orbseq::test

#include "tests/hostile/Child.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <utility>

#include "tests/hostile/Meter.h"
#include "tests/support/TempFolder.h"

namespace orbseq::test {

namespace {

constexpr int kCannotStart = 125;  // a status that the program itself never answers
constexpr unsigned kSeconds = 60;

void setLimit(decltype(RLIMIT_DATA) resource, std::size_t bytes) {
  const rlimit limit{bytes, bytes};
  if (bytes != 0 && ::setrlimit(resource, &limit) != 0) ::_exit(kCannotStart);
}

void redirect(int stream, const char* path) {
  const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (file < 0 || ::dup2(file, stream) < 0) ::_exit(kCannotStart);
  ::close(file);
}

}  // namespace

Outcome runWithin(const ChildLimits& limits, std::vector<std::string> arguments) {
  const TempFolder folder;
  const std::string output = folder.path("output");
  const std::string error = folder.path("error");
  std::string program = ORBSEQ_BINARY_DIR "/orbseq";
  std::vector<char*> pointers{program.data()};
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  const pid_t process = ::fork();
  if (process < 0) throw std::runtime_error("cannot start a process");
  if (process == 0) {  // nothing here may allocate: a feed's thread may hold the allocator
    redirect(STDOUT_FILENO, output.c_str());
    redirect(STDERR_FILENO, error.c_str());
    if (Meter::slowdown() == 1) setLimit(RLIMIT_DATA, limits.dataBytes);
    setLimit(RLIMIT_STACK, limits.stackBytes);
    if (limits.user != 0 && (::setgid(limits.user) != 0 || ::setuid(limits.user) != 0))
      ::_exit(kCannotStart);
    ::signal(SIGPIPE, SIG_DFL);
    ::alarm(kSeconds);
    ::execv(program.c_str(), pointers.data());
    ::_exit(kCannotStart);
  }
  int status = 0;
  ::waitpid(process, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), contentOf(output),
          contentOf(error)};
}

bool canRunAs(uid_t user) {
  return ::geteuid() == 0 && runWithin({.user = user}, {"--version"}).status == 0;
}

Feed::Feed(std::string path, std::string head, std::string piece, std::size_t times)
    : path_(std::move(path)), head_(std::move(head)), piece_(std::move(piece)), times_(times) {
  if (::mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("cannot make a FIFO");
  ::signal(SIGPIPE, SIG_IGN);
  thread_ = std::thread([this] { feed(); });
}

Feed::~Feed() {
  isOver_ = true;
  if (thread_.joinable()) thread_.join();
}

std::size_t Feed::fed() {
  isOver_ = true;
  thread_.join();
  return bytes_;
}

void Feed::feed() {
  int fifo = -1;
  while ((fifo = ::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0 && !isOver_)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (fifo < 0) return;
  ::fcntl(fifo, F_SETFL, 0);  // writes wait from now on
  bool goesOn = give(fifo, head_);
  for (std::size_t i = 0; i < times_ && goesOn; ++i) goesOn = give(fifo, piece_);
  ::close(fifo);
}

bool Feed::give(int fifo, const std::string& bytes) {
  for (std::size_t given = 0; given < bytes.size();) {
    const ssize_t count = ::write(fifo, bytes.data() + given, bytes.size() - given);
    if (count < 0) return false;  // the reader has gone
    given += static_cast<std::size_t>(count);
    bytes_ += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace orbseq::test

#include "io/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace {

using orbseq::StandardStream;

// What `check` answers in a process of its own.
template <class Check>
bool holdsInChild(Check check) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(check() ? 0 : 1);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(Process, AClosedStandardOutputIsNotTakenByTheNextFileAndFails) {
  EXPECT_TRUE(holdsInChild([] {
    ::close(STDOUT_FILENO);
    orbseq::keepStandardStreams();
    const int next = ::open("/dev/null", O_RDONLY);
    return next > STDERR_FILENO && ::write(STDOUT_FILENO, "x", 1) == -1 && errno == EBADF;
  }));
}

TEST(Process, AClosedStandardInputIsNotTakenByTheNextFileAndFails) {
  EXPECT_TRUE(holdsInChild([] {
    ::close(STDIN_FILENO);
    ::close(STDERR_FILENO);
    orbseq::keepStandardStreams();
    char byte = 0;
    const int next = ::open("/dev/null", O_RDONLY);
    return next > STDERR_FILENO && ::read(STDIN_FILENO, &byte, 1) == -1 && errno == EBADF;
  }));
}

TEST(Process, AnInterruptIsNotedAndTheSecondOneEndsTheProcess) {
  EXPECT_TRUE(holdsInChild([] {
    ::signal(SIGINT, SIG_DFL);
    orbseq::watchForInterrupt();
    if (orbseq::interrupted()) return false;
    ::raise(SIGINT);
    struct sigaction action {};
    ::sigaction(SIGINT, nullptr, &action);
    return orbseq::interrupted() && action.sa_handler == SIG_DFL;
  }));
}

TEST(Process, AnInterruptEndsAReadThatWaits) {
  EXPECT_TRUE(holdsInChild([] {
    ::signal(SIGINT, SIG_DFL);
    orbseq::watchForInterrupt();
    int pipe[2];
    if (::pipe(pipe) != 0) return false;
    const pid_t parent = ::getpid();
    const pid_t helper = ::fork();
    if (helper == 0) {
      ::usleep(100'000);
      ::kill(parent, SIGINT);
      ::usleep(2'000'000);
      ::_exit(0);
    }
    char byte = 0;
    const bool ended = ::read(pipe[0], &byte, 1) == -1 && errno == EINTR;
    ::kill(helper, SIGKILL);
    ::waitpid(helper, nullptr, 0);
    return ended && orbseq::interrupted();
  }));
}

TEST(Process, AnIgnoredInterruptStaysIgnored) {
  EXPECT_TRUE(holdsInChild([] {
    ::signal(SIGINT, SIG_IGN);
    orbseq::watchForInterrupt();
    ::raise(SIGINT);
    return !orbseq::interrupted();
  }));
}

TEST(Process, APipeThatNobodyReadsIsAnErrorOfTheWrite) {
  EXPECT_TRUE(holdsInChild([] {
    orbseq::watchForInterrupt();
    int pipe[2];
    if (::pipe(pipe) != 0) return false;
    ::close(pipe[0]);
    return ::write(pipe[1], "x", 1) == -1 && errno == EPIPE;
  }));
}

TEST(Process, AFileIsNoTerminal) {
  EXPECT_TRUE(holdsInChild([] {
    const int file = ::open("/dev/null", O_WRONLY);
    ::dup2(file, STDOUT_FILENO);
    return !orbseq::isTerminal(StandardStream::kOutput);
  }));
}

}  // namespace

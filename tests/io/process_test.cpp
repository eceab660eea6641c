#include "io/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#include "io/IoError.h"
#include "io/descriptor.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::FileError;
using orbseq::StandardStream;
using orbseq::test::errorOf;

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

// Ends the process; what the write throws stands on standard error.
[[noreturn]] void writeAfterAnInterrupt(int descriptor) {
  ::signal(SIGINT, SIG_DFL);
  orbseq::watchForInterrupt();
  ::raise(SIGINT);
  std::cerr << errorOf<FileError>([&] { orbseq::writeAll(descriptor, "x", "f"); });
  std::exit(0);
}

TEST(Process, AfterAnInterruptNothingIsWritten) {
  int pipe[2];
  ASSERT_EQ(::pipe(pipe), 0);
  EXPECT_EXIT(writeAfterAnInterrupt(pipe[1]), testing::ExitedWithCode(0),
              "^f: cannot write: Interrupted system call$");
  ::close(pipe[1]);
  char byte = 0;
  EXPECT_EQ(::read(pipe[0], &byte, 1), 0);
  ::close(pipe[0]);
}

TEST(Process, AReadWaitsForAPipeAsLongAsItTakes) {
  int pipe[2];
  ASSERT_EQ(::pipe(pipe), 0);
  std::thread writer([&] {
    ::usleep(350'000);  // some of the looks whether to go on
    (void)!::write(pipe[1], "late", 4);
    ::close(pipe[1]);
  });
  std::string room(10, '\0');
  const auto count = orbseq::readAll(pipe[0], room);
  writer.join();
  ::close(pipe[0]);

  EXPECT_EQ(room.substr(0, count.value_or(0)), "late");
}

// The system lets nobody wait for more descriptors than may be open.
TEST(Process, AReadThatCannotWaitFails) {
  const int file = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{0, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  char byte = 0;
  const auto count = orbseq::readAll(file, {&byte, 1});
  const int error = errno;
  ::setrlimit(RLIMIT_NOFILE, &before);
  ::close(file);

  EXPECT_FALSE(count);
  EXPECT_EQ(error, EINVAL);
}

TEST(Process, AWriteToAClosedDescriptorFails) {
  const int closed = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::close(closed);

  EXPECT_EQ(errorOf<FileError>([&] { orbseq::writeAll(closed, "x", "f"); }),
            "f: cannot write: Bad file descriptor");
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

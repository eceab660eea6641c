#include "io/process.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace orbseq {

namespace {

volatile sig_atomic_t stopRequested = 0;

void noteRequest(int) { stopRequested = 1; }

void watch(int signal) noexcept {
  struct sigaction action {};
  if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = noteRequest;
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // not SA_RESTART: waiting calls come back
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

void keepStandardStreams() noexcept {
  for (int stream = 0; stream <= 2; ++stream) {
    if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is `stream`. The wrong direction makes every use of it fail.
    (void)!::open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
  }
}

bool isTerminal(StandardStream stream) noexcept { return ::isatty(static_cast<int>(stream)) == 1; }

void watchForInterrupt() noexcept {
  watch(SIGINT);
  watch(SIGTERM);
  ::signal(SIGPIPE, SIG_IGN);
}

bool interrupted() noexcept { return stopRequested != 0; }

}  // namespace orbseq

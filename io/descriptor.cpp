#include "io/descriptor.h"

#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "io/IoError.h"
#include "io/process.h"

namespace orbseq {

namespace {

constexpr int kMillisecondsBetweenLooks = 100;

// Whether the next call on the descriptor will not wait, or fail at once. False when it should not
// be made: errno tells why.
bool waitFor(int descriptor, short event) noexcept {
  pollfd waiting{descriptor, event, 0};
  for (;;) {
    if (interrupted()) {
      errno = EINTR;
      return false;
    }
    const int ready = ::poll(&waiting, 1, kMillisecondsBetweenLooks);
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) return false;
  }
}

// Bytes that a descriptor which can be written takes without waiting.
std::size_t bytesAtOnce(int descriptor) noexcept {
  struct stat status {};
  const bool isFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  return isFile ? static_cast<std::size_t>(SSIZE_MAX) : PIPE_BUF;
}

}  // namespace

std::optional<std::size_t> readAll(int descriptor, std::span<char> room) noexcept {
  std::size_t got = 0;
  while (got < room.size()) {
    if (!waitFor(descriptor, POLLIN)) return std::nullopt;
    const ssize_t count = ::read(descriptor, room.data() + got, room.size() - got);
    if (count < 0 && errno != EINTR) return std::nullopt;
    if (count == 0) break;
    if (count > 0) got += static_cast<std::size_t>(count);
  }
  return got;
}

void writeAll(int descriptor, std::string_view bytes, const std::string& name) {
  if (interrupted()) throw FileError(name, "write", EINTR);
  const std::size_t most = bytesAtOnce(descriptor);
  while (!bytes.empty()) {
    if (!waitFor(descriptor, POLLOUT)) throw FileError(name, "write", errno);
    const ssize_t written = ::write(descriptor, bytes.data(), std::min(bytes.size(), most));
    if (written < 0 && errno != EINTR) throw FileError(name, "write", errno);
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace orbseq

#include "io/writeAll.h"

#include <unistd.h>

#include <cerrno>

#include "io/IoError.h"
#include "io/process.h"

namespace orbseq {

void writeAll(int descriptor, std::string_view bytes, const std::string& name) {
  if (interrupted()) throw FileError(name, "write", EINTR);
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0) throw FileError(name, "write", errno);
    if (interrupted()) throw FileError(name, "write", EINTR);  // it may have cut the write short
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace orbseq

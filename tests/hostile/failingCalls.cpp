// A library that is loaded before the others (LD_PRELOAD) and makes calls of a program fail that a
// save needs: write, fsync, fdatasync, ftruncate, fchmod, fchown and close of anything but the
// standard streams, rename and renameat, unlink, unlinkat and remove, and open where it may make a
// file. All are counted together.
//
//   FAILING_CALLS_FIRST   the number of the call that fails, from 1; absent or 0: none
//   FAILING_CALLS_ALL     set: all calls from that one on fail
//   FAILING_CALLS_ERROR   the errno of a failure; absent: EIO
//   FAILING_CALLS_KEPT    set: unlink, unlinkat and remove work, and are not counted
//   FAILING_CALLS_SHORT   set: writes alone are counted, and one that is chosen does not fail: it
//                         takes the first half of its bytes, and says so
//   FAILING_CALLS_REPORT  a file that gets, when the program ends, how many calls there were, and
//                         the name of the first that was made to fail, or "none"
//
// A call that fails does nothing, but close, which closes all the same, as the system's does.
//
// Threads: any number.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<long> calls{0};
std::atomic<const char*> firstFailed{"none"};

long number(const char* variable, long otherwise) noexcept {
  const char* const text = std::getenv(variable);
  return text != nullptr ? std::strtol(text, nullptr, 10) : otherwise;
}

bool isSet(const char* variable) noexcept { return std::getenv(variable) != nullptr; }

// Counts a call of that name; whether it must fail, with errno set then.
bool mustFail(const char* name) noexcept {
  static const long first = number("FAILING_CALLS_FIRST", 0);
  static const bool all = isSet("FAILING_CALLS_ALL");
  static const int error = static_cast<int>(number("FAILING_CALLS_ERROR", EIO));
  const long call = ++calls;
  if (first == 0 || call < first || (call > first && !all)) return false;
  if (call == first) firstFailed = name;
  errno = error;
  return true;
}

bool isShort() noexcept {
  static const bool isAsked = isSet("FAILING_CALLS_SHORT");
  return isAsked;
}

// Of a call that a write's failure is not about.
bool otherMustFail(const char* name) noexcept { return !isShort() && mustFail(name); }

bool removalMustFail(const char* name) noexcept {
  static const bool isKept = isSet("FAILING_CALLS_KEPT");
  return !isKept && otherMustFail(name);
}

bool isStandard(int file) noexcept { return file <= STDERR_FILENO; }

template <class Function>
Function* next(const char* name) noexcept {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

// Not by write(), which is ours.
__attribute__((destructor)) void report() {
  const char* const path = std::getenv("FAILING_CALLS_REPORT");
  if (path == nullptr) return;
  char text[64];
  const int size = std::snprintf(text, sizeof text, "%ld %s\n", calls.load(), firstFailed.load());
  const auto file = static_cast<int>(
      ::syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (file >= 0 && size > 0) ::syscall(SYS_write, file, text, static_cast<std::size_t>(size));
}

mode_t modeOf(int flags, std::va_list arguments) noexcept {
  return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

int openAs(const char* name, const char* path, int flags, mode_t mode) noexcept {
  if ((flags & O_CREAT) != 0 && otherMustFail("open")) return -1;
  return next<int(const char*, int, ...)>(name)(path, flags, mode);
}

int openBelowAs(const char* name, int folder, const char* path, int flags, mode_t mode) noexcept {
  if ((flags & O_CREAT) != 0 && otherMustFail("open")) return -1;
  return next<int(int, const char*, int, ...)>(name)(folder, path, flags, mode);
}

int callOn(int file, const char* name) noexcept {
  if (!isStandard(file) && otherMustFail(name)) return -1;
  return next<int(int)>(name)(file);
}

}  // namespace

// What the program is to find, whatever the build hides.
#pragma GCC visibility push(default)

extern "C" {

ssize_t write(int file, const void* bytes, std::size_t size) {
  if (!isStandard(file) && mustFail("write")) {
    if (!isShort()) return -1;
    size = (size + 1) / 2;
  }
  return next<ssize_t(int, const void*, std::size_t)>("write")(file, bytes, size);
}

int fsync(int file) { return callOn(file, "fsync"); }

int fdatasync(int file) { return callOn(file, "fdatasync"); }

int close(int file) {
  const bool fails = !isStandard(file) && otherMustFail("close");
  const int error = errno;
  const int result = next<int(int)>("close")(file);
  if (!fails) return result;
  errno = error;
  return -1;
}

int ftruncate(int file, off_t size) noexcept {
  if (!isStandard(file) && otherMustFail("ftruncate")) return -1;
  return next<int(int, off_t)>("ftruncate")(file, size);
}

int fchmod(int file, mode_t mode) noexcept {
  if (!isStandard(file) && otherMustFail("fchmod")) return -1;
  return next<int(int, mode_t)>("fchmod")(file, mode);
}

int fchown(int file, uid_t user, gid_t group) noexcept {
  if (!isStandard(file) && otherMustFail("fchown")) return -1;
  return next<int(int, uid_t, gid_t)>("fchown")(file, user, group);
}

int unlink(const char* path) noexcept {
  return removalMustFail("unlink") ? -1 : next<int(const char*)>("unlink")(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
  if (removalMustFail("unlinkat")) return -1;
  return next<int(int, const char*, int)>("unlinkat")(folder, path, flags);
}

int remove(const char* path) noexcept {
  return removalMustFail("remove") ? -1 : next<int(const char*)>("remove")(path);
}

int rename(const char* from, const char* to) noexcept {
  return otherMustFail("rename") ? -1 : next<int(const char*, const char*)>("rename")(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  if (otherMustFail("renameat")) return -1;
  return next<int(int, const char*, int, const char*)>("renameat")(fromFolder, from, toFolder, to);
}

int open(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAs("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openAs("open64", path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openBelowAs("openat", folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = modeOf(flags, arguments);
  va_end(arguments);
  return openBelowAs("openat64", folder, path, flags, mode);
}

}  // extern "C"

#pragma GCC visibility pop

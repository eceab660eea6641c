#include "host/DynamicLibrary.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

#include "host/EnvironmentError.h"
#include "host/oneLine.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {
namespace {

constexpr std::size_t kMaxBytes = 4096;  // of a path, and of the system's reason

[[noreturn]] void fail(const std::string& path, std::string_view what, std::string_view reason) {
  throw EnvironmentError(QuErrorFormater::Format(oneLine(path, kMaxBytes, /*quoted=*/false), what,
                                                 oneLine(reason, kMaxBytes, /*quoted=*/false)));
}

std::string_view lastReason() {
  const char* const reason = dlerror();
  return reason != nullptr ? reason : "unknown reason";
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& path) : path_(path), handle_(nullptr) {
  // The system takes no path at all for the program itself, which is no plug-in.
  if (path.empty() || path.find('\0') != std::string::npos)
    fail(path, "cannot load the plug-in", "not a path");
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) fail(path, "cannot load the plug-in", lastReason());
}

DynamicLibrary::~DynamicLibrary() { dlclose(handle_); }

void* DynamicLibrary::symbol(const char* name) const {
  void* const address = dlsym(handle_, name);
  if (address == nullptr) fail(path_, "not a scoring plug-in", lastReason());
  return address;
}

std::string DynamicLibrary::programFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) fail("/proc/self/exe", "cannot find the program's folder", error.message());
  return program.parent_path().string();
}

}  // namespace OrbScore

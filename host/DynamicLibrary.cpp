#include "host/DynamicLibrary.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "common/guards.h"
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

// The system maps what the file's header tells, and a process that touches a page behind the end of
// a file that was cut short is ended. Files of another kind are left to the system to refuse.
void checkIsWhole(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return;  // a name that the system looks for
  if (!std::filesystem::is_regular_file(path, error) && orbseq::guarded("plug-in.file"))
    fail(path, "cannot load the plug-in", "not a file");
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  std::ifstream file(path, std::ios::binary);
  ElfW(Ehdr) header;
  if (error || !file.read(reinterpret_cast<char*>(&header), sizeof header)) return;
  if (!std::string_view(reinterpret_cast<const char*>(header.e_ident), SELFMAG).starts_with(ELFMAG))
    return;
  file.seekg(static_cast<std::streamoff>(header.e_phoff));
  for (int i = 0; i < header.e_phnum; ++i) {
    ElfW(Phdr) segment;
    const bool isThere = !!file.read(reinterpret_cast<char*>(&segment), sizeof segment);
    if ((!isThere || segment.p_offset > size || segment.p_filesz > size - segment.p_offset) &&
        orbseq::guarded("plug-in.cut short"))
      fail(path, "cannot load the plug-in", "the file is cut short");
  }
}

std::string_view lastReason() {
  const char* const reason = dlerror();
  return reason != nullptr ? reason : "unknown reason";
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& path) : path_(path), handle_(nullptr) {
  // The system takes no path at all for the program itself, which is no plug-in.
  if ((path.empty() || path.find('\0') != std::string::npos) && orbseq::guarded("plug-in.path"))
    fail(path, "cannot load the plug-in", "not a path");
  checkIsWhole(path);
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) fail(path, "cannot load the plug-in", lastReason());
}

DynamicLibrary::~DynamicLibrary() { dlclose(handle_); }

void* DynamicLibrary::symbol(const char* name) const {
  void* const address = dlsym(handle_, name);
  if (address == nullptr && orbseq::guarded("plug-in.entry"))
    fail(path_, "not a scoring plug-in", lastReason());
  return address;
}

std::string DynamicLibrary::programFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) fail("/proc/self/exe", "cannot find the program's folder", error.message());
  return program.parent_path().string();
}

}  // namespace OrbScore

// A shared library loaded at run time. What the operating system is asked for in this room is
// asked in DynamicLibrary.cpp alone; another platform has a file of its own beside it.
//
// Threads: any number of readers.

#ifndef HOST_DYNAMICLIBRARY_H_
#define HOST_DYNAMICLIBRARY_H_

#include <string>

namespace OrbScore {

class DynamicLibrary {
 public:
  // Loads the library, its own references resolved at once, its symbols visible to nobody else.
  // Throws EnvironmentError with the system's reason. The path is as the system takes it.
  explicit DynamicLibrary(const std::string& path);
  // Unloads it, unless it is loaded elsewhere in the process too.
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  const std::string& path() const noexcept { return path_; }

  // The address of an exported symbol; never null. Throws EnvironmentError when there is none.
  void* symbol(const char* name) const;

  // The folder of the running program. Throws EnvironmentError when the system does not tell it.
  static std::string programFolder();

 private:
  std::string path_;
  void* handle_;
};

}  // namespace OrbScore

#endif  // HOST_DYNAMICLIBRARY_H_

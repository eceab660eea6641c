// A folder for one test, gone with its content when the test ends.

#ifndef TESTS_SUPPORT_TEMPFOLDER_H_
#define TESTS_SUPPORT_TEMPFOLDER_H_

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace orbseq::test {

class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "orbseq-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& path() const noexcept { return path_; }

  // Writes a file and answers its path.
  std::string file(const std::string& name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  // Entries of the folder, temporary files of an interrupted writer included.
  std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_),
                                                  std::filesystem::directory_iterator()));
  }

 private:
  std::filesystem::path path_;
};

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// What an operation throws, as text; empty when it throws nothing of that type.
template <class Error, class Operation>
std::string errorOf(Operation operation) {
  try {
    operation();
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_TEMPFOLDER_H_

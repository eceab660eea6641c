// A folder of its own for a test, removed with everything in it at the end.

#ifndef TESTS_HOST_TEMPORARYFOLDER_H_
#define TESTS_HOST_TEMPORARYFOLDER_H_

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test {

class TemporaryFolder {
 public:
  TemporaryFolder() : path_(::testing::TempDir() + "orbseq-host-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string path(const std::string& name) const { return path_ + '/' + name; }

  // The path of a new file with this content.
  std::string file(const std::string& name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

 private:
  std::string path_;
};

}  // namespace test

#endif  // TESTS_HOST_TEMPORARYFOLDER_H_

// Runs a fuzz target over every file of a folder, without a fuzzer: what was once found is tried in
// every build.
//
// Exit status: 0 done; 1 when the folder holds no file or one cannot be read; 3 when the target
// aborted, which a test can expect, as it cannot a program that dies of a signal.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/check.h"

namespace {

namespace fs = std::filesystem;

extern "C" void onAbort(int) { std::_Exit(3); }

std::vector<fs::path> filesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

// From memory of exactly the file's size, so that a sanitizer sees every read beyond it.
bool replay(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) return false;
  const auto bytes = std::make_unique<std::uint8_t[]>(text.size());
  std::copy(text.begin(), text.end(), bytes.get());
  std::fprintf(stderr, "%s\n", path.c_str());
  return LLVMFuzzerTestOneInput(bytes.get(), text.size()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
    return 1;
  }
  std::signal(SIGABRT, onAbort);
  std::error_code error;
  if (!fs::is_directory(argv[1], error)) {
    std::fprintf(stderr, "%s is no folder\n", argv[1]);
    return 1;
  }
  const std::vector<fs::path> files = filesIn(argv[1]);
  for (const fs::path& file : files) {
    if (replay(file)) continue;
    std::fprintf(stderr, "%s cannot be read\n", file.c_str());
    return 1;
  }
  std::fprintf(stderr, "%zu files\n", files.size());
  return files.empty() ? 1 : 0;
}

// What the tests of customers' data share: a log given to the program, which is to make a model of
// it over an old one.

#ifndef TESTS_HOSTILE_LOGS_H_
#define TESTS_HOSTILE_LOGS_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/hostile/Feed.h"
#include "tests/hostile/Meter.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace orbseq::test {

inline constexpr std::size_t kMegabyte = std::size_t{1} << 20;

// More than the program needs to begin, to read with all its buffers and to tell an error.
inline constexpr std::size_t kSmallMemory = 48 * kMegabyte;

// A folder with an old model, which the program is to replace.
class Training {
 public:
  Training() : model_(folder_.file("m.xml", "old")) {}

  const TempFolder& folder() const noexcept { return folder_; }
  std::string model() const { return contentOf(model_); }

  // Under a sanitizer or valgrind, which take memory of their own, memory is not limited.
  Outcome train(const std::string& log, std::vector<std::string> options = {},
                Surroundings surroundings = {}) const {
    options.insert(options.begin(), {"train", "--input", log, "--output", model_});
    if (std::find(options.begin(), options.end(), "--min-support") == options.end())
      options.insert(options.end(), {"--min-support", "1"});
    if (Meter::slowdown() != 1) surroundings.dataBytes = 0;
    return run(std::move(options), surroundings);
  }

  // The output of `orbseq inspect --sequences` on the model, a line a sequence.
  std::string sequences() const {
    return run({"inspect", "--sequences", "--labels", "--model", model_}).output;
  }

  // Expects that nothing is left but the old model and so many files that the test made.
  void expectOldModel(std::size_t others) const {
    EXPECT_EQ(model(), "old");
    EXPECT_EQ(folder_.entries(), 1 + others);
  }

  // Expects that the log is refused with exactly the message, soon, and that the old model stays.
  void expectRefused(const std::string& name, std::string_view bytes, const std::string& message,
                     const std::vector<std::string>& options = {}) const {
    const std::string log = folder_.file(name, bytes);
    const Meter meter(bytes.size());
    const auto begin = std::chrono::steady_clock::now();

    const Outcome outcome = train(log, options, {.dataBytes = kSmallMemory + 100 * bytes.size()});

    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.error, "orbseq: " + log + message + "\n");
    EXPECT_LE(spent, meter.allowedTime());
    expectOldModel(1);
    std::filesystem::remove(log);
  }

 private:
  const TempFolder folder_;
  const std::string model_;
};

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_LOGS_H_

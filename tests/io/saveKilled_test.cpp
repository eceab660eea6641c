// Saving under SIGKILL: whenever the process ends, the name leads to a whole model.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "io/ModelFile.h"
#include "tests/io/modelSamples.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using orbseq::Model;
using orbseq::ModelForm;

constexpr int kKills = 1000;

// Shared with the process that writes.
struct Progress {
  std::atomic<bool> hasBegun{false};
};

class SharedProgress {
 public:
  SharedProgress()
      : memory_(::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
        progress_(memory_ == MAP_FAILED ? throw std::bad_alloc() : new (memory_) Progress) {}
  ~SharedProgress() { ::munmap(memory_, sizeof(Progress)); }
  SharedProgress(const SharedProgress&) = delete;
  SharedProgress& operator=(const SharedProgress&) = delete;

  Progress* operator->() const noexcept { return progress_; }

 private:
  void* memory_;
  Progress* progress_;
};

void sleepMicroseconds(long time) {
  const timespec span{0, time * 1000};
  ::nanosleep(&span, nullptr);
}

// Removes what the killed process left beside the file; how many there were.
int removeTemporaries(const std::string& path) {
  std::vector<std::filesystem::path> left;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()))
    if (entry.path().filename().string().starts_with(".orbseq-")) left.push_back(entry.path());
  for (const auto& file : left) std::filesystem::remove(file);
  return static_cast<int>(left.size());
}

struct Figures {
  int kills = 0;
  int writing = 0;   // kills that left a temporary file: they hit before the name was changed
  int replaced = 0;  // kills after which the other model stood under the name
  int torn = 0;
};

// An error ends the process, by another signal than the one that the test sends.
template <class Save>
[[noreturn]] void saveForEver(int turn, Save save) noexcept {
  for (;; ++turn) save(turn);
}

// Kills `kills` processes that each save one model after the other by save(turn), at random moments
// from the first save's beginning on.
template <class Save>
Figures killed(int kills, std::uint32_t seed, const std::string& path, const std::string& first,
               const std::string& second, Save save) {
  Figures figures;
  std::mt19937 random(seed);
  std::string before = contentOf(path);
  for (; figures.kills < kills; ++figures.kills) {
    const SharedProgress progress;
    const pid_t child = ::fork();
    if (child == 0) {
      progress->hasBegun = true;
      saveForEver(figures.kills, save);
    }
    const auto delay = static_cast<long>(random() % 12'000);
    while (!progress->hasBegun) sleepMicroseconds(20);
    sleepMicroseconds(delay);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    if (removeTemporaries(path) > 0) ++figures.writing;
    const std::string content = contentOf(path);
    if (content != first && content != second) ++figures.torn;
    if (content != before) ++figures.replaced;
    before = content;
  }
  return figures;
}

Model largeModel(std::uint32_t seed) {
  WorldOptions options;
  options.seed = seed;
  options.items = 14;
  options.customers = 300;
  options.itemsACustomer = 10;
  options.atLeast = 4;
  const World world(options);
  return modelOf(world.dictionary);
}

TEST(SaveKilled, AThousandKilledSavesLeaveAWholeModelAndWritingInPlaceDoesNot) {
  const TempFolder folder;
  const std::string path = folder.path("model.bin");
  const Model models[] = {largeModel(1), largeModel(2)};
  const std::string bytes[] = {bytesOf(models[0], ModelForm::kBinary),
                               bytesOf(models[1], ModelForm::kBinary)};
  ASSERT_NE(bytes[0], bytes[1]);
  ASSERT_GT(std::min(bytes[0].size(), bytes[1].size()), 150'000U);
  folder.file("model.bin", bytes[0]);

  const Figures saved = killed(kKills, 1, path, bytes[0], bytes[1], [&](int turn) {
    orbseq::saveModel(path, models[turn % 2], ModelForm::kBinary);
  });
  EXPECT_NO_THROW(orbseq::readModel(path));

  // The control: the same harness sees a file that is written in place torn.
  const std::string inPlace = folder.file("in-place.bin", bytes[0]);
  const Figures control = killed(kKills / 10, 2, inPlace, bytes[0], bytes[1], [&](int turn) {
    std::ofstream file(inPlace, std::ios::binary);
    const std::string& content = bytes[turn % 2];
    for (std::size_t at = 0; at < content.size(); at += 512)
      file << content.substr(at, 512) << std::flush;
  });

  std::cout << saved.kills << " kills, " << saved.writing << " left a temporary file, after "
            << saved.replaced << " the other model stood, " << saved.torn
            << " torn; in place: " << control.kills << " kills, " << control.torn << " torn\n";
  EXPECT_EQ(saved.torn, 0);
  EXPECT_GT(saved.writing, kKills / 10);
  EXPECT_GT(saved.replaced, kKills / 10);
  EXPECT_EQ(folder.entries(), 2U);
  EXPECT_GT(control.torn, 0);
}

}  // namespace

// Saving under SIGKILL: whenever the process ends, the name leads to a whole model.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "io/Model.h"
#include "io/ModelFile.h"
#include "io/ModelForm.h"
#include "tests/io/modelSamples.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using orbseq::Model;
using orbseq::ModelForm;
using std::chrono::microseconds;

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

struct Plan {
  int kills;
  std::uint32_t seed;
  microseconds longestDelay;  // the time of some saves
};

// Kills processes that each save one model after the other by save(turn), at random moments from
// the first save's beginning on. `contents` is what stands in the file after a save, in turn.
template <class Save>
Figures killed(const Plan& plan, const std::string& path, const std::string (&contents)[2],
               Save save) {
  Figures figures;
  std::mt19937 random(plan.seed);
  std::string before = contentOf(path);
  for (; figures.kills < plan.kills; ++figures.kills) {
    const SharedProgress progress;
    const pid_t child = ::fork();
    if (child == 0) {
      progress->hasBegun = true;
      saveForEver(figures.kills, save);
    }
    const microseconds delay(random() % static_cast<unsigned>(plan.longestDelay.count()));
    while (!progress->hasBegun) std::this_thread::sleep_for(microseconds(20));
    std::this_thread::sleep_for(delay);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    if (removeTemporaries(path) > 0) ++figures.writing;
    const std::string content = contentOf(path);
    if (content != contents[0] && content != contents[1]) ++figures.torn;
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

// Two models of one form, and a folder where "model" is the first of them.
struct Saved {
  explicit Saved(ModelForm of) : form(of) {
    EXPECT_NE(bytes[0], bytes[1]);
    EXPECT_GT(std::min(bytes[0].size(), bytes[1].size()), 150'000U);
    folder.file("model", bytes[0]);
  }

  void save(int turn) const { orbseq::saveModel(path, models[turn % 2], form); }

  // The time of about three saves, after which the first of them stands.
  microseconds threeSaves() const {
    const auto begin = std::chrono::steady_clock::now();
    for (const int turn : {0, 1, 0}) save(turn);
    const auto time = std::chrono::steady_clock::now() - begin;
    return std::chrono::duration_cast<microseconds>(time);
  }

  const ModelForm form;
  const Model models[2] = {largeModel(1), largeModel(2)};
  const std::string bytes[2] = {bytesOf(models[0], form), bytesOf(models[1], form)};
  const TempFolder folder;
  const std::string path = folder.path("model");
};

// Kills saves of the models and expects that a whole one stands, with nothing beside it.
void expectNoneTorn(const Saved& saved, const Plan& plan) {
  const Figures figures =
      killed(plan, saved.path, saved.bytes, [&](int turn) { saved.save(turn); });

  std::cout << figures.kills << " kills, " << figures.writing << " left a temporary file, after "
            << figures.replaced << " the other model stood, " << figures.torn << " torn\n";
  EXPECT_EQ(figures.torn, 0);
  EXPECT_GT(figures.writing, plan.kills / 10);
  EXPECT_GT(figures.replaced, plan.kills / 10);
  EXPECT_NO_THROW(orbseq::readModel(saved.path));
  EXPECT_EQ(saved.folder.entries(), 1U);
}

TEST(SaveKilled, AThousandKilledSavesLeaveAWholeModelAndWritingInPlaceDoesNot) {
  const Saved saved(ModelForm::kBinary);
  const microseconds delay = saved.threeSaves();

  expectNoneTorn(saved, {.kills = 1000, .seed = 1, .longestDelay = delay});

  // The control: the same harness sees a file that is written in place torn.
  const auto writeInPlace = [&](int turn) {
    std::ofstream file(saved.path, std::ios::binary);
    const std::string& content = saved.bytes[turn % 2];
    for (std::size_t at = 0; at < content.size(); at += 512)
      file << content.substr(at, 512) << std::flush;
  };
  const Figures control = killed({.kills = 100, .seed = 2, .longestDelay = delay}, saved.path,
                                 saved.bytes, writeInPlace);
  std::cout << "in place: " << control.kills << " kills, " << control.torn << " torn\n";
  EXPECT_EQ(control.writing, 0);
  EXPECT_GT(control.torn, 0);
}

TEST(SaveKilled, KilledSavesOfADocumentLeaveAWholeModel) {
  const Saved saved(ModelForm::kDocument);

  expectNoneTorn(saved, {.kills = 60, .seed = 3, .longestDelay = saved.threeSaves()});
}

}  // namespace

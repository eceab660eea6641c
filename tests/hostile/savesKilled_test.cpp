// The program killed while it saves: whatever the moment, a whole model stands under the name.
//
// A killed process may leave its temporary file, ".orbseq-PID-N.tmp" beside the target
// (io/AtomicFile.h); it is no obstacle to a later save. ORBSEQ_LONG=1 in the environment asks for
// the long run.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <thread>

#include "tests/hostile/Process.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using namespace orbseq::test;
using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

int killsWanted() { return std::getenv("ORBSEQ_LONG") != nullptr ? 1000 : 60; }

// A log of customers whose frequent sequences make a model of some size.
std::string log(int customers, unsigned seed) {
  constexpr unsigned kProducts = 14;
  std::mt19937 random(seed);
  std::string rows = "customer,time,item\n";
  for (int customer = 0; customer < customers; ++customer)
    for (int row = 0; row < 12; ++row)
      rows += std::to_string(customer) + ',' + std::to_string(row / 2) + ',' +
              std::to_string(1 + random() % kProducts) + '\n';
  return rows;
}

// How often something that a killed process left stands in the folder beside the target.
std::size_t leftOvers(const TempFolder& folder) { return folder.entries() - 1; }

void removeLeftOvers(const TempFolder& folder, const std::string& target) {
  for (const auto& entry : fs::directory_iterator(folder.path()))
    if (entry.path() != target) {
      EXPECT_TRUE(entry.path().filename().string().starts_with(".orbseq-")) << entry.path();
      fs::remove(entry.path());
    }
}

struct Figures {
  int kills = 0;
  int writing = 0;   // kills that left a temporary file
  int replaced = 0;  // kills, or ends before them, after which the other model stood
  int torn = 0;
};

// How a save is started and when it has begun.
struct Saving {
  std::function<Command(int turn)> command;  // saves the first content or the second, in turn
  std::function<bool()> hasBegun;            // it is writing now
  microseconds length;                       // about, from then on
};

// Starts saves one after the other and kills each at a random moment from its first write on.
Figures killed(int kills, unsigned seed, const TempFolder& folder, const std::string& target,
               const std::string (&contents)[2], const Saving& saving) {
  Figures figures;
  std::mt19937 random(seed);
  std::string before = contentOf(target);
  for (; figures.kills < kills; ++figures.kills) {
    Process process(saving.command(figures.kills));
    while (!saving.hasBegun() && !process.hasEnded()) std::this_thread::yield();
    const auto longest = static_cast<unsigned>(saving.length.count());
    std::this_thread::sleep_for(microseconds(random() % (longest + longest / 4 + 1)));
    process.kill();
    process.wait();
    if (leftOvers(folder) > 0) ++figures.writing;
    removeLeftOvers(folder, target);
    const std::string content = contentOf(target);
    if (content != contents[0] && content != contents[1]) ++figures.torn;
    if (content != before) ++figures.replaced;
    before = content;
  }
  return figures;
}

// The time from a save's first write to its end.
microseconds lengthOf(const Saving& saving) {
  Process process(saving.command(1));
  while (!saving.hasBegun() && !process.hasEnded()) std::this_thread::yield();
  const auto begin = Clock::now();
  EXPECT_EQ(process.wait().status, 0);
  return std::chrono::duration_cast<microseconds>(Clock::now() - begin);
}

TEST(SavesKilled, LeaveAWholeModelAndWritingInPlaceDoesNot) {
  const TempFolder sources;
  const std::string models[] = {sources.path("first.bin"), sources.path("second.bin")};
  std::string contents[2];
  for (unsigned i = 0; i < 2; ++i) {
    const std::string input = sources.file("log.csv", log(300, i + 1));
    const Ended trained = run(orbseqCommand(
        {"train", "-q", "--input", input, "-s", "12", "--max-items", "5", "-o", models[i]}));
    ASSERT_EQ(trained.status, 0) << trained.error;
    const std::string document = sources.path("document");
    ASSERT_EQ(run(orbseqCommand({"convert", "-q", "--model", models[i], "--to", "document",
                                 "--output", document}))
                  .status,
              0);
    contents[i] = contentOf(document);
    ASSERT_GT(contents[i].size(), 300'000U);
  }
  ASSERT_NE(contents[0], contents[1]);

  const TempFolder folder;
  const std::string target = folder.file("model.xml", contents[0]);
  Saving saving{[&](int turn) {
                  return orbseqCommand({"convert", "-q", "--model", models[turn % 2], "--to",
                                        "document", "--output", target});
                },
                [&] { return leftOvers(folder) > 0; }, microseconds(0)};
  saving.length = lengthOf(saving);
  const int kills = killsWanted();
  const Figures saved = killed(kills, 1, folder, target, contents, saving);
  EXPECT_EQ(run(orbseqCommand({"inspect", "--model", target})).status, 0);

  // The control: the same harness sees a file that is written in place torn.
  const TempFolder other;
  const std::string inPlace = other.file("model.xml", contents[0]);
  const std::string sourceFiles[] = {sources.file("first", contents[0]),
                                     sources.file("second", contents[1])};
  Saving careless{
      [&](int turn) {
        return Command{.words = {CARELESS_SAVER, "in-place", sourceFiles[turn % 2], inPlace}};
      },
      [&] { return fs::file_size(inPlace) < std::min(contents[0].size(), contents[1].size()); },
      microseconds(0)};
  careless.length = lengthOf(careless);
  const Figures control = killed(kills, 2, other, inPlace, contents, careless);

  std::cout << saved.kills << " kills, " << saved.writing << " left a temporary file, after "
            << saved.replaced << " the other model stood, " << saved.torn
            << " torn; in place: " << control.kills << " kills, " << control.torn << " torn\n";
  EXPECT_EQ(saved.torn, 0);
  EXPECT_GT(saved.writing, 0);
  EXPECT_EQ(control.writing, 0);
  EXPECT_GT(control.torn, 0);
}

}  // namespace

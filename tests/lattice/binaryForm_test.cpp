#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/TempFolder.h"
#include "tests/support/World.h"
#include "tests/support/binaryImage.h"
#include "tests/support/captureOutput.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SeqExceptions;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kDictionaryMessage = "Error reading SequenceDictionary!\n";
constexpr const char* kSettingsMessage = "Error reading SeqDictionarySettings!\n";
constexpr const char* kTableMessage = "Error reading HashtableSQPair!\n";
constexpr const char* kSequenceMessage = "Failure reading NTSequence!\n";
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

const std::vector<Count> kShop = {{"", 100},      {"(1)", 60},   {"(2)", 50},
                                  {"(1)(2)", 30}, {"(1 2)", 20}, {"(1)(1 2)", 10}};

// A settings block. `sizes` are the eight levels' and then the upper levels'.
std::string settingsBlock(std::vector<std::int32_t> sizes, std::int32_t numLevels) {
  std::string bytes = "DS";
  const std::int32_t upper = sizes.back();
  sizes.pop_back();
  for (const std::int32_t size : sizes) bytes += ints({size});
  return bytes + ints({numLevels, upper});
}

std::string withTables(const std::string& settings, std::int32_t tables) {
  std::string bytes = "SD1" + settings;
  for (std::int32_t i = 0; i < tables; ++i) bytes += "HT" + ints({0});
  return bytes + reals({0.0, 0.0, 0.0, 0.0});
}

TEST(DictionaryBinary, OneExactImage) {
  Lattice lattice(kShop, 4);
  lattice.setSlidingWindow(1.5);
  lattice.setMinGap(0.25);
  lattice.setMaxGap(30.0);
  EXPECT_EQ(binaryOf(lattice), fileText(ORBSEQ_SOURCE_DIR "/tests/golden/shop.bin"));
}

TEST(DictionaryBinary, EmptyTablesTellNeitherTheSettingsNorMoreThanSixALevel) {
  SeqDictionarySettings settings = smallTables(3);
  SequenceDictionary dictionary(settings);
  std::ostringstream stream;
  // The empty sequence at level 0 counts 16 + 23.
  EXPECT_EQ(dictionary.writeObject(stream), 3U + 3 * 6 + 39 + 32);
  EXPECT_EQ(stream.str().size(), 3U + 42 + 3 * 6 + 39 + 32);

  SequenceDictionary read;
  EXPECT_EQ(readInto(read, withTables(settingsBlock({1, 1, 1, 1, 1, 1, 1, 1, 1}, 3), 3)).count,
            3U + 3 * 6 + 32);
  EXPECT_EQ(read.NumberOfSequences(), 1);  // the empty one, with count 0
}

TEST(DictionaryBinary, SettingsHaveTheNumberOfLevelsBeforeTheUpperSize) {
  SeqDictionarySettings settings;
  settings.upperTableSize = 77;
  std::ostringstream stream;
  EXPECT_EQ(settings.writeObject(stream), 42U);
  EXPECT_EQ(stream.str(),
            settingsBlock({2, 11519, 23039, 23039, 23039, 23039, 11519, 11519, 77}, 10));
  SeqDictionarySettings read;
  EXPECT_EQ(readInto(read, stream.str()).count, 42U);
  EXPECT_EQ(read.upperTableSize, 77);
  EXPECT_EQ(read.numLevels, 10);
}

TEST(DictionaryBinary, EverythingComesBack) {
  Lattice lattice(kShop);
  lattice.setSlidingWindow(1.5);
  lattice.setMinGap(0.25);
  lattice.setMaxGap(30.0);
  lattice.setReductionThreshold(0.125);
  SequenceDictionary read;
  std::ostringstream stream;
  const std::uint64_t told = lattice.writeObject(stream);
  EXPECT_EQ(readInto(read, stream.str()).count, told);
  EXPECT_EQ(binaryOf(read), stream.str());
  EXPECT_TRUE(read.isLatticeBuilt());
  EXPECT_EQ(read.getSlidingWindow(), 1.5);
  EXPECT_EQ(read.getMinGap(), 0.25);
  EXPECT_EQ(read.getMaxGap(), 30.0);
  EXPECT_EQ(read.getReductionThreshold(), 0.125);
}

TEST(DictionaryBinary, OnlyAOneMeansThatTheLatticeIsBuilt) {
  const std::string rest = withTables(settingsBlock({1, 1, 1, 1, 1, 1, 1, 1, 1}, 1), 1).substr(3);
  for (const char flag : {'0', 'Z', '\xFF', '\1'}) {
    SequenceDictionary read;
    EXPECT_FALSE(readInto(read, std::string("SD") + flag + rest).isRefused());
    EXPECT_FALSE(read.isLatticeBuilt());
  }
  SequenceDictionary read;
  readInto(read, "SD1" + rest);
  EXPECT_TRUE(read.isLatticeBuilt());
}

TEST(DictionaryBinary, RandomLatticesAnswerTheSameWhenTheyComeBack) {
  int compared = 0;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    const auto world = randomWorld(seed);
    if (lacksCounters(world)) continue;
    ++compared;
    SequenceDictionary read;
    ASSERT_FALSE(readInto(read, binaryOf(world.dictionary)).isRefused()) << seed;
    for (const History& history : world.histories) {
      EXPECT_EQ(futureItems(read, history), futureItems(world.dictionary, history)) << seed;
      EXPECT_EQ(futureItems(read, history, 20, false),
                futureItems(world.dictionary, history, 20, false));
      EXPECT_EQ(currentItems(read, history), currentItems(world.dictionary, history)) << seed;
    }
  }
  EXPECT_GE(compared, 20);
}

TEST(DictionaryBinary, SequencesAboveAGapAreKept) {
  SequenceDictionary dictionary(smallTables(6));
  store(dictionary, {}, 10);
  store(dictionary, {{1}}, 5);
  store(dictionary, {{1}, {2}, {3}}, 2);
  SequenceDictionary read;
  readInto(read, binaryOf(dictionary));
  EXPECT_EQ(read.NumberOfSequences(), 3);
}

TEST(DictionaryBinary, ALevelWithoutATableIsWrittenAsEmpty) {
  using SEQUENCE_NAMESPACE_800::HashtableSQPair;
  SequenceDictionary dictionary(
      new HashtableSQPair* [2] { nullptr, nullptr }, 2);
  SequenceDictionary read;
  EXPECT_FALSE(readInto(read, binaryOf(dictionary)).isRefused());
  EXPECT_EQ(read.getNumLevels(), 2);
}

TEST(DictionaryBinary, AFailedStreamIsNotWrittenTo) {
  const Lattice lattice(kShop);
  std::ostringstream stream;
  stream.setstate(std::ios::failbit);
  const CapturedOutput output;
  bool thrown = false;
  try {
    lattice.writeObject(stream);
  } catch (SeqExceptions::IOException* error) {
    thrown = true;
    delete error;
  }
  EXPECT_TRUE(thrown);
  EXPECT_EQ(output.text(), "Bad stream for saving SequenceDictionary!\n");
  EXPECT_EQ(stream.str(), "");
}

TEST(DictionaryBinary, AFullDiskShowsWhenTheStreamIsFlushed) {
  std::fstream full("/dev/full", std::ios::out | std::ios::binary);
  if (!full) GTEST_SKIP() << "no /dev/full on this machine";
  const Lattice lattice(kShop);
  lattice.writeObject(full);  // flushes at its end
  EXPECT_FALSE(full.good());
}

TEST(DictionaryBinary, FileStreamsTakeTheSameForm) {
  const TempFolder folder;
  const Lattice lattice(kShop);
  std::fstream file(folder.path() / "lattice",
                    std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc);
  const std::uint64_t told = lattice.writeObject(file);
  file.seekg(0);
  SequenceDictionary read;
  EXPECT_EQ(read.readObject(file), told);
}

TEST(DictionaryBinary, ReadingIntoAFilledDictionaryFreesWhatItHeld) {
  const long before = livingBlocks();
  {
    const Lattice small({{"", 4}, {"(9)", 2}});
    Lattice read(kShop);
    EXPECT_FALSE(readInto(read, binaryOf(small)).isRefused());
    EXPECT_EQ(read.NumberOfSequences(), 2);
  }
  EXPECT_EQ(livingBlocks(), before);
}

struct BadSettings {
  const char* name;
  std::vector<std::int32_t> sizes;
  std::int32_t numLevels;
};

TEST(DictionaryBinary, SettingsThatNoTablesAreMadeOfAreRefused) {
  const std::vector<BadSettings> bad = {
      {"size 0", {1, 0, 1, 1, 1, 1, 1, 1, 1}, 3},
      {"size -1", {1, 1, -1, 1, 1, 1, 1, 1, 1}, 3},
      {"size 2^31 - 1", {kMost, 1, 1, 1, 1, 1, 1, 1, 1}, 3},
      {"too many together", {1 << 21, 1 << 21, 1, 1, 1, 1, 1, 1, 1}, 3},
      {"upper size 0", {1, 1, 1, 1, 1, 1, 1, 1, 0}, 33},
      {"upper size -1", {1, 1, 1, 1, 1, 1, 1, 1, -1}, 33},
      {"upper size 2^31 - 1", {1, 1, 1, 1, 1, 1, 1, 1, kMost}, 33},
      {"no levels", {1, 1, 1, 1, 1, 1, 1, 1, 1}, 0},
      {"-1 levels", {1, 1, 1, 1, 1, 1, 1, 1, 1}, -1},
      {"2^31 - 1 levels", {1, 1, 1, 1, 1, 1, 1, 1, 1}, kMost},
      {"65 levels", {1, 1, 1, 1, 1, 1, 1, 1, 1}, 65},
  };
  for (const BadSettings& row : bad) {
    Lattice read(kShop);
    const ReadOutcome outcome =
        readInto(read, withTables(settingsBlock(row.sizes, row.numLevels), 3));
    EXPECT_TRUE(outcome.isRefused()) << row.name;
    EXPECT_EQ(outcome.printed, kSettingsMessage) << row.name;
    EXPECT_EQ(read.NumberOfSequences(), 6) << row.name;  // nothing was touched
  }
  SequenceDictionary read;
  EXPECT_FALSE(
      readInto(read, withTables(settingsBlock({1, 1, 1, 1, 1, 1, 1, 1, 1}, 64), 64)).isRefused());
}

TEST(DictionaryBinary, EachWrongMarkerHasItsMessage) {
  const std::string good = binaryOf(Lattice(kShop, 4));
  const auto outcomeWith = [&good](std::size_t at, char c) {
    std::string bytes = good;
    bytes[at] = c;
    SequenceDictionary read;
    return readInto(read, bytes);
  };
  EXPECT_EQ(outcomeWith(0, 'X').printed, kDictionaryMessage);
  EXPECT_EQ(outcomeWith(3, 'X').printed, kSettingsMessage);
  EXPECT_EQ(outcomeWith(45, 'X').printed, kTableMessage);
  EXPECT_EQ(outcomeWith(52, 'X').printed, kSequenceMessage);
  EXPECT_THAT(outcomeWith(52, 'X').thrown, StartsWith("offset 0x33, level 0, entry 0, marker: "));
}

TEST(DictionaryBinary, EveryPrefixIsRefusedWithOneMessageAndCanBeReadIntoAgain) {
  const std::string good = binaryOf(Lattice(kShop, 4));
  const long before = livingBlocks();
  for (std::size_t size = 0; size < good.size(); ++size) {
    SequenceDictionary read;
    const ReadOutcome outcome = readInto(read, good.substr(0, size));
    EXPECT_TRUE(outcome.isRefused()) << size;
    EXPECT_EQ(std::count(outcome.printed.begin(), outcome.printed.end(), '\n'), 1) << size;
    EXPECT_FALSE(readInto(read, good).isRefused()) << size;
    EXPECT_EQ(read.NumberOfSequences(), 6) << size;
  }
  EXPECT_EQ(livingBlocks(), before);
}

TEST(DictionaryBinary, EveryFlippedBitIsRefusedOrGivesALatticeThatAnswers) {
  const std::string good = binaryOf(Lattice(kShop, 4));
  const std::vector<History> histories = {{}, {{1}}, {{1}, {2}}, {{1, 2}}, {{2}, {1, 2}, {1}}};
  int loaded = 0;
  for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
    std::string bytes = good;
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << (bit % 8)));
    SequenceDictionary read;
    if (readInto(read, bytes).isRefused()) continue;
    ++loaded;
    for (const History& history : histories) {
      for (const Advice& advice : futureItems(read, history, 20, false))
        EXPECT_TRUE(advice.confidence == advice.confidence);
      EXPECT_LE(currentItems(read, history).size(), 20U);
    }
  }
  EXPECT_GT(loaded, 0);
  EXPECT_LT(loaded, static_cast<int>(good.size()) * 8);
}

TEST(DictionaryBinary, ReadingAndWritingSurviveEveryFailedAllocation) {
  const Lattice lattice(kShop, 4);
  const std::string good = binaryOf(lattice);
  const long before = livingBlocks();
  bool completed = false;
  for (long n = 1; !completed; ++n) {
    SequenceDictionary read;
    std::istringstream stream(good);
    try {
      const FailAllocation failing(n);
      read.readObject(stream);
      completed = !failing.hasFailed();
    } catch (const std::bad_alloc&) {
    }
    if (completed) {
      EXPECT_EQ(read.NumberOfSequences(), 6);
    }
  }
  EXPECT_EQ(livingBlocks(), before);
}

}  // namespace

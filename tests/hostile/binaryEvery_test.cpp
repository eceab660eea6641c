// Every beginning of a valid binary file, every bit of it turned round, and what is exported of a
// file that holds numbers that are none; that the list of binary files is complete.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/hostile/Meter.h"
#include "tests/hostile/binaryParts.h"
#include "tests/hostile/latticeFiles.h"
#include "tests/hostile/rowNames.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"
#include "tests/support/longRun.h"

namespace {

using namespace orbseq::test;

// What is promised to be printed of a read that fails.
const std::set<std::string> kMessages = {kDictionaryMessage, kSettingsMessage, kTableMessage,
                                         kSequenceMessage,   kCounterMessage,  kAdjacencyMessage,
                                         kStatisticsMessage};

TEST(BinaryFiles, B24EveryBeginningIsRefusedWithOneMessage) {
  const std::string& good = validBinary();
  ASSERT_GT(good.size(), 1900U);
  const ValidLattice other;
  expectValidLattice(other.dictionary());  // makes what is made once
  SequenceDictionary used;
  readFileInto(used, good);
  for (std::size_t size = 0; size < good.size() && !HasFailure(); ++size) {
    SCOPED_TRACE("the first " + std::to_string(size) + " bytes");
    const std::string_view bytes = std::string_view(good).substr(0, size);
    const Meter meter(size);
    {
      SequenceDictionary fresh;
      const ReadOutcome outcome = readFileInto(fresh, bytes);
      EXPECT_TRUE(outcome.isRefused());
      EXPECT_EQ(outcome.thrown.find("offset 0x"), 0U) << outcome.thrown;
      EXPECT_EQ(kMessages.count(outcome.printed), 1U) << outcome.printed;
    }
    meter.check();
    EXPECT_TRUE(readFileInto(used, bytes).isRefused());
    EXPECT_FALSE(readFileInto(used, good).isRefused());
  }
  expectValidLattice(used);
  expectValidLattice(other.dictionary());
}

// The bits of a byte to turn round: all of them, or one that is drawn where the program is slow
// and ORBSEQ_LONG_RUN is not set.
std::vector<int> bitsOfAByte(std::mt19937& random) {
  if (Meter::slowdown() > 1 && !isLongRun()) return {static_cast<int>(random() % 8)};
  return {0, 1, 2, 3, 4, 5, 6, 7};
}

// Under a sanitizer one bit of each byte, drawn from the seed, unless the run may be long.
TEST(BinaryFiles, B27EveryFlippedBitIsRefusedOrGivesAModelThatAnswersCleanly) {
  const std::string& good = validBinary();
  expectCleanAnswers(ValidLattice().dictionary());  // makes what is made once
  constexpr std::uint32_t kSeed = 1;
  std::mt19937 random(kSeed);
  std::size_t loaded = 0, refused = 0;
  for (std::size_t byte = 0; byte < good.size() && !HasFailure(); ++byte) {
    for (const int bit : bitsOfAByte(random)) {
      SCOPED_TRACE("seed " + std::to_string(kSeed) + ", byte " + std::to_string(byte) + ", bit " +
                   std::to_string(bit));
      std::string bytes = good;
      bytes[byte] = static_cast<char>(bytes[byte] ^ (1 << bit));
      const Meter meter(bytes.size());
      {
        SequenceDictionary read;
        const ReadOutcome outcome = readFileInto(read, bytes);
        if (outcome.isRefused()) {
          ++refused;
          EXPECT_EQ(kMessages.count(outcome.printed), 1U) << outcome.printed;
          EXPECT_FALSE(readFileInto(read, good).isRefused());
        } else {
          ++loaded;
          EXPECT_EQ(outcome.printed, "");
          expectCleanAnswers(read);
        }
      }
      meter.check();
    }
  }
  EXPECT_GT(loaded, good.size() / 4);
  EXPECT_GT(refused, good.size() / 4);
}

// In the statistics of a sequence and in what the lattice was made by.
std::string withNumbersThatAreNone() {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::string statistics = "SB" + reals({kNan, kInfinity, -kInfinity, kNan});
  const std::string counter = std::string("SD\0", 3) + ints({3, 0, 0, 0, 1}) + statistics;
  const std::string bytes = fileWithEntry(sequenceBlock(1, {7}, 1) + counter);
  return bytes.substr(0, bytes.size() - tailBlock().size()) +
         reals({kNan, -kInfinity, kNan, kInfinity});
}

TEST(BinaryFiles, B28WhatIsExportedOfNumbersThatAreNoneHasTheSameCounts) {
  const TempFolder folder;
  const std::string binary = folder.file("m.bin", withNumbersThatAreNone());
  for (const char* form : {"document", "pmml", "objxml", "binary"}) {
    SCOPED_TRACE(form);
    const std::string exported = folder.path("exported");

    const Outcome outcome =
        run({"convert", "--quiet", "--model", binary, "--to", form, "--output", exported});

    EXPECT_EQ(outcome.status, 0) << outcome.error;
    for (const std::string& model : {binary, exported})
      EXPECT_EQ(run({"inspect", "--sequences", "--model", model}).output,
                "5 -1 #SUP: 3\n7 -1 #SUP: 3\n");
  }
}

TEST(BinaryFiles, HaveATestForEveryRow) { expectTestsOfRows('B', 30); }

}  // namespace

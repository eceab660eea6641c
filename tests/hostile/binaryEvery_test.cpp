// Every beginning of a valid binary file, and every bit of it turned round.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/hostile/Meter.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;

TEST(BinaryB24, EveryBeginningIsRefusedWithOneMessage) {
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
      EXPECT_EQ(std::count(outcome.printed.begin(), outcome.printed.end(), '\n'), 1);
    }
    meter.check();
    EXPECT_TRUE(readFileInto(used, bytes).isRefused());
    EXPECT_FALSE(readFileInto(used, good).isRefused());
  }
  expectValidLattice(used);
  expectValidLattice(other.dictionary());
}

// The bits of a byte to turn round: all of them, or one that is drawn where the program is slow.
std::vector<int> bitsOfAByte(std::mt19937& random) {
  if (Meter::slowdown() > 1) return {static_cast<int>(random() % 8)};
  return {0, 1, 2, 3, 4, 5, 6, 7};
}

// Under a sanitizer one bit of each byte, drawn from the seed.
TEST(BinaryB27, EveryFlippedBitIsRefusedOrGivesAModelThatAnswersCleanly) {
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
        EXPECT_EQ(std::count(outcome.printed.begin(), outcome.printed.end(), '\n'),
                  outcome.isRefused() ? 1 : 0);
        ++(outcome.isRefused() ? refused : loaded);
        if (outcome.isRefused())
          EXPECT_FALSE(readFileInto(read, good).isRefused());
        else
          expectCleanAnswers(read);
      }
      meter.check();
    }
  }
  EXPECT_GT(loaded, good.size() / 4);
  EXPECT_GT(refused, good.size() / 4);
}

}  // namespace

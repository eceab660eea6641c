// Binary files that look wrong and are read all the same, and what the lattice answers then; files
// that are no files.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "sequence/HashtableSQPair.h"
#include "sequence/errorText.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/binaryParts.h"
#include "tests/hostile/latticeFiles.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::StatsBucket;

struct LoadedFile {
  std::string name;
  std::string bytes;
  std::function<void(SequenceDictionary&)> check;
};

std::ostream& operator<<(std::ostream& out, const LoadedFile& row) { return out << row.name; }

// -1 when the sequence is not found.
std::int32_t countOf(const SequenceDictionary& dictionary, std::string_view sequence) {
  const NTSequence key = packed(sequence);
  const SequenceCounter* const counter = dictionary.getDescriptor(&key);
  return counter == nullptr ? -1 : counter->getCount();
}

std::string exports(const SequenceDictionary& dictionary) {
  std::ostringstream out;
  EXPECT_TRUE(dictionary.ExportLatticeXML(out, 0.0).IsOK());
  EXPECT_TRUE(
      dictionary.ExportRulesXML(out, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 5, 2.0, 'S', false).IsOK());
  for (int level = 0; level < dictionary.getNumLevels(); ++level)
    dictionary.displaySize(level, 100, out);
  dictionary.writeObjectXML(out);
  return out.str();
}

// --- The rows ------------------------------------------------------------------------------------

std::string withFlag(char flag) {
  std::string bytes = validBinary();
  bytes[2] = flag;
  return bytes;
}

void isNotBuilt(SequenceDictionary& read) {
  EXPECT_FALSE(read.isLatticeBuilt());
  expectValidLattice(read);
}

std::string withEntryCount(std::int32_t count) {
  return latticeFile({tableBlock({emptySequenceEntry(10)}), "HT" + ints({count}),
                      tableBlock({sequenceBlock(3, {1, 2}, 2) + counterBlock(4)})});
}

void hasOnePair(SequenceDictionary& read) {
  EXPECT_EQ(read.CountSequencesOfSize(1), 0);
  EXPECT_EQ(countOf(read, "(1)(2)"), 4);
}

// A single item at level 2, a pair at level 1, and a single item beside the empty sequence.
std::string withWrongLevels() {
  return latticeFile(
      {tableBlock({emptySequenceEntry(10), singleEntry(3, 9)}),
       tableBlock({singleEntry(1, 8), sequenceBlock(3, {1, 2}, 2) + counterBlock(4)}),
       tableBlock({sequenceBlock(1, {2}, 1) + counterBlock(7, {5, 1})})});
}

void findsWhatStandsInItsLevel(SequenceDictionary& read) {
  EXPECT_EQ(read.NumberOfSequences(), 5);
  EXPECT_EQ(countOf(read, ""), 10);
  EXPECT_EQ(countOf(read, "(1)"), 8);
  EXPECT_EQ(countOf(read, "(2)"), -1);
  EXPECT_EQ(countOf(read, "(3)"), -1);
  EXPECT_EQ(countOf(read, "(1)(2)"), -1);
}

std::string counterWithStatistics(std::int32_t flag, std::initializer_list<double> values) {
  std::string counter = counterBlock(3);
  counter.replace(counter.size() - 4, 4, ints({flag}));
  return counter + "SB" + reals(values);
}

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

const StatsBucket& statisticsOf(const SequenceDictionary& dictionary, std::string_view sequence) {
  const NTSequence key = packed(sequence);
  return *dictionary.getDescriptor(&key)->getStatsBucket();
}

void keepsTheNumbers(SequenceDictionary& read) {
  const StatsBucket& statistics = statisticsOf(read, "(7)");
  EXPECT_TRUE(std::isnan(statistics.getOccurrences()));
  EXPECT_EQ(statistics.getTotal(), kInfinity);
  EXPECT_EQ(statistics.getMinimum(), -kInfinity);
  EXPECT_TRUE(std::isnan(statistics.getMaximum()));
  EXPECT_TRUE(std::isnan(read.getReductionThreshold()));
  EXPECT_EQ(read.getMaxGap(), kInfinity);
  EXPECT_NE(exports(read).find("(7)"), std::string::npos);
}

std::string withStrangeNumbers() {
  const std::string bytes = fileWithEntry(
      sequenceBlock(1, {7}, 1) + counterWithStatistics(1, {kNan, kInfinity, -kInfinity, kNan}));
  return bytes.substr(0, bytes.size() - tailBlock().size()) +
         reals({kNan, -kInfinity, kNan, kInfinity});
}

std::string withBounds(std::int32_t count, std::int32_t maxMissed) {
  return fileWithEntry(sequenceBlock(1, {7}, 1) + std::string("SD\0", 3) +
                       ints({count, 0, maxMissed, 0, 0}));
}

std::vector<LoadedFile> allRows() {
  const auto has = [](const char* sequence, std::int32_t count) {
    return [=](SequenceDictionary& read) { EXPECT_EQ(countOf(read, sequence), count); };
  };
  return {
      {"B03_Flag0", withFlag('0'), isNotBuilt},
      {"B03_FlagZ", withFlag('Z'), isNotBuilt},
      {"B03_Flag255", withFlag('\xFF'), isNotBuilt},
      {"B08_AsManyBucketsAsMayBe", latticeFile({tableBlock()}, withSize(0, 1 << 22)),
       [](SequenceDictionary& read) {
         EXPECT_EQ(read.getTable(0)->getCapacity(), 1 << 22);  // never another capacity
       }},
      {"B10_OneLevel", latticeFile({tableBlock({emptySequenceEntry(10)})}), has("", 10)},
      {"B12_SixtyFourLevels", latticeFile(std::vector<std::string>(64, tableBlock())),
       [](SequenceDictionary& read) { EXPECT_EQ(read.getNumLevels(), 64); }},
      {"B14_EntryCountMinus1", withEntryCount(-1), hasOnePair},
      {"B14_EntryCountMinus2147483648", withEntryCount(kLeast), hasOnePair},
      {"B14_EntryCount0", withEntryCount(0), hasOnePair},
      {"B17_ThirtyTwoItems", fileWithEntry(binaryOf(packed(singletons(32))) + counterBlock(3)),
       [](SequenceDictionary& read) { EXPECT_EQ(read.CountSequencesOfSize(1), 2); }},
      {"B20_ItemCountIsNotTheLevel", withWrongLevels(), findsWhatStandsInItsLevel},
      {"B21_TheSameKeyTwice",
       latticeFile({tableBlock(), tableBlock({singleEntry(7, 3), singleEntry(7, 4)})}),
       [](SequenceDictionary& read) {
         EXPECT_EQ(countOf(read, "(7)"), 4);
         EXPECT_EQ(read.CountSequencesOfSize(1), 1);
       }},
      {"B28_StatisticsFlag2",
       fileWithEntry(sequenceBlock(1, {7}, 1) + counterWithStatistics(2, {1.0, 2.0, 3.0, 4.0})),
       [](SequenceDictionary& read) { EXPECT_EQ(statisticsOf(read, "(7)").getTotal(), 2.0); }},
      {"B28_NumbersThatAreNone", withStrangeNumbers(), keepsTheNumbers},
      {"B29_DropAfterStopsAtTheLargestCount", withBounds(kMost, kMost),
       [](SequenceDictionary& read) {
         read.dropAfter(0);
         EXPECT_EQ(countOf(read, "(7)"), kMost);
         EXPECT_EQ(countOf(read, "(5)"), 3);
       }},
      {"B29_DropAfterStopsAtTheSmallestCount", withBounds(kLeast, kLeast),
       [](SequenceDictionary& read) {
         read.dropAfter(0);
         EXPECT_EQ(countOf(read, "(7)"), kLeast);
       }},
      {"B29_ReduceAllAddsBoundsWithoutOverflow", withBounds(kMost, kMost),
       [](SequenceDictionary& read) {
         EXPECT_EQ(read.reduceAll(4294967294.0), 1);  // (5)
         EXPECT_EQ(countOf(read, "(7)"), kMost);
         EXPECT_EQ(read.reduceAll(4294967295.0), 1);
         EXPECT_EQ(countOf(read, "(7)"), -1);
       }},
      {"B29_NegativeCounts", withBounds(-3, 0),
       [](SequenceDictionary& read) { EXPECT_EQ(countOf(read, "(7)"), -3); }},
      {"B30_NoEntryAtLevel0", latticeFile({tableBlock(), tableBlock({singleEntry(7, 3)})}),
       has("", 0)},
      {"B30_TwoEmptySequences",
       latticeFile({tableBlock({emptySequenceEntry(10), emptySequenceEntry(20)})}), has("", 20)},
      {"B30_OneKilobyteBehindTheEnd", validBinary() + std::string(1024, 'x'), expectValidLattice},
  };
}

// --- What must come of each ----------------------------------------------------------------------

class LoadedBinary : public ::testing::TestWithParam<LoadedFile> {};

TEST_P(LoadedBinary, IsReadWithoutAMessageAndAnswers) {
  const LoadedFile& row = GetParam();
  const ValidLattice other;
  expectValidLattice(other.dictionary());  // makes what is made once
  exports(other.dictionary());
  const Meter meter(row.bytes.size());
  {
    SequenceDictionary read;
    EXPECT_FALSE(readFileInto(read, validBinary()).isRefused());  // freed by the next
    const ReadOutcome outcome = readFileInto(read, row.bytes);
    EXPECT_EQ(outcome.printed, "");
    EXPECT_EQ(outcome.thrown, "");
    expectCleanAnswers(read);
    exports(read);
    row.check(read);
    expectCleanAnswers(read);
    EXPECT_FALSE(readFileInto(read, validBinary()).isRefused());
    expectValidLattice(read);
  }
  meter.check();
  expectValidLattice(other.dictionary());
}

INSTANTIATE_TEST_SUITE_P(Hostile, LoadedBinary, ::testing::ValuesIn(allRows()), nameOf<LoadedFile>);

TEST(BinaryB14, AnEmptyTableTellsSix) {
  for (const std::int32_t count : {-1, kLeast, 0}) {
    HashtableSQPair table(5);
    const ReadOutcome outcome = readFileInto(table, "HT" + ints({count}));
    EXPECT_EQ(outcome.count, 6U);
    EXPECT_FALSE(outcome.isRefused());
    EXPECT_EQ(table.getSize(), 0);
  }
}

TEST(BinaryB30, TheTrailingBytesAreLeftInTheStream) {
  const std::string bytes = validBinary() + "rest";
  MemoryFile<> file(bytes);
  SequenceDictionary read;
  read.readObject(file.stream());
  std::string rest;
  file.stream() >> rest;
  EXPECT_EQ(rest, "rest");
}

TEST(BinaryB30, TheCommandLineReportsTrailingBytes) {
  const TempFolder folder;
  const std::string path = folder.file("model.bin", validBinary() + std::string(1024, 'x'));

  const Outcome outcome = run({"inspect", "--model", path});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.error.find(orbseq::offsetText(validBinary().size()) +
                               ": bytes after the end of the lattice"),
            std::string::npos)
      << outcome.error;
}

// --- Streams -------------------------------------------------------------------------------------

struct Source {
  std::string name;
  std::function<void(std::fstream&, const TempFolder&)> open;
  const char* message;  // null: the valid lattice is read
};

std::ostream& operator<<(std::ostream& out, const Source& row) { return out << row.name; }

std::vector<Source> allSources() {
  using Stream = std::fstream;
  const auto in = std::ios::in;
  const auto valid = [](const TempFolder& folder) { return folder.file("valid", validBinary()); };
  return {
      {"B30_Directory",
       [=](Stream& file, const TempFolder& folder) { file.open(folder.path(), in); },
       kDictionaryMessage},
      {"B30_DirectoryToWriteAsWell",
       [](Stream& file, const TempFolder& folder) { file.open(folder.path()); },
       kDictionaryMessage},
      {"B30_Zeros", [=](Stream& file, const TempFolder&) { file.open("/dev/zero", in); },
       kDictionaryMessage},
      {"B30_NoSuchFile",
       [=](Stream& file, const TempFolder& folder) { file.open(folder.path("none"), in); },
       kDictionaryMessage},
      {"B30_NothingOpened", [](Stream&, const TempFolder&) {}, kDictionaryMessage},
      {"B30_FailedStream",
       [=](Stream& file, const TempFolder& folder) {
         file.open(valid(folder), in | std::ios::binary);
         file.setstate(std::ios::badbit);
       },
       kDictionaryMessage},
      {"B30_StreamAtItsEnd",
       [=](Stream& file, const TempFolder& folder) {
         file.open(valid(folder), in | std::ios::binary);
         file.setstate(std::ios::eofbit);
       },
       kDictionaryMessage},
      {"B30_TextMode",
       [=](Stream& file, const TempFolder& folder) { file.open(valid(folder), in); }, nullptr},
      {"B30_BinaryMode",
       [=](Stream& file, const TempFolder& folder) {
         file.open(valid(folder), in | std::ios::binary);
       },
       nullptr},
  };
}

class BinaryStream : public ::testing::TestWithParam<Source> {};

TEST_P(BinaryStream, IsReadOrRefusedWithinTimeAndMemory) {
  const Source& row = GetParam();
  const ValidLattice other;
  expectValidLattice(other.dictionary());
  const TempFolder folder;
  const Meter meter(0);  // whatever a device holds
  {
    std::fstream file;
    row.open(file, folder);
    SequenceDictionary read;
    const ReadOutcome outcome = outcomeOf({}, [&](std::istream&) { return read.readObject(file); });
    EXPECT_EQ(outcome.printed, row.message == nullptr ? "" : row.message);
    EXPECT_EQ(outcome.isRefused(), row.message != nullptr);
    EXPECT_LT(meter.peakBytes(), std::size_t{1} << 20);
    if (row.message != nullptr) {
      EXPECT_FALSE(readFileInto(read, validBinary()).isRefused());
    }
    expectValidLattice(read);
  }
  meter.check();
}

INSTANTIATE_TEST_SUITE_P(Hostile, BinaryStream, ::testing::ValuesIn(allSources()), nameOf<Source>);

TEST(BinaryB30, APipeDeliversAValidFile) {
  const TempFolder folder;
  const std::string path = folder.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string& bytes = validBinary();
  std::thread writer([&] { std::ofstream(path, std::ios::binary) << bytes; });
  std::fstream file(path, std::ios::in | std::ios::binary);
  SequenceDictionary read;
  const ReadOutcome outcome = outcomeOf({}, [&](std::istream&) { return read.readObject(file); });
  writer.join();
  EXPECT_FALSE(outcome.isRefused()) << outcome.thrown;
  expectValidLattice(read);
}

// A file that begins well, and goes on with zeros for ever.
class EndlessBuffer : public std::streambuf {
 public:
  explicit EndlessBuffer(std::string head) : head_(std::move(head)) {
    setg(head_.data(), head_.data(), head_.data() + head_.size());
  }

 protected:
  int_type underflow() override {
    setg(zeros_.data(), zeros_.data(), zeros_.data() + zeros_.size());
    return traits_type::to_int_type(*gptr());
  }

 private:
  std::string head_;
  std::array<char, 4096> zeros_{};
};

TEST(BinaryB30, ZerosBehindAValidBeginningAreSoonReadToAnEnd) {
  expectCleanAnswers(ValidLattice().dictionary());
  for (std::size_t size = 0; size < validBinary().size() - tailBlock().size(); ++size) {
    const Meter meter(size);
    {
      EndlessBuffer buffer(validBinary().substr(0, size));
      std::fstream file;
      static_cast<std::ios&>(file).rdbuf(&buffer);
      SequenceDictionary read;
      const ReadOutcome outcome =
          outcomeOf({}, [&](std::istream&) { return read.readObject(file); });
      if (!outcome.isRefused()) expectCleanAnswers(read);
    }
    meter.check();
  }
}

TEST(MemoryBuffers, FileStreamsReadThemWithoutAFile) {
  MemoryFile<> file(validBinary());
  EXPECT_FALSE(file.stream().is_open());
  SequenceDictionary read;
  EXPECT_GT(read.readObject(file.stream()), 0U);
  expectValidLattice(read);
}

}  // namespace

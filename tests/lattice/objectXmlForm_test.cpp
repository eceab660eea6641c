#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/SeqExceptions.h"
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

const std::vector<Count> kShop = {{"", 100},      {"(1)", 60},   {"(2)", 50},
                                  {"(1)(2)", 30}, {"(1 2)", 20}, {"(1)(1 2)", 10}};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string replacedFirst(std::string text, const std::string& what, const std::string& with) {
  const std::size_t at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return text.replace(at, what.size(), with);
}

TEST(DictionaryXml, OneExactText) {
  Lattice lattice(kShop, 4);
  lattice.setSlidingWindow(1.5);
  lattice.setMinGap(0.25);
  lattice.setMaxGap(30.0);
  EXPECT_EQ(xmlOf(lattice) + "\n", fileText(ORBSEQ_SOURCE_DIR "/tests/golden/shop.objxml"));
}

TEST(DictionaryXml, ALevelWithoutATableIsWrittenAsAnEmptyOne) {
  constexpr int kLevels = 2;
  auto** const tables = new SEQUENCE_NAMESPACE_800::HashtableSQPair* [kLevels] {};
  const SequenceDictionary lattice(tables, kLevels);  // owns them

  SequenceDictionary read;
  std::istringstream stream(xmlOf(lattice));
  EXPECT_GT(read.readObjectXML(stream), 0U);
  EXPECT_EQ(read.NumberOfSequences(), 1);  // that of no items, which a lattice begins with
  EXPECT_EQ(xmlOf(lattice).find("\"NTSequence\""), std::string::npos);
}

TEST(DictionaryXml, TheLargestSizeTellsHowManyTablesFollow) {
  const Lattice lattice(kShop, 6);  // largest sequence 3
  const std::string text = xmlOf(lattice);
  std::size_t tables = 0;
  for (std::size_t at = text.find("\"HashtableSQPair\""); at != std::string::npos;
       at = text.find("\"HashtableSQPair\"", at + 1))
    ++tables;
  EXPECT_EQ(tables, 4U);
}

TEST(DictionaryXml, SettingsAreTenIntsAndTellTwelve) {
  SeqDictionarySettings settings;
  settings.upperTableSize = 77;
  std::ostringstream stream;
  EXPECT_EQ(settings.writeObjectXML(stream), 12U);
  const auto lines = linesOf(stream.str());
  ASSERT_EQ(lines.size(), 13U);  // the first is empty
  EXPECT_EQ(lines[1], "\t\t<Obj name=\"DictionarySettings\">");
  EXPECT_EQ(lines[10], "\t\t\t<Int value=\"10\"/>");  // levels before the upper size
  EXPECT_EQ(lines[11], "\t\t\t<Int value=\"77\"/>");
  SeqDictionarySettings read;
  EXPECT_EQ(readXmlInto(read, stream.str()).count, 12U);
  EXPECT_EQ(read.upperTableSize, 77);
}

TEST(DictionaryXml, EverythingBelowAGapComesBack) {
  Lattice lattice(kShop, 6);
  lattice.setSlidingWindow(1.5);
  lattice.setMaxGap(30.0);
  std::ostringstream stream;
  const std::uint64_t told = lattice.writeObjectXML(stream);
  SequenceDictionary read;
  // Writing tells 3 and 5 besides the tables, reading 2 + 1, the settings' 12, and 4.
  EXPECT_EQ(readXmlInto(read, stream.str()).count, told - 8 + 3 + 12 + 4);
  EXPECT_EQ(xmlOf(read), stream.str());
  EXPECT_TRUE(read.isLatticeBuilt());
  EXPECT_EQ(read.getMaxGap(), 30.0);
}

// Deliberate: the form ends at the largest size that is reached without a gap.
TEST(DictionaryXml, SequencesAboveAGapAreLost) {
  SequenceDictionary dictionary(smallTables(6));
  store(dictionary, {}, 10);
  store(dictionary, {{1}}, 5);
  store(dictionary, {{1}, {2}, {3}}, 2);
  SequenceDictionary read;
  readXmlInto(read, xmlOf(dictionary));
  EXPECT_EQ(read.NumberOfSequences(), 2);
}

// Whether a level above the largest size still holds sequences.
bool hasGap(const SequenceDictionary& dictionary) {
  for (int level = dictionary.LargestSequence() + 1; level < dictionary.getNumLevels(); ++level)
    if (dictionary.CountSequencesOfSize(level) > 0) return true;
  return false;
}

TEST(DictionaryXml, RandomLatticesAnswerTheSameWhenTheyComeBack) {
  int compared = 0;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    const auto world = randomWorld(seed);
    if (hasGap(world.dictionary) || lacksCounters(world)) continue;
    ++compared;
    SequenceDictionary read;
    ASSERT_GT(readXmlInto(read, xmlOf(world.dictionary)).count, 0U) << seed;
    for (const History& history : world.histories) {
      EXPECT_EQ(futureItems(read, history, 20, false),
                futureItems(world.dictionary, history, 20, false))
          << seed;
      EXPECT_EQ(currentItems(read, history), currentItems(world.dictionary, history)) << seed;
    }
  }
  EXPECT_GE(compared, 20);
}

TEST(DictionaryXml, TheNameThatIsLookedForCanBeGiven) {
  const std::string text = replacedFirst(xmlOf(Lattice(kShop)), "SequenceDictionary", "Shop");
  std::istringstream named(text);
  SequenceDictionary read;
  EXPECT_GT(read.readObjectXML(named, "Shop"), 0U);
  std::istringstream unnamed(text);
  EXPECT_EQ(read.readObjectXML(unnamed, nullptr), 0U);
}

TEST(DictionaryXml, FileStreamsTakeTheSameForm) {
  const TempFolder folder;
  std::fstream file(folder.path() / "lattice", std::ios::in | std::ios::out | std::ios::trunc);
  Lattice(kShop).writeObjectXML(file);
  SequenceDictionary read;
  file.seekg(0);
  EXPECT_GT(read.readObjectXML(file), 0U);
  file.clear();
  file.seekg(0);
  EXPECT_GT(read.readObjectXML(file, "SequenceDictionary"), 0U);
}

TEST(DictionaryXml, AFailedStreamIsNotWrittenTo) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);
  const CapturedOutput output;
  bool thrown = false;
  try {
    Lattice(kShop).writeObjectXML(stream);
  } catch (SeqExceptions::IOException* error) {
    thrown = true;
    delete error;
  }
  EXPECT_TRUE(thrown);
  EXPECT_EQ(output.text(), "Bad stream for saving SequenceDictionary to XML!\n");
}

TEST(DictionaryXml, BadSettingsThrow) {
  const std::string good = xmlOf(Lattice(kShop));
  for (const std::string& text :
       {replacedFirst(good, "DictionarySettings", "Settings"),
        replacedFirst(good, "DictionarySettings\">\n\t\t\t<Int value=\"2\"",
                      "DictionarySettings\">\n\t\t\t<Int value=\"0\"")}) {
    SequenceDictionary read;
    const ReadOutcome outcome = readXmlInto(read, text);
    EXPECT_TRUE(outcome.isRefused());
    EXPECT_EQ(outcome.printed, "Error reading SeqDictionarySettings!\n");
  }
}

TEST(DictionaryXml, ALargestSizeThatIsNoLevelGivesZeroWithoutAMessage) {
  const std::string good = xmlOf(Lattice(kShop, 4));
  const std::string head = "<Int value=\"1\"/>\n\t\t<Int value=\"";
  for (const char* size : {"4", "2147483647", "-2", "-2147483648"}) {
    SequenceDictionary read;
    const ReadOutcome outcome =
        readXmlInto(read, replacedFirst(good, head + "3\"", head + size + "\""));
    EXPECT_EQ(outcome.count, 0U) << size;
    EXPECT_EQ(outcome.printed, "") << size;
    EXPECT_FALSE(outcome.isRefused()) << size;
  }
}

TEST(DictionaryXml, ALargestSizeOfMinusOneMeansNoTable) {
  SequenceDictionary read;
  const std::string settings = xmlOf(SeqDictionarySettings());
  const std::string text =
      "\n<Obj name=\"SequenceDictionary\">\n<Int value=\"1\"/>\n<Int value=\"-1\"/>" + settings +
      "\n<Double value=\"0\"/>\n<Double value=\"0\"/>\n<Double value=\"0\"/>"
      "\n<Double value=\"0\"/>\n</Obj>";
  EXPECT_EQ(readXmlInto(read, text).count, 2U + 1 + 12 + 4);
}

// Whatever line is missing, doubled or exchanged: refused, or an object that can be used.
TEST(DictionaryXml, NoSpoiledLineDoesHarm) {
  const std::vector<std::string> lines = linesOf(xmlOf(Lattice({{"", 9}, {"(1)", 5}}, 3)));
  const long before = livingBlocks();
  int refused = 0;
  const auto judge = [&refused](const std::vector<std::string>& spoiled) {
    SequenceDictionary read;
    const ReadOutcome outcome = readXmlInto(read, joined(spoiled));
    if (outcome.isRefused() || outcome.count == 0) ++refused;
    EXPECT_LE(futureItems(read, {{1}}).size(), 20U);
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    auto missing = lines;
    missing.erase(missing.begin() + static_cast<std::ptrdiff_t>(i));
    judge(missing);
    auto doubled = lines;
    doubled.insert(doubled.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
    judge(doubled);
    if (i + 1 < lines.size()) {
      auto exchanged = lines;
      std::swap(exchanged[i], exchanged[i + 1]);
      judge(exchanged);
    }
    judge({lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(i)});
  }
  EXPECT_GT(refused, static_cast<int>(lines.size()));
  EXPECT_EQ(livingBlocks(), before);
}

TEST(DictionaryXml, CarriageReturnsBeforeLineFeedsAreAccepted) {
  std::string text;
  for (const char c : xmlOf(Lattice(kShop))) text += c == '\n' ? "\r\n" : std::string(1, c);
  SequenceDictionary read;
  EXPECT_GT(readXmlInto(read, text).count, 0U);
  EXPECT_EQ(read.NumberOfSequences(), 6);
}

TEST(DictionaryXml, EightReadersRunAtOnce) {
  std::vector<std::string> texts;
  for (std::uint32_t seed = 1; seed <= 8; ++seed)
    texts.push_back(xmlOf(randomWorld(seed).dictionary));
  std::vector<std::string> readBack(texts.size());
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < texts.size(); ++i)
    threads.emplace_back([&, i] {
      for (int round = 0; round < 20; ++round) {
        std::istringstream stream(texts[i]);
        SequenceDictionary read;
        read.readObjectXML(stream);
        readBack[i] = std::to_string(read.NumberOfSequences());
      }
    });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::istringstream stream(texts[i]);
    SequenceDictionary read;
    read.readObjectXML(stream);
    EXPECT_EQ(readBack[i], std::to_string(read.NumberOfSequences()));
  }
}

}  // namespace

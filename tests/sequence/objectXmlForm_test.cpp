#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/StatsBucket.h"
#include "tests/sequence/tableValues.h"
#include "tests/support/TempFolder.h"
#include "tests/support/binaryImage.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::StatsBucket;

constexpr const char* kSequenceMessage = "Failure reading NTSequence!\n";
constexpr const char* kCounterMessage = "Error reading SequenceCounter!\n";
constexpr const char* kAdjacencyMessage = "Error reading Sequence!\n";
constexpr const char* kStatisticsMessage = "Error reading StatsBucket!\n";

// The lines of an object of Long and Int elements; "L7" is a Long, "7" an Int, "D0.5" a Double.
std::string object(const std::string& name, const std::vector<std::string>& values,
                   const std::string& inner = "") {
  std::string text = "\n<Obj name=\"" + name + "\">";
  for (const std::string& value : values) {
    const char* element = value[0] == 'L' ? "Long" : value[0] == 'D' ? "Double" : "Int";
    const std::string number = value[0] == 'L' || value[0] == 'D' ? value.substr(1) : value;
    text += std::string("\n<") + element + " value=\"" + number + "\"/>";
  }
  return text + inner + "\n</Obj>";
}

std::string withoutTabs(const std::string& text) {
  std::string bare;
  for (const char c : text)
    if (c != '\t') bare += c;
  return bare;
}

TEST(NTSequenceXml, ThePatternIsALongAndTheOthersAreInts) {
  const NTSequence sequence = packed({{3, 7}, {2}});
  EXPECT_EQ(xmlOf(sequence),
            "\n\t\t\t\t<Obj name=\"NTSequence\">"
            "\n\t\t\t\t\t<Long value=\"3\"/>"
            "\n\t\t\t\t\t<Int value=\"3\"/>"
            "\n\t\t\t\t\t<Int value=\"3\"/>"
            "\n\t\t\t\t\t<Int value=\"7\"/>"
            "\n\t\t\t\t\t<Int value=\"2\"/>"
            "\n\t\t\t\t\t<Int value=\"2\"/>"
            "\n\t\t\t\t</Obj>");
  std::ostringstream stream;
  EXPECT_EQ(sequence.writeObjectXML(stream), 8U);
}

TEST(NTSequenceXml, ItComesBackWithItsHashComputedAnew) {
  ItemSets sets;
  for (int item = 0; item < 32; ++item) sets.push_back({item - 16});
  for (const NTSequence& sequence : {packed({{3, 7}, {2}}), packed({}), packed(sets)}) {
    NTSequence read = packed({{9}});
    EXPECT_EQ(readXmlInto(read, xmlOf(sequence)).count,
              5U + static_cast<std::uint64_t>(sequence.size()));
    EXPECT_TRUE(read == sequence);
    EXPECT_EQ(read.HashCode(), sequence.HashCode());
  }
}

TEST(NTSequenceXml, WhatIsNoSequenceGivesZeroAndItsMessageAndChangesNothing) {
  const std::vector<std::string> bad = {
      "",
      object("SequenceCounter", {"L1", "1", "7", "1"}),
      object("NTSequence", {"1", "1", "7", "1"}),            // the pattern is no Long
      object("NTSequence", {"L4294967296", "1", "7", "1"}),  // beyond 32 bits
      object("NTSequence", {"L-4294967295", "1", "7", "1"}),
      object("NTSequence", {"L1", "33", "7", "1"}),
      object("NTSequence", {"L1", "-1", "1"}),
      object("NTSequence", {"L5", "0", "0"}),
      object("NTSequence", {"L1", "1", "7", "2"}),
      object("NTSequence", {"L2", "1", "7", "1"}),
      object("NTSequence", {"L1", "1", "7"}),
      object("NTSequence", {"L1", "1", "7", "1", "1"}),
  };
  for (const std::string& text : bad) {
    NTSequence read = packed({{9}});
    const ReadOutcome outcome = readXmlInto(read, text);
    EXPECT_EQ(outcome.count, 0U) << text;
    EXPECT_EQ(outcome.printed, kSequenceMessage) << text;
    EXPECT_FALSE(outcome.isRefused());
    EXPECT_TRUE(read == packed({{9}}));
  }
}

TEST(SequenceCounterXml, PairsStandAsItemAndPositionInTheirOrder) {
  SequenceCounter counter(5, 17, nullptr);
  counter.setMaxMissed(2);
  counter.addAdjacentItem(9, 1);
  counter.addAdjacentItem(-4, 0);
  EXPECT_EQ(withoutTabs(xmlOf(counter)),
            object("SequenceCounter", {"17", "5", "2", "2", "-4", "0", "9", "1", "0"}));
  std::ostringstream stream;
  EXPECT_EQ(counter.writeObjectXML(stream), 11U);
  SequenceCounter read;
  EXPECT_EQ(readXmlInto(read, xmlOf(counter)).count, 11U);
  EXPECT_EQ(binaryOf(read), binaryOf(counter));
}

TEST(SequenceCounterXml, StatisticsAreAnObjectOfFourDoubles) {
  auto statistics = std::make_unique<StatsBucket>();
  statistics->setOccurrences(3.0);
  statistics->setTotal(0.1);
  statistics->setMinimum(std::numeric_limits<double>::lowest());
  SequenceCounter counter(0, 17, statistics.release());
  const std::string inner = object("StatsBucket", {"D3", "D0.1", "DMissing", "D0"});
  EXPECT_EQ(withoutTabs(xmlOf(counter)),
            object("SequenceCounter", {"17", "0", "0", "0", "1"}, inner));
  std::ostringstream stream;
  EXPECT_EQ(counter.writeObjectXML(stream), 7U + 6U);
  SequenceCounter read;
  EXPECT_EQ(readXmlInto(read, xmlOf(counter)).count, 13U);
  EXPECT_EQ(binaryOf(read), binaryOf(counter));
}

struct BadCounter {
  std::string text;
  const char* message;
};

TEST(SequenceCounterXml, EachFaultHasItsMessageAndChangesNothing) {
  const std::string cut = object("StatsBucket", {"D3", "D0.1", "D0"});
  const std::vector<BadCounter> bad = {
      {"", kCounterMessage},
      {object("NTSequence", {"1", "0", "0", "0", "0"}), kCounterMessage},
      {object("SequenceCounter", {"1", "0", "0", "-1", "0"}), kAdjacencyMessage},
      {object("SequenceCounter", {"1", "0", "0", "2147483647", "5", "1"}), kCounterMessage},
      {object("SequenceCounter", {"1", "0", "0", "0", "-1"}), kStatisticsMessage},
      {object("SequenceCounter", {"1", "0", "0", "0", "7"}), kStatisticsMessage},
      {object("SequenceCounter", {"1", "0", "0", "0", "1"}, cut), kStatisticsMessage},
      {object("SequenceCounter", {"1", "0", "0", "0", "0", "0"}), kCounterMessage},
  };
  for (const BadCounter& row : bad) {
    SequenceCounter read(0, 42, nullptr);
    const ReadOutcome outcome = readXmlInto(read, row.text);
    EXPECT_EQ(outcome.count, 0U) << row.text;
    EXPECT_EQ(outcome.printed, row.message) << row.text;
    EXPECT_EQ(read.getCount(), 42);
  }
}

TEST(HashtableSQPairXml, EntriesStandInTheTablesOrder) {
  HashtableSQPair table(5);
  putItems(table, {1, 6});
  table.put(newKey({{2}}), nullptr);
  const auto entry = [](const std::string& item) {
    return object("NTSequence", {"L1", "1", item, "1"}) +
           object("SequenceCounter", {item, "0", "0", "0", "0"});
  };
  const std::string zero = object("NTSequence", {"L1", "1", "2", "1"}) +
                           object("SequenceCounter", {"0", "0", "0", "0", "0"});
  EXPECT_EQ(withoutTabs(xmlOf(table)),
            object("HashtableSQPair", {"3"}, entry("6") + entry("1") + zero));
  std::ostringstream stream;
  EXPECT_EQ(table.writeObjectXML(stream), 3U + 3 * (6 + 7));
  HashtableSQPair read(5);
  EXPECT_EQ(readXmlInto(read, xmlOf(table)).count, 3U + 3 * 13);
  EXPECT_EQ(itemsInOrder(read), (Items{1, 6, 2}));
}

TEST(HashtableSQPairXml, ACountBelowOneIsAnEmptyTable) {
  for (const char* count : {"0", "-1"}) {
    HashtableSQPair read(5);
    EXPECT_EQ(readXmlInto(read, object("HashtableSQPair", {count})).count, 3U);
    EXPECT_EQ(read.getSize(), 0);
  }
}

TEST(HashtableSQPairXml, TooManyEntriesFailAtTheEndOfTheStream) {
  HashtableSQPair read(5);
  const ReadOutcome outcome = readXmlInto(read, object("HashtableSQPair", {"2147483647"}));
  EXPECT_EQ(outcome.count, 0U);
  EXPECT_EQ(outcome.printed, kSequenceMessage);
}

TEST(HashtableSQPairXml, AdjacentPositionsThatNameNoExtensionAreRefused) {
  HashtableSQPair read(5);
  const std::string text =
      object("HashtableSQPair", {"1"},
             object("NTSequence", {"L1", "1", "4", "1"}) +
                 object("SequenceCounter", {"3", "0", "0", "1", "7", "2", "0"}));
  EXPECT_EQ(readXmlInto(read, text).count, 0U);
}

TEST(HashtableSQPairXml, ATableThatIsNotOneGivesZeroWithoutAMessage) {
  HashtableSQPair read(5);
  for (const std::string& text :
       {std::string(), object("Table", {"0"}),
        std::string("\n<Obj name=\"HashtableSQPair\">\n<Int value=\"0\"/>")}) {
    const ReadOutcome outcome = readXmlInto(read, text);
    EXPECT_EQ(outcome.count, 0U);
    EXPECT_EQ(outcome.printed, "");
  }
}

TEST(HashtableSQPairXml, FileStreamsTakeTheSameForm) {
  const TempFolder folder;
  HashtableSQPair table(5);
  putItems(table, {1, 6});
  std::fstream file(folder.path() / "table", std::ios::in | std::ios::out | std::ios::trunc);
  table.writeObjectXML(file);
  file.seekg(0);
  HashtableSQPair read(5);
  EXPECT_EQ(read.readObjectXML(file), 29U);
}

}  // namespace

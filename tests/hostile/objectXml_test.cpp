// Streams of objects in lines of XML: single lines, and whole objects that are refused.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "common/OrbMV.h"
#include "sequence/HashtableSQPair.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/binaryParts.h"
#include "tests/hostile/latticeFiles.h"
#include "xml/XMLObj.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;

// --- Lines ---------------------------------------------------------------------------------------

// What a parse function makes of a stream: "false", "true", or the value that it read.
using Parse = std::string (*)(std::ifstream&);

std::string start(std::ifstream& file) {
  return OrbXML_830::ParseStartXML(file) ? "true" : "false";
}

std::string startOfX(std::ifstream& file) {
  return OrbXML_830::ParseStartObj(file, "X") ? "true" : "false";
}

std::string end(std::ifstream& file) { return OrbXML_830::ParseEndObj(file) ? "true" : "false"; }

std::string textOf(const std::string& value) { return "'" + value + "'"; }
std::string textOf(bool value) { return value ? "1" : "0"; }
std::string textOf(double value) {
  if (OrbCommon_830::OrbMV::IsMissing(value)) return "missing";
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}
template <class Integer>
std::string textOf(Integer value) {
  return std::to_string(value);
}

template <class Value>
std::string valueOf(std::ifstream& file) {
  Value value{};
  return OrbXML_830::ParseValue(file, value) ? textOf(value) : "false";
}

struct Line {
  std::string name;
  Parse parse;
  std::string text;
  std::string expected;
};

std::ostream& operator<<(std::ostream& out, const Line& row) { return out << row.name; }

std::string element(const char* name, const std::string& value) {
  return std::string("<") + name + " value=\"" + value + "\"/>\n";
}

// An Int of 7 in a line of so many characters.
std::string intLine(std::size_t size) {
  std::string line = element("Int", "7");
  line.insert(line.size() - 1, size - (line.size() - 1), ' ');
  return line;
}

std::vector<Line> headRows() {
  const std::string first = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";
  const std::string second = "<!DOCTYPE OrbXMLRoot SYSTEM \"savexml.dtd\">\n";
  return {
      {"O01_EmptyStream", start, "", "false"},
      {"O01_DeclarationAlone", start, first, "false"},
      {"O01_HeaderLinesAlone", start, first + second, "false"},
      {"O01_AnotherRoot", start, first + second + "<Root copyright=\"\">\n", "false"},
      {"O01_RootBeforeTheType", start, first + "<OrbXMLRoot>\n" + second, "false"},
      {"O01_NoDeclaration", start, second + "<OrbXMLRoot>\n", "false"},
      {"O01_WholeHead", start, first + second + "<OrbXMLRoot copyright=\"\">\n", "true"},
      {"O02_LineOf255", valueOf<int>, intLine(255), "7"},
      {"O02_LastLineOf255", valueOf<int>, intLine(255).substr(0, 255), "7"},
      {"O02_LineOf256", valueOf<int>, intLine(256), "false"},
      {"O02_LineOf10000000", valueOf<int>, intLine(10'000'000), "false"},
      {"O02_EndOf10000000", end, "</Obj>" + std::string(10'000'000, ' '), "false"},
      {"O02_HeadOf10000000", start, "<?xml" + std::string(10'000'000, ' ') + second, "false"},
      {"O03_NoBlankLine", startOfX, "<Obj name=\"X\">\n", "true"},
      {"O03_OneBlankLine", startOfX, "\n<Obj name=\"X\">\n", "true"},
      {"O03_TwoBlankLines", startOfX, "\n\n<Obj name=\"X\">\n", "false"},
      {"O03_BlankLinesAlone", startOfX, "\n\n", "false"},
      {"O04_NoBracket", startOfX, "<Obj name=\"X\"\n", "false"},
      {"O04_AnotherName", startOfX, "<Obj name=\"XY\">\n", "false"},
      {"O04_NoName", startOfX, "<Obj>\n", "false"},
      {"O04_EmptyName", startOfX, "<Obj name=\"\">\n", "false"},
      {"O04_LowerCase", startOfX, "<obj name=\"X\">\n", "false"},
      {"O04_AnotherAttribute", startOfX, "<Obj title=\"X\">\n", "false"},
      {"O04_EndInLowerCase", end, "</obj>\n", "false"},
      {"O04_End", end, "</Obj>\n", "true"},
  };
}

std::vector<Line> valueRows() {
  return {
      {"O05_IntAboveItsRange", valueOf<int>, element("Int", "2147483648"), "2147483647"},
      {"O05_IntBelowItsRange", valueOf<int>, element("Int", "-2147483649"), "-2147483648"},
      {"O05_IntOf40Digits", valueOf<int>, element("Int", std::string(40, '9')), "2147483647"},
      {"O05_IntOfLetters", valueOf<int>, element("Int", "abc"), "0"},
      {"O05_EmptyInt", valueOf<int>, element("Int", ""), "0"},
      {"O05_AnotherElement", valueOf<int>, element("Long", "1"), "false"},
      {"O05_NoValue", valueOf<int>, "<Int/>\n", "false"},
      {"O06_Bool2", valueOf<bool>, element("Int", "2"), "false"},
      {"O06_BoolMinus1", valueOf<bool>, element("Int", "-1"), "false"},
      {"O06_BoolOfLetters", valueOf<bool>, element("Int", "yes"), "0"},
      {"O06_Bool1", valueOf<bool>, element("Int", "1"), "1"},
      {"O07_UnsignedMinus1", valueOf<unsigned>, element("Int", "-1"), "0"},
      {"O07_Unsigned1e30", valueOf<unsigned>, element("Int", "1e30"), "4294967295"},
      {"O07_UnsignedNan", valueOf<unsigned>, element("Int", "nan"), "0"},
      {"O07_UnsignedInf", valueOf<unsigned>, element("Int", "inf"), "4294967295"},
      {"O07_UnsignedMost", valueOf<unsigned>, element("Int", "4294967295.9"), "4294967295"},
      {"O08_DoubleMissing", valueOf<double>, element("Double", "Missing"), "missing"},
      {"O08_DoubleInf", valueOf<double>, element("Double", "inf"), "0"},
      {"O08_DoubleNan", valueOf<double>, element("Double", "nan"), "0"},
      {"O08_DoubleTooLarge", valueOf<double>, element("Double", "1e999"),
       textOf(std::numeric_limits<double>::max())},
      {"O08_DoubleWithAComma", valueOf<double>, element("Double", "1,5"), "1"},
      {"O08_DoubleEmpty", valueOf<double>, element("Double", ""), "0"},
      {"O09_LongBeyondIts64Bits", valueOf<long>, element("Long", std::string(40, '9')),
       "9223372036854775807"},
      {"O10_StringWithAReference", valueOf<std::string>, element("String", "&#32;"), "'&#32;'"},
      {"O10_StringWithQuotes", valueOf<std::string>, element("String", "a\"b"), "'a'"},
      {"O10_EmptyString", valueOf<std::string>, element("String", ""), "''"},
      {"O10_StringOf300", valueOf<std::string>, element("String", std::string(300, 'a')), "false"},
      {"O16_CarriageReturn", valueOf<int>, "<Int value=\"7\"/>\r\n", "7"},
      {"O16_CarriageReturnInAString", valueOf<std::string>, "<String value=\"ab\"/>\r\n", "'ab'"},
      {"O16_BlankLineWithACarriageReturn", startOfX, "\r\n<Obj name=\"X\">\r\n", "true"},
      {"O16_NulBeforeTheValue", valueOf<int>, std::string("<Int val\0ue=\"7\"/>\n", 19), "false"},
      {"O16_NulInTheValue", valueOf<int>, std::string("<Int value=\"12\0", 15) + "34\"/>\n", "12"},
      {"O16_NulBehindTheLine", valueOf<int>, std::string("<Int value=\"7\"/>\0x\n", 19), "7"},
      {"O16_NulAlone", valueOf<int>, std::string("\0\n", 2), "false"},
      {"O16_NoFinalNewline", valueOf<int>, "<Int value=\"7\"/>", "7"},
      {"O16_EndWithoutFinalNewline", end, "</Obj>", "true"},
  };
}

class ObjectXmlLine : public ::testing::TestWithParam<Line> {};

TEST_P(ObjectXmlLine, IsReadOrRefusedWithoutAMessage) {
  const Line& row = GetParam();
  const Meter meter(row.text.size());
  {
    MemoryFile<std::ifstream> file(row.text);
    const CapturedErrors errors;
    EXPECT_EQ(row.parse(file.stream()), row.expected);
    EXPECT_EQ(errors.text(), "");
    EXPECT_LT(meter.peakBytes(), 4096U);  // whatever the length of the line
  }
  meter.check();
}

INSTANTIATE_TEST_SUITE_P(Heads, ObjectXmlLine, ::testing::ValuesIn(headRows()), nameOf<Line>);
INSTANTIATE_TEST_SUITE_P(Values, ObjectXmlLine, ::testing::ValuesIn(valueRows()), nameOf<Line>);

// --- Objects -------------------------------------------------------------------------------------

struct Object {
  std::string name;
  ReadOutcome (*read)(const std::string& text);
  std::string text;
  std::uint64_t lines;  // told; 0: refused
  const char* message = "";
  const char* thrown = "";
};

std::ostream& operator<<(std::ostream& out, const Object& row) { return out << row.name; }

template <class Read>
ReadOutcome readAs(const std::string& text) {
  Read object;
  return readXmlFileInto(object, text);
}

// Values of an object: "L7" is a Long, "D0.5" a Double, anything else an Int.
std::string object(const char* name, const std::vector<std::string>& values,
                   const std::string& inner = "") {
  std::string text = std::string("\n<Obj name=\"") + name + "\">";
  for (const std::string& value : values) {
    const bool isTyped = value[0] == 'L' || value[0] == 'D';
    const char* type = value[0] == 'L' ? "Long" : value[0] == 'D' ? "Double" : "Int";
    const std::string line = element(type, isTyped ? value.substr(1) : value);
    text += "\n" + line.substr(0, line.size() - 1);
  }
  return text + inner + "\n</Obj>";
}

std::string sequence(const std::vector<std::string>& values) {
  return object("NTSequence", values);
}
std::string counter(const std::vector<std::string>& values, const std::string& inner = "") {
  return object("SequenceCounter", values, inner);
}
std::string table(const std::string& count, const std::string& entries = "") {
  return object("HashtableSQPair", {count}, entries);
}

// The first two items' factors are 9829 and 9817, so that these keys have one hash.
std::string collidingEntries(int count) {
  std::string entries;
  for (int k = 0; k < count; ++k)
    entries +=
        sequence({"L1", "2", std::to_string(9817 * k), std::to_string(9829 * (100'000 - k)), "1"}) +
        counter({"1", "0", "0", "0", "0"});
  return entries;
}

// A dictionary that announces the largest size and has one table, of the empty sequence.
std::string dictionary(const std::string& largest,
                       const std::vector<std::string>& settings = {"2", "3", "5", "7", "7", "5",
                                                                   "3", "3", "4", "3"}) {
  std::string text =
      object("SequenceDictionary", {"1", largest},
             object("DictionarySettings", settings) +
                 table("1", sequence({"L0", "0", "0"}) + counter({"10", "0", "0", "0", "0"})));
  text.resize(text.size() - std::string("\n</Obj>").size());
  for (int n = 0; n < 4; ++n) text += "\n<Double value=\"0\"/>";
  return text + "\n</Obj>";
}

std::string withoutTables(std::string text) {
  const std::size_t begin = text.find("\n<Obj name=\"HashtableSQPair\">");
  return text.erase(begin, text.find("\n<Double") - begin);
}

std::vector<Object> numberRows() {
  const auto readSequence = &readAs<NTSequence>;
  const auto readCounter = &readAs<SequenceCounter>;
  const auto readTable = &readAs<HashtableSQPair>;
  const std::string statistics = object("StatsBucket", {"D1", "D2", "D3", "D4"});
  const std::string cut = object("StatsBucket", {"D1", "D2", "D3"});
  std::vector<std::string> thirtyThree = {"L1", "33"};
  thirtyThree.insert(thirtyThree.end(), 33, "7");
  thirtyThree.push_back("1");
  return {
      {"O09_PatternOf33Bits", readSequence, sequence({"L4294967296", "1", "7", "1"}), 0,
       kSequenceMessage},
      {"O09_PatternOf33BitsWithALowOne", readSequence, sequence({"L4294967297", "1", "7", "1"}), 0,
       kSequenceMessage},
      {"O09_PatternOf40Digits", readSequence, sequence({"L" + std::string(40, '9'), "1", "7", "1"}),
       0, kSequenceMessage},
      {"O12_EntryCountMinus1", readTable, table("-1"), 3},
      {"O12_EntryCountMost", readTable, table("2147483647"), 0, kSequenceMessage},
      {"O12_EntryCountBeyondIts32Bits", readTable, table("4294967296"), 0, kSequenceMessage},
      {"O13_ItemCount33", readSequence, sequence({"L1", "33", "7", "1"}), 0, kSequenceMessage},
      {"O13_ItemCount33WithAllItems", readSequence, sequence(thirtyThree), 0, kSequenceMessage},
      {"O12_AThousandAndOneSequencesInABucket", readTable, table("1001", collidingEntries(1001)),
       0},
      {"O13_ItemCountMinus1", readSequence, sequence({"L0", "-1", "0"}), 0, kSequenceMessage},
      {"O13_ItemCountMost", readSequence, sequence({"L1", "2147483647", "7"}), 0, kSequenceMessage},
      {"O13_SetCountTooLarge", readSequence, sequence({"L1", "1", "7", "2"}), 0, kSequenceMessage},
      {"O13_SetCountMinus1", readSequence, sequence({"L1", "1", "7", "-1"}), 0, kSequenceMessage},
      {"O13_PatternOfFewerItems", readSequence, sequence({"L3", "1", "7", "2"}), 0,
       kSequenceMessage},
      {"O14_AdjacencyCountMost", readCounter, counter({"3", "0", "0", "2147483647", "5", "1"}), 0,
       kCounterMessage},
      {"O14_AdjacencyCountMinus1", readCounter, counter({"3", "0", "0", "-1", "0"}), 0,
       kAdjacencyMessage},
      {"O14_StatisticsFlag7", readCounter, counter({"3", "0", "0", "0", "7"}, statistics), 13},
      {"O14_StatisticsFlagMinus1", readCounter, counter({"3", "0", "0", "0", "-1"}), 0,
       kStatisticsMessage},
      {"O14_StatisticsCut", readCounter, counter({"3", "0", "0", "0", "1"}, cut), 0,
       kStatisticsMessage},
  };
}

std::vector<Object> dictionaryRows() {
  const auto read = &readAs<SequenceDictionary>;
  std::vector<Object> rows = {
      {"O11_LargestMinus1", read, withoutTables(dictionary("-1")), 3 + 12 + 4},
      {"O11_LargestMinus1WithTables", read, dictionary("-1"), 0},
      {"O11_Largest0", read, dictionary("0"), 3 + 12 + (3 + 5 + 7) + 4},
      {"O11_Largest1WithOneTable", read, dictionary("1"), 0},
      {"O11_LargestIsNoLevel", read, dictionary("4"), 0},
      {"O11_LargestMost", read, dictionary("2147483647"), 0},
      {"O11_LargestMinus2", read, dictionary("-2"), 0},
      {"O11_LargestLeast", read, dictionary("-2147483648"), 0},
      {"O17_NoSettings", read, object("SequenceDictionary", {"1", "0"}, table("0")), 0,
       kSettingsMessage, "DictionarySettings: cannot be read"},
  };
  const auto addSettings = [&](const char* name, std::size_t index, const char* value,
                               const char* thrown) {
    std::vector<std::string> settings = {"2", "3", "5", "7", "7", "5", "3", "3", "4", "3"};
    settings[index] = value;
    rows.push_back({name, read, dictionary("0", settings), 0, kSettingsMessage, thrown});
  };
  addSettings("O17_NoBuckets", 3, "0",
              "DictionarySettings: table size of level 3 0 is outside 1..4194304");
  addSettings("O17_BucketsMost", 7, "2147483647",
              "DictionarySettings: table size of level 7 2147483647 is outside 1..4194304");
  addSettings("O17_NoLevels", 8, "0", "DictionarySettings: number of levels 0 is outside 1..64");
  addSettings("O17_LevelsMost", 8, "2147483647",
              "DictionarySettings: number of levels 2147483647 is outside 1..64");
  addSettings("O17_UpperSizeMinus1", 9, "-1",
              "DictionarySettings: table size of upper levels -1 is outside 1..4194304");
  addSettings("O17_AnotherElement", 5, "L1", "DictionarySettings: cannot be read");
  return rows;
}

class ObjectXml : public ::testing::TestWithParam<Object> {};

TEST_P(ObjectXml, IsReadOrRefusedWithItsMessageAlone) {
  const Object& row = GetParam();
  const Meter meter(row.text.size());
  {
    const ReadOutcome outcome = row.read(row.text);
    EXPECT_EQ(outcome.count, row.lines);
    EXPECT_EQ(outcome.printed, row.message);
    EXPECT_EQ(outcome.thrown, row.thrown);
    EXPECT_LT(meter.peakBytes(), std::size_t{1} << 20);  // whatever the numbers announce
  }
  meter.check();
}

INSTANTIATE_TEST_SUITE_P(Numbers, ObjectXml, ::testing::ValuesIn(numberRows()), nameOf<Object>);
INSTANTIATE_TEST_SUITE_P(Dictionaries, ObjectXml, ::testing::ValuesIn(dictionaryRows()),
                         nameOf<Object>);

TEST(ObjectXmlNumbers, O14AnyStatisticsFlagButZeroReadsTheBucket) {
  const std::string bucket = object("StatsBucket", {"D1", "D2", "D3", "D4"});
  SequenceCounter read;

  EXPECT_EQ(readXmlFileInto(read, counter({"3", "0", "0", "0", "7"}, bucket)).count, 13U);

  EXPECT_EQ(read.getCount(), 3);
  ASSERT_NE(read.getStatsBucket(), nullptr);
  EXPECT_EQ(read.getStatsBucket()->getOccurrences(), 1.0);
  EXPECT_EQ(read.getStatsBucket()->getTotal(), 2.0);
  EXPECT_EQ(read.getStatsBucket()->getMinimum(), 3.0);
  EXPECT_EQ(read.getStatsBucket()->getMaximum(), 4.0);
}

// The tables are as those of a new dictionary: the empty sequence, which nobody has.
TEST(ObjectXmlNumbers, O11NoSequenceIsReadWhereTheLargestSizeIsMinusOne) {
  const NTSequence nothing;
  SequenceDictionary fresh, used;
  EXPECT_GT(readXmlFileInto(used, validObjectXml()).count, 0U);
  for (SequenceDictionary* read : {&fresh, &used}) {
    EXPECT_EQ(readXmlFileInto(*read, withoutTables(dictionary("-1"))).count, 3U + 12U + 4U);

    EXPECT_EQ(read->NumberOfSequences(), 1);
    ASSERT_NE(read->getDescriptor(&nothing), nullptr);
    EXPECT_EQ(read->getDescriptor(&nothing)->getCount(), 0);
    expectCleanAnswers(*read);
  }
}

TEST_P(ObjectXml, LeavesADictionaryToReadInto) {
  const Object& row = GetParam();
  const ValidLattice other;
  expectValidLattice(other.dictionary());  // makes what is made once
  const std::string& good = validObjectXml();
  const Meter meter(row.text.size() + good.size());
  {
    SequenceDictionary read;
    EXPECT_GT(readXmlFileInto(read, good).count, 0U);
    readXmlFileInto(read, row.text);
    EXPECT_GT(readXmlFileInto(read, good).count, 0U);
    expectValidLattice(read);
  }
  meter.check();
  expectValidLattice(other.dictionary());
}

}  // namespace

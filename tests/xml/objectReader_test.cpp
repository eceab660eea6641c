#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common/OrbMV.h"
#include "tests/support/TempFolder.h"
#include "xml/XMLObj.h"
#include "xml/XMLUtil.h"

namespace {

using namespace orbseq::test;
using namespace OrbXML_830;

const char* const kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
    "<!DOCTYPE OrbXMLRoot SYSTEM \"savexml.dtd\">\n";

bool startsXml(const std::string& text) {
  std::istringstream stream(text);
  return ParseStartXML(stream);
}

bool startsObject(const std::string& text, const std::string& name = "Shop") {
  std::istringstream stream(text);
  return ParseStartObj(stream, name);
}

bool endsObject(const std::string& text) {
  std::istringstream stream(text);
  return ParseEndObj(stream);
}

bool readsInt(const std::string& text) {
  std::istringstream stream(text);
  int value = 0;
  return ParseValue(stream, value) && value == 3;
}

// The line padded in front to a length.
std::string padded(const std::string& line, std::size_t length) {
  return std::string(length - line.size(), ' ') + line;
}

// A whole stream whose object holds `number` in every form.
std::string document(int number) {
  std::ostringstream stream;
  const XMLObj object("Shop", 0);
  stream << kHead;
  StartRoot(stream, "(c)");
  object.StartObj(stream);
  object.WriteSubElement(stream, number);
  object.WriteSubElement(stream, static_cast<long>(number));
  object.WriteSubElement(stream, static_cast<unsigned int>(number));
  object.WriteSubElement(stream, number + 0.5);
  object.WriteSubElement(stream, OrbCommon_830::OrbMV::Missing());
  object.WriteSubElement(stream, number % 2 == 1);
  object.WriteSubElement(stream, "shop " + std::to_string(number));
  object.WriteSubElement(stream, "");
  object.EndObj(stream);
  EndRoot(stream);
  return stream.str();
}

// Whether the stream holds document(number).
template <class Stream>
bool holds(Stream& is, int number) {
  int i = 0;
  long l = 0;
  unsigned int u = 0;
  double d = 0, missing = 0;
  bool b = false;
  std::string s, empty = "old";
  const bool ok = ParseStartXML(is) && ParseStartObj(is, "Shop") && ParseValue(is, i) &&
                  ParseValue(is, l) && ParseValue(is, u) && ParseValue(is, d) &&
                  ParseValue(is, missing) && ParseValue(is, b) && ParseValue(is, s) &&
                  ParseValue(is, empty) && ParseEndObj(is);
  return ok && i == number && l == number && u == static_cast<unsigned int>(number) &&
         d == number + 0.5 && missing == OrbCommon_830::OrbMV::Missing() &&
         b == (number % 2 == 1) && s == "shop " + std::to_string(number) && empty.empty();
}

TEST(ObjectReader, WhatWasWrittenIsReadFromAnyStream) {
  std::istringstream stream(document(41));

  EXPECT_TRUE(holds(stream, 41));
}

TEST(ObjectReader, WhatWasWrittenIsReadFromAFile) {
  const TempFolder folder;
  std::ifstream file(folder.file("shop.xml", document(42)));

  EXPECT_TRUE(holds(file, 42));
}

TEST(ObjectReader, AFileThatIsMissingIsRefusedByEveryReader) {
  const TempFolder folder;
  std::ifstream file(folder.path("none.xml"));
  int value = 5;

  EXPECT_FALSE(ParseStartXML(file));
  EXPECT_FALSE(ParseStartObj(file, "Shop"));
  EXPECT_FALSE(ParseEndObj(file));
  EXPECT_FALSE(ParseValue(file, value));
  EXPECT_EQ(value, 5);
}

TEST(ObjectReader, ThreadsReadTheirOwnStreamsAtOnce) {
  std::vector<int> read(8, 0);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < read.size(); ++t) {
    threads.emplace_back([&read, t] {
      for (int number = 0; number < 200; ++number) {
        std::istringstream stream(document(number + static_cast<int>(t)));
        if (holds(stream, number + static_cast<int>(t))) ++read[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(read, std::vector<int>(8, 200));
}

TEST(ObjectReader, LinesMayEndInCarriageReturns) {
  std::string text = document(3);
  XMLUtil::ReplaceAll(text, "\n", "\r\n");
  std::istringstream stream(text);

  EXPECT_TRUE(holds(stream, 3));
}

TEST(ObjectReader, TheHeadIsThreeLinesKnownByTheirFirstWords) {
  EXPECT_TRUE(startsXml(std::string(kHead) + "<OrbXMLRoot copyright=\"c\">\n"));
  EXPECT_TRUE(startsXml("?xml\n!DOCTYPE\nOrbXMLRoot"));
  EXPECT_FALSE(startsXml(std::string("\n") + kHead + "<OrbXMLRoot>"));
  EXPECT_FALSE(startsXml("<?XML?>\n<!DOCTYPE x>\n<OrbXMLRoot>"));
  EXPECT_FALSE(startsXml("<?xml?>\n<!ELEMENT x>\n<OrbXMLRoot>"));
  EXPECT_FALSE(startsXml("<?xml ?>\n<!DOCTYPE x>\n<OrbXMLRoots>"));
  EXPECT_FALSE(startsXml(kHead));
  EXPECT_FALSE(startsXml(""));
}

TEST(ObjectReader, AnObjectIsKnownByItsName) {
  EXPECT_TRUE(startsObject("<Obj name=\"Shop\">"));
  EXPECT_TRUE(startsObject("\t\t<Obj name=\"Shop\">\n"));
  EXPECT_FALSE(startsObject("<Obj name=\"Shops\">"));
  EXPECT_FALSE(startsObject("<Obj name=\"shop\">"));
  EXPECT_FALSE(startsObject("<obj name=\"Shop\">"));
  EXPECT_FALSE(startsObject("<Obj Name=\"Shop\">"));
  EXPECT_FALSE(startsObject("<Obj name="));
  EXPECT_FALSE(startsObject("<Obj"));
}

TEST(ObjectReader, ANameMayHoldSpacesAndMarkup) {
  EXPECT_TRUE(startsObject("<Obj name=\"a <b> c=d\">", "a <b> c=d"));
}

TEST(ObjectReader, OneEmptyLineBeforeAnObjectIsSkippedAndNotMore) {
  EXPECT_TRUE(startsObject("\n<Obj name=\"Shop\">"));
  EXPECT_TRUE(startsObject("\r\n<Obj name=\"Shop\">\r\n"));
  EXPECT_FALSE(startsObject("\n\n<Obj name=\"Shop\">"));
  EXPECT_FALSE(startsObject(" \n<Obj name=\"Shop\">"));
  EXPECT_FALSE(startsObject("\n"));
  EXPECT_FALSE(startsObject(""));
}

TEST(ObjectReader, AnObjectsEndIsKnownByItsTag) {
  EXPECT_TRUE(endsObject("</Obj>"));
  EXPECT_TRUE(endsObject("\t</Obj>\n"));
  EXPECT_FALSE(endsObject("\n</Obj>"));
  EXPECT_FALSE(endsObject("<Obj>"));
  EXPECT_FALSE(endsObject("</OrbXMLRoot>"));
  EXPECT_FALSE(endsObject(""));
}

TEST(ObjectReader, ALineOf255CharactersIsReadAndALongerOneIsNot) {
  const std::string line = "<Int value=\"3\"/>";

  EXPECT_TRUE(readsInt(padded(line, 255) + "\n"));
  EXPECT_TRUE(readsInt(padded(line, 255)));
  EXPECT_FALSE(readsInt(padded(line, 256) + "\n"));
  EXPECT_FALSE(readsInt(padded(line, 256)));
  EXPECT_FALSE(readsInt(line + std::string(240, ' ') + "\n"));
  EXPECT_FALSE(readsInt(padded(line, 10'000'000) + "\n"));
}

TEST(ObjectReader, ACarriageReturnCountsAsACharacterOfItsLine) {
  EXPECT_TRUE(readsInt(padded("<Int value=\"3\"/>\r", 255) + "\n"));
  EXPECT_FALSE(readsInt(padded("<Int value=\"3\"/>\r", 256) + "\n"));
}

TEST(ObjectReader, EveryReaderRefusesALongLine) {
  const std::string more(256, ' ');

  EXPECT_FALSE(startsXml("<?xml" + more + "\n<!DOCTYPE\n<OrbXMLRoot"));
  EXPECT_FALSE(startsXml(kHead + ("<OrbXMLRoot" + more)));
  EXPECT_FALSE(startsObject("<Obj name=\"Shop\">" + more));
  EXPECT_FALSE(startsObject("\n<Obj name=\"Shop\">" + more));
  EXPECT_FALSE(endsObject("</Obj>" + more));
}

TEST(ObjectReader, AWholeLastLineNeedsNoLineFeed) {
  std::istringstream stream("<Int value=\"3\"/>");
  int value = 0;

  EXPECT_TRUE(ParseValue(stream, value));
  EXPECT_FALSE(ParseValue(stream, value));
}

TEST(ObjectReader, AZeroByteEndsTheTextOfItsLineOnly) {
  const char text[] = "<Int value=\"3\"\0garbage\n<Int\0 value=\"3\"/>\n</Obj>";
  std::istringstream stream(std::string(text, sizeof text - 1));
  int value = 0;

  EXPECT_TRUE(ParseValue(stream, value));
  EXPECT_EQ(value, 3);
  EXPECT_FALSE(ParseValue(stream, value));
  EXPECT_TRUE(ParseEndObj(stream));
}

TEST(ObjectReader, ARefusedLineIsConsumed) {
  std::istringstream stream("<Long value=\"1\"/>\n<Int value=\"2\"/>\n");
  int value = 5;

  EXPECT_FALSE(ParseValue(stream, value));
  EXPECT_EQ(value, 5);
  EXPECT_TRUE(ParseValue(stream, value));
  EXPECT_EQ(value, 2);
}

}  // namespace

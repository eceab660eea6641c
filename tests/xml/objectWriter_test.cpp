#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

#include "common/OrbMV.h"
#include "tests/support/locales.h"
#include "xml/XMLObj.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::XMLObj;

template <class Operation>
std::string written(Operation operation) {
  std::ostringstream stream;
  EXPECT_EQ(operation(stream), 0);
  return stream.str();
}

// The field of an object without tabs before its bracket.
template <class T>
std::string field(T value) {
  return written([&](std::ostream& os) { return XMLObj("X", -1).WriteSubElement(os, value); });
}

TEST(ObjectWriter, AnObjectKnowsItsNameAndTabsAndCanBeCopied) {
  const XMLObj object("Shop", 3);
  const XMLObj copy = object;

  EXPECT_EQ(copy.GetName(), "Shop");
  EXPECT_EQ(copy.GetNTabs(), 3);
}

TEST(ObjectWriter, TheRootHasTheEscapedCopyrightAndNoLineFeed) {
  const auto start = [](std::ostream& os) { return OrbXML_830::StartRoot(os, "(c) \"A\" & B"); };

  EXPECT_EQ(written(start), "<OrbXMLRoot copyright=\"(c) &quot;A&quot; &amp; B\">");
}

TEST(ObjectWriter, TheRootsEndStandsOnANewLineWithoutAFinalLineFeed) {
  EXPECT_EQ(written(OrbXML_830::EndRoot), "\n</OrbXMLRoot>");
}

// Deliberate: both pairs of names stay.
TEST(ObjectWriter, TheHeaderIsAnotherNameForTheRoot) {
  const auto start = [](std::ostream& os) { return OrbXML_830::WriteHeader(os, "c"); };

  EXPECT_EQ(written(start), "<OrbXMLRoot copyright=\"c\">");
  EXPECT_EQ(written(OrbXML_830::EndHeader), "\n</OrbXMLRoot>");
}

TEST(ObjectWriter, TheBracketStandsBehindItsTabs) {
  const XMLObj object("Shop", 2);

  EXPECT_EQ(written([&](std::ostream& os) { return object.StartObj(os); }),
            "\n\t\t<Obj name=\"Shop\">");
  EXPECT_EQ(written([&](std::ostream& os) { return object.EndObj(os); }), "\n\t\t</Obj>");
}

TEST(ObjectWriter, WithZeroTabsAFieldHasOne) {
  const XMLObj object("X", 0);

  EXPECT_EQ(written([&](std::ostream& os) { return object.StartObj(os); }), "\n<Obj name=\"X\">");
  EXPECT_EQ(written([&](std::ostream& os) { return object.WriteSubElement(os, 3); }),
            "\n\t<Int value=\"3\"/>");
}

TEST(ObjectWriter, BelowZeroTabsNeitherBracketNorFieldHasOne) {
  for (const std::int32_t tabs : {-1, -2, std::numeric_limits<std::int32_t>::min()}) {
    const XMLObj object("X", tabs);

    EXPECT_EQ(written([&](std::ostream& os) { return object.StartObj(os); }), "\n<Obj name=\"X\">");
    EXPECT_EQ(written([&](std::ostream& os) { return object.WriteSubElement(os, 3); }),
              "\n<Int value=\"3\"/>");
    EXPECT_EQ(written([&](std::ostream& os) { return object.EndObj(os); }), "\n</Obj>");
  }
}

TEST(ObjectWriter, TheNameIsWrittenUnescaped) {
  EXPECT_EQ(written([](std::ostream& os) { return XMLObj("a<&b", -1).StartObj(os); }),
            "\n<Obj name=\"a<&b\">");
}

TEST(ObjectWriter, StringsAreEscaped) {
  EXPECT_EQ(field(std::string("a<b>&\"c\"\n")),
            "\n<String value=\"a&lt;b&gt;&amp;&quot;c&quot;&#10;\"/>");
  EXPECT_EQ(field(std::string(" ")), "\n<String value=\"&#32;\"/>");
  EXPECT_EQ(field(std::string()), "\n<String value=\"\"/>");
}

TEST(ObjectWriter, AStringLiteralIsAString) {
  EXPECT_EQ(field("text"), "\n<String value=\"text\"/>");
}

TEST(ObjectWriter, DoublesHaveAtMostFifteenSignificantDigits) {
  EXPECT_EQ(field(0.1), "\n<Double value=\"0.1\"/>");
  EXPECT_EQ(field(1.0 / 3), "\n<Double value=\"0.333333333333333\"/>");
  EXPECT_EQ(field(3.0), "\n<Double value=\"3\"/>");
}

TEST(ObjectWriter, TheMissingValueIsWrittenByName) {
  EXPECT_EQ(field(OrbCommon_830::OrbMV::Missing()), "\n<Double value=\"Missing\"/>");
  EXPECT_EQ(field(std::numeric_limits<double>::max()),
            "\n<Double value=\"1.79769313486232e+308\"/>");
}

TEST(ObjectWriter, LongsIntsAndUnsignedIntsHaveNoPoint) {
  EXPECT_EQ(field(-1234567L), "\n<Long value=\"-1234567\"/>");
  EXPECT_EQ(field(-2147483647 - 1), "\n<Int value=\"-2147483648\"/>");
  EXPECT_EQ(field(4294967295U), "\n<Int value=\"4294967295\"/>");
}

// A number held in 32 bits is a Long when its field is one.
TEST(ObjectWriter, AConvertedNumberFollowsItsOverload) {
  const std::int32_t pattern = 7;

  EXPECT_EQ(field(static_cast<long>(pattern)), "\n<Long value=\"7\"/>");
  EXPECT_EQ(field(pattern), "\n<Int value=\"7\"/>");
}

TEST(ObjectWriter, ALongBeyondFifteenDigitsIsRounded) {
  EXPECT_EQ(field(1234567890123456789L), "\n<Long value=\"1.23456789012346e+18\"/>");
}

TEST(ObjectWriter, TruthValuesAreInts) {
  EXPECT_EQ(field(true), "\n<Int value=\"1\"/>");
  EXPECT_EQ(field(false), "\n<Int value=\"0\"/>");
}

TEST(ObjectWriter, NumbersFollowNeitherLocale) {
  const ScopedGlobalLocale grouping(groupingLocale());

  EXPECT_EQ(field(1234567), "\n<Int value=\"1234567\"/>");
  EXPECT_EQ(field(1234567L), "\n<Long value=\"1234567\"/>");
  EXPECT_EQ(field(1234567U), "\n<Int value=\"1234567\"/>");
  EXPECT_EQ(field(1234567.5), "\n<Double value=\"1234567.5\"/>");
}

TEST(ObjectWriter, NumbersDoNotFollowADecimalComma) {
  const ScopedCLocale german({"de_DE.UTF-8", "de_DE.utf8"});
  if (!german.isInstalled()) GTEST_SKIP() << "NOT TESTED: de_DE.UTF-8 is not installed";

  EXPECT_EQ(field(0.5), "\n<Double value=\"0.5\"/>");
}

TEST(ObjectWriter, TextsAreNotConverted) {
  EXPECT_EQ(field("\xE4\xFF"), "\n<String value=\"\xE4\xFF\"/>");
}

TEST(ObjectWriter, AFailedStreamIsNotReported) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);

  EXPECT_EQ(OrbXML_830::StartRoot(stream, "c"), 0);
  EXPECT_EQ(XMLObj("X", 0).WriteSubElement(stream, 1), 0);
  EXPECT_EQ(stream.str(), "");
}

}  // namespace

// The lattice document: its bytes, ids, counts, and what is left out of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <locale>
#include <streambuf>

#include "sequence/HashtableSQPair.h"
#include "tests/lattice/XmlNode.h"
#include "tests/lattice/exportTexts.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;
using orbseq::LatticeDocumentOptions;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

XmlNode latticeOf(const SequenceDictionary& dictionary,
                  const LatticeDocumentOptions& options = {}) {
  return parseXml(latticeText(dictionary, options)).root;
}

// Numbers of thousands with a dot between, and a comma as decimal point.
class Grouping : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class ForeignLocale {
 public:
  ForeignLocale() : before_(std::locale::global(std::locale(std::locale(), new Grouping))) {
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // where it is installed
  }
  ~ForeignLocale() {
    std::locale::global(before_);
    std::setlocale(LC_ALL, "C");
  }
  ForeignLocale(const ForeignLocale&) = delete;
  ForeignLocale& operator=(const ForeignLocale&) = delete;

 private:
  std::locale before_;
};

// A table of the given entries, as a caller makes it by hand: what stands where is not checked.
SequenceDictionary handMade(const std::vector<std::vector<Count>>& levels) {
  auto tables = std::make_unique<HashtableSQPair*[]>(levels.size());
  for (std::size_t level = 0; level < levels.size(); ++level) {
    tables[level] = new HashtableSQPair(7);
    for (const Count& count : levels[level])
      tables[level]->put(new NTSequence(packed(count.sequence)),
                         count.count ? new SequenceCounter(0, *count.count, nullptr) : nullptr);
  }
  return SequenceDictionary(tables.release(), static_cast<int>(levels.size()));
}

// --- Bytes ---------------------------------------------------------------------------------------

TEST(LatticeDocument, OfTheShopIsTheGoldenFile) {
  const Lattice shop(shopCounts(), /*levels=*/3);

  EXPECT_EQ(exportedLattice(shop, 0.25), goldenText("shop-lattice.xml"));
}

TEST(LatticeDocument, AnEmptyLineStandsBetweenDocTypeAndRootAndNoLineFeedAtTheEnd) {
  const std::string text = exportedLattice(Lattice(shopCounts(), 3), 0);

  EXPECT_THAT(text, HasSubstr("sequentiallattice.dtd\">\n\n<SequentialAssociationLattice"));
  EXPECT_TRUE(text.ends_with("</SequentialAssociationLattice>"));
}

TEST(LatticeDocument, WithoutOptionsIsWhatExportLatticeXmlWrites) {
  const Lattice shop(shopCounts(), 3);

  EXPECT_EQ(latticeText(shop, {.minimumSupport = 0.25}), exportedLattice(shop, 0.25));
}

TEST(LatticeDocument, NoLocaleChangesTheBytes) {
  const Lattice large({{"", 3000000}, {"(1234567)", 1500000}, {"(2000)", 1000000}});
  const std::string expected = exportedLattice(large, 0.125);

  const ForeignLocale foreign;

  EXPECT_EQ(exportedLattice(large, 0.125), expected);
  EXPECT_THAT(expected, HasSubstr("numberOfTransactions=\"3000000\" minimumSupport=\"0.125\""));
  EXPECT_THAT(expected, HasSubstr("support=\"0.333333333333333\" occurrence=\"1000000\""));
  EXPECT_THAT(expected, HasSubstr("value=\"1234567\""));
}

// --- Statistics ----------------------------------------------------------------------------------

TEST(LatticeDocument, TheMinimumSupportIsTheLargerOfThresholdAndArgument) {
  const Lattice shop(shopCounts(), 3);  // its threshold is 0

  EXPECT_THAT(exportedLattice(shop, 0.5), HasSubstr("minimumSupport=\"0.5\""));
  EXPECT_THAT(exportedLattice(shop, -0.5), HasSubstr("minimumSupport=\"0\""));
  EXPECT_THAT(exportedLattice(shop, 0.0), HasSubstr("minimumSupport=\"0\""));
}

// Deliberate: of equal ones the argument is written, and a zero keeps its sign.
TEST(LatticeDocument, TheMinimumSupportIsTheArgumentWhenBothAreEqual) {
  EXPECT_THAT(exportedLattice(Lattice(shopCounts(), 3), -0.0), HasSubstr("minimumSupport=\"-0\""));
}

TEST(LatticeDocument, AMinimumSupportThatIsNotFiniteIsLeftOut) {
  const Lattice shop(shopCounts(), 3);

  EXPECT_THAT(exportedLattice(shop, kNaN), Not(HasSubstr("minimumSupport")));
  EXPECT_THAT(exportedLattice(shop, kInfinity), Not(HasSubstr("minimumSupport")));
  EXPECT_THAT(exportedLattice(shop, -kInfinity), HasSubstr("minimumSupport=\"0\""));
}

TEST(LatticeDocument, WithoutCustomersSupportsAreLeftOut) {
  const Lattice none({{"", 0}, {"(1)", 0}, {"(2)", 3}});

  const XmlNode document = latticeOf(none);

  EXPECT_EQ(document.first("SeqInputStats").get("numberOfTransactions"), "0");
  EXPECT_THAT(document.all("Sequence", "support"), ElementsAre("-", "-", "-"));
  EXPECT_THAT(document.all("Sequence", "occurrence"), ElementsAre("0", "0", "3"));
}

TEST(LatticeDocument, ADictionaryWithoutLevelsListsOneEmptyLevel) {
  const XmlNode document = latticeOf(SequenceDictionary());

  EXPECT_EQ(document.first("SeqInputStats").get("numberOfSequences"), "0");
  EXPECT_THAT(document.all("LatticeLevel", "level"), ElementsAre("0"));
  EXPECT_THAT(latticeText(SequenceDictionary()),
              HasSubstr("<LatticeLevel level=\"0\" numberOfSequences=\"0\"/>"));
}

// --- Ids -----------------------------------------------------------------------------------------

TEST(LatticeDocument, ItemsAscendAndTheirIdsAreDense) {
  const Lattice lattice({{"", 9}, {"(30)", 5}, {"(-7)", 5}, {"(4)", 5}});

  const XmlNode document = latticeOf(lattice);

  EXPECT_THAT(document.all("Item", "id"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(document.all("Item", "value"), ElementsAre("-7", "4", "30"));
}

TEST(LatticeDocument, ItemSetsAreInLexicographicOrderAndAPrefixComesFirst) {
  const Lattice lattice(
      {{"", 9}, {"(1)", 5}, {"(2)", 5}, {"(1 3)", 5}, {"(1 2)", 5}, {"(1 2 3)", 5}, {"(10)", 5}});

  const XmlNode document = latticeOf(lattice);

  std::vector<std::string> sets;
  for (const XmlNode* set : document.below("Itemset")) {
    std::string text = set->get("id") + ":";
    for (const std::string& item : set->all("ItemRef", "itemRef")) text += " " + item;
    sets.push_back(text);
  }
  EXPECT_THAT(sets, ElementsAre("1: 1", "2: 1 2", "3: 1 2 3", "4: 1 3", "5: 2", "6: 4"));
}

TEST(LatticeDocument, SequenceIdsRunOnAcrossLevels) {
  EXPECT_THAT(latticeOf(Lattice(shopCounts(), 3)).all("Sequence", "id"),
              ElementsAre("1", "2", "3", "4", "5"));
}

TEST(LatticeDocument, AnAdjacentItemThatIsNoLongerStoredHasTheReferenceMinusOne) {
  const Lattice pruned({{"", 9}, {"(1)", 5}});
  const NTSequence key = packed("(1)");
  pruned.getDescriptor(&key)->addAdjacentItem(77, 3);

  const XmlNode document = latticeOf(pruned);

  EXPECT_THAT(document.all("AdjacentItem", "itemRef"), ElementsAre("1", "-1"));
  EXPECT_THAT(document.all("AdjacentItem", "position"), ElementsAre("1", "3"));
}

TEST(LatticeDocument, ASequenceWithoutACounterHasTheCountZeroAndNoAdjacentItems) {
  const Lattice lattice({{"", 9}, {"(1)", std::nullopt}});

  const XmlNode document = latticeOf(lattice);

  EXPECT_THAT(document.all("Sequence", "occurrence"), ElementsAre("9", "0"));
  EXPECT_THAT(document.all("Sequence", "support"), ElementsAre("1", "0"));
}

// --- Levels --------------------------------------------------------------------------------------

// Deliberate: what stands above a gap is counted and its items are listed, but its level is not.
TEST(LatticeDocument, LevelsAboveAGapAreCountedAndNotListed) {
  const Lattice gap({{"", 9}, {"(1)", 5}, {"(2)(3)(4)", 5}});

  const XmlNode document = latticeOf(gap);

  const XmlNode& statistics = document.first("SeqInputStats");
  EXPECT_EQ(statistics.get("maxSequenceSize"), "1");
  EXPECT_EQ(statistics.get("numberOfItems"), "4");
  EXPECT_EQ(statistics.get("numberOfSets"), "4");
  EXPECT_EQ(statistics.get("numberOfSequences"), "3");
  EXPECT_THAT(document.all("LatticeLevel", "level"), ElementsAre("0", "1"));
  EXPECT_THAT(document.all("Sequence", "id"), ElementsAre("1", "2"));
}

// Two keys that differ in packed form and are one sequence unpacked, in one level and in two.
TEST(LatticeDocument, EqualSequencesAreCountedOnce) {
  const SequenceDictionary dictionary = handMade({{{"", 9}},
                                                  {{"(1)", 8}, {"(2 2)", 3}},
                                                  {{"(1 2)", 7}, {"(2 1)", 6}, {"(1 1)", 5}},
                                                  {{"(1 2 1)", 4}}});

  const XmlNode document = latticeOf(dictionary);

  EXPECT_EQ(document.first("SeqInputStats").get("numberOfSequences"), "4");
  EXPECT_EQ(document.first("SeqInputStats").get("numberOfSets"), "3");
  EXPECT_THAT(document.all("LatticeLevel", "numberOfSequences"), ElementsAre("1", "2", "3", "1"));
}

TEST(LatticeDocument, ASequenceOfThirtyTwoItemsIsWritten) {
  std::vector<std::vector<Count>> levels(33);
  const std::string longest = text(singletons(32));
  for (auto& level : levels) level.push_back({"(5)", 1});
  levels[32] = {{longest, 1}};

  const XmlNode document = latticeOf(handMade(levels));

  EXPECT_EQ(document.below("LatticeLevel").back()->below("ItemsetRef").size(), 32U);
}

// --- Closed --------------------------------------------------------------------------------------

TEST(ClosedLatticeDocument, EndsWithOneMoreEmptyLevel) {
  const Lattice shop(shopCounts(), 3);
  std::string expected = goldenText("shop-lattice.xml");
  const auto replace = [&expected](const std::string& from, const std::string& to) {
    expected.replace(expected.find(from), from.size(), to);
  };
  replace("maxSequenceSize=\"2\"", "maxSequenceSize=\"3\"");
  replace("\n</SeqAssociationLattice>",
          "\n<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>\n</SeqAssociationLattice>");

  EXPECT_EQ(latticeText(shop, {.closed = true, .minimumSupport = 0.25}), expected);
}

// --- Labels --------------------------------------------------------------------------------------

TEST(LabelledLatticeDocument, WritesTheLabelBehindTheValue) {
  const Lattice shop(shopCounts(), 3);
  const ItemLabelMap labels = {{1, "Bread & \"Butter\" <b>"}, {2, ""}, {3, "Cheese"}};

  const std::string text = latticeText(shop, {.labels = &labels});

  EXPECT_THAT(text, HasSubstr("<Item id=\"1\" value=\"1\" mappedValue=\"Bread &amp; "
                              "&quot;Butter&quot; &lt;b&gt;\"/>\n<Item id=\"2\" value=\"2\"/>\n"));
  EXPECT_THAT(text, Not(HasSubstr("Cheese")));
}

TEST(LabelledLatticeDocument, WithoutAKnownLabelTheBytesAreTheSame) {
  const Lattice shop(shopCounts(), 3);
  const ItemLabelMap labels = {{3, "Cheese"}};

  EXPECT_EQ(latticeText(shop, {.labels = &labels}), latticeText(shop));
}

TEST(LabelledLatticeDocument, WhatXmlCannotHoldIsShownAsTheReplacementCharacter) {
  struct Case {
    std::string label;
    std::string written;
  };
  const std::vector<Case> cases = {
      {"K\xC3\xA4se \xF0\x9F\xA7\x80", "K\xC3\xA4se \xF0\x9F\xA7\x80"},
      {"a\tb\nc\rd", "a&#9;b&#10;c&#13;d"},
      {std::string("a\0b", 3),
       "a\xEF\xBF\xBD"
       "b"},
      {"\x01\x1F", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"a\xFFz", "a\xEF\xBF\xBDz"},
      {"cut \xE2\x82", "cut \xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xEF\xBF\xBE \xEF\xBF\xBF", "\xEF\xBF\xBD \xEF\xBF\xBD"},
      {"\x7F", "\x7F"},
      {"two  spaces", "two &#32;spaces"},
  };
  const Lattice shop({{"", 4}, {"(1)", 4}});
  for (const Case& one : cases) {
    const ItemLabelMap labels = {{1, one.label}};

    EXPECT_EQ(latticeOf(shop, {.labels = &labels}).first("Item").get("mappedValue"), one.written);
  }
}

// --- Failure -------------------------------------------------------------------------------------

// Takes a number of bytes and then fails.
class FullDisk : public std::streambuf {
 public:
  explicit FullDisk(long room) : room_(room) {}

 protected:
  int_type overflow(int_type sign) override {
    return room_-- > 0 ? traits_type::not_eof(sign) : traits_type::eof();
  }

 private:
  long room_;
};

TEST(LatticeDocument, AFailingStreamLosesOutputSilently) {
  FullDisk disk(200);
  std::ostream out(&disk);

  EXPECT_TRUE(Lattice(shopCounts(), 3).ExportLatticeXML(out, 0).IsOK());
  EXPECT_FALSE(out.good());
}

TEST(LatticeDocument, AStreamThatThrowsGivesAFailure) {
  FullDisk disk(200);
  std::ostream out(&disk);
  out.exceptions(std::ios::badbit);

  EXPECT_EQ(Lattice(shopCounts(), 3).ExportLatticeXML(out, 0),
            OrbCommon_830::OrbStatus(60000, false));
}

TEST(LatticeDocument, ExportingChangesNothing) {
  const Lattice shop(shopCounts(), 3);
  const std::string first = exportedLattice(shop, 0);

  EXPECT_EQ(exportedLattice(shop, 0), first);
}

}  // namespace

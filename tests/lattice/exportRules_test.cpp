// The rules as PMML: bytes, ids, selected rules, and the lattice that may be carried along.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/lattice/XmlNode.h"
#include "tests/lattice/exportTexts.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;
using orbseq::PmmlOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void setTimes(SequenceDictionary& dictionary) {
  dictionary.setSlidingWindow(0.5);
  dictionary.setMinGap(1);
  dictionary.setMaxGap(30);
}

std::map<std::string, std::string> statisticsOf(const XmlNode& document) {
  std::map<std::string, std::string> values;
  for (const XmlNode* extension : document.below("Extension"))
    values[extension->get("name")] = extension->get("value");
  return values;
}

// A dictionary whose rules are given.
class GivenRules final : public SequenceDictionary {
 public:
  explicit GivenRules(const std::vector<Count>& counts) : SequenceDictionary(smallTables(6)) {
    for (const Count& count : counts) store(*this, history(count.sequence), count.count);
  }
  void add(std::string_view antecedent, std::string_view consequent, int joinType) {
    given_.emplace_back(sequence(antecedent), sequence(consequent), 0.5, 0.25, 1.0, joinType);
  }
  OrbStatus GetRules(std::vector<SeqAssociationRule>& rules, double, double, double, double, double,
                     double, char, bool) const override {
    for (const SeqAssociationRule& rule : given_) rules.push_back(rule);
    return answer;
  }
  OrbStatus answer;

 private:
  std::vector<SeqAssociationRule> given_;
};

// --- Bytes ---------------------------------------------------------------------------------------

TEST(RulesDocument, OfTheShopIsTheGoldenFile) {
  Lattice shop(shopCounts(), /*levels=*/3);
  setTimes(shop);

  EXPECT_EQ(exportedRules(shop, {.minSupport = 0.25, .minConfidence = 0.125}, 3, 1.75),
            goldenText("shop-rules.xml"));
}

TEST(RulesDocument, WithoutLatticeAndLabelsIsWhatExportRulesXmlWrites) {
  const Lattice shop(shopCounts(), 3);

  EXPECT_EQ(pmmlText(shop, {.minSupport = 0.1,
                            .minConfidence = 0.2,
                            .maxItemsPerTransaction = 7,
                            .avgItemsPerTransaction = 2.5,
                            .lattice = false}),
            exportedRules(
                shop, {.minSupport = 0.1, .minConfidence = 0.2, .maxConfidence = 1, .sortBy = 'C'},
                7, 2.5));
}

TEST(RulesDocument, TheBoundsGoToGetRulesInTheirOrder) {
  const Lattice shop(shopCounts(), 3);  // one rule: support 1/4, confidence 1/4, cause 1/3
  const RuleQuery misses[] = {{.minSupport = 0.75},   {.maxSupport = 0.1}, {.minConfidence = 0.3},
                              {.maxConfidence = 0.2}, {.minCause = 0.34},  {.maxCause = 0.33}};

  EXPECT_EQ(parseXml(exportedRules(shop, {})).root.below("SequenceRule").size(), 1U);
  for (const RuleQuery& query : misses)
    EXPECT_THAT(parseXml(exportedRules(shop, query)).root.below("SequenceRule"), IsEmpty());
}

TEST(RulesDocument, OrderAndMaximalityGoToGetRules) {
  const Lattice lattice({{"", 10},
                         {"(1)", 8},
                         {"(2)", 4},
                         {"(3)", 5},
                         {"(1)(2)", 4},
                         {"(2)(3)", 3},
                         {"(1)(2)(3)", 2}});
  const auto confidences = [&lattice](char sortBy, bool maximalOnly) {
    return parseXml(exportedRules(lattice, {.sortBy = sortBy, .maximalOnly = maximalOnly}))
        .root.all("SequenceRule", "confidence");
  };

  EXPECT_THAT(confidences('C', false), ElementsAre("0.75", "0.5", "0.5"));
  EXPECT_THAT(confidences('S', false), ElementsAre("0.5", "0.75", "0.5"));
  EXPECT_THAT(confidences('C', true), ElementsAre("0.5"));
}

TEST(RulesDocument, WithoutRulesHasEverythingButTheModelsElements) {
  const Lattice none({{"", 4}, {"(1)", 4}});

  const XmlNode document = parseXml(exportedRules(none, {})).root;

  const auto statistics = statisticsOf(document);
  for (const char* name : {"numberOfItems", "numberOfSets", "numberOfSequences", "numberOfRules"})
    EXPECT_EQ(statistics.at(name), "0") << name;
  EXPECT_EQ(document.below("Extension").size(), 9U);
  EXPECT_EQ(document.below("DataField").size(), 3U);
  EXPECT_EQ(document.below("MiningField").size(), 4U);
  for (const char* name : {"Item", "Itemset", "Sequence", "SequenceRule"})
    EXPECT_THAT(document.below(name), IsEmpty()) << name;
}

// --- Statistics ----------------------------------------------------------------------------------

TEST(RulesDocument, NumbersThatAreNotFiniteAreLeftOut) {
  Lattice shop(shopCounts(), 3);
  shop.setMaxGap(kInfinity);
  shop.setMinGap(kNaN);

  const std::string text =
      exportedRules(shop, {.minSupport = kNaN, .minConfidence = -kInfinity}, 3, kNaN);

  for (const char* name : {"minimumSupport", "minimumConfidence", "minimumTime", "maximumTime"})
    EXPECT_THAT(text, HasSubstr("<Extension extender=\"OrbSequence\" name=\"" + std::string(name) +
                                "\"/>"));
  EXPECT_THAT(text, HasSubstr("maxNumberOfItemsPerTransaction=\"3\">"));
}

TEST(RulesDocument, TheMinimumSupportIsTheLargerOfThresholdAndArgument) {
  const Lattice shop(shopCounts(), 3);
  const auto written = [&shop](double asked) {
    return statisticsOf(parseXml(exportedRules(shop, {.minSupport = asked})).root)
        .at("minimumSupport");
  };

  EXPECT_EQ(written(0.2), "0.2");
  EXPECT_EQ(written(-1), "0");
}

TEST(RulesDocument, WithoutCustomersSupportsAreLeftOut) {
  GivenRules lattice({{"", 0}, {"(1)", 0}, {"(2)", 3}});
  lattice.add("(1)", "(2)", 1);

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  EXPECT_EQ(document.first("SequenceModel").get("numberOfTransactions"), "0");
  EXPECT_THAT(document.all("Sequence", "support"), ElementsAre("-", "-", "-"));
}

// --- Sequences and rules -------------------------------------------------------------------------

TEST(RulesDocument, TheJoinTypeDecidesWhatTheWholeSequenceIs) {
  GivenRules lattice({{"", 8}, {"(1)", 7}, {"(2)", 6}, {"(1 2)", 5}, {"(1)(2)", 4}});
  lattice.add("(1)", "(2)", 1);
  lattice.add("(1)", "(2)", 0);
  lattice.add("(1)", "(2)", 7);

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  EXPECT_THAT(document.all("SequenceRule", "numberOfSets"), ElementsAre("2", "1", "1"));
  EXPECT_THAT(document.all("SequenceRule", "occurrence"), ElementsAre("4", "5", "7"));
  EXPECT_THAT(document.all("Sequence", "occurrence"), ElementsAre("7", "4", "5", "6"));
  EXPECT_THAT(document.all("SequenceReference", "seqId"),
              ElementsAre("1", "4", "1", "4", "1", "4"));
}

// Deliberate: the same whatever the join type is.
TEST(RulesDocument, DelimitersAreAlwaysTheSame) {
  GivenRules lattice({{"", 8}, {"(1)", 7}, {"(2)", 6}, {"(1 2)", 5}});
  lattice.add("(1)", "(2)", 0);

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  EXPECT_THAT(document.all("Delimiter", "delimiter"), ElementsAre("acrossTimeWindows"));
  EXPECT_THAT(document.all("Delimiter", "gap"), ElementsAre("unknown"));
}

TEST(RulesDocument, TheIdsDoNotDependOnTheOrderOfTheRules) {
  const std::vector<Count> counts = {{"", 8},       {"(1)", 7},    {"(2)", 6},   {"(3)", 5},
                                     {"(1)(2)", 4}, {"(3)(1)", 3}, {"(2)(3)", 2}};
  GivenRules forward(counts), backward(counts);
  forward.add("(1)", "(2)", 1);
  forward.add("(3)", "(1)", 1);
  forward.add("(2)", "(3)", 1);
  backward.add("(2)", "(3)", 1);
  backward.add("(3)", "(1)", 1);
  backward.add("(1)", "(2)", 1);
  const auto untilRules = [](const std::string& text) {
    return text.substr(0, text.find("<SequenceRule"));
  };

  const std::string one = exportedRules(forward, {}), other = exportedRules(backward, {});

  EXPECT_EQ(untilRules(one), untilRules(other));
  EXPECT_NE(one, other);
  EXPECT_THAT(parseXml(one).root.all("Sequence", "id"), ElementsAre("1", "2", "3", "4", "5", "6"));
  EXPECT_THAT(parseXml(one).root.all("Sequence", "occurrence"),
              ElementsAre("7", "4", "6", "2", "5", "3"));
  EXPECT_THAT(parseXml(other).root.all("SequenceReference", "seqId"),
              ElementsAre("3", "5", "5", "1", "1", "3"));
}

TEST(RulesDocument, ASequenceHasADelimiterBetweenItsSets) {
  GivenRules lattice({{"", 8}, {"(1)(2)", 4}, {"(3)", 4}, {"(1)(2)(3)", 2}});
  lattice.add("(1)(2)", "(3)", 1);

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  std::vector<std::size_t> delimiters;
  for (const XmlNode* sequence : document.below("Sequence"))
    delimiters.push_back(sequence->below("Delimiter").size());
  EXPECT_THAT(delimiters, ElementsAre(1U, 2U, 0U));
}

TEST(RulesDocument, TimesPlayNoPart) {
  GivenRules lattice({{"", 8}, {"(1)", 7}});
  lattice.add("(1)", "(1)", 1);  // the consequent's set stands later in the whole sequence

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  EXPECT_THAT(document.all("Itemset", "id"), ElementsAre("1"));
  EXPECT_THAT(document.all("SetReference", "setId"), ElementsAre("1", "1", "1"));
}

TEST(RulesDocument, ASequenceThatIsNotStoredHasTheCountZero) {
  GivenRules lattice({{"", 8}, {"(1)", 7}});
  lattice.add("(1)", "(5)", 1);
  lattice.add("(1)", text(singletons(33)), 1);

  const XmlNode document = parseXml(exportedRules(lattice, {})).root;

  EXPECT_THAT(document.all("SequenceRule", "occurrence"), ElementsAre("0", "0"));
  EXPECT_THAT(document.all("SequenceRule", "numberOfSets"), ElementsAre("2", "34"));
}

// --- With the lattice ----------------------------------------------------------------------------

// From the start tag to the end tag.
std::string elementText(const std::string& document, const std::string& name) {
  const std::string end = "</" + name + ">";
  const std::size_t from = document.find("<" + name + ">");
  return document.substr(from, document.find(end) + end.size() - from);
}

TEST(PmmlWithLattice, CarriesTheClosedLatticeAsItsFirstExtension) {
  const Lattice shop(shopCounts(), 3);
  const ItemLabelMap labels = {{1, "Bread"}};

  const std::string text = pmmlText(shop, {.minSupport = 0.25, .labels = &labels});

  const XmlNode document = parseXml(text).root;
  const XmlNode& first = document.first("SequenceModel").children.at(0);
  EXPECT_EQ(first.name, "Extension");
  EXPECT_EQ(first.get("extender"), "OrbSequence");
  EXPECT_EQ(first.get("name"), "SequentialAssociationLattice");
  EXPECT_EQ(first.get("value"), "1.2.1");
  EXPECT_EQ(first.children.size(), 1U);
  EXPECT_EQ(
      elementText(text, "SeqAssociationLattice"),
      elementText(latticeText(shop, {.closed = true, .labels = &labels, .minimumSupport = 0.25}),
                  "SeqAssociationLattice"));
}

TEST(PmmlWithLattice, IsOtherwiseTheRulesDocument) {
  const Lattice shop(shopCounts(), 3);
  std::string text = pmmlText(shop);

  const std::size_t from = text.find("\n<Extension extender=\"OrbSequence\" name=\"Sequ");
  const std::string end = "</SeqAssociationLattice>\n</Extension>";
  text.erase(from, text.find(end) + end.size() - from);

  EXPECT_EQ(text, pmmlText(shop, {.lattice = false}));
}

TEST(PmmlWithLattice, LabelsStandInTheModelToo) {
  const Lattice shop(shopCounts(), 3);
  const ItemLabelMap labels = {{2, "Butter"}};

  const XmlNode document = parseXml(pmmlText(shop, {.lattice = false, .labels = &labels})).root;

  EXPECT_THAT(document.all("Item", "mappedValue"), ElementsAre("-", "Butter"));
}

TEST(PmmlWithLattice, TheDefaultsSelectEveryRule) {
  const Lattice lattice({{"", 10}, {"(1)", 1}, {"(2)", 8}, {"(1)(2)", 1}, {"(2)(1)", 1}});

  EXPECT_EQ(parseXml(pmmlText(lattice)).root.below("SequenceRule").size(), 2U);
}

// --- Failure -------------------------------------------------------------------------------------

TEST(RulesDocument, ACancelledSelectionGivesItsStatusAndNothingIsWritten) {
  Lattice shop(shopCounts(), 3);
  shop.setCancel();
  std::ostringstream out;

  const auto status = shop.ExportRulesXML(out, 0, 1, 0, 1, 0, 1, 5, 2.5, 'S', false);

  EXPECT_EQ(status, OrbCommon_830::OrbStatus(1, false));
  EXPECT_EQ(orbseq::writePmml(out, shop, {}), OrbCommon_830::OrbStatus(1, false));
  EXPECT_EQ(out.str(), "");
}

TEST(RulesDocument, TheStatusOfGetRulesIsReturnedUnchanged) {
  GivenRules lattice({{"", 8}, {"(1)", 7}});
  std::ostringstream out;

  lattice.answer = OrbCommon_830::OrbStatus(17, false);
  lattice.answer.SetDiscreteDatum(1, 4);
  EXPECT_EQ(lattice.ExportRulesXML(out, 0, 1, 0, 1, 0, 1, 0, 0, 'C', false), lattice.answer);
  EXPECT_EQ(out.str(), "");

  lattice.answer = OrbCommon_830::OrbStatus(18, true);  // a warning
  EXPECT_EQ(lattice.ExportRulesXML(out, 0, 1, 0, 1, 0, 1, 0, 0, 'C', false), lattice.answer);
  EXPECT_THAT(out.str(), HasSubstr("</PMML>"));
}

}  // namespace

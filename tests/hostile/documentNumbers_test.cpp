// Hostile numbers in the statistics, the items and the item sets of a lattice document: rows D09 to
// D22. What is refused here is refused by the translator.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreDictionary.h"
#include "tests/hostile/documents.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"
#include "tests/support/sequenceValues.h"

namespace {

using OrbScore::ScoreModel;
using orbseq::test::at;
using orbseq::test::expectModel;
using orbseq::test::expectRefused;
using orbseq::test::packed;
using orbseq::test::RefusedRow;
using orbseq::test::smallDocument;
using test::Answer;
using test::ask;
using test::Mode;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

class HostileNumbers : public testing::TestWithParam<RefusedRow> {};

TEST_P(HostileNumbers, AreRefusedWithTheirPlace) { expectRefused(GetParam()); }

constexpr const char* kNoInteger = " is not a 32-bit integer (allowed: -2147483648..2147483647)";
const std::string kItems = at("/SeqInputStats/@numberOfItems", 6);
const std::string kSets = at("/SeqInputStats/@numberOfSets", 6);

const RefusedRow kStatistics[] = {
    {"D09NoStatistics",
     {{"SeqInputStats", "Statistics"}},
     "lattice refused: SeqAssociationLattice (line 5, column 1): SeqInputStats not found; a PMML "
     "document of rules alone holds no lattice"},
    {"D10NoNumberOfSequences",
     {{" numberOfSequences=\"5\"", ""}},
     at("/SeqInputStats/@numberOfSequences", 6) + "attribute missing"},
    {"D10NoNumberOfSets", {{" numberOfSets=\"3\"", ""}}, kSets + "attribute missing"},
    {"D10NoMaxSequenceSize",
     {{" maxSequenceSize=\"3\"", ""}},
     at("/SeqInputStats/@maxSequenceSize", 6) + "attribute missing"},
    {"D10NoVersion",
     {{" version=\"1.2.1\"", ""}},
     "lattice refused: document element/@version (line 4, column 1): attribute missing"},
    {"D10NoNumberOfItems", {{" numberOfItems=\"2\"", ""}}, kItems + "attribute missing"},
};
INSTANTIATE_TEST_SUITE_P(Statistics, HostileNumbers, testing::ValuesIn(kStatistics),
                         [](const auto& row) { return row.param.name; });

// What is no number, as the attribute's text and as the error quotes it.
RefusedRow noNumber(const char* name, const std::string& text, const std::string& shown) {
  return {name,
          {{"numberOfItems=\"2\"", "numberOfItems=\"" + text + "\""}},
          kItems + "\"" + shown + "\"" + kNoInteger};
}
RefusedRow noNumber(const char* name, const std::string& text) {
  return noNumber(name, text, text);
}

const RefusedRow kNoNumbers[] = {
    noNumber("D11Word", "abc"),
    noNumber("D11Empty", ""),
    noNumber("D11Fraction", "3.0"),
    noNumber("D11Hexadecimal", "0x3"),
    noNumber("D11PlusSign", "+3"),
    noNumber("D11TwoNumbers", "3 4"),
    noNumber("D11FullWidthDigit", "\xEF\xBC\x93"),
    noNumber("D11OneAboveTheLargest", "2147483648"),
    noNumber("D11FortyDigits", std::string(40, '9')),
    noNumber("D11AHundredThousandDigits", std::string(100'000, '9'), std::string(64, '9') + "..."),
    noNumber("D11ControlCharacters", "3&#10;&#x85;&#x7F;", "3\\n\\xC2\\x85\\x7F"),
};
INSTANTIATE_TEST_SUITE_P(NoNumbers, HostileNumbers, testing::ValuesIn(kNoNumbers),
                         [](const auto& row) { return row.param.name; });

const RefusedRow kItemRows[] = {
    {"D12NegativeNumberOfItems",
     {{"numberOfItems=\"2\"", "numberOfItems=\"-1\""}},
     kItems + "-1 is outside 0..2147483647"},
    {"D13AnnouncesMoreItemsThanArePresent",
     {{"numberOfItems=\"2\"", "numberOfItems=\"2147483647\""}},
     kItems + "announces 2147483647, 2 present: Item 3 of 2147483647 missing"},
    {"D14AnItemBeyondTheAnnouncedOnesIsReferenced",
     {{"numberOfItems=\"2\"", "numberOfItems=\"1\""}},
     at("/Itemset[2]/ItemRef[1]/@itemRef", 10, 35) + "2 is outside 1..1"},
    {"D15ItemsetWhereAnItemWasAnnounced",
     {{"numberOfItems=\"2\"", "numberOfItems=\"3\""}},
     kItems + "announces 3, 2 present: Item 3 of 3 missing"},
    {"D16ItemIdZero",
     {{"<Item id=\"1\"", "<Item id=\"0\""}},
     at("/Item[1]/@id", 7) + "0 is outside 1..2"},
    {"D16ItemIdMinusOne",
     {{"<Item id=\"2\"", "<Item id=\"-1\""}},
     at("/Item[2]/@id", 8) + "-1 is outside 1..2"},
    {"D16ItemIdTooLarge",
     {{"<Item id=\"2\"", "<Item id=\"3\""}},
     at("/Item[2]/@id", 8) + "3 is outside 1..2"},
    {"D16ItemWithoutId",
     {{"<Item id=\"1\"", "<Item"}},
     at("/Item[1]/@id", 7) + "attribute missing"},
    {"D17ItemIdTwice",
     {{"<Item id=\"2\"", "<Item id=\"1\""}},
     at("/Item[2]/@id", 8) + "duplicate id 1"},
    {"D18ItemWithoutValue", {{" value=\"9\"", ""}}, at("/Item[2]/@value", 8) + "attribute missing"},
};
INSTANTIATE_TEST_SUITE_P(Items, HostileNumbers, testing::ValuesIn(kItemRows),
                         [](const auto& row) { return row.param.name; });

const std::string kFirstSet = "<Itemset id=\"1\" numberOfItems=\"1\"><ItemRef itemRef=\"1\"/>";

const RefusedRow kSetRows[] = {
    {"D19NegativeNumberOfSets",
     {{"numberOfSets=\"3\"", "numberOfSets=\"-1\""}},
     kSets + "-1 is outside 0..2147483647"},
    {"D19FarTooManySets",
     {{"numberOfSets=\"3\"", "numberOfSets=\"2147483647\""}},
     kSets + "announces 2147483647, 3 present: Itemset 4 of 2147483647 missing"},
    {"D19OneSetTooMany",
     {{"numberOfSets=\"3\"", "numberOfSets=\"4\""}},
     kSets + "announces 4, 3 present: Itemset 4 of 4 missing"},
    {"D20SetIdZero",
     {{"<Itemset id=\"1\"", "<Itemset id=\"0\""}},
     at("/Itemset[1]/@id", 9) + "0 is outside 1..3"},
    {"D20SetIdTooLarge",
     {{"<Itemset id=\"3\"", "<Itemset id=\"4\""}},
     at("/Itemset[3]/@id", 11) + "4 is outside 1..3"},
    {"D20SetWithoutId",
     {{"<Itemset id=\"1\"", "<Itemset"}},
     at("/Itemset[1]/@id", 9) + "attribute missing"},
    {"D21SetWithoutNumberOfItems",
     {{"<Itemset id=\"1\" numberOfItems=\"1\"", "<Itemset id=\"1\""}},
     at("/Itemset[1]/@numberOfItems", 9) + "attribute missing"},
    {"D22ItemRefWithoutReference",
     {{"<ItemRef itemRef=\"1\"/>", "<ItemRef/>"}},
     at("/Itemset[1]/ItemRef[1]/@itemRef", 9, 35) + "attribute missing"},
    {"D20SetIdTwice",
     {{"<Itemset id=\"2\"", "<Itemset id=\"1\""}},
     at("/Itemset[2]/@id", 10) + "duplicate id 1"},
    {"D21NegativeNumberOfItems",
     {{kFirstSet, "<Itemset id=\"1\" numberOfItems=\"-1\"><ItemRef itemRef=\"1\"/>"}},
     at("/Itemset[1]/@numberOfItems", 9) + "-1 is outside 0..2147483647"},
    {"D21OneItemTooMany",
     {{kFirstSet, "<Itemset id=\"1\" numberOfItems=\"2\"><ItemRef itemRef=\"1\"/>"}},
     at("/Itemset[1]/@numberOfItems", 9) + "announces 2, 1 present"},
    {"D21FarTooManyItems",
     {{kFirstSet, "<Itemset id=\"1\" numberOfItems=\"2147483647\"><ItemRef itemRef=\"1\"/>"}},
     at("/Itemset[1]/@numberOfItems", 9) + "announces 2147483647, 1 present"},
    {"D22ItemRefZero",
     {{"<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"0\""}},
     at("/Itemset[1]/ItemRef[1]/@itemRef", 9, 35) + "0 is outside 1..2"},
    {"D22ItemRefTooLarge",
     {{"<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"3\""}},
     at("/Itemset[1]/ItemRef[1]/@itemRef", 9, 35) + "3 is outside 1..2"},
    {"D22ItemRefMinusOne",
     {{"<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"-1\""}},
     at("/Itemset[1]/ItemRef[1]/@itemRef", 9, 35) + "-1 is outside 1..2"},
};
INSTANTIATE_TEST_SUITE_P(ItemSets, HostileNumbers, testing::ValuesIn(kSetRows),
                         [](const auto& row) { return row.param.name; });

// --- Labels --------------------------------------------------------------------------------------

std::string labelled(const std::string& label) {
  return smallDocument({{"mappedValue=\"tea\"", "mappedValue=\"" + label + "\""}});
}

TEST(HostileLabels, D18AnEmptyLabelMakesNoEntry) {
  expectModel(labelled(""), [](const ScoreModel& model) {
    EXPECT_EQ(model.GetScoreDictionary(), nullptr);
    EXPECT_THAT(ask(model, "(7)", Mode::kCurrent), ElementsAre(Answer{9, 0.5, 0.4, 0.8}));
  });
}

TEST(HostileLabels, D18ALabelOfAMegabyteIsKept) {
  const std::string label(1'000'000, 'x');
  expectModel(labelled(label), [&](const ScoreModel& model) {
    ASSERT_NE(model.GetScoreDictionary(), nullptr);
    EXPECT_EQ(model.GetScoreDictionary()->GetVariable("7")->GetMappedLabel(), label);
  });
}

const std::string kScript = "&lt;script&gt;alert(&quot;x,y&quot;)&lt;/script&gt;&amp;&apos;&#10;=1";
constexpr const char* kScriptLabel = "<script>alert(\"x,y\")</script>&'\n=1";

TEST(HostileLabels, D18AScriptAsLabelIsKept) {
  expectModel(labelled(kScript), [](const ScoreModel& model) {
    ASSERT_NE(model.GetScoreDictionary(), nullptr);
    EXPECT_EQ(model.GetScoreDictionary()->GetVariable("7")->GetMappedLabel(), kScriptLabel);
  });
}

struct Output {
  const char* name;
  std::vector<std::string> command;  // and "--model FILE"
  const char* shown;                 // the label as this output writes it
};
void PrintTo(const Output& output, std::ostream* os) { *os << output.name; }

constexpr const char* kInXml =
    "mappedValue=\"&lt;script&gt;alert(&quot;x,y&quot;)&lt;/script&gt;&amp;'&#10;=1\"";
constexpr const char* kInCsv = ",\"<script>alert(\"\"x,y\"\")</script>&'\n=1\",";
constexpr const char* kInJson = "\"<script>alert(\\\"x,y\\\")</script>&'\\n=1\"";
constexpr const char* kInTable = "<script>alert(\"x,y\")</script>&'\xEF\xBF\xBD=1";
constexpr const char* kInText = "\"<script>alert(\"\"x,y\"\")</script>&'\\x0A=1\"";
constexpr const char* kInRules = "\"<script>alert(\"\"x,y\"\")</script>&'\xEF\xBF\xBD=1\",9";

const std::vector<std::string> kScore = {"score", "--input", "-", "--quiet", "--format"};
const std::vector<std::string> kModule = {"score", "--module", ORBSEQ_MODULE, "--input",
                                          "-",     "--quiet",  "--format"};
const std::vector<std::string> kExplain = {"explain", "--input", "-", "--quiet", "--format"};
const std::vector<std::string> kRules = {"rules", "--quiet", "--format"};
const std::vector<std::string> kConvert = {"convert", "--quiet", "--output", "-", "--to"};

std::vector<std::string> with(std::vector<std::string> command, const std::string& option) {
  command.push_back(option);
  return command;
}

class HostileLabelOutputs : public testing::TestWithParam<Output> {};

TEST_P(HostileLabelOutputs, EscapeWhatTheirFormWouldTakeForItsOwn) {
  const orbseq::test::TempFolder folder;
  std::vector<std::string> command = GetParam().command;
  command.insert(command.end(), {"--model", folder.file("d.xml", labelled(kScript))});

  const auto outcome = orbseq::test::run(command, {.input = "customer,history\nAnna,(9)\n"});

  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_THAT(outcome.output, HasSubstr(GetParam().shown));
}

const Output kOutputs[] = {
    {"D18ScoreCsv", with(kScore, "csv"), kInCsv},
    {"D18ScoreJson", with(kScore, "jsonl"), kInJson},
    {"D18ScoreTable", with(kScore, "table"), kInTable},
    {"D18ModuleCsv", with(kModule, "csv"), kInCsv},
    {"D18ModuleJson", with(kModule, "jsonl"), kInJson},
    {"D18ModuleTable", with(kModule, "table"), kInTable},
    {"D18ExplainCsv", with(kExplain, "csv"), kInCsv},
    {"D18ExplainJson", with(kExplain, "jsonl"), kInJson},
    {"D18ExplainTable", with(kExplain, "table"), kInTable},
    {"D18RulesCsv", with(with(kRules, "csv"), "--labels"), kInRules},
    {"D18RulesJson", with(kRules, "jsonl"), kInJson},
    {"D18RulesTable", with(kRules, "table"), kInTable},
    {"D18RulesText", with(with(kRules, "text"), "--labels"), kInText},
    {"D18RulesPmml", with(kRules, "pmml"), kInXml},
    {"D18InspectTable", {"inspect"}, kInTable},
    {"D18InspectJson", {"inspect", "--json"}, kInJson},
    {"D18InspectSequences", {"inspect", "--sequences", "--labels"}, kInText},
    {"D18ConvertDocument", with(kConvert, "document"), kInXml},
    {"D18ConvertPmml", with(kConvert, "pmml"), kInXml},
};
INSTANTIATE_TEST_SUITE_P(Labels, HostileLabelOutputs, testing::ValuesIn(kOutputs),
                         [](const auto& row) { return row.param.name; });

TEST(HostileLabelOutputs, D18XmlHoldsNoElementOfTheLabel) {
  const orbseq::test::TempFolder folder;
  const std::string path = folder.file("d.xml", labelled(kScript));
  for (std::vector<std::string> command :
       {with(kConvert, "document"), with(kConvert, "pmml"), with(kRules, "pmml")}) {
    command.insert(command.end(), {"--model", path});
    const auto outcome = orbseq::test::run(command);
    EXPECT_THAT(outcome.output, HasSubstr("&lt;script&gt;"));
    EXPECT_THAT(outcome.output, Not(HasSubstr("<script>")));
  }
}

TEST(HostileLabelOutputs, D18LabelsBesideAModelAreQuotedAndComeBackUnchanged) {
  const orbseq::test::TempFolder folder;
  const std::string path = folder.file("d.xml", labelled(kScript));
  for (const std::string form : {"binary", "objxml", "compiled"}) {
    SCOPED_TRACE(form);
    const std::string model = folder.path("m." + form);
    EXPECT_EQ(
        orbseq::test::run({"convert", "--model", path, "--to", form, "--output", model}).status, 0);

    EXPECT_EQ(orbseq::test::contentOf(model + ".labels.csv"),
              "item,label\n7,\"<script>alert(\"\"x,y\"\")</script>&'\n=1\"\n");
    std::vector<std::string> scored = with(kScore, "csv"), converted = with(kConvert, "document");
    scored.insert(scored.end(), {"--model", model});
    EXPECT_THAT(orbseq::test::run(scored, {.input = "customer,history\nAnna,(9)\n"}).output,
                HasSubstr(kInCsv));
    if (form == "compiled") continue;  // no lattice can be read back from it
    converted.insert(converted.end(), {"--model", model});
    const auto document = orbseq::test::run(converted);
    EXPECT_THAT(document.output, HasSubstr(kInXml));
    expectModel(document.output, [](const ScoreModel& read) {
      ASSERT_NE(read.GetScoreDictionary(), nullptr);
      EXPECT_EQ(read.GetScoreDictionary()->GetVariable("7")->GetMappedLabel(), kScriptLabel);
    });
  }
}

// --- Items whose hash is the lowest integer
// --------------------------------------------------------

// The small document with other items; both stand in sequences of one and of two items.
std::string withItems(const std::string& first, const std::string& second) {
  return smallDocument(
      {{"value=\"7\"", "value=\"" + first + "\""}, {"value=\"9\"", "value=\"" + second + "\""}});
}

TEST(HostileHashes, D22AnItemWhoseHashIsTheLowestIsFound) {
  ASSERT_EQ(packed({{kLowest}}).HashCode(), kLowest);

  expectModel(withItems("-2147483648", "9"), [](const ScoreModel& model) {
    EXPECT_THAT(ask(model, "(2147483648)", Mode::kCurrent), ElementsAre(Answer{9, 0.5, 0.4, 0.8}));
    EXPECT_THAT(ask(model, "", Mode::kCurrent),
                ElementsAre(Answer{kLowest, 0.8, 0.8, 1.0}, Answer{9, 0.5, 0.5, 1.0}));
  });
}

TEST(HostileHashes, D22ASetWhoseHashIsTheLowestIsFound) {
  ASSERT_EQ(packed({{3, 1807252118}}).HashCode(), kLowest);

  expectModel(withItems("3", "1807252118"), [](const ScoreModel& model) {
    EXPECT_THAT(ask(model, "(3)", Mode::kCurrent), ElementsAre(Answer{1807252118, 0.5, 0.4, 0.8}));
  });
}

TEST(HostileHashes, D22TwoSetsWhoseHashIsTheLowestAreFound) {
  ASSERT_EQ(packed({{1}, {2034073138}}).HashCode(), kLowest);

  expectModel(withItems("1", "2034073138"), [](const ScoreModel& model) {
    EXPECT_THAT(ask(model, "(1)", Mode::kFuture), ElementsAre(Answer{2034073138, 0.25, 0.2, 0.4}));
  });
}

}  // namespace

// The PMML documents against the standard: where they differ is promised, and listed in
// docs/formats/pmml.md; nothing else may differ.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/lattice/PmmlCheck.h"
#include "tests/lattice/exportTexts.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

// Deliberate: the differences that the format has in every document.
constexpr const char* kDocType = "document: DOCTYPE PMML";
constexpr const char* kNoGroup = "MiningSchema: no field of usage group";
// Deliberate: and in one without rules.
constexpr const char* kNoSequence = "SequenceModel: no Sequence";

std::vector<std::string> violations(const std::string& text) {
  return pmmlViolations(parseXml(text));
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  if (at == std::string::npos) throw std::invalid_argument("no " + from);
  return text.replace(at, from.size(), to);
}

// The shop's rules without the promised differences.
std::string conforming() {
  std::string text = pmmlText(Lattice(shopCounts(), 3), {.lattice = false});
  text = replaced(text, "<!DOCTYPE PMML SYSTEM \"sequentialmodel.dtd\">", "");
  return replaced(text, "usageType=\"supplementary\"", "usageType=\"group\"");
}

TEST(PmmlStructure, TheRulesDocumentDiffersAsPromised) {
  EXPECT_THAT(violations(goldenText("shop-rules.xml")), ElementsAre(kDocType, kNoGroup));
}

TEST(PmmlStructure, TheDocumentWithLatticeAndLabelsDiffersAsPromised) {
  const ItemLabelMap labels = {{1, "Bread & Butter"}, {2, "\x01"}};

  EXPECT_THAT(violations(pmmlText(Lattice(shopCounts(), 3), {.labels = &labels})),
              ElementsAre(kDocType, kNoGroup));
}

TEST(PmmlStructure, ADocumentWithoutRulesHasNoSequenceEither) {
  EXPECT_THAT(violations(pmmlText(Lattice({{"", 4}, {"(1)", 4}}))),
              ElementsAre(kDocType, kNoSequence, kNoGroup));
}

TEST(PmmlStructure, RandomLatticesDifferAsPromised) {
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    const World world = randomWorld(seed);
    const std::string text = pmmlText(world.dictionary);
    const bool hasRules = text.find("<SequenceRule") != std::string::npos;

    if (hasRules)
      ASSERT_THAT(violations(text), ElementsAre(kDocType, kNoGroup)) << "seed " << seed;
    else
      ASSERT_THAT(violations(text), ElementsAre(kDocType, kNoSequence, kNoGroup))
          << "seed " << seed;
  }
}

TEST(PmmlStructure, WithoutThePromisedDifferencesNothingIsLeft) {
  EXPECT_THAT(violations(conforming()), IsEmpty());
}

// --- The check itself ----------------------------------------------------------------------------

struct Planted {
  const char* from;
  const char* to;
  const char* violation;
};

std::ostream& operator<<(std::ostream& out, const Planted& planted) {
  return out << planted.violation;
}

class PmmlCheckFinds : public testing::TestWithParam<Planted> {};

TEST_P(PmmlCheckFinds, ThePlantedViolation) {
  const auto& [from, to, violation] = GetParam();

  EXPECT_THAT(violations(replaced(conforming(), from, to)), ElementsAre(violation));
}

INSTANTIATE_TEST_SUITE_P(
    PmmlStructure, PmmlCheckFinds,
    testing::Values(
        Planted{"version=\"3.2\"", "version=\"3.1\"", "PMML: version \"3.1\""},
        Planted{" xmlns=\"http://www.dmg.org/PMML-3_2\"", "", "PMML: no xmlns"},
        Planted{" dataType=\"string\"", "", "DataField: no dataType"},
        Planted{"optype=\"categorical\"", "optype=\"nominal\"", "DataField: optype \"nominal\""},
        Planted{"function=\"multiset\"", "function=\"set\"", "Aggregate: function \"set\""},
        Planted{"groupField=\"customer\"", "groupField=\"buyer\"",
                "Aggregate: unknown field buyer"},
        Planted{"<MiningField name=\"time\"", "<MiningField name=\"day\"",
                "MiningField: unknown field day"},
        Planted{"usageType=\"active\"", "usageType=\"used\"", "MiningField: usageType \"used\""},
        Planted{"functionName=\"sequences\"", "functionName=\"rules\"",
                "SequenceModel: functionName \"rules\""},
        Planted{"numberOfTransactions=\"4\"", "numberOfTransactions=\"4.5\"",
                "SequenceModel: numberOfTransactions \"4.5\""},
        Planted{"<Item id=\"2\" value=\"2\"/>", "<Item id=\"2\"/>", "Item: no value"},
        Planted{"<Item id=\"2\" value=\"2\"/>", "<Item id=\"2\" value=\"2\" label=\"x\"/>",
                "Item: unknown attribute label"},
        Planted{"<ItemRef itemRef=\"2\"/>", "<ItemRef itemRef=\"9\"/>", "ItemRef: dangling 9"},
        Planted{"<SetReference setId=\"1\"/>", "<SetReference setId=\"-1\"/>",
                "SetReference: dangling -1"},
        Planted{"<SequenceReference seqId=\"3\"/>", "<SequenceReference seqId=\"0\"/>",
                "SequenceReference: dangling 0"},
        Planted{"<Delimiter delimiter=\"acrossTimeWindows\" gap=\"unknown\"/>\n<SetReference",
                "<SetReference", "Sequence: no Delimiter"},
        Planted{"gap=\"unknown\"", "gap=\"0\"", "Delimiter: gap \"0\""},
        Planted{" confidence=\"0.25\"", "", "SequenceRule: no confidence"},
        Planted{"</SequenceRule>",
                "<Delimiter delimiter=\"acrossTimeWindows\" gap=\"true\"/>"
                "</SequenceRule>",
                "SequenceRule: misplaced Delimiter"}));

TEST(PmmlCheck, FindsEqualIds) {
  const std::string text = replaced(conforming(), "<Item id=\"2\"", "<Item id=\"1\"");

  EXPECT_THAT(violations(text), Contains("Item: id 1 twice"));
}

TEST(PmmlCheck, FindsAChildInTheWrongPlace) {
  const std::string item = "<Item id=\"7\" value=\"7\"/>";
  const std::string text = replaced(conforming(), "<MiningSchema>", item + "<MiningSchema>");

  EXPECT_THAT(violations(text), IsSupersetOf({"SequenceModel: no MiningSchema",
                                              "SequenceModel: misplaced MiningSchema"}));
}

TEST(PmmlCheck, FindsWhatTheTableDoesNotKnow) {
  const std::string text = replaced(conforming(), "</SequenceModel>", "<Rule/></SequenceModel>");

  EXPECT_THAT(violations(text),
              ElementsAre("SequenceModel: misplaced Rule", "Rule: unknown element"));
}

}  // namespace

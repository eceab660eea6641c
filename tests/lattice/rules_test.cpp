// The lattice's rules: bounds, orders, and what gives no rule.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using testing::IsEmpty;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> texts(const std::vector<Rule>& rules) {
  std::vector<std::string> all;
  for (const Rule& rule : rules) all.push_back(text(rule.antecedent) + text(rule.consequent));
  return all;
}

std::vector<std::string> ruleTexts(const SequenceDictionary& dictionary,
                                   const RuleQuery& query = {}) {
  return texts(rules(dictionary, query));
}

using Texts = std::vector<std::string>;

// A hundred customers; (1)(2) has 28 of them.
std::vector<Count> hundred() { return {{"", 100}, {"(1)", 56}, {"(2)", 35}, {"(1)(2)", 28}}; }

TEST(GetRules, TakesTheLastSetAsTheConsequent) {
  const Lattice lattice(
      {{"", 80}, {"(1)", 60}, {"(1)(2)", 40}, {"(3 4)", 20}, {"(1 2)(3)", 1}, {"(1)(2)(3 4)", 10}});

  EXPECT_THAT(rules(lattice),
              testing::ElementsAre(Rule{{{1}, {2}}, {{3, 4}}, 0.125, 0.25, 0.5, 1}));
}

TEST(GetRules, SequencesOfOneSetHaveNoRule) {
  const Lattice lattice({{"", 10}, {"(1)", 9}, {"(2)", 9}, {"(1 2)", 9}});

  EXPECT_THAT(rules(lattice), IsEmpty());
}

TEST(GetRules, LevelsAboveAnEmptyOneHaveNoRule) {
  const Lattice lattice({{"", 10}, {"(1)", 9}, {"(1)(1)(1)", 8}, {"(1)(1)", 8}}, /*levels=*/3);
  const Lattice gap({{"", 10}, {"(1)", 9}, {"(1)(1)(1)", 8}});

  EXPECT_EQ(ruleTexts(lattice), Texts{"(1)(1)"});
  EXPECT_THAT(rules(gap), IsEmpty());
}

// --- Bounds --------------------------------------------------------------------------------------

// Deliberate: 100 x 0.29 is a little less than 29, and truncation gives 28.
TEST(GetRules, TheLeastCountIsTruncated) {
  const Lattice lattice(hundred());

  EXPECT_EQ(ruleTexts(lattice, {.minSupport = 0.29}), Texts{"(1)(2)"});
  EXPECT_EQ(ruleTexts(lattice, {.minSupport = 0.289}), Texts{"(1)(2)"});
  EXPECT_THAT(ruleTexts(lattice, {.minSupport = 0.2901}), IsEmpty());
}

TEST(GetRules, TheGreatestCountIsRounded) {
  const Lattice lattice(hundred());

  EXPECT_EQ(ruleTexts(lattice, {.maxSupport = 0.276}), Texts{"(1)(2)"});
  EXPECT_EQ(ruleTexts(lattice, {.maxSupport = 0.28}), Texts{"(1)(2)"});
  EXPECT_THAT(ruleTexts(lattice, {.maxSupport = 0.274}), IsEmpty());
}

TEST(GetRules, BoundsAreInclusive) {
  const Lattice lattice(hundred());  // confidence 0.5, cause 0.8

  EXPECT_EQ(ruleTexts(lattice, {.minConfidence = 0.5, .maxConfidence = 0.5}), Texts{"(1)(2)"});
  EXPECT_EQ(ruleTexts(lattice, {.minCause = 0.8, .maxCause = 0.8}), Texts{"(1)(2)"});
  EXPECT_THAT(ruleTexts(lattice, {.minConfidence = 0.5000001}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.maxConfidence = 0.4999999}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.minCause = 0.8000001}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.maxCause = 0.7999999}), IsEmpty());
}

TEST(GetRules, SupportsBeyondThirtyTwoBitsAreClamped) {
  const Lattice lattice(hundred());

  EXPECT_EQ(ruleTexts(lattice, {.minSupport = -1e300, .maxSupport = 1e300}), Texts{"(1)(2)"});
  EXPECT_EQ(ruleTexts(lattice, {.minSupport = -kInfinity, .maxSupport = kInfinity}),
            Texts{"(1)(2)"});
  EXPECT_THAT(ruleTexts(lattice, {.minSupport = 1e300}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.minSupport = kInfinity}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.maxSupport = -1e300}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.maxSupport = -kInfinity}), IsEmpty());
}

TEST(GetRules, ASupportThatIsNoNumberCountsAsZero) {
  const Lattice lattice(hundred());

  EXPECT_EQ(ruleTexts(lattice, {.minSupport = kNaN}), Texts{"(1)(2)"});
  EXPECT_THAT(ruleTexts(lattice, {.maxSupport = kNaN}), IsEmpty());

  const Lattice rare({{"", 100}, {"(1)", 56}, {"(2)", 35}, {"(1)(2)", 0}});
  EXPECT_EQ(ruleTexts(rare, {.maxSupport = kNaN}), Texts{"(1)(2)"});
}

TEST(GetRules, ABoundOfAFractionThatIsNoNumberHoldsForNone) {
  const Lattice lattice(hundred());

  EXPECT_THAT(ruleTexts(lattice, {.minConfidence = kNaN}), IsEmpty());
  EXPECT_THAT(ruleTexts(lattice, {.maxCause = kNaN}), IsEmpty());
}

TEST(GetRules, InfiniteSupportsOfNoCustomersGiveNoRule) {
  const Lattice lattice({{"", 0}, {"(1)", 5}, {"(1)(1)", 5}});

  EXPECT_THAT(ruleTexts(lattice, {.minSupport = -kInfinity, .maxSupport = kInfinity}), IsEmpty());
}

TEST(GetRules, MaximalOnesExtendToNothing) {
  const Lattice lattice(
      {{"", 10}, {"(1)", 9}, {"(2)", 9}, {"(1)(1)", 8}, {"(2)(2)", 8}, {"(1)(1)(1)", 7}});

  EXPECT_THAT(ruleTexts(lattice, {.maximalOnly = true}),
              testing::UnorderedElementsAre("(2)(2)", "(1)(1)(1)"));
}

// --- What a lattice may lack ---------------------------------------------------------------------

TEST(GetRules, APartThatIsNotStoredGivesNoRule) {
  const Lattice noAntecedent({{"", 10}, {"(2)", 5}, {"(1)(2)", 4}});
  const Lattice noConsequent({{"", 10}, {"(1)", 5}, {"(1)(2)", 4}});

  EXPECT_THAT(rules(noAntecedent), IsEmpty());
  EXPECT_THAT(rules(noConsequent), IsEmpty());
}

TEST(GetRules, APartWithoutACounterGivesNoRule) {
  const Lattice noAntecedent({{"", 10}, {"(1)", std::nullopt}, {"(2)", 5}, {"(1)(2)", 4}});
  const Lattice noConsequent({{"", 10}, {"(1)", 5}, {"(2)", std::nullopt}, {"(1)(2)", 4}});
  const Lattice noWhole({{"", 10}, {"(1)", 5}, {"(2)", 5}, {"(1)(2)", std::nullopt}});

  EXPECT_THAT(rules(noAntecedent), IsEmpty());
  EXPECT_THAT(rules(noConsequent), IsEmpty());
  EXPECT_THAT(rules(noWhole), IsEmpty());
}

TEST(GetRules, ACountOfZeroBelowAFractionGivesNoRule) {
  const Lattice noAntecedent({{"", 10}, {"(1)", 0}, {"(2)", 5}, {"(1)(2)", 4}});
  const Lattice noConsequent({{"", 10}, {"(1)", 5}, {"(2)", 0}, {"(1)(2)", 4}});
  const Lattice noCustomers({{"", 0}, {"(1)", 5}, {"(2)", 5}, {"(1)(2)", 4}});
  const Lattice none({{"", 0}, {"(1)", 5}, {"(2)", 5}, {"(1)(2)", 0}});

  EXPECT_THAT(rules(noAntecedent), IsEmpty());
  EXPECT_THAT(rules(noConsequent), IsEmpty());
  EXPECT_THAT(rules(noCustomers), IsEmpty());
  EXPECT_THAT(rules(none), IsEmpty());
}

TEST(GetRules, ACountOfZeroAboveTheFractionsGivesZeros) {
  const Lattice lattice({{"", 10}, {"(1)", 5}, {"(2)", 5}, {"(1)(2)", 0}});

  EXPECT_THAT(rules(lattice), testing::ElementsAre(Rule{{{1}}, {{2}}, 0.0, 0.0, 0.0, 1}));
}

TEST(GetRules, WithoutTheEmptySequenceThereIsNone) {
  auto** tables = new HashtableSQPair* [3] {
    new HashtableSQPair(2), new HashtableSQPair(3), new HashtableSQPair(3)
  };
  SequenceDictionary dictionary(tables, 3);
  store(dictionary, history("(1)"), 5);
  store(dictionary, history("(1)(1)"), 5);

  EXPECT_THAT(rules(dictionary), IsEmpty());
}

// --- Order ---------------------------------------------------------------------------------------

// The rules' supports, confidences and causes each order them another way.
std::vector<Count> threeOrders() {
  return {{"", 100},      {"(1)", 80},    {"(2)", 10},   {"(3)", 20},   {"(4)", 90},
          {"(1)(4)", 40}, {"(2)(3)", 10}, {"(4)(2)", 9}, {"(3)(1)", 12}};
}

TEST(GetRules, OrdersBySupportConfidenceOrCause) {
  const Lattice lattice(threeOrders());

  EXPECT_EQ(ruleTexts(lattice, {.sortBy = 'S'}), (Texts{"(1)(4)", "(3)(1)", "(2)(3)", "(4)(2)"}));
  EXPECT_EQ(ruleTexts(lattice, {.sortBy = 'C'}), (Texts{"(2)(3)", "(3)(1)", "(1)(4)", "(4)(2)"}));
  EXPECT_EQ(ruleTexts(lattice, {.sortBy = 'A'}), (Texts{"(4)(2)", "(2)(3)", "(1)(4)", "(3)(1)"}));
}

TEST(GetRules, AnyOtherOrderIsThatOfTheTables) {
  const Lattice lattice(threeOrders());
  Texts order;
  for (const History& one : sequencesOfSize(lattice, 2)) order.push_back(text(one));

  for (const char sortBy : {' ', 's', 'c', 'a', 'X', '\0'})
    EXPECT_EQ(ruleTexts(lattice, {.sortBy = sortBy}), order);
}

TEST(GetRules, EqualKeysKeepTheOrderOfDiscovery) {
  std::vector<Count> counts = {{"", 100}, {"(1)", 50}, {"(2)", 50}, {"(3)", 50}, {"(4)", 50}};
  for (const char* pair : {"(1)(2)", "(2)(1)", "(3)(4)", "(4)(3)", "(1)(4)", "(2)(3)", "(4)(1)"})
    counts.push_back({pair, 20});
  const Lattice lattice(counts);

  const Texts discovered = ruleTexts(lattice);

  for (const char sortBy : {'S', 'C', 'A'})
    EXPECT_EQ(ruleTexts(lattice, {.sortBy = sortBy}), discovered);
}

// Deliberate: 1 - key is what is compared, so keys that it cannot tell apart are equal.
TEST(GetRules, KeysThatDifferTooLittleFromOneCountAsEqual) {
  for (const auto& [one, two] :
       {std::pair(1000000007, 1000000006), std::pair(1000000006, 1000000007)}) {
    const Lattice lattice(
        {{"", 2000000000}, {"(1)", one}, {"(2)", two}, {"(3)", 5}, {"(1)(3)", 1}, {"(2)(3)", 1}});
    const std::vector<Rule> answer = rules(lattice);
    ASSERT_EQ(answer.size(), 2U);
    ASSERT_NE(answer[0].confidence, answer[1].confidence);

    EXPECT_EQ(ruleTexts(lattice, {.sortBy = 'C'}), ruleTexts(lattice));
  }
}

TEST(GetRules, AppendsToWhatIsThere) {
  const Lattice lattice(hundred());
  std::vector<SeqAssociationRule> answer;
  answer.emplace_back(sequence("(8)"), sequence("(9)"), 0.1, 0.2, 0.3, 0);

  EXPECT_TRUE(lattice.GetRules(answer, 0, 1, 0, 1, 0, 1, 'C', false).IsOK());

  EXPECT_EQ(texts(rulesOf(answer)), (Texts{"(8)(9)", "(1)(2)"}));
}

TEST(GetRules, WhenCancelledAnswersCodeOneAndNothingElse) {
  Lattice lattice(hundred());
  std::vector<SeqAssociationRule> answer;
  answer.emplace_back(sequence("(8)"), sequence("(9)"), 0.1, 0.2, 0.3, 0);
  lattice.setCancel();

  const auto status = lattice.GetRules(answer, 0, 1, 0, 1, 0, 1, 'C', false);

  EXPECT_EQ(status, OrbCommon_830::OrbStatus(1, /*warning=*/false));
  EXPECT_EQ(texts(rulesOf(answer)), Texts{"(8)(9)"});
}

TEST(GetRules, WithoutALevelToWalkTheCancelFlagIsNotSeen) {
  Lattice lattice({{"", 10}, {"(1)", 5}});
  std::vector<SeqAssociationRule> answer;
  lattice.setCancel();

  EXPECT_TRUE(lattice.GetRules(answer, 0, 1, 0, 1, 0, 1, 'C', false).IsOK());
}

TEST(GetRules, ASequenceOfThirtyTwoItemsHasARule) {
  SequenceDictionary dictionary(smallTables(33));
  for (int items = 0; items <= 32; ++items) store(dictionary, singletons(items), 40 - items);
  store(dictionary, single(32), 16);
  dictionary.buildLattice();

  const std::vector<Rule> answer = rules(dictionary);

  ASSERT_EQ(answer.size(), 1U);
  EXPECT_EQ(itemCount(answer[0].antecedent), 31);
  EXPECT_EQ(answer[0].cause, 0.5);
}

}  // namespace

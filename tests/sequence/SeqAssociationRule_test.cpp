#include "sequence/SeqAssociationRule.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/captureOutput.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::SeqAssociationRule;

SeqAssociationRule rule(const ItemSets& antecedent, const ItemSets& consequent, int joinType = 1) {
  return SeqAssociationRule(sequence(antecedent), sequence(consequent), 0.25, 0.5, 0.125, joinType);
}

TEST(SeqAssociationRule, TheConstructorTakesSupportConfidenceCauseAndJoinType) {
  const SeqAssociationRule made = rule({{1, 2}}, {{5}}, 3);

  EXPECT_EQ(setsOf(made.GetAntecedent()), (ItemSets{{1, 2}}));
  EXPECT_EQ(setsOf(made.GetConsequent()), (ItemSets{{5}}));
  EXPECT_EQ(made.GetSupport(), 0.25);
  EXPECT_EQ(made.GetConfidence(), 0.5);
  EXPECT_EQ(made.GetCause(), 0.125);
  EXPECT_EQ(made.GetJoinType(), 3);
}

TEST(SeqAssociationRule, TheConstructorCopiesTheSequencesWithTheirTimes) {
  Sequence antecedent = sequence({{1}}, {4.0}), consequent = sequence({{2}}, {5.0});
  const SeqAssociationRule made(antecedent, consequent, 0.0, 0.0, 0.0, 1);

  antecedent.Clear();
  consequent.Clear();

  EXPECT_EQ(setsOf(made.GetAntecedent()), (ItemSets{{1}}));
  EXPECT_EQ(timesOf(made.GetAntecedent()), Times{4.0});
  EXPECT_EQ(timesOf(made.GetConsequent()), Times{5.0});
}

TEST(SeqAssociationRule, OneSequenceMayBeBothSides) {
  const Sequence both = sequence({{1}});
  const SeqAssociationRule made(both, both, 0.0, 0.0, 0.0, 1);

  EXPECT_EQ(setsOf(made.GetAntecedent()), (ItemSets{{1}}));
  EXPECT_EQ(setsOf(made.GetConsequent()), (ItemSets{{1}}));
}

TEST(SeqAssociationRule, ACopyHasTheSetsOnceAndTheMeasures) {
  const SeqAssociationRule original = rule({{1}, {2}}, {{5}}, 2);

  const SeqAssociationRule copy(original);

  EXPECT_EQ(setsOf(copy.GetAntecedent()), (ItemSets{{1}, {2}}));
  EXPECT_EQ(setsOf(copy.GetConsequent()), (ItemSets{{5}}));
  EXPECT_EQ(copy.GetSupport(), 0.25);
  EXPECT_EQ(copy.GetConfidence(), 0.5);
  EXPECT_EQ(copy.GetCause(), 0.125);
  EXPECT_EQ(copy.GetJoinType(), 2);
}

TEST(SeqAssociationRule, RulesInAGrowingVectorStayAsTheyAre) {
  std::vector<SeqAssociationRule> rules;

  for (int k = 0; k < 20; ++k) rules.push_back(rule({{k}}, {{k + 1}}));

  EXPECT_EQ(setsOf(rules[0].GetAntecedent()), (ItemSets{{0}}));
  EXPECT_EQ(setsOf(rules[19].GetConsequent()), (ItemSets{{20}}));
}

// Deliberate: assignment appends to the sequences, as theirs does.
TEST(SeqAssociationRule, AssignmentAppendsToBothSequences) {
  SeqAssociationRule target = rule({{4}}, {{6}});

  target = rule({{1}}, {{2}, {3}});

  EXPECT_EQ(setsOf(target.GetAntecedent()), (ItemSets{{4}, {1}}));
  EXPECT_EQ(setsOf(target.GetConsequent()), (ItemSets{{6}, {2}, {3}}));
}

TEST(SeqAssociationRule, AssignmentReplacesTheMeasures) {
  SeqAssociationRule target(Sequence(), Sequence(), 1.0, 1.0, 1.0, 1);

  target = rule({{1}}, {{2}}, 0);

  EXPECT_EQ(target.GetSupport(), 0.25);
  EXPECT_EQ(target.GetConfidence(), 0.5);
  EXPECT_EQ(target.GetCause(), 0.125);
  EXPECT_EQ(target.GetJoinType(), 0);
}

TEST(SeqAssociationRule, AssignmentToItselfDoesNothing) {
  SeqAssociationRule target = rule({{4}}, {{6}});
  const SeqAssociationRule& itself = target;

  target = itself;

  EXPECT_EQ(setsOf(target.GetAntecedent()), (ItemSets{{4}}));
  EXPECT_EQ(setsOf(target.GetConsequent()), (ItemSets{{6}}));
}

TEST(SeqAssociationRule, SwapExchangesWithoutAppending) {
  SeqAssociationRule a = rule({{4}}, {{6}}, 0);
  SeqAssociationRule b(sequence({{1}}), sequence({{2}}), 0.1, 0.2, 0.3, 1);

  swap(a, b);

  EXPECT_EQ(setsOf(a.GetAntecedent()), (ItemSets{{1}}));
  EXPECT_EQ(setsOf(a.GetConsequent()), (ItemSets{{2}}));
  EXPECT_EQ(a.GetSupport(), 0.1);
  EXPECT_EQ(a.GetConfidence(), 0.2);
  EXPECT_EQ(a.GetCause(), 0.3);
  EXPECT_EQ(a.GetJoinType(), 1);
  EXPECT_EQ(setsOf(b.GetAntecedent()), (ItemSets{{4}}));
  EXPECT_EQ(setsOf(b.GetConsequent()), (ItemSets{{6}}));
  EXPECT_EQ(b.GetSupport(), 0.25);
  EXPECT_EQ(b.GetJoinType(), 0);
}

TEST(SeqAssociationRule, DisplayWritesAntecedentArrowConsequentAndMeasures) {
  const CapturedOutput output;

  rule({{1, 2}}, {{5}}, 1).Display();

  EXPECT_EQ(output.text(),
            "<(1 2)>\n"
            "=>\n"
            "<(5)>\n"
            "Support 0.25 Confidence 0.5 Cause 0.125\n");
}

TEST(SeqAssociationRule, DisplayWritesAnAmpersandForEveryOtherJoinType) {
  for (const int joinType : {0, 2, -1}) {
    const CapturedOutput output;
    rule({{1}}, {{5}}, joinType).Display();
    EXPECT_EQ(output.text(), "<(1)>\n&\n<(5)>\nSupport 0.25 Confidence 0.5 Cause 0.125\n")
        << joinType;
  }
}

TEST(SeqAssociationRule, DisplayLeavesOutTheTimes) {
  const CapturedOutput output;

  SeqAssociationRule(sequence({{1}}, {4.0}), sequence({{2}}, {5.0}), 1, 1, 1, 1).Display();

  EXPECT_EQ(output.text(), "<(1)>\n=>\n<(2)>\nSupport 1 Confidence 1 Cause 1\n");
}

TEST(SeqAssociationRule, DisplayWritesFourDigits) {
  const CapturedOutput output;

  SeqAssociationRule(Sequence(), Sequence(), 1.0 / 3, 2.0 / 3, 0.00012348, 0).Display();

  EXPECT_EQ(output.text(), "<>\n&\n<>\nSupport 0.3333 Confidence 0.6667 Cause 0.0001235\n");
}

// Deliberate: the stream's precision is not restored.
TEST(SeqAssociationRule, DisplayLeavesThePrecisionFour) {
  const CapturedOutput output;

  rule({{1}}, {{5}}).Display();

  EXPECT_EQ(output.precision(), 4);
  EXPECT_FALSE(output.isFixed());
}

}  // namespace

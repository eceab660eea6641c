#include "scoring/SequentialResult.h"

#include <gtest/gtest.h>

#include "scoring/hostapi/DictVar.h"
#include "scoring/hostapi/NumericValue.h"

namespace {

using OrbQuillon_830::SequentialResult;
using OrbScore::DictVar;
using OrbScore::NumericValue;
using OrbScore::ScoreDictVar;

TEST(SequentialResult, HoldsTargetAndPrediction) {
  auto* const target = new DictVar("currentItems", ScoreDictVar::kVector);
  auto* const prediction = new NumericValue(1.0);
  SequentialResult result(target);
  EXPECT_EQ(result.GetPrediction(), nullptr);

  result.SetPrediction(prediction);

  EXPECT_EQ(result.GetTarget(), target);
  EXPECT_EQ(result.GetPrediction(), prediction);
  EXPECT_EQ(result.GetScoreResultType(), 13);
}

TEST(SequentialResult, ANewPredictionReplacesTheEarlierOne) {
  SequentialResult result(nullptr);
  result.SetPrediction(new NumericValue(1.0));

  result.SetPrediction(new NumericValue(2.0));

  EXPECT_EQ(result.GetPrediction()->GetDouble(), 2.0);
}

TEST(SequentialResult, SettingTheHeldPredictionKeepsIt) {
  SequentialResult result(nullptr);
  result.SetPrediction(new NumericValue(1.0));

  result.SetPrediction(result.GetPrediction());

  EXPECT_EQ(result.GetPrediction()->GetDouble(), 1.0);
}

// Deliberate: a list has no confidence of its own.
TEST(SequentialResult, ConfidenceIsAlwaysMinusOne) {
  SequentialResult result(nullptr);

  result.SetConfidence(0.5);

  EXPECT_EQ(result.GetConfidence(), -1.0);
}

TEST(SequentialResult, TheTargetCanBeNamed) {
  SequentialResult result(new DictVar("x", ScoreDictVar::kVector));

  result.SetTargetVarName("futureItems");

  EXPECT_EQ(result.GetTarget()->GetName(), "futureItems");
}

TEST(SequentialResult, WithoutATargetNamingDoesNothing) {
  SequentialResult result(nullptr);

  result.SetTargetVarName("futureItems");

  EXPECT_EQ(result.GetTarget(), nullptr);
}

}  // namespace

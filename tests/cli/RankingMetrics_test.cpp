// The measures of ranked lists, against values that are computed by hand.

#include "cli/RankingMetrics.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace {

using orbseq::RankingMetrics;
using orbseq::RankingScores;

using Items = std::vector<std::int32_t>;

// Places of RankingMetrics::kCuts.
constexpr std::size_t kFirst = 0;
constexpr std::size_t kFive = 1;
constexpr std::size_t kTen = 2;
constexpr std::size_t kTwenty = 3;

// 1 / log2(rank + 1) for the ranks 2, 3, 5 and 10.
constexpr double kGain2 = 0.63092975357145743;
constexpr double kGain3 = 0.5;
constexpr double kGain5 = 0.38685280723454163;
constexpr double kGain10 = 0.28906482631788782;

constexpr double kNear = 1e-14;

// first, first + 1 .. of that length.
Items listOf(std::int32_t first, std::size_t length) {
  Items items(length);
  std::iota(items.begin(), items.end(), first);
  return items;
}

RankingScores scoresOf(const Items& list, const Items& wanted, std::size_t cut) {
  RankingMetrics metrics;
  metrics.add(list, wanted);
  return metrics.at(cut, 100);
}

void expectNothing(const RankingScores& scores) {
  EXPECT_EQ(scores.hitRate, 0.0);
  EXPECT_EQ(scores.recall, 0.0);
  EXPECT_EQ(scores.mrr, 0.0);
  EXPECT_EQ(scores.ndcg, 0.0);
}

TEST(RankingMetrics, CutsAreOneFiveTenAndTwenty) {
  EXPECT_EQ(RankingMetrics::kCuts[kFirst], 1U);
  EXPECT_EQ(RankingMetrics::kCuts[kFive], 5U);
  EXPECT_EQ(RankingMetrics::kCuts[kTen], 10U);
  EXPECT_EQ(RankingMetrics::kCuts[kTwenty], 20U);
}

TEST(RankingMetrics, OneWantedItemAtTheTopIsPerfect) {
  for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut) {
    const RankingScores scores = scoresOf({7, 8, 9}, {7}, cut);

    EXPECT_EQ(scores.hitRate, 1.0);
    EXPECT_EQ(scores.recall, 1.0);
    EXPECT_EQ(scores.mrr, 1.0);
    EXPECT_EQ(scores.ndcg, 1.0);
  }
}

TEST(RankingMetrics, OneWantedItemAtTheSecondRank) {
  expectNothing(scoresOf({8, 7, 9}, {7}, kFirst));

  const RankingScores scores = scoresOf({8, 7, 9}, {7}, kFive);

  EXPECT_EQ(scores.hitRate, 1.0);
  EXPECT_EQ(scores.recall, 1.0);
  EXPECT_EQ(scores.mrr, 0.5);
  EXPECT_NEAR(scores.ndcg, kGain2, kNear);
}

// Wanted are four; hit are the ranks 2 and 5, and rank 10 behind the first five.
TEST(RankingMetrics, SeveralWantedItemsAreComparedWithTheirBestOrder) {
  const Items list = listOf(1, 10);
  const Items wanted = {2, 5, 10, 99};

  expectNothing(scoresOf(list, wanted, kFirst));

  const RankingScores five = scoresOf(list, wanted, kFive);
  const double best = 1.0 + kGain2 + kGain3 + 0.43067655807339306;  // the last is rank 4's
  EXPECT_EQ(five.hitRate, 1.0);
  EXPECT_EQ(five.recall, 0.5);
  EXPECT_EQ(five.mrr, 0.5);
  EXPECT_NEAR(five.ndcg, (kGain2 + kGain5) / best, kNear);

  const RankingScores ten = scoresOf(list, wanted, kTen);
  EXPECT_EQ(ten.recall, 0.75);
  EXPECT_EQ(ten.mrr, 0.5);
  EXPECT_NEAR(ten.ndcg, (kGain2 + kGain5 + kGain10) / best, kNear);
}

// Of three wanted items the first place can hold but one.
TEST(RankingMetrics, TheBestOrderIsAsLongAsTheCut) {
  const RankingScores scores = scoresOf({5}, {4, 5, 6}, kFirst);

  EXPECT_EQ(scores.hitRate, 1.0);
  EXPECT_DOUBLE_EQ(scores.recall, 1.0 / 3.0);
  EXPECT_EQ(scores.mrr, 1.0);
  EXPECT_EQ(scores.ndcg, 1.0);
}

TEST(RankingMetrics, AListShorterThanTheCutIsReadToItsEnd) {
  const RankingScores five = scoresOf({1, 2}, {2, 3}, kFive);
  const RankingScores twenty = scoresOf({1, 2}, {2, 3}, kTwenty);

  EXPECT_EQ(five.recall, 0.5);
  EXPECT_NEAR(five.ndcg, kGain2 / (1.0 + kGain2), kNear);
  EXPECT_EQ(twenty.recall, 0.5);
  EXPECT_EQ(twenty.ndcg, five.ndcg);
}

TEST(RankingMetrics, WhatComesBehindTheCutDoesNotCount) {
  const Items list = listOf(1, 20);

  expectNothing(scoresOf(list, {11}, kTen));
  EXPECT_DOUBLE_EQ(scoresOf(list, {11}, kTwenty).mrr, 1.0 / 11.0);
  EXPECT_DOUBLE_EQ(scoresOf(list, {20}, kTwenty).mrr, 1.0 / 20.0);
  expectNothing(scoresOf(listOf(1, 30), {21}, kTwenty));
}

TEST(RankingMetrics, AnEmptyListHasNothingAndIsNoAnswer) {
  RankingMetrics metrics;
  metrics.add(Items(), Items{1, 2});
  metrics.add(Items{1}, Items{1, 2});

  EXPECT_EQ(metrics.customers(), 2U);
  EXPECT_EQ(metrics.answered(), 0.5);
  EXPECT_EQ(metrics.at(kFive, 10).hitRate, 0.5);
  EXPECT_EQ(metrics.at(kFive, 10).recall, 0.25);
}

TEST(RankingMetrics, ACustomerWithoutWantedItemsHasNothing) {
  RankingMetrics metrics;
  metrics.add(Items{1, 2}, Items());

  for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut)
    expectNothing(metrics.at(cut, 10));
  EXPECT_EQ(metrics.customers(), 1U);
  EXPECT_EQ(metrics.answered(), 1.0);
  EXPECT_EQ(metrics.at(kFive, 10).coverage, 0.2);
}

TEST(RankingMetrics, MeasuresAreAveragedOverCustomers) {
  RankingMetrics metrics;
  metrics.add(Items{1, 2, 3}, Items{1});     // 1, 1, 1, 1
  metrics.add(Items{1, 2, 3}, Items{3, 4});  // 1, 1/2, 1/3, gain 3 of gains 1 and 2
  metrics.add(Items{1, 2, 3}, Items{9});     // nothing
  metrics.add(Items{4}, Items{4, 5});        // 1, 1/2, 1, gain 1 of gains 1 and 2

  const RankingScores scores = metrics.at(kFive, 8);

  EXPECT_EQ(scores.hitRate, 0.75);
  EXPECT_EQ(scores.recall, 0.5);
  EXPECT_DOUBLE_EQ(scores.mrr, (1.0 + 1.0 / 3.0 + 1.0) / 4.0);
  EXPECT_NEAR(scores.ndcg, (1.0 + 1.5 / (1.0 + kGain2)) / 4.0, kNear);
  EXPECT_EQ(scores.coverage, 0.5);
  EXPECT_EQ(metrics.at(kFirst, 8).hitRate, 0.5);
  EXPECT_EQ(metrics.at(kFirst, 8).coverage, 0.25);
}

TEST(RankingMetrics, CoverageCountsDifferentItemsOfAllLists) {
  RankingMetrics metrics;
  metrics.add(listOf(1, 20), Items{1});
  metrics.add(listOf(4, 20), Items{1});

  EXPECT_EQ(metrics.at(kFirst, 32).coverage, 2.0 / 32.0);    // 1 and 4
  EXPECT_EQ(metrics.at(kFive, 32).coverage, 8.0 / 32.0);     // 1 .. 8
  EXPECT_EQ(metrics.at(kTwenty, 32).coverage, 23.0 / 32.0);  // 1 .. 23
  EXPECT_EQ(metrics.at(kTwenty, 0).coverage, 0.0);
}

TEST(RankingMetrics, WithoutCustomersAreZero) {
  const RankingMetrics metrics;

  EXPECT_EQ(metrics.customers(), 0U);
  EXPECT_EQ(metrics.answered(), 0.0);
  for (std::size_t cut = 0; cut < RankingMetrics::kCuts.size(); ++cut) {
    expectNothing(metrics.at(cut, 10));
    EXPECT_EQ(metrics.at(cut, 10).coverage, 0.0);
    EXPECT_EQ(metrics.at(cut, 0).coverage, 0.0);
  }
}

}  // namespace

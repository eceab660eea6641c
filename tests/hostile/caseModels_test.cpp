// Hostile models, and many threads: rows C23 and C24. Answers are finite, and those of one thread.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "scoring/SequentialAssocModel.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreResult.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/SequenceCounter.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/caseModels.h"
#include "tests/hostile/rowNames.h"

namespace {

using OrbQuillon_830::SequentialAssocModel;
using OrbScore::ScoreCaseRecord;
using OrbScore::ScoreModel;
using OrbScore::ScoreResult;
using orbseq::test::caseModel;
using orbseq::test::expectSoundAnswers;
using orbseq::test::Meter;
using orbseq::test::recordOf;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using test::ask;
using test::Mode;
using testing::IsEmpty;

const std::vector<std::string> kHistories = {"",    "()",     "(1)",    "(2)",      "(1 2)",
                                             "(9)", "(1)(2)", "(2)(1)", "(1)(2)(9)"};

TEST(HostileCaseModels, C23AModelOfNoCustomersHasNoAnswers) {
  const auto model = test::modelOf(
      orbseq::test::smallDocument({{"value=\"7\"", "value=\"1\""},
                                   {"value=\"9\"", "value=\"2\""},
                                   {"\"10\" numberOfSets=\"0\"", "\"0\" numberOfSets=\"0\""}}));

  for (const std::string& history : kHistories)
    for (const Mode mode : {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings})
      EXPECT_THAT(ask(*model, history, mode), IsEmpty()) << history;
}

// (1), (2) and (1 2), of which those whose bit is set have no counter; the empty sequence is the
// lowest bit.
std::unique_ptr<ScoreModel> modelWithoutCounters(unsigned missing) {
  const int one[] = {1, 1};
  const int two[] = {1, 2};
  const int both[] = {2, 1, 2};
  auto** const tables = new HashtableSQPair* [3] {
    new HashtableSQPair(2), new HashtableSQPair(3), new HashtableSQPair(2)
  };
  unsigned sequence = 0;
  const auto store = [&](HashtableSQPair& table, NTSequence* key, int count, int item, int place) {
    SequenceCounter* counter = nullptr;
    if ((missing >> sequence++ & 1U) == 0) {
      counter = new SequenceCounter(0, count, nullptr);
      if (item != 0) counter->addAdjacentItem(item, place);
    }
    table.put(key, counter);
  };
  store(*tables[0], new NTSequence, 10, 1, 1);
  store(*tables[1], new NTSequence(one), 8, 2, 0);
  store(*tables[1], new NTSequence(two), 5, 1, 0);
  store(*tables[2], new NTSequence(both), 4, 0, 0);
  return std::make_unique<SequentialAssocModel>(tables, 3);
}

TEST(HostileCaseModels, C23SequencesWithoutCountersGiveNoAnswerOfTheirOwn) {
  EXPECT_THAT(ask(*modelWithoutCounters(0), "(1)", Mode::kCurrent), testing::SizeIs(1));

  for (unsigned missing = 1; missing < 16; ++missing) {
    const auto model = modelWithoutCounters(missing);
    expectSoundAnswers(*model, kHistories);
    if ((missing & 1U) != 0) {
      for (const std::string& history : kHistories)
        EXPECT_THAT(ask(*model, history, Mode::kCurrent), IsEmpty()) << missing << history;
    }
    if ((missing & 8U) != 0) {
      EXPECT_THAT(ask(*model, "(1)", Mode::kCurrent), IsEmpty()) << missing;
    }
  }
}

// Texts of a random few bytes that mean something, and others.
std::vector<std::string> randomTexts(std::size_t count) {
  constexpr std::string_view kBytes = "((()))[]..1122 93,-x\xFF";
  std::mt19937 random(24);
  std::vector<std::string> texts(count);
  for (std::string& text : texts)
    for (std::size_t bytes = random() % 24; bytes > 0; --bytes)
      text += kBytes[random() % kBytes.size()];
  return texts;
}

using List = OrbQuillon_830::VectorValue<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;

// An answer's item and the bits of its confidence, support and cause.
using Bits = std::array<std::uint64_t, 4>;

std::vector<Bits> bitsOf(const ScoreResult& result) {
  std::vector<Bits> all;
  for (const auto& one : dynamic_cast<const List&>(*result.GetPrediction()).GetVectorValue())
    all.push_back({static_cast<std::uint64_t>(one.GetItem()),
                   std::bit_cast<std::uint64_t>(one.GetConfidence()),
                   std::bit_cast<std::uint64_t>(one.GetSupport()),
                   std::bit_cast<std::uint64_t>(one.GetCause())});
  return all;
}

std::vector<Bits> bitsOf(const ScoreModel& model, const ScoreCaseRecord& record) {
  ScoreResult* raw = nullptr;
  EXPECT_TRUE(model.GetScore(&record, raw, false).IsOK());
  const std::unique_ptr<ScoreResult> result(raw);
  return bitsOf(*result);
}

// A million cases together; by a sanitizer's share fewer, on the same path.
TEST(HostileCaseModels, C24EightThreadsAnswerAsOneDoes) {
  constexpr int kThreads = 8;
  constexpr std::size_t kTexts = 500;
  const auto model = caseModel();
  const std::vector<std::string> texts = randomTexts(kTexts);
  std::vector<ScoreCaseRecord> records;
  std::vector<std::vector<Bits>> expected;
  for (std::size_t i = 0; i < kTexts; ++i) {
    records.push_back(recordOf(texts[i], i % 2 == 0 ? "" : "futureItems"));
    if (i % 4 == 3) records.back().SetText("fromCurrent", "");
    expected.push_back(bitsOf(*model, records.back()));
  }
  EXPECT_GT(std::set<std::vector<Bits>>(expected.begin(), expected.end()).size(), 3U);
  const int rounds = 1'000'000 / kThreads / static_cast<int>(kTexts) / Meter::slowdown();
  std::atomic<int> differences = 0;
  std::atomic<std::size_t> cases = 0;

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      ScoreResult* raw = nullptr;
      for (int round = 0; round < rounds; ++round)
        for (std::size_t i = 0; i < kTexts; ++i) {
          const std::size_t one = (i + static_cast<std::size_t>(t) * 61) % kTexts;
          const bool isOk = model->GetScore(&records[one], raw, false).IsOK();
          if (!isOk || bitsOf(*raw) != expected[one]) ++differences;
          ++cases;
        }
      delete raw;
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(differences, 0);
  EXPECT_EQ(cases, static_cast<std::size_t>(rounds) * kThreads * kTexts);
}

TEST(HostileCaseModels, HaveATestForEveryRow) { orbseq::test::expectTestsOfRows('C', 24); }

}  // namespace

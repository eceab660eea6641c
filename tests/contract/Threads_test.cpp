// One model, many threads: each answer is the one that a single thread gets.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/contract/support.h"

namespace {

using test::Answer;
using test::ask;
using test::Mode;

constexpr int kThreads = 8;
constexpr int kRounds = 300;

const std::vector<std::string> kHistories = {"",       "(7)",      "(9)",    "(7)(9)", "(9)(7)(9)",
                                             "(7 9)",  "(7 9)(7)", "(1)(2)", "()",     "(7)(1)",
                                             "(7)(7)", "(9 9)",    "abc"};

std::vector<std::vector<Answer>> askAll(const OrbScore::ScoreModel& model) {
  std::vector<std::vector<Answer>> answers;
  for (const std::string& history : kHistories)
    for (const Mode mode : {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings})
      answers.push_back(ask(model, history, mode));
  return answers;
}

TEST(Threads, EightThreadsOnOneModelGetOneThreadsAnswers) {
  const auto model = test::modelOf(std::string(test::kSmallDocument));
  const auto expected = askAll(*model);
  std::atomic<int> differences = 0;

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round)
        if (askAll(*model) != expected) ++differences;
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(differences, 0);
  EXPECT_FALSE(expected[1 * 3].empty());
}

}  // namespace

// The const queries use no shared scratch: threads that ask one dictionary at the same time get the
// answers that one thread gets. ThreadSanitizer sees what the comparison does not.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/support/World.h"

namespace {

using namespace orbseq::test;

// Everything that the const queries answer about one history.
struct Answers {
  std::vector<History> found;
  std::vector<Advice> future;
  std::vector<Advice> current;
  std::vector<Rule> rules;
  std::vector<History> reached;
  std::vector<History> ofSize;
  int count = 0;
  bool stored = false;

  friend bool operator==(const Answers&, const Answers&) = default;
};

Answers ask(const SequenceDictionary& dictionary, const History& history) {
  const NTSequence key = packed(history);
  const SequenceCounter* const counter = dictionary.getDescriptor(&key);
  Answers answers;
  answers.found = found(dictionary, history);
  answers.future = futureItems(dictionary, history, 20, false);
  answers.current = currentItems(dictionary, history);
  answers.rules = rules(dictionary, {.sortBy = 'C'});
  answers.reached = reached(dictionary, Walk::kAnywhere, history, 0, 1000);
  answers.ofSize = sequencesOfSize(dictionary, 2);
  answers.count = counter == nullptr ? -1 : counter->getCount();
  answers.stored = dictionary.isStored(key);
  return answers;
}

TEST(SequenceDictionaryThreads, EightAskAtOnceAndGetOneThreadsAnswers) {
  const World world({.seed = 7, .items = 4, .customers = 20, .histories = 12});
  std::vector<Answers> expected;
  for (const History& history : world.histories) expected.push_back(ask(world.dictionary, history));

  std::atomic<int> differences = 0;
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < 8; ++thread)
    threads.emplace_back([&, thread] {
      for (std::size_t n = 0; n < 3 * expected.size(); ++n) {
        const std::size_t which = (n + thread) % expected.size();
        if (!(ask(world.dictionary, world.histories[which]) == expected[which])) ++differences;
      }
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(differences, 0);
}

TEST(SequenceDictionaryThreads, TheCancelFlagMayBeSetWhileOthersAsk) {
  World world({.seed = 7, .items = 4, .customers = 20});
  const Sequence customer = sequence("(1)(2)(3)");
  std::atomic<int> started = 0, other = 0;

  const auto untilCancelled = [&] {
    std::vector<SeqConsequentDescriptor> answer;
    ++started;
    auto status = world.dictionary.GetFutureItems(answer, &customer, 20, false);
    while (status.IsOK()) status = world.dictionary.GetFutureItems(answer, &customer, 20, false);
    if (status.GetErrorCode() != 1) ++other;
  };
  std::thread one(untilCancelled), two(untilCancelled);
  while (started < 2) std::this_thread::yield();
  world.dictionary.setCancel();
  one.join();
  two.join();

  EXPECT_EQ(other, 0);
}

}  // namespace

// Joining sequences, and random operations against plain vectors.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <random>
#include <set>

#include "sequence/Sequence.h"
#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;

TEST(SequenceJoin, JoinTemporalAppendsCopiesOfAllSets) {
  Sequence history = sequence({{1}}, {1.0});
  Sequence other = sequence({{2}, {3, 4}}, {5.0, 6.0});

  history.JoinTemporal(&other);
  other.Clear();

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}, {3, 4}}));
  EXPECT_EQ(timesOf(history), (Times{1.0, 5.0, 6.0}));
}

TEST(SequenceJoin, JoinTemporalWithItselfDoublesTheSets) {
  Sequence history = sequence({{1}, {2}});

  history.JoinTemporal(&history);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}, {1}, {2}}));
}

TEST(SequenceJoin, JoinTemporalWithNothingChangesNothing) {
  const Sequence empty;
  Sequence history = sequence({{1}});

  history.JoinTemporal(&empty);
  history.JoinTemporal(nullptr);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}}));
}

TEST(SequenceJoin, JoiningOneSetAtATimeSeldomMovesTheOthers) {
  const Sequence one = sequence({{1}});
  Sequence withRoom(2);
  const int usual =
      failEveryAllocation<std::bad_alloc>([&] { withRoom.JoinTemporal(&one); }, [] {});
  Sequence history;

  int moves = 0;
  for (int k = 0; k < 1000; ++k) {
    try {
      const FailAllocation failing(usual + 1);
      history.JoinTemporal(&one);
    } catch (const std::bad_alloc&) {
      ++moves;
      history.JoinTemporal(&one);
    }
  }

  EXPECT_EQ(history.Length(), 1000);
  EXPECT_LE(moves, 20);
}

TEST(SequenceJoin, JoinCurrentMergesTheFirstSetIntoTheLastAndAppendsTheOthers) {
  Sequence history = sequence({{5}, {3}}, {1.0, 2.0});
  const Sequence other = sequence({{1}, {2}}, {8.0, 9.0});

  history.JoinCurrent(&other);

  EXPECT_EQ(setsOf(history), (ItemSets{{5}, {1, 3}, {2}}));
}

// Deliberate: the merged set keeps the time of this sequence's last set.
TEST(SequenceJoin, JoinCurrentKeepsTheTimeOfTheLastSet) {
  Sequence history = sequence({{5}, {3}}, {1.0, 2.0});
  const Sequence other = sequence({{1}, {2}}, {8.0, 9.0});

  history.JoinCurrent(&other);

  EXPECT_EQ(timesOf(history), (Times{1.0, 2.0, 9.0}));
}

TEST(SequenceJoin, JoinCurrentLeavesTheOtherAlone) {
  Sequence history = sequence({{3}});
  const Sequence other = sequence({{1}, {2}});

  history.JoinCurrent(&other);

  EXPECT_EQ(setsOf(other), (ItemSets{{1}, {2}}));
}

TEST(SequenceJoin, JoinCurrentWithItselfUsesTheSetsAsTheyWere) {
  Sequence history = sequence({{1}, {2}, {3}});

  history.JoinCurrent(&history);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}, {1, 3}, {2}, {3}}));
}

TEST(SequenceJoin, JoinCurrentIntoAnEmptySequenceAppends) {
  const Sequence other = sequence({{1}, {2}}, {8.0, 9.0});
  Sequence history;

  history.JoinCurrent(&other);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}}));
  EXPECT_EQ(timesOf(history), (Times{8.0, 9.0}));
}

TEST(SequenceJoin, JoinCurrentWithNothingChangesNothing) {
  const Sequence empty;
  Sequence history = sequence({{1}});

  history.JoinCurrent(&empty);
  history.JoinCurrent(nullptr);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}}));
}

TEST(SequenceJoin, JoinCurrentThatRunsOutOfMemoryChangesNothing) {
  const Sequence other = sequence({{1}, {2}, {4}});
  Sequence history = sequence({{5}, {3}});

  const int failures =
      failEveryAllocation<std::bad_alloc>([&] { history.JoinCurrent(&other); },
                                          [&] {
                                            EXPECT_EQ(setsOf(history), (ItemSets{{5}, {3}}));
                                          });

  EXPECT_GE(failures, 6);
  EXPECT_EQ(setsOf(history), (ItemSets{{5}, {1, 3}, {2}, {4}}));
}

// Item sets and times in plain vectors.
struct Model {
  ItemSets sets;
  Times times;

  void append(const Model& other, std::size_t from) {
    for (std::size_t k = from; k < other.sets.size(); ++k) {
      sets.push_back(other.sets[k]);
      times.push_back(other.times[k]);
    }
  }

  void joinCurrent(const Model& other) {
    if (sets.empty() || other.sets.empty()) return append(other, 0);
    std::set<std::int32_t> merged(sets.back().begin(), sets.back().end());
    merged.insert(other.sets[0].begin(), other.sets[0].end());
    sets.back().assign(merged.begin(), merged.end());
    append(other, 1);
  }
};

Model randomModel(std::mt19937& random) {
  Model model;
  for (const Items& set : randomSets(random, randomInt(random, 0, 6), -3, 3)) {
    const std::set<std::int32_t> items(set.begin(), set.end());
    model.sets.emplace_back(items.begin(), items.end());
    model.times.push_back(randomInt(random, 0, 99));
  }
  return model;
}

TEST(SequenceParity, RandomOperationsEqualThoseOfPlainVectors) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    Model model;
    Sequence history;
    for (int step = 0; step < 12; ++step) {
      Model otherModel = randomModel(random);
      Sequence other = sequence(otherModel.sets, otherModel.times);
      const std::int32_t choice = randomInt(random, 0, 9);
      if (choice == 0) {
        model = {};
        history.Clear();
      } else if (choice == 1) {
        std::swap(model, otherModel);
        swap(history, other);
      } else if (choice < 6) {
        model.joinCurrent(otherModel);
        history.JoinCurrent(&other);
      } else if (choice < 8) {
        model.append(otherModel, 0);
        history.JoinTemporal(&other);
      } else {
        model.append(otherModel, 0);
        history = other;
      }
      ASSERT_EQ(setsOf(history), model.sets) << "seed " << seed << ", step " << step;
      ASSERT_EQ(timesOf(history), model.times) << "seed " << seed << ", step " << step;
      const Sequence copy(history);
      ASSERT_TRUE(copy == history) << "seed " << seed << ", step " << step;
    }
  }
}

TEST(SequenceParity, TheOrderIsThatOfTheVectors) {
  for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
    std::mt19937 random(seed);
    const Model a = randomModel(random), b = randomModel(random);
    ASSERT_EQ(sequence(a.sets, a.times) < sequence(b.sets, b.times), a.sets < b.sets)
        << "seed " << seed << ", " << text(a.sets) << " and " << text(b.sets);
  }
}

}  // namespace

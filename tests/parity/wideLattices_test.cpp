// The compiled lattice against the dictionary's own queries, where sequences have many links and
// histories many sets: runs of links are then searched instead of gone through, and candidates are
// cut while the search goes on. Doubles bit for bit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/parity/engineParity.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;

constexpr int kMaxCounts[] = {1, 3, 20, 1000};

struct WideOptions {
  std::uint32_t seed = 1;
  int items = 100;
  bool randomLinks = false;  // beside those of what is stored
  bool hasLacks = false;     // single items and counters that are missing, counts of 0
};

// A lattice in which a few items, the hubs, stand in sequences with all others: before them, behind
// them, and in one set with them. Counts are few, so that many fractions are equal.
class WideWorld {
 public:
  explicit WideWorld(const WideOptions& options)
      : options_(options), random_(options.seed), dictionary_(6) {
    store(dictionary_, {}, 200);
    for (int item = 1; item <= options_.items; ++item)
      if (!options_.hasLacks || below(100) < 90) add({{item}});
    for (int k = 0; k < 3; ++k) addHub(1 + below(options_.items));
    for (int k = 0; k < 40; ++k) addLonger();
    dictionary_.buildLattice();
    if (options_.randomLinks) addLinks();
  }

  const SequenceDictionary& dictionary() const noexcept { return dictionary_; }
  const std::vector<int>& hubs() const noexcept { return hubs_; }

  // Sets of one to three items, hubs more often than others, some unknown, some sets empty.
  History history(int sets) {
    History history;
    for (int k = 0; k < sets; ++k) {
      std::set<int> items;
      for (int n = below(4); n > 0; --n) items.insert(randomItem());
      history.emplace_back(items.begin(), items.end());
    }
    return history;
  }

 private:
  int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  int randomItem() {
    if (below(3) == 0) return hubs_[static_cast<std::size_t>(below(3))];
    return 1 + below(options_.items + 5);
  }

  void add(const History& sequence) {
    std::optional<int> count = 1 + below(12);
    if (options_.hasLacks && below(100) < 5) count = 0;
    if (options_.hasLacks && below(100) < 5) count.reset();
    store(dictionary_, normalised(sequence), count);
    stored_.push_back(normalised(sequence));
  }

  void addHub(int hub) {
    hubs_.push_back(hub);
    for (int item = 1; item <= options_.items; ++item) {
      if (below(100) < 90) add({{item}, {hub}});
      if (below(100) < 90) add({{hub}, {item}});
      if (item != hub && below(100) < 70) add({{hub, item}});
      const int other = hubs_.front();
      if (below(100) < 60) add({{item}, {hub}, {other}});
      if (item != hub && below(100) < 60) add({{item, hub}, {other}});
      if (item != hub && below(100) < 30) add({{other}, {item, hub}});
    }
  }

  // What is stored, with an item in front, in a set of its own or in the first.
  void addLonger() {
    History longer = stored_[random_() % stored_.size()];
    if (itemCount(longer) > 4) return;
    if (below(2) == 0)
      longer.insert(longer.begin(), Items{1 + below(options_.items)});
    else
      longer.front().push_back(1 + below(options_.items));
    add(longer);
  }

  void addLinks() {
    for (int k = 0; k < 200; ++k) {
      const History& sequence = stored_[random_() % stored_.size()];
      const NTSequence key = packed(sequence);
      auto* const counter = dictionary_.getDescriptor(&key);
      if (counter == nullptr) continue;
      const int sets = static_cast<int>(sequence.size());
      counter->addAdjacentItem(1 + below(options_.items), below(2 * sets));
    }
  }

  WideOptions options_;
  std::mt19937 random_;
  SequenceDictionary dictionary_;
  std::vector<History> stored_;
  std::vector<int> hubs_;
};

WideOptions optionsOf(std::uint32_t seed) {
  WideOptions options;
  options.seed = seed;
  options.items = 60 + static_cast<int>(seed * 37 % 141);
  options.randomLinks = seed % 3 == 1;
  options.hasLacks = seed % 2 == 1;
  return options;
}

TEST(WideLattices, ShortHistoriesAreAnsweredAsByTheDictionary) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 1; seed <= 120 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    WideWorld world(optionsOf(seed));
    Engine engine(world.dictionary());
    for (int n = 0; n < 30; ++n) {
      const History history = world.history(1 + n % 6);
      for (const int maxCount : kMaxCounts)
        answers += compare(engine, OfDictionary{world.dictionary()}, history, maxCount);
    }
  }
  EXPECT_GT(answers, 100'000U);
}

// The first and the last of a run among them.
TEST(WideLattices, EveryItemOfALongRunIsFound) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 101; seed <= 120 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const WideOptions options = optionsOf(seed);
    WideWorld world(options);
    Engine engine(world.dictionary());
    const int hub = world.hubs().front();
    for (int item = 1; item <= options.items; ++item)
      for (const History& history :
           {History{{item}, {hub}}, normalised({{item, hub}}), normalised({{item, hub}, {hub}})})
        answers += compare(engine, OfDictionary{world.dictionary()}, history, 1000);
  }
  EXPECT_GT(answers, 100'000U);
}

// (x 50)(60) is reached from (50)(60) alone, since no (x)(60) is stored.
TEST(WideLattices, EveryItemThatJoinsALongRunIsFound) {
  constexpr int kItems = 40;
  SequenceDictionary dictionary(6);
  store(dictionary, {}, 100);
  for (const int item : {50, 60, 70}) store(dictionary, {{item}}, 80);
  store(dictionary, {{50}, {60}}, 50);
  for (int item = 1; item <= kItems; ++item) {
    store(dictionary, {{item}}, 60);
    store(dictionary, {{item, 50}, {60}}, 40);
    store(dictionary, {{item, 50}, {60}, {70}}, item == 1 || item == kItems ? 30 : 20);
  }
  dictionary.buildLattice();
  Engine engine(dictionary);

  for (int item = 1; item <= kItems; ++item) {
    const History history = {{item, 50}, {60}};
    const double count = item == 1 || item == kItems ? 30.0 : 20.0;
    EXPECT_EQ(engine.future(history, 20, true),
              (std::vector<Advice>{{70, count / 40.0, count / 100.0, count / 80.0}}))
        << text(history);
    EXPECT_EQ(compare(engine, OfDictionary{dictionary}, history, 20), 2U);
  }
}

TEST(WideLattices, LongHistoriesAreAnsweredAsByTheDictionary) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 201; seed <= 240 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    WideWorld world(optionsOf(seed));
    Engine engine(world.dictionary());
    for (int n = 0; n < 4; ++n) {
      const History history = world.history(30 + 10 * n);
      for (const int maxCount : kMaxCounts)
        answers += compare(engine, OfDictionary{world.dictionary()}, history, maxCount);
    }
  }
  EXPECT_GT(answers, 30'000U);
}

TEST(WideLattices, HistoriesOfTwoThousandSetsAreAnsweredAsByTheDictionary) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 301; seed <= 302 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    WideOptions options = optionsOf(seed);
    options.items = 60;
    WideWorld world(options);
    Engine engine(world.dictionary());
    answers += compare(engine, OfDictionary{world.dictionary()}, world.history(2000), 20);
  }
  EXPECT_GT(answers, 0U);
}

}  // namespace

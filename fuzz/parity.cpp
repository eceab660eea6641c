// A small lattice and histories made from the bytes: the dictionary's answers and the compiled
// lattice's, bit for bit.
//
// The lattice is that of counted customers, closed and whole, or of sequences by chance; its links
// are built or drawn; sequences may lack their counters or be gone, so that links lead to nothing.

#include <bit>
#include <cstdint>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "fuzz/Bytes.h"
#include "fuzz/Choice.h"
#include "fuzz/check.h"
#include "fuzz/threeWays.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::fuzz;
using namespace orbseq::test;

constexpr int kLevels = 6;

// What a lattice and its histories are like.
enum Traits : int {
  kByChance = 1,      // sequences are drawn, not counted
  kDrawnLinks = 2,    // beside those that are built
  kStale = 4,         // some sequences are taken away after linking
  kLacks = 8,         // counts of 0, no counters
  kNoCustomers = 16,  // the empty sequence's count is 0
  kUnlinked = 32,     // no links are built
};

// How many sequences a lattice is made of, and of how many items a customer. What is wrong shows in
// small lattices, mostly, and there is time for many of them.
struct Extent {
  int sequences;
  int items;
};
constexpr Extent kSmall = {6, 3}, kLarge = {48, 5};

class Maker {
 public:
  Maker(const std::uint8_t* data, std::size_t size, const Extent& extent)
      : bytes_(data, size),
        extent_(extent),
        traits_(bytes_.byte()),
        items_(1 + bytes_.below(5)),
        dictionary_(smallTables(1 + bytes_.below(kLevels))) {
    has(kByChance) ? storeDrawn() : storeCounted();
    store(dictionary_, {}, has(kNoCustomers) ? 0 : 20 + bytes_.below(100));
    if (!has(kUnlinked)) dictionary_.buildLattice();
    if (has(kDrawnLinks)) addLinks();
    if (has(kStale)) takeSomeAway();
  }

  const SequenceDictionary& dictionary() const noexcept { return dictionary_; }
  bool hasMore() const noexcept { return !bytes_.isUsedUp(); }

  // Sets of 0 to 3 items, one of which no lattice knows.
  History history(int mostSets) {
    History sets(static_cast<std::size_t>(bytes_.below(mostSets + 1)));
    for (Items& set : sets)
      for (int n = bytes_.below(4); n > 0; --n) set.push_back(1 + bytes_.below(items_ + 1));
    return normalised(sets);
  }

  int maxCount() {
    constexpr int kCounts[] = {20, 1, 2, 5};
    return kCounts[bytes_.below(4)];
  }

 private:
  bool has(Traits trait) const noexcept { return (traits_ & trait) != 0; }

  void put(const History& sequence, int count) {
    std::optional<int> given = count;
    if (has(kLacks)) {
      const int lack = bytes_.below(16);
      if (lack == 15) given.reset();
      if (lack == 14) given = 0;
    }
    if (store(dictionary_, sequence, given)) stored_.push_back(sequence);
  }

  // A history whose sets all have items, at most so many of them.
  History drawnSequence(int mostItems) {
    History sequence;
    for (int room = 1 + bytes_.below(mostItems); room > 0;) {
      Items set;
      for (int n = 1 + bytes_.below(3); n > 0 && room > 0; --n, --room)
        set.push_back(1 + bytes_.below(items_));
      sequence.push_back(set);
    }
    return normalised(sequence);
  }

  void storeDrawn() {
    for (int n = bytes_.below(extent_.sequences); n > 0 && !bytes_.isUsedUp(); --n) {
      const History sequence = drawnSequence(5);
      put(sequence, 1 + bytes_.below(20));
    }
  }

  // Every choice of items, set by set.
  static std::set<History> partsOf(const History& customer) {
    std::set<History> parts;
    for (unsigned chosen = 0; chosen < 1U << itemCount(customer); ++chosen) {
      History part;
      int at = 0;
      for (const Items& set : customer) {
        Items some;
        for (const std::int32_t item : set)
          if ((chosen >> at++ & 1U) != 0) some.push_back(item);
        if (!some.empty()) part.push_back(std::move(some));
      }
      parts.insert(std::move(part));
    }
    return parts;
  }

  void storeCounted() {
    std::map<History, int> counts;
    const auto enough = static_cast<std::size_t>(extent_.sequences);
    for (int n = bytes_.below(8); n > 0 && counts.size() < enough; --n) {
      std::set<History> parts = partsOf(drawnSequence(extent_.items));
      while (!parts.empty()) ++counts[std::move(parts.extract(parts.begin()).value())];
    }
    counts.erase(History());
    const int least = 1 + bytes_.below(3);
    for (const auto& [sequence, count] : counts)
      if (count >= least) put(sequence, count);
  }

  void addLinks() {
    for (int n = bytes_.below(16); n > 0 && !stored_.empty(); --n) {
      const History& sequence = stored_[static_cast<std::size_t>(bytes_.byte()) % stored_.size()];
      const NTSequence key = packed(sequence);
      auto* const counter = dictionary_.getDescriptor(&key);
      const int sets = static_cast<int>(sequence.size());
      const int position = bytes_.below(2 * sets + 1);
      if (counter != nullptr)
        counter->addAdjacentItem(1 + bytes_.below(items_ + 1),
                                 position == 2 * sets ? position + 1 : position);
    }
  }

  void takeSomeAway() {
    for (int n = bytes_.below(8); n > 0 && !stored_.empty(); --n) {
      const NTSequence key =
          packed(stored_[static_cast<std::size_t>(bytes_.byte()) % stored_.size()]);
      dictionary_.remove(&key);
    }
  }

  Bytes bytes_;
  Extent extent_;
  int traits_;
  int items_;
  SequenceDictionary dictionary_;
  std::vector<History> stored_;
};

bool areSame(const std::vector<Advice>& a, const std::vector<Advice>& b) {
  const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
  bool same = a.size() == b.size();
  for (std::size_t k = 0; same && k < a.size(); ++k)
    same = a[k].item == b[k].item && bits(a[k].confidence) == bits(b[k].confidence) &&
           bits(a[k].support) == bits(b[k].support) && bits(a[k].cause) == bits(b[k].cause);
  return same;
}

void print(const char* who, const std::vector<Advice>& answers) {
  std::cerr << who << ":\n";
  for (const Advice& advice : answers) std::cerr << "  " << advice << '\n';
}

void compare(const std::vector<Advice>& dictionarys, const orbseq::engine::Answers& answers,
             const char* question, const History& history) {
  std::vector<Advice> engines = adviceOf(answers);
  // Planted: the two best answers are read the wrong way round.
  if (kPlanted && engines.size() > 1) std::swap(engines[0], engines[1]);
  if (areSame(dictionarys, engines)) return;
  print("dictionary", dictionarys);
  print("compiled lattice", engines);
  fail(std::string("the answers differ: ") + question + " " + text({history}));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kHistories = kAskAll ? 8 : 2;
  Choice choice(data, size);
  Maker maker(data, size, choice.among(16).is(0) ? kLarge : kSmall);
  const auto lattice = orbseq::engine::compile(maker.dictionary());
  const orbseq::engine::Recommender recommender(lattice);
  orbseq::engine::Workspace workspace;
  for (int asked = 0; asked < 2 || (maker.hasMore() && asked < kHistories); ++asked) {
    const int maxCount = maker.maxCount();
    const History history = maker.history(asked == 0 ? 0 : 5);
    const auto check = [&history](const char* question, const orbseq::engine::Answers& answers,
                                  const std::vector<Advice>& dictionarys) {
      compare(dictionarys, answers, question, history);
    };
    orbseq::fuzz::askInWays(choice.among(3), recommender, workspace,
                            orbseq::fuzz::engineHistory(history), maker.dictionary(), history,
                            maxCount, check);
  }
  return 0;
}

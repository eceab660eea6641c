// Why an item is recommended: every proposal behind an answer, against the answers themselves and
// against a list of proposals that is put together here from searches and counters alone.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lattice/Proposal.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::Proposal;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kAll = std::numeric_limits<int>::max();

enum class Kind { kCurrent, kFuture, kFutureOfBeginnings };
constexpr Kind kKinds[] = {Kind::kCurrent, Kind::kFuture, Kind::kFutureOfBeginnings};

std::vector<Proposal> explained(const SequenceDictionary& dictionary, const History& customer,
                                Kind kind) {
  const Sequence asked = sequence(customer);
  return kind == Kind::kCurrent
             ? explainCurrentItems(dictionary, &asked)
             : explainFutureItems(dictionary, &asked, /*wholeOnly=*/kind == Kind::kFuture);
}

std::vector<Proposal> explained(const SequenceDictionary& dictionary, const char* customer,
                                Kind kind) {
  return explained(dictionary, history(customer), kind);
}

std::vector<Advice> answered(const SequenceDictionary& dictionary, const History& customer,
                             Kind kind) {
  return kind == Kind::kCurrent ? currentItems(dictionary, customer, kAll)
                                : futureItems(dictionary, customer, kAll, kind == Kind::kFuture);
}

Advice adviceOf(const Proposal& proposal) {
  return orbseq::test::adviceOf(std::vector{proposal.consequent}).front();
}

std::vector<Advice> winnersOf(const std::vector<Proposal>& proposals) {
  std::vector<Advice> winners;
  for (const Proposal& proposal : proposals)
    if (proposal.wins) winners.push_back(adviceOf(proposal));
  return winners;
}

// "(1)(2) 8/4 -> 3 joins skipping 1 wins": the sequence, its count and that with the item; an empty
// sequence is "popular".
std::string text(const Proposal& proposal) {
  const bool isPopular = proposal.sequence.size() == 0;
  std::string result =
      isPopular ? std::string("popular") : orbseq::test::text(setsOf(proposal.sequence));
  result += " " + std::to_string(proposal.count) + "/" + std::to_string(proposal.together) +
            " -> " + std::to_string(proposal.consequent.GetItem());
  if (proposal.joinsLastSet) result += " joins";
  if (proposal.skipped > 0) result += " skipping " + std::to_string(proposal.skipped);
  return result + (proposal.wins ? " wins" : "");
}

std::vector<std::string> texts(const std::vector<Proposal>& proposals) {
  std::vector<std::string> all;
  for (const Proposal& proposal : proposals) all.push_back(text(proposal));
  return all;
}

// --- The reference -------------------------------------------------------------------------------

// Nothing for a sequence that is not stored, or without a counter.
std::optional<int> countOf(const SequenceDictionary& dictionary, const NTSequence& sequence) {
  const SequenceCounter* const counter = dictionary.getDescriptor(&sequence);
  return counter == nullptr ? std::nullopt : std::optional(counter->getCount());
}

struct Measures {
  int count;
  int together;
  Advice advice;
};

// What an extension measures, from counters alone; nothing where it proposes nothing.
std::optional<Measures> measuresOf(const SequenceDictionary& dictionary, const NTSequence& sequence,
                                   int item, int position) {
  const auto customers = countOf(dictionary, NTSequence());
  const auto count = countOf(dictionary, sequence);
  const auto together = countOf(dictionary, NTSequence(sequence, item, position));
  const auto alone = countOf(dictionary, packed(single(item)));
  if (!together || customers.value_or(0) == 0 || count.value_or(0) == 0 || alone == 0)
    return std::nullopt;
  const double shared = *together;
  return Measures{*count,
                  *together,
                  {item, shared / *count, shared / *customers, alone ? shared / *alone : 0.0}};
}

// Proposals of one number of skipped sets, in the order in which they are found.
void appendFound(std::vector<Proposal>& all, const SequenceDictionary& dictionary,
                 const History& customer, int skipped, const std::set<int>& excluded,
                 bool joinsLastSet) {
  const Sequence asked = sequence(customer);
  std::vector<NTSequence*> answer;
  dictionary.getSubsequencesInSequence(answer, &asked, skipped);
  for (const NTSequence* raw : answer) {
    const std::unique_ptr<const NTSequence> sequence(raw);
    const SequenceCounter* const counter = dictionary.getDescriptor(sequence.get());
    if (counter == nullptr || counter->getAdjacentItems() == nullptr) continue;
    const int sets = sequence->getNSets();
    const int position = joinsLastSet ? 2 * (sets - 1) : 2 * sets + 1;
    for (const auto& [item, place] : *counter->getAdjacentItems()) {
      if (place != position || excluded.count(item) > 0) continue;
      const auto measures = measuresOf(dictionary, *sequence, item, position);
      if (!measures) continue;
      const Advice& advice = measures->advice;
      all.push_back({*sequence,
                     measures->count,
                     measures->together,
                     joinsLastSet,
                     skipped,
                     false,
                     {item, advice.support, advice.confidence, advice.cause}});
    }
  }
}

std::vector<Proposal> proposalsFound(const SequenceDictionary& dictionary, const History& customer,
                                     Kind kind) {
  std::vector<Proposal> all;
  if (kind == Kind::kCurrent) {
    const std::set<int> last(customer.back().begin(), customer.back().end());
    appendFound(all, dictionary, customer, 0, last, true);
    return all;
  }
  const int sets = static_cast<int>(customer.size());
  std::set<int> seen;
  for (int skip = 0; skip < (kind == Kind::kFuture ? 1 : sets); ++skip) {
    if (skip > 0) {
      const Items& set = customer[static_cast<std::size_t>(sets - skip)];
      seen.insert(set.begin(), set.end());
    }
    appendFound(all, dictionary, customer, skip, seen, false);
  }
  return all;
}

// Items by their best proposals, these first, the others as they stand.
std::vector<Proposal> ranked(const std::vector<Proposal>& found) {
  std::map<int, std::vector<Proposal>> byItem;
  for (const Proposal& proposal : found) byItem[proposal.consequent.GetItem()].push_back(proposal);
  const auto isBelow = [](const Proposal& a, const Proposal& b) {
    return std::pair(a.consequent.GetConfidence(), a.consequent.GetSupport()) <
           std::pair(b.consequent.GetConfidence(), b.consequent.GetSupport());
  };
  std::vector<std::vector<Proposal>> groups;
  for (auto& [item, group] : byItem) {
    const auto best = std::max_element(group.begin(), group.end(), isBelow);  // the first of equals
    best->wins = true;
    std::rotate(group.begin(), best, best + 1);
    groups.push_back(group);
  }
  std::sort(groups.begin(), groups.end(), [](const auto& a, const auto& b) {
    return std::pair(a[0].consequent.GetConfidence(), a[0].consequent.GetItem()) >
           std::pair(b[0].consequent.GetConfidence(), b[0].consequent.GetItem());
  });
  std::vector<Proposal> all;
  for (const auto& group : groups) all.insert(all.end(), group.begin(), group.end());
  return all;
}

// Whether the sets of `part` are subsets of different sets of the customer's, in order, once
// `skipped` sets are left out at the end.
bool holds(const History& customer, int skipped, const History& part) {
  std::size_t matched = 0;
  for (std::size_t k = 0; k + static_cast<std::size_t>(skipped) < customer.size(); ++k) {
    if (matched == part.size()) break;
    const auto has = [&set = customer[k]](int item) {
      return std::find(set.begin(), set.end(), item) != set.end();
    };
    if (std::all_of(part[matched].begin(), part[matched].end(), has)) ++matched;
  }
  return matched == part.size();
}

// --- Random worlds -------------------------------------------------------------------------------

struct Seen {
  std::size_t proposals = 0;
  std::size_t losers = 0;
  std::size_t skipping = 0;
};

void check(const SequenceDictionary& dictionary, const History& customer, Kind kind, Seen& seen) {
  SCOPED_TRACE("history " + orbseq::test::text(customer) + ", kind " +
               std::to_string(static_cast<int>(kind)));
  const std::vector<Proposal> proposals = explained(dictionary, customer, kind);

  EXPECT_EQ(winnersOf(proposals), answered(dictionary, customer, kind));

  const std::vector<Proposal> expected = ranked(proposalsFound(dictionary, customer, kind));
  EXPECT_EQ(texts(proposals), texts(expected));
  std::set<int> items;
  int item = 0;
  for (const Proposal& proposal : proposals) {
    const bool isFirst = items.insert(proposal.consequent.GetItem()).second;
    EXPECT_EQ(proposal.wins, isFirst) << text(proposal);
    EXPECT_TRUE(isFirst || proposal.consequent.GetItem() == item) << text(proposal);
    item = proposal.consequent.GetItem();

    EXPECT_TRUE(holds(customer, proposal.skipped, setsOf(proposal.sequence))) << text(proposal);
    const int sets = proposal.sequence.getNSets();
    const auto measures = measuresOf(dictionary, proposal.sequence, item,
                                     proposal.joinsLastSet ? 2 * (sets - 1) : 2 * sets + 1);
    ASSERT_TRUE(measures) << text(proposal);
    EXPECT_EQ(proposal.count, measures->count) << text(proposal);
    EXPECT_EQ(proposal.together, measures->together) << text(proposal);
    EXPECT_EQ(adviceOf(proposal), measures->advice) << text(proposal);

    ++seen.proposals;
    if (!proposal.wins) ++seen.losers;
    if (proposal.skipped > 0) ++seen.skipping;
  }
}

// The world's own histories, and one that repeats an item and ends in an unknown one.
std::vector<History> historiesOf(const World& world) {
  std::vector<History> all = world.histories;
  all.push_back(history("(1 2)(2)(1)(2 99)"));
  all.push_back(history("(2)(1 2)(2)()"));
  all.erase(std::remove(all.begin(), all.end(), History()), all.end());
  return all;
}

// Calls check for every history of every seed's world, once `change` has had it.
template <class Change>
Seen inEveryWorld(std::uint32_t seeds, Change change) {
  Seen seen;
  for (std::uint32_t seed = 1; seed <= seeds && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    World world = randomWorld(seed);
    change(world);
    for (const History& customer : historiesOf(world))
      for (const Kind kind : kKinds) check(world.dictionary, customer, kind, seen);
  }
  return seen;
}

TEST(Explanation, IsTheListOfAllProposalsInRandomWorlds) {
  const Seen seen = inEveryWorld(300, [](World&) {});

  EXPECT_GT(seen.proposals, 5000U) << "the worlds are too poor to compare anything";
  EXPECT_GT(seen.losers, 1000U);
  EXPECT_GT(seen.skipping, 1000U);
}

// Pruning leaves links to what is gone.
TEST(Explanation, IsTheListOfAllProposalsInPrunedWorlds) {
  std::size_t stale = 0;

  const Seen seen = inEveryWorld(150, [&stale](World& world) {
    const int before = world.dictionary.NumberOfSequences();
    world.dictionary.reduceDictionary(2 + static_cast<int>(world.options.seed % 2), 3.0);
    if (world.dictionary.NumberOfSequences() < before) ++stale;
  });

  EXPECT_GT(stale, 50U) << "hardly any world lost a sequence";
  EXPECT_GT(seen.proposals, 500U);
}

TEST(Explanation, WithoutAHistoryIsWhatIsPopularInRandomWorlds) {
  std::size_t proposed = 0;
  for (std::uint32_t seed = 1; seed <= 150; ++seed) {
    const World world = randomWorld(seed);
    const std::vector<Advice> popular = futureItems(world.dictionary, {}, kAll);
    const auto customers = countOf(world.dictionary, NTSequence());

    for (const Kind kind : kKinds) {
      const std::vector<Proposal> proposals = explained(world.dictionary, History(), kind);
      EXPECT_EQ(winnersOf(proposals), popular) << "seed " << seed;
      EXPECT_EQ(proposals.size(), popular.size()) << "seed " << seed;
      for (const Proposal& proposal : proposals) {
        EXPECT_EQ(proposal.sequence.size(), 0) << "seed " << seed;
        EXPECT_EQ(proposal.count, customers) << "seed " << seed;
        EXPECT_EQ(proposal.together,
                  countOf(world.dictionary, packed(single(proposal.consequent.GetItem()))))
            << "seed " << seed;
      }
      proposed += proposals.size();
    }
  }
  EXPECT_GT(proposed, 500U);
}

// --- By hand -------------------------------------------------------------------------------------

TEST(Explanation, TellsEveryStoredSequenceThatProposesTheItem) {
  const Lattice lattice({{"", 100},
                         {"(1)", 50},
                         {"(2)", 40},
                         {"(3)", 30},
                         {"(1)(2)", 20},
                         {"(2)(3)", 10},
                         {"(1)(2)(3)", 4}});

  const std::vector<Proposal> proposals = explained(lattice, "(1)(2)", Kind::kFuture);

  EXPECT_THAT(texts(proposals), ElementsAre("(2) 40/10 -> 3 wins", "(1)(2) 20/4 -> 3"));
  EXPECT_EQ(adviceOf(proposals[0]), (Advice{3, 0.25, 0.1, 10.0 / 30.0}));
  EXPECT_EQ(adviceOf(proposals[1]), (Advice{3, 0.2, 0.04, 4.0 / 30.0}));
}

TEST(Explanation, ItemsStandByTheirWinnersAndTheLargerFirstAmongEquals) {
  const Lattice lattice(
      {{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(3)", 8}, {"(1)(1)", 6}, {"(1)(2)", 4}, {"(1)(3)", 4}});

  EXPECT_THAT(texts(explained(lattice, "(1)", Kind::kFuture)),
              ElementsAre("(1) 8/6 -> 1 wins", "(1) 8/4 -> 3 wins", "(1) 8/4 -> 2 wins"));
}

TEST(Explanation, AtEqualConfidenceTheLargerSupportWins) {
  const Lattice lattice(
      {{"", 100}, {"(1)", 50}, {"(2)", 20}, {"(3)", 50}, {"(1)(3)", 25}, {"(2)(3)", 10}});

  for (const char* customer : {"(1)(2)", "(2)(1)"}) {
    const auto proposals = explained(lattice, customer, Kind::kFutureOfBeginnings);
    ASSERT_EQ(proposals.size(), 2U) << customer;
    EXPECT_EQ(setsOf(proposals[0].sequence), single(1)) << customer;
    EXPECT_EQ(setsOf(proposals[1].sequence), single(2)) << customer;
  }
}

TEST(Explanation, AtEqualConfidenceAndSupportTheFirstFoundWins) {
  const Lattice lattice(
      {{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(3)", 8}, {"(1)(3)", 4}, {"(2)(3)", 4}});

  EXPECT_THAT(texts(explained(lattice, "(1)(2)", Kind::kFutureOfBeginnings)),
              ElementsAre("(2) 8/4 -> 3 wins", "(1) 8/4 -> 3 skipping 1"));
  EXPECT_THAT(texts(explained(lattice, "(2)(1)", Kind::kFutureOfBeginnings)),
              ElementsAre("(1) 8/4 -> 3 wins", "(2) 8/4 -> 3 skipping 1"));
}

TEST(Explanation, CurrentItemsJoinTheLastSet) {
  const Lattice lattice({{"", 100},
                         {"(1)", 50},
                         {"(2)", 40},
                         {"(3)", 20},
                         {"(1 2)", 10},
                         {"(3)(1)", 10},
                         {"(3)(1 2)", 5}});

  EXPECT_THAT(texts(explained(lattice, "(3)(1)", Kind::kCurrent)),
              ElementsAre("(3)(1) 10/5 -> 2 joins wins", "(1) 50/10 -> 2 joins"));
  EXPECT_THAT(explained(lattice, "(3)(1)", Kind::kFuture), IsEmpty());
}

TEST(Explanation, ANullHistoryAsksForWhatIsPopular) {
  const Lattice lattice({{"", 10}, {"(1)", 4}, {"(2)", 8}, {"(3)", 4}, {"(1)(2)", 2}});

  for (const auto& proposals :
       {explainCurrentItems(lattice, nullptr), explainFutureItems(lattice, nullptr, true),
        explainFutureItems(lattice, nullptr, false), explained(lattice, "", Kind::kCurrent)})
    EXPECT_THAT(texts(proposals), ElementsAre("popular 10/8 -> 2 wins", "popular 10/4 -> 3 wins",
                                              "popular 10/4 -> 1 wins"));
}

TEST(Explanation, AHistoryOfNothingKnownHasNone) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(1)", 4}, {"(9)(9)(9)", 1}});

  for (const Kind kind : kKinds) {
    EXPECT_THAT(explained(lattice, "()", kind), IsEmpty());
    EXPECT_THAT(explained(lattice, "(7)(8)", kind), IsEmpty());
  }
}

TEST(Explanation, WithoutCustomersIsEmpty) {
  for (const std::optional<int> customers : {std::optional<int>(0), std::optional<int>()}) {
    const Lattice lattice({{"", customers}, {"(1)", 8}, {"(1)(1)", 4}, {"(1 2)", 4}});
    for (const Kind kind : kKinds) {
      EXPECT_THAT(explained(lattice, "(1)", kind), IsEmpty());
      EXPECT_THAT(explained(lattice, "", kind), IsEmpty());
    }
  }
}

TEST(Explanation, TheCauseIsZeroWhenTheItemAloneIsNotStored) {
  const Lattice lattice({{"", 10}, {"(1)", 8}, {"(1)(2)", 4}});

  const auto proposals = explained(lattice, "(1)", Kind::kFuture);

  ASSERT_EQ(proposals.size(), 1U);
  EXPECT_EQ(adviceOf(proposals[0]), (Advice{2, 0.5, 0.4, 0.0}));
}

// A cancelled lattice answers GetFutureItems with a status; an explanation is never cut short.
TEST(Explanation, IsNotAffectedByTheCancelFlag) {
  Lattice lattice({{"", 10}, {"(1)", 8}, {"(2)", 8}, {"(1)(2)", 4}});
  lattice.setCancel();

  EXPECT_THAT(texts(explained(lattice, "(1)", Kind::kFutureOfBeginnings)),
              ElementsAre("(1) 8/4 -> 2 wins"));
}

}  // namespace

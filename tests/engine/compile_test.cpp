// What compile() makes of a dictionary, part by part, on lattices small enough to write down.
// Longer than other sources: most of it is what is written down.

#include "engine/compile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "engine/Recommender.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using orbseq::engine::Climb;
using orbseq::engine::compile;
using orbseq::engine::CompiledLattice;
using orbseq::engine::ItemId;
using orbseq::engine::kClimbsToJoining;
using orbseq::engine::kClimbsToOpening;
using orbseq::engine::kIsOpening;
using orbseq::engine::kJoining;
using orbseq::engine::kMostItems;
using orbseq::engine::kNone;
using orbseq::engine::kOpening;
using orbseq::engine::kStartsJoining;
using orbseq::engine::kStartsOpening;
using orbseq::engine::kStranger;
using orbseq::engine::Node;
using orbseq::engine::NodeId;
using orbseq::engine::Proposal;

using Texts = std::vector<std::string>;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

// The item of that number, with kStranger where it is not stored alone, and without other marks.
std::uint32_t found(const CompiledLattice& lattice, std::int32_t number) {
  return lattice.find(number) & (kStranger | kMostItems);
}

// The marks of the item of that number.
std::uint32_t marksOf(const CompiledLattice& lattice, std::int32_t number) {
  return lattice.find(number) & ~kMostItems;
}

std::string climbsText(const CompiledLattice& lattice, std::uint32_t begin, std::uint32_t end) {
  std::string text;
  for (const Climb* climb = lattice.climbs() + begin; climb != lattice.climbs() + end; ++climb)
    text += " " + std::to_string(lattice.item(climb->item).number) + ">" +
            std::to_string(climb->node()) + ((climb->marked & kJoining) != 0 ? "w" : "") +
            ((climb->marked & kOpening) != 0 ? "t" : "");
  return text;
}

std::string proposalsText(const CompiledLattice& lattice, std::uint32_t begin, std::uint32_t end) {
  std::string text;
  for (const Proposal* one = lattice.proposals() + begin; one != lattice.proposals() + end; ++one)
    text += " " + std::to_string(lattice.item(one->item).number) + "#" + std::to_string(one->count);
  return text;
}

// A line for each node: its count and its number of sets, "+" where sets grow above it, then what
// is not empty of its runs: front, the climbs that open a set; join, those that join the first,
// with "w" and "t" where they lead to proposals of the two kinds; with, the proposals that join the
// last set; then, those that open a new one.
Texts nodesOf(const CompiledLattice& lattice) {
  Texts nodes;
  for (NodeId id = 0; id < lattice.nodeCount(); ++id) {
    const Node* const node = lattice.node(id);
    std::string line = std::to_string(node->count) + "/" + std::to_string(lattice.setsOf(id)) +
                       (lattice.growsAbove(id) ? "+" : "");
    const std::vector<std::pair<const char*, std::string>> runs = {
        {" front", climbsText(lattice, node[0].climbs, node[0].joins)},
        {" join", climbsText(lattice, node[0].joins, node[1].climbs)},
        {" with", proposalsText(lattice, node[0].proposals, node[0].opens)},
        {" then", proposalsText(lattice, node[0].opens, node[1].proposals)}};
    for (const auto& [name, run] : runs)
      if (!run.empty()) line += name + run;
    nodes.push_back(line);
  }
  return nodes;
}

Items popularOf(const CompiledLattice& lattice) {
  Items numbers;
  for (const ItemId id : lattice.popular()) numbers.push_back(lattice.item(id).number);
  return numbers;
}

std::map<std::string, std::size_t> sectionsOf(const CompiledLattice& lattice) {
  std::map<std::string, std::size_t> sections;
  for (const auto& [name, bytes] : lattice.bytesBySection()) sections[name] = bytes;
  return sections;
}

std::vector<std::byte> bytesOf(const CompiledLattice& lattice) {
  return {lattice.image().begin(), lattice.image().end()};
}

// A link as it stands in a dictionary, whether or not it leads anywhere.
struct StoredLink {
  const char* sequence;
  int item;
  int position;
};

CompiledLattice compiled(const std::vector<Count>& counts, const std::vector<StoredLink>& links) {
  SequenceDictionary dictionary(smallTables(6));
  for (const Count& count : counts) store(dictionary, history(count.sequence), count.count);
  for (const StoredLink& link : links) {
    const NTSequence key = packed(link.sequence);
    dictionary.getDescriptor(&key)->addAdjacentItem(link.item, link.position);
  }
  return compile(dictionary);
}

CompiledLattice compiled(const std::vector<Count>& counts, int levels = 6) {
  return compile(Lattice(counts, levels));
}

CompiledLattice ofItems(const Items& items) {
  SequenceDictionary dictionary(smallTables(4));
  store(dictionary, {}, 9);
  for (const int item : items) store(dictionary, single(item), 3);
  return compile(dictionary);
}

TEST(Compile, NodesStandLevelByLevelWithTheirRuns) {
  const CompiledLattice lattice = compiled({{"", 10},
                                            {"(1)", 8},
                                            {"(2)", 5},
                                            {"(1)(2)", 3},
                                            {"(2)(2)", 2},
                                            {"(1 2)", 4},
                                            {"(1)(1 2)", 1},
                                            {"(1 2)(2)", 1}});

  // What leads to no proposal is not climbed to: (2)(2), (1)(1 2) and (1 2)(2).
  EXPECT_EQ(nodesOf(lattice), (Texts{
                                  "8/1+ join 2>2t with 2#4 then 2#3",             // (1)
                                  "5/1+ front 1>3w join 1>2t with 1#4 then 2#2",  // (2)
                                  "4/1 then 2#1",                                 // (1 2)
                                  "3/2 with 1#1",                                 // (1)(2)
                                  "2/2",                                          // (2)(2)
                                  "1/2",                                          // (1)(1 2)
                                  "1/2",                                          // (1 2)(2)
                              }));
  EXPECT_EQ(lattice.customers(), 10);
  EXPECT_TRUE(lattice.hasJoins());
  EXPECT_FALSE(lattice.hasStrangers());
}

TEST(Compile, LevelsTellWhereTheSequencesOfSoManyItemsStand) {
  const CompiledLattice lattice =
      compiled({{"", 9}, {"(1)", 5}, {"(2)", 4}, {"(1)(2)", 3}, {"(1)(2)(2)", 1}});

  using Level = std::pair<NodeId, NodeId>;
  EXPECT_EQ(lattice.level(0), (Level{0, 0}));
  EXPECT_EQ(lattice.level(1), (Level{0, 2}));
  EXPECT_EQ(lattice.level(2), (Level{2, 3}));
  EXPECT_EQ(lattice.level(3), (Level{3, 4}));
  EXPECT_EQ(lattice.level(4), (Level{4, 4}));
  EXPECT_EQ(lattice.level(32), (Level{4, 4}));
  EXPECT_EQ(lattice.level(33), (Level{4, 4}));
}

TEST(Compile, ClimbsStandByItemAndProposalsByCountThenGreaterItemFirst) {
  const CompiledLattice lattice = compiled(
      {{"", 20},         {"(1)", 9},       {"(2)", 9},       {"(3)", 9},       {"(4)", 9},
       {"(4)(1)", 2},    {"(2)(1)", 7},    {"(3)(1)", 5},    {"(1)(2)", 3},    {"(1)(3)", 6},
       {"(1)(4)", 3},    {"(1)(1)", 3},    {"(1 2)", 1},     {"(1 4)", 4},     {"(1 3)", 1},
       {"(1)(1)(4)", 1}, {"(2)(1)(4)", 1}, {"(3)(1)(4)", 1}, {"(4)(1)(4)", 1}, {"(1 2)(4)", 1},
       {"(1 3)(4)", 1},  {"(1 4)(4)", 1}});

  EXPECT_EQ(nodesOf(lattice)[0],
            "9/1+ front 1>4t 2>5t 3>6t 4>7t join 2>8t 3>9t 4>10t with 4#4 3#1 2#1 then 3#6 4#3 2#3 "
            "1#3");
}

TEST(Compile, GrowthIsSeenThroughClimbsThatOpenSets) {
  // Only (1 2)(3)(3) joins, two climbs above (3).
  const CompiledLattice lattice = compiled({{"", 9},
                                            {"(1)", 8},
                                            {"(2)", 7},
                                            {"(3)", 6},
                                            {"(3)(3)", 5},
                                            {"(2)(3)(3)", 4},
                                            {"(1 2)(3)(3)", 3},
                                            {"(1 2)(3)(3)(1)", 1}});

  // What has links goes first in its level.
  EXPECT_EQ(nodesOf(lattice), (Texts{"6/1+ front 3>3t then 3#5", "8/1", "7/1", "5/2+ front 2>4t",
                                     "4/3+ join 1>5t", "3/3 then 1#1", "1/4"}));
}

TEST(Compile, WithoutItemSetsOfSeveralNothingJoinsOrGrows) {
  const CompiledLattice lattice = compiled({{"", 9}, {"(1)", 8}, {"(1)(1)", 5}, {"(1)(1)(1)", 2}});

  EXPECT_EQ(nodesOf(lattice), (Texts{"8/1 front 1>1t then 1#5", "5/2 then 1#2", "2/3"}));
  EXPECT_FALSE(lattice.hasJoins());
}

TEST(Compile, LinksInTheMiddleAreDropped) {
  const CompiledLattice lattice =
      compiled({{"", 9},
                {"(1)", 8},
                {"(2)", 7},
                {"(3)", 7},
                {"(1)(3)", 6},
                {"(1)(2)(3)", 4},
                {"(1 2)(3)", 3},
                {"(1 2)(3)(3)", 1}},
               {{"(1)(3)", 2, 3}, {"(1)(3)", 2, 0}, {"(1 2)(3)", 3, 5}});

  // 2 joins the first set, which is a climb, and opens one between the two, which is nothing.
  EXPECT_EQ(nodesOf(lattice)[3], "6/2+ join 2>4t");
}

TEST(Compile, StaleLinksAndThoseToSequencesWithoutCounterAreDropped) {
  const CompiledLattice lattice = compiled({{"", 9},
                                            {"(1)", 8},
                                            {"(2)", 7},
                                            {"(1)(1)", {}},
                                            {"(1)(2)", 3},
                                            {"(1)(1)(1)", 1},
                                            {"(1)(2)(2)", 1}},
                                           {{"(1)(2)", 2, 5},
                                            {"(1)", 1, 1},
                                            {"(1)", 1, 3},
                                            {"(1)", 2, 0},
                                            {"(1)", 2, 3},
                                            {"(1)", 7, 3},
                                            {"(2)", 1, 1}});

  EXPECT_EQ(nodesOf(lattice),
            (Texts{"8/1 then 2#3", "7/1 front 1>2t", "3/2 then 2#1", "1/3", "1/3"}));
  EXPECT_EQ(lattice.find(7), kNone);
}

TEST(Compile, ClimbsByItemsThatAreNotStoredAloneAreDroppedAndTheirProposalsKept) {
  const CompiledLattice lattice = compiled(
      {{"", 9}, {"(1)", 8}, {"(1)(5)", 4}, {"(5)(1)", 3}, {"(1)(5)(1)", 2}, {"(1)(5)(1)(1)", 1}});

  const Texts nodes = nodesOf(lattice);
  ASSERT_EQ(nodes.size(), 5U);
  EXPECT_EQ(nodes[0], "8/1 then 5#4");
  EXPECT_THAT((Texts{nodes[1], nodes[2]}),
              testing::UnorderedElementsAre("4/2 then 1#2",      // (1)(5)
                                            "3/2 front 1>3t"));  // (5)(1)
}

TEST(Compile, ASequenceThatNobodyHoldsClimbsAndProposesNothing) {
  const CompiledLattice lattice =
      compiled({{"", 9},
                {"(1)", 0},
                {"(2)", 5},
                {"(2)(1)", 3},
                {"(1)(2)", 3},
                {"(2)(2)(1)", 2},
                {"(2)(1)(2)", 2}},
               {{"(2)(1)", 2, 5}, {"(1)", 2, 1}, {"(1)", 2, 3}, {"(2)", 1, 3}});

  // Nor is an item proposed that nobody holds alone.
  EXPECT_EQ(nodesOf(lattice),
            (Texts{"0/1 front 2>2t", "5/1", "3/2 then 2#2", "3/2", "2/3", "2/3"}));
}

TEST(Compile, WithoutCustomersNothingIsProposedAndNothingIsPopular) {
  const CompiledLattice lattice = compiled({{"", 0}, {"(1)", 8}, {"(1)(1)", 5}, {"(1)(1)(1)", 2}});

  EXPECT_EQ(nodesOf(lattice), (Texts{"8/1", "5/2", "2/3"}));
  EXPECT_EQ(lattice.customers(), 0);
  EXPECT_TRUE(lattice.popular().empty());
}

TEST(Compile, WhereTheLongestSequenceHasTwoItemsNothingClimbs) {
  const CompiledLattice lattice =
      compiled({{"", 9}, {"(1)", 8}, {"(2)", 6}, {"(1)(2)", 4}, {"(1 2)", 3}});

  const Texts nodes = nodesOf(lattice);
  ASSERT_EQ(nodes.size(), 4U);
  EXPECT_EQ(nodes[0], "8/1 with 2#3 then 2#4");
  EXPECT_EQ(nodes[1], "6/1 with 1#3");
  // In the order of the table, since no climb reaches them.
  EXPECT_THAT((Texts{nodes[2], nodes[3]}), testing::UnorderedElementsAre("4/2", "3/1"));
  EXPECT_FALSE(lattice.hasJoins());
  EXPECT_EQ(sectionsOf(lattice)["climbs"], 0U);
}

TEST(Compile, AStrangerIsFoundAsOneAndAnItemWithoutCounterIsNone) {
  const CompiledLattice lattice =
      compiled({{"", 9}, {"(1)", 8}, {"(3)", {}}, {"(1)(5)", 4}, {"(1)(3)", 2}});

  EXPECT_TRUE(lattice.hasStrangers());
  EXPECT_EQ(lattice.itemCount(), 3U);
  EXPECT_EQ(found(lattice, 1), 0U);
  EXPECT_EQ(found(lattice, 3), 1U);
  EXPECT_EQ(found(lattice, 5), 2U + kStranger);
  EXPECT_EQ(lattice.item(0).node, 0U);
  EXPECT_EQ(lattice.item(0).count, 8);
  EXPECT_EQ(lattice.item(1).node, kNone);
  EXPECT_TRUE(lattice.item(1).isKnown());
  EXPECT_EQ(lattice.item(2).node, kNone);
  EXPECT_FALSE(lattice.item(2).isKnown());
  EXPECT_EQ(popularOf(lattice), Items{1});
}

TEST(Compile, ItemsAreMarkedByWhatQuestionsNeedThemFor) {
  // (2)(3) proposes 4 to open, and is climbed to by 2, from 3; (1) is joined by 5.
  const CompiledLattice lattice = compiled({{"", 9},
                                            {"(1)", 8},
                                            {"(2)", 8},
                                            {"(3)", 8},
                                            {"(4)", 8},
                                            {"(5)", 8},
                                            {"(6)", 8},
                                            {"(1 5)", 3},
                                            {"(2)(3)", 4},
                                            {"(2)(3)(4)", 2}});

  EXPECT_EQ(marksOf(lattice, 1), kStartsJoining);
  EXPECT_EQ(marksOf(lattice, 2), kClimbsToOpening | kStartsOpening);  // 3 follows it
  EXPECT_EQ(marksOf(lattice, 3), kStartsOpening | kIsOpening);
  EXPECT_EQ(marksOf(lattice, 4), kIsOpening);
  EXPECT_EQ(marksOf(lattice, 5), kStartsJoining);
  EXPECT_EQ(marksOf(lattice, 6), 0U);
}

TEST(Compile, AnItemByWhichClimbsGoToWhatJoinsIsMarkedSo) {
  // 3 climbs to (2)(3), which 4 joins.
  const CompiledLattice lattice =
      compiled({{"", 9}, {"(2)", 8}, {"(3)", 8}, {"(4)", 8}, {"(2)(3)", 4}, {"(2)(3 4)", 2}});

  EXPECT_EQ(marksOf(lattice, 2) & (kClimbsToJoining | kClimbsToOpening), kClimbsToJoining);
  EXPECT_EQ(marksOf(lattice, 3) & (kClimbsToJoining | kStartsJoining), kStartsJoining);
}

TEST(Compile, AStrangerIsFoundWithoutTheLookUpToo) {
  const CompiledLattice lattice = compiled({{"", 9}, {"(1)", 8}, {"(1)(2000000000)", 4}});

  EXPECT_EQ(sectionsOf(lattice)["lookup"], 0U);
  EXPECT_EQ(found(lattice, 2'000'000'000), 1U + kStranger);
  EXPECT_EQ(lattice.find(1'999'999'999), kNone);
}

TEST(Compile, PopularItemsStandByCustomersThenGreaterItemFirst) {
  EXPECT_EQ(popularOf(compiled({{"", 9}, {"(1)", 3}, {"(2)", 8}, {"(3)", 3}, {"(4)", 0}})),
            (Items{2, 3, 1, 4}));
}

TEST(Compile, ItemsSideBySideAreLookedUp) {
  const CompiledLattice lattice = ofItems({-3, -1, 2});

  EXPECT_EQ(sectionsOf(lattice)["lookup"], 6 * sizeof(ItemId));
  EXPECT_EQ(found(lattice, -3), 0U);
  EXPECT_EQ(found(lattice, -1), 1U);
  EXPECT_EQ(found(lattice, 2), 2U);
  for (const std::int32_t other : {kLeast, -4, -2, 0, 1, 3, kGreatest})
    EXPECT_EQ(lattice.find(other), kNone) << other;
}

TEST(Compile, ItemsFarApartAreSearched) {
  const CompiledLattice lattice = ofItems({kLeast, -7, 0, 12, kGreatest});

  EXPECT_EQ(sectionsOf(lattice)["lookup"], 0U);
  EXPECT_EQ(found(lattice, kLeast), 0U);
  EXPECT_EQ(found(lattice, -7), 1U);
  EXPECT_EQ(found(lattice, 0), 2U);
  EXPECT_EQ(found(lattice, 12), 3U);
  EXPECT_EQ(found(lattice, kGreatest), 4U);
  for (const std::int32_t other : {kLeast + 1, -8, -6, 1, 13, kGreatest - 1})
    EXPECT_EQ(lattice.find(other), kNone) << other;
}

TEST(Compile, TheLookUpWorksAtBothEndsOfTheNumbers) {
  const CompiledLattice low = ofItems({kLeast, kLeast + 2});
  const CompiledLattice high = ofItems({kGreatest - 2, kGreatest});

  EXPECT_EQ(sectionsOf(low)["lookup"], 3 * sizeof(ItemId));
  EXPECT_EQ(found(low, kLeast), 0U);
  EXPECT_EQ(low.find(kLeast + 1), kNone);
  EXPECT_EQ(found(low, kLeast + 2), 1U);
  EXPECT_EQ(low.find(kGreatest), kNone);
  EXPECT_EQ(found(high, kGreatest), 1U);
  EXPECT_EQ(high.find(kGreatest - 1), kNone);
  EXPECT_EQ(high.find(kLeast), kNone);
}

TEST(Compile, TheLookUpEndsAtItsLimit) {
  EXPECT_EQ(sectionsOf(ofItems({0, 65535}))["lookup"], 65536 * sizeof(ItemId));
  EXPECT_EQ(sectionsOf(ofItems({0, 65536}))["lookup"], 0U);
  EXPECT_EQ(found(ofItems({0, 65536}), 65536), 1U);
}

TEST(Compile, AnEmptyDictionaryHasNothingAndAnswersNothing) {
  const CompiledLattice lattice = compile(SequenceDictionary(smallTables(4)));
  const orbseq::engine::Recommender recommender(lattice);
  orbseq::engine::Workspace workspace;
  orbseq::engine::Answers answers;
  orbseq::engine::History asked;
  recommender.currentItems(asked, 5, workspace, answers);
  asked.addSet(Items{1});
  recommender.currentItems(asked, 5, workspace, answers);
  recommender.futureItems(asked, 5, false, workspace, answers);

  EXPECT_EQ(lattice.nodeCount(), 0U);
  EXPECT_EQ(lattice.itemCount(), 0U);
  EXPECT_EQ(lattice.find(0), kNone);
  EXPECT_EQ(lattice.find(1), kNone);
  EXPECT_TRUE(answers.empty());
}

// Sequences of 32 items are stored and proposed, and no search climbs to them.
TEST(Compile, TheLongestSequencesAreProposedAndNotClimbedTo) {
  SequenceDictionary dictionary(smallTables(33));
  store(dictionary, {}, 100);
  for (int items = 1; items <= 32; ++items)
    ASSERT_TRUE(store(dictionary, History(static_cast<std::size_t>(items), Items{1}), 90 - items));
  dictionary.buildLattice();

  const CompiledLattice lattice = compile(dictionary);

  const Texts nodes = nodesOf(lattice);
  ASSERT_EQ(nodes.size(), 32U);
  EXPECT_EQ(nodes[0], "89/1 front 1>1t then 1#88");
  EXPECT_EQ(nodes[29], "60/30 front 1>30t then 1#59");
  EXPECT_EQ(nodes[30], "59/31 then 1#58");
  EXPECT_EQ(nodes[31], "58/32");
  EXPECT_EQ(lattice.level(32), (std::pair<NodeId, NodeId>{31, 32}));
}

TEST(Compile, TheSameDictionaryGivesTheSameBytes) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    const World world = randomWorld(seed);
    EXPECT_EQ(bytesOf(compile(world.dictionary)), bytesOf(compile(world.dictionary)))
        << "seed " << seed;
  }
}

TEST(Compile, SectionsFillTheImageUpToTheirAlignment) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    const World world = randomWorld(seed);
    const CompiledLattice lattice = compile(world.dictionary);
    std::size_t end = 0;
    for (const auto& [name, bytes] : lattice.bytesBySection()) end = (end + 63) / 64 * 64 + bytes;
    EXPECT_EQ(end, lattice.image().size()) << "seed " << seed;
  }
}

// Sequences of three items over 40 items, each with a chance, one-item sets and pairs in a set.
TEST(Compile, ALargeLatticeTakesFewBytesASequence) {
  constexpr int kItems = 40;
  SequenceDictionary dictionary(5);
  std::mt19937 random(7);
  std::size_t sequences = 0;
  const auto add = [&](const History& sequence) {
    ++sequences;
    ASSERT_TRUE(store(dictionary, sequence, 1 + static_cast<int>(random() % 900)));
  };
  const auto addByChance = [&](const History& sequence) {
    if (random() % 100 < 90) add(sequence);
  };
  store(dictionary, {}, 1000);
  for (int a = 1; a <= kItems; ++a) {
    add({{a}});
    for (int b = 1; b <= kItems; ++b) {
      add({{a}, {b}});
      if (a < b) add({{a, b}});
      for (int c = 1; c <= kItems; ++c) {
        addByChance({{a}, {b}, {c}});
        if (a < b) addByChance({{a, b}, {c}});
        if (b < c) addByChance({{a}, {b, c}});
      }
    }
  }
  dictionary.buildLattice();

  const CompiledLattice lattice = compile(dictionary);

  ASSERT_GE(sequences, 100'000U);
  EXPECT_EQ(lattice.nodeCount(), sequences);
  std::cout << sequences << " sequences, bytes a sequence:";
  for (const auto& [name, bytes] : lattice.bytesBySection())
    std::cout << ' ' << name << ' ' << static_cast<double>(bytes) / static_cast<double>(sequences);
  std::cout << '\n';
  EXPECT_LT(static_cast<double>(lattice.image().size()) / static_cast<double>(sequences), 64.0);
}

}  // namespace

// Hostile levels, sequences and adjacencies of a lattice document: rows D23 to D38. What is refused
// here is refused by the translator. Documents that are too large to be written down, and the life
// of models, stand in documentModels_test.cpp.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "scoring/hostapi/ScoreModel.h"
#include "tests/hostile/documents.h"

namespace {

using OrbScore::ScoreModel;
using orbseq::test::at;
using orbseq::test::Edit;
using orbseq::test::edited;
using orbseq::test::expectModel;
using orbseq::test::expectRefused;
using orbseq::test::expectSoundAnswers;
using orbseq::test::RefusedRow;
using orbseq::test::smallDocument;
using test::Answer;
using test::ask;
using test::Mode;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

// The text of the small document from `first` up to `last`.
std::string between(const std::string& first, const std::string& last) {
  const std::string text = smallDocument();
  const std::size_t begin = text.find(first);
  return text.substr(begin, text.find(last, begin) - begin);
}

class HostileLattice : public testing::TestWithParam<RefusedRow> {};

TEST_P(HostileLattice, IsRefusedWithItsPlace) { expectRefused(GetParam()); }

const std::string kMaxSize = at("/SeqInputStats/@maxSequenceSize", 6);
const std::string kTwoSets = "occurrence=\"2\" numberOfSets=\"2\"";

const RefusedRow kSequences[] = {
    {"D26EmptySetInASequence",
     {{"<Itemset id=\"1\" numberOfItems=\"1\"", "<Itemset id=\"1\" numberOfItems=\"0\""}},
     at("/LatticeLevel[2]/Sequence[1]/ItemsetRef[1]/@itemsetRef", 16, 64) +
         "empty item set in a sequence"},
    {"D28NegativeNumberOfSets",
     {{kTwoSets, "occurrence=\"2\" numberOfSets=\"-1\""}},
     at("/LatticeLevel[3]/Sequence[2]/@numberOfSets", 21) + "-1 is outside 0..2147483647"},
    {"D28MoreSetsThanChildren",
     {{kTwoSets, "occurrence=\"2\" numberOfSets=\"4\""}},
     at("/LatticeLevel[3]/Sequence[2]/@numberOfSets", 21) + "announces 4, 3 present"},
    {"D28FarTooManySets",
     {{kTwoSets, "occurrence=\"2\" numberOfSets=\"2147483647\""}},
     at("/LatticeLevel[3]/Sequence[2]/@numberOfSets", 21) + "announces 2147483647, 3 present"},
    {"D28ItemsetRefZero",
     {{"itemsetRef=\"3\"", "itemsetRef=\"0\""}},
     at("/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", 20, 64) + "0 is outside 1..3"},
    {"D28ItemsetRefMinusOne",
     {{"itemsetRef=\"3\"", "itemsetRef=\"-1\""}},
     at("/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", 20, 64) + "-1 is outside 1..3"},
    {"D28SequenceWithoutNumberOfSets",
     {{" numberOfSets=\"0\"", ""}},
     at("/LatticeLevel[1]/Sequence[1]/@numberOfSets", 13) + "attribute missing"},
    {"D28ItemsetRefWithoutReference",
     {{"<ItemsetRef itemsetRef=\"3\"/>", "<ItemsetRef/>"}},
     at("/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", 20, 64) + "attribute missing"},
    {"D28ItemsetRefTooLarge",
     {{"itemsetRef=\"3\"", "itemsetRef=\"4\""}},
     at("/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", 20, 64) + "4 is outside 1..3"},
};
INSTANTIATE_TEST_SUITE_P(Sequences, HostileLattice, testing::ValuesIn(kSequences),
                         [](const auto& row) { return row.param.name; });

const std::string kLevelOne = "<LatticeLevel level=\"1\" numberOfSequences=\"2\"";
const std::string kLevelOneCount = at("/LatticeLevel[2]/@numberOfSequences", 15);
const std::string kSecondSequence = between("<Sequence id=\"3\"", "</LatticeLevel>");

const RefusedRow kLevels[] = {
    {"D29MaxSequenceSizeMinusTwo",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"-2\""}},
     kMaxSize + "-2 is outside -1..2147483647"},
    {"D29LargestMaxSequenceSize",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"2147483647\""}},
     kMaxSize + "announces 2147483648, 4 present: LatticeLevel 5 of 2147483648 missing"},
    {"D31FewerLevelsThanAnnounced",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"4\""}},
     kMaxSize + "announces 5, 4 present: LatticeLevel 5 of 5 missing"},
    {"D32NegativeLevel",
     {{"level=\"3\"", "level=\"-1\""}},
     at("/LatticeLevel[4]/@level", 23) + "-1 is outside 0..3"},
    {"D32LevelTooHigh",
     {{"level=\"3\"", "level=\"4\""}},
     at("/LatticeLevel[4]/@level", 23) + "4 is outside 0..3"},
    {"D32LevelWithoutLevel",
     {{"<LatticeLevel level=\"0\" ", "<LatticeLevel "}},
     at("/LatticeLevel[1]/@level", 12) + "attribute missing"},
    {"D33LevelWithoutNumberOfSequences",
     {{"<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>", "<LatticeLevel level=\"3\"/>"}},
     at("/LatticeLevel[4]/@numberOfSequences", 23) + "attribute missing"},
    {"D32LevelTwice",
     {{"level=\"3\"", "level=\"2\""}},
     at("/LatticeLevel[4]/@level", 23) + "duplicate level 2"},
    {"D32Gap",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"2\""},
      {"<LatticeLevel level=\"2\"", "<LatticeLevel level=\"3\""}},
     at("/LatticeLevel[3]/@level", 19) + "3 is outside 0..2"},
    {"D33NegativeNumberOfSequences",
     {{kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"-1\""}},
     kLevelOneCount + "-1 is outside 0..2147483647"},
    {"D33SequencesBeyondTheLargestTable",
     {{kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"1431655766\""}},
     kLevelOneCount + "announces 1431655766, 2 present"},
    {"D33FarTooManySequences",
     {{kSecondSequence, ""},
      {kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"2147483647\""}},
     kLevelOneCount + "announces 2147483647, 1 present"},
};
INSTANTIATE_TEST_SUITE_P(Levels, HostileLattice, testing::ValuesIn(kLevels),
                         [](const auto& row) { return row.param.name; });

const std::string kFirstList = "/LatticeLevel[2]/Sequence[1]/SeqAdjacentList[1]";
const std::string kSecondPosition = at(kFirstList + "/AdjacentItem[2]/@position", 16, 175);

const RefusedRow kAdjacencies[] = {
    {"D35ListMissing",
     {{"<ItemsetRef itemsetRef=\"3\"/><SeqAdjacentList numberOfAdjacentItems=\"0\"/>",
       "<ItemsetRef itemsetRef=\"3\"/>"}},
     at("/LatticeLevel[3]/Sequence[1]", 20) + "list of adjacent items missing"},
    {"D35NegativeNumberOfItems",
     {{"numberOfSets=\"1\"><ItemsetRef itemsetRef=\"1\"/><SeqAdjacentList "
       "numberOfAdjacentItems=\"2\"",
       "numberOfSets=\"1\"><ItemsetRef itemsetRef=\"1\"/><SeqAdjacentList "
       "numberOfAdjacentItems=\"-1\""}},
     at(kFirstList + "/@numberOfAdjacentItems", 16, 92) + "-1 is outside 0..2147483647"},
    {"D35MoreItemsThanChildren",
     {{"numberOfAdjacentItems=\"2\"", "numberOfAdjacentItems=\"3\""}},
     at("/LatticeLevel[1]/Sequence[1]/SeqAdjacentList[1]/@numberOfAdjacentItems", 13, 63) +
         "announces 3, 2 present"},
    {"D35ListWithoutNumberOfItems",
     {{"<SeqAdjacentList numberOfAdjacentItems=\"0\"/>", "<SeqAdjacentList/>"}},
     at("/LatticeLevel[3]/Sequence[1]/SeqAdjacentList[1]/@numberOfAdjacentItems", 20, 92) +
         "attribute missing"},
    {"D35ItemWithoutPosition",
     {{"<AdjacentItem itemRef=\"2\" position=\"3\"/>", "<AdjacentItem itemRef=\"2\"/>"}},
     kSecondPosition + "attribute missing"},
    {"D36ItemWithoutReference",
     {{"<AdjacentItem itemRef=\"2\" position=\"3\"/>", "<AdjacentItem position=\"3\"/>"}},
     at(kFirstList + "/AdjacentItem[2]/@itemRef", 16, 175) + "attribute missing"},
    {"D35NegativePosition",
     {{"position=\"3\"", "position=\"-1\""}},
     kSecondPosition + "-1 is outside 0..3"},
    {"D35PositionAboveTheLargest",
     {{"position=\"3\"", "position=\"4\""}},
     kSecondPosition + "4 is outside 0..3"},
    {"D35LargestPosition",
     {{"position=\"3\"", "position=\"2147483647\""}},
     kSecondPosition + "2147483647 is outside 0..3"},
    {"D35PositionJoinsNoSet",
     {{"position=\"3\"", "position=\"2\""}},
     kSecondPosition + "2 names no extension of a sequence of 1 item sets (allowed: 0..1, 3)"},
    {"D36AdjacentItemZero",
     {{"itemRef=\"2\" position=\"3\"", "itemRef=\"0\" position=\"3\""}},
     at(kFirstList + "/AdjacentItem[2]/@itemRef", 16, 175) + "0 is outside 1..2 and not -1"},
    {"D36AdjacentItemTooLarge",
     {{"itemRef=\"2\" position=\"3\"", "itemRef=\"3\" position=\"3\""}},
     at(kFirstList + "/AdjacentItem[2]/@itemRef", 16, 175) + "3 is outside 1..2 and not -1"},
    {"D37SequenceWithoutOccurrence",
     {{" occurrence=\"10\"", ""}},
     at("/LatticeLevel[1]/Sequence[1]/@occurrence", 13) + "attribute missing"},
    {"D37NegativeOccurrence",
     {{"occurrence=\"8\"", "occurrence=\"-5\""}},
     at("/LatticeLevel[2]/Sequence[1]/@occurrence", 16) + "-5 is outside 0..2147483647"},
};
INSTANTIATE_TEST_SUITE_P(Adjacencies, HostileLattice, testing::ValuesIn(kAdjacencies),
                         [](const auto& row) { return row.param.name; });

// --- What loads ----------------------------------------------------------------------------------

struct Question {
  std::string history;
  Mode mode;
  std::vector<Answer> answers;
};

struct LoadedRow {
  const char* name;
  std::vector<Edit> edits;
  std::vector<Question> questions;
};
void PrintTo(const LoadedRow& row, std::ostream* os) { *os << row.name; }

class HostileLatticeLoads : public testing::TestWithParam<LoadedRow> {};

TEST_P(HostileLatticeLoads, AndAnswers) {
  expectModel(smallDocument(GetParam().edits), [](const ScoreModel& model) {
    for (const auto& [history, mode, answers] : GetParam().questions)
      EXPECT_EQ(ask(model, history, mode), answers) << history;
    expectSoundAnswers(model, {"", "(1)", "(7)", "(9)", "(7 9)", "(7)(9)", "(9)(7)", "()",
                               "(4294967291)", "(2147483648)", "(2147483647)"});
  });
}

const Answer kNineNow = {9, 0.5, 0.4, 0.8};
const Answer kNineLater = {9, 0.25, 0.2, 0.4};
const std::string kSetOne = "<Itemset id=\"1\" numberOfItems=\"1\"><ItemRef itemRef=\"1\"/>";
const std::string kTopLevel = "<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>";

const std::string kLevelZeroText =
    between("<LatticeLevel level=\"0\"", "<LatticeLevel level=\"1\"");
const std::string kLevelOneText = between("<LatticeLevel level=\"1\"", "<LatticeLevel level=\"2\"");
const std::string kPairSequence = between("<Sequence id=\"4\"", "<Sequence id=\"5\"");

const LoadedRow kLoadedItems[] = {
    {"D23AnItemTwiceInASetIsHeldOnce",
     {{kSetOne,
       "<Itemset id=\"1\" numberOfItems=\"3\"><ItemRef itemRef=\"1\"/><ItemRef itemRef=\"1\"/>"
       "<ItemRef itemRef=\"1\"/>"}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {kNineLater}}}},
    // Items 1 and 2 are both 7: set 3 is {7}, and of the equal sequences the first stands.
    {"D24TwoItemsOfOneValue",
     {{"value=\"9\"", "value=\"7\""}},
     {{"", Mode::kCurrent, {{7, 0.8, 0.8, 1.0}}},
      {"(7)", Mode::kCurrent, {}},
      {"(7)", Mode::kFuture, {{7, 0.25, 0.2, 0.25}}}}},
    {"D25ValueMinusFive",
     {{"value=\"7\"", "value=\"-5\""}},
     {{"(4294967291)", Mode::kCurrent, {kNineNow}},
      {"", Mode::kFuture, {{-5, 0.8, 0.8, 1.0}, {9, 0.5, 0.5, 1.0}}}}},
    {"D25LowestValue",
     {{"value=\"7\"", "value=\"-2147483648\""}},
     {{"(2147483648)", Mode::kFuture, {kNineLater}},
      {"", Mode::kFuture, {{kLowest, 0.8, 0.8, 1.0}, {9, 0.5, 0.5, 1.0}}}}},
    {"D25LargestValue",
     {{"value=\"9\"", "value=\"2147483647\""}},
     {{"(7)", Mode::kCurrent, {{kHighest, 0.5, 0.4, 0.8}}},
      {"(2147483647)", Mode::kCurrent, {{7, 0.8, 0.4, 0.5}}}}},
};
INSTANTIATE_TEST_SUITE_P(Items, HostileLatticeLoads, testing::ValuesIn(kLoadedItems),
                         [](const auto& row) { return row.param.name; });

const std::string kLevelsAboveZero =
    between("<LatticeLevel level=\"1\"", "</SeqAssociationLattice>");
const std::string kLinksOfLevelZero = between(
    "<SeqAdjacentList numberOfAdjacentItems=\"2\"><AdjacentItem itemRef=\"1\" position=\"1\"",
    "</Sequence>");
const std::vector<Question> kNothing = {{"", Mode::kCurrent, {}},
                                        {"", Mode::kFuture, {}},
                                        {"(7)", Mode::kCurrent, {}},
                                        {"(7)", Mode::kFuture, {}},
                                        {"(7)(9)", Mode::kFutureAllBeginnings, {}}};

const LoadedRow kLoadedLevels[] = {
    {"D29NoLevelIsRead", {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"-1\""}}, kNothing},
    {"D30TheEmptySequenceAlone",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"0\""}, {kLevelsAboveZero, ""}},
     kNothing},
    {"D30TheEmptySequenceAloneWithoutLinks",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"0\""},
      {kLevelsAboveZero, ""},
      {kLinksOfLevelZero, "<SeqAdjacentList numberOfAdjacentItems=\"0\"/>"}},
     kNothing},
    {"D30LevelsBehindTheEmptySequenceAreIgnored",
     {{"maxSequenceSize=\"3\"", "maxSequenceSize=\"0\""}},
     kNothing},
    {"D31ALevelTooManyIsIgnored",
     {{kTopLevel, kTopLevel + "<LatticeLevel level=\"77\" numberOfSequences=\"-4\"/>"}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {kNineLater}}}},
    {"D33ALevelOfNoSequences",
     {{kLevelOneText, "<LatticeLevel level=\"1\" numberOfSequences=\"0\"/>"}},
     {{"(1)", Mode::kCurrent, {}}, {"(7)", Mode::kCurrent, {}}, {"", Mode::kCurrent, {}}}},
    {"D36APrunedAdjacentItemIsSkipped",
     {{"itemRef=\"2\" position=\"3\"", "itemRef=\"-1\" position=\"3\""}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {}}}},
    {"D36WhatIsNotStoredIsSkippedByScoring",
     {{"itemRef=\"2\" position=\"3\"", "itemRef=\"1\" position=\"3\""}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {}}}},
    {"D38EqualSequencesTheFirstStands",
     {{"<LatticeLevel level=\"2\" numberOfSequences=\"2\">",
       "<LatticeLevel level=\"2\" numberOfSequences=\"3\">"},
      {kPairSequence,
       kPairSequence + edited(kPairSequence, {{"occurrence=\"4\"", "occurrence=\"3\""}})}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {kNineLater}}}},
    // The second set of level 2 grows to two items: (7)(7 9) has three and is never looked up
    // there.
    {"D38ThreeItemsInLevelTwo",
     {{"<ItemsetRef itemsetRef=\"1\"/><ItemsetRef itemsetRef=\"2\"/>",
       "<ItemsetRef itemsetRef=\"1\"/><ItemsetRef itemsetRef=\"3\"/>"}},
     {{"(7)", Mode::kCurrent, {kNineNow}}, {"(7)", Mode::kFuture, {}}}},
};
INSTANTIATE_TEST_SUITE_P(Levels, HostileLatticeLoads, testing::ValuesIn(kLoadedLevels),
                         [](const auto& row) { return row.param.name; });

// A zero below a fraction leaves the candidate out, a zero above it gives 0.
const LoadedRow kLoadedCounts[] = {
    {"D37NoCustomers",
     {{"occurrence=\"10\"", "occurrence=\"0\""}},
     {{"(7)", Mode::kCurrent, {}}, {"", Mode::kCurrent, {}}}},
    {"D37ZeroBelow",
     {{"occurrence=\"8\"", "occurrence=\"0\""}},
     {{"(7)", Mode::kCurrent, {}}, {"(7)", Mode::kFuture, {}}}},
    {"D37ZeroAbove",
     {{"occurrence=\"4\"", "occurrence=\"0\""}},
     {{"(7)", Mode::kCurrent, {{9, 0.0, 0.0, 0.0}}}}},
    {"D37LargestAbove",
     {{"occurrence=\"4\"", "occurrence=\"2147483647\""}},
     {{"(7)", Mode::kCurrent, {{9, 268435455.875, 214748364.7, 429496729.4}}}}},
    {"D37LargestBelow",
     {{"occurrence=\"10\"", "occurrence=\"2147483647\""}},
     {{"",
       Mode::kCurrent,
       {{7, 8.0 / 2147483647, 8.0 / 2147483647, 1.0},
        {9, 5.0 / 2147483647, 5.0 / 2147483647, 1.0}}}}},
    {"D37NoEmptySequence",
     {{kLevelZeroText, "<LatticeLevel level=\"0\" numberOfSequences=\"0\"/>"}},
     {{"(7)", Mode::kCurrent, {}}, {"", Mode::kCurrent, {}}}},
};
INSTANTIATE_TEST_SUITE_P(Counts, HostileLatticeLoads, testing::ValuesIn(kLoadedCounts),
                         [](const auto& row) { return row.param.name; });

}  // namespace

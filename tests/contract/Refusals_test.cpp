// Documents that are refused: each with the place and the reason that the error must name.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "host/SafeDocument.h"
#include "scoring/hostapi/QuException.h"
#include "tests/contract/support.h"

namespace {

using test::kSmallDocument;
using test::modelOf;
using test::replaced;
using testing::HasSubstr;

struct Refusal {
  const char* name;
  const char* find;
  const char* with;
  const char* place;   // as the error tells it
  const char* reason;  // as the error tells it
};

void PrintTo(const Refusal& refusal, std::ostream* os) { *os << refusal.name; }

class Refusals : public testing::TestWithParam<Refusal> {};

TEST_P(Refusals, NameThePlaceAndTheReason) {
  const std::string document = replaced(kSmallDocument, GetParam().find, GetParam().with);

  try {
    modelOf(document);
    FAIL() << "accepted";
  } catch (const OrbScore::QuException& refusal) {
    EXPECT_THAT(refusal.what(), HasSubstr(std::string("small.xml: lattice refused: ")));
    EXPECT_THAT(refusal.what(), HasSubstr(GetParam().place));
    EXPECT_THAT(refusal.what(), HasSubstr(GetParam().reason));
    EXPECT_THAT(refusal.what(), testing::Not(HasSubstr("\n")));
  }
}

constexpr const char* kStats = "SeqAssociationLattice/SeqInputStats/@";

const Refusal kStatistics[] = {
    {"NoStatistics", "SeqInputStats", "Statistics", "SeqAssociationLattice",
     "SeqInputStats not found"},
    {"NoNumberOfItems", "numberOfItems=\"2\" numberOfSets", "numberOfSets",
     "SeqInputStats/@numberOfItems", "missing"},
    {"NoNumberOfSets", "numberOfSets=\"3\"", "", "SeqInputStats/@numberOfSets", "missing"},
    {"NoMaxSequenceSize", "maxSequenceSize=\"3\"", "", "SeqInputStats/@maxSequenceSize", "missing"},
    {"NoNumberOfSequences", "numberOfSequences=\"5\"", "", "SeqInputStats/@numberOfSequences",
     "missing"},
    {"WordAsNumber", "numberOfSets=\"3\"", "numberOfSets=\"abc\"", kStats,
     "\"abc\" is not a 32-bit integer"},
    {"EmptyNumber", "numberOfSets=\"3\"", "numberOfSets=\"\"", kStats, "not a 32-bit integer"},
    {"FractionAsNumber", "numberOfSets=\"3\"", "numberOfSets=\"3.0\"", kStats,
     "not a 32-bit integer"},
    {"HexadecimalAsNumber", "numberOfSets=\"3\"", "numberOfSets=\"0x3\"", kStats,
     "not a 32-bit integer"},
    {"PlusSign", "numberOfSets=\"3\"", "numberOfSets=\"+3\"", kStats, "not a 32-bit integer"},
    {"TwoNumbers", "numberOfSets=\"3\"", "numberOfSets=\"3 4\"", kStats, "not a 32-bit integer"},
    {"FullWidthDigit", "numberOfSets=\"3\"", "numberOfSets=\"\xEF\xBC\x93\"", kStats,
     "not a 32-bit integer"},
    {"TooLargeANumber", "numberOfSets=\"3\"", "numberOfSets=\"2147483648\"", kStats, "2147483647"},
    {"NegativeItems", "numberOfItems=\"2\" ", "numberOfItems=\"-1\" ", kStats,
     "-1 is outside 0..2147483647"},
    {"NegativeSets", "numberOfSets=\"3\"", "numberOfSets=\"-1\"", kStats,
     "-1 is outside 0..2147483647"},
    {"FarTooManyItems", "numberOfItems=\"2\" ", "numberOfItems=\"2147483647\" ", kStats,
     "announces 2147483647, 2 present"},
    {"FarTooManySets", "numberOfSets=\"3\"", "numberOfSets=\"2147483647\"", kStats,
     "announces 2147483647, 3 present"},
    {"FarTooManyLevels", "maxSequenceSize=\"3\"", "maxSequenceSize=\"2147483647\"", kStats,
     "announces 2147483648, 4 present"},
    {"LevelsBelowMinusOne", "maxSequenceSize=\"3\"", "maxSequenceSize=\"-2\"", kStats,
     "-2 is outside -1..2147483647"},
    {"OneItemTooFew", "numberOfItems=\"2\" ", "numberOfItems=\"3\" ", kStats,
     "Item 3 of 3 missing"},
    {"OneSetTooFew", "numberOfSets=\"3\"", "numberOfSets=\"4\"", kStats, "Itemset 4 of 4 missing"},
    {"OneLevelTooFew", "maxSequenceSize=\"3\"", "maxSequenceSize=\"4\"", kStats,
     "LatticeLevel 5 of 5 missing"},
};
INSTANTIATE_TEST_SUITE_P(Statistics, Refusals, testing::ValuesIn(kStatistics),
                         [](const auto& it) { return it.param.name; });

const Refusal kItems[] = {
    {"ItemIdZero", "<Item id=\"1\"", "<Item id=\"0\"", "/Item[1]/@id", "0 is outside 1..2"},
    {"ItemIdNegative", "<Item id=\"2\"", "<Item id=\"-1\"", "/Item[2]/@id", "-1 is outside 1..2"},
    {"ItemIdTooLarge", "<Item id=\"2\"", "<Item id=\"3\"", "/Item[2]/@id", "3 is outside 1..2"},
    {"ItemIdTwice", "<Item id=\"2\"", "<Item id=\"1\"", "/Item[2]/@id", "duplicate id 1"},
    {"ItemWithoutValue", "value=\"9\"", "", "/Item[2]/@value", "missing"},
    {"ItemWithoutId", "<Item id=\"2\"", "<Item", "/Item[2]/@id", "missing"},
    {"ItemTooFewForAReference", "numberOfItems=\"2\" ", "numberOfItems=\"1\" ",
     "/Itemset[2]/ItemRef[1]/@itemRef", "2 is outside 1..1"},
    {"SetIdZero", "<Itemset id=\"1\"", "<Itemset id=\"0\"", "/Itemset[1]/@id", "0 is outside 1..3"},
    {"SetIdTwice", "<Itemset id=\"2\"", "<Itemset id=\"1\"", "/Itemset[2]/@id", "duplicate id 1"},
    {"SetIdTooLarge", "<Itemset id=\"3\"", "<Itemset id=\"4\"", "/Itemset[3]/@id",
     "4 is outside 1..3"},
    {"SetOfMinusOneItems", "<Itemset id=\"1\" numberOfItems=\"1\"",
     "<Itemset id=\"1\" numberOfItems=\"-1\"", "/Itemset[1]/@numberOfItems", "-1 is outside"},
    {"SetOfTooManyItems", "<Itemset id=\"1\" numberOfItems=\"1\"",
     "<Itemset id=\"1\" numberOfItems=\"2147483647\"", "/Itemset[1]/@numberOfItems",
     "announces 2147483647, 1 present"},
    {"ItemRefZero", "<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"0\"",
     "/Itemset[1]/ItemRef[1]/@itemRef", "0 is outside 1..2"},
    {"ItemRefMinusOne", "<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"-1\"",
     "/Itemset[1]/ItemRef[1]/@itemRef", "-1 is outside 1..2"},
    {"ItemRefTooLarge", "<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"3\"",
     "/Itemset[1]/ItemRef[1]/@itemRef", "3 is outside 1..2"},
    {"ItemRefMissing", "<ItemRef itemRef=\"1\"", "<ItemRef", "/Itemset[1]/ItemRef[1]/@itemRef",
     "missing"},
    {"EmptySetInASequence", "<Itemset id=\"1\" numberOfItems=\"1\"",
     "<Itemset id=\"1\" numberOfItems=\"0\"",
     "/LatticeLevel[2]/Sequence[1]/ItemsetRef[1]/@itemsetRef", "empty item set"},
};
INSTANTIATE_TEST_SUITE_P(Items, Refusals, testing::ValuesIn(kItems),
                         [](const auto& it) { return it.param.name; });

constexpr const char* kLevelOne = "<LatticeLevel level=\"1\" numberOfSequences=\"2\"";

const Refusal kLevels[] = {
    {"LevelNegative", "level=\"3\"", "level=\"-1\"", "/LatticeLevel[4]/@level",
     "-1 is outside 0..3"},
    {"LevelTooHigh", "level=\"3\"", "level=\"4\"", "/LatticeLevel[4]/@level", "4 is outside 0..3"},
    {"LevelTwice", "level=\"3\"", "level=\"2\"", "/LatticeLevel[4]/@level", "duplicate level 2"},
    {"LevelWithoutNumber", "<LatticeLevel level=\"3\"", "<LatticeLevel", "/LatticeLevel[4]/@level",
     "missing"},
    {"SequencesNegative", kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"-1\"",
     "/LatticeLevel[2]/@numberOfSequences", "-1 is outside"},
    {"SequencesOneTooMany", kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"3\"",
     "/LatticeLevel[2]/@numberOfSequences", "announces 3, 2 present"},
    {"SequencesBeyondTheTable", kLevelOne,
     "<LatticeLevel level=\"1\" numberOfSequences=\"1431655766\"",
     "/LatticeLevel[2]/@numberOfSequences", "announces 1431655766, 2 present"},
    {"SequencesFarTooMany", kLevelOne, "<LatticeLevel level=\"1\" numberOfSequences=\"2147483647\"",
     "/LatticeLevel[2]/@numberOfSequences", "announces 2147483647, 2 present"},
    {"OccurrenceNegative", "occurrence=\"8\"", "occurrence=\"-5\"",
     "/LatticeLevel[2]/Sequence[1]/@occurrence", "-5 is outside 0..2147483647"},
    {"OccurrenceMissing", "occurrence=\"8\"", "", "/LatticeLevel[2]/Sequence[1]/@occurrence",
     "missing"},
    {"SetsNegative", "occurrence=\"2\" numberOfSets=\"2\"", "occurrence=\"2\" numberOfSets=\"-1\"",
     "/LatticeLevel[3]/Sequence[2]/@numberOfSets", "-1 is outside"},
    {"SetsFarTooMany", "occurrence=\"2\" numberOfSets=\"2\"",
     "occurrence=\"2\" numberOfSets=\"2147483647\"", "/LatticeLevel[3]/Sequence[2]/@numberOfSets",
     "announces 2147483647, 3 present"},
    {"SetsTakeTheList", "occurrence=\"2\" numberOfSets=\"2\"",
     "occurrence=\"2\" numberOfSets=\"3\"",
     "/LatticeLevel[3]/Sequence[2]/ItemsetRef[3]/@itemsetRef", "missing"},
    {"ItemsetRefZero", "<ItemsetRef itemsetRef=\"3\"/>", "<ItemsetRef itemsetRef=\"0\"/>",
     "/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", "0 is outside 1..3"},
    {"ItemsetRefTooLarge", "<ItemsetRef itemsetRef=\"3\"/>", "<ItemsetRef itemsetRef=\"4\"/>",
     "/LatticeLevel[3]/Sequence[1]/ItemsetRef[1]/@itemsetRef", "4 is outside 1..3"},
    {"NoAdjacencyList",
     "<ItemsetRef itemsetRef=\"3\"/><SeqAdjacentList numberOfAdjacentItems=\"0\"/>",
     "<ItemsetRef itemsetRef=\"3\"/>", "/LatticeLevel[3]/Sequence[1]",
     "list of adjacent items missing"},
    {"AdjacencyNegative", "numberOfAdjacentItems=\"2\"", "numberOfAdjacentItems=\"-1\"",
     "/SeqAdjacentList[1]/@numberOfAdjacentItems", "-1 is outside"},
    {"AdjacencyTooMany", "numberOfAdjacentItems=\"2\"", "numberOfAdjacentItems=\"3\"",
     "/SeqAdjacentList[1]/@numberOfAdjacentItems", "announces 3, 2 present"},
    {"AdjacentItemZero", "<AdjacentItem itemRef=\"2\" position=\"0\"",
     "<AdjacentItem itemRef=\"0\" position=\"0\"",
     "/LatticeLevel[2]/Sequence[1]/SeqAdjacentList[1]/AdjacentItem[1]/@itemRef",
     "0 is outside 1..2 and not -1"},
    {"AdjacentItemTooLarge", "<AdjacentItem itemRef=\"2\" position=\"0\"",
     "<AdjacentItem itemRef=\"3\" position=\"0\"", "AdjacentItem[1]/@itemRef",
     "3 is outside 1..2 and not -1"},
    {"PositionNegative", "position=\"3\"", "position=\"-1\"",
     "/LatticeLevel[2]/Sequence[1]/SeqAdjacentList[1]/AdjacentItem[2]/@position",
     "-1 is outside 0..3"},
    {"PositionTooLarge", "position=\"3\"", "position=\"4\"", "AdjacentItem[2]/@position",
     "4 is outside 0..3"},
    {"PositionJoinsNoSet", "position=\"3\"", "position=\"2\"", "AdjacentItem[2]/@position",
     "names no extension of a sequence of 1 item sets (allowed: 0..1, 3)"},
    {"PositionOfTheEmptySequence", "itemRef=\"1\" position=\"1\"", "itemRef=\"1\" position=\"0\"",
     "/LatticeLevel[1]/Sequence[1]/SeqAdjacentList[1]/AdjacentItem[1]/@position",
     "names no extension of a sequence of 0 item sets (allowed: 1)"},
};
INSTANTIATE_TEST_SUITE_P(Levels, Refusals, testing::ValuesIn(kLevels),
                         [](const auto& it) { return it.param.name; });

TEST(Refusals, TellLineAndColumn) {
  try {
    modelOf(replaced(kSmallDocument, "<Item id=\"2\"", "<Item id=\"9\""));
    FAIL() << "accepted";
  } catch (const OrbScore::QuException& refusal) {
    EXPECT_STREQ(
        refusal.what(),
        "small.xml: lattice refused: SeqAssociationLattice/Item[2]/@id (line 8, column 1): "
        "9 is outside 1..2");
  }
}

// One set of `items` items, alone in a sequence of level 1.
std::string documentOfOneLongSequence(int items) {
  std::string list;
  std::string references;
  for (int id = 1; id <= items; ++id) {
    list += "<Item id=\"" + std::to_string(id) + "\" value=\"" + std::to_string(id) + "\"/>";
    references += "<ItemRef itemRef=\"" + std::to_string(id) + "\"/>";
  }
  const std::string count = std::to_string(items);
  return "<SequentialAssociationLattice version=\"1\"><SeqAssociationLattice><SeqInputStats "
         "maxSequenceSize=\"1\" numberOfItems=\"" +
         count + "\" numberOfSets=\"1\" numberOfSequences=\"1\"/>" + list +
         "<Itemset id=\"1\" numberOfItems=\"" + count + "\">" + references +
         "</Itemset><LatticeLevel level=\"0\" numberOfSequences=\"0\"/>"
         "<LatticeLevel level=\"1\" numberOfSequences=\"1\"><Sequence occurrence=\"1\" "
         "numberOfSets=\"1\"><ItemsetRef itemsetRef=\"1\"/><SeqAdjacentList "
         "numberOfAdjacentItems=\"0\"/></Sequence></LatticeLevel></SeqAssociationLattice>"
         "</SequentialAssociationLattice>";
}

TEST(Refusals, ASequenceOf32ItemsLoadsAndLongerOnesDoNot) {
  EXPECT_NO_THROW(modelOf(documentOfOneLongSequence(32)));
  for (const int items : {33, 39, 10'000}) {
    try {
      modelOf(documentOfOneLongSequence(items));
      ADD_FAILURE() << items << " items accepted";
    } catch (const OrbScore::QuException& refusal) {
      EXPECT_THAT(refusal.what(), HasSubstr("LatticeLevel[2]/Sequence[1]"));
      EXPECT_THAT(refusal.what(), HasSubstr("more than 32 items"));
    }
  }
}

TEST(Refusals, NoModelElementIsRefused) {
  const auto translator = test::module().MakeTranslator();

  EXPECT_THROW(translator->ParseFromTree(nullptr, "UTF-8"), OrbScore::QuException);
}

TEST(Refusals, AnUnknownEncodingIsRefused) {
  const auto document = OrbScore::SafeDocument::Parse(kSmallDocument, "small.xml");

  EXPECT_THROW(test::module().LoadModel(document, "no-such-encoding"), OrbScore::QuException);
}

TEST(Refusals, ADocumentWithoutVersionIsRefused) {
  try {
    modelOf(replaced(kSmallDocument, " version=\"1.2.1\"", ""));
    FAIL() << "accepted";
  } catch (const OrbScore::QuException& refusal) {
    EXPECT_THAT(refusal.what(), HasSubstr("@version"));
    EXPECT_THAT(refusal.what(), HasSubstr("missing"));
  }
}

}  // namespace

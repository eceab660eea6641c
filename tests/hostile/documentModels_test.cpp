// Hostile documents that are made by a program, and what one translator makes of several: rows D27,
// D34, D39 and D40 of the list of documents, and that the list is complete.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "host/SafeDocument.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/ScoreTranslator.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/documents.h"
#include "tests/hostile/rowNames.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"
#include "tests/support/sequenceValues.h"

namespace {

using OrbScore::SafeDocument;
using OrbScore::ScoreModel;
using orbseq::test::expectModel;
using orbseq::test::expectSoundAnswers;
using orbseq::test::Meter;
using orbseq::test::packed;
using orbseq::test::Refusal;
using orbseq::test::smallDocument;
using orbseq::test::translatorRefusal;
using test::Answer;
using test::ask;
using test::Mode;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string attribute(const char* name, std::int64_t value) {
  return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

// A sequence of the document below: references to sets, a count, and one adjacent item or none.
std::string sequenceText(const std::vector<int>& sets, int occurrence, int item = 0,
                         int position = 0) {
  std::string text = "<Sequence" + attribute("occurrence", occurrence) +
                     attribute("numberOfSets", static_cast<int>(sets.size())) + ">";
  for (const int set : sets) text += "<ItemsetRef" + attribute("itemsetRef", set) + "/>";
  text += "<SeqAdjacentList" + attribute("numberOfAdjacentItems", item == 0 ? 0 : 1) + ">";
  if (item != 0)
    text += "<AdjacentItem" + attribute("itemRef", item) + attribute("position", position) + "/>";
  return text + "</SeqAdjacentList></Sequence>";
}

// A document of the items with those values, of those sets of item ids, and of levels that are each
// a list of sequences; an empty level closes it.
std::string documentOf(const std::vector<std::int32_t>& values,
                       const std::vector<std::vector<int>>& sets,
                       const std::vector<std::vector<std::string>>& levels) {
  std::string text =
      "<SequentialAssociationLattice version=\"1\"><SeqAssociationLattice>\n<SeqInputStats" +
      attribute("maxSequenceSize", static_cast<int>(levels.size())) +
      attribute("numberOfItems", static_cast<int>(values.size())) +
      attribute("numberOfSets", static_cast<int>(sets.size())) + attribute("numberOfSequences", 0) +
      "/>\n";
  for (std::size_t i = 0; i < values.size(); ++i)
    text +=
        "<Item" + attribute("id", static_cast<int>(i) + 1) + attribute("value", values[i]) + "/>\n";
  for (std::size_t i = 0; i < sets.size(); ++i) {
    text += "<Itemset" + attribute("id", static_cast<int>(i) + 1) +
            attribute("numberOfItems", static_cast<int>(sets[i].size())) + ">";
    for (const int item : sets[i]) text += "<ItemRef" + attribute("itemRef", item) + "/>";
    text += "</Itemset>\n";
  }
  for (std::size_t level = 0; level <= levels.size(); ++level) {
    const bool closing = level == levels.size();
    text += "<LatticeLevel" + attribute("level", static_cast<int>(level)) +
            attribute("numberOfSequences", closing ? 0 : static_cast<int>(levels[level].size())) +
            ">\n";
    if (!closing)
      for (const std::string& sequence : levels[level]) text += sequence + "\n";
    text += "</LatticeLevel>\n";
  }
  return text + "</SeqAssociationLattice></SequentialAssociationLattice>\n";
}

// --- Long sequences ------------------------------------------------------------------------------

std::vector<std::int32_t> upTo(int last) {
  std::vector<std::int32_t> numbers;
  for (int number = 1; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

// A sequence alone in level 1, of as many sets as there are sizes. Each set has the items that
// follow those of the set before.
struct Long {
  const char* name;
  std::vector<int> sizes;
};

int itemsOf(const Long& sequence) {
  return std::accumulate(sequence.sizes.begin(), sequence.sizes.end(), 0);
}

std::string documentOf(const Long& sequence) {
  std::vector<std::vector<int>> sets;
  int last = 0;
  for (const int size : sequence.sizes) {
    sets.emplace_back();
    for (int k = 0; k < size; ++k) sets.back().push_back(++last);
  }
  return documentOf(upTo(last), sets, {{}, {sequenceText(upTo(static_cast<int>(sets.size())), 1)}});
}

// Items 1 to 32 and the sets {32}, {31 32}, {30 31 32} .. {1 .. 32}, each the extension of the one
// before at its front. 9 of 10 customers hold each of them, and 3 the last one.
std::string ladderTo32() {
  std::vector<std::vector<int>> sets;
  std::vector<std::vector<std::string>> levels = {{sequenceText({}, 10)}};
  for (int count = 1; count <= 32; ++count) {
    std::vector<int> tail;
    for (int item = 33 - count; item <= 32; ++item) tail.push_back(item);
    sets.push_back(tail);
    levels.push_back({sequenceText({count}, count == 32 ? 3 : 9, 32 - count, 0)});
  }
  for (int item = 1; item < 32; ++item) {
    sets.push_back({item});
    levels[1].push_back(sequenceText({static_cast<int>(sets.size())}, 9));
  }
  return documentOf(upTo(32), sets, levels);
}

std::string historyOf(int first, int last) {
  std::string text = "(";
  for (int item = first; item <= last; ++item) text += std::to_string(item) + " ";
  return text + ")";
}

TEST(HostileModels, D27ThirtyTwoItemsAreCountedAndProposedButNeverFound) {
  expectModel(ladderTo32(), [](const ScoreModel& model) {
    // Found: the tails of up to 31 items. The longest proposes the one that is missing.
    EXPECT_THAT(ask(model, historyOf(2, 32), Mode::kCurrent),
                ElementsAre(Answer{1, 3.0 / 9.0, 0.3, 3.0 / 9.0}));
    // All 32: what would be proposed is there already.
    EXPECT_THAT(ask(model, historyOf(1, 32), Mode::kCurrent), IsEmpty());
    expectSoundAnswers(model, {historyOf(1, 32), historyOf(2, 32), "(1)", "(32)"});
    std::ostringstream shown;
    model.Display(shown);
    EXPECT_THAT(shown.str(), HasSubstr("30 31 32"));
  });
}

TEST(HostileModels, D27MoreThanThirtyTwoItemsAreRefused) {
  const Long rows[] = {{"a set of 33", {33}},
                       {"a set of 39", {39}},
                       {"a set of 10,000", {10'000}},
                       {"33 single items", std::vector<int>(33, 1)},
                       {"39 single items", std::vector<int>(39, 1)},
                       {"10,000 single items", std::vector<int>(10'000, 1)},
                       {"17 and 16", {17, 16}},
                       {"32 and 1", {32, 1}}};
  for (const Long& sequence : rows) {
    // Behind the head, the items, the sets and the level of none.
    const int line = 2 + itemsOf(sequence) + static_cast<int>(sequence.sizes.size()) + 4;
    EXPECT_EQ(translatorRefusal(documentOf(sequence)).message,
              orbseq::test::at("/LatticeLevel[2]/Sequence[1]", line) + "more than 32 items")
        << sequence.name;
  }
}

TEST(HostileModels, D27ThirtyTwoItemsInAnySetsLoad) {
  struct Whole {
    Long sequence;
    const char* shown;  // of it, by the model
  };
  const Whole rows[] = {{{"a set of 32", {32}}, " 16 17 18 "},
                        {{"16 and 16", {16, 16}}, " 15 16)(17 18 "},
                        {{"32 single items", std::vector<int>(32, 1)}, "(16)(17)(18)"}};
  for (const auto& [sequence, shown] : rows) {
    SCOPED_TRACE(sequence.name);
    expectModel(documentOf(sequence), [text = shown](const ScoreModel& model) {
      std::ostringstream display;
      model.Display(display);
      EXPECT_THAT(display.str(), HasSubstr(text));
      EXPECT_THAT(ask(model, "(1)", Mode::kCurrent), IsEmpty());
    });
  }
}

// --- Keys made to collide ------------------------------------------------------------------------

// `count` sequences of two item sets whose items are 9817 k and 9829 (n - k): one hash for all.
std::string colliding(int count) {
  std::vector<std::int32_t> values;
  std::vector<std::vector<int>> sets;
  std::vector<std::string> sequences;
  for (int k = 1; k <= count; ++k) {
    values.push_back(9817 * k);
    values.push_back(9829 * (count - k + 1));
    sets.push_back({2 * k - 1});
    sets.push_back({2 * k});
    sequences.push_back(sequenceText({2 * k - 1, 2 * k}, 1));
  }
  return documentOf(values, sets, {{}, {}, sequences});
}

TEST(HostileModels, D39CollidingSequencesAreRefusedAtTheLimitOfAChain) {
  ASSERT_EQ(packed({{9817}, {9829 * 40'000}}).HashCode(),
            packed({{9817 * 40'000}, {9829}}).HashCode());
  const std::string document = colliding(40'000);
  const auto parsed = SafeDocument::Parse(document, "d.xml");
  const std::unique_ptr<OrbScore::ScoreTranslator> translator(GiveMyTranslator());

  const auto start = Meter::Clock::now();
  EXPECT_THROW(translator->ParseFromTree(parsed.GetModelElement(), "UTF-8"), OrbScore::QuException);
  EXPECT_LT(Meter::Clock::now() - start, std::chrono::seconds(1) * Meter::slowdown());

  EXPECT_EQ(translatorRefusal(document).message,
            "lattice refused: SeqAssociationLattice/LatticeLevel[3]/Sequence[1001] (line 161008, "
            "column 1): more than 1000 sequences of the level share a bucket");
}

TEST(HostileModels, D39AChainOfTheLimitLoads) {
  expectModel(colliding(1000), [](const ScoreModel& model) {
    EXPECT_THAT(ask(model, "(9817)", Mode::kFuture), IsEmpty());
  });
  EXPECT_THAT(translatorRefusal(colliding(1001)).message,
              HasSubstr("more than 1000 sequences of the level share a bucket"));
}

// The limit is the process's, and this program cannot set the module's: `orbseq` can set its own.
TEST(HostileModels, D39TheLimitOfAChainIsSet) {
  const orbseq::test::TempFolder folder;
  const std::string path = folder.file("d.xml", colliding(1001));
  const std::vector<std::string> inspect = {"inspect", "--sequences", "--model", path};
  const auto withLimit = [&](const std::string& limit) {
    std::vector<std::string> command = inspect;
    command.insert(command.end(), {"--max-chain", limit});
    return orbseq::test::run(command);
  };

  const auto refused = orbseq::test::run(inspect), loaded = withLimit("1001");

  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
  EXPECT_THAT(refused.error, HasSubstr("more than 1000 sequences of the level share a bucket"));
  EXPECT_EQ(loaded.status, 0) << loaded.error;
  EXPECT_EQ(std::count(loaded.output.begin(), loaded.output.end(), '\n'), 1001);
  EXPECT_THAT(loaded.output, HasSubstr("9817 -1 9838829 -1 #SUP: 1\n"));
  EXPECT_THAT(loaded.output, HasSubstr("9826817 -1 9829 -1 #SUP: 1\n"));
  EXPECT_THAT(withLimit("999").error,
              HasSubstr("more than 999 sequences of the level share a bucket"));
}

// --- The life of a model -------------------------------------------------------------------------

// The highest level is taken from the document and never handed to the model: it goes as well.
TEST(HostileModels, D34AModelAndItsTablesGoWithoutALeak) {
  const std::string full =
      smallDocument({{"<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>", ""},
                     {"maxSequenceSize=\"3\"", "maxSequenceSize=\"2\""}});
  for (const std::string& document : {smallDocument(), full})
    expectModel(document, [](const ScoreModel& model) {
      EXPECT_EQ(ask(model, "", Mode::kCurrent).size(), 2U);
    });
}

// The lattice as a PMML document's extension, with elements of PMML's own beside it.
std::string pmmlAround(const std::string& before, const std::string& after) {
  const std::string lattice = smallDocument(), end = "</SeqAssociationLattice>";
  const std::size_t begin = lattice.find("<SeqAssociationLattice>");
  return "<PMML version=\"3.2\"><SequenceModel>" + before + "<Extension>" +
         lattice.substr(begin, lattice.find(end) + end.size() - begin) + "</Extension>" + after +
         "</SequenceModel></PMML>";
}

TEST(HostileModels, D40ElementsOfPmmlOnEitherSideDoNotDisturb) {
  const std::string own =
      "<Item id=\"1\" value=\"55\"/><Item id=\"2\" value=\"56\"/><Itemset id=\"1\" "
      "numberOfItems=\"1\"><ItemRef itemRef=\"2\"/></Itemset><Sequence id=\"1\" "
      "numberOfSets=\"1\" occurrence=\"3\"><SetReference setId=\"1\"/></Sequence>";
  for (const auto& document : {pmmlAround(own, ""), pmmlAround("", own), pmmlAround(own, own)})
    expectModel(document, [](const ScoreModel& model) {
      EXPECT_THAT(ask(model, "(7)", Mode::kCurrent), ElementsAre(Answer{9, 0.5, 0.4, 0.8}));
      EXPECT_THAT(ask(model, "", Mode::kCurrent),
                  ElementsAre(Answer{7, 0.8, 0.8, 1.0}, Answer{9, 0.5, 0.5, 1.0}));
    });
}

// translatorRefusal() has a good document before the bad one and one behind it.
TEST(HostileModels, D40GoodBadAndGoodDocumentsWithOneTranslator) {
  const Refusal refusal =
      translatorRefusal(smallDocument({{"<ItemRef itemRef=\"1\"", "<ItemRef itemRef=\"8\""}}));

  EXPECT_EQ(refusal.message,
            orbseq::test::at("/Itemset[1]/ItemRef[1]/@itemRef", 9, 35) + "8 is outside 1..2");
}

TEST(HostileModels, D40NoElementIsRefused) {
  EXPECT_EQ(orbseq::test::refusalOfNoElement().message, "lattice refused: no model element");
}

TEST(HostileModels, D40AnUnknownEncodingIsRefused) {
  EXPECT_EQ(translatorRefusal(smallDocument(), "no-such\none").message,
            "unknown encoding: \"no-such\\none\"");
}

// --- The list ------------------------------------------------------------------------------------

TEST(HostileDocuments, HaveATestForEveryRow) { orbseq::test::expectTestsOfRows('D', 40); }

}  // namespace

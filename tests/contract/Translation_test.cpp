// What becomes of a document that is accepted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/SafeDocument.h"
#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreDictionary.h"
#include "scoring/hostapi/ScoringLog.h"
#include "scoring/hostapi/VersionInfo.h"
#include "tests/contract/support.h"

namespace {

using OrbScore::SafeDocument;
using test::Answer;
using test::ask;
using test::kSmallDocument;
using test::Mode;
using test::modelOf;
using test::replaced;
using testing::ElementsAre;
using testing::IsEmpty;

const Answer kNineNow = {9, 0.5, 0.4, 0.8};
const Answer kNineLater = {9, 0.25, 0.2, 0.4};

TEST(Translation, ABareDocumentBecomesAModelThatScores) {
  const auto model = modelOf(std::string(kSmallDocument));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
  EXPECT_THAT(ask(*model, "(7)", Mode::kFuture), ElementsAre(kNineLater));
  EXPECT_THAT(ask(*model, "", Mode::kCurrent),
              ElementsAre(Answer{7, 0.8, 0.8, 1.0}, Answer{9, 0.5, 0.5, 1.0}));
}

TEST(Translation, TheModelOutlivesTheDocumentAndTheTranslator) {
  std::shared_ptr<OrbScore::ScoreModel> model;
  {
    const SafeDocument document = SafeDocument::Parse(kSmallDocument, "small.xml");
    const auto translator = test::module().MakeTranslator();
    model.reset(translator->ParseFromTree(document.GetModelElement(), "UTF-8"));
  }

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

TEST(Translation, LabelsAndVersionAreHandedOut) {
  const auto model = modelOf(std::string(kSmallDocument));

  const OrbScore::ScoreDictionary* const labels = model->GetScoreDictionary();
  ASSERT_NE(labels, nullptr);
  EXPECT_EQ(labels->GetSize(), 1U);
  EXPECT_EQ(labels->GetVariable("7")->GetMappedLabel(), "tea");
  EXPECT_EQ(labels->GetVariable("7")->GetVariableType(), 0);
  EXPECT_EQ(model->GetVersionInfo().GetVersion(), "1.2.1");
}

TEST(Translation, WithoutLabelsThereIsNoDictionary) {
  for (const char* attribute : {"", "mappedValue=\"\""})
    EXPECT_EQ(
        modelOf(replaced(kSmallDocument, "mappedValue=\"tea\"", attribute))->GetScoreDictionary(),
        nullptr);
}

TEST(Translation, LabelsComeInTheEncodingAskedFor) {
  const std::string document = replaced(kSmallDocument, "tea", "th\xC3\xA9");
  const auto latin =
      test::module().LoadModel(SafeDocument::Parse(document, "small.xml"), "ISO-8859-1");

  EXPECT_EQ(latin->GetScoreDictionary()->GetVariable("7")->GetMappedLabel(), "th\xE9");
}

// The document's levels are 0 to maxSequenceSize; look-ups end below the highest.
TEST(Translation, TheHighestLevelIsHidden) {
  const auto model = modelOf(
      replaced(replaced(kSmallDocument, "<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>", ""),
               "maxSequenceSize=\"3\"", "maxSequenceSize=\"2\""));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), IsEmpty());
  EXPECT_EQ(ask(*model, "", Mode::kCurrent).size(), 2U);
}

TEST(Translation, MaxSequenceSizeOfMinusOneReadsNoLevel) {
  const auto model =
      modelOf(replaced(kSmallDocument, "maxSequenceSize=\"3\"", "maxSequenceSize=\"-1\""));

  EXPECT_THAT(ask(*model, "(7)", Mode::kFuture), IsEmpty());
  EXPECT_THAT(ask(*model, "", Mode::kCurrent), IsEmpty());
}

TEST(Translation, MaxSequenceSizeOfZeroAnswersNothing) {
  const auto model =
      modelOf(replaced(kSmallDocument, "maxSequenceSize=\"3\"", "maxSequenceSize=\"0\""));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), IsEmpty());
  EXPECT_THAT(ask(*model, "", Mode::kFuture), IsEmpty());
}

TEST(Translation, ALevelTooManyIsIgnored) {
  const auto model = modelOf(replaced(kSmallDocument, "<LatticeLevel level=\"3\"",
                                      "<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>"
                                      "<LatticeLevel level=\"77\""));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

TEST(Translation, LevelsAreChosenByTheirAttributeNotTheirPlace) {
  std::string document(kSmallDocument);
  const std::string top = "<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>";
  document = replaced(document, top, "");
  document = replaced(document, "<LatticeLevel level=\"0\"", top + "<LatticeLevel level=\"0\"");

  EXPECT_THAT(ask(*modelOf(document), "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

TEST(Translation, ALevelOfNoSequencesFindsNothing) {
  std::string document(kSmallDocument);
  const std::size_t begin = document.find("<LatticeLevel level=\"1\"");
  const std::size_t end = document.find("<LatticeLevel level=\"2\"");
  document.replace(begin, end - begin, "<LatticeLevel level=\"1\" numberOfSequences=\"0\"/>\n");

  EXPECT_THAT(ask(*modelOf(document), "(7)", Mode::kCurrent), IsEmpty());
}

TEST(Translation, AnItemListedTwiceInASetIsHeldOnce) {
  const auto model = modelOf(
      replaced(kSmallDocument, "<Itemset id=\"1\" numberOfItems=\"1\"><ItemRef itemRef=\"1\"/>",
               "<Itemset id=\"1\" numberOfItems=\"2\"><ItemRef itemRef=\"1\"/>"
               "<ItemRef itemRef=\"1\"/>"));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

TEST(Translation, APrunedAdjacentItemIsSkipped) {
  const auto model =
      modelOf(replaced(kSmallDocument, "<AdjacentItem itemRef=\"2\" position=\"3\"/>",
                       "<AdjacentItem itemRef=\"-1\" position=\"3\"/>"));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
  EXPECT_THAT(ask(*model, "(7)", Mode::kFuture), IsEmpty());
}

TEST(Translation, AnAdjacencyToWhatIsNotStoredIsSkippedByScoring) {
  const auto model =
      modelOf(replaced(kSmallDocument, "<AdjacentItem itemRef=\"2\" position=\"3\"/>",
                       "<AdjacentItem itemRef=\"2\" position=\"1\"/>"));

  EXPECT_THAT(ask(*model, "(7)", Mode::kFuture), IsEmpty());
}

TEST(Translation, OfEqualSequencesTheFirstStands) {
  const auto model = modelOf(
      replaced(kSmallDocument, "<Itemset id=\"2\" numberOfItems=\"1\"><ItemRef itemRef=\"2\"/>",
               "<Itemset id=\"2\" numberOfItems=\"1\"><ItemRef itemRef=\"1\"/>"));

  EXPECT_THAT(ask(*model, "", Mode::kCurrent), ElementsAre(Answer{7, 0.8, 0.8, 1.0}));
}

TEST(Translation, TheAnnouncedNumberOfSequencesIsComparedWithNothing) {
  const auto model =
      modelOf(replaced(kSmallDocument, "numberOfSequences=\"5\"", "numberOfSequences=\"99\""));

  EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

TEST(Translation, ZeroCountsGiveNoNumberThatIsNotFinite) {
  const auto noCustomers =
      modelOf(replaced(kSmallDocument, "occurrence=\"10\"", "occurrence=\"0\""));
  EXPECT_THAT(ask(*noCustomers, "(7)", Mode::kCurrent), IsEmpty());
  EXPECT_THAT(ask(*noCustomers, "", Mode::kCurrent), IsEmpty());

  const auto noBase = modelOf(replaced(kSmallDocument, "occurrence=\"8\"", "occurrence=\"0\""));
  EXPECT_THAT(ask(*noBase, "(7)", Mode::kCurrent), IsEmpty());

  const auto noTop = modelOf(replaced(kSmallDocument, "occurrence=\"4\"", "occurrence=\"0\""));
  EXPECT_THAT(ask(*noTop, "(7)", Mode::kCurrent), ElementsAre(Answer{9, 0.0, 0.0, 0.0}));
}

TEST(Translation, ALatticeWithoutTheEmptySequenceAnswersNothing) {
  std::string document(kSmallDocument);
  const std::size_t begin = document.find("<LatticeLevel level=\"0\"");
  const std::size_t end = document.find("<LatticeLevel level=\"1\"");
  document.replace(begin, end - begin, "<LatticeLevel level=\"0\" numberOfSequences=\"0\"/>\n");

  EXPECT_THAT(ask(*modelOf(document), "(7)", Mode::kCurrent), IsEmpty());
}

TEST(Translation, ASequenceInTheWrongLevelIsNeverFound) {
  std::string document(kSmallDocument);
  document = replaced(document, "<LatticeLevel level=\"3\" numberOfSequences=\"0\"/>", "");
  document = replaced(document, "<LatticeLevel level=\"2\"", "<LatticeLevel level=\"3\"");
  document = replaced(document, "<LatticeLevel level=\"3\"",
                      "<LatticeLevel level=\"2\" numberOfSequences=\"0\"/>\n"
                      "<LatticeLevel level=\"3\"");

  EXPECT_THAT(ask(*modelOf(document), "(7)", Mode::kCurrent), IsEmpty());
}

TEST(Translation, NegativeItemValuesAreFound) {
  const auto model = modelOf(replaced(kSmallDocument, "value=\"7\"", "value=\"-2147483648\""));

  EXPECT_THAT(ask(*model, "(2147483648)", Mode::kCurrent), ElementsAre(kNineNow));
}

std::string pmmlAround(const std::string& before, const std::string& after) {
  std::string lattice(kSmallDocument);
  const std::size_t begin = lattice.find("<SeqAssociationLattice>");
  const std::string end = "</SeqAssociationLattice>";
  lattice = lattice.substr(begin, lattice.find(end) + end.size() - begin);
  return "<PMML version=\"3.2\" xmlns=\"http://www.dmg.org/PMML-3_2\"><SequenceModel>" + before +
         "<Extension>" + lattice + "</Extension>" + after + "</SequenceModel></PMML>";
}

TEST(Translation, APmmlDocumentsOwnItemsAndSequencesDoNotDisturb) {
  const std::string own =
      "<Item id=\"1\" value=\"55\"/><Itemset id=\"1\" numberOfItems=\"1\"><ItemRef itemRef=\"1\"/>"
      "</Itemset><Sequence id=\"1\" numberOfSets=\"1\"><SetReference setId=\"1\"/></Sequence>";
  for (const auto& document : {pmmlAround(own, ""), pmmlAround("", own), pmmlAround(own, own)}) {
    const auto model = modelOf(document);
    EXPECT_THAT(ask(*model, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
    EXPECT_EQ(model->GetVersionInfo().GetVersion(), "3.2");
  }
}

TEST(Translation, OneTranslatorParsesAnyNumberOfTimes) {
  const auto translator = test::module().MakeTranslator();
  const SafeDocument good = SafeDocument::Parse(kSmallDocument, "good.xml");
  const SafeDocument bad =
      SafeDocument::Parse(replaced(kSmallDocument, "itemRef=\"1\"", "itemRef=\"8\""), "bad.xml");

  const std::unique_ptr<OrbScore::ScoreModel> first(
      translator->ParseFromTree(good.GetModelElement(), "UTF-8"));
  EXPECT_ANY_THROW(translator->ParseFromTree(bad.GetModelElement(), "UTF-8"));
  const std::unique_ptr<OrbScore::ScoreModel> second(
      translator->ParseFromTree(good.GetModelElement(), "UTF-8"));

  EXPECT_NE(first, second);
  EXPECT_THAT(ask(*first, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
  EXPECT_THAT(ask(*second, "(7)", Mode::kCurrent), ElementsAre(kNineNow));
}

// Collects the trace at level 1 while it lives.
class Trace {
 public:
  Trace() {
    OrbScore::ScoringLog::GetInstance().SetLevel(1);
    OrbScore::ScoringLog::GetInstance().SetSink(
        [this](int, const std::string& line) { lines.push_back(line); });
  }
  ~Trace() {
    OrbScore::ScoringLog::GetInstance().SetLevel(0);
    OrbScore::ScoringLog::GetInstance().SetSink({});
  }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  std::vector<std::string> lines;
};

constexpr const char* kEnter = "Enter:OrbQuillon_830::SequentialTranslator::ParseFromTree";
constexpr const char* kExit = "Exit:OrbQuillon_830::SequentialTranslator::ParseFromTree";

TEST(Translation, EnterAndExitAreTraced) {
  const Trace trace;

  modelOf(std::string(kSmallDocument));

  EXPECT_THAT(trace.lines, ElementsAre(kEnter, kExit));
}

TEST(Translation, ARefusedDocumentTracesNoExit) {
  const Trace trace;

  EXPECT_ANY_THROW(modelOf(replaced(kSmallDocument, "SeqInputStats", "Statistics")));

  EXPECT_THAT(trace.lines, ElementsAre(kEnter));
}

}  // namespace

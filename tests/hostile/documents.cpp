#include "tests/hostile/documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <set>

#include "host/SafeDocument.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/ScoreTranslator.h"
#include "scoring/hostapi/ScoringLog.h"
#include "tests/hostile/Meter.h"
#include "tests/support/TempFolder.h"

namespace orbseq::test {

namespace {

using OrbScore::SafeDocument;
using OrbScore::ScoreModel;
using OrbScore::ScoreTranslator;
using ::test::Answer;
using ::test::ask;
using ::test::Mode;
using testing::ElementsAre;

constexpr const char* kEnter = "Enter:OrbQuillon_830::SequentialTranslator::ParseFromTree\n";
constexpr const char* kExit = "Exit:OrbQuillon_830::SequentialTranslator::ParseFromTree\n";
constexpr std::size_t kLongestText = 64 << 10;

// Collects the trace while it lives, in memory that it has from the beginning.
class Trace {
 public:
  Trace() {
    lines_.reserve(kLongestText);
    OrbScore::ScoringLog::GetInstance().SetLevel(1);
    OrbScore::ScoringLog::GetInstance().SetSink(
        [this](int, const std::string& line) { (lines_ += line) += '\n'; });
  }
  ~Trace() {
    OrbScore::ScoringLog::GetInstance().SetLevel(0);
    OrbScore::ScoringLog::GetInstance().SetSink({});
  }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  const std::string& lines() const { return lines_; }

 private:
  std::string lines_;
};

using Model = std::unique_ptr<ScoreModel>;

Model modelBy(ScoreTranslator& translator, const std::string& document,
              const std::string& encoding = "UTF-8") {
  const SafeDocument parsed = SafeDocument::Parse(document, kDocumentName);
  return Model(translator.ParseFromTree(parsed.GetModelElement(), encoding));
}

void expectSmallAnswers(const ScoreModel& model) {
  EXPECT_THAT(ask(model, "(7)", Mode::kCurrent), ElementsAre(Answer{9, 0.5, 0.4, 0.8}));
  EXPECT_THAT(ask(model, "(7)", Mode::kFuture), ElementsAre(Answer{9, 0.25, 0.2, 0.4}));
  EXPECT_THAT(ask(model, "", Mode::kCurrent),
              ElementsAre(Answer{7, 0.8, 0.8, 1.0}, Answer{9, 0.5, 0.5, 1.0}));
}

// Expects that the operation, which asks the translator for a model, is refused.
template <class Operation>
Refusal refusalOf(std::size_t inputBytes, Operation operation) {
  const std::unique_ptr<ScoreTranslator> translator(GiveMyTranslator());
  const Model earlier = modelBy(*translator, smallDocument());
  expectSmallAnswers(*earlier);
  const Trace trace;
  Refusal refusal{};

  refusal.message = messageUnder<OrbScore::QuException>(
      inputBytes, [&] { static_cast<void>(operation(*translator)); });
  refusal.largestBlock = Meter::largestBlock();

  EXPECT_NE(refusal.message, "") << "accepted";
  EXPECT_EQ(refusal.message.find_first_of("\n\r"), std::string::npos) << refusal.message;
  EXPECT_EQ(trace.lines(), kEnter);
  expectSmallAnswers(*earlier);
  expectSmallAnswers(*modelBy(*translator, smallDocument()));
  return refusal;
}

}  // namespace

std::string edited(std::string_view document, const std::vector<Edit>& edits) {
  std::string text(document);
  for (const Edit& edit : edits) text = ::test::replaced(text, edit.find, edit.with);
  return text;
}

std::string smallDocument(const std::vector<Edit>& edits) {
  return edited(::test::kSmallDocument, edits);
}

std::string readerRefusal(std::string_view bytes) {
  SafeDocument::Parse("<a/>", kDocumentName);  // the parser's own tables are made now
  const std::string message = messageUnder<OrbScore::QuException>(
      bytes.size(), [&] { SafeDocument::Parse(bytes, kDocumentName); });
  EXPECT_NE(message, "") << "accepted";
  return message;
}

Refusal translatorRefusal(const std::string& document, const std::string& encoding) {
  return refusalOf(document.size(), [&](ScoreTranslator& translator) {
    return modelBy(translator, document, encoding);
  });
}

Refusal refusalOfNoElement() {
  return refusalOf(0, [](ScoreTranslator& translator) {
    return Model(translator.ParseFromTree(nullptr, "UTF-8"));
  });
}

void PrintTo(const RefusedRow& row, std::ostream* os) { *os << row.name; }

std::string at(const std::string& path, int line, int column) {
  return "lattice refused: SeqAssociationLattice" + path + " (line " + std::to_string(line) +
         ", column " + std::to_string(column) + "): ";
}

void expectRefused(const RefusedRow& row) {
  const Refusal refusal = translatorRefusal(smallDocument(row.edits));

  EXPECT_EQ(refusal.message, row.message);
  EXPECT_LT(refusal.largestBlock, std::size_t{1} << 20) << "allocated by what is announced";
}

void expectModel(const std::string& document, const std::function<void(const ScoreModel&)>& use) {
  const std::unique_ptr<ScoreTranslator> translator(GiveMyTranslator());
  const Model earlier = modelBy(*translator, smallDocument());
  expectSmallAnswers(*earlier);
  const Trace trace;

  const Meter meter(document.size());
  try {
    use(*modelBy(*translator, document));
  } catch (const OrbScore::QuException& refusal) {
    ADD_FAILURE() << "refused: " << refusal.what();
  }
  meter.check();

  EXPECT_EQ(trace.lines(), std::string(kEnter) + kExit);
  expectSmallAnswers(*earlier);
}

void expectSoundAnswers(const ScoreModel& model, const std::vector<std::string>& histories) {
  for (const std::string& history : histories) {
    for (const Mode mode : {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings}) {
      std::set<std::int32_t> items;
      for (const Answer& answer : ask(model, history, mode)) {
        EXPECT_TRUE(items.insert(answer.item).second) << history << ": " << answer.item << " twice";
        EXPECT_TRUE(std::isfinite(answer.confidence) && std::isfinite(answer.support) &&
                    std::isfinite(answer.cause))
            << history << ": " << testing::PrintToString(answer);
      }
    }
  }
}

bool canTrace() { return std::system("strace -f -o /dev/null true > /dev/null 2>&1") == 0; }

TracedRun tracedRun(const std::string& folder, const std::vector<std::string>& arguments) {
  const TempFolder results;
  // Leaks cannot be looked for in a process that is traced.
  std::string command = "cd '" + folder +
                        "' && ASAN_OPTIONS=\"$ASAN_OPTIONS:detect_leaks=0\" strace -f -s 4096 "
                        "-e trace=%file,%network -o '" +
                        results.path("calls") + "' '" ORBSEQ_BINARY_DIR "/orbseq'";
  for (const std::string& argument : arguments) command += " '" + argument + "'";
  command += " > '" + results.path("output") + "' 2> '" + results.path("error") + "' < /dev/null";

  const int status = std::system(command.c_str());

  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(results.path("output")),
          contentOf(results.path("error")), contentOf(results.path("calls"))};
}

}  // namespace orbseq::test

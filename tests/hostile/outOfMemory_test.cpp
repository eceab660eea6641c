// Memory that runs out in what the module does: reading, building, compiling, answering, writing.
// The miner and the saves of whole files are in outOfMemoryFiles_test.cpp.

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/SafeDocument.h"
#include "lattice/LatticeDocument.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/SequentialResult.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreTranslator.h"
#include "tests/contract/support.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;
using OrbScore::SafeDocument;
using OrbScore::ScoreModel;
using orbseq::ItemLabelMap;
using test::ask;
using test::Mode;
using Answers = std::vector<std::vector<test::Answer>>;

constexpr long kEach = 200;  // allocations that fail before only every seventh does
constexpr Mode kModes[] = {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings};
const char* const kHistories[] = {"", "(1)", "(1 2)(3)", "(4)(9)(1 2)(2 3)", "(2)()(3)(1 4)"};

const ItemLabelMap& labels() {
  static const ItemLabelMap all = {{1, "tea"}, {2, "milk & more"}, {3, std::string(300, 'l')}};
  return all;
}

// The valid lattice as a document with labels, and then everything of it can be asked.
const std::string& document() {
  static const std::string text = [] {
    std::ostringstream stream;
    orbseq::writeLatticeDocument(stream, ValidLattice().dictionary(),
                                 {.closed = true, .labels = &labels()});
    return std::move(stream).str();
  }();
  return text;
}

Answers answersOf(const ScoreModel& model) {
  Answers answers;
  for (const char* history : kHistories)
    for (const Mode mode : kModes) answers.push_back(ask(model, history, mode));
  return answers;
}

void expectValidModel(const ScoreModel& model) {
  static const Answers expected = answersOf(*test::modelOf(document()));
  ASSERT_FALSE(expected.back().empty());
  EXPECT_TRUE(answersOf(model) == expected);
}

// --- The harness ---------------------------------------------------------------------------------

// Two allocations, the second of which may fail: both are given back, or one stays.
template <bool kKeepsTheFirst>
class TwoBlocks {
 public:
  ~TwoBlocks() {
    ::operator delete(first_);
    ::operator delete(second_);
  }
  End run() {
    first_ = ::operator new(8);
    try {
      second_ = ::operator new(8);
    } catch (const std::bad_alloc&) {
      if (kKeepsTheFirst) lost = std::exchange(first_, nullptr);
      throw;
    }
    return End::kDone;
  }
  void check(End) {}

  inline static void* lost = nullptr;

 private:
  void* first_ = nullptr;
  void* second_ = nullptr;
};

struct ForeignException {
  End run() {
    void* const block = ::operator new(8, std::nothrow);
    if (block == nullptr) throw 1;
    ::operator delete(block);
    return End::kDone;
  }
  void check(End) {}
};

// Says that it is done when it is not.
struct HalfAnAnswer {
  End run() {
    void* const block = ::operator new(8, std::nothrow);
    isWhole = block != nullptr;
    ::operator delete(block);
    return End::kDone;
  }
  void check(End end) { EXPECT_TRUE(end != End::kDone || isWhole) << "half an answer"; }
  bool isWhole = false;
};

TEST(EveryAllocation, AnOperationThatKeepsItsPromisesPasses) {
  failEveryAllocationOf<TwoBlocks<false>>({End::kBadAlloc});
}

TEST(EveryAllocation, ALeakIsFound) {
  for (const Failing failing : {Failing::kOnce, Failing::kForEver}) {
    static Failing how;
    how = failing;
    EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<TwoBlocks<true>>(how, {End::kBadAlloc}),
                            "blocks left behind, allocation 2");
    ::operator delete(TwoBlocks<true>::lost);
  }
}

// Opens a file, and forgets it when there is no memory to go on.
struct OpenFile {
  ~OpenFile() { ::close(file); }
  End run() {
    file = ::dup(STDERR_FILENO);
    void* const block = ::operator new(8, std::nothrow);
    if (block == nullptr) {
      lost = std::exchange(file, -1);
      throw std::bad_alloc();
    }
    ::operator delete(block);
    return End::kDone;
  }
  void check(End) {}
  int file = -1;
  inline static int lost = -1;
};

TEST(EveryAllocation, AFileThatIsLeftOpenIsFound) {
  EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<OpenFile>(Failing::kOnce, {End::kBadAlloc}),
                          "a file left open, allocation 1, once");
  ::close(OpenFile::lost);
}

TEST(EveryAllocation, AForeignExceptionIsFound) {
  EXPECT_NONFATAL_FAILURE(failEveryAllocationOf<ForeignException>(Failing::kOnce, {End::kBadAlloc}),
                          "allocation 1, once: a foreign exception");
}

TEST(EveryAllocation, AnExceptionThatIsNotAllowedIsFound) {
  EXPECT_NONFATAL_FAILURE(
      failEveryAllocationOf<ForeignException>(Failing::kForEver, {End::kQuException}),
      "allocation 1, and all that follow: a foreign exception");
}

// What a failed check keeps of itself is seen as left behind, too.
TEST(EveryAllocation, AnAnswerThatIsNotWholeIsFound) {
  using Reporter = testing::ScopedFakeTestPartResultReporter;
  testing::TestPartResultArray failures;
  {
    const Reporter reporter(Reporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    failEveryAllocationOf<HalfAnAnswer>(Failing::kOnce, {End::kBadAlloc});
  }

  ASSERT_GE(failures.size(), 1);
  EXPECT_NE(std::string(failures.GetTestPartResult(0).message()).find("half an answer"),
            std::string::npos);
}

// --- Reading -------------------------------------------------------------------------------------

// From a ready document, by a translator that has made a model before. The first list of elements
// is asked for before: the parser's library loses a block when it has no memory for all that it
// makes then.
class Translate {
 public:
  Translate() : earlier_(translator_->ParseFromTree(earlierDocument_.GetModelElement(), "UTF-8")) {
    OrbScore::BaseTranslator::GetElementsByTagName(document_.GetModelElement(), u"none");
  }

  End run() {
    model_.reset(translator_->ParseFromTree(document_.GetModelElement(), "UTF-8"));
    return End::kDone;
  }
  void check(End end) {
    EXPECT_EQ(model_ != nullptr, end == End::kDone);
    if (end != End::kDone) run();
    expectValidModel(*model_);
    EXPECT_EQ(ask(*earlier_, "(7)", Mode::kCurrent),
              (std::vector<test::Answer>{{9, 0.5, 0.4, 0.8}}));
  }

 private:
  SafeDocument earlierDocument_ = SafeDocument::Parse(test::kSmallDocument, "earlier.xml");
  SafeDocument document_ = SafeDocument::Parse(document(), "d.xml");
  std::unique_ptr<OrbScore::ScoreTranslator> translator_{GiveMyTranslator()};
  std::unique_ptr<ScoreModel> earlier_;
  std::unique_ptr<ScoreModel> model_;
};

TEST(OutOfMemory, Translating) {
  failEveryAllocationOf<Translate>({End::kBadAlloc, End::kDictionaryFailure}, kEach);
}

class MakeTranslator {
 public:
  End run() {
    translator_.reset(GiveMyTranslator());
    return translator_ != nullptr ? End::kDone : End::kReported;
  }
  void check(End) { EXPECT_EQ(run(), End::kDone); }

 private:
  std::unique_ptr<OrbScore::ScoreTranslator> translator_;
};

// Nothing may be thrown through the C entry.
TEST(OutOfMemory, MakingATranslator) { failEveryAllocationOf<MakeTranslator>({End::kReported}); }

enum class Content { kNone, kOther };

// Into a new dictionary, or into one that holds another lattice.
template <Content kContent>
class ReadBinary {
 public:
  ReadBinary() {
    if (kContent == Content::kOther) dictionary_.readObject(other_);
  }
  End run() { return dictionary_.readObject(stream_) > 0 ? End::kDone : End::kReported; }
  void check(End end) {
    if (end != End::kDone) readInto(dictionary_, validBinary());
    expectValidLattice(dictionary_);
  }

 private:
  static std::string otherBinary() { return binaryOf(Lattice({{"", 5}, {"(8)", 4}}, 3)); }

  SequenceDictionary dictionary_;
  std::istringstream other_{otherBinary()};
  std::istringstream stream_{validBinary()};
};

TEST(OutOfMemory, ReadingBinary) {
  failEveryAllocationOf<ReadBinary<Content::kNone>>({End::kBadAlloc, End::kDictionaryFailure});
  failEveryAllocationOf<ReadBinary<Content::kOther>>({End::kBadAlloc, End::kDictionaryFailure});
}

template <Content kContent>
class ReadObjectXml {
 public:
  ReadObjectXml() {
    if (kContent == Content::kOther) dictionary_.readObjectXML(other_);
  }
  End run() { return dictionary_.readObjectXML(stream_) > 0 ? End::kDone : End::kReported; }
  void check(End end) {
    if (end != End::kDone) readXmlInto(dictionary_, validObjectXml());
    expectValidLattice(dictionary_);
  }

 private:
  static std::string otherXml() { return xmlOf(Lattice({{"", 5}, {"(8)", 4}}, 3)); }

  SequenceDictionary dictionary_;
  std::istringstream other_{otherXml()};
  std::istringstream stream_{validObjectXml()};
};

TEST(OutOfMemory, ReadingObjectXml) {
  failEveryAllocationOf<ReadObjectXml<Content::kNone>>({End::kBadAlloc, End::kDictionaryFailure});
  failEveryAllocationOf<ReadObjectXml<Content::kOther>>({End::kBadAlloc, End::kDictionaryFailure});
}

// --- Building ------------------------------------------------------------------------------------

class BuildLattice {
 public:
  BuildLattice() : dictionary_(smallTables(4)) {
    for (const char* set : {"(1)", "(2)", "(3)", "(4)", "(1)(2)", "(1)(3)", "(2)(3)", "(1 2)",
                            "(3 4)", "(1)(2)(3)", "(1 2)(3)", "(4)(3)(2)", "(2)(3 4)"})
      store(dictionary_, history(set), 9);
    store(dictionary_, {}, 20);
  }
  End run() { return dictionary_.buildLattice().IsOK() ? End::kDone : End::kReported; }
  void check(End end) {
    EXPECT_EQ(dictionary_.isLatticeBuilt(), end == End::kDone);
    EXPECT_TRUE(dictionary_.buildLattice().IsOK());
    EXPECT_EQ(futureItems(dictionary_, history("(1 2)")),
              std::vector<Advice>({{3, 1.0, 9.0 / 20.0, 1.0}, {2, 1.0, 9.0 / 20.0, 1.0}}));
  }

 private:
  SequenceDictionary dictionary_;
};

TEST(OutOfMemory, BuildingTheLattice) { failEveryAllocationOf<BuildLattice>({End::kReported}); }

class Compile {
 public:
  End run() {
    compiled_ = std::make_unique<const orbseq::engine::CompiledLattice>(
        orbseq::engine::compile(lattice_.dictionary()));
    return End::kDone;
  }
  void check(End end) {
    EXPECT_EQ(compiled_ != nullptr, end == End::kDone);
    expectValidLattice(lattice_.dictionary());
    if (end != End::kDone) run();
    static const std::vector<std::byte> expected = [this] {
      const auto image = compiled_->image();
      return std::vector<std::byte>(image.begin(), image.end());
    }();
    const auto image = compiled_->image();
    EXPECT_TRUE(std::equal(image.begin(), image.end(), expected.begin(), expected.end()));
  }

 private:
  ValidLattice lattice_;
  std::unique_ptr<const orbseq::engine::CompiledLattice> compiled_;
};

TEST(OutOfMemory, Compiling) { failEveryAllocationOf<Compile>({End::kBadAlloc}); }

// --- Answering -----------------------------------------------------------------------------------

constexpr const char* kCase = "(2)(4)(9)(1 2)(2 3)(1)";

// A case scored by a new model, into no result or into one that holds another answer.
template <Mode kMode, Content kContent>
class Score {
 public:
  Score() {
    record_.SetText("sequence", kCase);
    record_.SetNumber("maxReturn", 20);
    if (kMode != Mode::kCurrent) record_.SetText("returnType", "futureItems");
    if (kMode == Mode::kFutureAllBeginnings) record_.SetText("fromCurrent", "");
    if (kContent == Content::kOther) {
      OrbScore::ScoreResult* result = nullptr;
      static_cast<void>(test::modelOf(document())->GetScore(nullptr, result, false));
      result_.reset(result);
    }
  }
  End run() {
    OrbScore::ScoreResult* result = result_.get();
    const bool reused = result != nullptr;
    const bool done = model_->GetScore(&record_, result, false).IsOK();
    if (!reused) result_.reset(result);
    return done && result == result_.get() ? End::kDone : End::kReported;
  }
  void check(End end) {
    EXPECT_EQ(result_ != nullptr, kContent == Content::kOther || end == End::kDone);
    if (end != End::kDone) {
      EXPECT_EQ(run(), End::kDone);
    }
    static const std::vector<test::Answer> expected = ask(*test::modelOf(document()), kCase, kMode);
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(answers(), expected);
    EXPECT_EQ(result_->GetTarget()->GetName(),
              kMode == Mode::kCurrent ? "currentItems" : "futureItems");
    expectValidModel(*model_);
  }

 private:
  using List = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;

  std::vector<test::Answer> answers() const {
    std::vector<test::Answer> all;
    if (const auto* const list = dynamic_cast<const List*>(result_->GetPrediction()))
      for (const SeqConsequentDescriptor& one : list->GetVectorValue())
        all.push_back({one.GetItem(), one.GetConfidence(), one.GetSupport(), one.GetCause()});
    return all;
  }

  std::shared_ptr<ScoreModel> model_ = test::modelOf(document());
  OrbScore::ScoreCaseRecord record_;
  std::unique_ptr<OrbScore::ScoreResult> result_;
};

TEST(OutOfMemory, ScoringCurrentItems) {
  failEveryAllocationOf<Score<Mode::kCurrent, Content::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kCurrent, Content::kOther>>({End::kBadAlloc});
}

TEST(OutOfMemory, ScoringFutureItems) {
  failEveryAllocationOf<Score<Mode::kFuture, Content::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kFuture, Content::kOther>>({End::kBadAlloc});
}

TEST(OutOfMemory, ScoringFutureItemsFromEveryBeginning) {
  failEveryAllocationOf<Score<Mode::kFutureAllBeginnings, Content::kNone>>({End::kBadAlloc});
  failEveryAllocationOf<Score<Mode::kFutureAllBeginnings, Content::kOther>>({End::kBadAlloc});
}

// The engine's own call, with a new workspace and an answer already in the list.
template <Mode kMode>
class Ask {
 public:
  End run() {
    if (kMode == Mode::kCurrent)
      recommender().currentItems(history_, 20, workspace_, answers_);
    else
      recommender().futureItems(history_, 20, kMode == Mode::kFuture, workspace_, answers_);
    return End::kDone;
  }
  void check(End end) {
    if (end != End::kDone) {
      EXPECT_EQ(answers_.size(), 1U);
      run();
    }
    ASSERT_FALSE(answers_.empty());
    const Advice first = adviceOf(answers_).front();
    EXPECT_EQ(first.item, 77);
    answers_.erase(answers_.begin());
    EXPECT_EQ(adviceOf(answers_), expected());
  }

 private:
  static const orbseq::engine::Recommender& recommender() {
    static const orbseq::engine::CompiledLattice compiled =
        orbseq::engine::compile(ValidLattice().dictionary());
    static const orbseq::engine::Recommender one(compiled);
    return one;
  }
  static const std::vector<Advice>& expected() {
    static const ValidLattice lattice;
    static const std::vector<Advice> all =
        kMode == Mode::kCurrent
            ? currentItems(lattice.dictionary(), history(kCase))
            : futureItems(lattice.dictionary(), history(kCase), 20, kMode == Mode::kFuture);
    return all;
  }

  orbseq::engine::History history_ = engineHistory(history(kCase));
  orbseq::engine::Workspace workspace_;
  orbseq::engine::Answers answers_{SeqConsequentDescriptor(77, 0.5, 0.5, 0.5)};
};

TEST(OutOfMemory, AskingTheEngine) {
  failEveryAllocationOf<Ask<Mode::kCurrent>>({End::kBadAlloc});
  failEveryAllocationOf<Ask<Mode::kFuture>>({End::kBadAlloc});
  failEveryAllocationOf<Ask<Mode::kFutureAllBeginnings>>({End::kBadAlloc});
}

// --- Writing -------------------------------------------------------------------------------------

// Written by `Writer` to a stream in memory, which may run out of it, too. Then the stream is bad.
template <class Writer>
class Write {
 public:
  End run() {
    const bool isOk = Writer::write(lattice_.dictionary(), stream_);
    return isOk && stream_ ? End::kDone : End::kReported;
  }
  void check(End end) {
    if (end != End::kDone) {
      stream_ = std::ostringstream();
      EXPECT_EQ(run(), End::kDone);
    }
    static const std::string expected = stream_.str();
    EXPECT_TRUE(stream_.str() == expected);
    expectValidLattice(lattice_.dictionary());
  }

 private:
  ValidLattice lattice_;
  std::ostringstream stream_;
};

struct LatticeWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.ExportLatticeXML(os, 0.25).IsOK();
  }
};
struct LabelledWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    orbseq::writeLatticeDocument(os, dictionary, {.closed = true, .labels = &labels()});
    return true;
  }
};
struct RulesWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.ExportRulesXML(os, 0, 1, 0, 1, 0, 9, 3, 1.5, 'C', false).IsOK();
  }
};
struct PmmlWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return orbseq::writePmml(os, dictionary, {.labels = &labels()}).IsOK();
  }
};
struct BinaryWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.writeObject(os) > 0;
  }
};
struct ObjectXmlWriter {
  static bool write(const SequenceDictionary& dictionary, std::ostream& os) {
    return dictionary.writeObjectXML(os) > 0;
  }
};

TEST(OutOfMemory, ExportingTheLattice) {
  failEveryAllocationOf<Write<LatticeWriter>>({End::kReported}, kEach);
  failEveryAllocationOf<Write<LabelledWriter>>({End::kReported, End::kBadAlloc}, kEach);
}

TEST(OutOfMemory, ExportingTheRules) {
  failEveryAllocationOf<Write<RulesWriter>>({End::kReported}, kEach);
  failEveryAllocationOf<Write<PmmlWriter>>({End::kReported}, kEach);
}

TEST(OutOfMemory, WritingBinary) {
  failEveryAllocationOf<Write<BinaryWriter>>({End::kReported, End::kBadAlloc, End::kIoException});
}

TEST(OutOfMemory, WritingObjectXml) {
  failEveryAllocationOf<Write<ObjectXmlWriter>>(
      {End::kReported, End::kBadAlloc, End::kIoException});
}

}  // namespace

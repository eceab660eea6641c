// Memory that runs out while a lattice is read: a document by the module, the binary form,
// object-XML. Files are read in outOfMemoryFiles_test.cpp.

#include <gtest/gtest.h>

#include <cstdint>
#include <istream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/SafeDocument.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreTranslator.h"
#include "tests/contract/support.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/labelledModel.h"
#include "tests/hostile/latticeFiles.h"

namespace {

using namespace orbseq::test;
using OrbScore::SafeDocument;
using OrbScore::ScoreModel;
using test::ask;
using test::Mode;

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
  SafeDocument document_ = SafeDocument::Parse(labelledDocument(), "d.xml");
  std::unique_ptr<OrbScore::ScoreTranslator> translator_{GiveMyTranslator()};
  std::unique_ptr<ScoreModel> earlier_;
  std::unique_ptr<ScoreModel> model_;
};

TEST(OutOfMemory, Translating) {
  failEveryAllocationOf<Translate>({End::kBadAlloc, End::kDictionaryFailure});
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

struct Binary {
  static std::string valid() { return validBinary(); }
  static std::string of(const SequenceDictionary& lattice) { return binaryOf(lattice); }
  static std::uint64_t read(SequenceDictionary& into, std::istream& stream) {
    return into.readObject(stream);
  }
};

struct ObjectXml {
  static std::string valid() { return validObjectXml(); }
  static std::string of(const SequenceDictionary& lattice) { return xmlOf(lattice); }
  static std::uint64_t read(SequenceDictionary& into, std::istream& stream) {
    return into.readObjectXML(stream);
  }
};

// Into a new dictionary, or into one that holds another lattice.
template <class Form, Former kFormer>
class Read {
 public:
  Read() {
    if (kFormer == Former::kOther) Form::read(dictionary_, other_);
  }
  End run() { return Form::read(dictionary_, stream_) > 0 ? End::kDone : End::kReported; }
  void check(End end) {
    if (end != End::kDone) {
      std::istringstream again(Form::valid());
      EXPECT_GT(Form::read(dictionary_, again), 0U);
    }
    expectValidLattice(dictionary_);
  }

 private:
  SequenceDictionary dictionary_;
  std::istringstream other_{Form::of(Lattice({{"", 5}, {"(8)", 4}}, 3))};
  std::istringstream stream_{Form::valid()};
};

TEST(OutOfMemory, ReadingBinary) {
  failEveryAllocationOf<Read<Binary, Former::kNone>>({End::kBadAlloc, End::kDictionaryFailure});
  failEveryAllocationOf<Read<Binary, Former::kOther>>({End::kBadAlloc, End::kDictionaryFailure});
}

TEST(OutOfMemory, ReadingObjectXml) {
  failEveryAllocationOf<Read<ObjectXml, Former::kNone>>({End::kBadAlloc, End::kDictionaryFailure});
  failEveryAllocationOf<Read<ObjectXml, Former::kOther>>({End::kBadAlloc, End::kDictionaryFailure});
}

}  // namespace

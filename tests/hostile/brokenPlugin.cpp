// A plug-in that fails before it has a model, as ORBSEQ_TEST_FAILURE asks: "entry KIND" at its
// entry, "parse KIND" when it is given a document. What comes of a case is tested elsewhere.

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "common/OrbExport.h"
#include "common/OrbStatus.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "sequence/SeqExceptions.h"

namespace {

using SEQUENCE_NAMESPACE_800::SeqExceptions;

// An exception type that goes with the plug-in.
class OwnFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

bool isAsked(const std::string& failure) {
  const char* const asked = std::getenv("ORBSEQ_TEST_FAILURE");
  return asked != nullptr && failure == asked;
}

void fail(const std::string& place) {
  if (isAsked(place + "runtime_error")) throw std::runtime_error("a standard exception");
  if (isAsked(place + "own")) throw OwnFailure("an exception\nof the plug-in");
  if (isAsked(place + "QuException")) throw OrbScore::QuException("lattice refused: on purpose");
  if (isAsked(place + "bad_alloc")) throw std::bad_alloc();
  if (isAsked(place + "DictionaryFailure")) throw SeqExceptions::DictionaryFailure();
  if (isAsked(place + "OrbStatus")) throw OrbCommon_830::OrbStatus(60001, false);
  if (isAsked(place + "IOException"))
    throw new SeqExceptions::IOException("offset 0x0, marker: is not \"SD\"");
  if (isAsked(place + "int")) throw 42;
}

class Translator final : public OrbScore::BaseTranslator {
 public:
  OrbScore::ScoreModel* ParseFromTree(OrbScore::DOMElement*, const std::string&) override {
    fail("parse ");
    return nullptr;
  }
};

}  // namespace

extern "C" ORBSEQ_EXPORT OrbScore::ScoreTranslator* GiveMyTranslator() {
  fail("entry ");
  return isAsked("entry null") ? nullptr : new Translator;
}

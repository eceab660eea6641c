// A plug-in whose model misbehaves as the history asks: what the program makes of every failure
// that can come out of a plug-in is tested with it.

#include <cstddef>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/OrbExport.h"
#include "common/OrbStatus.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/BaseModel.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreResult.h"
#include "scoring/hostapi/StringValue.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/SeqExceptions.h"

namespace {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using SEQUENCE_NAMESPACE_800::SeqExceptions;

// An exception type that goes with the plug-in.
class OwnFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Result final : public OrbScore::ScoreResult {
 public:
  ~Result() override { delete prediction_; }
  void SetPrediction(OrbScore::ScoreValue* value) override {
    delete prediction_;
    prediction_ = value;
  }
  OrbScore::ScoreValue* GetPrediction() const override { return prediction_; }
  OrbScore::ScoreDictVar* GetTarget() const override { return nullptr; }
  void SetConfidence(double) override {}
  double GetConfidence() const override { return -1.0; }
  int GetScoreResultType() const override { return 1; }

 private:
  OrbScore::ScoreValue* prediction_ = nullptr;
};

void fail(const std::string& kind) {
  if (kind == "runtime_error") throw std::runtime_error("a standard exception");
  if (kind == "own") throw OwnFailure("an exception of the plug-in");
  if (kind == "QuException") throw OrbScore::QuException("case refused: sequence: too long");
  if (kind == "bad_alloc") throw std::bad_alloc();
  if (kind == "DictionaryFailure") throw SeqExceptions::DictionaryFailure();
  if (kind == "IOException") throw new SeqExceptions::IOException("a stored lattice is broken");
  if (kind == "OrbStatus") throw OrbCommon_830::OrbStatus(60001, false);
  if (kind == "int") throw 42;
}

class Model final : public OrbScore::BaseModel {
 public:
  OrbScore::OrbStatus GetScore(const OrbScore::ScoreCaseRecord* record,
                               OrbScore::ScoreResult*& result, bool) const override {
    const std::string kind = record->GetField("sequence")->GetString();
    fail(kind);
    if (kind == "error status") return {60000, false};
    if (kind == "no result") return {};
    if (result == nullptr) result = new Result;
    if (kind == "text") {
      result->SetPrediction(new OrbScore::StringValue("x"));
    } else if (kind != "no prediction") {
      const std::vector<SeqConsequentDescriptor> items{{7, 0.25, 0.5, 0.125}};
      result->SetPrediction(new OrbQuillon_830::VectorValue<SeqConsequentDescriptor>(items));
    }
    return {};
  }
};

class Translator final : public OrbScore::BaseTranslator {
 public:
  OrbScore::ScoreModel* ParseFromTree(OrbScore::DOMElement*, const std::string&) override {
    return new Model;
  }
};

}  // namespace

extern "C" ORBSEQ_EXPORT OrbScore::ScoreTranslator* GiveMyTranslator() { return new Translator; }

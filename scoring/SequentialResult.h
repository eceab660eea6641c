// What scoring a case gave: the ranked list, and a target variable that names its kind
// ("currentItems" or "futureItems").
//
// Ownership: the result owns target and prediction. Not copyable: two results would share them.
// Threads: one thread at a time.

#ifndef SCORING_SEQUENTIALRESULT_H_
#define SCORING_SEQUENTIALRESULT_H_

#include <memory>
#include <string>

#include "common/OrbExport.h"
#include "scoring/hostapi/ScoreDictVar.h"
#include "scoring/hostapi/ScoreResult.h"
#include "scoring/hostapi/ScoreValue.h"

namespace OrbQuillon_830 {

class ORBSEQ_EXPORT SequentialResult : public OrbScore::ScoreResult {
 public:
  // The code by which a model knows a result that it may reuse.
  static constexpr int kResultType = 13;

  // Owns the target, which may be null; there is no prediction yet.
  explicit SequentialResult(OrbScore::ScoreDictVar* target);
  ~SequentialResult() override;
  SequentialResult(const SequentialResult&) = delete;
  SequentialResult& operator=(const SequentialResult&) = delete;

  // Owns the value and destroys the previous one; setting the value that is held changes nothing.
  void SetPrediction(OrbScore::ScoreValue* value) override;
  OrbScore::ScoreValue* GetPrediction() const override { return prediction_.get(); }
  OrbScore::ScoreDictVar* GetTarget() const override { return target_.get(); }

  // Deliberate: a list has no confidence of its own; setting does nothing, reading gives -1.0.
  void SetConfidence(double confidence) override;
  double GetConfidence() const override { return -1.0; }
  int GetScoreResultType() const override { return kResultType; }

  // Names the target; nothing happens without one.
  void SetTargetVarName(const std::string& name);

 private:
  std::unique_ptr<OrbScore::ScoreDictVar> target_;
  std::unique_ptr<OrbScore::ScoreValue> prediction_;
};

}  // namespace OrbQuillon_830

#endif  // SCORING_SEQUENTIALRESULT_H_

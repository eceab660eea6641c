// What scoring one case gave: a prediction and the variable that names its kind.
//
// Owned by the host between calls and deleted through the virtual destructor.

#ifndef SCORING_HOSTAPI_SCORERESULT_H_
#define SCORING_HOSTAPI_SCORERESULT_H_

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ScoreDictVar;
class ScoreValue;

class ORBSCORE_EXPORT ScoreResult {
 public:
  virtual ~ScoreResult();

  // Takes ownership of the value; the previous one is destroyed.
  virtual void SetPrediction(ScoreValue* value) = 0;
  // Both stay owned by the result; null when there is none.
  virtual ScoreValue* GetPrediction() const = 0;
  virtual ScoreDictVar* GetTarget() const = 0;

  virtual void SetConfidence(double confidence) = 0;
  virtual double GetConfidence() const = 0;
  // The code of the result's own type, by which a model knows a result that it may reuse.
  virtual int GetScoreResultType() const = 0;

 protected:
  ScoreResult() = default;
  ScoreResult(const ScoreResult&) = default;
  ScoreResult& operator=(const ScoreResult&) = default;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCORERESULT_H_

// A model that scores cases: what a translator makes of a document.
//
// The host owns the model. Threads: the const operations may be called by any number of threads
// at once, each with its own record and result.

#ifndef SCORING_HOSTAPI_SCOREMODEL_H_
#define SCORING_HOSTAPI_SCOREMODEL_H_

#include <iosfwd>

#include "scoring/hostapi/OrbStatus.h"

namespace OrbScore {

class ScoreCaseRecord;
class ScoreDictionary;
class ScoreResult;
class VersionInfo;

class ORBSCORE_EXPORT ScoreModel {
 public:
  enum VarRole : int { kActive = 0, kPredicted = 1, kSupplementary = 2 };
  enum ModelType : int { kUnknownModel = 0, kSequentialAssociation = 14 };

  virtual ~ScoreModel();

  virtual void SetPredictionOnly(bool predictionOnly) = 0;
  // The variables of a role, owned by the model; null when it names none.
  virtual ScoreDictionary* GetVarsOfRole(VarRole role) const = 0;

  // Scores one case. `result` is null, or a result of an earlier call, which the model refills
  // when it is of its own kind and destroys and replaces otherwise. The caller owns it.
  virtual OrbStatus GetScore(const ScoreCaseRecord* record, ScoreResult*& result,
                             bool flag) const = 0;

  virtual ModelType GetModelType() const = 0;
  virtual bool GetPredictionOnly() const = 0;
  virtual void Display(std::ostream& os) const = 0;

  // The labels of the model's items, owned by the model; null when the document has none.
  virtual const ScoreDictionary* GetScoreDictionary() const = 0;
  virtual const VersionInfo& GetVersionInfo() const = 0;

 protected:
  ScoreModel() = default;
  ScoreModel(const ScoreModel&) = default;
  ScoreModel& operator=(const ScoreModel&) = default;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCOREMODEL_H_

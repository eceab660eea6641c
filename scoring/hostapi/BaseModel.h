// The host's part of a model: label dictionary, version, and plain answers for the rest.

#ifndef SCORING_HOSTAPI_BASEMODEL_H_
#define SCORING_HOSTAPI_BASEMODEL_H_

#include <memory>

#include "scoring/hostapi/ScoreDictionary.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/VersionInfo.h"

namespace OrbScore {

class ORBSCORE_EXPORT BaseModel : public ScoreModel {
 public:
  BaseModel();
  ~BaseModel() override;
  BaseModel(const BaseModel&) = delete;
  BaseModel& operator=(const BaseModel&) = delete;

  void SetPredictionOnly(bool predictionOnly) override;
  ScoreDictionary* GetVarsOfRole(VarRole role) const override;
  ModelType GetModelType() const override;
  bool GetPredictionOnly() const override;
  void Display(std::ostream& os) const override;

  const ScoreDictionary* GetScoreDictionary() const override;
  const VersionInfo& GetVersionInfo() const override;

  // Takes ownership; the previous dictionary is destroyed. Null: no labels.
  void SetScoreDictionary(ScoreDictionary* dictionary);
  void SetVersionInfo(const VersionInfo& version);

 private:
  std::unique_ptr<ScoreDictionary> dictionary_;
  VersionInfo version_;
  bool predictionOnly_ = false;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_BASEMODEL_H_

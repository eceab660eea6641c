#include "scoring/hostapi/BaseModel.h"

#include <ostream>

namespace OrbScore {

BaseModel::BaseModel() = default;
BaseModel::~BaseModel() = default;

void BaseModel::SetPredictionOnly(bool predictionOnly) { predictionOnly_ = predictionOnly; }

ScoreDictionary* BaseModel::GetVarsOfRole(VarRole) const { return nullptr; }

ScoreModel::ModelType BaseModel::GetModelType() const { return kUnknownModel; }

bool BaseModel::GetPredictionOnly() const { return predictionOnly_; }

void BaseModel::Display(std::ostream& os) const {
  os << "Model of type " << static_cast<int>(GetModelType());
  if (!version_.GetVersion().empty()) os << ", version " << version_.GetVersion();
  os << '\n';
}

const ScoreDictionary* BaseModel::GetScoreDictionary() const { return dictionary_.get(); }

const VersionInfo& BaseModel::GetVersionInfo() const { return version_; }

void BaseModel::SetScoreDictionary(ScoreDictionary* dictionary) {
  if (dictionary != dictionary_.get()) dictionary_.reset(dictionary);
}

void BaseModel::SetVersionInfo(const VersionInfo& version) { version_ = version; }

}  // namespace OrbScore

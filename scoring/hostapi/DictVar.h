// The host's own variable: name, type and mapped label held by value.

#ifndef SCORING_HOSTAPI_DICTVAR_H_
#define SCORING_HOSTAPI_DICTVAR_H_

#include <string>

#include "scoring/hostapi/ScoreDictVar.h"

namespace OrbScore {

class ORBSCORE_EXPORT DictVar : public ScoreDictVar {
 public:
  DictVar(const std::string& name, VariableType type);
  ~DictVar() override;

  const std::string& GetName() const override;
  void SetName(const std::string& name) override;
  VariableType GetVariableType() const override;
  const std::string& GetMappedLabel() const override;
  void SetMappedLabel(const std::string& label);

 private:
  std::string name_;
  std::string label_;
  VariableType type_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_DICTVAR_H_

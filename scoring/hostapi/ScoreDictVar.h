// A variable that a host knows by name: an item with its label, or the target of a result.

#ifndef SCORING_HOSTAPI_SCOREDICTVAR_H_
#define SCORING_HOSTAPI_SCOREDICTVAR_H_

#include <string>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT ScoreDictVar {
 public:
  enum VariableType : int { kCategorical = 0, kContinuous = 1, kVector = 2 };

  virtual ~ScoreDictVar();

  virtual const std::string& GetName() const = 0;
  virtual void SetName(const std::string& name) = 0;
  virtual VariableType GetVariableType() const = 0;

  // The text shown to people instead of the name; empty when there is none.
  virtual const std::string& GetMappedLabel() const = 0;

 protected:
  ScoreDictVar() = default;
  ScoreDictVar(const ScoreDictVar&) = default;
  ScoreDictVar& operator=(const ScoreDictVar&) = default;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCOREDICTVAR_H_

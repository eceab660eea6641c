// The variables that a model knows, by name.
//
// Threads: read-only once it is with a model; any number of readers.

#ifndef SCORING_HOSTAPI_SCOREDICTIONARY_H_
#define SCORING_HOSTAPI_SCOREDICTIONARY_H_

#include <cstddef>
#include <string>
#include <vector>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ScoreDictVar;

class ORBSCORE_EXPORT ScoreDictionary {
 public:
  virtual ~ScoreDictionary();

  // The variable, owned by the dictionary, or null.
  virtual const ScoreDictVar* GetVariable(const std::string& name) const = 0;
  virtual std::size_t GetSize() const = 0;
  // Every name, in the order of their bytes.
  virtual std::vector<std::string> GetNames() const = 0;

 protected:
  ScoreDictionary() = default;
  ScoreDictionary(const ScoreDictionary&) = default;
  ScoreDictionary& operator=(const ScoreDictionary&) = default;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCOREDICTIONARY_H_

// The host's own dictionary of variables.

#ifndef SCORING_HOSTAPI_BASEDICTIONARY_H_
#define SCORING_HOSTAPI_BASEDICTIONARY_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "scoring/hostapi/DictVar.h"
#include "scoring/hostapi/ScoreDictionary.h"

namespace OrbScore {

class ORBSCORE_EXPORT BaseDictionary : public ScoreDictionary {
 public:
  BaseDictionary();
  ~BaseDictionary() override;
  BaseDictionary(const BaseDictionary&) = delete;
  BaseDictionary& operator=(const BaseDictionary&) = delete;

  // Adds the variable under the name and owns it from the call on, also when the call throws. The
  // first variable of a name stands; a later one is destroyed and false comes back.
  bool AddVariable(const std::string& name, DictVar* variable);

  const DictVar* GetVariable(const std::string& name) const override;
  std::size_t GetSize() const override;
  std::vector<std::string> GetNames() const override;

 private:
  std::map<std::string, std::unique_ptr<DictVar>> variables_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_BASEDICTIONARY_H_

// The version text of the document that a model was read from.

#ifndef SCORING_HOSTAPI_VERSIONINFO_H_
#define SCORING_HOSTAPI_VERSIONINFO_H_

#include <string>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT VersionInfo {
 public:
  VersionInfo();  // no version: empty text
  explicit VersionInfo(const std::string& version);

  const std::string& GetVersion() const noexcept;

 private:
  std::string version_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_VERSIONINFO_H_

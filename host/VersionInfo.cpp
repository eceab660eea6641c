#include "scoring/hostapi/VersionInfo.h"

namespace OrbScore {

VersionInfo::VersionInfo() = default;
VersionInfo::VersionInfo(const std::string& version) : version_(version) {}

const std::string& VersionInfo::GetVersion() const noexcept { return version_; }

}  // namespace OrbScore

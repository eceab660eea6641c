// What a scoring call returns: a code, a severity (0 OK, above 0 warning, below 0 error) and three
// integer and three real details.
//
// Plain value with the same layout as the lattice's own status; the two copy the same way.

#ifndef SCORING_HOSTAPI_ORBSTATUS_H_
#define SCORING_HOSTAPI_ORBSTATUS_H_

#include <array>
#include <cstdint>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT OrbStatus {
 public:
  // OK: code 0, severity 0, every detail 0.
  OrbStatus() = default;
  OrbStatus(std::int32_t code, bool warning)
      : errorCode_(code), severity_(static_cast<std::int16_t>(warning ? 1 : -1)) {}

  bool IsOK() const noexcept { return severity_ == 0; }
  bool IsError() const noexcept { return severity_ < 0; }
  bool IsWarning() const noexcept { return severity_ > 0; }
  std::int32_t GetErrorCode() const noexcept { return errorCode_; }

  friend bool operator==(const OrbStatus&, const OrbStatus&) = default;

 private:
  std::int32_t errorCode_ = 0;
  std::int16_t severity_ = 0;
  std::array<std::int32_t, 3> discrete_{};
  std::array<double, 3> scale_{};
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_ORBSTATUS_H_

// The result of a fallible operation: a code, a severity, and six details.
//
// Plain value, no ownership, no virtual operations; copies copy the whole record. It is returned
// by value, and thrown by value where a published operation says so (an index out of range).
// OrbScore::OrbStatus of the host has the same layout.
//
// Severity alone decides: 0 is OK, positive is a warning, negative is an error. A status made
// from a code is a warning or an error, also when the code is 0.
//
// Threads: as int.

#ifndef COMMON_ORBSTATUS_H_
#define COMMON_ORBSTATUS_H_

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "common/OrbExport.h"

namespace OrbCommon_830 {

class ORBSEQ_EXPORT OrbStatus {
 public:
  static constexpr unsigned kSlots = 3;  // slots of each kind of datum

  // OK: code 0, severity 0, every datum 0.
  OrbStatus() = default;
  OrbStatus(std::int32_t code, bool warning)
      : errorCode_(code), severity_(static_cast<std::int16_t>(warning ? 1 : -1)) {}

  bool IsOK() const noexcept { return severity_ == 0; }
  bool IsError() const noexcept { return severity_ < 0; }
  bool IsWarning() const noexcept { return severity_ > 0; }
  std::int32_t GetErrorCode() const noexcept { return errorCode_; }

  // Details of the condition. Requires index < kSlots. A larger index is a caller's bug: debug
  // builds assert; otherwise a write is ignored and a read gives 0.
  void SetDiscreteDatum(unsigned index, std::int32_t value) noexcept {
    assert(index < kSlots);
    if (index < kSlots) discrete_[index] = value;
  }
  std::int32_t GetDiscreteDatum(unsigned index) const noexcept {
    assert(index < kSlots);
    return index < kSlots ? discrete_[index] : 0;
  }
  void SetScaleDatum(unsigned index, double value) noexcept {
    assert(index < kSlots);
    if (index < kSlots) scale_[index] = value;
  }
  double GetScaleDatum(unsigned index) const noexcept {
    assert(index < kSlots);
    return index < kSlots ? scale_[index] : 0.0;
  }

  // Equal codes, severities and data. Scale data compare as doubles: a NaN on either side makes
  // two statuses unequal, and 0.0 equals -0.0.
  friend bool operator==(const OrbStatus& a, const OrbStatus& b) noexcept {
    return a.errorCode_ == b.errorCode_ && a.severity_ == b.severity_ &&
           a.discrete_ == b.discrete_ && a.scale_ == b.scale_;
  }

 private:
  std::int32_t errorCode_ = 0;
  std::int16_t severity_ = 0;
  std::array<std::int32_t, kSlots> discrete_{};
  std::array<double, kSlots> scale_{};
};

}  // namespace OrbCommon_830

#endif  // COMMON_ORBSTATUS_H_

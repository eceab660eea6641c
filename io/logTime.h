// Times of a log as numbers.
//
// A time is a decimal number, in whatever unit the log has, or an ISO 8601 date, or date and time:
// 2011-01-18, 2011-01-18T10:01, 2011-01-18 10:01:30.5, with Z or an offset such as +01:00 at the
// end. Those become seconds since the beginning of 1970, UTC where nothing else is said.
//
// Periods put the times of one customer into one basket: a minute, hour, day, week (from Monday) or
// month of the calendar, of times in seconds; or any number of the log's units.

#ifndef IO_LOGTIME_H_
#define IO_LOGTIME_H_

#include <optional>
#include <string_view>

namespace orbseq {

// Finite, or nothing when the text is no time.
std::optional<double> logTimeOf(std::string_view text) noexcept;

class Period {
 public:
  // "minute", "hour", "day", "week", "month", or a number above 0; nothing for any other text.
  static std::optional<Period> of(std::string_view text) noexcept;

  // The beginning of the period that the time is in.
  double beginOf(double time) const noexcept;

 private:
  Period(double length, double origin) noexcept : length_(length), origin_(origin) {}

  double length_;  // 0: a month
  double origin_;
};

}  // namespace orbseq

#endif  // IO_LOGTIME_H_

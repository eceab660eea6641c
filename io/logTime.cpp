#include "io/logTime.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <system_error>

namespace orbseq {

namespace {

namespace chrono = std::chrono;

constexpr double kMinute = 60.0;
constexpr double kHour = 60.0 * kMinute;
constexpr double kDay = 24.0 * kHour;

// Takes fields from the front of a text.
class Cursor {
 public:
  explicit Cursor(std::string_view text) noexcept : text_(text) {}

  bool atEnd() const noexcept { return text_.empty(); }
  bool take(char c) noexcept {
    if (text_.empty() || text_.front() != c) return false;
    text_.remove_prefix(1);
    return true;
  }
  // Exactly so many digits.
  std::optional<int> digits(std::size_t count) noexcept {
    if (text_.size() < count) return std::nullopt;
    int value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const char c = text_[i];
      if (c < '0' || c > '9') return std::nullopt;
      value = value * 10 + (c - '0');
    }
    text_.remove_prefix(count);
    return value;
  }
  // ".5": the digits behind a point, as a fraction; 0 where there is no point.
  std::optional<double> fraction() noexcept {
    if (!take('.') && !take(',')) return 0.0;
    double value = 0.0;
    double unit = 0.1;
    std::size_t used = 0;
    for (; used < text_.size() && text_[used] >= '0' && text_[used] <= '9'; ++used, unit /= 10.0)
      value += unit * (text_[used] - '0');
    if (used == 0) return std::nullopt;
    text_.remove_prefix(used);
    return value;
  }

 private:
  std::string_view text_;
};

// Seconds of "10:01", "10:01:30" or "10:01:30.5".
std::optional<double> clockOf(Cursor& cursor) noexcept {
  const auto hour = cursor.digits(2);
  if (!hour || *hour > 24 || !cursor.take(':')) return std::nullopt;
  const auto minute = cursor.digits(2);
  if (!minute || *minute > 59) return std::nullopt;
  double seconds = 0.0;
  if (cursor.take(':')) {
    const auto second = cursor.digits(2);
    const auto fraction = cursor.fraction();
    if (!second || *second > 60 || !fraction) return std::nullopt;
    seconds = *second + *fraction;
  }
  const double time = *hour * kHour + *minute * kMinute + seconds;
  const bool isPastMidnight = *hour == 24 && time > kDay;
  return isPastMidnight ? std::nullopt : std::optional(time);
}

// Seconds of "Z", "+01", "+0100" or "+01:00"; 0 for nothing.
std::optional<double> offsetOf(Cursor& cursor) noexcept {
  if (cursor.atEnd() || cursor.take('Z')) return 0.0;
  const bool isEast = cursor.take('+');
  if (!isEast && !cursor.take('-')) return std::nullopt;
  const auto hours = cursor.digits(2);
  if (!hours || *hours > 23) return std::nullopt;
  const bool wantsMinutes = cursor.take(':');
  const auto minutes = cursor.atEnd() && !wantsMinutes ? std::optional(0) : cursor.digits(2);
  if (!minutes || *minutes > 59) return std::nullopt;
  const double offset = *hours * kHour + *minutes * kMinute;
  return isEast ? offset : -offset;
}

std::optional<double> isoTimeOf(std::string_view text) noexcept {
  Cursor cursor(text);
  const auto year = cursor.digits(4);
  if (!year || !cursor.take('-')) return std::nullopt;
  const auto month = cursor.digits(2);
  if (!month || !cursor.take('-')) return std::nullopt;
  const auto day = cursor.digits(2);
  if (!day) return std::nullopt;
  const chrono::year_month_day date(chrono::year(*year),
                                    chrono::month(static_cast<unsigned>(*month)),
                                    chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  const double midnight =
      static_cast<double>(chrono::sys_days(date).time_since_epoch().count()) * kDay;
  if (cursor.atEnd()) return midnight;
  if (!cursor.take('T') && !cursor.take(' ')) return std::nullopt;
  const auto clock = clockOf(cursor);
  if (!clock) return std::nullopt;
  const auto offset = offsetOf(cursor);
  if (!offset || !cursor.atEnd()) return std::nullopt;
  return midnight + *clock - *offset;
}

std::optional<double> numberOf(std::string_view text) noexcept {
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isNumber =
      error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
  return isNumber ? std::optional(value) : std::nullopt;
}

double monthOf(double time) noexcept {
  constexpr double kMostDays = 1e7;  // within the calendar's range
  const double days = std::floor(time / kDay);
  if (!(std::abs(days) < kMostDays)) return time;
  const chrono::year_month_day date(chrono::sys_days(chrono::days(static_cast<int>(days))));
  const chrono::sys_days first(date.year() / date.month() / chrono::day(1));
  return static_cast<double>(first.time_since_epoch().count()) * kDay;
}

}  // namespace

std::optional<double> logTimeOf(std::string_view text) noexcept {
  if (const auto number = numberOf(text)) return number;
  return isoTimeOf(text);
}

std::optional<Period> Period::of(std::string_view text) noexcept {
  constexpr double kMonday = 4.0 * kDay;  // the fifth of January 1970
  if (text == "minute") return Period(kMinute, 0.0);
  if (text == "hour") return Period(kHour, 0.0);
  if (text == "day") return Period(kDay, 0.0);
  if (text == "week") return Period(7.0 * kDay, kMonday);
  if (text == "month") return Period(0.0, 0.0);
  const auto length = numberOf(text);
  return length && *length > 0.0 ? std::optional(Period(*length, 0.0)) : std::nullopt;
}

double Period::beginOf(double time) const noexcept {
  if (length_ == 0.0) return monthOf(time);
  const double begin = origin_ + std::floor((time - origin_) / length_) * length_;
  return std::isfinite(begin) ? begin : time;  // a period too short for the clock
}

}  // namespace orbseq

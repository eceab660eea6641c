#include "scoring/hostapi/NumericValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>

#include "common/OrbMV.h"

namespace OrbScore {
namespace {

using OrbCommon_830::OrbMV;

double numberOf(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return OrbMV::Missing();
  text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
  // std::from_chars takes a minus, and a plus only in the exponent.
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);

  double number = 0.0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool whole = error == std::errc() && stop == end;
  return whole && std::isfinite(number) ? number : OrbMV::Missing();
}

// A list stands for its length, as it does where the list is on the left.
double numberOf(const ScoreValue& value) {
  return value.GetType() == ScoreValue::kVector ? value.GetInt() : value.GetDouble();
}

}  // namespace

NumericValue::NumericValue(double value) : value_(value) {}
NumericValue::NumericValue(const std::string& text) : value_(numberOf(text)) {}
NumericValue::~NumericValue() = default;

void NumericValue::SetValue(const ScoreValue* other) {
  const bool hasNumber = other != nullptr && other->GetType() != kVector;
  value_ = hasNumber ? other->GetDouble() : OrbMV::Missing();
}

NumericValue* NumericValue::GetValue() const { return Clone(); }
NumericValue* NumericValue::Clone() const { return new NumericValue(value_); }

bool NumericValue::operator==(const ScoreValue& other) const { return value_ == numberOf(other); }
bool NumericValue::Equal(const ScoreValue* other, bool, bool) const {
  return other != nullptr && operator==(*other);
}
bool NumericValue::operator>(const ScoreValue& other) const { return value_ > numberOf(other); }
bool NumericValue::operator<(const ScoreValue& other) const { return value_ < numberOf(other); }
bool NumericValue::operator<=(const ScoreValue& other) const { return value_ <= numberOf(other); }
bool NumericValue::operator>=(const ScoreValue& other) const { return value_ >= numberOf(other); }

bool NumericValue::IsSystemMissingValue() const { return OrbMV::IsMissing(value_); }

std::int32_t NumericValue::GetInt() const {
  constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
  constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
  if (std::isnan(value_)) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(std::clamp(value_, kLowest, kHighest));
}

double NumericValue::GetDouble() const { return value_; }

std::string NumericValue::GetString() const {
  if (IsSystemMissingValue()) return {};
  std::array<char, 32> text;
  const auto written =
      std::to_chars(text.data(), text.data() + text.size(), value_, std::chars_format::general, 15);
  return {text.data(), written.ptr};
}

int NumericValue::GetType() const { return kNumber; }

}  // namespace OrbScore

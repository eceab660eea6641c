#include "scoring/hostapi/StringValue.h"

#include <utility>

#include "scoring/hostapi/NumericValue.h"

namespace OrbScore {

StringValue::StringValue(std::string text) : text_(std::move(text)) {}
StringValue::~StringValue() = default;

void StringValue::SetValue(const ScoreValue* other) {
  text_ = other != nullptr ? other->GetString() : std::string();
}

StringValue* StringValue::GetValue() const { return Clone(); }
StringValue* StringValue::Clone() const { return new StringValue(text_); }

bool StringValue::operator==(const ScoreValue& other) const { return text_ == other.GetString(); }
bool StringValue::Equal(const ScoreValue* other, bool, bool) const {
  return other != nullptr && operator==(*other);
}
bool StringValue::operator>(const ScoreValue& other) const { return text_ > other.GetString(); }
bool StringValue::operator<(const ScoreValue& other) const { return text_ < other.GetString(); }
bool StringValue::operator<=(const ScoreValue& other) const { return text_ <= other.GetString(); }
bool StringValue::operator>=(const ScoreValue& other) const { return text_ >= other.GetString(); }

bool StringValue::IsSystemMissingValue() const { return false; }
std::int32_t StringValue::GetInt() const { return NumericValue(text_).GetInt(); }
double StringValue::GetDouble() const { return NumericValue(text_).GetDouble(); }
std::string StringValue::GetString() const { return text_; }
int StringValue::GetType() const { return kText; }

}  // namespace OrbScore

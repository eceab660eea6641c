#include "scoring/hostapi/ScoreCaseRecord.h"

#include <utility>

#include "scoring/hostapi/NumericValue.h"
#include "scoring/hostapi/StringValue.h"

namespace OrbScore {

ScoreCaseRecord::ScoreCaseRecord() = default;
ScoreCaseRecord::~ScoreCaseRecord() = default;
ScoreCaseRecord::ScoreCaseRecord(ScoreCaseRecord&&) noexcept = default;
ScoreCaseRecord& ScoreCaseRecord::operator=(ScoreCaseRecord&&) noexcept = default;

void ScoreCaseRecord::SetField(const std::string& name, std::unique_ptr<ScoreValue> value) {
  if (value == nullptr)
    RemoveField(name);
  else
    fields_.insert_or_assign(name, std::move(value));
}

void ScoreCaseRecord::SetText(const std::string& name, const std::string& text) {
  SetField(name, std::make_unique<StringValue>(text));
}

void ScoreCaseRecord::SetNumber(const std::string& name, double number) {
  SetField(name, std::make_unique<NumericValue>(number));
}

void ScoreCaseRecord::RemoveField(const std::string& name) { fields_.erase(name); }

void ScoreCaseRecord::Clear() { fields_.clear(); }

const ScoreValue* ScoreCaseRecord::GetField(const std::string& name) const {
  const auto found = fields_.find(name);
  return found == fields_.end() ? nullptr : found->second.get();
}

}  // namespace OrbScore

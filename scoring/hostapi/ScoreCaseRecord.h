// One case to score: its fields by name.
//
// The record owns its values. Threads: any number of readers, or one writer.

#ifndef SCORING_HOSTAPI_SCORECASERECORD_H_
#define SCORING_HOSTAPI_SCORECASERECORD_H_

#include <map>
#include <memory>
#include <string>

#include "scoring/hostapi/ScoreValue.h"

namespace OrbScore {

class ORBSCORE_EXPORT ScoreCaseRecord {
 public:
  ScoreCaseRecord();
  ~ScoreCaseRecord();
  ScoreCaseRecord(ScoreCaseRecord&&) noexcept;
  ScoreCaseRecord& operator=(ScoreCaseRecord&&) noexcept;
  ScoreCaseRecord(const ScoreCaseRecord&) = delete;
  ScoreCaseRecord& operator=(const ScoreCaseRecord&) = delete;

  // Sets or replaces a field and owns the value from the call on. A null value removes the field.
  void SetField(const std::string& name, std::unique_ptr<ScoreValue> value);
  void SetText(const std::string& name, const std::string& text);
  void SetNumber(const std::string& name, double number);
  void RemoveField(const std::string& name);
  void Clear();

  // The field's value, or null when the case has no such field. Valid until the field changes.
  const ScoreValue* GetField(const std::string& name) const;

 private:
  std::map<std::string, std::unique_ptr<ScoreValue>> fields_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCORECASERECORD_H_

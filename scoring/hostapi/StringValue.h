// A text field of a case.
//
// Threads: as std::string.

#ifndef SCORING_HOSTAPI_STRINGVALUE_H_
#define SCORING_HOSTAPI_STRINGVALUE_H_

#include <string>

#include "scoring/hostapi/ScoreValue.h"

namespace OrbScore {

class ORBSCORE_EXPORT StringValue : public ScoreValue {
 public:
  explicit StringValue(std::string text);
  ~StringValue() override;

  // Takes the other's text; null gives the empty text.
  void SetValue(const ScoreValue* other) override;
  StringValue* GetValue() const override;
  StringValue* Clone() const override;

  // Compared by the bytes of GetString().
  bool operator==(const ScoreValue& other) const override;
  bool Equal(const ScoreValue* other, bool, bool) const override;
  bool operator>(const ScoreValue& other) const override;
  bool operator<(const ScoreValue& other) const override;
  bool operator<=(const ScoreValue& other) const override;
  bool operator>=(const ScoreValue& other) const override;

  bool IsSystemMissingValue() const override;  // a text is never missing

  // The text read as NumericValue reads it; text that is no number gives the smallest integer and
  // the missing value.
  std::int32_t GetInt() const override;
  double GetDouble() const override;
  std::string GetString() const override;
  int GetType() const override;

 private:
  std::string text_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_STRINGVALUE_H_

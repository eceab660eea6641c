// A number, or the system-missing value (the most negative finite double).
//
// Threads: as double.

#ifndef SCORING_HOSTAPI_NUMERICVALUE_H_
#define SCORING_HOSTAPI_NUMERICVALUE_H_

#include <string>

#include "scoring/hostapi/ScoreValue.h"

namespace OrbScore {

class ORBSCORE_EXPORT NumericValue : public ScoreValue {
 public:
  explicit NumericValue(double value);

  // The decimal text as a number, whatever the locale: optional blanks around it, optional sign,
  // digits with at most one ".", optional exponent. Text that does not convert whole, and text
  // whose number is not finite, gives the missing value.
  explicit NumericValue(const std::string& text);
  ~NumericValue() override;

  // A value without a number (null, a list) gives the missing value.
  void SetValue(const ScoreValue* other) override;
  NumericValue* GetValue() const override;
  NumericValue* Clone() const override;

  bool operator==(const ScoreValue& other) const override;
  bool Equal(const ScoreValue* other, bool, bool) const override;
  bool operator>(const ScoreValue& other) const override;
  bool operator<(const ScoreValue& other) const override;
  bool operator<=(const ScoreValue& other) const override;
  bool operator>=(const ScoreValue& other) const override;

  bool IsSystemMissingValue() const override;

  // Truncated toward zero and clamped to 32 bits; the missing value gives the smallest integer.
  std::int32_t GetInt() const override;
  double GetDouble() const override;

  // 15 significant digits, "." as decimal point; the missing value gives the empty text.
  std::string GetString() const override;
  int GetType() const override;

 private:
  double value_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_NUMERICVALUE_H_

// A list of which nothing but the length is known.

#ifndef TESTS_HOST_LENGTHVALUE_H_
#define TESTS_HOST_LENGTHVALUE_H_

#include <limits>
#include <string>

#include "scoring/hostapi/ScoreValue.h"

namespace test {

class LengthValue : public OrbScore::ScoreValue {
 public:
  explicit LengthValue(std::int32_t length) : length_(length) {}

  void SetValue(const ScoreValue*) override { length_ = 0; }
  LengthValue* GetValue() const override { return Clone(); }
  LengthValue* Clone() const override { return new LengthValue(length_); }
  bool operator==(const ScoreValue& other) const override { return length_ == other.GetInt(); }
  bool Equal(const ScoreValue* other, bool, bool) const override {
    return other != nullptr && operator==(*other);
  }
  bool operator>(const ScoreValue& other) const override { return length_ > other.GetInt(); }
  bool operator<(const ScoreValue& other) const override { return length_ < other.GetInt(); }
  bool operator<=(const ScoreValue& other) const override { return length_ <= other.GetInt(); }
  bool operator>=(const ScoreValue& other) const override { return length_ >= other.GetInt(); }
  bool IsSystemMissingValue() const override { return false; }
  std::int32_t GetInt() const override { return length_; }
  double GetDouble() const override { return std::numeric_limits<double>::lowest(); }
  std::string GetString() const override { return "a list"; }
  int GetType() const override { return kVector; }

 private:
  std::int32_t length_;
};

}  // namespace test

#endif  // TESTS_HOST_LENGTHVALUE_H_

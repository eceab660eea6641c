// A value of a case's field or of a prediction.
//
// Comparison is each value type's own business: numbers compare as numbers, texts as texts, and a
// list compares by its length alone, also with a number.

#ifndef SCORING_HOSTAPI_SCOREVALUE_H_
#define SCORING_HOSTAPI_SCOREVALUE_H_

#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT ScoreValue {
 public:
  // What GetType() answers.
  enum ValueType : int { kText = 0, kNumber = 1, kVector = 2 };

  virtual ~ScoreValue();

  // Takes over the other's value; null, or a value of a foreign type, gives the type's own
  // "nothing".
  virtual void SetValue(const ScoreValue* other) = 0;

  // Both return a copy that the caller owns.
  virtual ScoreValue* GetValue() const = 0;
  virtual ScoreValue* Clone() const = 0;

  virtual bool operator==(const ScoreValue& other) const = 0;
  virtual bool Equal(const ScoreValue* other, bool, bool) const = 0;
  virtual bool operator>(const ScoreValue& other) const = 0;
  virtual bool operator<(const ScoreValue& other) const = 0;
  virtual bool operator<=(const ScoreValue& other) const = 0;
  virtual bool operator>=(const ScoreValue& other) const = 0;

  virtual bool IsSystemMissingValue() const = 0;
  virtual std::int32_t GetInt() const = 0;
  virtual double GetDouble() const = 0;
  virtual std::string GetString() const = 0;
  virtual int GetType() const = 0;

 protected:
  ScoreValue() = default;
  ScoreValue(const ScoreValue&) = default;
  ScoreValue& operator=(const ScoreValue&) = default;
};

// `a == b` for two values of derived types: without it the language finds a.operator==(b) and the
// reversed b.operator==(a) equally good. Calls the left one, as written.
template <class A, class B>
requires std::derived_from<A, ScoreValue> && std::derived_from<B, ScoreValue> &&
    (!std::same_as<A, ScoreValue>)bool
    operator==(const A& a, const B& b) {
  return static_cast<const ScoreValue&>(a).operator==(static_cast<const ScoreValue&>(b));
}

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_SCOREVALUE_H_

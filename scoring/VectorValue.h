// A prediction that is a ranked list: the host's view of a vector.
//
// Comparison is by length only: two lists of one length are equal whatever they hold, and a list
// compared with a number compares its length with that number.
//
// Value type, the vector is held by value. Threads: as std::vector.
//
// The list can be read without linking the module: check GetType(), cast, GetVectorValue().

#ifndef SCORING_VECTORVALUE_H_
#define SCORING_VECTORVALUE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/OrbExport.h"
#include "common/OrbMV.h"
#include "scoring/hostapi/ScoreValue.h"

namespace OrbQuillon_830 {

template <class T>
class ORBSEQ_EXPORT VectorValue : public OrbScore::ScoreValue {
 public:
  explicit VectorValue(const std::vector<T>& values) : values_(values) {}
  VectorValue(const VectorValue&) = default;
  VectorValue& operator=(const VectorValue&) = default;
  ~VectorValue() override = default;

  // Takes over the other's list; null, or a value that is not such a list, empties this one.
  void SetValue(const ScoreValue* other) override;

  // Both return a copy that the caller owns.
  VectorValue* GetValue() const override { return Clone(); }
  VectorValue* Clone() const override { return new VectorValue(*this); }

  // Deliberate: only lengths are compared, here unsigned ...
  bool operator==(const ScoreValue& other) const override {
    return values_.size() == static_cast<std::size_t>(static_cast<std::uint32_t>(other.GetInt()));
  }
  // ... and the flags are ignored; a null `other` is unequal.
  bool Equal(const ScoreValue* other, bool, bool) const override {
    return other != nullptr && *this == *other;
  }
  // ... and here signed.
  bool operator>(const ScoreValue& other) const override { return Size() > other.GetInt(); }
  bool operator<(const ScoreValue& other) const override { return Size() < other.GetInt(); }
  bool operator<=(const ScoreValue& other) const override { return Size() <= other.GetInt(); }
  bool operator>=(const ScoreValue& other) const override { return Size() >= other.GetInt(); }

  bool IsSystemMissingValue() const override { return false; }
  std::int32_t GetInt() const override { return Size(); }
  double GetDouble() const override { return OrbCommon_830::OrbMV::Missing(); }
  // The length in words, with a line feed at the end; the entries are not printed.
  std::string GetString() const override {
    return "Vector Value: Length of vector = " + std::to_string(Size()) + "\n";
  }
  int GetType() const override { return kVector; }

  std::int32_t Size() const noexcept { return static_cast<std::int32_t>(values_.size()); }
  const std::vector<T>& GetVectorValue() const noexcept { return values_; }
  std::vector<T>& GetVectorValue() noexcept { return values_; }
  void SetVectorValue(const std::vector<T>& values) { values_ = values; }

 private:
  std::vector<T> values_;
};

template <class T>
void VectorValue<T>::SetValue(const ScoreValue* other) {
  const auto* list = other != nullptr && other->GetType() == kVector
                         ? dynamic_cast<const VectorValue*>(other)
                         : nullptr;
  if (list == this) return;
  if (list != nullptr)
    values_ = list->values_;
  else
    values_.clear();
}

}  // namespace OrbQuillon_830

#endif  // SCORING_VECTORVALUE_H_

#include "scoring/CaseText.h"

#include <cstdint>
#include <string>
#include <vector>

#include "common/OrbMV.h"
#include "scoring/hostapi/NumericValue.h"
#include "sequence/TimedItemSet.h"

namespace OrbQuillon_830 {

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  void appendTo(Sequence& sequence) {
    for (; more(); ++i_)
      if (text_[i_] == '(') sequence.AddTimedItemSet(&itemSet());
  }

 private:
  bool more() const { return i_ < text_.size(); }

  // Reads from "(" to ")" or the end of the text; stands on the ")" afterwards.
  const TimedItemSet& itemSet() {
    items_.clear();
    double time = 0.0;
    while (more() && text_[i_] != ')') {
      if (isDigit(text_[i_])) {
        items_.push_back(number());
        continue;
      }
      if (text_[i_] == '[') stamp(time);
      if (more()) ++i_;
    }
    set_.AddAllItems(items_.data(), static_cast<std::int32_t>(items_.size()), time);
    return set_;
  }

  std::int32_t number() {
    std::uint32_t value = 0;  // unsigned: wraps around at 32 bits
    for (; more() && isDigit(text_[i_]); ++i_)
      value = value * 10U + static_cast<std::uint32_t>(text_[i_] - '0');
    return static_cast<std::int32_t>(value);
  }

  // Reads from "[" to "]" or the end of the text; stands on the "]" afterwards.
  void stamp(double& time) {
    std::string collected;
    bool tooLong = false;
    for (; more() && text_[i_] != ']'; ++i_) {
      if (!isDigit(text_[i_]) && text_[i_] != '.') continue;
      if (collected.size() < kMaxStampBytes)
        collected += text_[i_];
      else
        tooLong = true;
    }
    if (tooLong)
      time = OrbCommon_830::OrbMV::Missing();
    else if (!collected.empty())
      time = OrbScore::NumericValue(collected).GetDouble();
  }

  std::string_view text_;
  std::size_t i_ = 0;
  std::vector<std::int32_t> items_;
  TimedItemSet set_;
};

}  // namespace

void appendCaseText(std::string_view text, Sequence& sequence) { Scanner(text).appendTo(sequence); }

}  // namespace OrbQuillon_830

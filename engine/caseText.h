// The text form of a customer's history: each item set in parentheses, oldest first.
//
//   (1 2)(3)         two item sets, {1, 2} and {3}
//   (7 3 [2.5]) (9)  {3, 7} at time 2.5, and {9}
//
// Inside parentheses runs of decimal digits are items and "[...]" is a time stamp; every other byte
// separates. Outside parentheses every byte is ignored. Nothing is ever refused:
//  - an item wraps around at 32 bits, and a minus sign is a separator like any other;
//  - an item set without items counts as one; an unclosed "(" at the end still makes an item set;
//  - a stamp ends with its "]" or with the text. Times play no part in any answer, so what a stamp
//    says is not read.

#ifndef ENGINE_CASETEXT_H_
#define ENGINE_CASETEXT_H_

#include <stdexcept>
#include <string>
#include <string_view>

#include "common/Limits.h"
#include "common/OrbExport.h"
#include "engine/History.h"

namespace orbseq::engine {

// Appends the item sets of the text. Cost: linear in the text, but for sorting sets whose items do
// not ascend. Throws only what the allocator throws.
ORBSEQ_EXPORT void appendCaseText(std::string_view text, History& history);

// A case holds more than it may; tells the limit.
class ORBSEQ_EXPORT CaseLimitPassed : public std::runtime_error {
 public:
  explicit CaseLimitPassed(const std::string& text);
  ~CaseLimitPassed() override;
};

// Likewise, within the limits of bytes, sets and items, which count what the history holds. Throws
// CaseLimitPassed as soon as there is more, and then the history holds what was read so far.
ORBSEQ_EXPORT void appendCaseText(std::string_view text, const CaseLimits& limits,
                                  History& history);

}  // namespace orbseq::engine

#endif  // ENGINE_CASETEXT_H_

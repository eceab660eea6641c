// The text form of a customer's history: each item set in parentheses, oldest first.
//
//   (1 2)(3)         two item sets, {1, 2} and {3}
//   (7 3 [2.5]) (9)  {3, 7} at time 2.5, and {9}
//
// Inside parentheses runs of decimal digits are items and "[...]" is a time stamp; every other byte
// separates. Outside parentheses every byte is ignored. Nothing is ever refused:
//  - an item wraps around at 32 bits, and a minus sign is a separator like any other;
//  - an item set without items counts as one; an unclosed "(" at the end still makes an item set;
//  - of a stamp only digits and points count, the last stamp of a set stands, a stamp without any
//    leaves the time alone, an unclosed one ends with the text. One that is no number, or has more
//    than kMaxStampBytes digits and points, gives the system-missing value.

#ifndef SCORING_CASETEXT_H_
#define SCORING_CASETEXT_H_

#include <cstddef>
#include <string_view>

#include "sequence/Sequence.h"

namespace OrbQuillon_830 {

constexpr std::size_t kMaxStampBytes = 64;

// Appends the item sets of the text to `sequence`. Cost: linear in the text, but for sorting each
// set's items. Throws only what the allocator throws.
void appendCaseText(std::string_view text, SEQUENCE_NAMESPACE_800::Sequence& sequence);

}  // namespace OrbQuillon_830

#endif  // SCORING_CASETEXT_H_

// The settings of a case, read from its fields.

#ifndef SCORING_CASEFIELDS_H_
#define SCORING_CASEFIELDS_H_

#include <cstdint>
#include <string>

#include "scoring/hostapi/ScoreCaseRecord.h"

namespace OrbQuillon_830 {

struct CaseFields {
  std::string history;          // the text of "sequence"; empty when there is none
  bool futureItems = false;     // "returnType" is exactly "futureItems"
  std::int32_t maxReturn = 20;  // "maxReturn" where it is 0 or more
  bool wholeOnly = true;        // "fromCurrent" is absent
};

// A null record, a missing field and an empty text leave the defaults.
CaseFields readCaseFields(const OrbScore::ScoreCaseRecord* record);

}  // namespace OrbQuillon_830

#endif  // SCORING_CASEFIELDS_H_

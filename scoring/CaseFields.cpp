#include "scoring/CaseFields.h"

namespace OrbQuillon_830 {

CaseFields readCaseFields(const OrbScore::ScoreCaseRecord* record) {
  CaseFields fields;
  if (record == nullptr) return fields;
  if (const auto* const history = record->GetField("sequence"))
    fields.history = history->GetString();
  if (const auto* const returnType = record->GetField("returnType"))
    fields.futureItems = returnType->GetString() == "futureItems";
  if (const auto* const maxReturn = record->GetField("maxReturn")) {
    if (!maxReturn->GetString().empty() && maxReturn->GetInt() >= 0)
      fields.maxReturn = maxReturn->GetInt();
  }
  // Deliberate: presence alone decides, whatever the value.
  fields.wholeOnly = record->GetField("fromCurrent") == nullptr;
  return fields;
}

}  // namespace OrbQuillon_830

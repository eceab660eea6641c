// Questions to a scoring model, and what its answers must be.

#ifndef FUZZ_MODELQUESTIONS_H_
#define FUZZ_MODELQUESTIONS_H_

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>

#include "fuzz/Choice.h"
#include "fuzz/answers.h"
#include "fuzz/check.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreCaseRecord.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreResult.h"

namespace orbseq::fuzz {

enum class Asked { kCurrent, kFuture, kFutureAllBeginnings };

inline Answers answersOf(const OrbScore::ScoreModel& model, const std::string& history,
                         Asked asked) {
  using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
  using ItemList = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;
  OrbScore::ScoreCaseRecord record;
  record.SetText("sequence", history);
  if (asked != Asked::kCurrent) record.SetText("returnType", "futureItems");
  if (asked == Asked::kFutureAllBeginnings) record.SetText("fromCurrent", "");
  OrbScore::ScoreResult* raw = nullptr;
  const bool isOk = model.GetScore(&record, raw, false).IsOK();
  const std::unique_ptr<OrbScore::ScoreResult> result(raw);
  require(isOk && result != nullptr, "a case was not scored");
  const auto* const list = dynamic_cast<const ItemList*>(result->GetPrediction());
  require(list != nullptr, "the prediction is no list");
  return list->GetVectorValue();
}

// Asks in every way for what a customer of the usual items, which a hostile lattice may lack,
// takes; the choice tells which customer. Planted: the two best answers are read the wrong way
// round.
inline void askModel(const OrbScore::ScoreModel& model, Choice choice) {
  static constexpr const char* kHistories[] = {"", "(7)", "(7)(9)", "(1 2)(3)", "(9)()(7 9)"};
  const Pick customer = choice.among(std::size(kHistories));
  for (std::size_t k = 0; k < std::size(kHistories); ++k) {
    if (!customer.is(k)) continue;
    for (const Asked asked : {Asked::kCurrent, Asked::kFuture, Asked::kFutureAllBeginnings}) {
      Answers answers = answersOf(model, kHistories[k], asked);
      if (kPlanted && answers.size() > 1) std::swap(answers[0], answers[1]);
      requireSound(answers, 20);
    }
  }
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_MODELQUESTIONS_H_

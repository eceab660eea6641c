// What every answer must be, whatever lattice gave it.

#ifndef FUZZ_ANSWERS_H_
#define FUZZ_ANSWERS_H_

#include <cmath>
#include <cstddef>
#include <set>
#include <vector>

#include "fuzz/check.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace orbseq::fuzz {

using Answers = std::vector<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;

// Not too many, numbers finite, the best first and the greater item first among equals, no item
// twice.
inline void requireSound(const Answers& answers, std::size_t most) {
  require(answers.size() <= most, "more answers than were asked for");
  std::set<std::int32_t> items;
  for (std::size_t k = 0; k < answers.size(); ++k) {
    const auto& answer = answers[k];
    require(std::isfinite(answer.GetConfidence()) && std::isfinite(answer.GetSupport()) &&
                std::isfinite(answer.GetCause()),
            "an answer is no finite number");
    require(items.insert(answer.GetItem()).second, "an item is proposed twice");
    if (k == 0) continue;
    const auto& before = answers[k - 1];
    require(before.GetConfidence() > answer.GetConfidence() ||
                (before.GetConfidence() == answer.GetConfidence() &&
                 before.GetItem() > answer.GetItem()),
            "the answers are out of order");
  }
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_ANSWERS_H_

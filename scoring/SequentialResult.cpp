#include "scoring/SequentialResult.h"

#include "scoring/VectorValue.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace OrbQuillon_830 {

// The one instantiation that the module hands out, with its type information and virtual table.
template class VectorValue<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>;

SequentialResult::SequentialResult(OrbScore::ScoreDictVar* target) : target_(target) {}

SequentialResult::~SequentialResult() = default;

void SequentialResult::SetPrediction(OrbScore::ScoreValue* value) {
  if (value != prediction_.get()) prediction_.reset(value);
}

// Deliberate: does nothing.
void SequentialResult::SetConfidence(double) {}

void SequentialResult::SetTargetVarName(const std::string& name) {
  if (target_) target_->SetName(name);
}

}  // namespace OrbQuillon_830

#include "cli/PluginScorer.h"

#include <stdexcept>
#include <utility>

#include "host/EnvironmentError.h"
#include "io/IoError.h"
#include "io/failure.h"
#include "scoring/VectorValue.h"
#include "scoring/hostapi/ScoreModel.h"
#include "scoring/hostapi/ScoreResult.h"

namespace orbseq {

using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;

PluginScorer::PluginScorer(std::shared_ptr<const OrbScore::ScoreModel> model,
                           const ScoreOptions& options)
    : model_(std::move(model)) {
  record_.SetText("returnType", options.returnType == "future" ? "futureItems" : "currentItems");
  record_.SetNumber("maxReturn", options.maxReturn);
  // Deliberate: the module asks whether the field is there, not what it says.
  if (options.allPrefixes) record_.SetText("fromCurrent", "true");
}

PluginScorer::~PluginScorer() { delete result_; }

Answers PluginScorer::score(const std::string& file, const CustomerHistory& history) {
  try {
    record_.SetText("sequence", history.history);
    return scoreRecord();
  } catch (...) {
    const Failure failure = currentFailure();
    if (failure.kind == FailureKind::kEnvironment) throw OrbScore::EnvironmentError(failure.text);
    if (failure.kind == FailureKind::kInput) throw InputError(file, history.row, failure.text);
    throw std::logic_error("scoring " + file + ":" + std::to_string(history.row) + ": " +
                           failure.text);
  }
}

Answers PluginScorer::scoreRecord() {
  const OrbScore::OrbStatus status = model_->GetScore(&record_, result_, false);
  if (status.IsError())
    throw std::logic_error("the model answered with the error status " +
                           std::to_string(status.GetErrorCode()));
  const OrbScore::ScoreValue* prediction = result_ == nullptr ? nullptr : result_->GetPrediction();
  if (prediction == nullptr || prediction->GetType() != OrbScore::ScoreValue::kVector)
    throw OrbScore::EnvironmentError("the plug-in's answer is no list of items");
  // The type code tells the type; a dynamic_cast would need the plug-in at link time.
  return static_cast<const OrbQuillon_830::VectorValue<SeqConsequentDescriptor>*>(prediction)
      ->GetVectorValue();
}

}  // namespace orbseq

// The scoring model: one lattice, and the ranked items that it proposes for a case.
//
// A case has the fields
//   "sequence"     the history as text (engine/caseText.h); absent or empty: no history
//   "returnType"   "futureItems", or anything else for "currentItems"
//   "maxReturn"    largest number of items, 20 when absent or negative
//   "fromCurrent"  present with any value: future items are asked from every beginning of the
//                  history, not from the whole alone
//
// Lifecycle. Made once by the translator, which compiles the lattice (engine/CompiledLattice.h),
// and then only read. The lattice lives as long as the model.
//
// Threads: any number of threads may call GetScore on one model, each with its own record and
// result.

#ifndef SCORING_SEQUENTIALASSOCMODEL_H_
#define SCORING_SEQUENTIALASSOCMODEL_H_

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "common/OrbExport.h"
#include "scoring/hostapi/BaseModel.h"

namespace SEQUENCE_NAMESPACE_800 {
class HashtableSQPair;
}

namespace OrbQuillon_830 {

class ORBSEQ_EXPORT SequentialAssocModel : public OrbScore::BaseModel {
 public:
  // Without a lattice: every answer is empty and Display writes nothing.
  SequentialAssocModel();
  // Owns the array and its tables once the call returns; when it throws (DictionaryFailure,
  // std::bad_alloc, std::length_error), the caller still does. `tables` has levelCount slots, made
  // with new[]; slots beyond are never read.
  SequentialAssocModel(SEQUENCE_NAMESPACE_800::HashtableSQPair** tables, std::int32_t levelCount);
  ~SequentialAssocModel() override;

  // Deliberate: the model is always in prediction-only mode; setting does nothing.
  void SetPredictionOnly(bool predictionOnly) override;
  // Deliberate: null for every role.
  OrbScore::ScoreDictionary* GetVarsOfRole(VarRole role) const override;

  // Scores one case into `result`. Null, or a result of another type, is replaced by a new
  // SequentialResult (the old one is destroyed); a SequentialResult is refilled and keeps its
  // identity. The last argument is ignored, and a null record is a case without fields.
  // Deliberate: the status is always success; text that is no history is never refused.
  // std::bad_alloc may pass through, and then `result` is usable as before.
  OrbScore::OrbStatus GetScore(const OrbScore::ScoreCaseRecord* record,
                               OrbScore::ScoreResult*& result, bool) const override;

  ModelType GetModelType() const override { return kSequentialAssociation; }
  bool GetPredictionOnly() const override { return true; }
  // The first 21 sequences of every level with their counters.
  void Display(std::ostream& os) const override;

 private:
  class Lattice;  // the dictionary, made final so that it can be deleted
  class Engine;   // its compiled form, and what answers from it

  std::unique_ptr<const Lattice> lattice_;  // null after the default constructor, as is
  std::unique_ptr<const Engine> engine_;
  std::int32_t levelCount_ = 0;
};

}  // namespace OrbQuillon_830

#endif  // SCORING_SEQUENTIALASSOCMODEL_H_

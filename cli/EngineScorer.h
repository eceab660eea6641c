// Answers from a compiled lattice.

#ifndef CLI_ENGINESCORER_H_
#define CLI_ENGINESCORER_H_

#include <string>

#include "cli/CaseScorer.h"
#include "cli/ScoreOptions.h"
#include "engine/Recommender.h"
#include "engine/Scratch.h"

namespace orbseq {

class EngineScorer final : public CaseScorer {
 public:
  // Of the options, returnType, maxReturn and allPrefixes are read. The lattice must outlive the
  // scorer.
  EngineScorer(const engine::CompiledLattice& lattice, const ScoreOptions& options);

  Answers score(const std::string& file, const CustomerHistory& history) override;

 private:
  engine::Recommender recommender_;
  bool futureItems_;
  std::int32_t maxReturn_;
  bool wholeOnly_;
  engine::Scratch scratch_;
};

}  // namespace orbseq

#endif  // CLI_ENGINESCORER_H_

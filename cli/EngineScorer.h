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
  // Of the options, returnType, maxReturn, allPrefixes and the limits of cases are read. The
  // lattice must outlive the scorer.
  EngineScorer(const engine::CompiledLattice& lattice, const ScoreOptions& options);

  // Errors: InputError for a history beyond a limit, or one whose search is.
  Answers score(const std::string& file, const CustomerHistory& history) override;

 private:
  Answers score(const std::string& text);

  engine::Recommender recommender_;
  bool futureItems_;
  std::int32_t maxReturn_;
  bool wholeOnly_;
  CaseLimits limits_;
  engine::Scratch scratch_;
};

}  // namespace orbseq

#endif  // CLI_ENGINESCORER_H_

#include "cli/EngineScorer.h"

#include "engine/caseText.h"

namespace orbseq {

EngineScorer::EngineScorer(const engine::CompiledLattice& lattice, const ScoreOptions& options)
    : recommender_(lattice),
      futureItems_(options.returnType == "future"),
      maxReturn_(options.maxReturn),
      wholeOnly_(!options.allPrefixes) {}

Answers EngineScorer::score(const std::string&, const CustomerHistory& history) {
  history_.clear();
  answers_.clear();
  engine::appendCaseText(history.history, history_);
  if (futureItems_)
    recommender_.futureItems(history_, maxReturn_, wholeOnly_, workspace_, answers_);
  else
    recommender_.currentItems(history_, maxReturn_, workspace_, answers_);
  return answers_;
}

}  // namespace orbseq

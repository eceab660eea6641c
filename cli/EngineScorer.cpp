#include "cli/EngineScorer.h"

#include "engine/caseText.h"

namespace orbseq {

EngineScorer::EngineScorer(const engine::CompiledLattice& lattice, const ScoreOptions& options)
    : recommender_(lattice),
      futureItems_(options.returnType == "future"),
      maxReturn_(options.maxReturn),
      wholeOnly_(!options.allPrefixes) {}

Answers EngineScorer::score(const std::string&, const CustomerHistory& history) {
  scratch_.history.clear();
  scratch_.answers.clear();
  engine::appendCaseText(history.history, scratch_.history);
  if (futureItems_)
    recommender_.futureItems(scratch_.history, maxReturn_, wholeOnly_, scratch_.workspace,
                             scratch_.answers);
  else
    recommender_.currentItems(scratch_.history, maxReturn_, scratch_.workspace, scratch_.answers);
  return scratch_.answers;
}

}  // namespace orbseq

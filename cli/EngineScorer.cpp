#include "cli/EngineScorer.h"

#include "engine/caseText.h"
#include "io/IoError.h"

namespace orbseq {

EngineScorer::EngineScorer(const engine::CompiledLattice& lattice, const ScoreOptions& options)
    : recommender_(lattice),
      futureItems_(options.returnType == "future"),
      maxReturn_(options.maxReturn),
      wholeOnly_(!options.allPrefixes),
      limits_(limitsOf(options.cases)) {
  scratch_.workspace.setStepBudget(limits_.steps);
}

Answers EngineScorer::score(const std::string& file, const CustomerHistory& history) {
  try {
    return score(history.history);
  } catch (const engine::CaseLimitPassed& error) {
    throw InputError(file, history.row, error.what());
  } catch (const engine::StepBudgetSpent& error) {
    throw InputError(file, history.row, error.what());
  }
}

Answers EngineScorer::score(const std::string& text) {
  scratch_.history.clear();
  scratch_.answers.clear();
  engine::appendCaseText(text, limits_, scratch_.history);
  if (futureItems_)
    recommender_.futureItems(scratch_.history, maxReturn_, wholeOnly_, scratch_.workspace,
                             scratch_.answers);
  else
    recommender_.currentItems(scratch_.history, maxReturn_, scratch_.workspace, scratch_.answers);
  return scratch_.answers;
}

}  // namespace orbseq

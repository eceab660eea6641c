// The three ways of asking, of a compiled lattice and of the dictionary that it was made from.

#ifndef FUZZ_THREEWAYS_H_
#define FUZZ_THREEWAYS_H_

#include <vector>

#include "engine/Recommender.h"
#include "fuzz/Choice.h"
#include "tests/support/World.h"

namespace orbseq::fuzz {

inline engine::History engineHistory(const test::History& sets) {
  engine::History history;
  for (const test::Items& set : sets) history.addSet(set);
  return history;
}

// Calls check(question, engine's answers, dictionary's answers) for each way that is picked. The
// histories are one customer's, in the two forms.
template <class Check>
void askInWays(Pick way, const engine::Recommender& recommender, engine::Workspace& workspace,
               const engine::History& history, const test::SequenceDictionary& dictionary,
               const test::History& sets, int maxCount, const Check& check) {
  if (way.is(0)) {
    engine::Answers answers;
    recommender.currentItems(history, maxCount, workspace, answers);
    check("current items", answers, test::currentItems(dictionary, sets, maxCount));
  }
  if (way.is(1)) {
    engine::Answers answers;
    recommender.futureItems(history, maxCount, true, workspace, answers);
    check("future items", answers, test::futureItems(dictionary, sets, maxCount, true));
  }
  if (way.is(2)) {
    engine::Answers answers;
    recommender.futureItems(history, maxCount, false, workspace, answers);
    check("future items of every beginning", answers,
          test::futureItems(dictionary, sets, maxCount, false));
  }
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_THREEWAYS_H_

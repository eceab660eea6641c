// Questions to a dictionary that was read, and to its compiled form, which must agree.

#ifndef FUZZ_LATTICEQUESTIONS_H_
#define FUZZ_LATTICEQUESTIONS_H_

#include <ostream>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "fuzz/answers.h"
#include "fuzz/check.h"
#include "lattice/SequenceDictionary.h"
#include "tests/support/World.h"

namespace orbseq::fuzz {

using AllAnswers = std::vector<std::vector<test::Advice>>;

inline engine::History engineHistory(const test::History& sets) {
  engine::History history;
  for (const test::Items& set : sets) history.addSet(set);
  return history;
}

// The answers for three customers, asked for in every way.
inline AllAnswers askBoth(const test::SequenceDictionary& dictionary) {
  static const std::vector<test::History> histories = {{}, {{1}, {2}}, {{1, 2}, {}, {3, 4, 9}}};
  const engine::CompiledLattice compiled = engine::compile(dictionary);
  const engine::Recommender recommender(compiled);
  engine::Workspace workspace;
  AllAnswers all;
  for (const test::History& history : histories) {
    const engine::History asked = engineHistory(history);
    engine::Answers current, future, beginnings;
    recommender.currentItems(asked, 20, workspace, current);
    recommender.futureItems(asked, 20, true, workspace, future);
    recommender.futureItems(asked, 20, false, workspace, beginnings);
    for (const engine::Answers* const answers : {&current, &future, &beginnings})
      requireSound(*answers, 20);
    require(test::adviceOf(current) == test::currentItems(dictionary, history) &&
                test::adviceOf(future) == test::futureItems(dictionary, history) &&
                test::adviceOf(beginnings) == test::futureItems(dictionary, history, 20, false),
            "the compiled lattice answers differently");
    for (const engine::Answers* const answers : {&current, &future, &beginnings})
      all.push_back(test::adviceOf(*answers));
  }
  return all;
}

inline void exportAll(const test::SequenceDictionary& dictionary) {
  std::ostream nowhere(nullptr);
  require(dictionary.ExportLatticeXML(nowhere, 0.0).IsOK(), "the lattice was not exported");
  require(
      dictionary.ExportRulesXML(nowhere, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 5, 2.0, 'S', false).IsOK(),
      "the rules were not exported");
  for (int level = 0; level < dictionary.getNumLevels(); ++level)
    dictionary.displaySize(level, 100, nowhere);
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_LATTICEQUESTIONS_H_

// Questions to a dictionary that was read, and to its compiled form, which must agree.

#ifndef FUZZ_LATTICEQUESTIONS_H_
#define FUZZ_LATTICEQUESTIONS_H_

#include <ostream>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "fuzz/Choice.h"
#include "fuzz/answers.h"
#include "fuzz/check.h"
#include "fuzz/threeWays.h"
#include "lattice/SequenceDictionary.h"
#include "tests/support/World.h"

namespace orbseq::fuzz {

using AllAnswers = std::vector<std::vector<test::Advice>>;

// The answers for one of three customers, asked for in one of three ways: which, the choice tells,
// and a copy of it tells the same for another dictionary.
inline AllAnswers askBoth(const test::SequenceDictionary& dictionary, Choice choice) {
  static const std::vector<test::History> histories = {{}, {{1}, {2}}, {{1, 2}, {}, {3, 4, 9}}};
  const Pick customer = choice.among(histories.size());
  const Pick way = choice.among(3);
  const engine::CompiledLattice compiled = engine::compile(dictionary);
  const engine::Recommender recommender(compiled);
  engine::Workspace workspace;
  AllAnswers all;
  const auto check = [&all](const char*, const engine::Answers& answers,
                            const std::vector<test::Advice>& same) {
    requireSound(answers, 20);
    all.push_back(test::adviceOf(answers));
    require(all.back() == same, "the compiled lattice answers differently");
  };
  for (std::size_t k = 0; k < histories.size(); ++k) {
    if (!customer.is(k)) continue;
    askInWays(way, recommender, workspace, engineHistory(histories[k]), dictionary, histories[k],
              20, check);
  }
  return all;
}

// The lattice, its rules, or its levels' sizes.
inline void exportSome(const test::SequenceDictionary& dictionary, Choice choice) {
  const Pick form = choice.among(3);
  std::ostream nowhere(nullptr);
  if (form.is(0))
    require(dictionary.ExportLatticeXML(nowhere, 0.0).IsOK(), "the lattice was not exported");
  if (form.is(1))
    require(
        dictionary.ExportRulesXML(nowhere, 0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 5, 2.0, 'S', false).IsOK(),
        "the rules were not exported");
  if (form.is(2))
    for (int level = 0; level < dictionary.getNumLevels(); ++level)
      dictionary.displaySize(level, 100, nowhere);
}

}  // namespace orbseq::fuzz

#endif  // FUZZ_LATTICEQUESTIONS_H_

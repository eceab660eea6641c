// The valid lattice (latticeFiles.h) as a document with labels, and what a model of it answers.

#ifndef TESTS_HOSTILE_LABELLEDMODEL_H_
#define TESTS_HOSTILE_LABELLEDMODEL_H_

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "lattice/LatticeDocument.h"
#include "scoring/hostapi/ScoreModel.h"
#include "tests/contract/support.h"
#include "tests/hostile/latticeFiles.h"

namespace orbseq::test {

inline const ItemLabelMap& labels() {
  static const ItemLabelMap all = {{1, "tea"}, {2, "milk & more"}, {3, std::string(300, 'l')}};
  return all;
}

// With everything that can be asked of the lattice.
inline const std::string& labelledDocument() {
  static const std::string text = [] {
    std::ostringstream stream;
    writeLatticeDocument(stream, ValidLattice().dictionary(),
                         {.closed = true, .labels = &labels()});
    return std::move(stream).str();
  }();
  return text;
}

inline std::vector<std::vector<::test::Answer>> answersOf(const OrbScore::ScoreModel& model) {
  using ::test::Mode;
  std::vector<std::vector<::test::Answer>> answers;
  for (const char* history : {"", "(1)", "(1 2)(3)", "(4)(9)(1 2)(2 3)", "(2)()(3)(1 4)"})
    for (const Mode mode : {Mode::kCurrent, Mode::kFuture, Mode::kFutureAllBeginnings})
      answers.push_back(::test::ask(model, history, mode));
  return answers;
}

inline void expectValidModel(const OrbScore::ScoreModel& model) {
  static const auto expected = answersOf(*::test::modelOf(labelledDocument()));
  ASSERT_FALSE(expected.back().empty());
  EXPECT_TRUE(answersOf(model) == expected);
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_LABELLEDMODEL_H_

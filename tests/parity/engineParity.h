// The compiled lattice asked as a dictionary is, and the comparison of the two.

#ifndef TESTS_PARITY_ENGINEPARITY_H_
#define TESTS_PARITY_ENGINEPARITY_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "tests/support/World.h"

namespace orbseq::test {

// A compiled lattice with all that asking it takes.
class Engine {
 public:
  explicit Engine(const SequenceDictionary& dictionary)
      : lattice_(engine::compile(dictionary)), recommender_(lattice_) {}
  explicit Engine(engine::CompiledLattice lattice)
      : lattice_(std::move(lattice)), recommender_(lattice_) {}
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  std::vector<Advice> current(const History& history, int maxCount) {
    engine::Answers answers;
    recommender_.currentItems(made(history), maxCount, workspace_, answers);
    return adviceOf(answers);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) {
    engine::Answers answers;
    recommender_.futureItems(made(history), maxCount, wholeOnly, workspace_, answers);
    return adviceOf(answers);
  }

  const engine::CompiledLattice& lattice() const noexcept { return lattice_; }

 private:
  const engine::History& made(const History& history) {
    history_.clear();
    for (const Items& set : history) history_.addSet(set);
    return history_;
  }

  engine::CompiledLattice lattice_;
  engine::Recommender recommender_;
  engine::Workspace workspace_;
  engine::History history_;
};

// A reference that is a dictionary.
struct OfDictionary {
  const SequenceDictionary& dictionary;
  std::vector<Advice> current(const History& history, int maxCount) const {
    return currentItems(dictionary, history, maxCount);
  }
  std::vector<Advice> future(const History& history, int maxCount, bool wholeOnly) const {
    return futureItems(dictionary, history, maxCount, wholeOnly);
  }
};

// Asks both in the three modes; how many answers there are.
template <class Reference>
std::size_t compare(Engine& engine, const Reference& reference, const History& history,
                    int maxCount) {
  const auto whole = engine.future(history, maxCount, true);
  EXPECT_EQ(whole, reference.future(history, maxCount, true)) << "whole history " << text(history);
  const auto beginnings = engine.future(history, maxCount, false);
  EXPECT_EQ(beginnings, reference.future(history, maxCount, false))
      << "every beginning of " << text(history);
  const auto current = engine.current(history, maxCount);
  EXPECT_EQ(current, reference.current(history, maxCount)) << "current items of " << text(history);
  return whole.size() + beginnings.size() + current.size();
}

}  // namespace orbseq::test

#endif  // TESTS_PARITY_ENGINEPARITY_H_

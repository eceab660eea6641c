// A valid stored lattice for the tests of readers, and the questions that a lattice must answer
// whatever was read into it.

#ifndef TESTS_HOSTILE_LATTICEFILES_H_
#define TESTS_HOSTILE_LATTICEFILES_H_

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "engine/Recommender.h"
#include "engine/compile.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/SequenceCounter.h"
#include "sequence/StatsBucket.h"
#include "tests/hostile/MemoryFile.h"
#include "tests/support/World.h"
#include "tests/support/binaryImage.h"
#include "tests/support/longRun.h"

namespace orbseq::test {

// --- A valid lattice -----------------------------------------------------------------------------

// Four items, every pair of them and some triples, links, statistics: about 2 KB in binary form.
class ValidLattice {
 public:
  ValidLattice() : lattice_(counts(), 4) {
    lattice_.setReductionThreshold(0.02);
    lattice_.setSlidingWindow(1.5);
    lattice_.setMinGap(0.25);
    lattice_.setMaxGap(30.0);
    auto statistics = std::make_unique<SEQUENCE_NAMESPACE_800::StatsBucket>();
    statistics->setOccurrences(3.0);
    statistics->setTotal(4.5);
    statistics->setMinimum(1.0);
    statistics->setMaximum(2.0);
    const NTSequence two = packed("(2)");
    lattice_.getDescriptor(&two)->setStatsBucket(statistics.release());
    lattice_.getDescriptor(&two)->setMaxMissed(4);
  }

  const SequenceDictionary& dictionary() const noexcept { return lattice_; }

 private:
  static std::vector<Count> counts() {
    return {{"", 100},      {"(1)", 90},    {"(2)", 80},      {"(3)", 70},    {"(4)", 60},
            {"(1)(1)", 50}, {"(1)(2)", 48}, {"(1)(3)", 46},   {"(1)(4)", 44}, {"(2)(1)", 42},
            {"(2)(2)", 40}, {"(2)(3)", 38}, {"(2)(4)", 36},   {"(3)(1)", 34}, {"(3)(2)", 32},
            {"(3)(3)", 30}, {"(3)(4)", 28}, {"(4)(1)", 26},   {"(4)(2)", 24}, {"(4)(3)", 22},
            {"(4)(4)", 20}, {"(1 2)", 45},  {"(1 3)", 41},    {"(1 4)", 37},  {"(2 3)", 33},
            {"(2 4)", 29},  {"(3 4)", 25},  {"(1)(2)(3)", 9}, {"(1 2)(3)", 8}};
  }

  Lattice lattice_;
};

inline const std::string& validBinary() {
  static const std::string bytes = binaryOf(ValidLattice().dictionary());
  return bytes;
}

inline const std::string& validObjectXml() {
  static const std::string text = xmlOf(ValidLattice().dictionary());
  return text;
}

// --- Questions -----------------------------------------------------------------------------------

// Histories of chance, as short as those that are written down.
inline void addHistoriesByChance(std::vector<History>& histories, std::size_t upTo) {
  std::mt19937 random(20'261'121);
  while (histories.size() < upTo) {
    History history(1 + random() % 4);
    for (Items& set : history)
      for (std::int32_t item = 1; item <= 9; ++item)
        if (random() % 4 == 0) set.push_back(item);
    histories.push_back(history);
  }
}

// What twenty customers hold, or a thousand when ORBSEQ_LONG_RUN is set; 9 is an item that no
// lattice here knows.
inline const std::vector<History>& cases() {
  static const std::vector<History> all = [] {
    std::vector<History> histories;
    for (const char* text :
         {"",      "(1)",    "(2)",       "(3)",        "(4)",          "(1)(2)",       "(2)(1)",
          "(1 2)", "(3 4)",  "(1)(2)(3)", "(1 2)(3)",   "(4)(3)(2)(1)", "(1 2 3 4)",    "(1)(1)(1)",
          "(9)",   "(9)(1)", "(1)(9)",    "(1 9)(2 9)", "(2)()(3)",     "(5)(1 3)(2 4)"})
      histories.push_back(history(text));
    if (isLongRun()) addHistoriesByChance(histories, 1000);
    return histories;
  }();
  return all;
}

inline void expectFinite(const std::vector<Advice>& answer) {
  EXPECT_LE(answer.size(), 20U);
  for (const Advice& advice : answer)
    EXPECT_TRUE(std::isfinite(advice.confidence) && std::isfinite(advice.support) &&
                std::isfinite(advice.cause))
        << advice;
}

inline engine::History engineHistory(const History& sets) {
  engine::History history;
  for (Items set : sets) history.addSet(set);
  return history;
}

// Asks for all that the cases may take, of the dictionary and of its compiled form, which must
// answer the same, and that every number is finite.
inline void expectCleanAnswers(const SequenceDictionary& dictionary) {
  const engine::CompiledLattice compiled = engine::compile(dictionary);
  const engine::Recommender recommender(compiled);
  engine::Workspace workspace;
  for (const History& customer : cases()) {
    const engine::History asked = engineHistory(customer);
    engine::Answers current, future;
    recommender.currentItems(asked, 20, workspace, current);
    recommender.futureItems(asked, 20, false, workspace, future);
    EXPECT_EQ(adviceOf(current), currentItems(dictionary, customer)) << text(customer);
    EXPECT_EQ(adviceOf(future), futureItems(dictionary, customer, 20, false)) << text(customer);
    expectFinite(adviceOf(current));
    expectFinite(adviceOf(future));
    expectFinite(futureItems(dictionary, customer));
  }
}

inline std::vector<std::vector<Advice>> allAnswers(const SequenceDictionary& dictionary) {
  std::vector<std::vector<Advice>> answers;
  for (const History& customer : cases()) {
    answers.push_back(currentItems(dictionary, customer));
    answers.push_back(futureItems(dictionary, customer));
    answers.push_back(futureItems(dictionary, customer, 20, false));
  }
  return answers;
}

// By its answers a dictionary is known to be the valid one: whole again, or untouched.
inline void expectValidLattice(const SequenceDictionary& dictionary) {
  static const std::vector<std::vector<Advice>> expected = allAnswers(ValidLattice().dictionary());
  EXPECT_EQ(dictionary.NumberOfSequences(), 29);
  EXPECT_EQ(dictionary.getMaxGap(), 30.0);
  EXPECT_TRUE(allAnswers(dictionary) == expected);
}

// --- Reading -------------------------------------------------------------------------------------

// Reads from a file stream that no file is open in.
template <class Object>
ReadOutcome readFileInto(Object& object, std::string_view bytes) {
  MemoryFile<> file(bytes);
  return outcomeOf({}, [&](std::istream&) { return object.readObject(file.stream()); });
}

template <class Object>
ReadOutcome readXmlFileInto(Object& object, std::string_view text) {
  MemoryFile<> file(text);
  return outcomeOf({}, [&](std::istream&) { return object.readObjectXML(file.stream()); });
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_LATTICEFILES_H_

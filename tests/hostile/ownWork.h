// Work that is done in the test's own process, to be done again in other surroundings: its outcome,
// as text or numbers that no locale has to do with.

#ifndef TESTS_HOSTILE_OWNWORK_H_
#define TESTS_HOSTILE_OWNWORK_H_

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "engine/Recommender.h"
#include "engine/caseText.h"
#include "engine/compile.h"
#include "io/LogReader.h"
#include "io/ModelFile.h"
#include "lattice/LatticeDocument.h"
#include "mining/ExactMiner.h"
#include "mining/fillDictionary.h"
#include "tests/support/TempFolder.h"

namespace orbseq::test {

inline const char* const kShopModel = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";

inline std::string savedAs(ModelForm form) {
  const TempFolder folder;
  saveModel(folder.path("m"), readModel(kShopModel), form);
  saveModel(folder.path("n"), readModel(folder.path("m")), form);
  return contentOf(folder.path("n"));
}

inline constexpr ModelForm kForms[] = {ModelForm::kDocument, ModelForm::kPmml, ModelForm::kBinary,
                                       ModelForm::kObjectXml};

inline std::uint64_t bitsOf(double number) { return std::bit_cast<std::uint64_t>(number); }

// A log with times that are fractions, mined within a gap that depends on them; the times, the
// rules, and the answers to a history with a time, as text that no locale has to do with.
inline std::string workedOut() {
  const TempFolder folder;
  const TransactionLog log = readLog(
      folder.file("log.csv", "customer,time,item\na,1.5,5\na,2.25,6\nb,1.5,5\nb,2.75,6\nc,0.5,6\n"),
      LogOptions());
  MinerOptions options;
  options.maxGap = 1.0;
  const PatternTree tree = mineExactly(log.database, options);
  Lattice lattice(settingsFor(tree));
  fillDictionary(tree, 3, options, lattice);
  EXPECT_TRUE(lattice.buildLattice().IsOK());
  std::ostringstream text;
  for (std::size_t set = 0; set < log.database.sets(); ++set)
    text << std::to_string(bitsOf(log.database.time(set))) << ' ';
  EXPECT_TRUE(writePmml(text, lattice, {.avgItemsPerTransaction = 1.5}).IsOK());

  const auto compiled = engine::compile(lattice);
  engine::History history;
  engine::appendCaseText("([1.5] 5)", history);
  engine::Workspace workspace;
  engine::Answers answers;
  engine::Recommender(compiled).futureItems(history, 20, true, workspace, answers);
  for (const auto& answer : answers)
    text << std::to_string(answer.GetItem()) << ':'
         << std::to_string(bitsOf(answer.GetConfidence())) << ' ';
  return text.str();
}

inline std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// A line of JSON with so many objects and arrays inside one another.
inline std::string deepJson(int depth) {
  return "{\"customer\": \"a\", \"baskets\": [[\"5\"]], \"more\": " + repeated("[", depth - 1) +
         repeated("]", depth - 1) + "}\n";
}

// Answers of every kind to histories that are short, long, or one large set.
inline std::vector<std::uint64_t> scoredHistories() {
  const Model model = readModel(kShopModel);
  const auto compiled = engine::compile(*model.lattice);
  const engine::Recommender recommender(compiled);
  engine::Workspace workspace;
  std::vector<std::uint64_t> all;
  for (const std::string& text :
       {std::string(), std::string("(101)(102 106)"), repeated("(101)(102)", 20'000),
        "(" + repeated("101 102 106 ", 50'000) + ")"}) {
    engine::History history;
    engine::appendCaseText(text, history);
    engine::Answers answers;
    recommender.currentItems(history, 20, workspace, answers);
    recommender.futureItems(history, 20, true, workspace, answers);
    recommender.futureItems(history, 20, false, workspace, answers);
    for (const auto& answer : answers) {
      all.push_back(static_cast<std::uint64_t>(answer.GetItem()));
      all.push_back(bitsOf(answer.GetConfidence()));
    }
  }
  return all;
}

}  // namespace orbseq::test

#endif  // TESTS_HOSTILE_OWNWORK_H_

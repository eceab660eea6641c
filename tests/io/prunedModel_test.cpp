// A pruned lattice has links to sequences that are gone. Every form of a model survives them, and
// answers as before.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "io/ModelFile.h"
#include "tests/support/TempFolder.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using orbseq::Model;
using orbseq::ModelForm;

// The world's lattice as a model's own, since a dictionary in a world cannot be moved.
Model modelOf(const World& world) {
  Model model;
  model.lattice = std::make_unique<orbseq::Lattice>(smallTables(world.options.levels));
  for (const auto& [sequence, entry] : world.entries) store(*model.lattice, sequence, entry.count);
  model.lattice->buildLattice();
  return model;
}

std::vector<std::vector<Advice>> answersOf(const SequenceDictionary& lattice, const World& world) {
  std::vector<std::vector<Advice>> answers;
  for (const History& history : world.histories) {
    answers.push_back(currentItems(lattice, history, 50));
    answers.push_back(futureItems(lattice, history, 50, true));
    answers.push_back(futureItems(lattice, history, 50, false));
  }
  return answers;
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

TEST(PrunedModel, EveryFormKeepsItsAnswers) {
  std::size_t linksToNoItem = 0;
  for (std::uint32_t seed = 1; seed <= 40 && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const World world({.seed = seed, .customers = 12, .histories = 10});
    Model model = modelOf(world);
    if (seed % 2 == 0)
      model.lattice->reduceDictionaryWithCount(2, 4.0);  // items stay, sequences go
    else
      model.lattice->reduceAllWithCount(8.0);  // items go as well, and their links stay
    const auto answers = answersOf(*model.lattice, world);
    const TempFolder folder;
    for (const ModelForm form :
         {ModelForm::kDocument, ModelForm::kPmml, ModelForm::kBinary, ModelForm::kObjectXml}) {
      const std::string path = folder.path("model");
      saveModel(path, model, form);
      if (form == ModelForm::kDocument) linksToNoItem += countOf(contentOf(path), "itemRef=\"-1\"");

      EXPECT_EQ(answersOf(*orbseq::readModel(path).lattice, world), answers)
          << "form " << static_cast<int>(form);
    }
  }
  EXPECT_GT(linksToNoItem, 20U) << "the worlds have too few links to items that are gone";
}

TEST(PrunedModel, AFoundSequenceMayBeGoneAndHasNoCounter) {
  Lattice lattice({{"", 9},
                   {"(1)", 5},
                   {"(2)", 5},
                   {"(3)", 5},
                   {"(1)(2)", 4},
                   {"(2)(3)", 4},
                   {"(1)(3)", 4},
                   {"(1)(2)(3)", 3}});
  const NTSequence gone = packed("(1)(3)");
  lattice.remove(&gone);

  EXPECT_THAT(found(lattice, history("(1)(3)")), testing::Contains(history("(1)(3)")));
  EXPECT_EQ(lattice.getDescriptor(&gone), nullptr);
  EXPECT_THAT(futureItems(lattice, history("(1)")), testing::SizeIs(1)) << "(1)(2) alone";
}

}  // namespace

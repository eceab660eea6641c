// Models in every form, from memory into files and back.

#include "io/ModelFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <future>
#include <string>

#include "host/SafeDocument.h"
#include "tests/io/modelSamples.h"
#include "tests/support/StandardInput.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;
using orbseq::Model;
using orbseq::ModelForm;
using orbseq::nameOf;
using orbseq::readModel;
using orbseq::saveModel;
using testing::HasSubstr;

ItemLabelMap labelsOfKnownItems(const Model& model) {
  ItemLabelMap labels;
  for (const auto& [item, label] : awkwardLabels())
    if (model.lattice->isStored(packed(single(item)))) labels.emplace(item, label);
  return labels;
}

std::string pathOf(const TempFolder& folder, ModelForm form) {
  return folder.path(std::string("model.") + nameOf(form));
}

TEST(ModelFile, LabelsAreKeptBesideWhatIsAFile) {
  const TempFolder folder;
  for (const ModelForm form : {ModelForm::kDocument, ModelForm::kPmml}) {
    EXPECT_TRUE(orbseq::keepsLabels("-", form));
    EXPECT_TRUE(orbseq::keepsLabels("/dev/null", form));
  }
  for (const ModelForm form : {ModelForm::kBinary, ModelForm::kObjectXml, ModelForm::kCompiled}) {
    EXPECT_TRUE(orbseq::keepsLabels(folder.path("model"), form));
    EXPECT_FALSE(orbseq::keepsLabels("-", form));
    EXPECT_FALSE(orbseq::keepsLabels("/dev/null", form));
  }
}

TEST(ModelFile, WorldsComeThroughEveryPairOfForms) {
  const TempFolder folder, seconds;
  for (std::uint32_t seed = 1; seed <= 25; ++seed) {
    Model model = worldModel(seed);
    model.labels = labelsOfKnownItems(model);
    const auto contents = contentsOf(*model.lattice);
    ASSERT_GT(contents.size(), 3U);
    for (const ModelForm first : kEveryForm) {
      saveModel(pathOf(folder, first), model, first);
      const Model middle = readModel(pathOf(folder, first));
      for (const ModelForm second : kEveryForm) {
        const std::string path = pathOf(seconds, second);
        saveModel(path, middle, second);
        const Model last = readModel(path);
        const std::string place =
            std::to_string(seed) + ": " + nameOf(first) + ", " + nameOf(second);
        EXPECT_EQ(contentsOf(*last.lattice), contents) << place;
        EXPECT_EQ(last.labels, model.labels) << place;
        // Texts have 15 digits.
        EXPECT_NEAR(last.lattice->getReductionThreshold(), model.lattice->getReductionThreshold(),
                    1e-15)
            << place;
        EXPECT_TRUE(last.lattice->isLatticeBuilt()) << place;
      }
    }
  }
}

TEST(ModelFile, RecommendationsAreThoseOfTheWorldInEveryForm) {
  const TempFolder folder;
  for (std::uint32_t seed = 100; seed < 110; ++seed) {
    WorldOptions options;
    options.seed = seed;
    const World world(options);
    const Model model = modelOf(world.dictionary);
    for (const ModelForm form : kEveryForm) {
      saveModel(pathOf(folder, form), model, form);
      const Model read = readModel(pathOf(folder, form));
      for (const History& customer : world.histories) {
        EXPECT_EQ(futureItems(*read.lattice, customer), futureItems(world.dictionary, customer));
        EXPECT_EQ(futureItems(*read.lattice, customer, 20, false),
                  futureItems(world.dictionary, customer, 20, false));
        EXPECT_EQ(currentItems(*read.lattice, customer), currentItems(world.dictionary, customer));
      }
    }
  }
}

TEST(ModelFile, WhateverALatticeLacksItIsWrittenAndReadInEveryForm) {
  const TempFolder folder;
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    const World world = randomWorld(seed);
    const Model model = modelOf(world.dictionary);
    for (const ModelForm form : kEveryForm) {
      saveModel(pathOf(folder, form), model, form);
      const Model read = readModel(pathOf(folder, form));
      EXPECT_LE(read.lattice->NumberOfSequences(), model.lattice->NumberOfSequences() + 1)
          << seed << ' ' << nameOf(form);
    }
    EXPECT_EQ(contentsOf(*readModel(pathOf(folder, ModelForm::kBinary)).lattice),
              contentsOf(*model.lattice))
        << seed;
  }
}

TEST(ModelFile, SavingTwiceGivesTheSameBytes) {
  const TempFolder folder;
  Model model = worldModel(3);
  model.labels = labelsOfKnownItems(model);
  for (const ModelForm form : kEveryForm) {
    saveModel(folder.path("a"), model, form);
    saveModel(folder.path("b"), model, form);
    EXPECT_TRUE(contentOf(folder.path("a")) == bytesOf(model, form)) << nameOf(form);
    EXPECT_TRUE(contentOf(folder.path("b")) == bytesOf(model, form)) << nameOf(form);
  }
}

TEST(ModelFile, StoredTimesComeThroughBinaryAndObjectXml) {
  const TempFolder folder;
  Model model = smallModel();
  model.lattice->setSlidingWindow(1.5);
  model.lattice->setMinGap(0.25);
  model.lattice->setMaxGap(1.0 / 3.0);
  for (const ModelForm form : {ModelForm::kBinary, ModelForm::kObjectXml}) {
    saveModel(folder.path("m"), model, form);
    const Model read = readModel(folder.path("m"));
    EXPECT_EQ(read.lattice->getSlidingWindow(), 1.5);
    EXPECT_EQ(read.lattice->getMinGap(), 0.25);
    EXPECT_NEAR(read.lattice->getMaxGap(), 1.0 / 3.0, 1e-5);
  }
}

TEST(ModelFile, AnEmptyLatticeIsAModel) {
  const TempFolder folder;
  for (const ModelForm form : kEveryForm) {
    saveModel(folder.path("m"), modelOf(SequenceDictionary(smallTables(3))), form);
    EXPECT_TRUE(futureItems(*readModel(folder.path("m")).lattice, {}).empty()) << nameOf(form);
  }
}

TEST(ModelFile, DocumentsAreClosedByOneEmptyLevel) {
  const Model model = smallModel();
  for (const ModelForm form : {ModelForm::kDocument, ModelForm::kPmml}) {
    const std::string text = bytesOf(model, form);
    EXPECT_THAT(text, HasSubstr("maxSequenceSize=\"3\"")) << nameOf(form);
    EXPECT_THAT(text, HasSubstr("<LatticeLevel level=\"3\" numberOfSequences=\"0\""))
        << nameOf(form);
  }
}

TEST(ModelFile, TheHighestLevelOfAnOpenDocumentIsRead) {
  const TempFolder folder;
  const Model model = smallModel();
  std::ofstream file(folder.path("open.xml"));
  orbseq::writeLatticeDocument(file, *model.lattice, {});
  file.close();

  EXPECT_EQ(contentsOf(*readModel(folder.path("open.xml")).lattice), contentsOf(*model.lattice));
}

TEST(ModelFile, TheContentTellsTheFormWhateverTheName) {
  const TempFolder folder;
  const Model model = smallModel();
  for (const ModelForm form : kEveryForm) {
    folder.file("misleading.pmml", bytesOf(model, form));
    EXPECT_EQ(contentsOf(*readModel(folder.path("misleading.pmml")).lattice),
              contentsOf(*model.lattice))
        << nameOf(form);
  }
}

TEST(ModelFile, AFifoDeliversEveryForm) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const Model model = worldModel(6);
  for (const ModelForm form : kEveryForm) {
    const std::string bytes = bytesOf(model, form);
    auto writer = std::async(std::launch::async, [&] { std::ofstream(path) << bytes; });
    EXPECT_EQ(contentsOf(*readModel(path).lattice), contentsOf(*model.lattice)) << nameOf(form);
  }
}

TEST(ModelFile, StandardInputDeliversEveryForm) {
  const TempFolder folder;
  const Model model = worldModel(6);
  for (const ModelForm form : kEveryForm) {
    const StandardInput input(folder.file("input", bytesOf(model, form)));
    EXPECT_EQ(contentsOf(*readModel("-").lattice), contentsOf(*model.lattice)) << nameOf(form);
  }
}

TEST(ModelFile, TheDocumentToScoreWithComesFromEveryFormAndAlsoFromAFifo) {
  const TempFolder folder;
  const std::string path = folder.path("fifo");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const Model model = smallModel();
  for (const ModelForm form : kEveryForm) {
    const std::string bytes = bytesOf(model, form);
    auto writer = std::async(std::launch::async, [&] { std::ofstream(path) << bytes; });
    EXPECT_EQ(orbseq::readDocument(path).GetName(), path) << nameOf(form);
    EXPECT_EQ(orbseq::readDocument(folder.file("f", bytes)).GetName(), folder.path("f"));
  }
}

}  // namespace

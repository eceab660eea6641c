// Models as they are asked: from every form, and from the compiled form in a file.

#include "io/CompiledModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <vector>

#include "host/SafeDocument.h"
#include "io/IoError.h"
#include "io/ModelFile.h"
#include "tests/io/modelSamples.h"
#include "tests/parity/engineParity.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using orbseq::CompiledModel;
using orbseq::FileError;
using orbseq::InputError;
using orbseq::ItemLabelMap;
using orbseq::Model;
using orbseq::ModelForm;
using orbseq::nameOf;
using orbseq::readCompiledModel;
using orbseq::readModel;
using orbseq::saveModel;
using testing::MatchesRegex;

std::string bytesOf(const CompiledModel& model) {
  const auto image = model.lattice.image();
  return {reinterpret_cast<const char*>(image.data()), image.size()};
}

std::string pathOf(const TempFolder& folder, ModelForm form) {
  return folder.path(std::string("model.") + nameOf(form));
}

std::string refusalOf(const std::string& path) {
  return errorOf<InputError>([&] { readCompiledModel(path); });
}

// A file of the compiled form with its bytes.
struct SavedImage {
  SavedImage() : path(folder.path("model.compiled")) {
    saveModel(path, smallModel(), ModelForm::kCompiled);
    bytes = contentOf(path);
  }
  TempFolder folder;
  std::string path;
  std::string bytes;
};

TEST(CompiledModel, EveryFormGivesTheSameAnswersAndSoDoesTheCompiledOne) {
  std::size_t answers = 0;
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    WorldOptions options;
    options.seed = seed;
    options.items = 2 + static_cast<int>(seed % 5);
    const World world(options);
    const Model model = modelOf(world.dictionary);
    const TempFolder folder;
    for (const ModelForm form : {ModelForm::kDocument, ModelForm::kPmml, ModelForm::kBinary,
                                 ModelForm::kObjectXml, ModelForm::kCompiled}) {
      SCOPED_TRACE(nameOf(form));
      saveModel(pathOf(folder, form), model, form);
      Engine engine(readCompiledModel(pathOf(folder, form)).lattice);
      for (const History& history : world.histories)
        answers += compare(engine, OfDictionary{world.dictionary}, history, 20);
    }
  }
  EXPECT_GT(answers, 1000U);
}

TEST(CompiledModel, ADocumentThatIsNotClosedHidesItsHighestLevel) {
  const TempFolder folder;
  const Model model = smallModel();
  std::ofstream open(folder.path("open.xml"), std::ios::binary);
  orbseq::writeLatticeDocument(open, *model.lattice, {});
  open.close();
  saveModel(folder.path("closed.xml"), model, ModelForm::kDocument);

  Engine hidden(readCompiledModel(folder.path("open.xml")).lattice);
  Engine whole(readCompiledModel(folder.path("closed.xml")).lattice);

  EXPECT_EQ(hidden.lattice().nodeCount(), 2U);
  EXPECT_EQ(whole.lattice().nodeCount(), 4U);
  EXPECT_TRUE(hidden.future({{1}}, 20, true).empty());
  EXPECT_EQ(whole.future({{1}}, 20, true), (std::vector<Advice>{{2, 2 / 8.0, 2 / 10.0, 2 / 5.0}}));
  // The compiled form of the open document holds all that is stored.
  saveModel(folder.path("open.compiled"), readModel(folder.path("open.xml")), ModelForm::kCompiled);
  EXPECT_EQ(readCompiledModel(folder.path("open.compiled")).lattice.nodeCount(), 4U);
}

TEST(CompiledModel, LabelsStandBesideTheCompiledForm) {
  const TempFolder folder;
  const std::string path = folder.path("model.compiled");
  const ItemLabelMap labels = {{1, "tea, green"}, {2, "teapot"}};
  EXPECT_FALSE(saveModel(path, smallModel(labels), ModelForm::kCompiled));
  EXPECT_EQ(folder.entries(), 2U);
  EXPECT_EQ(readCompiledModel(path).labels, labels);

  EXPECT_TRUE(saveModel(path, smallModel(), ModelForm::kCompiled)) << "the labels are removed";

  EXPECT_EQ(folder.entries(), 1U);
  EXPECT_TRUE(readCompiledModel(path).labels.empty());
}

TEST(CompiledModel, BadLabelsBesideTheCompiledFormAreRefused) {
  const SavedImage saved;
  saved.folder.file("model.compiled.labels.csv", "item,label\nseven,x\n");

  EXPECT_EQ(refusalOf(saved.path), saved.path +
                                       ".labels.csv:2:1: \"seven\" is no item number in "
                                       "-2147483648..2147483647");
}

TEST(CompiledModel, TheFileHoldsTheImage) {
  const SavedImage saved;

  EXPECT_EQ(bytesOf(readCompiledModel(saved.path)), saved.bytes);
}

// A mapped file that is replaced stays what it was for who has mapped it.
TEST(CompiledModel, AFileThatIsReplacedWhileItIsAskedStaysAsItWas) {
  const SavedImage saved;
  Engine engine(readCompiledModel(saved.path).lattice);
  const auto before = engine.future({{1}}, 20, true);

  saveModel(saved.path, worldModel(3), ModelForm::kCompiled);

  EXPECT_NE(contentOf(saved.path), saved.bytes);
  EXPECT_EQ(engine.future({{1}}, 20, true), before);
  EXPECT_FALSE(before.empty());
}

TEST(CompiledModel, EveryCutFileIsRefusedWithItsName) {
  const SavedImage saved;
  for (std::size_t size = 8; size < saved.bytes.size(); size += 7) {
    const std::string path = saved.folder.file("cut", saved.bytes.substr(0, size));
    EXPECT_THAT(refusalOf(path), MatchesRegex(path + ": offset 0x[0-9A-F]+: the compiled form .+"))
        << size << " bytes";
  }
}

TEST(CompiledModel, LessThanItsFirstEightBytesIsNoCompiledForm) {
  const SavedImage saved;
  for (std::size_t size = 0; size < 8; ++size) {
    const std::string path = saved.folder.file("cut", saved.bytes.substr(0, size));
    EXPECT_ANY_THROW(readCompiledModel(path)) << size << " bytes";
  }
}

TEST(CompiledModel, AnotherVersionIsRefused) {
  const SavedImage saved;
  std::string bytes = saved.bytes;
  bytes[8] = 7;
  const std::string path = saved.folder.file("new", bytes);

  EXPECT_EQ(refusalOf(path),
            path + ": offset 0x8: the compiled form has version 7; this build reads 2");
}

TEST(CompiledModel, AChangedByteIsRefused) {
  const SavedImage saved;
  std::string bytes = saved.bytes;
  bytes.back() = static_cast<char>(bytes.back() + 1);
  const std::string path = saved.folder.file("changed", bytes);

  EXPECT_EQ(refusalOf(path), path + ": offset 0x18: the compiled form does not fit its checksum");
}

TEST(CompiledModel, AMissingFileAndAFolderAreErrorsOfFiles) {
  const TempFolder folder;

  EXPECT_EQ(errorOf<FileError>([&] { readCompiledModel(folder.path("none")); }),
            folder.path("none") + ": cannot open: No such file or directory");
  EXPECT_EQ(errorOf<FileError>([&] { readCompiledModel(folder.path().string()); }),
            folder.path().string() + ": cannot read: Is a directory");
}

TEST(CompiledModel, AnEmptyFileIsRefusedAsADocument) {
  const TempFolder folder;
  const std::string path = folder.file("empty", "");

  EXPECT_EQ(errorOf<std::exception>([&] { readCompiledModel(path); }),
            path + ":1:1: the document is empty");
}

TEST(CompiledModel, NoLatticeIsReadFromTheCompiledForm) {
  const SavedImage saved;
  const std::string wanted =
      saved.path + ": a compiled form holds no lattice; it can be scored with, from a file";

  EXPECT_EQ(errorOf<InputError>([&] { readModel(saved.path); }), wanted);
  EXPECT_EQ(errorOf<InputError>([&] { orbseq::readDocument(saved.path); }), wanted);
}

TEST(CompiledModel, APipeGivesEveryFormButTheCompiledOne) {
  const TempFolder folder;
  const std::string fifo = folder.path("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const Model model = smallModel();
  const std::string wanted = [&] {
    saveModel(folder.path("model.bin"), model, ModelForm::kBinary);
    return bytesOf(readCompiledModel(folder.path("model.bin")));
  }();
  const auto ofPipe = [&](ModelForm form) {
    const std::string bytes = orbseq::test::bytesOf(model, form);
    const auto writer =
        std::async(std::launch::async, [&] { std::ofstream(fifo, std::ios::binary) << bytes; });
    return bytesOf(readCompiledModel(fifo));
  };

  for (const ModelForm form : {ModelForm::kDocument, ModelForm::kBinary, ModelForm::kObjectXml})
    EXPECT_EQ(ofPipe(form).size(), wanted.size()) << nameOf(form);
  EXPECT_EQ(errorOf<InputError>([&] { ofPipe(ModelForm::kCompiled); }),
            fifo + ": a compiled form holds no lattice; it can be scored with, from a file");
}

}  // namespace

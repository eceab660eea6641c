#include "io/modelLabels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "io/AtomicFile.h"
#include "io/IoError.h"
#include "io/ModelFile.h"
#include "tests/io/modelSamples.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::addLabelsBeside;
using orbseq::InputError;
using orbseq::ItemLabelMap;
using orbseq::labelFileOf;
using orbseq::test::awkwardLabels;
using orbseq::test::contentOf;
using orbseq::test::errorOf;
using orbseq::test::TempFolder;
using testing::HasSubstr;
using testing::StartsWith;

// The labels that a model gets from a file beside it with that content.
ItemLabelMap read(const std::string& content, ItemLabelMap labels = {}) {
  const TempFolder folder;
  folder.file("m.bin.labels.csv", content);
  addLabelsBeside(folder.path("m.bin"), labels);
  return labels;
}

// The error of such a file, without the folder.
std::string errorIn(const std::string& content) {
  const TempFolder folder;
  folder.file("m.bin.labels.csv", content);
  ItemLabelMap labels;
  const std::string error =
      errorOf<InputError>([&] { addLabelsBeside(folder.path("m.bin"), labels); });
  const std::string prefix = folder.path("");
  EXPECT_THAT(error, StartsWith(prefix));
  return error.substr(std::min(error.size(), prefix.size()));
}

TEST(ModelLabels, TheFileHasTheModelsName) {
  EXPECT_EQ(labelFileOf("a/m.bin"), "a/m.bin.labels.csv");
}

TEST(ModelLabels, ALinkThatLeadsNowhereHasTheFileBesideItself) {
  const TempFolder folder;
  const std::string a = folder.path("a");
  std::filesystem::create_symlink(folder.path("b"), a);
  std::filesystem::create_symlink(a, folder.path("b"));

  EXPECT_EQ(labelFileOf(a), a + ".labels.csv");
}

// For a while the process has the rights of a user like any other.
class WithoutRights {
 public:
  WithoutRights() = default;
  ~WithoutRights() { EXPECT_TRUE(!isRoot_ || ::seteuid(0) == 0); }
  WithoutRights(const WithoutRights&) = delete;
  WithoutRights& operator=(const WithoutRights&) = delete;

  bool holds() const noexcept { return holds_; }

 private:
  bool isRoot_ = ::geteuid() == 0;
  bool holds_ = !isRoot_ || ::seteuid(orbseq::test::kNobody) == 0;
};

TEST(ModelLabels, AFileThatCannotBeRemovedIsAnError) {
  using std::filesystem::perms;
  const TempFolder folder;
  const std::string path = folder.file("m.bin.labels.csv", "item,label\n1,tea\n");
  std::filesystem::permissions(folder.path(), perms(0555));
  std::string error;
  {
    const WithoutRights nobody;
    if (!nobody.holds()) GTEST_SKIP() << "no other user's rights can be taken";
    error = errorOf<orbseq::FileError>([&] { orbseq::removeLabelsBeside(folder.path("m.bin")); });
  }
  std::filesystem::permissions(folder.path(), perms::owner_all);

  EXPECT_EQ(error, path + ": cannot remove: Permission denied");
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST(ModelLabels, WhatIsWrittenIsRead) {
  ItemLabelMap labels = awkwardLabels();
  labels[-5] = "negative";
  labels[2147483647] = "highest";
  labels[-2147483647 - 1] = "lowest";
  const TempFolder folder;
  orbseq::AtomicFile file(folder.path("m.bin.labels.csv"));
  orbseq::writeLabels(file, labels);
  file.commit();
  ItemLabelMap got;

  addLabelsBeside(folder.path("m.bin"), got);

  EXPECT_EQ(got, labels);
}

TEST(ModelLabels, LongLabelsOfADocumentAreReadFromTheFileBeside) {
  const TempFolder folder;
  const ItemLabelMap labels{{1, std::string(5'000'000, 'x')}};
  saveModel(folder.path("m.xml"), orbseq::test::smallModel(labels), orbseq::ModelForm::kDocument);
  saveModel(folder.path("m.bin"), orbseq::readModel(folder.path("m.xml")),
            orbseq::ModelForm::kBinary);

  EXPECT_TRUE(orbseq::readModel(folder.path("m.bin")).labels == labels);
}

TEST(ModelLabels, TheFileIsCsvOrderedByItem) {
  const TempFolder folder;
  orbseq::AtomicFile file(folder.path("f"));
  orbseq::writeLabels(file, {{22, "a,b"}, {3, "tea \"green\""}, {101, "plain"}});
  file.commit();

  EXPECT_EQ(contentOf(folder.path("f")),
            "item,label\n3,\"tea \"\"green\"\"\"\n22,\"a,b\"\n101,plain\n");
}

TEST(ModelLabels, WithoutAFileThereAreNone) {
  const TempFolder folder;
  ItemLabelMap labels{{1, "own"}};

  addLabelsBeside(folder.path("m.bin"), labels);

  EXPECT_EQ(labels, (ItemLabelMap{{1, "own"}}));
}

TEST(ModelLabels, StandardInputHasNone) {
  const TempFolder folder;
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  folder.file("-.labels.csv", "item,label\n1,tea\n");
  ItemLabelMap labels;

  addLabelsBeside("-", labels);

  std::filesystem::current_path(before);
  EXPECT_TRUE(labels.empty());
}

TEST(ModelLabels, LabelsThatAreThereComeFirst) {
  EXPECT_EQ(read("item,label\n1,file\n2,file\n", {{1, "own"}}),
            (ItemLabelMap{{1, "own"}, {2, "file"}}));
}

TEST(ModelLabels, TheFirstRowOfAnItemStandsAndEmptyLabelsAreNone) {
  EXPECT_EQ(read("item,label\n1,\n2,two\n2,zwei\n"), (ItemLabelMap{{2, "two"}}));
}

TEST(ModelLabels, OtherColumnsAndAnotherOrderAreFine) {
  EXPECT_EQ(read("price,label,item\n9.99,tea,-1\n"), (ItemLabelMap{{-1, "tea"}}));
}

TEST(ModelLabels, ABadItemIsToldWithItsPlace) {
  const std::string wanted = "\" is no item number in -2147483648..2147483647";
  EXPECT_EQ(errorIn("item,label\n1,a\nx,b\n"), "m.bin.labels.csv:3:1: \"x" + wanted);
  EXPECT_EQ(errorIn("label,item\na,1\nb,2147483648\n"),
            "m.bin.labels.csv:3:2: \"2147483648" + wanted);
  for (const char* item : {"", " 1", "1 ", "1.0", "+1", "0x1", "-2147483649", "--1"})
    EXPECT_EQ(errorIn("item,label\n" + std::string(item) + ",b\n"),
              "m.bin.labels.csv:2:1: \"" + std::string(item) + wanted);
}

TEST(ModelLabels, AMissingColumnIsToldWithThoseFound) {
  EXPECT_EQ(errorIn("item,name\n1,a\n"),
            "m.bin.labels.csv:1: no column \"label\"; the columns are \"item\", \"name\"");
  EXPECT_THAT(errorIn("label\na\n"), HasSubstr("no column \"item\""));
}

TEST(ModelLabels, ARowOfAnotherLengthAndATornQuoteAreToldWithTheirPlace) {
  EXPECT_EQ(errorIn("item,label\n1\n"), "m.bin.labels.csv:2: expected 2 fields, found 1");
  EXPECT_THAT(errorIn("item,label\n1,\"a\"b\n"), StartsWith("m.bin.labels.csv:2:2: "));
  EXPECT_THAT(errorIn("item,label\n1,\xFF\n"), StartsWith("m.bin.labels.csv:2:2: "));
}

TEST(ModelLabels, AnEmptyFileIsAnError) {
  EXPECT_EQ(errorIn(""), "m.bin.labels.csv: the file is empty; a header row is wanted");
}

TEST(ModelLabels, WithoutADictionaryThereAreNone) {
  EXPECT_TRUE(orbseq::labelsOf(nullptr).empty());
}

}  // namespace

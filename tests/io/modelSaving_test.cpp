// What saving leaves in a folder: the model, its labels, and the old files when it fails.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "io/IoError.h"
#include "io/ModelFile.h"
#include "tests/io/modelSamples.h"
#include "tests/support/Program.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using namespace orbseq::test;
using orbseq::FileError;
using orbseq::ItemLabelMap;
using orbseq::Model;
using orbseq::ModelForm;
using orbseq::nameOf;
using orbseq::readModel;
using orbseq::saveModel;

constexpr auto kWithoutRoom = {ModelForm::kBinary, ModelForm::kObjectXml};
constexpr auto kDocuments = {ModelForm::kDocument, ModelForm::kPmml};

template <class Operation>
[[noreturn]] void exitWith(Operation operation) noexcept {
  ::_exit(operation());
}

// The exit status of `operation` in a process of its own; -1 when it throws.
template <class Operation>
int statusOf(Operation operation) {
  const pid_t child = ::fork();
  if (child == 0) exitWith(operation);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool givesUpRights() { return ::geteuid() != 0 || ::seteuid(kNobody) == 0; }

TEST(ModelSaving, LabelsOfBinaryAndObjectXmlGoBeside) {
  const TempFolder folder;
  for (const ModelForm form : kWithoutRoom) {
    saveModel(folder.path("m"), smallModel({{1, "tea, green"}, {2, "milk"}}), form);
    EXPECT_EQ(contentOf(folder.path("m.labels.csv")), "item,label\n1,\"tea, green\"\n2,milk\n");
    EXPECT_EQ(readModel(folder.path("m")).labels, (ItemLabelMap{{1, "tea, green"}, {2, "milk"}}));
    EXPECT_EQ(folder.entries(), 2U);
  }
}

TEST(ModelSaving, LabelsBesideGoWhenTheModelHasNone) {
  const TempFolder folder;
  for (const ModelForm form : kWithoutRoom) {
    folder.file("m.labels.csv", "item,label\n1,old\n");
    saveModel(folder.path("m"), smallModel(), form);
    EXPECT_EQ(folder.entries(), 1U) << nameOf(form);
    EXPECT_TRUE(readModel(folder.path("m")).labels.empty());
  }
}

TEST(ModelSaving, DocumentsCarryTheirLabels) {
  const TempFolder folder;
  for (const ModelForm form : kDocuments) {
    saveModel(folder.path("m"), smallModel({{1, "tea"}}), form);
    EXPECT_EQ(folder.entries(), 1U) << nameOf(form);
    EXPECT_EQ(readModel(folder.path("m")).labels, (ItemLabelMap{{1, "tea"}}));
  }
}

TEST(ModelSaving, ADocumentsOwnLabelsComeFirst) {
  const TempFolder folder;
  for (const ModelForm form : kDocuments) {
    saveModel(folder.path("m"), smallModel({{1, "own"}}), form);
    folder.file("m.labels.csv", "item,label\n1,beside\n2,beside\n99,of no sequence\n");
    EXPECT_EQ(readModel(folder.path("m")).labels, (ItemLabelMap{{1, "own"}, {2, "beside"}}));
  }
}

TEST(ModelSaving, ASymbolicLinkStaysAndItsTargetIsReplaced) {
  const TempFolder folder;
  const TempFolder other;
  for (const ModelForm form : kEveryForm) {
    const std::string target = other.file("target", "old");
    fs::create_symlink(target, folder.path("link"));
    saveModel(folder.path("link"), smallModel({{1, "tea"}}), form);

    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_TRUE(contentOf(target) == bytesOf(smallModel({{1, "tea"}}), form)) << nameOf(form);
    EXPECT_EQ(readModel(folder.path("link")).labels, (ItemLabelMap{{1, "tea"}}));
    // The labels stand beside the target.
    EXPECT_EQ(other.entries(), hasRoomForLabels(form) ? 1U : 2U);
    EXPECT_EQ(folder.entries(), 1U);
    fs::remove(folder.path("link"));
  }
}

TEST(ModelSaving, LabelsOfAFormerModelDoNotStay) {
  const TempFolder folder;
  for (const ModelForm form : kEveryForm) {
    EXPECT_FALSE(saveModel(folder.path("m"), smallModel({{1, "tea"}}), ModelForm::kBinary));
    EXPECT_TRUE(saveModel(folder.path("m"), smallModel(), form)) << nameOf(form);
    EXPECT_TRUE(readModel(folder.path("m")).labels.empty());
    EXPECT_EQ(folder.entries(), 1U);
  }
  fs::create_directory(folder.path("m.labels.csv"));  // no file: it stays
  EXPECT_FALSE(saveModel(folder.path("m"), smallModel(), ModelForm::kDocument));
  EXPECT_TRUE(fs::is_directory(folder.path("m.labels.csv")));
}

TEST(ModelSaving, AFullDeviceIsAnErrorAndStaysADevice) {
  for (const ModelForm form : kEveryForm) {
    EXPECT_EQ(errorOf<FileError>([&] {
                saveModel("/dev/full", smallModel({{1, "tea"}}), form);
              }),
              "/dev/full: cannot write: No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_FALSE(fs::exists("/dev/full.labels.csv"));
  }
}

TEST(ModelSaving, AFolderThatTakesNoFileIsAnError) {
  const TempFolder folder;
  ::chmod(folder.path().c_str(), 0555);
  const int status = statusOf([&] {
    if (!givesUpRights()) return 9;
    for (const ModelForm form : kEveryForm)
      if (!errorOf<FileError>([&] {
             saveModel(folder.path("m"), smallModel(), form);
           }).ends_with("/m: cannot make a file in the folder of it: Permission denied"))
        return 1;
    return 0;
  });
  ::chmod(folder.path().c_str(), 0755);

  EXPECT_EQ(status, 0);
  EXPECT_EQ(folder.entries(), 0U);
}

TEST(ModelSaving, AModelThatMayNotBeReadIsAnError) {
  const TempFolder folder;
  ::chmod(folder.path().c_str(), 0755);
  const std::string path = folder.file("m", bytesOf(smallModel(), ModelForm::kBinary));
  ::chmod(path.c_str(), 0);

  EXPECT_EQ(statusOf([&] {
              if (!givesUpRights()) return 9;
              return errorOf<FileError>([&] { readModel(path); }) ==
                             path + ": cannot open: Permission denied"
                         ? 0
                         : 1;
            }),
            0);
}

// Files of the process end early, in the model or in the labels.
TEST(ModelSaving, AFailedSaveLeavesTheOldFilesAndNothingElse) {
  const TempFolder folder;
  const Model model = worldModel(6, {{1, std::string(200'000, 'x')}});
  const Model plain = worldModel(6);
  for (const ModelForm form : kEveryForm) {
    const bool besides = form == ModelForm::kBinary || form == ModelForm::kObjectXml;
    const std::string path = folder.file("m", "old");
    const std::string labels = folder.file("m.labels.csv", "old labels");
    // A limit that the model's file keeps and the labels' does not, where there are two.
    const rlim_t most = besides ? bytesOf(model, form).size() + 10 : 4096;
    ASSERT_LT(most, 200'000U);
    const int status = statusOf([&] {
      ::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{most, most};
      ::setrlimit(RLIMIT_FSIZE, &limit);
      const std::string error = errorOf<FileError>([&] { saveModel(path, model, form); });
      return error == (besides ? labels : path) + ": cannot write: File too large" ? 0 : 1;
    });
    EXPECT_EQ(status, 0) << nameOf(form);
    EXPECT_EQ(contentOf(path), "old") << nameOf(form);
    EXPECT_EQ(contentOf(labels), "old labels") << nameOf(form);
    EXPECT_EQ(folder.entries(), 2U) << nameOf(form);
  }
}

TEST(ModelSaving, AFolderAsTargetOrAsLabelsIsAnErrorThatLeavesTheOldModel) {
  const TempFolder folder;
  const std::string path = folder.file("m", "old");
  fs::create_directory(folder.path("m.labels.csv"));

  EXPECT_EQ(errorOf<FileError>([&] {
              saveModel(path, smallModel({{1, "tea"}}), ModelForm::kBinary);
            }),
            folder.path("m.labels.csv") + ": cannot write: Is a directory");
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(errorOf<FileError>(
                [&] { saveModel(folder.path("m.labels.csv"), smallModel(), ModelForm::kBinary); }),
            folder.path("m.labels.csv") + ": cannot write: Is a directory");
  EXPECT_EQ(folder.entries(), 2U);
}

}  // namespace

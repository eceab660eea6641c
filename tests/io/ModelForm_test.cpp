#include "io/ModelForm.h"

#include <gtest/gtest.h>

#include "tests/io/modelSamples.h"

namespace {

using orbseq::ModelForm;
using orbseq::modelFormOf;
using orbseq::modelFormOfFile;
using orbseq::nameOf;

TEST(ModelForm, EveryFormIsFoundByItsName) {
  for (const ModelForm form : orbseq::test::kEveryForm) EXPECT_EQ(modelFormOf(nameOf(form)), form);
}

TEST(ModelForm, TheNamesAreThose) {
  EXPECT_STREQ(nameOf(ModelForm::kDocument), "document");
  EXPECT_STREQ(nameOf(ModelForm::kPmml), "pmml");
  EXPECT_STREQ(nameOf(ModelForm::kBinary), "binary");
  EXPECT_STREQ(nameOf(ModelForm::kObjectXml), "objxml");
}

TEST(ModelForm, OtherNamesAreNoForm) {
  for (const char* name : {"", "Document", "xml", "bin", "document "})
    EXPECT_EQ(modelFormOf(name), std::nullopt) << name;
}

TEST(ModelForm, TheEndOfAFilesNameTellsTheForm) {
  EXPECT_EQ(modelFormOfFile("a.xml"), ModelForm::kDocument);
  EXPECT_EQ(modelFormOfFile("folder.bin/a.pmml"), ModelForm::kPmml);
  EXPECT_EQ(modelFormOfFile("a.xml.bin"), ModelForm::kBinary);
  EXPECT_EQ(modelFormOfFile("a.objxml"), ModelForm::kObjectXml);
}

TEST(ModelForm, OtherNamesOfFilesTellNone) {
  for (const char* path : {"", "-", "a", "a.bin/b", "xml", "a.XML", "a.xml ", "a.binary"})
    EXPECT_EQ(modelFormOfFile(path), std::nullopt) << path;
}

}  // namespace

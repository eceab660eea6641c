// What readModel answers to content that is no model: an error that names the file and the place,
// and nothing printed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "io/IoError.h"
#include "io/ModelFile.h"
#include "scoring/hostapi/QuException.h"
#include "sequence/errorText.h"
#include "tests/io/modelSamples.h"
#include "tests/support/TempFolder.h"
#include "tests/support/captureErrors.h"

namespace {

using namespace orbseq::test;
using orbseq::FileError;
using orbseq::InputError;
using orbseq::ModelForm;
using orbseq::nameOf;
using orbseq::readModel;
using testing::EndsWith;
using testing::MatchesRegex;
using testing::StartsWith;

struct Refusal {
  std::string text;  // without the folder; empty: the content was read
  bool ofDocument = false;
};

// Reads such a file. Nothing may be printed by the way, by whatever route.
Refusal refusalOf(const TempFolder& folder, const std::string& content) {
  const std::string path = folder.file("model", content);
  Refusal refusal;
  const CapturedErrors errors;
  testing::internal::CaptureStderr();
  try {
    readModel(path);
  } catch (const InputError& error) {
    refusal.text = error.what();
  } catch (const OrbScore::QuException& error) {
    refusal.text = error.what();
    refusal.ofDocument = true;
  }
  EXPECT_EQ(errors.text() + testing::internal::GetCapturedStderr(), "") << refusal.text;
  if (refusal.text.empty()) return refusal;
  EXPECT_THAT(refusal.text, StartsWith(path + ":"));
  EXPECT_THAT(refusal.text, testing::Not(testing::HasSubstr("\n")));
  refusal.text.erase(0, std::min(refusal.text.size(), path.size() - 5));
  return refusal;
}

std::string refusalText(const std::string& content) {
  const TempFolder folder;
  return refusalOf(folder, content).text;
}

std::size_t lineOf(const std::string& refusal) {
  return refusal.starts_with("model:") ? std::stoul(refusal.substr(6)) : 0;
}

TEST(ModelRefusals, AnEmptyFileIsNoModel) {
  EXPECT_EQ(refusalText(""), "model:1:1: the document is empty");
}

TEST(ModelRefusals, AMissingFileAndAFolderAreErrorsOfFiles) {
  const TempFolder folder;
  EXPECT_EQ(errorOf<FileError>([&] { readModel(folder.path("none")); }),
            folder.path("none") + ": cannot open: No such file or directory");
  EXPECT_EQ(errorOf<FileError>([&] { readModel(folder.path().string()); }),
            folder.path().string() + ": cannot read: Is a directory");
}

TEST(ModelRefusals, RandomBytesAreNoModel) {
  std::mt19937 random(7);
  const TempFolder folder;
  for (int i = 0; i < 500; ++i) {
    std::string bytes = i % 3 == 0 ? "SD1" : i % 3 == 1 ? "<!DOCTYPE OrbXMLRoot\n" : "";
    for (auto left = random() % 400; left > 0; --left) bytes += static_cast<char>(random() % 256);
    EXPECT_THAT(refusalOf(folder, bytes).text, StartsWith("model:")) << i;
  }
}

// A changed byte may leave a model, or not; it does nothing else.
TEST(ModelRefusals, AChangedByteGivesAModelOrARefusal) {
  std::mt19937 random(11);
  const TempFolder folder;
  for (const ModelForm form : kEveryForm) {
    const std::string whole = bytesOf(smallModel({{1, "tea"}}), form);
    for (int i = 0; i < 500; ++i) {
      std::string bytes = whole;
      // Not in the binary form's table sizes, which may ask for gigabytes.
      const std::size_t first = form == ModelForm::kBinary ? 45 : 0;
      bytes[first + random() % (bytes.size() - first)] = static_cast<char>(random() % 256);
      refusalOf(folder, bytes);
    }
  }
}

TEST(ModelRefusals, ACutBinaryIsToldWithOffsetLevelAndEntry) {
  const TempFolder folder;
  const std::string whole = bytesOf(worldModel(5), ModelForm::kBinary);
  ASSERT_GT(whole.size(), 1000U);
  for (std::size_t size = 2; size < whole.size(); size += 7) {
    const std::string text = refusalOf(folder, whole.substr(0, size)).text;
    ASSERT_THAT(text, MatchesRegex("model: offset 0x[0-9A-F]+(, level [0-9]+(, entry [0-9]+)?)?, "
                                   "[a-z ]+: the stream ends here, or cannot be read"))
        << size;
    const std::size_t offset = std::stoul(text.substr(text.find("0x")), nullptr, 16);
    EXPECT_LE(offset, size);
    EXPECT_GT(offset + 8, size);
  }
}

TEST(ModelRefusals, BytesAfterABinaryAreTold) {
  const std::string whole = bytesOf(smallModel(), ModelForm::kBinary);
  EXPECT_EQ(refusalText(whole + "x"),
            "model: " + orbseq::offsetText(whole.size()) + ": bytes after the end of the lattice");
  EXPECT_EQ(refusalText(whole + whole), refusalText(whole + "x"));
}

std::string documentOfLevels(int levels, const std::string& minimumSupport = "1") {
  std::string text =
      "<SequentialAssociationLattice version=\"1.0\"><SeqAssociationLattice>"
      "<SeqInputStats numberOfTransactions=\"1\" "
      "minimumSupport=\"" +
      minimumSupport + "\" maxSequenceSize=\"" + std::to_string(levels - 1) +
      "\" numberOfItems=\"0\" numberOfSets=\"0\" numberOfSequences=\"0\"/>";
  for (int level = 0; level < levels; ++level)
    text += "<LatticeLevel level=\"" + std::to_string(level) + "\" numberOfSequences=\"0\"/>";
  return text + "</SeqAssociationLattice></SequentialAssociationLattice>";
}

// A stored lattice has no more levels, and what was read from a document can be stored.
TEST(ModelRefusals, ADocumentHasAsManyLevelsAsAnyOtherForm) {
  EXPECT_EQ(refusalText(documentOfLevels(64)), "");
  EXPECT_EQ(refusalText(documentOfLevels(65)),
            "model: lattice refused: SeqAssociationLattice/SeqInputStats/@maxSequenceSize "
            "(line 1, column 68): 64 is outside -1..63");
}

orbseq::Model modelWithoutLevels(const std::string& minimumSupport) {
  const TempFolder folder;
  return readModel(folder.file("model", documentOfLevels(0, minimumSupport)));
}

// A document may say that it has no levels at all; what is made of it can be stored and scored
// with.
TEST(ModelRefusals, ADocumentWithoutLevelsIsAnEmptyModel) {
  const orbseq::Model model = modelWithoutLevels("1");

  EXPECT_EQ(model.lattice->getNumLevels(), 1);
  EXPECT_EQ(model.lattice->NumberOfSequences(), 0);
}

// Nothing is scored with it: a document of others may tell it as it likes.
TEST(ModelRefusals, AMinimumSupportThatIsNoFractionIsNone) {
  EXPECT_EQ(modelWithoutLevels("0.25").lattice->getReductionThreshold(), 0.25);
  for (const char* none : {"", "abc", "-0.5", "1.5", "1e999", "nan"})
    EXPECT_EQ(modelWithoutLevels(none).lattice->getReductionThreshold(), 0.0) << none;
}

TEST(ModelRefusals, ABadCountInABinaryIsToldWithItsRange) {
  std::string bytes = bytesOf(smallModel(), ModelForm::kBinary);
  const std::size_t entry = bytes.find(std::string("NT:\0", 4), bytes.find("HT", 60));
  ASSERT_NE(entry, std::string::npos);
  bytes[entry + 8] = 33;  // the number of items

  EXPECT_THAT(refusalText(bytes),
              MatchesRegex("model: offset 0x[0-9A-F]+, level [0-9], entry 0, .*33 is outside .*"));
}

TEST(ModelRefusals, ANegativeCountInABinaryIsToldWithItsRange) {
  std::string bytes = bytesOf(smallModel(), ModelForm::kBinary);
  const std::size_t counter = bytes.rfind(std::string("SD\0", 3));
  ASSERT_NE(counter, std::string::npos);
  bytes.replace(counter + 3, 4, "\xFB\xFF\xFF\xFF");  // the count

  EXPECT_THAT(refusalText(bytes),
              MatchesRegex("model: level [0-9]: a count of -5 is outside 0..2147483647"));
}

TEST(ModelRefusals, AStreamThatDoesNotBeginAsOneIsTold) {
  std::string bytes = bytesOf(smallModel(), ModelForm::kObjectXml);
  bytes.replace(0, 5, "<?abc");

  EXPECT_EQ(refusalText(bytes), "model:1: no stream of objects in XML begins here");
}

TEST(ModelRefusals, ACutObjectXmlIsToldWithItsLine) {
  const TempFolder folder;
  const std::string whole = bytesOf(worldModel(5), ModelForm::kObjectXml);
  const std::size_t type = whole.find("<!DOCTYPE") + 60;
  for (std::size_t size = type; size + 1 < whole.size(); size += 97) {
    const std::string content = whole.substr(0, size);
    const Refusal refusal = refusalOf(folder, content);
    ASSERT_FALSE(refusal.ofDocument) << refusal.text;
    const auto lines = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
    EXPECT_GE(lineOf(refusal.text), 1U) << refusal.text;
    EXPECT_LE(lineOf(refusal.text), lines + 1) << refusal.text;
    EXPECT_GE(lineOf(refusal.text) + 2, lines) << refusal.text;
  }
}

TEST(ModelRefusals, ObjectXmlThatDoesNotEndAfterTheLatticeIsTold) {
  const std::string whole = bytesOf(smallModel(), ModelForm::kObjectXml);
  const std::size_t end = whole.find("</OrbXMLRoot>");
  ASSERT_NE(end, std::string::npos);
  EXPECT_THAT(refusalText(whole.substr(0, end)),
              EndsWith(": the stream should end after the lattice"));
  EXPECT_THAT(refusalText(whole.substr(0, end + 5)),
              EndsWith(": the stream should end after the lattice"));
  EXPECT_THAT(refusalText(whole + "\n<more/>\n"),
              EndsWith(": the stream should end after the lattice"));
  EXPECT_THAT(refusalText(whole + "x"), EndsWith(": the stream should end after the lattice"));
}

TEST(ModelRefusals, ObjectXmlOfSomethingElseIsTold) {
  const std::string whole = bytesOf(smallModel(), ModelForm::kObjectXml);
  std::string other = whole;
  other.replace(other.find("SequenceDictionary"), 18, "SomethingElseAgain");
  EXPECT_EQ(
      refusalText(other),
      "model:4: \"\\t<Obj name=\\\"SomethingElseAgain\\\">\" is not what should stand here, or "
      "goes beyond a limit");
  const std::string head = whole.substr(0, whole.find('\n', whole.find("<!DOCTYPE")) + 1);
  EXPECT_EQ(refusalText(head + "\n<Other>\n").substr(0, 6), "model:");
}

TEST(ModelRefusals, CutDocumentsAreToldWithLineAndColumn) {
  const TempFolder folder;
  for (const ModelForm form : {ModelForm::kDocument, ModelForm::kPmml}) {
    const std::string whole = bytesOf(smallModel({{1, "tea"}}), form);
    const std::size_t end = whole.rfind("</");
    for (std::size_t size = 1; size <= end; size += 41) {
      const Refusal refusal = refusalOf(folder, whole.substr(0, size));
      EXPECT_TRUE(refusal.ofDocument) << size;
      EXPECT_THAT(refusal.text, MatchesRegex("model:[0-9]+:[0-9]+: .+")) << nameOf(form) << size;
    }
  }
}

TEST(ModelRefusals, DocumentsWithoutALatticeAreToldWithThePlace) {
  EXPECT_THAT(refusalText("<a/>"), StartsWith("model"));
  std::string document = bytesOf(smallModel(), ModelForm::kDocument);
  document.replace(document.find("occurrence=\"8\""), 14, "occurrence=\"x\"");
  EXPECT_THAT(refusalText(document), MatchesRegex("model.*occurrence.*"));
}

TEST(ModelRefusals, DocumentsBeyondTheLimitsAreRefusedAndOtherFormsHaveNone) {
  const TempFolder folder;
  OrbScore::DocumentLimits limits;
  limits.bytes = 500;
  const std::string path = folder.file("m", bytesOf(smallModel(), ModelForm::kDocument));

  EXPECT_THAT(errorOf<OrbScore::QuException>([&] { readModel(path, limits); }),
              StartsWith(path + ":"));
  EXPECT_NO_THROW(readModel(folder.file("b", bytesOf(smallModel(), ModelForm::kBinary)), limits));
}

TEST(ModelRefusals, BadLabelsBesideAModelAreTold) {
  const TempFolder folder;
  folder.file("model.labels.csv", "item,label\n1,a\ntwo,b\n");
  for (const ModelForm form : kEveryForm) {
    const std::string path = folder.file("model", bytesOf(smallModel(), form));
    EXPECT_EQ(errorOf<InputError>([&] { readModel(path); }),
              path + ".labels.csv:3:1: \"two\" is no item number in -2147483648..2147483647");
  }
}

}  // namespace

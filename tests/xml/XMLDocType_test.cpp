#include "xml/XMLDocType.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/xml/nodeText.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::ExportFormat;
using OrbXML_830::XMLDocType;

std::unique_ptr<XMLDocType> docType() {
  return std::unique_ptr<XMLDocType>(XMLDocType::Create("Root", "root.dtd", 7));
}

const char* const kPlain =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
    "<!DOCTYPE Root SYSTEM \"root.dtd\">\n";

const char* const kExtended =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
    "<!DOCTYPE Root SYSTEM \"root.dtd\"\n"
    "[\n"
    "A\n"
    "B\n"
    "]>\n";

TEST(XMLDocType, TheDeclarationLineStandsBeforeTheType) { EXPECT_EQ(textOf(*docType()), kPlain); }

TEST(XMLDocType, EveryExtensionIsALineOfTheInternalSubset) {
  const auto node = docType();

  node->AddExtension("A");
  node->AddExtension("B");

  EXPECT_EQ(textOf(*node), kExtended);
}

TEST(XMLDocType, AddExtensionAnswersTheSubsetsLengthInBytes) {
  const auto node = docType();

  EXPECT_EQ(node->AddExtension("A"), 2);
  EXPECT_EQ(node->AddExtension("\xC3\xA4"
                               "bc"),
            7);
  EXPECT_EQ(node->AddExtension(""), 8);
}

TEST(XMLDocType, AnEmptyExtensionOpensTheSubset) {
  const auto node = docType();

  node->AddExtension("");

  EXPECT_EQ(textOf(*node),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE Root SYSTEM \"root.dtd\"\n"
            "[\n"
            "\n"
            "]>\n");
}

TEST(XMLDocType, NothingIsEscaped) {
  const std::unique_ptr<XMLDocType> node(XMLDocType::Create("a&b", "c<d", 0));

  node->AddExtension("<!ENTITY x \"&y;\">");

  EXPECT_EQ(textOf(*node),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
            "<!DOCTYPE a&b SYSTEM \"c<d\"\n"
            "[\n"
            "<!ENTITY x \"&y;\">\n"
            "]>\n");
}

TEST(XMLDocType, TheFormatIsIgnoredAndLeftAlone) {
  const auto node = docType();
  ExportFormat format = layout(false, true);
  std::string text = "before ";

  const int answer = node->ToString(text, format);

  EXPECT_EQ(answer, 0);
  EXPECT_EQ(text, std::string("before ") + kPlain);
  format.SetFormat(true);
  EXPECT_TRUE(format.IsNewParagraph());
  EXPECT_TRUE(format.HasIndentation());
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(XMLDocType, TheStreamGetsTheSameText) {
  const auto node = docType();

  EXPECT_EQ(streamTextOf(*node), kPlain);
  EXPECT_EQ(streamTextOf(*node, layout(false, false), true), kPlain);
}

TEST(XMLDocType, ACloneHasItsOwnSubset) {
  const auto node = docType();
  node->AddExtension("A");

  const std::unique_ptr<XMLDocType> clone(node->Clone());
  clone->AddExtension("B");
  const int length = node->AddExtension("C");

  EXPECT_EQ(textOf(*clone), kExtended);
  EXPECT_EQ(length, 4);
}

}  // namespace

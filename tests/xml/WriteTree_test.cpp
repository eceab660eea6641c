#include "xml/WriteTree.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "tests/support/locales.h"
#include "xml/XMLDocType.h"
#include "xml/XMLElement.h"
#include "xml/XMLString.h"

namespace {

using namespace orbseq::test;
using namespace OrbXML_830;

const char* const kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n";

// <root a="..."><text>...</text></root>
std::unique_ptr<XMLElement> tree(const std::string& text) {
  std::unique_ptr<XMLElement> root(XMLElement::Create("root"));
  auto* const child = XMLElement::Create("text");
  root->AddAttribute("a", text);
  root->AddElement(child);
  child->AddElement(XMLString::Create(text));
  return root;
}

std::unique_ptr<XMLDocType> docType() {
  std::unique_ptr<XMLDocType> type(XMLDocType::Create("root", "root.dtd", 0));
  type->AddExtension("A");
  return type;
}

std::string written(const XMLDocType* type, const XMLElement& root, bool format) {
  std::ostringstream stream;
  EXPECT_EQ(WriteTree(stream, type, &root, format), 0);
  return stream.str();
}

std::string writtenAsUtf8(const XMLDocType* type, const XMLElement& root, bool format) {
  std::ostringstream stream;
  EXPECT_EQ(WriteTreeUTF8(stream, type, &root, format), 0);
  return stream.str();
}

std::string textAsUtf8(const std::string& text) {
  std::ostringstream stream;
  EXPECT_EQ(WriteUTF(stream, text), 0);
  return stream.str();
}

TEST(WriteTree, WriteWritesTheBytes) {
  std::ostringstream stream;
  const std::string bytes("a\0\xE4\xFF\n", 5);

  EXPECT_EQ(Write(stream, bytes), 0);
  EXPECT_EQ(stream.str(), bytes);
}

TEST(WriteTree, WritingToAFailedStreamIsNotReported) {
  std::ostringstream stream;
  stream.setstate(std::ios::failbit);

  EXPECT_EQ(Write(stream, "a"), 0);
  EXPECT_EQ(WriteUTF(stream, "a"), 0);
  EXPECT_EQ(WriteTree(stream, nullptr, tree("x").get(), true), 0);
  EXPECT_EQ(stream.str(), "");
}

TEST(WriteTree, AFieldWidthOfTheStreamIsIgnored) {
  std::ostringstream stream;
  stream.width(20);

  Write(stream, "a");

  EXPECT_EQ(stream.str(), "a");
}

TEST(WriteTree, AnEmptyLineStandsBeforeTheRoot) {
  EXPECT_EQ(written(nullptr, *tree("x"), true), std::string(kDeclaration) +
                                                    "\n<root a=\"x\">"
                                                    "\n<text>x</text>"
                                                    "\n</root>");
}

TEST(WriteTree, WithoutFormatTheTreeIsOneLine) {
  EXPECT_EQ(written(nullptr, *tree("x"), false),
            std::string(kDeclaration) + "<root a=\"x\"><text>x</text></root>");
}

TEST(WriteTree, TheDocumentTypeBringsTheDeclaration) {
  const auto type = docType();

  EXPECT_EQ(written(type.get(), *tree("x"), false),
            std::string(kDeclaration) +
                "<!DOCTYPE root SYSTEM \"root.dtd\"\n[\nA\n]>\n"
                "<root a=\"x\"><text>x</text></root>");
}

TEST(WriteTree, ATreeCanBeWrittenAgain) {
  const auto root = tree("x");

  const std::string first = written(nullptr, *root, true);

  EXPECT_EQ(written(nullptr, *root, true), first);
}

// Deliberate: the declaration says UTF-8, yet the bytes are written unconverted.
TEST(WriteTree, TheBytesAreWrittenUnconverted) {
  EXPECT_EQ(written(nullptr, *tree("\xE4"), false),
            std::string(kDeclaration) + "<root a=\"\xE4\"><text>\xE4</text></root>");
}

TEST(WriteTree, AsciiIsTheSameInUtf8) {
  const auto root = tree("x & y");
  const auto type = docType();

  EXPECT_EQ(writtenAsUtf8(type.get(), *root, true), written(type.get(), *root, true));
  EXPECT_EQ(writtenAsUtf8(nullptr, *root, false), written(nullptr, *root, false));
}

TEST(WriteTree, Utf8TextsStayAsTheyAreInAUtf8Locale) {
  const ScopedCLocale utf8({"C.UTF-8", "C.utf8"});
  ASSERT_TRUE(utf8.isInstalled());
  const std::string text = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8D\xB5";

  EXPECT_EQ(textAsUtf8(text), text);
  EXPECT_EQ(writtenAsUtf8(nullptr, *tree(text), true), written(nullptr, *tree(text), true));
}

TEST(WriteTree, BytesThatAreNoCharactersBecomeReplacementCharacters) {
  const ScopedCLocale classic({"C"});

  EXPECT_EQ(textAsUtf8("a\xE4"), "a\xEF\xBF\xBD");
  EXPECT_EQ(
      writtenAsUtf8(nullptr, *tree("\xE4"), false),
      std::string(kDeclaration) + "<root a=\"\xEF\xBF\xBD\"><text>\xEF\xBF\xBD</text></root>");
}

TEST(WriteTree, Latin1TextsBecomeUtf8InALatin1Locale) {
  const ScopedCLocale latin1({"de_DE.ISO-8859-1", "de_DE.iso88591", "en_US.ISO-8859-1"});
  if (!latin1.isInstalled()) GTEST_SKIP() << "NOT TESTED: no ISO-8859-1 locale is installed";

  EXPECT_EQ(textAsUtf8("\xE4"), "\xC3\xA4");
  EXPECT_EQ(writtenAsUtf8(nullptr, *tree("\xE4"), false),
            std::string(kDeclaration) + "<root a=\"\xC3\xA4\"><text>\xC3\xA4</text></root>");
}

TEST(WriteTree, ZeroBytesAndEmptyTextsAreConverted) {
  EXPECT_EQ(textAsUtf8(""), "");
  EXPECT_EQ(textAsUtf8(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(WriteTree, NumbersDoNotFollowTheGlobalLocale) {
  const ScopedGlobalLocale grouping(groupingLocale());
  std::unique_ptr<XMLElement> root(XMLElement::Create("r"));
  root->AddAttribute("a", 1234567.5);
  root->AddAttribute("b", 1234567.5, true);

  EXPECT_EQ(written(nullptr, *root, false),
            std::string(kDeclaration) + "<r a=\"1234567.5\" b=\"1234567.5000000000000000\"/>");
}

}  // namespace

// What a document may be, and what it gives.

#include "host/SafeDocument.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"
#include "tests/host/messageOf.h"

namespace {

using OrbScore::BaseTranslator;
using OrbScore::DocumentLimits;
using OrbScore::DOMElement;
using OrbScore::QuException;
using OrbScore::QuillonTranscoder;
using OrbScore::SafeDocument;
using test::messageOf;

SafeDocument parse(std::string_view text) { return SafeDocument::Parse(text, "d.xml"); }

std::string utf8(const OrbScore::DomChar* text) {
  return QuillonTranscoder("UTF-8").transcodeTo(text);
}

// The attribute "v" of the root, in UTF-8.
std::string valueOf(const SafeDocument& document) {
  return utf8(BaseTranslator::GetAttribute(document.GetRoot(), u"v"));
}

std::string modelRefusal(std::string_view text) {
  return messageOf<QuException>([text] { parse(text).GetModelElement(); });
}

TEST(SafeDocument, ReadsADocument) {
  const SafeDocument document = parse("<a v='1'/>");

  EXPECT_EQ(document.GetName(), "d.xml");
  EXPECT_TRUE(BaseTranslator::HasTagName(document.GetRoot(), u"a"));
  EXPECT_EQ(valueOf(document), "1");
}

TEST(SafeDocument, ReadsUtf8WithAndWithoutByteOrderMark) {
  EXPECT_EQ(valueOf(parse("<a v='\xC3\xA4'/>")), "\xC3\xA4");
  EXPECT_EQ(valueOf(parse("\xEF\xBB\xBF<a v='\xC3\xA4'/>")), "\xC3\xA4");
  EXPECT_EQ(valueOf(parse("<?xml version='1.0' encoding='utf-8'?><a v='\xC3\xA4'/>")), "\xC3\xA4");
  EXPECT_EQ(
      valueOf(parse("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?><a v='\xC3\xA4'/>")),
      "\xC3\xA4");
  EXPECT_EQ(valueOf(parse("<?xml version='1.0' encoding='utf_8'?><a v='\xC3\xA4'/>")), "\xC3\xA4");
}

TEST(SafeDocument, ReadsEncodingsThatContainAscii) {
  const auto valueIn = [](const std::string& encoding, const std::string& value) {
    return valueOf(
        parse("<?xml version='1.0' encoding='" + encoding + "'?><a v='" + value + "'/>"));
  };

  EXPECT_EQ(valueIn("US-ASCII", "a"), "a");
  EXPECT_EQ(valueIn("ISO-8859-1", "\xE4"), "\xC3\xA4");
  EXPECT_EQ(valueIn("iso-8859-1", "\xE4"), "\xC3\xA4");
  EXPECT_EQ(valueIn("windows-1252", "\x80"), "\xE2\x82\xAC");
  EXPECT_EQ(valueIn("ISO-8859-15", "\xA4"), "\xE2\x82\xAC");
  EXPECT_EQ(valueIn("KOI8-R", "\xE1"), "\xD0\x90");
  EXPECT_EQ(valueIn("EUC-JP", "\xA4\xA2"), "\xE3\x81\x82");
  EXPECT_EQ(valueIn("GB18030", "\x94\x39\xFC\x36"), "\xF0\x9F\x98\x80");
}

// U+1F600 as these bytes of the encoding, many times, wherever the converter's blocks end.
void expectReadWhereverItFalls(const std::string& encoding, const std::string& character) {
  const std::string head = "<?xml version='1.0' encoding='" + encoding + "'?><a v='";
  std::string value, expected;
  for (int i = 0; i < 5'000; ++i) {
    value += character;
    expected += "\xF0\x9F\x98\x80";
  }

  for (std::size_t before = 0; before < character.size(); ++before) {
    const std::string padding(before, 'x');
    EXPECT_EQ(valueOf(parse(head + padding + value + "'/>")), padding + expected);
  }
}

TEST(SafeDocument, ReadsAnEncodingWhereverItsBytesFall) {
  expectReadWhereverItFalls("GB18030", "\x94\x39\xFC\x36");
}

// There each half of a character stands for itself, so that a block may end between the two.
TEST(SafeDocument, ReadsTheTwoHalvesOfACharacterWhereverTheyFall) {
  expectReadWhereverItFalls("CESU-8", "\xED\xA0\xBD\xED\xB8\x80");
}

TEST(SafeDocument, ReplacesHalfACharacter) {
  const std::string head = "<?xml version='1.0' encoding='CESU-8'?><a v='a";

  EXPECT_EQ(valueOf(parse(head + "\xED\xA0\xBDz'/>")), "a\xEF\xBF\xBDz");
  EXPECT_EQ(valueOf(parse(head + "\xED\xB8\x80z'/>")), "a\xEF\xBF\xBDz");
}

TEST(SafeDocument, ReadsBothVersionsOfXml) {
  EXPECT_EQ(valueOf(parse("<?xml version='1.0'?><a v='1'/>")), "1");
  EXPECT_EQ(valueOf(parse("<?xml version='1.1'?><a v='&#1;'/>")), "\x01");
}

TEST(SafeDocument, ReadsTheFiveEntitiesAndCharacterReferences) {
  EXPECT_EQ(valueOf(parse("<a v='&lt;&gt;&amp;&quot;&apos;&#65;&#x42;'/>")), "<>&\"'AB");
}

TEST(SafeDocument, PassesOverADocumentType) {
  for (const char* declaration :
       {"<!DOCTYPE a>", "<!DOCTYPE a >", "<!DOCTYPE\ta\n>", "<!DOCTYPE a SYSTEM \"x.dtd\">",
        "<!DOCTYPE a SYSTEM 'x.dtd'>", "<!DOCTYPE a SYSTEM 'x\"[]>y.dtd' >",
        "<!DOCTYPE a SYSTEM \"x'[]>y.dtd\">", "<!DOCTYPE a PUBLIC \"p\" \"x.dtd\">",
        "<!DOCTYPE a\nPUBLIC 'p>' \n 'x.dtd'\n>", "<!DOCTYPE a SYSTEM ''>",
        "<!DOCTYPE other SYSTEM 'x.dtd'>"})
    EXPECT_EQ(valueOf(parse(std::string(declaration) + "<a v='1'/>")), "1") << declaration;
}

TEST(SafeDocument, PassesOverADocumentTypeBehindOtherThings) {
  EXPECT_EQ(
      valueOf(parse("\xEF\xBB\xBF<?xml version='1.0' standalone='no'?>\n<!-- <!DOCTYPE x [ -->"
                    "<?p <!DOCTYPE x [ ?>\n<!DOCTYPE a SYSTEM 'x.dtd'>\n<!-- [ --><a v='1'/>")),
      "1");
}

TEST(SafeDocument, LeavesWhatLooksLikeADocumentTypeInAComment) {
  EXPECT_EQ(valueOf(parse("<!-- <!DOCTYPE a [ ]> --><a v='1'/><!-- <!DOCTYPE a [ ]> -->")), "1");
}

TEST(SafeDocument, KeepsNoWhiteSpaceBetweenElementsCommentsAndInstructions) {
  const SafeDocument document = parse("<a>\n <b/>\n <!-- c --><?p i?></a>");

  DOMElement* const child = BaseTranslator::GetFirstChildElt(document.GetRoot());

  EXPECT_TRUE(BaseTranslator::HasTagName(child, u"b"));
  EXPECT_EQ(BaseTranslator::GetNextSiblingElt(child), nullptr);
}

TEST(SafeDocument, TheBytesNeedNotOutliveTheCall) {
  auto bytes = std::make_unique<std::string>("<a v='1'/>");
  const SafeDocument document = SafeDocument::Parse(*bytes, "d.xml");

  bytes.reset();

  EXPECT_EQ(valueOf(document), "1");
}

TEST(SafeDocument, ElementsOutliveAMove) {
  SafeDocument document = parse("<a v='1'><b/></a>");
  DOMElement* const root = document.GetRoot();

  SafeDocument moved = std::move(document);
  document = parse("<c/>");

  EXPECT_EQ(moved.GetRoot(), root);
  EXPECT_EQ(valueOf(moved), "1");
  EXPECT_EQ(BaseTranslator::GetPosition(BaseTranslator::GetFirstChildElt(root)),
            "line 1, column 10");
}

TEST(SafeDocument, TheModelElementOfALatticeDocumentIsItsRoot) {
  const SafeDocument document = parse("<SequentialAssociationLattice/>");

  EXPECT_EQ(document.GetModelElement(), document.GetRoot());
}

TEST(SafeDocument, TheModelElementOfAPmmlDocumentIsItsFirstSequenceModel) {
  const SafeDocument document = parse(
      "<PMML><Header/><X><Y/><Y><Z/></Y></X><W><SequenceModel v='1'/></W>"
      "<SequenceModel v='2'/></PMML>");

  EXPECT_EQ(utf8(BaseTranslator::GetAttribute(document.GetModelElement(), u"v")), "1");
}

TEST(SafeDocument, RefusesTheModelElementOfAForeignDocument) {
  EXPECT_EQ(modelRefusal("\n <Sequential/>"),
            "d.xml:2:2: no sequence model: the root element is \"Sequential\", expected "
            "\"SequentialAssociationLattice\" or \"PMML\"");
}

TEST(SafeDocument, RefusesTheModelElementOfAPmmlDocumentWithoutOne) {
  EXPECT_EQ(modelRefusal("<PMML><X><Y/></X><Z/></PMML>"),
            "d.xml:1:1: no sequence model: the PMML document has no SequenceModel element");
  EXPECT_EQ(modelRefusal("<PMML/>"),
            "d.xml:1:1: no sequence model: the PMML document has no SequenceModel element");
}

TEST(SafeDocument, LoadsWhatIsJustWithinTheLimits) {
  std::string deep;
  for (int i = 0; i < 64; ++i) deep += "<a>";
  for (int i = 0; i < 64; ++i) deep += "</a>";
  std::string wide = "<a";
  for (int i = 0; i < 64; ++i) wide += " x" + std::to_string(i) + "='1'";
  wide += "/>";

  EXPECT_NO_THROW(parse(deep));
  EXPECT_NO_THROW(parse(wide));
  EXPECT_NO_THROW(parse('<' + std::string(1024, 'n') + "/>"));
  EXPECT_NO_THROW(parse("<a " + std::string(1024, 'n') + "='1'/>"));
}

TEST(SafeDocument, LimitsCanBeRaised) {
  std::string deep;
  for (int i = 0; i < 10'000; ++i) deep += "<a>";
  for (int i = 0; i < 10'000; ++i) deep += "</a>";

  EXPECT_NO_THROW(SafeDocument::Parse(deep, "d.xml", DocumentLimits{.depth = 10'000}));
}

TEST(SafeDocument, EightThreadsLoadAtOnce) {
  std::atomic<int> right = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([thread, &right] {
      const std::string value = std::to_string(thread);
      for (int i = 0; i < 25; ++i) {
        const SafeDocument document =
            parse("<?xml version='1.0' encoding='ISO-8859-1'?>\n<a v='" + value + "'><b/></a>");
        const bool refused = messageOf<QuException>([] { parse("<a>\n</b>"); }) ==
                             "d.xml:2:3: expected end of tag 'a'";
        DOMElement* const b = BaseTranslator::GetFirstChildElt(document.GetRoot());
        if (refused && valueOf(document) == value &&
            BaseTranslator::GetPosition(b) == "line 2, column 10")
          ++right;
      }
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(right, 200);
}

TEST(SafeDocument, EightThreadsAskOneDocumentForPositions) {
  const SafeDocument document = parse("<a><b/></a>");
  DOMElement* const b = BaseTranslator::GetFirstChildElt(document.GetRoot());
  std::atomic<int> right = 0;
  std::vector<std::thread> threads;

  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([b, &right] {
      for (int i = 0; i < 100; ++i)
        if (BaseTranslator::GetPosition(b) == "line 1, column 4") ++right;
    });
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(right, 800);
}

}  // namespace

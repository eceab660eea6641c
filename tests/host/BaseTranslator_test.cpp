#include "scoring/hostapi/BaseTranslator.h"

#include <gtest/gtest.h>

#include <limits>
#include <xercesc/dom/DOMElement.hpp>

#include "host/SafeDocument.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"
#include "scoring/hostapi/ScoreModel.h"
#include "tests/host/messageOf.h"

namespace {

using OrbScore::BaseTranslator;
using OrbScore::DomChar;
using OrbScore::DOMElement;
using OrbScore::QuException;
using OrbScore::SafeDocument;
using test::messageOf;

SafeDocument parse(std::string_view text) { return SafeDocument::Parse(text, "d.xml"); }

std::string refusalOfInt(const DomChar* text) {
  return messageOf<QuException>([text] { BaseTranslator::VerifyInt(text); });
}

class OpenTranslator : public BaseTranslator {
 public:
  using BaseTranslator::CreateTranscoder;
  using BaseTranslator::GetTranscoder;
  OrbScore::ScoreModel* ParseFromTree(DOMElement*, const std::string&) override { return nullptr; }
};

TEST(BaseTranslator, FindsTheRootFromAnywhere) {
  const SafeDocument document = parse("<a><b><c/></b></a>");
  DOMElement* const b = BaseTranslator::GetFirstChildElt(document.GetRoot());

  EXPECT_EQ(BaseTranslator::GetRootElt(b), document.GetRoot());
  EXPECT_EQ(BaseTranslator::GetRootElt(document.GetRoot()), document.GetRoot());
}

TEST(BaseTranslator, WalksElementsPastTextsAndComments) {
  const SafeDocument document = parse("<a>text<!-- c --><b/>more<?p i?> <c/><![CDATA[x]]></a>");

  DOMElement* const first = BaseTranslator::GetFirstChildElt(document.GetRoot());
  DOMElement* const second = BaseTranslator::GetNextSiblingElt(first);

  EXPECT_TRUE(BaseTranslator::HasTagName(first, u"b"));
  EXPECT_TRUE(BaseTranslator::HasTagName(second, u"c"));
  EXPECT_EQ(BaseTranslator::GetNextSiblingElt(second), nullptr);
  EXPECT_EQ(BaseTranslator::GetFirstChildElt(second), nullptr);
  const OrbScore::DOMNodeList* const children = document.GetRoot()->getChildNodes();
  EXPECT_EQ(BaseTranslator::GetElt(children, 0), nullptr);
  EXPECT_EQ(BaseTranslator::GetElt(children, 1), first);
}

TEST(BaseTranslator, ListsDescendantsByNameInDocumentOrder) {
  const SafeDocument document = parse("<a><b n='1'/><c><b n='2'><b n='3'/></b></c></a>");

  OrbScore::DOMNodeList* const list =
      BaseTranslator::GetElementsByTagName(document.GetRoot(), u"b");

  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(BaseTranslator::VerifyInt(
                  BaseTranslator::GetAttribute(BaseTranslator::GetElt(list, i), u"n")),
              static_cast<int>(i) + 1);
  EXPECT_EQ(BaseTranslator::GetElt(list, 3), nullptr);
  EXPECT_EQ(BaseTranslator::GetElt(list, std::numeric_limits<std::size_t>::max()), nullptr);
}

TEST(BaseTranslator, NamesAreComparedExactly) {
  const SafeDocument document = parse("<p:Item/>");

  EXPECT_TRUE(BaseTranslator::HasTagName(document.GetRoot(), u"p:Item"));
  EXPECT_FALSE(BaseTranslator::HasTagName(document.GetRoot(), u"Item"));
  EXPECT_FALSE(BaseTranslator::HasTagName(document.GetRoot(), u"p:item"));
}

TEST(BaseTranslator, TellsAnEmptyAttributeFromAMissingOne) {
  const SafeDocument document = parse("<a x='' y='1&amp;2'/>");

  EXPECT_EQ(std::u16string_view(BaseTranslator::GetAttribute(document.GetRoot(), u"x")), u"");
  EXPECT_EQ(std::u16string_view(BaseTranslator::GetAttribute(document.GetRoot(), u"y")), u"1&2");
  EXPECT_EQ(BaseTranslator::GetAttribute(document.GetRoot(), u"z"), nullptr);
}

TEST(BaseTranslator, NullIsAnsweredWithNothing) {
  const SafeDocument document = parse("<a/>");
  DOMElement* const root = document.GetRoot();

  EXPECT_EQ(BaseTranslator::GetRootElt(nullptr), nullptr);
  EXPECT_EQ(BaseTranslator::GetFirstChildElt(nullptr), nullptr);
  EXPECT_EQ(BaseTranslator::GetNextSiblingElt(nullptr), nullptr);
  EXPECT_EQ(BaseTranslator::GetElementsByTagName(nullptr, u"a"), nullptr);
  EXPECT_EQ(BaseTranslator::GetElementsByTagName(root, nullptr), nullptr);
  EXPECT_EQ(BaseTranslator::GetElt(nullptr, 0), nullptr);
  EXPECT_FALSE(BaseTranslator::HasTagName(nullptr, u"a"));
  EXPECT_FALSE(BaseTranslator::HasTagName(root, nullptr));
  EXPECT_EQ(BaseTranslator::GetAttribute(nullptr, u"a"), nullptr);
  EXPECT_EQ(BaseTranslator::GetAttribute(root, nullptr), nullptr);
  EXPECT_EQ(BaseTranslator::GetPosition(nullptr), "");
}

TEST(BaseTranslator, ReadsIntegers) {
  EXPECT_EQ(BaseTranslator::VerifyInt(u"0"), 0);
  EXPECT_EQ(BaseTranslator::VerifyInt(u"-1"), -1);
  EXPECT_EQ(BaseTranslator::VerifyInt(u"007"), 7);
  EXPECT_EQ(BaseTranslator::VerifyInt(u"2147483647"), 2147483647);
  EXPECT_EQ(BaseTranslator::VerifyInt(u"-2147483648"), -2147483648);
}

TEST(BaseTranslator, ReadsIntegersWithBlanksAround) {
  EXPECT_EQ(BaseTranslator::VerifyInt(u" \t\r\n12 \t\r\n"), 12);
}

TEST(BaseTranslator, RefusesAnIntegerQuotingItAndTheRange) {
  EXPECT_EQ(refusalOfInt(u"abc"),
            "\"abc\" is not a 32-bit integer (allowed: -2147483648..2147483647)");
}

TEST(BaseTranslator, RefusesTextThatIsNoInteger) {
  for (const DomChar* text : {u"", u" ", u"abc", u"3.0", u"0x3", u"+3", u"3 4", u"- 3", u"--3",
                              u"3-", u"-", u"1e3", u"\uFF13", u"\u0663", u"\u00A03", u"\u20033"})
    EXPECT_NE(refusalOfInt(text).find("is not a 32-bit integer"), std::string::npos)
        << refusalOfInt(text);
}

TEST(BaseTranslator, RefusesIntegersBeyondThirtyTwoBits) {
  for (const DomChar* text :
       {u"2147483648", u"-2147483649", u"4294967297", u"1234567890123456789012345678901234567890"})
    EXPECT_NE(refusalOfInt(text).find("is not a 32-bit integer"), std::string::npos)
        << refusalOfInt(text);
}

TEST(BaseTranslator, RefusesAMissingIntegerAsMissing) {
  EXPECT_EQ(refusalOfInt(nullptr),
            "a missing value is not a 32-bit integer (allowed: -2147483648..2147483647)");
}

TEST(BaseTranslator, QuotesTheBeginningOfALongTextThatIsNoInteger) {
  const std::u16string text(5'000'000, u'x');

  EXPECT_EQ(refusalOfInt(text.c_str()),
            '"' + std::string(64, 'x') +
                "...\" is not a 32-bit integer (allowed: -2147483648..2147483647)");
}

TEST(BaseTranslator, QuotesHalfACharacterAsItsReplacement) {
  const std::string behind = " is not a 32-bit integer (allowed: -2147483648..2147483647)";

  EXPECT_EQ(refusalOfInt(u"7\xD83C"), "\"7\xEF\xBF\xBD\"" + behind);
  EXPECT_EQ(refusalOfInt(u"\xD83Cz"), "\"\xEF\xBF\xBDz\"" + behind);
  EXPECT_EQ(refusalOfInt(u"7\xDF75"), "\"7\xEF\xBF\xBD\"" + behind);
  EXPECT_EQ(refusalOfInt(u"\xDF75\xD83C"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\"" + behind);
}

TEST(BaseTranslator, TellsWhereAnElementBegins) {
  const SafeDocument document = parse("<a>\n  <b x='1'\n     y='2'/><c/>\r\n\r<d></d></a>");
  DOMElement* const b = BaseTranslator::GetFirstChildElt(document.GetRoot());
  DOMElement* const c = BaseTranslator::GetNextSiblingElt(b);
  DOMElement* const d = BaseTranslator::GetNextSiblingElt(c);

  EXPECT_EQ(BaseTranslator::GetPosition(document.GetRoot()), "line 1, column 1");
  EXPECT_EQ(BaseTranslator::GetPosition(b), "line 2, column 3");
  EXPECT_EQ(BaseTranslator::GetPosition(c), "line 3, column 13");
  EXPECT_EQ(BaseTranslator::GetPosition(d), "line 5, column 1");
}

TEST(BaseTranslator, CountsColumnsInCharacters) {
  const SafeDocument document = parse("<a t='\xC3\xA4\xF0\x9F\x98\x80'><b/></a>");

  EXPECT_EQ(BaseTranslator::GetPosition(BaseTranslator::GetFirstChildElt(document.GetRoot())),
            "line 1, column 11");
}

TEST(BaseTranslator, PositionsAreNotMisledByWhatLooksLikeATag) {
  const SafeDocument document = parse(
      "<?xml version='1.0'?><!-- <x> --><?p <x> ?><a t='>'>&lt;x><!--<x>--><![CDATA[<x>]]>"
      "<?p <x>?><b></b ><c/></a>");
  DOMElement* const b = BaseTranslator::GetFirstChildElt(document.GetRoot());
  DOMElement* const c = BaseTranslator::GetNextSiblingElt(b);

  EXPECT_EQ(BaseTranslator::GetPosition(document.GetRoot()), "line 1, column 44");
  EXPECT_EQ(BaseTranslator::GetPosition(b), "line 1, column 93");
  EXPECT_EQ(BaseTranslator::GetPosition(c), "line 1, column 101");
}

TEST(BaseTranslator, PositionsHoldBehindADocumentType) {
  const SafeDocument document = parse("<!DOCTYPE a\n  SYSTEM '\xC3\xA4.dtd'\r\n> <a>\n<b/></a>");

  EXPECT_EQ(BaseTranslator::GetPosition(document.GetRoot()), "line 3, column 3");
  EXPECT_EQ(BaseTranslator::GetPosition(BaseTranslator::GetFirstChildElt(document.GetRoot())),
            "line 4, column 1");
}

TEST(BaseTranslator, MakesATranscoder) {
  OpenTranslator translator;

  translator.CreateTranscoder("ISO-8859-1");

  EXPECT_EQ(translator.GetTranscoder().transcodeTo(u"\u00E4"), "\xE4");
}

TEST(BaseTranslator, KeepsItsTranscoderWhenTheNextEncodingIsUnknown) {
  OpenTranslator translator;
  translator.CreateTranscoder("ISO-8859-1");

  EXPECT_THROW(translator.CreateTranscoder("nonsense"), QuException);

  EXPECT_EQ(translator.GetTranscoder().GetEncoding(), "ISO-8859-1");
}

TEST(BaseTranslator, RefusesToTranscodeWithoutATranscoder) {
  EXPECT_EQ(messageOf<QuException>([] { OpenTranslator().GetTranscoder(); }),
            "the translator has no transcoder");
}

}  // namespace

// What a document may not be, and where the error says so.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "host/DocumentLimits.h"
#include "host/SafeDocument.h"
#include "scoring/hostapi/QuException.h"
#include "tests/host/messageOf.h"

namespace {

using namespace std::string_literals;
using OrbScore::DocumentLimits;
using OrbScore::QuException;
using OrbScore::SafeDocument;
using test::messageOf;

std::string refusal(std::string_view text, const DocumentLimits& limits = {}) {
  return messageOf<QuException>([&] { SafeDocument::Parse(text, "d.xml", limits); });
}

std::string repeated(const std::string& text, int times) {
  std::string out;
  for (int i = 0; i < times; ++i) out += text;
  return out;
}

struct Case {
  std::string text;
  std::string message;
};

void expectRefusals(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(refusal(c.text), c.message) << c.text.substr(0, 200);
}

TEST(SafeDocumentRefusal, RefusesWhatIsNoDocument) {
  expectRefusals({
      {"", "d.xml:1:1: the document is empty"},
      {"\xEF\xBB\xBF", "d.xml:1:1: invalid document structure"},
      {" \n ", "d.xml:2:2: invalid document structure"},
      {"abc", "d.xml:1:1: invalid document structure"},
      {"\x7F"
       "ELF\x02\x01\x01",
       "d.xml:1:1: invalid document structure"},
      {"<a/><b/>", "d.xml:1:5: comment or processing instruction expected"},
      {"<a/>text", "d.xml:1:5: comment or processing instruction expected"},
      {"<?xml version='1.0'?>", "d.xml:1:22: invalid document structure"},
  });
}

TEST(SafeDocumentRefusal, RefusesWhatIsNotWellFormed) {
  expectRefusals({
      {"<a>\n<b></a>", "d.xml:2:6: expected end of tag 'b'"},
      {"<a x='1' x='2'/>", "d.xml:1:12: attribute 'x' is already specified for element 'a'"},
      {"<a v='&#0;'/>", "d.xml:1:11: invalid character reference"},
      {"<a v='&#x110000;'/>", "d.xml:1:15: invalid character reference"},
  });
}

TEST(SafeDocumentRefusal, RefusesADocumentCutAnywhere) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!-- a lattice -->\n"
      "<!DOCTYPE SequentialAssociationLattice SYSTEM 'lattice.dtd'>\n"
      "<SequentialAssociationLattice>\n"
      "  <SeqInputStats name=\"gr\xC3\xBC\xC3\x9F &amp; more\" numberOfSets='2'/>\n"
      "  <Item id='1' value='7'><![CDATA[ <x> ]]></Item>\n"
      "</SequentialAssociationLattice>";
  ASSERT_EQ(refusal(text), "no error");

  for (std::size_t length = 0; length < text.size(); ++length)
    EXPECT_TRUE(refusal(text.substr(0, length)).starts_with("d.xml:"))
        << length << ": " << refusal(text.substr(0, length));
}

// Wherever the bytes that are left of a character stand among the converter's blocks.
TEST(SafeDocumentRefusal, RefusesADocumentCutInACharacter) {
  const std::string head = "<?xml version='1.0' encoding='GB18030'?><a v='";
  const std::string character = "\x94\x39\xFC\x36";

  for (const std::size_t size : {100U, 4093U, 4094U, 4095U, 4096U, 8192U})
    for (std::size_t left = 1; left < character.size(); ++left)
      EXPECT_EQ(
          refusal(head + std::string(size - head.size(), 'x') + character.substr(0, left)),
          "d.xml:1:" + std::to_string(size + 1) + ": invalid byte for the encoding: \"GB18030\"")
          << size << ' ' << left;
  EXPECT_EQ(refusal("<?xml version='1.0' encoding='GB18030'?><a/>\x94"),
            "d.xml:1:45: invalid byte for the encoding: \"GB18030\"");
}

// Converters have a replacement for such a byte, which is no answer.
TEST(SafeDocumentRefusal, RefusesBytesThatAConverterReplaces) {
  struct Row {
    std::string encoding;
    std::string byte;
  };
  const std::vector<Row> rows = {{"GB18030", "\xFF"},    {"windows-1253", "\xD2"},
                                 {"ISO-8859-7", "\xAE"}, {"EUC-JP", "\xFF"},
                                 {"Shift_JIS", "\x80"},  {"GB18030", "\x84\x31\xA4\x37"}};
  for (const Row& row : rows)
    for (const std::size_t size : {60U, 4094U, 4095U, 4096U, 4097U, 8191U, 10'000U}) {
      std::string text = "<?xml version='1.0' encoding='" + row.encoding + "'?><a v='";
      text.resize(size, 'x');
      EXPECT_EQ(refusal(text + row.byte + "'/>"), "d.xml:1:" + std::to_string(size + 1) +
                                                      ": invalid byte for the encoding: \"" +
                                                      row.encoding + '"')
          << size;
    }
}

TEST(SafeDocumentRefusal, TellsWhereACutDocumentEnds) {
  EXPECT_EQ(refusal("<a>\n  <b>\n"),
            "d.xml:3:1: input ended before all started tags were ended; last tag started is 'b'");
}

TEST(SafeDocumentRefusal, RefusesAnInternalSubset) {
  const std::string detail = ": document type declaration not allowed: it has an internal subset";
  expectRefusals({
      {"\n<!DOCTYPE a [<!ENTITY z 'b'>]>\n<a>&z;</a>", "d.xml:2:13" + detail},
      {"<!DOCTYPE a[]><a/>", "d.xml:1:12" + detail},
      {"<!DOCTYPE a SYSTEM 'x' [\n]>\n<a/>", "d.xml:1:24" + detail},
      {"<!DOCTYPE a SYSTEM 'x'[]><a/>", "d.xml:1:23" + detail},
      {"<!DOCTYPE a\nPUBLIC 'p' \"x\"\n [\n]>\n<a/>", "d.xml:3:2" + detail},
      {"<?p ?><!-- x --><!DOCTYPE a [ ]><a/>", "d.xml:1:29" + detail},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><!--\xE4--><!DOCTYPE a [ ]><a/>",
       "d.xml:1:64" + detail},
  });
}

TEST(SafeDocumentRefusal, RefusesEntityAttacksBeforeTheyAreRead) {
  const std::string detail = ": document type declaration not allowed: it has an internal subset";
  std::string laughs = "<!DOCTYPE a [<!ENTITY l0 'lol'>";
  for (int i = 1; i < 40; ++i)
    laughs += "<!ENTITY l" + std::to_string(i) + " '" +
              repeated("&l" + std::to_string(i - 1) + ";", 10) + "'>";
  const std::string quadratic = "<!DOCTYPE a [<!ENTITY x '" + std::string(100'000, 'x') +
                                "'>]><a>" + repeated("&x;", 10'000) + "</a>";
  const auto start = std::chrono::steady_clock::now();

  expectRefusals({
      {laughs + "]><a>&l39;</a>", "d.xml:1:13" + detail},
      {quadratic, "d.xml:1:13" + detail},
      {"<!DOCTYPE a [<!ATTLIST a v CDATA '7'>]><a/>", "d.xml:1:13" + detail},
      {"<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>", "d.xml:1:13" + detail},
      {"<!DOCTYPE a [<!ENTITY x SYSTEM 'http://127.0.0.1:9/'>]><a>&x;</a>", "d.xml:1:13" + detail},
      {"<!DOCTYPE a [<!ENTITY % x SYSTEM 'file:///x'>%x;]><a/>", "d.xml:1:13" + detail},
  });

  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(SafeDocumentRefusal, AnUndeclaredEntityIsNeverLeftOut) {
  expectRefusals({
      {"<a v=\"1&zz;2\"/>", "d.xml:1:12: entity 'zz' not found"},
      {"<!DOCTYPE a SYSTEM 'x.dtd'>\n<a v=\"1&zz;2\"/>", "d.xml:2:12: entity 'zz' not found"},
      {"<!DOCTYPE a PUBLIC 'p' 'x.dtd'>\n<a>1&zz;2</a>", "d.xml:2:9: entity 'zz' not found"},
      {"<?xml version='1.0' standalone='no'?>\n<!DOCTYPE a SYSTEM 'x.dtd'>\n<a v='1&zz;2'/>",
       "d.xml:3:12: entity 'zz' not found"},
  });
}

TEST(SafeDocumentRefusal, RefusesAMalformedDocumentType) {
  const std::string detail =
      ": malformed document type declaration: expected <!DOCTYPE name>, "
      "<!DOCTYPE name SYSTEM \"...\"> or <!DOCTYPE name PUBLIC \"...\" \"...\">";
  expectRefusals({
      {"<!DOCTYPE><a/>", "d.xml:1:10" + detail},
      {"<!DOCTYPE ><a/>", "d.xml:1:11" + detail},
      {"<!DOCTYPEa><a/>", "d.xml:1:10" + detail},
      {"<!DOCTYPE 'a'><a/>", "d.xml:1:11" + detail},
      {"<!DOCTYPE a SYSTEM><a/>", "d.xml:1:19" + detail},
      {"<!DOCTYPE a SYSTEM'x'><a/>", "d.xml:1:19" + detail},
      {"<!DOCTYPE a SYSTEM \"x><a/>", "d.xml:1:20" + detail},
      {"<!DOCTYPE a system 'x'><a/>", "d.xml:1:13" + detail},
      {"<!DOCTYPE a PUBLIC 'x'><a/>", "d.xml:1:23" + detail},
      {"<!DOCTYPE a PUBLIC'x' 'y'><a/>", "d.xml:1:19" + detail},
      {"<!DOCTYPE a PUBLIC x 'y'><a/>", "d.xml:1:20" + detail},
      {"<!DOCTYPE a PUBLIC 'x' y><a/>", "d.xml:1:24" + detail},
      {"<!DOCTYPE a PUBLIC 'x''y'><a/>", "d.xml:1:23" + detail},
      {"<!DOCTYPE a b><a/>", "d.xml:1:13" + detail},
      {"<!DOCTYPE a", "d.xml:1:12" + detail},
  });
}

TEST(SafeDocumentRefusal, RefusesADocumentTypeInTheWrongPlace) {
  expectRefusals({
      {"<!doctype a><a/>", "d.xml:1:2: expected comment or CDATA section"},
      {"<a/><!DOCTYPE a>", "d.xml:1:5: comment or processing instruction expected"},
      {"<a/><!DOCTYPE a [<!ENTITY x 'y'>]>",
       "d.xml:1:5: comment or processing instruction expected"},
      {"<a><!DOCTYPE a></a>", "d.xml:1:5: expected comment or CDATA section"},
      {"x<!DOCTYPE a [ ]><a/>", "d.xml:1:1: invalid document structure"},
      {"<!DOCTYPE a>\n<!DOCTYPE a><a/>",
       "d.xml:2:1: document type declaration not allowed: it is the second one"},
      {"<!DOCTYPE a><!-- x -->\n<!DOCTYPE a [<!ENTITY x 'y'>]><a/>",
       "d.xml:2:1: document type declaration not allowed: it is the second one"},
  });
}

// The scanner and the parser must see the same end of a comment; else a declaration hides.
TEST(SafeDocumentRefusal, NoCommentHidesADocumentType) {
  for (const char* text : {"<!--><!DOCTYPE a [ ]><a/>-->", "<!---><!DOCTYPE a [ ]><a/>-->",
                           "<!-- -- --><!DOCTYPE a [ ]><a/>", "<!-- ---><!DOCTYPE a [ ]><a/>",
                           "<?p><!DOCTYPE a [ ]><a/>", "<?p ?\?><!DOCTYPE a [ ]><a/>",
                           "<![CDATA[ ]]><!DOCTYPE a [ ]><a/>", "&#60;!DOCTYPE a [ ]><a/>"})
    EXPECT_NE(refusal(text), "no error") << text;
}

// U+0085 is a blank to XML 1.1 alone: what stands behind it is left for the parser to meet.
TEST(SafeDocumentRefusal, NoBlankOfXml11HidesADocumentType) {
  const std::string head = "<?xml version='1.1'?>\xC2\x85<!DOCTYPE a";
  const std::string detail =
      ": document type declaration not allowed: a line end of XML 1.1 stands before it";
  expectRefusals({
      {head + "><a/>", "d.xml:2:13" + detail},
      {head + " SYSTEM 'x.dtd'><a/>", "d.xml:2:27" + detail},
      {head + " [<!ENTITY z 'b'>]><a>&z;</a>", "d.xml:2:13" + detail},
  });
}

TEST(SafeDocumentRefusal, RefusesNulBytes) {
  expectRefusals({
      {"<a>\n x\0</a>"s, "d.xml:2:3: NUL byte"},
      {"<a/>\0"s, "d.xml:1:5: NUL byte"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>\n\0<a/>"s, "d.xml:2:1: NUL byte"},
  });
}

TEST(SafeDocumentRefusal, RefusesInvalidUtf8) {
  expectRefusals({
      {"<a>\n \xC3\xA9\xFF</a>", "d.xml:2:3: invalid UTF-8"},
      {"<a>\x80</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xC0\xAF</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xE0\x80\xAF</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xED\xA0\x80</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xF0\x80\x80\xAF</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xF4\x90\x80\x80</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xF5\x80\x80\x80</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a>\xC3</a>", "d.xml:1:4: invalid UTF-8"},
      {"<a/>\xE2\x82", "d.xml:1:5: invalid UTF-8"},
      {"<?xml version='1.0' encoding='UTF-8'?>\n<a>\xE4</a>", "d.xml:2:4: invalid UTF-8"},
      {"<?xml version='1.0' encoding='utf8'?>\n<a>\xE4</a>", "d.xml:2:4: invalid UTF-8"},
  });
}

TEST(SafeDocumentRefusal, RefusesEncodingsThatDoNotContainAscii) {
  const std::string allowed = " (allowed: UTF-8 and encodings that contain ASCII)";
  expectRefusals({
      {"\xFF\xFE<\0a\0/\0>\0"s, "d.xml:1:1: encoding not supported: UTF-16" + allowed},
      {"\xFE\xFF\0<\0a\0/\0>"s, "d.xml:1:1: encoding not supported: UTF-16" + allowed},
      {"<\0a\0/\0>\0"s, "d.xml:1:1: encoding not supported: UTF-16" + allowed},
      {"\0<\0a\0/\0>"s, "d.xml:1:1: encoding not supported: UTF-16" + allowed},
      {"\xFF\xFE\0\0<\0\0\0"s, "d.xml:1:1: encoding not supported: UTF-32" + allowed},
      {"\0\0\xFE\xFF\0\0\0<"s, "d.xml:1:1: encoding not supported: UTF-32" + allowed},
      {"<\0\0\0a\0\0\0"s, "d.xml:1:1: encoding not supported: UTF-32" + allowed},
      {"\0\0\0<\0\0\0a"s, "d.xml:1:1: encoding not supported: UTF-32" + allowed},
      {"\x4C\x6F\xA7\x94\x93", "d.xml:1:1: encoding not supported: EBCDIC" + allowed},
  });
}

TEST(SafeDocumentRefusal, RefusesDeclaredEncodingsThatDoNotContainAscii) {
  for (const char* encoding :
       {"UTF-16", "UTF-16LE", "UTF-32", "ISO-10646-UCS-2", "ISO-10646-UCS-4", "EBCDIC-CP-US",
        "IBM037", "UTF-7", "ISO-2022-JP", "ISO-2022-KR", "HZ-GB-2312", "SCSU"})
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='"s + encoding + "'?><a/>"),
              "d.xml:1:31: encoding not supported: \""s + encoding +
                  "\" (allowed: UTF-8 and encodings that contain ASCII)");
}

TEST(SafeDocumentRefusal, RefusesUnknownEncodings) {
  expectRefusals({
      {"<?xml version='1.0' encoding='nonsense'?><a/>",
       "d.xml:1:31: unknown encoding: \"nonsense\""},
      {"<?xml version='1.0' encoding='~utf-8'?><a/>", "d.xml:1:31: unknown encoding: \"~utf-8\""},
      {"<?xml version='1.0' encoding='x\ny'?><a/>", "d.xml:1:31: unknown encoding: \"x\\ny\""},
      {"<?xml version='1.0' encoding='" + std::string(1'000'000, 'x') + "'?><a/>",
       "d.xml:1:31: unknown encoding: \"" + std::string(64, 'x') + "...\""},
  });
}

TEST(SafeDocumentRefusal, RefusesBytesThatAreNotOfTheEncoding) {
  EXPECT_EQ(refusal("<?xml version='1.0' encoding='US-ASCII'?>\n<a v='\xE4'/>"),
            "d.xml:2:7: invalid byte for the encoding: \"US-ASCII\"");
  for (const char* lineEnd : {"\n", "\r", "\r\n"})
    EXPECT_EQ(refusal("<?xml version='1.0' encoding='US-ASCII'?>\n<a/>"s + lineEnd + "\xE4"),
              "d.xml:3:1: invalid byte for the encoding: \"US-ASCII\"");
  EXPECT_EQ(refusal("<?xml version='1.0' encoding='US-ASCII'?>\n" + std::string(10'000, ' ') +
                    "<a v='\xE4'/>"),
            "d.xml:2:10007: invalid byte for the encoding: \"US-ASCII\"");
}

TEST(SafeDocumentRefusal, RefusesAByteOrderMarkThatContradictsTheDeclaration) {
  EXPECT_EQ(refusal("\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a/>"),
            "d.xml:1:31: contradicting encodings: the byte order mark says UTF-8, the XML "
            "declaration \"ISO-8859-1\"");
}

TEST(SafeDocumentRefusal, RefusesControlCharactersAsTheVersionOfXmlSays) {
  expectRefusals({
      {"<a>\x01</a>", "d.xml:1:5: invalid character 0x1"},
      {"<a>&#1;</a>", "d.xml:1:8: invalid character reference"},
      {"<?xml version='1.1'?><a>\x01</a>", "d.xml:1:26: invalid character 0x1"},
      {"<?xml version='1.1'?><a>\x7F</a>", "d.xml:1:26: invalid character 0x7F"},
      {"<?xml version='1.1'?><a>&#0;</a>", "d.xml:1:29: invalid character reference"},
  });
}

TEST(SafeDocumentRefusal, RefusesAnUnknownVersionOfXml) {
  EXPECT_EQ(refusal("<?xml version='1.2'?><a/>"), "d.xml:1:1: unknown version of XML: \"1.2\"");
}

TEST(SafeDocumentRefusal, RefusesTooManyLevels) {
  EXPECT_EQ(refusal(repeated("<a>\n", 65) + repeated("</a>", 65)),
            "d.xml:65:1: elements nested too deeply: limit 64");
  EXPECT_EQ(refusal(repeated("<a>", 1'000'000)),
            "d.xml:1:193: elements nested too deeply: limit 64");
  EXPECT_EQ(refusal(repeated("<a>", 1'000'000) + repeated("</a>", 1'000'000)),
            "d.xml:1:193: elements nested too deeply: limit 64");
}

TEST(SafeDocumentRefusal, RefusesTooManyAttributes) {
  std::string text = "<r>\n <a";
  for (int i = 0; i < 65; ++i) text += "\nx" + std::to_string(i) + "='1'";

  EXPECT_EQ(refusal(text + "/></r>"), "d.xml:2:2: too many attributes: 65, limit 64");
}

TEST(SafeDocumentRefusal, RefusesTooManyElements) {
  const std::string text = "<a><b/><b/>\n<b/></a>";

  EXPECT_EQ(refusal(text, {.elements = 4}), "no error");
  EXPECT_EQ(refusal(text, {.elements = 3}),
            "d.xml:2:1: too many elements: limit 3 (raise it with --max-elements)");
}

TEST(SafeDocumentRefusal, RefusesLongNamesWhateverTheirCharacters) {
  const std::string shown = "\"" + std::string(64, 'n') + "...\", limit 1024 bytes";
  expectRefusals({
      {"<r>\n<" + std::string(1025, 'n') + "/></r>", "d.xml:2:1: name too long: " + shown},
      {"<a " + std::string(1025, 'n') + "='1'/>", "d.xml:1:1: name too long: " + shown},
      {"<" + repeated("\xC3\xA4", 513) + "/>",
       "d.xml:1:1: name too long: \"" + repeated("\xC3\xA4", 32) + "...\", limit 1024 bytes"},
  });
}

TEST(SafeDocumentRefusal, RefusesNamesOfMegabytesQuickly) {
  const std::string name(5'000'000, 'n');
  const auto start = std::chrono::steady_clock::now();

  for (const std::string& text : {"<" + name + "/>", "<a " + name + "='1'/>", "<a></" + name + ">",
                                  "<a>&" + name + ";</a>"}) {
    const std::string message = refusal(text);
    EXPECT_TRUE(message.starts_with("d.xml:1:")) << message.substr(0, 100);
    EXPECT_LT(message.size(), 400u);
  }

  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// The parser's time for a name grows with the number of names: without a limit, this takes hours.
TEST(SafeDocumentRefusal, RefusesADocumentMadeOfDifferentNames) {
  std::string elements = "<a>", attributes = "<a>";
  for (int i = 0; i < 500'000; ++i) {
    elements += "<b" + std::to_string(i) + "/>";
    attributes += "<b x" + std::to_string(i) + "='1'/>";
  }

  EXPECT_EQ(refusal(elements + "</a>"), "d.xml:1:7078: too many different names: limit 1024");
  EXPECT_EQ(refusal(attributes + "</a>"), "d.xml:1:13202: too many different names: limit 1024");
}

TEST(SafeDocumentRefusal, RefusesTooManyBytesBeforeLookingAtThem) {
  EXPECT_EQ(refusal("<a/>", {.bytes = 4}), "no error");
  EXPECT_EQ(refusal("<a/>", {.bytes = 3}),
            "d.xml: document too large: 4 bytes, limit 3 (raise it with --max-document-bytes)");
}

TEST(SafeDocumentRefusal, TheMessageIsOneLineWhateverTheDocumentSays) {
  for (const std::string& text :
       {"<a></a\n\n>\n</\nb>"s, "<a\x1B[2J/>"s, "<a></\xE2\x80\xA8>"s, "<a>&\xC2\x85;</a>"s}) {
    const std::string message = refusal(text);
    EXPECT_TRUE(message.starts_with("d.xml:")) << message;
    EXPECT_EQ(message.find_first_of("\n\r\x1B"), std::string::npos) << message;
  }
}

TEST(SafeDocumentRefusal, TheDocumentsNameIsOneLineToo) {
  EXPECT_EQ(messageOf<QuException>([] { SafeDocument::Parse("", "a\nb\x1B.xml"); }),
            "a\\nb\\x1B.xml:1:1: the document is empty");
}

}  // namespace

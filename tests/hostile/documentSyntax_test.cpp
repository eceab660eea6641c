// Hostile documents that the reader of documents decides on, before any translator: rows D01 to
// D08. What is refused here is refused with the document's name, line and column.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <compare>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/SafeDocument.h"
#include "scoring/hostapi/QuException.h"
#include "tests/hostile/Meter.h"
#include "tests/hostile/documents.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace std::string_literals;
using orbseq::test::canTrace;
using orbseq::test::contentOf;
using orbseq::test::messageUnder;
using orbseq::test::Meter;
using orbseq::test::readerRefusal;
using orbseq::test::smallDocument;
using orbseq::test::TempFolder;
using orbseq::test::tracedRun;
using orbseq::test::TracedRun;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

const std::string kExport = contentOf(ORBSEQ_SOURCE_DIR "/tests/golden/shop-lattice.xml");
const std::string kDoctype =
    "<!DOCTYPE SequentialAssociationLattice SYSTEM \"sequentiallattice.dtd\">";

std::string repeated(const std::string& text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

// The export with a document type of the given internal subset, and `reference` in its header.
std::string exportWithSubset(const std::string& subset, const std::string& reference) {
  return orbseq::test::edited(
      kExport, {{kDoctype, "<!DOCTYPE SequentialAssociationLattice [" + subset + "]>"},
                {"copyright=\"Copyright", "copyright=\"" + reference}});
}

struct Place {
  int line = 0;
  int column = 0;

  friend auto operator<=>(const Place&, const Place&) = default;
};
void PrintTo(const Place& place, std::ostream* os) { *os << place.line << ':' << place.column; }

// Of the character behind the last one, as the reader counts.
Place endOf(std::string_view text) {
  Place place = {1, 1};
  for (const char c : text)
    place = c == '\n' ? Place{place.line + 1, 1} : Place{place.line, place.column + 1};
  return place;
}

// Where the last thing that begins with "<" does, if the text ends within it; else the end.
Place breakOf(std::string_view text) {
  const std::size_t open = text.rfind('<');
  const bool ended =
      open == std::string_view::npos || text.find('>', open) != std::string_view::npos;
  return endOf(ended ? text : text.substr(0, open));
}

// As the message tells it.
Place placeIn(const std::string& message) {
  Place place;
  std::sscanf(message.c_str(), "d.xml:%d:%d: ", &place.line, &place.column);
  return place;
}

struct Row {
  const char* name;
  std::string bytes;
  std::string message;
};
void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

class HostileSyntax : public testing::TestWithParam<Row> {};

TEST_P(HostileSyntax, IsRefusedWithLineAndColumn) {
  EXPECT_EQ(readerRefusal(GetParam().bytes), GetParam().message);
}

std::string laughs() {
  std::string subset = "<!ENTITY l0 \"lol\">";
  for (int i = 1; i < 10; ++i)
    subset += "<!ENTITY l" + std::to_string(i) + " \"" +
              repeated("&l" + std::to_string(i - 1) + ";", 10) + "\">";
  return exportWithSubset(subset, "&l9;");
}

const std::string kSubset =
    "d.xml:2:40: document type declaration not allowed: it has an internal subset";
const std::string kNotSupported = " (allowed: UTF-8 and encodings that contain ASCII)";

const Row kRows[] = {
    {"D01Empty", "", "d.xml:1:1: the document is empty"},
    {"D03FileEntity", exportWithSubset("<!ENTITY x SYSTEM \"file:///etc/passwd\">", "&x;"),
     kSubset},
    {"D03HttpEntity", exportWithSubset("<!ENTITY x SYSTEM \"http://127.0.0.1:9/x\">", "&x;"),
     kSubset},
    {"D03ParameterEntity",
     exportWithSubset("<!ENTITY % x SYSTEM \"http://127.0.0.1:9/x.dtd\">%x;", ""), kSubset},
    {"D04BillionLaughs", laughs(), kSubset},
    {"D04QuadraticBlowUp",
     exportWithSubset("<!ENTITY x \"" + std::string(100'000, 'x') + "\">", repeated("&x;", 10'000)),
     kSubset},
    {"D04DefaultOfAnAttribute",
     exportWithSubset("<!ATTLIST Sequence numberOfSets CDATA \"7\">", ""), kSubset},
    {"D05UndeclaredEntity",
     orbseq::test::edited(kExport, {{"occurrence=\"4\"", "occurrence=\"1&zz;2\""}}),
     "d.xml:26:47: entity 'zz' not found"},
    {"D06Depth65", repeated("<a>", 65) + repeated("</a>", 65),
     "d.xml:1:193: elements nested too deeply: limit 64"},
    {"D06DepthOfAMillion", repeated("<a>", 1'000'000) + repeated("</a>", 1'000'000),
     "d.xml:1:193: elements nested too deeply: limit 64"},
    {"D06NameOf5MB", "<a>\n<" + std::string(5'000'000, 'n') + "/></a>",
     "d.xml:2:1: name too long: \"" + std::string(64, 'n') + "...\", limit 1024 bytes"},
    {"D08Utf16LittleEndian", "\xFF\xFE<\0a\0/\0>\0"s,
     "d.xml:1:1: encoding not supported: UTF-16" + kNotSupported},
    {"D08Utf16BigEndian", "\xFE\xFF\0<\0a\0/\0>"s,
     "d.xml:1:1: encoding not supported: UTF-16" + kNotSupported},
    {"D08Utf16WithoutMark", "<\0a\0/\0>\0"s,
     "d.xml:1:1: encoding not supported: UTF-16" + kNotSupported},
    {"D08Utf16Declared", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>",
     "d.xml:1:31: encoding not supported: \"UTF-16\"" + kNotSupported},
    {"D08UnknownEncoding", "<?xml version=\"1.0\" encoding=\"no-such-one\"?><a/>",
     "d.xml:1:31: unknown encoding: \"no-such-one\""},
    {"D08InvalidUtf8", "<a>\n<b v=\"\xC3\x28\"/></a>", "d.xml:2:7: invalid UTF-8"},
    {"D08OverlongUtf8", "<a>\n<b v=\"\xC0\xAF\"/></a>", "d.xml:2:7: invalid UTF-8"},
    {"D08Surrogate", "<a>\n<b v=\"\xED\xA0\x80\"/></a>", "d.xml:2:7: invalid UTF-8"},
    {"D08Nul", "<a>\n<b v=\"\0\"/></a>"s, "d.xml:2:7: NUL byte"},
    {"D08ControlCharacterInXml10", "<?xml version=\"1.0\"?>\n<a v=\"\x01\"/>",
     "d.xml:2:8: invalid character 0x1 in attribute value 'v'"},
    {"D08ControlCharacterInXml11", "<?xml version=\"1.1\"?>\n<a v=\"\x01\"/>",
     "d.xml:2:8: invalid character 0x1 in attribute value 'v'"},
};
INSTANTIATE_TEST_SUITE_P(Documents, HostileSyntax, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

std::string withAttributes(int count) {
  std::string text = "<a>\n<b";
  for (int i = 0; i < count; ++i) text += " x" + std::to_string(i) + "=\"1\"";
  return text + "/></a>";
}

TEST(HostileSyntaxRows, D01RandomBytesAreRefusedWithLineAndColumn) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    std::string bytes(1 + random() % 2048, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random() & 0xFF);

    EXPECT_THAT(readerRefusal(bytes), MatchesRegex("d\\.xml:[0-9]+:[0-9]+: .+")) << seed;
  }
}

TEST(HostileSyntaxRows, D01ADocumentCutAnywhereIsRefusedWhereItBreaks) {
  ASSERT_GT(kExport.size(), 2'000U);
  const std::size_t end = kExport.rfind("</SequentialAssociationLattice>");
  ASSERT_NE(end, std::string::npos);

  for (std::size_t length = 0; length < end; ++length) {
    const std::string cut = kExport.substr(0, length);
    const Place place = placeIn(readerRefusal(cut));
    EXPECT_GE(place, breakOf(cut)) << length;
    EXPECT_LE(place, endOf(cut)) << length;
  }
}

TEST(HostileSyntaxRows, D04NoEntityTakesTime) {
  for (const Row& row : kRows) {
    if (!std::string(row.name).starts_with("D04")) continue;
    const auto start = Meter::Clock::now();
    readerRefusal(row.bytes);
    EXPECT_LT(Meter::Clock::now() - start, std::chrono::milliseconds(50) * Meter::slowdown())
        << row.name;
  }
}

TEST(HostileSyntaxRows, D06SixtyFourLevelsAndAttributesLoadAndOneMoreDoesNot) {
  const std::string deep = repeated("<a>", 64) + repeated("</a>", 64);

  EXPECT_NO_THROW(OrbScore::SafeDocument::Parse(deep, "d.xml"));
  EXPECT_NO_THROW(OrbScore::SafeDocument::Parse(withAttributes(64), "d.xml"));
  EXPECT_EQ(readerRefusal(withAttributes(65)), "d.xml:2:1: too many attributes: 65, limit 64");
}

// A file that is too large is refused by its size: there is no memory in which it could have been.
TEST(HostileSyntaxRows, D07AFileBeyondTheLimitIsNotRead) {
  constexpr std::uintmax_t kLimit = 64 << 20;
  const TempFolder folder;
  const std::string path = folder.file("d.xml", smallDocument());
  for (const std::uintmax_t size : {kLimit + 1, std::uintmax_t{2} << 30}) {
    std::filesystem::resize_file(path, size);  // sparse

    EXPECT_EQ(messageUnder<OrbScore::QuException>(0, [&] { OrbScore::SafeDocument::Load(path); }),
              path + ": document too large: " + std::to_string(size) +
                  " bytes, limit 67108864 (raise it with --max-document-bytes)");

    EXPECT_LT(Meter::largestBlock(), 64U << 10);
    EXPECT_EQ(std::filesystem::file_size(path), size);
  }
}

TEST(HostileSyntaxRows, D07OfWhatHasNoSizeOneByteBeyondTheLimitIsRead) {
  EXPECT_EQ(messageUnder<OrbScore::QuException>(
                1'000'001, [] { OrbScore::SafeDocument::Load("/dev/zero", {.bytes = 1'000'000}); }),
            "/dev/zero: document too large: more than 1000000 bytes, limit 1000000 (raise it with "
            "--max-document-bytes)");
  EXPECT_LT(Meter::largestBlock(), 3'000'000U);
}

// --- What the system sees ------------------------------------------------------------------------

class HostileSyntaxRuns : public testing::Test {
 protected:
  void SetUp() override {
    if (!canTrace()) GTEST_SKIP() << "NOT TESTED: strace is missing or not allowed here";
  }

  // Runs the program in a folder that holds the document as d.xml. Nothing is opened to be written,
  // and nothing is asked of a network.
  TracedRun inspect(const std::string& document, const std::vector<std::string>& options) const {
    folder_.file("d.xml", document);
    folder_.file("customers.csv", "customer,history\nAnna,(1)\n");
    TracedRun run = tracedRun(folder_.path().string(), options);
    EXPECT_THAT(run.calls, HasSubstr("\"d.xml\"")) << "the trace does not work";
    for (const char* forbidden : {"O_WRONLY", "O_RDWR", "O_CREAT", "socket(", "connect("})
      EXPECT_THAT(run.calls, Not(HasSubstr(forbidden)));
    EXPECT_EQ(contentOf(folder_.path("d.xml")), document);
    return run;
  }

  const TempFolder folder_;
};

TEST_F(HostileSyntaxRuns, D02TheDtdOfAnExportIsNeverOpened) {
  const std::vector<std::vector<std::string>> commands = {
      {"inspect", "--model", "d.xml", "--sequences"},
      {"score", "--model", "d.xml", "--input", "customers.csv"},
      {"score", "--model", "d.xml", "--input", "customers.csv", "--module",
       ORBSEQ_BINARY_DIR "/liborbseq.so"}};
  for (const auto& command : commands) {
    const TracedRun plain = inspect(orbseq::test::edited(kExport, {{kDoctype, ""}}), command);
    const TracedRun absent = inspect(kExport, command);
    folder_.file("sequentiallattice.dtd", "<!ATTLIST Sequence numberOfSets CDATA '7'><!error");
    const TracedRun present = inspect(kExport, command);
    std::filesystem::remove(folder_.path("sequentiallattice.dtd"));

    EXPECT_EQ(plain.status, 0) << plain.error;
    EXPECT_NE(plain.output, "");
    for (const TracedRun* run : {&absent, &present}) {
      EXPECT_EQ(run->status, 0) << run->error;
      EXPECT_EQ(run->output, plain.output);
      EXPECT_THAT(run->calls, Not(HasSubstr(".dtd")));
    }
  }
}

TEST_F(HostileSyntaxRuns, D03NoEntityIsOpenedOrFetched) {
  const std::string secret = folder_.file("secret", "<!ENTITY x 'never'>");
  const std::string subsets[] = {"<!ENTITY x SYSTEM \"file://" + secret + "\">",
                                 "<!ENTITY x SYSTEM \"secret\">",
                                 "<!ENTITY x SYSTEM \"http://127.0.0.1:9/secret\">",
                                 "<!ENTITY % x SYSTEM \"file://" + secret + "\">%x;",
                                 "<!ENTITY % x SYSTEM \"http://127.0.0.1:9/secret\">%x;"};
  for (const std::string& subset : subsets) {
    const std::string reference = subset.find('%') == std::string::npos ? "&x;" : "";
    const TracedRun run =
        inspect(exportWithSubset(subset, reference), {"inspect", "--model", "d.xml"});

    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.error, "orbseq: " + kSubset + "\n");
    EXPECT_THAT(run.calls, Not(HasSubstr("secret")));
  }
}

}  // namespace

#include "io/csvField.h"

#include <gtest/gtest.h>

#include "io/CsvReader.h"
#include "tests/support/TempFolder.h"

namespace {

using orbseq::csvField;

TEST(CsvField, PlainTextStandsAsItIs) {
  for (const char* text : {"", "tea", " two words ", "it's; a\ttab", "Gr\xC3\xBC\xC3\x9F"})
    EXPECT_EQ(csvField(text), text);
}

TEST(CsvField, CommasQuotesAndLineEndsGoIntoQuotes) {
  EXPECT_EQ(csvField("a,b"), "\"a,b\"");
  EXPECT_EQ(csvField("\""), "\"\"\"\"");
  EXPECT_EQ(csvField("say \"hi\""), "\"say \"\"hi\"\"\"");
  EXPECT_EQ(csvField("a\nb"), "\"a\nb\"");
  EXPECT_EQ(csvField("a\rb"), "\"a\rb\"");
}

TEST(CsvField, TheReaderReadsWhatWasMeant) {
  const orbseq::test::TempFolder folder;
  const std::string letters = "a,\"\r\n \xC3\xA9";
  for (int seed = 0; seed < 300; ++seed) {
    std::string text;
    for (int rest = seed + 1; rest > 0; rest /= 7)
      text += rest % 7 == 6 ? std::string("\xC3\xA9")
                            : std::string(1, letters[static_cast<std::size_t>(rest % 7)]);
    orbseq::CsvReader reader(
        folder.file("f.csv", "name,end\n" + csvField(text) + "," + csvField("x") + "\n"));

    ASSERT_TRUE(reader.next()) << seed;
    EXPECT_EQ(reader.field(0), text) << seed;
    EXPECT_EQ(reader.field(1), "x") << seed;
    EXPECT_FALSE(reader.next()) << seed;
  }
}

}  // namespace

// The compiled form from the command line, and scoring on several threads: the same bytes whatever
// the form, the threads and who answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "tests/cli/smallModel.h"
#include "tests/support/Program.h"

namespace {

using namespace orbseq::test;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

const char* const kShop = ORBSEQ_SOURCE_DIR "/examples/shop/lattice.xml";
const char* const kModule = ORBSEQ_BINARY_DIR "/liborbseq.so";
const char* const kHeader = "customer,rank,item,label,confidence,support,cause\n";

Outcome score(const std::string& model, const std::string& input, Arguments options = {}) {
  options.insert(options.begin(), {"score", "--model", model, "--input", input});
  return run(options);
}

// Histories of the shop's things, and of unknown ones: more than several threads' blocks hold.
std::string histories(int customers) {
  std::string text = "customer,history\n";
  std::mt19937 random(4);
  for (int customer = 0; customer < customers; ++customer) {
    text += "c" + std::to_string(customer) + ",";
    for (unsigned sets = random() % 4; sets > 0; --sets) {
      text += '(';
      for (unsigned items = random() % 4; items > 0; --items)
        text += std::to_string(100 * (1 + random() % 3) + 1 + random() % 6) + " ";
      text += ')';
    }
    text += '\n';
  }
  return text;
}

// The shop's model, closed, as document and compiled, and 3,000 customers.
struct Shop {
  Shop() {
    for (const std::string& path : {document, compiled}) {
      const Outcome outcome = run({"convert", "--quiet", "--model", kShop, "--output", path});
      EXPECT_EQ(outcome.status, 0) << outcome.error;
    }
    folder.file("customers.csv", histories(3000));
  }
  TempFolder folder;
  const std::string document = folder.path("shop.xml");
  const std::string compiled = folder.path("shop.compiled");
  const std::string customers = folder.path("customers.csv");
};

TEST(Compiled, ConvertWritesItAndTheLabelsBeside) {
  const TempFolder folder;
  const std::string path = folder.path("shop.compiled");
  const Outcome outcome = run({"convert", "--model", kShop, "--output", path});

  EXPECT_EQ(outcome.error, "orbseq: 237 sequences, 15 labels written as compiled\n");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(contentOf(path), StartsWith("ORBSEQC\n"));
  EXPECT_THAT(contentOf(path + ".labels.csv"), HasSubstr("302,Cinnamon roll\n"));
  EXPECT_EQ(folder.entries(), 2U);
}

TEST(Compiled, ToTellsTheFormAlsoOntoStandardOutput) {
  const TempFolder folder;
  const std::string path = folder.path("shop.bin");
  ASSERT_EQ(run({"convert", "-m", kShop, "-o", path, "--to", "compiled", "--quiet"}).status, 0);

  const Outcome outcome = run({"convert", "-m", kShop, "-o", "-", "--to", "compiled"});

  EXPECT_TRUE(outcome.output == contentOf(path));
  EXPECT_EQ(outcome.error,
            "orbseq: 237 sequences, 0 labels written as compiled\norbseq: 15 labels left out\n");
}

TEST(Compiled, ItIsScoredAsTheDocumentOnAnyNumberOfThreadsAndAsByTheModule) {
  const Shop shop;
  for (const Arguments& options :
       std::vector<Arguments>{{"--format", "csv"},
                              {"--format", "jsonl", "--return", "future"},
                              {"--format", "table", "--return", "future", "--all-prefixes"}}) {
    const auto answers = [&](const std::string& model, const Arguments& more) {
      Arguments all = options;
      all.insert(all.end(), more.begin(), more.end());
      const Outcome outcome = score(model, shop.customers, all);
      EXPECT_EQ(outcome.status, 0) << outcome.error;
      return outcome.output;
    };
    const std::string wanted = answers(shop.document, {"--module", kModule, "--threads", "1"});
    ASSERT_GT(linesIn(wanted), 3000);
    SCOPED_TRACE(options[1]);
    EXPECT_TRUE(answers(shop.document, {"--module", kModule, "--threads", "3"}) == wanted);
    for (const char* threads : {"1", "2", "3"}) {
      EXPECT_TRUE(answers(shop.document, {"--threads", threads}) == wanted) << threads;
      EXPECT_TRUE(answers(shop.compiled, {"--threads", threads}) == wanted) << threads;
    }
  }
}

TEST(Compiled, ThreadsChangeNeitherAnswersNorSummary) {
  const Shop shop;
  const Outcome wanted = score(shop.compiled, shop.customers, {"--threads", "1"});
  EXPECT_THAT(wanted.error, StartsWith("orbseq: 3000 customers, "));
  for (const char* threads : {"0", "4", "16"}) {
    const Outcome outcome = score(shop.compiled, shop.customers, {"--threads", threads});
    EXPECT_TRUE(outcome.output == wanted.output) << threads;
    EXPECT_EQ(outcome.error, wanted.error) << threads;
    EXPECT_EQ(outcome.status, 0) << threads;
  }
}

TEST(Compiled, FormatNoneWritesNothingAndCounts) {
  const Shop shop;
  const std::string wanted = score(shop.compiled, shop.customers).error;
  for (const char* threads : {"1", "3"}) {
    const Outcome outcome =
        score(shop.compiled, shop.customers, {"--format", "none", "--threads", threads});
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.error, wanted);
    EXPECT_EQ(outcome.status, 0);
  }
}

// The rows before the bad one are answered or not, but nothing is left of them under the name.
TEST(Compiled, ABadRowIsNamedOnAnyNumberOfThreads) {
  const Shop shop;
  const std::string good = histories(1500);
  const std::string bad = shop.folder.file("bad.csv", good + "only one\n" + good);
  const std::string output = shop.folder.file("out.csv", "old");
  for (const char* threads : {"1", "2", "4"}) {
    const Outcome outcome = score(shop.compiled, bad, {"--threads", threads, "--output", output});
    EXPECT_EQ(outcome.status, 2) << threads;
    EXPECT_EQ(outcome.error, "orbseq: " + bad + ":1502: expected 2 fields, found 1\n") << threads;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(contentOf(output), "old") << threads;
  }
}

TEST(Compiled, AnswersBeforeABadRowAreTheSameOnAnyNumberOfThreads) {
  const Shop shop;
  const std::string bad = shop.folder.file("bad.csv", histories(1500) + "only one\n");
  const std::string wanted = score(shop.compiled, bad, {"--threads", "1"}).output;
  for (const char* threads : {"2", "4"})
    EXPECT_TRUE(score(shop.compiled, bad, {"--threads", threads}).output == wanted) << threads;
  EXPECT_TRUE(score(shop.compiled, shop.customers, {"--threads", "1"}).output.starts_with(wanted));
}

TEST(Compiled, NoHistoriesAreDoneWithAWarningOnAnyNumberOfThreads) {
  const Shop shop;
  const std::string empty = shop.folder.file("empty.csv", "customer,history\n");
  for (const char* threads : {"1", "4"}) {
    const Outcome outcome = score(shop.compiled, empty, {"--threads", threads});
    EXPECT_EQ(outcome.output, kHeader);
    EXPECT_EQ(outcome.error,
              "orbseq: warning: " + empty + ": no histories\norbseq: 0 customers, 0 answers\n");
    EXPECT_EQ(outcome.status, 0);
  }
}

TEST(Compiled, ThreadsOutOfRangeAreWrongUsage) {
  for (const char* threads : {"-1", "1025", "many"}) {
    const Outcome outcome = score(kShop, "a.csv", {"--threads", threads});
    EXPECT_EQ(outcome.status, 1) << threads;
    EXPECT_EQ(linesIn(outcome.error), 1) << outcome.error;
  }
}

TEST(Compiled, EveryOtherCommandAndTheModuleRefuseIt) {
  const Shop shop;
  const std::string wanted =
      "orbseq: " + shop.compiled +
      ": a compiled form holds no lattice; it can be scored with, from a file\n";
  for (const Arguments& arguments :
       std::vector<Arguments>{{"inspect"},
                              {"rules"},
                              {"convert", "--output", shop.folder.path("again.bin")},
                              {"score", "--input", shop.customers, "--module", kModule}}) {
    Arguments all = arguments;
    all.insert(all.end(), {"--model", shop.compiled});
    const Outcome outcome = run(all);
    EXPECT_EQ(outcome.status, 2) << arguments.front();
    EXPECT_EQ(outcome.error, wanted) << arguments.front();
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_FALSE(std::filesystem::exists(shop.folder.path("again.bin")));
}

TEST(Compiled, StandardInputIsNoPlaceForIt) {
  const Shop shop;
  const Outcome outcome = run({"score", "--model", "-", "--input", shop.customers},
                              {.input = contentOf(shop.compiled)});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.error,
            "orbseq: standard input: a compiled form holds no lattice; it can be scored with, "
            "from a file\n");
}

TEST(Compiled, ADamagedFileIsRefusedWithItsPlace) {
  const Shop shop;
  const std::string cut =
      shop.folder.file("cut.compiled", contentOf(shop.compiled).substr(0, 1000));

  const Outcome outcome = score(cut, shop.customers);

  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.error, StartsWith("orbseq: " + cut + ": offset 0x10: the compiled form "));
  EXPECT_EQ(linesIn(outcome.error), 1);
}

TEST(Compiled, TrainDoesNotWriteIt) {
  const TempFolder folder;
  for (const Arguments& options :
       std::vector<Arguments>{{"--output", folder.path("m.bin"), "--to", "compiled"},
                              {"--output", folder.path("m.compiled")}}) {
    Arguments arguments{"train", "--input", "-", "--min-support", "1"};
    arguments.insert(arguments.end(), options.begin(), options.end());

    const Outcome outcome = run(arguments, {.input = "customer,time,item\nann,1,2\n"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, StartsWith("orbseq: --to: a compiled form is never a model's only"));
    EXPECT_EQ(folder.entries(), 0U);
  }
}

}  // namespace

// The documents of random lattices against the naive writers, and memory that runs out on the way.

#include <gtest/gtest.h>

#include <algorithm>
#include <streambuf>

#include "tests/lattice/XmlNode.h"
#include "tests/lattice/exportTexts.h"
#include "tests/lattice/naiveDocuments.h"
#include "tests/support/FailingAllocator.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;
using orbseq::PmmlOptions;

constexpr std::uint32_t kWorlds = 90;

TEST(ExportParity, LatticeDocumentsEqualTheNaiveOnes) {
  const ItemLabelMap labels = {{1, "one"}, {3, "three"}, {9, "nine"}};
  for (std::uint32_t seed = 1; seed <= kWorlds; ++seed) {
    const World world = randomWorld(seed);
    for (const bool closed : {false, true})
      for (const ItemLabelMap* used : {static_cast<const ItemLabelMap*>(nullptr), &labels})
        ASSERT_EQ(latticeText(world.dictionary, {closed, used, 0.03}),
                  naiveLatticeDocument(world.dictionary, {closed, used, 0.03}))
            << "seed " << seed;
    ASSERT_EQ(exportedLattice(world.dictionary, 0.03),
              naiveLatticeDocument(world.dictionary, {false, nullptr, 0.03}))
        << "seed " << seed;
  }
}

TEST(ExportParity, PmmlDocumentsEqualTheNaiveOnes) {
  const ItemLabelMap labels = {{2, "two"}};
  for (std::uint32_t seed = 1; seed <= kWorlds; ++seed) {
    const World world = randomWorld(seed);
    for (const PmmlOptions& options :
         {PmmlOptions(), PmmlOptions{.lattice = false},
          PmmlOptions{.minSupport = 0.25, .sortBy = 'S', .maximalOnly = true, .lattice = false},
          PmmlOptions{.minConfidence = 0.4, .sortBy = ' ', .labels = &labels}})
      ASSERT_EQ(pmmlText(world.dictionary, options), naivePmml(world.dictionary, options))
          << "seed " << seed;
  }
}

// Equal content gives equal ids, so the index does not depend on how the lattice was filled.
TEST(ExportParity, EveryReferenceOfAWellFormedLatticeIsListed) {
  for (std::uint32_t seed = 3; seed <= kWorlds; seed += 3) {  // closed and well-formed ones
    const World world = randomWorld(seed);
    const XmlNode document = parseXml(latticeText(world.dictionary)).root;
    for (const auto& [element, attribute] :
         {std::pair("ItemRef", "itemRef"), std::pair("ItemsetRef", "itemsetRef"),
          std::pair("AdjacentItem", "itemRef")})
      for (const std::string& reference : document.all(element, attribute))
        ASSERT_GT(std::stoi(reference), 0) << "seed " << seed;
  }
}

// --- Memory --------------------------------------------------------------------------------------

// Takes everything and needs no memory for it.
class Sink : public std::streambuf {
 public:
  long bytes = 0;

 protected:
  int_type overflow(int_type sign) override {
    ++bytes;
    return traits_type::not_eof(sign);
  }
  std::streamsize xsputn(const char*, std::streamsize count) override {
    bytes += count;
    return count;
  }
};

// Exports with the first allocation failing, then the second, and so on until none fails.
template <class Export>
void expectFailures(const Lattice& lattice, const Export& write) {
  Sink all;
  std::ostream whole(&all);
  ASSERT_TRUE(write(lattice, whole).IsOK());
  bool hasFailed = true;
  for (long n = 1; hasFailed; ++n) {
    ASSERT_LT(n, 20000) << "the export does not end";
    const long before = livingBlocks();
    Sink sink;
    {
      std::ostream out(&sink);
      FailAllocation failure(n);
      const auto status = write(lattice, out);
      hasFailed = failure.hasFailed();
      ASSERT_EQ(status,
                hasFailed ? OrbCommon_830::OrbStatus(60000, false) : OrbCommon_830::OrbStatus())
          << "allocation " << n;
    }
    ASSERT_EQ(livingBlocks(), before) << "allocation " << n;
  }
}

TEST(ExportOutOfMemory, TheLatticeDocumentAnswersAFailure) {
  expectFailures(Lattice(shopCounts(), 3), [](const Lattice& lattice, std::ostream& out) {
    return lattice.ExportLatticeXML(out, 0.25);
  });
}

TEST(ExportOutOfMemory, TheRulesDocumentAnswersAFailure) {
  expectFailures(Lattice(shopCounts(), 3), [](const Lattice& lattice, std::ostream& out) {
    return lattice.ExportRulesXML(out, 0, 1, 0, 1, 0, 1, 3, 1.5, 'C', false);
  });
}

TEST(ExportOutOfMemory, ThePmmlWithLatticeAnswersAFailure) {
  expectFailures(Lattice(shopCounts(), 3), [](const Lattice& lattice, std::ostream& out) {
    return orbseq::writePmml(out, lattice, {});
  });
}

// Elements are made one at a time: ten times the sequences do not need ten times the blocks at
// once, beyond what one level is unpacked to.
TEST(ExportMemory, NoTreeOfTheSequencesIsHeld) {
  std::vector<std::string> texts;
  std::vector<Count> counts = {{"", 1000}};
  for (int item = 1; item <= 400; ++item) texts.push_back("(" + std::to_string(item) + ")");
  for (const std::string& text : texts) counts.push_back({text, 500});
  const Lattice lattice(counts, 3);
  class Counting : public Sink {
   public:
    long most = 0;

   protected:
    std::streamsize xsputn(const char* text, std::streamsize count) override {
      most = std::max(most, livingBlocks());
      return Sink::xsputn(text, count);
    }
  } sink;
  std::ostream out(&sink);
  const long before = livingBlocks();

  ASSERT_TRUE(lattice.ExportLatticeXML(out, 0).IsOK());

  // 400 items and sets in the index, and 400 unpacked sequences of 7 blocks; a tree of the level
  // alone would be more than 20 blocks for each sequence.
  EXPECT_LT(sink.most - before, 400 * 12);
}

}  // namespace

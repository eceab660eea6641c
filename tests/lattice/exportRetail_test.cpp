// A real lattice document, read and written again: one year of a gift shop. Skipped where the data
// folder is absent.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "tests/lattice/XmlNode.h"
#include "tests/lattice/exportTexts.h"

namespace {

using namespace orbseq::test;
using orbseq::ItemLabelMap;

std::string decoded(std::string text) {
  const std::pair<const char*, const char*> references[] = {
      {"&#32;", " "}, {"&quot;", "\""}, {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}};
  for (const auto& [reference, sign] : references)
    for (std::size_t at = 0; (at = text.find(reference, at)) != std::string::npos; ++at)
      text.replace(at, std::string_view(reference).size(), sign);
  return text;
}

// The document's items and sets by id - 1, and its sequences in their order.
struct Contents {
  explicit Contents(const XmlNode& document) {
    for (const XmlNode* item : document.below("Item")) {
      items.push_back(std::stoi(item->get("value")));
      if (item->has("mappedValue")) labels[items.back()] = decoded(item->get("mappedValue"));
    }
    for (const XmlNode* set : document.below("Itemset")) {
      Items& added = sets.emplace_back();
      for (const std::string& item : set->all("ItemRef", "itemRef"))
        added.push_back(items.at(std::stoul(item) - 1));
    }
    for (const XmlNode* element : document.below("Sequence")) {
      History sequence;
      for (const std::string& set : element->all("ItemsetRef", "itemsetRef"))
        sequence.push_back(sets.at(std::stoul(set) - 1));
      counts.emplace_back(sequence, std::stoi(element->get("occurrence")));
    }
  }

  Items items;
  std::vector<Items> sets;
  std::vector<std::pair<History, int>> counts;
  ItemLabelMap labels;
};

// What stands between statistics and levels, line by line.
std::string head(const std::string& text) {
  const std::size_t from = text.find("<SeqInputStats");
  return text.substr(from, text.find("<LatticeLevel") - from);
}

// Each sequence's own lines without its id, level by level, sorted: the order of a table is not
// that of the document it was read from.
std::vector<std::vector<std::string>> sequences(const XmlNode& document) {
  std::vector<std::vector<std::string>> levels;
  for (const XmlNode* level : document.below("LatticeLevel")) {
    auto& lines = levels.emplace_back();
    for (const XmlNode* sequence : level->below("Sequence")) {
      std::string line;
      for (const char* attribute : {"support", "occurrence", "numberOfSets"})
        line += sequence->get(attribute) + " ";
      for (const std::string& set : sequence->all("ItemsetRef", "itemsetRef")) line += set + ",";
      line += sequence->first("SeqAdjacentList").get("numberOfAdjacentItems") + ":";
      for (const XmlNode* item : sequence->below("AdjacentItem"))
        line += " " + item->get("itemRef") + "/" + item->get("position");
      lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
  }
  return levels;
}

TEST(RetailDocument, IsWrittenAgainAsItWasRead) {
  std::ifstream in(ORBSEQ_DATA_DIR "/retail/lattice.xml", std::ios::binary);
  if (!in) GTEST_SKIP() << "no data folder";
  const std::string text(std::istreambuf_iterator<char>(in), {});
  const XmlNode document = parseXml(text).root;
  const Contents contents(document);
  SequenceDictionary dictionary(smallTables(8));
  for (const auto& [sequence, count] : contents.counts) store(dictionary, sequence, count);
  dictionary.buildLattice();
  const double support = std::stod(document.first("SeqInputStats").get("minimumSupport"));

  const std::string written = latticeText(
      dictionary, {.closed = true, .labels = &contents.labels, .minimumSupport = support});

  // Decoded, since two blanks in a label can be written in two ways. Too long to be printed.
  EXPECT_TRUE(decoded(head(written)) == decoded(head(text)));
  EXPECT_TRUE(sequences(parseXml(written).root) == sequences(document));
}

}  // namespace

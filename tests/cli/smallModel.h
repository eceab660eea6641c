// A model small enough to write its tables by hand, with labels that need quotes.

#ifndef TESTS_CLI_SMALLMODEL_H_
#define TESTS_CLI_SMALLMODEL_H_

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/Program.h"

namespace orbseq::test {

// 10 customers; 7 is "tea, green", 9 "teapot", 11 has no label. Stored: (7) 8, (9) 5, (11) 4,
// (7)(9) 2, (7 9) 4, (9)(11) 3, (7 9)(11) 2.
inline const char* const kSmallModel =
    R"xml(<?xml version="1.0" encoding="UTF-8"?>
<SequentialAssociationLattice version="1.0">
<SeqAssociationLattice>
<SeqInputStats numberOfTransactions="10" minimumSupport="0.2" maxSequenceSize="3" numberOfItems="3" numberOfSets="4" numberOfSequences="8"/>
<Item id="1" value="7" mappedValue="tea, green"/>
<Item id="2" value="9" mappedValue="teapot"/>
<Item id="3" value="11"/>
<Itemset id="1" numberOfItems="1"><ItemRef itemRef="1"/></Itemset>
<Itemset id="2" numberOfItems="1"><ItemRef itemRef="2"/></Itemset>
<Itemset id="3" numberOfItems="1"><ItemRef itemRef="3"/></Itemset>
<Itemset id="4" numberOfItems="2"><ItemRef itemRef="1"/><ItemRef itemRef="2"/></Itemset>
<LatticeLevel level="0" numberOfSequences="1">
<Sequence id="1" occurrence="10" numberOfSets="0"><SeqAdjacentList numberOfAdjacentItems="3"><AdjacentItem itemRef="1" position="1"/><AdjacentItem itemRef="2" position="1"/><AdjacentItem itemRef="3" position="1"/></SeqAdjacentList></Sequence>
</LatticeLevel>
<LatticeLevel level="1" numberOfSequences="3">
<Sequence id="2" occurrence="8" numberOfSets="1"><ItemsetRef itemsetRef="1"/><SeqAdjacentList numberOfAdjacentItems="2"><AdjacentItem itemRef="2" position="0"/><AdjacentItem itemRef="2" position="3"/></SeqAdjacentList></Sequence>
<Sequence id="3" occurrence="5" numberOfSets="1"><ItemsetRef itemsetRef="2"/><SeqAdjacentList numberOfAdjacentItems="3"><AdjacentItem itemRef="1" position="0"/><AdjacentItem itemRef="1" position="1"/><AdjacentItem itemRef="3" position="3"/></SeqAdjacentList></Sequence>
<Sequence id="4" occurrence="4" numberOfSets="1"><ItemsetRef itemsetRef="3"/><SeqAdjacentList numberOfAdjacentItems="1"><AdjacentItem itemRef="2" position="1"/></SeqAdjacentList></Sequence>
</LatticeLevel>
<LatticeLevel level="2" numberOfSequences="3">
<Sequence id="5" occurrence="4" numberOfSets="1"><ItemsetRef itemsetRef="4"/><SeqAdjacentList numberOfAdjacentItems="1"><AdjacentItem itemRef="3" position="3"/></SeqAdjacentList></Sequence>
<Sequence id="6" occurrence="2" numberOfSets="2"><ItemsetRef itemsetRef="1"/><ItemsetRef itemsetRef="2"/><SeqAdjacentList numberOfAdjacentItems="0"/></Sequence>
<Sequence id="7" occurrence="3" numberOfSets="2"><ItemsetRef itemsetRef="2"/><ItemsetRef itemsetRef="3"/><SeqAdjacentList numberOfAdjacentItems="1"><AdjacentItem itemRef="1" position="0"/></SeqAdjacentList></Sequence>
</LatticeLevel>
<LatticeLevel level="3" numberOfSequences="1">
<Sequence id="8" occurrence="2" numberOfSets="2"><ItemsetRef itemsetRef="4"/><ItemsetRef itemsetRef="3"/><SeqAdjacentList numberOfAdjacentItems="0"/></Sequence>
</LatticeLevel>
</SeqAssociationLattice>
</SequentialAssociationLattice>
)xml";

// A folder with the model in every form: small.xml, .pmml, .bin, .objxml, and the labels beside.
class SmallModels {
 public:
  SmallModels() {
    folder.file("small.xml", kSmallModel);
    for (const char* name : {"small.pmml", "small.bin", "small.objxml"})
      run({"convert", "--quiet", "--model", folder.path("small.xml"), "--output",
           folder.path(name)});
  }

  std::vector<std::string> paths() const {
    return {folder.path("small.xml"), folder.path("small.pmml"), folder.path("small.bin"),
            folder.path("small.objxml")};
  }

  TempFolder folder;
};

// A lattice document without the empty level that closes it, so that its highest level is hidden.
inline std::string unclosed(std::string document) {
  const std::string level = "<LatticeLevel level=\"";
  const std::string size = "maxSequenceSize=\"";
  const std::size_t last = document.rfind(level);
  const int highest = std::stoi(document.substr(last + level.size()));
  const std::size_t end = document.find("/>", last);
  if (document.compare(end - 4, 4, "=\"0\"") != 0) throw std::runtime_error("no empty level");
  document.erase(last, end + 2 - last);
  const std::size_t announced = document.find(size + std::to_string(highest) + "\"");
  document.replace(announced + size.size(), std::to_string(highest).size(),
                   std::to_string(highest - 1));
  return document;
}

inline auto linesIn(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

}  // namespace orbseq::test

#endif  // TESTS_CLI_SMALLMODEL_H_

// A tree of known elements and attributes, many of whose numbers are hostile, made without a
// parser: translated, and asked where a model comes of it.
//
// The bytes steer how the tree differs from a right one; no bytes make a right tree.

#include <array>
#include <memory>
#include <string>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "fuzz/Bytes.h"
#include "fuzz/Choice.h"
#include "fuzz/check.h"
#include "fuzz/modelQuestions.h"
#include "scoring/GiveMyTranslator.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/ScoreTranslator.h"

namespace {

using namespace orbseq::fuzz;
using xercesc::DOMDocument;
using xercesc::DOMElement;

constexpr const char16_t* kElements[] = {u"SeqAssociationLattice",
                                         u"SeqInputStats",
                                         u"Item",
                                         u"Itemset",
                                         u"ItemRef",
                                         u"LatticeLevel",
                                         u"Sequence",
                                         u"ItemsetRef",
                                         u"SeqAdjacentList",
                                         u"AdjacentItem",
                                         u"Extension"};

constexpr const char16_t* kHostileNumbers[] = {u"-1",
                                               u"0",
                                               u"1",
                                               u"2",
                                               u"3",
                                               u"33",
                                               u"2147483647",
                                               u"2147483646",
                                               u"1431655766",
                                               u"1431655765",
                                               u"1073741824",
                                               u"-2147483648",
                                               u"2147483648",
                                               u"-2147483649",
                                               u"4294967296",
                                               u"4294967297",
                                               u"",
                                               u" ",
                                               u"abc",
                                               u"3.0",
                                               u"0x3",
                                               u"+3",
                                               u"3 4",
                                               u"\t2\n",
                                               u"00002",
                                               u"-0",
                                               u"\uFF13",
                                               u"\xD800",
                                               u"--1",
                                               u"1-",
                                               u"9999999999999999999999999999999999999999",
                                               u"1e3",
                                               u"nan"};

std::u16string textOf(std::int32_t number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

class TreeMaker {
 public:
  TreeMaker(Bytes& bytes, DOMDocument& document) : bytes_(bytes), document_(document) {}

  void make() {
    DOMElement* const root = document_.getDocumentElement();
    if (bytes_.below(64) != 63) root->setAttribute(u"version", u"1.2.1");
    levels_ = 2 + bytes_.below(4);
    items_ = 2 + bytes_.below(4);
    sets_ = 3 + bytes_.below(6);
    DOMElement* const lattice =
        bytes_.below(16) == 15 ? root : child(root, u"SeqAssociationLattice");
    if (lattice == nullptr) return;
    addStatistics(lattice);
    for (int id = 1; id <= items_; ++id) addItem(lattice, id);
    for (int id = 1; id <= sets_; ++id) addItemset(lattice, id);
    for (int level = 0; level < levels_; ++level) addLevel(lattice, level);
  }

 private:
  // A child of that name, mostly; else one of another name, or under another child, or none: null.
  DOMElement* child(DOMElement* parent, const char16_t* name) {
    const int how = bytes_.byte();
    if (how == 255) return nullptr;
    if (how == 254) parent = add(parent, u"Extension");
    if (how == 253) add(parent, name);  // one more, empty, in front
    if (how >= 248 && how < 253) name = kElements[bytes_.below(std::size(kElements))];
    return add(parent, name);
  }

  DOMElement* add(DOMElement* parent, const char16_t* name) {
    DOMElement* const element = document_.createElement(name);
    parent->appendChild(element);
    return element;
  }

  // The attribute with that number, mostly.
  void put(DOMElement* element, const char16_t* attribute, std::int32_t number) {
    constexpr int kHostile = 200;
    const int how = bytes_.byte() - kHostile;
    const int hostile = static_cast<int>(std::size(kHostileNumbers));
    if (how == hostile) return;
    if (how > hostile) number += how % 2 == 0 ? 1 : -1;
    if (how >= 0 && how < hostile)
      element->setAttribute(attribute, kHostileNumbers[how]);
    else
      element->setAttribute(attribute, textOf(number).c_str());
  }

  void addStatistics(DOMElement* lattice) {
    DOMElement* const statistics = child(lattice, u"SeqInputStats");
    if (statistics == nullptr) return;
    put(statistics, u"numberOfSequences", 7);
    put(statistics, u"numberOfSets", sets_);
    put(statistics, u"maxSequenceSize", levels_ - 1);
    put(statistics, u"numberOfItems", items_);
  }

  void addItem(DOMElement* lattice, int id) {
    constexpr std::array<std::int32_t, 6> kValues = {7, 9, 1, 2, 3, -5};
    DOMElement* const item = child(lattice, u"Item");
    if (item == nullptr) return;
    put(item, u"id", id);
    put(item, u"value", kValues[static_cast<std::size_t>(id - 1) % kValues.size()]);
    if (bytes_.below(8) == 7) item->setAttribute(u"mappedValue", u"tea");
  }

  void addItemset(DOMElement* lattice, int id) {
    DOMElement* const itemset = child(lattice, u"Itemset");
    if (itemset == nullptr) return;
    // One item in the first ones, as many as are drawn in the others.
    const int items = id <= items_ ? 1 : 2 + bytes_.below(3);
    put(itemset, u"id", id);
    put(itemset, u"numberOfItems", items);
    for (int k = 0; k < items; ++k)
      if (DOMElement* const reference = child(itemset, u"ItemRef"))
        put(reference, u"itemRef", items == 1 ? id : 1 + bytes_.below(items_));
  }

  void addLevel(DOMElement* lattice, int level) {
    DOMElement* const element = child(lattice, u"LatticeLevel");
    if (element == nullptr) return;
    const bool isHighest = level == levels_ - 1;
    const int sequences = level == 0 ? 1 : isHighest ? 0 : 1 + bytes_.below(8);
    put(element, u"level", level);
    put(element, u"numberOfSequences", sequences);
    for (int k = 0; k < sequences; ++k) addSequence(element, level, k);
  }

  // In level 1 the single items in turn, above them sets by chance.
  void addSequence(DOMElement* level, int size, int index) {
    DOMElement* const sequence = child(level, u"Sequence");
    if (sequence == nullptr) return;
    put(sequence, u"numberOfSets", size);
    put(sequence, u"occurrence", 100 / (size + 1) + bytes_.below(16));
    for (int k = 0; k < size; ++k)
      if (DOMElement* const reference = child(sequence, u"ItemsetRef"))
        put(reference, u"itemsetRef", 1 + (size == 1 ? index % items_ : bytes_.below(sets_)));
    DOMElement* const list = child(sequence, u"SeqAdjacentList");
    if (list == nullptr) return;
    const int links = size == 0 ? items_ : bytes_.below(6);
    put(list, u"numberOfAdjacentItems", links);
    for (int k = 0; k < links; ++k) addLink(list, size, k);
  }

  void addLink(DOMElement* list, int size, int index) {
    DOMElement* const link = child(list, u"AdjacentItem");
    if (link == nullptr) return;
    const int position = bytes_.below(2 * size + 2);
    put(link, u"itemRef", size == 0 ? 1 + index : 1 + bytes_.below(items_));
    put(link, u"position", position == 2 * size ? 2 * size + 1 : position);
  }

  Bytes& bytes_;
  DOMDocument& document_;
  int levels_ = 0;
  int items_ = 0;
  int sets_ = 0;
};

xercesc::DOMImplementation& implementation() {
  static xercesc::DOMImplementation* const core = [] {
    xercesc::XMLPlatformUtils::Initialize();
    return xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
  }();
  return *core;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::unique_ptr<DOMDocument> document(
      implementation().createDocument(nullptr, u"SequentialAssociationLattice", nullptr));
  Bytes bytes(data, size);
  TreeMaker(bytes, *document).make();
  const std::unique_ptr<OrbScore::ScoreTranslator> translator(GiveMyTranslator());
  std::unique_ptr<OrbScore::ScoreModel> model;
  try {
    model.reset(translator->ParseFromTree(document->getDocumentElement(), "UTF-8"));
  } catch (const OrbScore::QuException& refusal) {
    requireErrorText(refusal.what(), "lattice refused: ");
    return 0;
  }
  askModel(*model, Choice(data, size));
  return 0;
}

#include "lattice/exportParts.h"

#include <string>
#include <string_view>
#include <utility>

#include "common/utf8.h"
#include "lattice/SequenceDictionary.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

using SEQUENCE_NAMESPACE_800::NTSequence;

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Whether XML 1.0 can hold a character of valid UTF-8.
bool isXmlCharacter(char32_t code) noexcept {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code != 0xFFFE && code != 0xFFFF;
}

std::string xmlText(std::string_view label) {
  std::string text;
  while (!label.empty()) {
    const Utf8Character next = firstCharacter(label);
    const bool isHeld = next.length != 0 && isXmlCharacter(next.code);
    appendUtf8(text, isHeld ? next.code : kReplacement);
    label.remove_prefix(next.length != 0 ? next.length : 1);
  }
  return text;
}

const std::string* labelOf(std::int32_t item, const ItemLabelMap* labels) {
  if (labels == nullptr) return nullptr;
  const auto label = labels->find(item);
  return label != labels->end() && !label->second.empty() ? &label->second : nullptr;
}

}  // namespace

ElementPtr makeElement(const char* name) { return ElementPtr(Element::Create(name)); }

void addElement(Element& parent, ElementPtr child) { parent.AddElement(child.release()); }

Element& addElement(Element& parent, const char* name) {
  ElementPtr child = makeElement(name);
  Element& added = *child;
  addElement(parent, std::move(child));
  return added;
}

void addGenerated(Element& parent, GeneratedElements::Generator generate) {
  addElement(parent, ElementPtr(GeneratedElements::Create(std::move(generate))));
}

void addHeader(Element& root, const char* description) {
  Element& header = addElement(root, "Header");
  header.AddAttribute("copyright", kCopyright);
  header.AddAttribute("description", description);
  Element& application = addElement(header, "Application");
  application.AddAttribute("name", "Tavrel Sequential Association Component C++");
  application.AddAttribute("version", kLatticeVersion);
}

void addItems(Element& parent, const ExportIndex& index, const ItemLabelMap* labels) {
  addGenerated(parent, [&index, labels](const GeneratedElements::Consumer& take) {
    for (const auto& [item, id] : index.items()) {
      const ElementPtr element = makeElement("Item");
      element->AddAttribute("id", id);
      element->AddAttribute("value", item);
      if (const std::string* const label = labelOf(item, labels))
        element->AddAttribute("mappedValue", xmlText(*label));
      take(*element);
    }
  });
}

void addItemSets(Element& parent, const ExportIndex& index) {
  addGenerated(parent, [&index](const GeneratedElements::Consumer& take) {
    for (const auto& [items, id] : index.itemSets()) {
      const ElementPtr element = makeElement("Itemset");
      element->AddAttribute("id", id);
      element->AddAttribute("numberOfItems", static_cast<double>(items.size()));
      for (const std::int32_t item : items)
        addElement(*element, "ItemRef").AddAttribute("itemRef", index.idOf(item));
      take(*element);
    }
  });
}

const SequenceCounter* counterOf(const SequenceDictionary& dictionary, const Sequence& sequence) {
  if (sequence.Size() > NTSequence::kMaxItems) return nullptr;  // never stored
  const NTSequence packed(&sequence);
  return dictionary.getDescriptor(&packed);
}

std::int32_t countOf(const SequenceCounter* counter) noexcept {
  return counter != nullptr ? counter->getCount() : 0;
}

std::int32_t customersOf(const SequenceDictionary& dictionary) {
  const NTSequence empty;
  return countOf(dictionary.getDescriptor(&empty));
}

double minimumSupportOf(const SequenceDictionary& dictionary, double asked) noexcept {
  const double own = dictionary.getReductionThreshold();
  return own > asked ? own : asked;
}

}  // namespace orbseq

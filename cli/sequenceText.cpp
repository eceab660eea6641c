#include "cli/sequenceText.h"

#include <algorithm>
#include <cstring>

#include "cli/displayText.h"
#include "cli/numberText.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

bool isNumber(const std::string& text) {
  return text.find_first_not_of("0123456789") == std::string::npos;
}

// Also what could be taken for a number or a mark of the form.
bool wantsQuotes(const std::string& text) {
  return text.empty() || isNumber(text) || std::strchr("-#=", text.front()) != nullptr ||
         std::any_of(text.begin(), text.end(), [](char c) {
           return static_cast<unsigned char>(c) <= ' ' || c == '"' || c == '\x7F';
         });
}

void appendLabel(std::string& out, const std::string& label) {
  if (!wantsQuotes(label)) {
    out += label;
    return;
  }
  out += '"';
  for (const char c : escapedControls(label)) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

const std::string* labelOf(std::int32_t item, const ItemLabelMap* labels) {
  if (labels == nullptr) return nullptr;
  const auto found = labels->find(item);
  return found == labels->end() ? nullptr : &found->second;
}

void appendItem(std::string& out, std::int32_t item, const ItemLabelMap* labels) {
  if (const std::string* const label = labelOf(item, labels))
    appendLabel(out, *label);
  else
    appendInteger(out, item);
}

std::string itemText(std::int32_t item, const ItemLabelMap& labels) {
  const std::string* const label = labelOf(item, &labels);
  return label != nullptr ? printable(*label) : std::to_string(item);
}

}  // namespace

void appendSets(std::string& out, const Sequence& sequence, const ItemLabelMap* labels,
                bool closesLastSet) {
  const std::int32_t length = sequence.Length();
  for (std::int32_t k = 0; k < length; ++k) {
    const TimedItemSet& set = *sequence[k];
    for (auto item = set.Begin(); item != set.End(); ++item) {
      if (item != set.Begin()) out += ' ';
      appendItem(out, *item, labels);
    }
    const bool isLast = k + 1 == length;
    if (!isLast) out += " -1 ";
    if (isLast && closesLastSet) out += " -1";
  }
}

std::string readableSets(const Sequence& sequence, const ItemLabelMap& labels) {
  std::string text;
  const bool isBare = sequence.Length() == 1 && sequence[0]->Size() == 1;
  for (std::int32_t k = 0; k < sequence.Length(); ++k) {
    const TimedItemSet& set = *sequence[k];
    if (!isBare) text += '(';
    for (auto item = set.Begin(); item != set.End(); ++item) {
      if (item != set.Begin()) text += ", ";
      text += itemText(*item, labels);
    }
    if (!isBare) text += ')';
  }
  return text;
}

std::string historyText(const Sequence& sequence) {
  std::string text;
  for (std::int32_t k = 0; k < sequence.Length(); ++k) {
    text += '(';
    const TimedItemSet& set = *sequence[k];
    for (auto item = set.Begin(); item != set.End(); ++item) {
      if (item != set.Begin()) text += ' ';
      appendInteger(text, *item);
    }
    text += ')';
  }
  return text;
}

}  // namespace orbseq

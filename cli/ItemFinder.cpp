#include "cli/ItemFinder.h"

#include <charconv>
#include <system_error>

#include "cli/exitStatus.h"
#include "sequence/NTSequence.h"

namespace orbseq {

bool ItemFinder::isItem(std::int32_t item) const {
  SEQUENCE_NAMESPACE_800::NTSequence sequence;
  sequence.addItemAfterLast(item);
  return model_.lattice->isStored(sequence);
}

std::int32_t ItemFinder::find(const char* option, const std::string& text) const {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  if (isNumber && isItem(number)) return number;

  std::vector<std::int32_t> exact;
  std::vector<std::int32_t> beginning;
  for (const auto& [item, label] : model_.labels) {
    if (label == text) exact.push_back(item);
    if (!text.empty() && label.starts_with(text)) beginning.push_back(item);
  }
  const auto& found = exact.empty() ? beginning : exact;
  if (found.size() == 1) return found.front();
  const std::string what = std::string(option) + ": " + text + ": ";
  if (found.empty()) throw UsageError(what + "no item of that number or label in the model");
  throw UsageError(what + std::to_string(found.size()) + " items have such a label, among them " +
                   std::to_string(found[0]) + " and " + std::to_string(found[1]));
}

std::vector<std::int32_t> ItemFinder::findAll(const char* option,
                                              const std::vector<std::string>& texts) const {
  std::vector<std::int32_t> items;
  items.reserve(texts.size());
  for (const std::string& text : texts) items.push_back(find(option, text));
  return items;
}

}  // namespace orbseq

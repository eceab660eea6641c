#include "io/ItemNames.h"

#include <charconv>
#include <string>
#include <system_error>

namespace orbseq {

ItemNames::ItemNames(const ItemLabelMap& labels) {
  for (const auto& [item, label] : labels) {
    add(labels_, label, item);
    add(words_, std::string_view(label).substr(0, label.find(' ')), item);
  }
}

void ItemNames::add(Names& names, std::string_view name, std::int32_t item) {
  const auto [entry, isNew] = names.emplace(name, item);
  if (!isNew && entry->second != item) entry->second.reset();
}

std::optional<std::int32_t> ItemNames::find(std::string_view text) const {
  for (const Names* names : {&labels_, &words_})
    if (const auto name = names->find(text); name != names->end() && name->second)
      return name->second;
  return numberOf(text);
}

std::optional<std::int32_t> ItemNames::numberOf(std::string_view text) noexcept {
  if (text.empty() || text.front() == '-' || (text.size() > 1 && text.front() == '0'))
    return std::nullopt;
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  return isNumber ? std::optional(value) : std::nullopt;
}

}  // namespace orbseq

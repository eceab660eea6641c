#include "cli/ItemLabels.h"

#include <charconv>
#include <system_error>

#include "scoring/hostapi/DictVar.h"
#include "scoring/hostapi/ScoreDictionary.h"

namespace orbseq {

ItemLabels::ItemLabels(const OrbScore::ScoreDictionary* dictionary, Form form) : none_(form("")) {
  if (dictionary == nullptr) return;
  for (const std::string& name : dictionary->GetNames()) {
    std::int32_t item = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), item);
    if (parsed.ec != std::errc() || std::to_string(item) != name) continue;
    const OrbScore::ScoreDictVar* variable = dictionary->GetVariable(name);
    if (variable != nullptr) labels_.emplace(item, form(variable->GetMappedLabel()));
  }
}

const std::string& ItemLabels::of(std::int32_t item) const {
  const auto found = labels_.find(item);
  return found == labels_.end() ? none_ : found->second;
}

}  // namespace orbseq

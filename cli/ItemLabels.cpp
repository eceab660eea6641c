#include "cli/ItemLabels.h"

namespace orbseq {

ItemLabels::ItemLabels(const ItemLabelMap& labels, Form form) : none_(form("")) {
  for (const auto& [item, label] : labels) labels_.emplace(item, form(label));
}

const std::string& ItemLabels::of(std::int32_t item) const {
  const auto found = labels_.find(item);
  return found == labels_.end() ? none_ : found->second;
}

}  // namespace orbseq

#include "scoring/hostapi/BaseDictionary.h"

#include <utility>

namespace OrbScore {

BaseDictionary::BaseDictionary() = default;
BaseDictionary::~BaseDictionary() = default;

bool BaseDictionary::AddVariable(const std::string& name, DictVar* variable) {
  std::unique_ptr<DictVar> owned(variable);
  if (owned == nullptr) return false;
  return variables_.try_emplace(name, std::move(owned)).second;
}

const DictVar* BaseDictionary::GetVariable(const std::string& name) const {
  const auto found = variables_.find(name);
  return found == variables_.end() ? nullptr : found->second.get();
}

std::size_t BaseDictionary::GetSize() const { return variables_.size(); }

std::vector<std::string> BaseDictionary::GetNames() const {
  std::vector<std::string> names;
  names.reserve(variables_.size());
  for (const auto& [name, variable] : variables_) names.push_back(name);
  return names;
}

}  // namespace OrbScore

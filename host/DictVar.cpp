#include "scoring/hostapi/DictVar.h"

namespace OrbScore {

DictVar::DictVar(const std::string& name, VariableType type) : name_(name), type_(type) {}
DictVar::~DictVar() = default;

const std::string& DictVar::GetName() const { return name_; }
void DictVar::SetName(const std::string& name) { name_ = name; }
ScoreDictVar::VariableType DictVar::GetVariableType() const { return type_; }
const std::string& DictVar::GetMappedLabel() const { return label_; }
void DictVar::SetMappedLabel(const std::string& label) { label_ = label; }

}  // namespace OrbScore

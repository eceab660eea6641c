#include "io/ModelForm.h"

#include <array>

namespace orbseq {

namespace {

struct Form {
  ModelForm form;
  const char* name;
  const char* suffix;
};

constexpr std::array<Form, 5> kForms = {{
    {ModelForm::kDocument, "document", ".xml"},
    {ModelForm::kPmml, "pmml", ".pmml"},
    {ModelForm::kBinary, "binary", ".bin"},
    {ModelForm::kObjectXml, "objxml", ".objxml"},
    {ModelForm::kCompiled, "compiled", ".compiled"},
}};

}  // namespace

const char* nameOf(ModelForm form) noexcept {
  for (const Form& known : kForms)
    if (known.form == form) return known.name;
  return "";
}

std::optional<ModelForm> modelFormOf(std::string_view name) noexcept {
  for (const Form& known : kForms)
    if (known.name == name) return known.form;
  return std::nullopt;
}

std::optional<ModelForm> modelFormOfFile(const std::string& path) {
  for (const Form& known : kForms)
    if (path.ends_with(known.suffix)) return known.form;
  return std::nullopt;
}

}  // namespace orbseq

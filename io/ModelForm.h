// The forms in which a model is stored.

#ifndef IO_MODELFORM_H_
#define IO_MODELFORM_H_

#include <optional>
#include <string>
#include <string_view>

namespace orbseq {

enum class ModelForm {
  kDocument,   // lattice document, XML: what the scoring module is handed
  kPmml,       // PMML document: the rules, and with them the lattice
  kBinary,     // compact, fast to read
  kObjectXml,  // objects in lines of XML
  kCompiled,   // what answers (io/CompiledModel.h): written, and never read back as a lattice
};

// "document", "pmml", "binary", "objxml", "compiled".
const char* nameOf(ModelForm form) noexcept;
std::optional<ModelForm> modelFormOf(std::string_view name) noexcept;

// By the end of a file's name: .xml, .pmml, .bin, .objxml, .compiled; nothing for any other.
std::optional<ModelForm> modelFormOfFile(const std::string& path);

}  // namespace orbseq

#endif  // IO_MODELFORM_H_

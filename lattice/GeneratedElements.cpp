#include "lattice/GeneratedElements.h"

#include <utility>

namespace orbseq {

using OrbXML_830::ExportFormat;

GeneratedElements::GeneratedElements(Generator generate)
    : XMLElement(""), generate_(std::move(generate)) {}

GeneratedElements::~GeneratedElements() = default;

GeneratedElements* GeneratedElements::Create(Generator generate) {
  return new GeneratedElements(std::move(generate));
}

int GeneratedElements::ToString(std::string& out, ExportFormat& format) const {
  generate_([&](const XMLElement& element) { element.ToString(out, format); });
  return 0;
}

int GeneratedElements::ToStream(std::ostream& os, ExportFormat& format, bool utf8) const {
  generate_([&](const XMLElement& element) { element.ToStream(os, format, utf8); });
  return 0;
}

GeneratedElements* GeneratedElements::Clone() const { return Create(generate_); }

}  // namespace orbseq

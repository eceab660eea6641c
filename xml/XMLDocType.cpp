#include "xml/XMLDocType.h"

#include "xml/WriteTree.h"
#include "xml/XMLUtil.h"

namespace OrbXML_830 {

XMLDocType::XMLDocType(const std::string& name, const std::string& systemId, long extra)
    : name_(name), systemId_(systemId), extra_(extra) {}

XMLDocType::~XMLDocType() = default;

XMLDocType* XMLDocType::Create(const std::string& name, const std::string& systemId, long extra) {
  return new XMLDocType(name, systemId, extra);
}

int XMLDocType::AddExtension(const std::string& text) {
  extension_ += XMLUtil::ROWSEP + text;
  return static_cast<int>(extension_.size());
}

int XMLDocType::ToString(std::string& out, ExportFormat&) const {
  out += XMLUtil::FIRST_LINE;
  out += XMLUtil::ROWSEP;
  out += "<!DOCTYPE " + name_ + " SYSTEM \"" + systemId_ + "\"";
  if (!extension_.empty()) out += std::string("\n[") + extension_ + "\n]";
  out += ">\n";
  return 0;
}

int XMLDocType::ToStream(std::ostream& os, ExportFormat& format, bool utf8) const {
  return writeNode(os, *this, format, utf8);
}

XMLDocType* XMLDocType::Clone() const { return new XMLDocType(*this); }

}  // namespace OrbXML_830

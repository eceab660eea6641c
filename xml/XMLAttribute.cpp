#include "xml/XMLAttribute.h"

#include "xml/NumberFormat.h"
#include "xml/WriteTree.h"
#include "xml/XMLUtil.h"

namespace OrbXML_830 {

XMLAttribute::XMLAttribute(const std::string& name, const std::string& value)
    : name_(name), value_(value) {}

XMLAttribute::~XMLAttribute() = default;

XMLAttribute* XMLAttribute::Create(const std::string& name, const std::string& value) {
  return new XMLAttribute(name, value);
}

XMLAttribute* XMLAttribute::Create(const std::string& name, double value) {
  return new XMLAttribute(name, Format(value, false, nullptr));
}

XMLAttribute* XMLAttribute::Create(const std::string& name, double value, bool fixedText) {
  return fixedText ? new XMLAttribute(name, ReplaceSep(value)) : Create(name, value);
}

int XMLAttribute::ToString(std::string& out, ExportFormat&) const {
  out += name_ + XMLUtil::EQUAL + XMLUtil::QUOTE + XMLUtil::Escape(value_) + XMLUtil::QUOTE;
  return 0;
}

int XMLAttribute::ToStream(std::ostream& os, ExportFormat& format, bool utf8) const {
  return writeNode(os, *this, format, utf8);
}

XMLAttribute* XMLAttribute::Clone() const { return new XMLAttribute(name_, value_); }

}  // namespace OrbXML_830

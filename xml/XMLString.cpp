#include "xml/XMLString.h"

#include "xml/WriteTree.h"
#include "xml/XMLUtil.h"

namespace OrbXML_830 {

XMLString::XMLString(const std::string& text) : text_(text) {}

XMLString::~XMLString() = default;

XMLString* XMLString::Create(const std::string& text) { return new XMLString(text); }

int XMLString::ToString(std::string& out, ExportFormat& format) const {
  std::string escaped = text_;
  XMLUtil::ReplaceAll(escaped, XMLUtil::AMPERSAND, XMLUtil::XML_AMPERSAND);
  XMLUtil::ReplaceAll(escaped, XMLUtil::LESS_THAN, XMLUtil::XML_LESS_THAN);
  out += escaped;
  format.SetIsNewParagraph(false);
  return 0;
}

int XMLString::ToStream(std::ostream& os, ExportFormat& format, bool utf8) const {
  return writeNode(os, *this, format, utf8);
}

XMLString* XMLString::Clone() const { return new XMLString(text_); }

}  // namespace OrbXML_830

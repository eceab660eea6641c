// The text of a node, by either of its ways out.

#ifndef TESTS_XML_NODETEXT_H_
#define TESTS_XML_NODETEXT_H_

#include <sstream>
#include <string>

#include "xml/ExportFormat.h"
#include "xml/XMLInterface.h"

namespace orbseq::test {

inline std::string textOf(const OrbXML_830::XMLInterface& node,
                          OrbXML_830::ExportFormat format = {}) {
  std::string text;
  node.ToString(text, format);
  return text;
}

inline std::string streamTextOf(const OrbXML_830::XMLInterface& node,
                                OrbXML_830::ExportFormat format = {}, bool utf8 = false) {
  std::ostringstream stream;
  node.ToStream(stream, format, utf8);
  return stream.str();
}

inline OrbXML_830::ExportFormat layout(bool formatted, bool indentation) {
  OrbXML_830::ExportFormat format;
  format.SetFormat(formatted);
  format.SetIndentation(indentation);
  return format;
}

}  // namespace orbseq::test

#endif  // TESTS_XML_NODETEXT_H_

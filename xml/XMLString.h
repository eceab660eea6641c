// A text between tags; stored as it is and escaped when written.

#ifndef XML_XMLSTRING_H_
#define XML_XMLSTRING_H_

#include <iosfwd>
#include <string>

#include "common/OrbExport.h"
#include "xml/XMLInterface.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT XMLString : public XMLInterface {
 public:
  static XMLString* Create(const std::string& text);  // the caller's
  ~XMLString() override;

  // Escapes "&" and "<" alone, and lets the closing tag follow on the same line.
  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const override;
  XMLString* Clone() const override;

 private:
  explicit XMLString(const std::string& text);

  std::string text_;
};

}  // namespace OrbXML_830

#endif  // XML_XMLSTRING_H_

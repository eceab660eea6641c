// A name and a value; the value is stored as it is and escaped when written.

#ifndef XML_XMLATTRIBUTE_H_
#define XML_XMLATTRIBUTE_H_

#include <iosfwd>
#include <string>

#include "common/OrbExport.h"
#include "xml/XMLInterface.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT XMLAttribute : public XMLInterface {
 public:
  // Each result belongs to the caller.
  static XMLAttribute* Create(const std::string& name, const std::string& value);
  // At most 15 significant digits, "." as decimal point.
  static XMLAttribute* Create(const std::string& name, double value);
  // With fixedText 16 digits after the decimal point, else as above.
  static XMLAttribute* Create(const std::string& name, double value, bool fixedText);
  ~XMLAttribute() override;

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const override;
  XMLAttribute* Clone() const override;

 private:
  XMLAttribute(const std::string& name, const std::string& value);

  std::string name_;
  std::string value_;
};

}  // namespace OrbXML_830

#endif  // XML_XMLATTRIBUTE_H_

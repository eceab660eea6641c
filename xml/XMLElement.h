// An element: a name, attributes and children, all in the order in which they were added.
//
// Owns its attributes and children. Names are never escaped: they are the program's own.

#ifndef XML_XMLELEMENT_H_
#define XML_XMLELEMENT_H_

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "common/OrbExport.h"
#include "xml/XMLInterface.h"

namespace OrbXML_830 {

class XMLAttribute;
class XMLString;

class ORBSEQ_EXPORT XMLElement : public XMLInterface {
 public:
  static XMLElement* Create(const std::string& name);  // the caller's
  ~XMLElement() override;
  XMLElement(const XMLElement&) = delete;
  XMLElement& operator=(const XMLElement&) = delete;

  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const override;
  XMLElement* Clone() const override;

  // Own the node from the call on, also when the call throws, and return the number of children.
  virtual int AddElement(XMLString* text);
  virtual int AddElement(XMLElement* child);

  // Owns the attribute from the call on, also when the call throws.
  void AddAttribute(XMLAttribute* attribute);
  void AddAttribute(const std::string& name, const std::string& value);
  // Deliberate: a value that is not finite adds nothing and reports nothing, so that such a
  // statistic is simply left out of the document.
  void AddAttribute(const std::string& name, double value);
  // With fixedText 16 digits after the decimal point, else as above.
  void AddAttribute(const std::string& name, double value, bool fixedText);

 protected:
  explicit XMLElement(const std::string& name);

 private:
  class Sink;

  void write(Sink& sink, ExportFormat& format) const;
  template <class Node>
  int addChild(Node* node);

  std::vector<std::unique_ptr<XMLAttribute>> attributes_;
  std::string name_;
  std::vector<std::unique_ptr<XMLInterface>> children_;
};

}  // namespace OrbXML_830

#endif  // XML_XMLELEMENT_H_

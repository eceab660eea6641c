// The document type declaration, with the XML declaration in front of it.
//
// Never added to a tree: its creator destroys it.

#ifndef XML_XMLDOCTYPE_H_
#define XML_XMLDOCTYPE_H_

#include <iosfwd>
#include <string>

#include "common/OrbExport.h"
#include "xml/XMLInterface.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT XMLDocType : public XMLInterface {
 public:
  // `name` is the root element's, `systemId` the DTD's file name; `extra` is kept, copied by
  // Clone, and used by no output. The result belongs to the caller.
  static XMLDocType* Create(const std::string& name, const std::string& systemId, long extra);
  ~XMLDocType() override;

  // Adds a line to the internal subset; returns the subset's length in bytes.
  int AddExtension(const std::string& text);

  // Ignores the format and leaves it alone.
  int ToString(std::string& out, ExportFormat& format) const override;
  int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const override;
  XMLDocType* Clone() const override;

 private:
  XMLDocType(const std::string& name, const std::string& systemId, long extra);

  std::string name_;
  std::string systemId_;
  std::string extension_;        // each line behind a line feed
  [[maybe_unused]] long extra_;  // no output uses it
};

}  // namespace OrbXML_830

#endif  // XML_XMLDOCTYPE_H_

// A node of a tree that can be written as XML. There is no parser here.
//
// Nodes are made by Create functions and belong to their caller until they are added to an
// element, which then owns them. A node is added to at most one element. Serialising changes no
// node: any number of threads may write one tree, each with its own ExportFormat.
//
// Every writing operation returns 0 and ignores the stream's state; check the stream afterwards.

#ifndef XML_XMLINTERFACE_H_
#define XML_XMLINTERFACE_H_

#include <iosfwd>
#include <string>

#include "common/OrbExport.h"
#include "xml/ExportFormat.h"

namespace OrbXML_830 {

class ORBSEQ_EXPORT XMLInterface {
 public:
  XMLInterface() = default;
  virtual ~XMLInterface();

  // Appends the node's text.
  virtual int ToString(std::string& out, ExportFormat& format) const = 0;
  // Writes the same text; with utf8 converted from the process's narrow code page to UTF-8.
  virtual int ToStream(std::ostream& os, ExportFormat& format, bool utf8) const = 0;
  // A deep copy, owned by the caller.
  virtual XMLInterface* Clone() const = 0;

 protected:
  XMLInterface(const XMLInterface&) = default;
  XMLInterface& operator=(const XMLInterface&) = default;
};

}  // namespace OrbXML_830

#endif  // XML_XMLINTERFACE_H_

// Writing texts and whole trees to streams.
//
// Every function returns 0 and ignores the stream's state; check the stream afterwards, flushed.

#ifndef XML_WRITETREE_H_
#define XML_WRITETREE_H_

#include <iosfwd>
#include <string>

#include "common/OrbExport.h"

namespace OrbXML_830 {

class ExportFormat;
class XMLDocType;
class XMLElement;
class XMLInterface;

// The bytes as they are.
ORBSEQ_EXPORT int Write(std::ostream& os, const std::string& s);

// The text converted from the process's narrow code page to UTF-8.
ORBSEQ_EXPORT int WriteUTF(std::ostream& os, const std::string& s);

// A document: the document type with the XML declaration, or the declaration alone when it is
// null, and then the tree. With `format` every element begins on a new line at its column 0; an
// empty line stands before the root.
// Deliberate: the declaration says UTF-8, yet the bytes are written unconverted, so that they are
// UTF-8 only where the texts are.
ORBSEQ_EXPORT int WriteTree(std::ostream& os, const XMLDocType* docType, const XMLElement* root,
                            bool format);

// The same with conversion to UTF-8.
ORBSEQ_EXPORT int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType, const XMLElement* root,
                                bool format);

// What the nodes' ToStream do: the node's text as a whole, written with or without conversion.
int writeNode(std::ostream& os, const XMLInterface& node, ExportFormat& format, bool utf8);

}  // namespace OrbXML_830

#endif  // XML_WRITETREE_H_

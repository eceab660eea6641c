#include "xml/WriteTree.h"

#include <ostream>

#include "common/platform/codePage.h"
#include "xml/ExportFormat.h"
#include "xml/XMLDocType.h"
#include "xml/XMLElement.h"
#include "xml/XMLUtil.h"
#include "xml/utf16.h"

namespace OrbXML_830 {

namespace {

int writeText(std::ostream& os, const std::string& text, bool utf8) {
  return utf8 ? WriteUTF(os, text) : Write(os, text);
}

int writeDocument(std::ostream& os, const XMLDocType* docType, const XMLElement* root,
                  bool formatted, bool utf8) {
  ExportFormat format;
  format.SetFormat(formatted);
  if (docType != nullptr)
    docType->ToStream(os, format, utf8);
  else
    writeText(os, std::string(XMLUtil::FIRST_LINE) + XMLUtil::ROWSEP, utf8);
  root->ToStream(os, format, utf8);
  return 0;
}

}  // namespace

int Write(std::ostream& os, const std::string& s) {
  os.write(s.data(), static_cast<std::streamsize>(s.size()));
  return 0;
}

int WriteUTF(std::ostream& os, const std::string& s) {
  return Write(os, utf8FromUtf16(orbseq::platform::narrowToUtf16(s)));
}

int WriteTree(std::ostream& os, const XMLDocType* docType, const XMLElement* root, bool format) {
  return writeDocument(os, docType, root, format, false);
}

int WriteTreeUTF8(std::ostream& os, const XMLDocType* docType, const XMLElement* root,
                  bool format) {
  return writeDocument(os, docType, root, format, true);
}

int writeNode(std::ostream& os, const XMLInterface& node, ExportFormat& format, bool utf8) {
  std::string text;
  node.ToString(text, format);
  return writeText(os, text, utf8);
}

}  // namespace OrbXML_830

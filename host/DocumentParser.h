// The parser: text in, tree out, within limits.
//
// Validates nothing, opens nothing, knows no entity beside the five of XML, and stops at the first
// error. A document type declaration is an error here; safeText() takes the harmless ones away.
// White space between elements, comments and instructions are not kept.
//
// One parser reads one document. Threads: one thread at a time.

#ifndef HOST_DOCUMENTPARSER_H_
#define HOST_DOCUMENTPARSER_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "host/DocumentLimits.h"
#include "host/ElementPositions.h"
#include "host/TextCursor.h"

namespace OrbScore {

class DocumentParser : private xercesc::XercesDOMParser {
 public:
  // `text` is valid UTF-8, made by safeText(); text and positions must outlive the parser.
  // `name` is what errors call the document.
  DocumentParser(std::string_view text, const std::string& name, const DocumentLimits& limits,
                 ElementPositions& positions);

  // The tree, which the caller deletes; never null and never without a root. Adds the place of
  // each element to the positions. Throws QuException with line and column for what is refused; the
  // parser's own exceptions may pass through: see rethrowParserError().
  xercesc::DOMDocument* read();

 private:
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* prefix) override;
  void docCharacters(const XMLCh* text, XMLSize_t length, bool isCdata) override;
  void docPI(const XMLCh* target, const XMLCh* data) override;
  void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
               const XMLCh* actualEncoding) override;
  void doctypeDecl(const xercesc::DTDElementDecl& declaration, const XMLCh* publicId,
                   const XMLCh* systemId, bool hasInternalSubset, bool hasExternalSubset) override;

  // Throw, at the start tag, when a limit is passed.
  void checkCounts(XMLSize_t attributeCount) const;
  void checkName(std::u16string_view name);
  [[noreturn]] void refuse(std::string_view what, const std::string& detail) const;

  struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view name) const noexcept {
      return std::hash<std::u16string_view>()(name);
    }
  };

  std::string_view text_;
  std::string name_;
  DocumentLimits limits_;
  ElementPositions& positions_;
  xercesc::SecurityManager security_;
  std::unique_ptr<xercesc::ErrorHandler> errors_;                        // throws every error on
  TextCursor cursor_;                                                    // at the latest start tag
  std::unordered_set<std::u16string, NameHash, std::equal_to<>> names_;  // seen and accepted
  int depth_ = 0;
  std::size_t elements_ = 0;
};

}  // namespace OrbScore

#endif  // HOST_DOCUMENTPARSER_H_

#include "host/DocumentParser.h"

#include <algorithm>
#include <cassert>
#include <utility>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/RefVectorOf.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "common/guards.h"
#include "host/documentError.h"
#include "host/utf16.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace OrbScore {
namespace {

// Bytes of the text in UTF-8, exactly up to `limit` and somewhere above it beyond.
std::size_t bytesInUtf8(std::u16string_view text, std::size_t limit) {
  if (text.size() > limit) return text.size();
  return toUtf8(text).size();
}

bool isBlank(std::u16string_view text) {
  return text.find_first_not_of(u" \t\r\n") == std::u16string_view::npos;
}

TextPosition positionOf(const xercesc::SAXParseException& error) {
  return {static_cast<std::uint32_t>(error.getLineNumber()),
          static_cast<std::uint32_t>(error.getColumnNumber())};
}

// Throws what the parser only reports.
class ThrowingErrors : public xercesc::ErrorHandler {
 public:
  explicit ThrowingErrors(const std::string& name) : name_(name) {}

  void warning(const xercesc::SAXParseException&) override {}
  void error(const xercesc::SAXParseException& error) override { refuse(error); }
  void fatalError(const xercesc::SAXParseException& error) override { refuse(error); }
  void resetErrors() override {}

 private:
  void refuse(const xercesc::SAXParseException& error) const {
    if (!orbseq::guarded("document.syntax")) return;
    throw documentError(name_, positionOf(error), messageText(error.getMessage()));
  }

  std::string name_;
};

}  // namespace

DocumentParser::DocumentParser(std::string_view text, const std::string& name,
                               const DocumentLimits& limits, ElementPositions& positions)
    : text_(text),
      name_(name),
      limits_(limits),
      positions_(positions),
      errors_(std::make_unique<ThrowingErrors>(name)),
      cursor_(text) {
  security_.setEntityExpansionLimit(0);
  setSecurityManager(&security_);
  setErrorHandler(errors_.get());
  setValidationScheme(Val_Never);
  setDoNamespaces(false);
  setDoSchema(false);
  setDoXInclude(false);
  setLoadExternalDTD(false);
  setLoadSchema(false);
  setDisableDefaultEntityResolution(true);
  setCreateEntityReferenceNodes(false);
  setCreateCommentNodes(false);
  setExitOnFirstFatalError(true);
}

xercesc::DOMDocument* DocumentParser::read() {
  static constexpr XMLCh kSourceId[] = u"document";
  xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text_.data()), text_.size(),
                                    kSourceId);
  source.setEncoding(xercesc::XMLUni::fgUTF8EncodingString);  // whatever is declared
  source.setCopyBufToStream(false);
  parse(source);
  return adoptDocument();
}

void DocumentParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                  const XMLCh* prefix,
                                  const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                  XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
  // The first byte of the latest start tag is behind us: its "<" begins no further one.
  if (elements_ > 0) cursor_.moveTo(cursor_.offset() + 1);
  [[maybe_unused]] const bool found = cursor_.moveToStartTag();
  assert(found);
  ++elements_;
  ++depth_;
  checkCounts(attributeCount);
  checkName(declaration.getFullName());
  for (XMLSize_t i = 0; i < attributeCount; ++i) checkName(attributes.elementAt(i)->getQName());

  XercesDOMParser::startElement(declaration, uri, prefix, attributes, attributeCount, isEmpty,
                                isRoot);
  // The current node is the new element, also when the call has closed it again.
  assert(getCurrentNode()->getNodeType() == xercesc::DOMNode::ELEMENT_NODE);
  positions_.add(static_cast<const DOMElement*>(getCurrentNode()), cursor_.position());
}

void DocumentParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                bool isRoot, const XMLCh* prefix) {
  --depth_;
  XercesDOMParser::endElement(declaration, uri, isRoot, prefix);
}

void DocumentParser::docCharacters(const XMLCh* text, XMLSize_t length, bool isCdata) {
  if (!isBlank({text, length})) XercesDOMParser::docCharacters(text, length, isCdata);
}

void DocumentParser::docPI(const XMLCh*, const XMLCh*) {}

void DocumentParser::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                             const XMLCh* actualEncoding) {
  const std::u16string_view number = version != nullptr ? version : u"";
  if (number != u"1.0" && number != u"1.1" && orbseq::guarded("document.XML version"))
    refuse("unknown version of XML", QuErrorFormater::Quote(toUtf8(number.substr(0, 65))));
  XercesDOMParser::XMLDecl(version, encoding, standalone, actualEncoding);
}

void DocumentParser::doctypeDecl(const xercesc::DTDElementDecl&, const XMLCh*, const XMLCh*, bool,
                                 bool) {
  if (!orbseq::guarded("document.hidden type")) return;
  const xercesc::Locator& place = *getScanner()->getLocator();
  const TextPosition at{static_cast<std::uint32_t>(place.getLineNumber()),
                        static_cast<std::uint32_t>(place.getColumnNumber())};
  throw documentError(name_, at, "document type declaration not allowed",
                      "a line end of XML 1.1 stands before it");
}

void DocumentParser::checkCounts(XMLSize_t attributeCount) const {
  if (elements_ > limits_.elements && orbseq::guarded("document.elements"))
    refuse("too many elements",
           "limit " + std::to_string(limits_.elements) + " (raise it with --max-elements)");
  if (depth_ > limits_.depth && orbseq::guarded("document.depth"))
    refuse("elements nested too deeply", "limit " + std::to_string(limits_.depth));
  if (std::cmp_greater(attributeCount, limits_.attributes) &&
      orbseq::guarded("document.attributes"))
    refuse("too many attributes",
           std::to_string(attributeCount) + ", limit " + std::to_string(limits_.attributes));
}

void DocumentParser::checkName(std::u16string_view name) {
  if (names_.contains(name)) return;
  if (bytesInUtf8(name, limits_.nameBytes) > limits_.nameBytes &&
      orbseq::guarded("document.name bytes"))
    refuse("name too long", QuErrorFormater::Quote(toUtf8(name.substr(0, 65))) + ", limit " +
                                std::to_string(limits_.nameBytes) + " bytes");
  if (names_.size() >= limits_.names && orbseq::guarded("document.names"))
    refuse("too many different names", "limit " + std::to_string(limits_.names));
  names_.emplace(name);
}

void DocumentParser::refuse(std::string_view what, const std::string& detail) const {
  throw documentError(name_, cursor_.position(), what, detail);
}

}  // namespace OrbScore

#include "scoring/hostapi/BaseTranslator.h"
#include "common/guards.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNodeList.hpp>

#include "host/ElementPositions.h"
#include "host/documentError.h"
#include "host/utf16.h"
#include "scoring/hostapi/QuErrorFormater.h"
#include "scoring/hostapi/QuException.h"
#include "scoring/hostapi/QuillonTranscoder.h"

namespace OrbScore {

static_assert(std::is_same_v<DOMDocument, xercesc::DOMDocument>);
static_assert(std::is_same_v<DOMElement, xercesc::DOMElement>);
static_assert(std::is_same_v<DOMNode, xercesc::DOMNode>);
static_assert(std::is_same_v<DOMNodeList, xercesc::DOMNodeList>);
static_assert(std::is_same_v<DomChar, XMLCh>);

namespace {

constexpr std::u16string_view kBlanks = u" \t\r\n";

std::u16string_view trimmed(std::u16string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::u16string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// False for anything but an optional minus and ASCII digits within 32 bits.
bool readInt(std::u16string_view text, std::int32_t& number) {
  std::string ascii;
  for (const char16_t unit : text) {
    if (unit != u'-' && (unit < u'0' || unit > u'9')) return false;
    ascii += static_cast<char>(unit);
  }
  const char* const end = ascii.data() + ascii.size();
  const auto [stop, error] = std::from_chars(ascii.data(), end, number);
  return error == std::errc() && stop == end;
}

[[noreturn]] void refuseInt(const std::string& shown) {
  using Limits = std::numeric_limits<std::int32_t>;
  throw QuException(shown + " is not a 32-bit integer (allowed: " + std::to_string(Limits::min()) +
                    ".." + std::to_string(Limits::max()) + ")");
}

}  // namespace

BaseTranslator::BaseTranslator() = default;
BaseTranslator::~BaseTranslator() = default;

DOMElement* BaseTranslator::GetRootElt(const DOMElement* element) {
  if (element == nullptr) return nullptr;
  return element->getOwnerDocument()->getDocumentElement();
}

DOMElement* BaseTranslator::GetFirstChildElt(const DOMElement* element) {
  return element != nullptr ? element->getFirstElementChild() : nullptr;
}

DOMElement* BaseTranslator::GetNextSiblingElt(const DOMElement* element) {
  return element != nullptr ? element->getNextElementSibling() : nullptr;
}

DOMNodeList* BaseTranslator::GetElementsByTagName(const DOMElement* element, const DomChar* name) {
  if (element == nullptr || name == nullptr) return nullptr;
  try {
    return element->getElementsByTagName(name);
  } catch (...) {
    rethrowParserError("cannot list the elements");
  }
}

DOMElement* BaseTranslator::GetElt(const DOMNodeList* list, std::size_t index) {
  if (list == nullptr) return nullptr;
  DOMNode* const node = list->item(index);
  if (node == nullptr || node->getNodeType() != DOMNode::ELEMENT_NODE) return nullptr;
  return static_cast<DOMElement*>(node);
}

bool BaseTranslator::HasTagName(const DOMElement* element, const DomChar* name) {
  if (element == nullptr || name == nullptr) return false;
  return std::u16string_view(element->getTagName()) == name;
}

const DomChar* BaseTranslator::GetAttribute(const DOMElement* element, const DomChar* name) {
  if (element == nullptr || name == nullptr) return nullptr;
  try {
    const xercesc::DOMAttr* const attribute = element->getAttributeNode(name);
    return attribute != nullptr ? attribute->getValue() : nullptr;
  } catch (...) {
    rethrowParserError("cannot read the attribute");
  }
}

std::int32_t BaseTranslator::VerifyInt(const DomChar* text) {
  if (text == nullptr) refuseInt("a missing value");
  std::int32_t number = 0;
  if (readInt(trimmed(text), number) || !orbseq::guarded("document.integer")) return number;
  constexpr std::size_t kMostShown = 65;  // more than is quoted
  refuseInt(QuErrorFormater::Quote(toUtf8(std::u16string_view(text).substr(0, kMostShown))));
}

std::string BaseTranslator::GetPosition(const DOMElement* element) {
  if (element == nullptr) return {};
  const ElementPositions* const positions =
      ElementPositions::attachedTo(*element->getOwnerDocument());
  const TextPosition* const found = positions != nullptr ? positions->find(element) : nullptr;
  if (found == nullptr) return {};
  return "line " + std::to_string(found->line) + ", column " + std::to_string(found->column);
}

void BaseTranslator::CreateTranscoder(const std::string& encoding) {
  transcoder_ = std::make_unique<QuillonTranscoder>(encoding);
}

const QuillonTranscoder& BaseTranslator::GetTranscoder() const {
  if (transcoder_ == nullptr) throw QuException("the translator has no transcoder");
  return *transcoder_;
}

}  // namespace OrbScore

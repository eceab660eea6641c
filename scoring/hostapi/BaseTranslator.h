// The host's part of a translator: the transcoder, and the helpers through which a translator
// walks a document.
//
// The helpers never change the document. Elements, lists and texts that they return belong to the
// document. Names are qualified names, compared exactly.
//
// Threads: the helpers on one document, one thread at a time.

#ifndef SCORING_HOSTAPI_BASETRANSLATOR_H_
#define SCORING_HOSTAPI_BASETRANSLATOR_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "scoring/hostapi/DomTypes.h"
#include "scoring/hostapi/ScoreTranslator.h"

namespace OrbScore {

class QuillonTranscoder;

class ORBSCORE_EXPORT BaseTranslator : public ScoreTranslator {
 public:
  BaseTranslator();
  ~BaseTranslator() override;
  BaseTranslator(const BaseTranslator&) = delete;
  BaseTranslator& operator=(const BaseTranslator&) = delete;

  // The root element of the element's document.
  static DOMElement* GetRootElt(const DOMElement* element);
  // The first child that is an element, and the next sibling that is one; null when there is none.
  static DOMElement* GetFirstChildElt(const DOMElement* element);
  static DOMElement* GetNextSiblingElt(const DOMElement* element);
  // The elements of that name below `element`, at any depth, in document order.
  static DOMNodeList* GetElementsByTagName(const DOMElement* element, const DomChar* name);
  // Entry `index` (0-based) of such a list; null beyond its end.
  static DOMElement* GetElt(const DOMNodeList* list, std::size_t index);
  static bool HasTagName(const DOMElement* element, const DomChar* name);

  // The attribute's text, or null when the element has no such attribute.
  static const DomChar* GetAttribute(const DOMElement* element, const DomChar* name);

  // The text as a 32-bit integer: optional XML blanks around it, optional minus, digits. Throws
  // QuException, quoting the text and the range, for anything else; null is refused as "missing".
  static std::int32_t VerifyInt(const DomChar* text);

  // "line 12, column 5" of the element's start tag where the document was loaded by the host, else
  // the empty text.
  static std::string GetPosition(const DOMElement* element);

 protected:
  // Makes the transcoder; throws QuException for an unknown encoding and keeps the previous one.
  void CreateTranscoder(const std::string& encoding);
  // Requires a successful CreateTranscoder.
  const QuillonTranscoder& GetTranscoder() const;

 private:
  std::unique_ptr<QuillonTranscoder> transcoder_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_BASETRANSLATOR_H_

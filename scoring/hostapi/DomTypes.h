// The DOM types in which a host hands over a document, forward-declared.
//
// They are those of Xerces-C 3.2, whose versioned namespace is written out here so that a plug-in
// needs no header of the parser. The embedded host asserts that both name the same types. A
// plug-in never calls them: it walks a document through the helpers of BaseTranslator.

#ifndef SCORING_HOSTAPI_DOMTYPES_H_
#define SCORING_HOSTAPI_DOMTYPES_H_

namespace xercesc_3_2 {
class DOMDocument;
class DOMElement;
class DOMNode;
class DOMNodeList;
}  // namespace xercesc_3_2

namespace OrbScore {

using xercesc_3_2::DOMDocument;
using xercesc_3_2::DOMElement;
using xercesc_3_2::DOMNode;
using xercesc_3_2::DOMNodeList;

using DomChar = char16_t;  // one UTF-16 unit of DOM text

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_DOMTYPES_H_

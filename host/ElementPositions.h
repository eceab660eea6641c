// Where the start tags of a document stand.
//
// Attached to the document itself, so that it is found from any element. 16 bytes an element.
//
// Lifecycle. Filled while the document is parsed, closed once, attached, and never changed again.
// It must live as long as the document that it is attached to.
//
// Threads: once closed, any number of readers.

#ifndef HOST_ELEMENTPOSITIONS_H_
#define HOST_ELEMENTPOSITIONS_H_

#include <vector>

#include "host/TextPosition.h"
#include "scoring/hostapi/DomTypes.h"

namespace OrbScore {

class ElementPositions {
 public:
  // Each element once.
  void add(const DOMElement* element, TextPosition position);

  // Makes the table ready for find(); after the last add().
  void close();

  // Null for an element that was never added.
  const TextPosition* find(const DOMElement* element) const noexcept;

  // Makes attachedTo(document) answer this table.
  void attachTo(DOMDocument& document);

  // Null when the document has none: another program parsed it.
  static const ElementPositions* attachedTo(const DOMDocument& document);

 private:
  struct Entry {
    const DOMElement* element;
    TextPosition position;
  };
  std::vector<Entry> entries_;  // once closed: ascending by address
};

}  // namespace OrbScore

#endif  // HOST_ELEMENTPOSITIONS_H_

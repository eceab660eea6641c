// A place in a document: an element on the way from the lattice's root, told in errors as
// "SeqAssociationLattice/LatticeLevel[3]/Sequence[17]/@numberOfSets".
//
// Places are made on the stack while a reader descends; each points to its parent's, which must
// outlive it. They cost nothing until an error is told.

#ifndef DOCUMENT_DOMPLACE_H_
#define DOCUMENT_DOMPLACE_H_

#include <cstdint>
#include <limits>
#include <string>

#include "scoring/hostapi/DomTypes.h"

namespace orbseq {

class DomPlace {
 public:
  // The root of the way.
  DomPlace(const char* name, const OrbScore::DOMElement* element);
  // The index-th (1-based) element of that name below `parent`; index 0: there is only one.
  DomPlace(const DomPlace& parent, const char* name, std::int64_t index,
           const OrbScore::DOMElement* element);

  const OrbScore::DOMElement* element() const noexcept { return element_; }
  const char* name() const noexcept { return name_; }

  // The attribute as a 32-bit integer within lowest .. highest. Throws QuException.
  std::int32_t integer(const char16_t* attribute,
                       std::int32_t lowest = std::numeric_limits<std::int32_t>::min(),
                       std::int32_t highest = std::numeric_limits<std::int32_t>::max()) const;

  // The attribute's text. Throws QuException when it is missing.
  const OrbScore::DomChar* text(const char16_t* attribute) const;

  // Throws QuException: this place, or its attribute where one is named, and the detail.
  [[noreturn]] void refuse(const std::string& detail) const;
  [[noreturn]] void refuse(const char16_t* attribute, const std::string& detail) const;

 private:
  std::string path() const;

  const DomPlace* parent_;
  const char* name_;
  std::int64_t index_;
  const OrbScore::DOMElement* element_;
};

// How many of the elements from `first` on, each the next sibling of the one before, have the name
// (any name when it is null), counted up to `enough`.
std::int64_t countSiblings(const OrbScore::DOMElement* first, const char16_t* name,
                           std::int64_t enough);

}  // namespace orbseq

#endif  // DOCUMENT_DOMPLACE_H_

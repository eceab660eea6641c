#include "host/ElementPositions.h"

#include <algorithm>
#include <functional>
#include <xercesc/dom/DOMDocument.hpp>

namespace OrbScore {
namespace {

constexpr const char16_t* kKey = u"OrbScore element positions";

}  // namespace

void ElementPositions::add(const DOMElement* element, TextPosition position) {
  entries_.push_back({element, position});
}

void ElementPositions::close() {
  std::ranges::sort(entries_, std::less<>(), &Entry::element);
  entries_.shrink_to_fit();
}

const TextPosition* ElementPositions::find(const DOMElement* element) const noexcept {
  const auto found = std::ranges::lower_bound(entries_, element, std::less<>(), &Entry::element);
  return found != entries_.end() && found->element == element ? &found->position : nullptr;
}

void ElementPositions::attachTo(DOMDocument& document) {
  document.setUserData(kKey, this, nullptr);
}

const ElementPositions* ElementPositions::attachedTo(const DOMDocument& document) {
  return static_cast<const ElementPositions*>(document.getUserData(kKey));
}

}  // namespace OrbScore

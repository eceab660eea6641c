#include "document/DomPlace.h"

#include <string_view>

#include "common/guards.h"
#include "scoring/hostapi/BaseTranslator.h"
#include "scoring/hostapi/QuErrorFormater.h"
#include "scoring/hostapi/QuException.h"

namespace orbseq {

using OrbScore::BaseTranslator;
using OrbScore::QuErrorFormater;
using OrbScore::QuException;

namespace {

std::string asciiOf(std::u16string_view name) {  // our own attribute names
  std::string ascii;
  for (const char16_t unit : name) ascii += static_cast<char>(unit);
  return ascii;
}

}  // namespace

DomPlace::DomPlace(const char* name, const OrbScore::DOMElement* element)
    : parent_(nullptr), name_(name), index_(0), element_(element) {}

DomPlace::DomPlace(const DomPlace& parent, const char* name, std::int64_t index,
                   const OrbScore::DOMElement* element)
    : parent_(&parent), name_(name), index_(index), element_(element) {}

std::string DomPlace::path() const {
  std::string path = parent_ != nullptr ? parent_->path() + "/" : std::string();
  path += name_;
  if (index_ > 0) path += "[" + std::to_string(index_) + "]";
  return path;
}

void DomPlace::refuse(const std::string& detail) const { refuse(nullptr, detail); }

void DomPlace::refuse(const char16_t* attribute, const std::string& detail) const {
  std::string where = path();
  if (attribute != nullptr) where += "/@" + asciiOf(attribute);
  const std::string position = BaseTranslator::GetPosition(element_);
  if (!position.empty()) where += " (" + position + ")";
  throw QuException(QuErrorFormater::Format("lattice refused", where, detail));
}

const OrbScore::DomChar* DomPlace::text(const char16_t* attribute) const {
  const OrbScore::DomChar* const found = BaseTranslator::GetAttribute(element_, attribute);
  if (found == nullptr && guarded("document.missing ", asciiOf(attribute).c_str()))
    refuse(attribute, "attribute missing");
  return found;
}

std::int32_t DomPlace::integer(const char16_t* attribute, std::int32_t lowest,
                               std::int32_t highest) const {
  const OrbScore::DomChar* const found = text(attribute);
  std::int32_t value = 0;
  try {
    value = BaseTranslator::VerifyInt(found);
  } catch (const QuException& notAnInteger) {
    refuse(attribute, notAnInteger.what());
  }
  if ((value < lowest || value > highest) &&
      guarded("document.range ", name_, ("/@" + asciiOf(attribute)).c_str()))
    refuse(attribute, std::to_string(value) + " is " + QuErrorFormater::Outside(lowest, highest));
  return value;
}

std::int64_t countSiblings(const OrbScore::DOMElement* first, const char16_t* name,
                           std::int64_t enough) {
  std::int64_t count = 0;
  for (const OrbScore::DOMElement* element = first;
       element != nullptr && count < enough &&
       (name == nullptr || BaseTranslator::HasTagName(element, name));
       element = BaseTranslator::GetNextSiblingElt(element))
    ++count;
  return count;
}

}  // namespace orbseq

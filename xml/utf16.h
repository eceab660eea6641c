// UTF-16 to UTF-8, unit by unit.

#ifndef XML_UTF16_H_
#define XML_UTF16_H_

#include <string>
#include <string_view>

namespace OrbXML_830 {

// Deliberate: unpaired surrogates are not repaired. A high one gives the first two bytes of a
// four-byte character and keeps its last two bits (0 at first); a low one gives the last two bytes
// with the bits that were kept.
std::string utf8FromUtf16(std::u16string_view units);

}  // namespace OrbXML_830

#endif  // XML_UTF16_H_

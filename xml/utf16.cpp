#include "xml/utf16.h"

#include <cstdint>

namespace OrbXML_830 {

std::string utf8FromUtf16(std::u16string_view units) {
  std::string utf8;
  utf8.reserve(units.size());
  std::uint32_t kept = 0;  // the low bits of the latest high surrogate
  const auto put = [&utf8](std::uint32_t byte) { utf8 += static_cast<char>(byte); };
  for (const char16_t unit : units) {
    const std::uint32_t c = unit;
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | (c >> 6));
      put(0x80 | (c & 0x3F));
    } else if (c < 0xD800 || c > 0xDFFF) {
      put(0xE0 | (c >> 12));
      put(0x80 | ((c >> 6) & 0x3F));
      put(0x80 | (c & 0x3F));
    } else if (c < 0xDC00) {
      const std::uint32_t h = c & 0x3FF;
      const std::uint32_t u = (h >> 6) + 1;
      put(0xF0 | (u >> 2));
      put(0x80 | ((u & 3) << 4) | ((h >> 2) & 0xF));
      kept = h & 3;
    } else {
      const std::uint32_t l = c & 0x3FF;
      put(0x80 | (kept << 4) | (l >> 6));
      put(0x80 | (l & 0x3F));
    }
  }
  return utf8;
}

}  // namespace OrbXML_830

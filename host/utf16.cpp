#include "host/utf16.h"

#include "common/utf8.h"

namespace OrbScore {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

std::string toUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    char32_t code = unit;
    if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1]))
      code = 0x10000 + ((char32_t{unit} & 0x3FF) << 10) + (char32_t{text[++i]} & 0x3FF);
    else if (isHighSurrogate(unit) || isLowSurrogate(unit))
      code = kReplacement;
    orbseq::appendUtf8(out, code);
  }
  return out;
}

}  // namespace OrbScore

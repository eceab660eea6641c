#include "io/utf8.h"

namespace orbseq {

namespace {

// What the first byte of a sequence promises.
struct Lead {
  std::size_t length;
  char32_t bits;
  char32_t lowest;  // a smaller code is an overlong form
};

Lead leadOf(unsigned char byte) noexcept {
  if (byte < 0x80) return {1, byte, 0};
  if (byte >= 0xC2 && byte < 0xE0) return {2, byte & 0x1FU, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return {3, byte & 0x0FU, 0x800};
  if (byte >= 0xF0 && byte < 0xF5) return {4, byte & 0x07U, 0x10000};
  return {0, 0, 0};
}

}  // namespace

Utf8Character firstCharacter(std::string_view text) noexcept {
  if (text.empty()) return {};
  const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
  if (lead.length == 0 || lead.length > text.size()) return {};

  char32_t code = lead.bits;
  for (std::size_t i = 1; i < lead.length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80U) return {};
    code = (code << 6U) | (byte & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < lead.lowest || code > 0x10FFFF || surrogate) return {};
  return {code, lead.length};
}

std::size_t firstInvalidUtf8(std::string_view text) noexcept {
  std::size_t offset = 0;
  while (offset < text.size()) {
    if (static_cast<unsigned char>(text[offset]) < 0x80) {
      ++offset;
      continue;
    }
    const Utf8Character character = firstCharacter(text.substr(offset));
    if (character.length == 0) return offset;
    offset += character.length;
  }
  return std::string_view::npos;
}

}  // namespace orbseq

#include "host/utf8.h"

namespace OrbScore {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void append(std::string& out, char32_t character) {
  const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
  if (character < 0x80) {
    byte(character);
  } else if (character < 0x800) {
    byte(0xC0 | (character >> 6));
    byte(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    byte(0xE0 | (character >> 12));
    byte(0x80 | ((character >> 6) & 0x3F));
    byte(0x80 | (character & 0x3F));
  } else {
    byte(0xF0 | (character >> 18));
    byte(0x80 | ((character >> 12) & 0x3F));
    byte(0x80 | ((character >> 6) & 0x3F));
    byte(0x80 | (character & 0x3F));
  }
}

}  // namespace

std::size_t characterBytes(std::string_view text, std::size_t at) noexcept {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(at);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;

  const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() - at < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(at + i) & 0xC0) != 0x80) return 0;

  // The second byte's range is narrower after some first bytes: overlong forms, surrogates, and
  // numbers above U+10FFFF.
  const unsigned second = byte(at + 1);
  if (first == 0xE0 && second < 0xA0) return 0;
  if (first == 0xED && second > 0x9F) return 0;
  if (first == 0xF0 && second < 0x90) return 0;
  if (first == 0xF4 && second > 0x8F) return 0;
  return length;
}

std::size_t firstInvalidByte(std::string_view text) noexcept {
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = characterBytes(text, at);
    if (length == 0) return at;
    at += length;
  }
  return at;
}

std::string toUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      append(out, 0x10000 + ((char32_t{unit} & 0x3FF) << 10) + (char32_t{text[i + 1]} & 0x3FF));
      ++i;
    } else {
      append(out, isHighSurrogate(unit) || isLowSurrogate(unit) ? kReplacement : char32_t{unit});
    }
  }
  return out;
}

}  // namespace OrbScore

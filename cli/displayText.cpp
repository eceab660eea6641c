#include "cli/displayText.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "common/utf8.h"

namespace orbseq {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

struct Range {
  char32_t first;
  char32_t last;
};

// Blocks of combining marks and of characters without width.
constexpr std::array<Range, 8> kNarrow{{{0x0300, 0x036F},
                                        {0x0483, 0x0489},
                                        {0x0591, 0x05BD},
                                        {0x1AB0, 0x1AFF},
                                        {0x1DC0, 0x1DFF},
                                        {0x200B, 0x200F},
                                        {0x20D0, 0x20FF},
                                        {0xFE00, 0xFE0F}}};

// Blocks of wide characters.
constexpr std::array<Range, 11> kWide{{{0x1100, 0x115F},
                                       {0x2E80, 0x303E},
                                       {0x3041, 0xA4CF},
                                       {0xAC00, 0xD7A3},
                                       {0xF900, 0xFAFF},
                                       {0xFE30, 0xFE6F},
                                       {0xFF00, 0xFF60},
                                       {0xFFE0, 0xFFE6},
                                       {0x1F300, 0x1F64F},
                                       {0x1F680, 0x1F9FF},
                                       {0x20000, 0x3FFFD}}};

template <std::size_t N>
bool isIn(const std::array<Range, N>& ranges, char32_t code) noexcept {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& r) { return code >= r.first && code <= r.last; });
}

bool steersTerminal(char32_t code) noexcept {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x202A && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069) || code == 0x2028 || code == 0x2029;
}

std::size_t widthOf(char32_t code) noexcept {
  if (isIn(kNarrow, code)) return 0;
  return isIn(kWide, code) ? 2 : 1;
}

// The next character of the text, which is shortened by it; a bad byte gives U+FFFD.
char32_t take(std::string_view& text) noexcept {
  const Utf8Character character = firstCharacter(text);
  text.remove_prefix(std::max<std::size_t>(character.length, 1));
  return character.length == 0 ? U'\uFFFD' : character.code;
}

}  // namespace

std::size_t displayWidth(std::string_view text) noexcept {
  std::size_t width = 0;
  while (!text.empty()) width += widthOf(take(text));
  return width;
}

std::string printable(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) {
    const Utf8Character character = firstCharacter(text);
    if (character.length == 0 || steersTerminal(character.code))
      shown += kReplacement;
    else
      shown += text.substr(0, character.length);
    text.remove_prefix(std::max<std::size_t>(character.length, 1));
  }
  return shown;
}

std::string escapedControls(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F)
      escaped += c;
    else
      escaped += {'\\', 'x', kDigits[byte / 16U], kDigits[byte % 16U]};
  }
  return escaped;
}

std::string fitted(std::string_view text, std::size_t width) {
  assert(width > 0);
  const std::size_t whole = displayWidth(text);
  if (whole <= width) return std::string(text) + std::string(width - whole, ' ');

  std::size_t used = 0;
  std::string_view rest = text;
  for (;;) {
    std::string_view after = rest;
    const std::size_t next = widthOf(take(after));
    if (used + next > width - 1) break;
    used += next;
    rest = after;
  }
  return std::string(text.substr(0, text.size() - rest.size())) + std::string(kEllipsis) +
         std::string(width - 1 - used, ' ');
}

}  // namespace orbseq

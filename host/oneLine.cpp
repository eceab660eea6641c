#include "host/oneLine.h"

#include "common/utf8.h"

namespace OrbScore {
namespace {

void appendEscaped(std::string& out, unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  switch (byte) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    default:
      break;
  }
  out += "\\x";
  out += kDigits[byte >> 4];
  out += kDigits[byte & 0x0F];
}

// Requires one valid character.
bool mustBeEscaped(std::string_view character, bool quoted) {
  const auto byte = [character](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  switch (character.size()) {
    case 1:
      return byte(0) < 0x20 || byte(0) == 0x7F || (quoted && (byte(0) == '"' || byte(0) == '\\'));
    case 2:  // U+0080 .. U+009F
      return byte(0) == 0xC2 && byte(1) < 0xA0;
    case 3:  // U+2028 .. U+202E, U+2066 .. U+2069
      return byte(0) == 0xE2 && ((byte(1) == 0x80 && byte(2) >= 0xA8 && byte(2) <= 0xAE) ||
                                 (byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9));
    default:
      return false;
  }
}

}  // namespace

std::string oneLine(std::string_view text, std::size_t maxBytes, bool quoted) {
  std::string out(quoted ? "\"" : "");
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t length = orbseq::firstCharacter(text.substr(at)).length;
    const std::string_view character = text.substr(at, length == 0 ? 1 : length);
    if (at + character.size() > maxBytes) break;
    if (length == 0 || mustBeEscaped(character, quoted))
      for (const char byte : character) appendEscaped(out, static_cast<unsigned char>(byte));
    else
      out += character;
    at += character.size();
  }
  if (at < text.size()) out += "...";
  if (quoted) out += '"';
  return out;
}

}  // namespace OrbScore

// UTF-8 and UTF-16, character by character.

#ifndef HOST_UTF8_H_
#define HOST_UTF8_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace OrbScore {

// The bytes (1 to 4) of the character that begins at `at`, or 0 when none does: a stray or missing
// continuation byte, an overlong form, a surrogate, a number above U+10FFFF. Requires
// at < text.size().
std::size_t characterBytes(std::string_view text, std::size_t at) noexcept;

// The offset of the first byte that begins no character, or text.size().
std::size_t firstInvalidByte(std::string_view text) noexcept;

// The text in UTF-8; a surrogate without its other half becomes U+FFFD.
std::string toUtf8(std::u16string_view text);

// Whether the unit is the first, or the second, half of a character of two units.
constexpr bool isHighSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }

}  // namespace OrbScore

#endif  // HOST_UTF8_H_

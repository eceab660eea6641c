// UTF-16, the parser's form of text, to UTF-8.

#ifndef HOST_UTF16_H_
#define HOST_UTF16_H_

#include <string>
#include <string_view>

namespace OrbScore {

// The text in UTF-8; a surrogate without its other half becomes U+FFFD.
std::string toUtf8(std::u16string_view text);

// Whether the unit is the first, or the second, half of a character of two units.
constexpr bool isHighSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xD800; }
constexpr bool isLowSurrogate(char16_t unit) noexcept { return (unit & 0xFC00) == 0xDC00; }

}  // namespace OrbScore

#endif  // HOST_UTF16_H_

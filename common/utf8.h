// UTF-8, character by character, as far as readers, messages and displays need it.
//
// Valid is what the standard calls well-formed: overlong forms, surrogates, codes above U+10FFFF
// and cut sequences are not. Threads: any.

#ifndef COMMON_UTF8_H_
#define COMMON_UTF8_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace orbseq {

// One character at the beginning of a text.
struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 0;  // bytes; 0: the text is empty or does not begin with valid UTF-8
};

// The character that `text` begins with.
Utf8Character firstCharacter(std::string_view text) noexcept;

// The offset of the first byte that is no part of valid UTF-8, or npos.
std::size_t firstInvalidUtf8(std::string_view text) noexcept;

// Appends the character. Requires a code below 0x110000 that is no surrogate.
void appendUtf8(std::string& out, char32_t code);

}  // namespace orbseq

#endif  // COMMON_UTF8_H_

// UTF-8, as far as readers and displays need it.

#ifndef IO_UTF8_H_
#define IO_UTF8_H_

#include <cstddef>
#include <string_view>

namespace orbseq {

// One character at the beginning of a text.
struct Utf8Character {
  char32_t code = 0;
  std::size_t length = 0;  // bytes; 0: the text is empty or does not begin with valid UTF-8
};

// The character that `text` begins with. Overlong forms, surrogates, codes above U+10FFFF and cut
// sequences are not valid.
Utf8Character firstCharacter(std::string_view text) noexcept;

// The offset of the first byte that is no part of valid UTF-8, or npos.
std::size_t firstInvalidUtf8(std::string_view text) noexcept;

}  // namespace orbseq

#endif  // IO_UTF8_H_

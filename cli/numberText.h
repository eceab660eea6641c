// Numbers as text, the same bytes in every locale.

#ifndef CLI_NUMBERTEXT_H_
#define CLI_NUMBERTEXT_H_

#include <charconv>
#include <concepts>
#include <string>

namespace orbseq {

inline void appendInteger(std::string& out, std::integral auto value) {
  char digits[24];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

// 17 significant digits: the text reads back as exactly this number.
inline void appendExact(std::string& out, double value) {
  char digits[32];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 17).ptr;
  out.append(digits, end);
}

}  // namespace orbseq

#endif  // CLI_NUMBERTEXT_H_

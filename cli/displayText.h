// Text as a terminal shows it: columns instead of bytes, and nothing that steers the terminal.
//
// Texts are UTF-8; a byte that is not is shown as one replacement character.

#ifndef CLI_DISPLAYTEXT_H_
#define CLI_DISPLAYTEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace orbseq {

// The columns that the text takes: 0 for a combining mark, 2 for a wide character of East Asia and
// for an emoji, 1 for any other.
std::size_t displayWidth(std::string_view text) noexcept;

// The text with each control character (also DEL, U+0080..U+009F, and the marks that turn the
// direction of writing) and each byte that is not UTF-8 replaced by U+FFFD.
std::string printable(std::string_view text);

// The text with its bytes below 32 and DEL written as "\x0A"; everything else stands.
std::string escapedControls(std::string_view text);

// The text in exactly `width` columns: blanks are added at the end; a longer text is cut and ends
// in U+2026 (an ellipsis). Requires width > 0 and printable text.
std::string fitted(std::string_view text, std::size_t width);

}  // namespace orbseq

#endif  // CLI_DISPLAYTEXT_H_

// Text of strangers, made fit for one line of an error message.

#ifndef HOST_ONELINE_H_
#define HOST_ONELINE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace OrbScore {

// `text` as valid UTF-8 on one line. Control characters, line and paragraph separators and the
// marks that turn the writing direction are escaped (\n, \x1B), byte by byte, and so is every byte
// that is not UTF-8. What goes beyond `maxBytes` bytes of the text is replaced by "...". With
// `quoted`, the result stands in double quotes, and quotes and backslashes are escaped too.
std::string oneLine(std::string_view text, std::size_t maxBytes, bool quoted);

}  // namespace OrbScore

#endif  // HOST_ONELINE_H_

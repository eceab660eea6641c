// A place in a document, as people count it.

#ifndef HOST_TEXTPOSITION_H_
#define HOST_TEXTPOSITION_H_

#include <cstdint>

namespace OrbScore {

struct TextPosition {
  std::uint32_t line = 1;    // from 1; a line ends with LF, CR LF or CR
  std::uint32_t column = 1;  // from 1, in characters

  friend bool operator==(const TextPosition&, const TextPosition&) = default;
};

}  // namespace OrbScore

#endif  // HOST_TEXTPOSITION_H_

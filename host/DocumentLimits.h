// How large a document may be. What goes beyond a limit is refused with an error that tells the
// limit and, for the two that a user can raise from the command line, the option's name.
//
// A parsed document takes about 20 to 90 times its bytes of memory.

#ifndef HOST_DOCUMENTLIMITS_H_
#define HOST_DOCUMENTLIMITS_H_

#include <cstddef>

namespace OrbScore {

struct DocumentLimits {
  // Bytes of the whole document; --max-document-bytes.
  std::size_t bytes = std::size_t{64} << 20;
  // Elements from the root, counted, to the innermost.
  int depth = 64;
  // Attributes of one element.
  int attributes = 64;
  // Elements of the whole document; --max-elements.
  std::size_t elements = 4'000'000;
  // Bytes, in UTF-8, of the name of an element or an attribute.
  std::size_t nameBytes = 1024;
  // Different names of elements and attributes together. The parser's time for a name grows with
  // the number of names, so that a document made of names alone would take hours.
  std::size_t names = 1024;
};

}  // namespace OrbScore

#endif  // HOST_DOCUMENTLIMITS_H_

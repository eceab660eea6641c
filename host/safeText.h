// From the bytes of a document to text that is safe to hand to the parser.
//
// What comes out is valid UTF-8 without byte order mark and NUL, whatever the encoding was, and
// holds no document type declaration before the root element, so that the parser's code for DTDs
// and external entities never runs. Lines are those of the document; columns too, as characters.

#ifndef HOST_SAFETEXT_H_
#define HOST_SAFETEXT_H_

#include <string>

namespace OrbScore {

// `name` is what errors call the document. Throws QuException with line and column for an encoding
// that is not read, bytes that are not of it, and a document type declaration that is not accepted.
std::string safeText(std::string bytes, const std::string& name);

}  // namespace OrbScore

#endif  // HOST_SAFETEXT_H_

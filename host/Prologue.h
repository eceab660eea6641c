// What stands before the root element: XML declaration, comments, processing instructions and the
// document type declaration.
//
// Reads UTF-8, or the ASCII part of an encoding that contains ASCII. Judges only what it must: all
// else is left to the parser, which sees the same characters and refuses what is malformed.

#ifndef HOST_PROLOGUE_H_
#define HOST_PROLOGUE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace OrbScore {

class Prologue {
 public:
  struct Encoding {
    std::string_view name;   // empty: none is declared
    std::size_t offset = 0;  // where the name stands in the text
  };

  // The encoding that the XML declaration at the beginning of the text declares.
  static Encoding declaredEncoding(std::string_view text) noexcept;

  // Overwrites a document type declaration without internal subset by blanks; line ends stay.
  // Throws QuException, with line and column in the document `documentName`, for one with an
  // internal subset, a malformed one and a second one.
  static void blankDocumentType(std::string& text, const std::string& documentName);
};

}  // namespace OrbScore

#endif  // HOST_PROLOGUE_H_

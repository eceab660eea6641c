// Walks forward over a text and knows line and column of where it stands.
//
// A view: the text must outlive the cursor. Moving costs time in proportion to the distance, so
// asking for any number of places in ascending order costs one pass.

#ifndef HOST_TEXTCURSOR_H_
#define HOST_TEXTCURSOR_H_

#include <cstddef>
#include <string_view>

#include "host/TextPosition.h"

namespace OrbScore {

class TextCursor {
 public:
  explicit TextCursor(std::string_view text) noexcept : text_(text) {}

  std::size_t offset() const noexcept { return offset_; }
  TextPosition position() const noexcept { return position_; }

  // Requires offset() <= offset <= size of the text.
  void moveTo(std::size_t offset) noexcept;

  // Moves to the "<" of the next start tag, beginning with the one at offset() itself; comments,
  // instructions, CDATA sections, end tags and declarations are passed over. False, at the end of
  // the text, when there is none.
  bool moveToStartTag() noexcept;

 private:
  std::string_view text_;
  std::size_t offset_ = 0;
  TextPosition position_;
};

}  // namespace OrbScore

#endif  // HOST_TEXTCURSOR_H_

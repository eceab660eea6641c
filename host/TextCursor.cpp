#include "host/TextCursor.h"

namespace OrbScore {
namespace {

// Where the markup that begins at `at`, with "<", ends if it is no start tag; else npos.
std::size_t endOfOther(std::string_view text, std::size_t at) {
  struct Kind {
    std::string_view begin;
    std::string_view end;
  };
  constexpr Kind kKinds[] = {
      {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"</", ">"}, {"<!", ">"}};
  for (const Kind& kind : kKinds) {
    if (!text.substr(at).starts_with(kind.begin)) continue;
    const std::size_t end = text.find(kind.end, at + kind.begin.size());
    return end == std::string_view::npos ? text.size() : end + kind.end.size();
  }
  return std::string_view::npos;
}

}  // namespace

void TextCursor::moveTo(std::size_t offset) noexcept {
  for (; offset_ < offset; ++offset_) {
    const char byte = text_[offset_];
    const bool lineEnds =
        byte == '\n' ||
        (byte == '\r' && (offset_ + 1 == text_.size() || text_[offset_ + 1] != '\n'));
    if (lineEnds) {
      ++position_.line;
      position_.column = 1;
    } else if (byte != '\r' && (static_cast<unsigned char>(byte) & 0xC0) != 0x80) {
      ++position_.column;  // neither the CR of a CR LF nor a continuation byte
    }
  }
}

bool TextCursor::moveToStartTag() noexcept {
  std::size_t at = offset_;
  for (;;) {
    at = text_.find('<', at);
    if (at == std::string_view::npos) {
      moveTo(text_.size());
      return false;
    }
    const std::size_t end = endOfOther(text_, at);
    if (end == std::string_view::npos) break;
    at = end;
  }
  moveTo(at);
  return true;
}

}  // namespace OrbScore

// A line split into tokens, each by its own separators: like strtok, without its hidden state.
//
// A token is found by skipping leading separators; it ends at the next separator, which is
// consumed, or at the end of the line. A NUL ends the line.
//
// Threads: a value; any number of tokenizers may run at once.

#ifndef XML_LINETOKENIZER_H_
#define XML_LINETOKENIZER_H_

#include <cstddef>
#include <optional>
#include <string_view>

namespace OrbXML_830 {

class LineTokenizer {
 public:
  // The line must outlive the tokenizer and its tokens.
  explicit LineTokenizer(std::string_view line) noexcept : line_(line.substr(0, line.find('\0'))) {}

  // The next token, or nothing when only separators are left.
  std::optional<std::string_view> next(std::string_view separators) noexcept;

  // Whether the next token is there and equal.
  bool nextIs(std::string_view token, std::string_view separators) noexcept {
    return next(separators) == token;
  }

  // What stands before the latest token, and behind the separator that ended it.
  std::string_view before() const noexcept { return line_.substr(0, begin_); }
  std::string_view rest() const noexcept { return line_.substr(position_); }

 private:
  std::string_view line_;
  std::size_t begin_ = 0;     // of the latest token
  std::size_t position_ = 0;  // where the next search begins
};

}  // namespace OrbXML_830

#endif  // XML_LINETOKENIZER_H_

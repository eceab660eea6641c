// Histories as text, strictly: (1 2)(3), or with times (1 2 [2.5]) (3 [4]).
//
// Item sets in parentheses, oldest first; items are 0 to 2147483647 in decimal digits, separated by
// blanks; a time in brackets, as io/logTime.h reads it, may stand among them. Blanks may stand
// between the sets, and a set may be empty. Anything else is refused, unlike by the scoring module,
// which leaves out what it does not understand: what a model is made from, or judged by, must not
// be guessed.

#ifndef IO_HISTORYTEXT_H_
#define IO_HISTORYTEXT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace orbseq {

struct HistorySet {
  std::vector<std::int32_t> items;  // as they come
  std::optional<double> time;
};

// What is wrong with a text, and where.
class HistoryTextError : public std::runtime_error {
 public:
  HistoryTextError(std::size_t byte, const std::string& detail)
      : std::runtime_error("byte " + std::to_string(byte + 1) + ": " + detail) {}
};

// Throws HistoryTextError.
std::vector<HistorySet> parseHistory(std::string_view text);

// Appends "(1 2)".
void appendItemSet(std::string& out, std::span<const std::int32_t> items);

}  // namespace orbseq

#endif  // IO_HISTORYTEXT_H_

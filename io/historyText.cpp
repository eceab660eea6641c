#include "io/historyText.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "common/guards.h"
#include "io/logTime.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

class Scanner {
 public:
  explicit Scanner(std::string_view text) noexcept : text_(text) {}

  std::vector<HistorySet> read() {
    std::vector<HistorySet> sets;
    for (skipBlanks(); position_ < text_.size(); skipBlanks()) {
      if (text_[position_] != '(' && guarded("history.begin"))
        refuse("\"(\" should begin an item set");
      ++position_;
      sets.push_back(readSet());
    }
    return sets;
  }

 private:
  [[noreturn]] void refuse(const std::string& detail) const {
    throw HistoryTextError(position_, detail);
  }

  void skipBlanks() noexcept {
    position_ = std::min(text_.find_first_not_of(" \t", position_), text_.size());
  }

  HistorySet readSet() {
    HistorySet set;
    for (skipBlanks(); position_ < text_.size(); skipBlanks()) {
      const char c = text_[position_];
      if (c == ')') {
        ++position_;
        return set;
      }
      if (c == '[')
        readTime(set);
      else if (isDigit(c))
        readItem(set);
      else if (guarded("history.item set"))
        refuse("an item, a time in brackets or \")\" should stand here");
    }
    refuse("the item set is not closed");
  }

  void readItem(HistorySet& set) {
    const char* const begin = text_.data() + position_;
    std::int32_t item = 0;
    const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), item);
    if (error != std::errc() && guarded("history.item")) {
      const auto digits = std::find_if_not(begin, text_.data() + text_.size(), isDigit);
      refuse("item " + std::string(begin, std::min(digits, begin + 64)) +
             " is outside 0..2147483647");
    }
    set.items.push_back(item);
    position_ = static_cast<std::size_t>(end - text_.data());
  }

  void readTime(HistorySet& set) {
    if (set.time && guarded("history.second time")) refuse("a second time in one item set");
    const std::size_t end = text_.find(']', position_);
    if (end == std::string_view::npos && guarded("history.open time"))
      refuse("the time is not closed");
    const std::string_view stamp = text_.substr(position_ + 1, end - position_ - 1);
    set.time = logTimeOf(stamp);
    if (!set.time && guarded("history.time"))
      refuse(OrbScore::QuErrorFormater::Quote(std::string(stamp)) +
             " is neither a number nor a date and time");
    position_ = end + 1;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

std::vector<HistorySet> parseHistory(std::string_view text) { return Scanner(text).read(); }

void appendItemSet(std::string& out, std::span<const std::int32_t> items) {
  out += '(';
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) out += ' ';
    out += std::to_string(static_cast<std::uint32_t>(items[i]));
  }
  out += ')';
}

}  // namespace orbseq

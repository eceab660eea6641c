// Logs in lines of words: a customer a line (spmf), or a basket a line.

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

#include "common/guards.h"
#include "common/utf8.h"
#include "io/IoError.h"
#include "io/LineReader.h"
#include "io/LogReading.h"
#include "io/logTime.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

// What no label can hold.
struct BadByte {
  std::size_t column = 0;  // 0: there is none
  const char* what = nullptr;
};

BadByte badByteIn(std::string_view line) noexcept {
  const std::size_t invalid = firstInvalidUtf8(line);
  const std::size_t nul = line.substr(0, invalid).find('\0');
  if (nul != std::string_view::npos && guarded("log.NUL")) return {nul + 1, "the text holds a NUL"};
  if (invalid != std::string_view::npos && guarded("log.UTF-8"))
    return {invalid + 1, "the text is no UTF-8"};
  return {};
}

std::string quoted(std::string_view text) { return OrbScore::QuErrorFormater::Quote(text); }

// The words of a line, separated by blanks and tabs.
class Words {
 public:
  explicit Words(std::string_view line) noexcept : line_(line) {}

  // The next word; empty at the end.
  std::string_view next() noexcept {
    const std::size_t begin = std::min(line_.find_first_not_of(" \t\r", position_), line_.size());
    position_ = std::min(line_.find_first_of(" \t\r", begin), line_.size());
    begin_ = begin;
    return line_.substr(begin, position_ - begin);
  }
  std::size_t column() const noexcept { return begin_ + 1; }  // of the latest word

 private:
  std::string_view line_;
  std::size_t position_ = 0;
  std::size_t begin_ = 0;
};

std::optional<std::int32_t> integerOf(std::string_view word) noexcept {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return value;
}

// One customer's line. Sets without a time of their own have the times 1, 2, 3 ..
class SpmfLine {
 public:
  SpmfLine(const LineReader& lines, LogBuilder& builder)
      : words_(lines.line()), lines_(lines), builder_(builder) {}

  void read() {
    builder_.beginCustomer(std::to_string(lines_.number()));
    for (std::string_view word = words_.next(); !word.empty(); word = words_.next()) {
      if (word == "-2") return end();
      if (word == "-1")
        isInSet_ = false;
      else if (word.front() == '<')
        readTime(word);
      else
        readItem(word);
    }
    if (guarded("spmf.end")) refuse("the line does not end with -2");
  }

 private:
  [[noreturn]] void refuse(const std::string& detail) const {
    throw InputError(lines_.source().name(), lines_.number(), words_.column(), detail);
  }

  void end() {
    if (isInSet_ && guarded("spmf.open set")) refuse("-2 stands where -1 should end the item set");
    if (!words_.next().empty() && guarded("spmf.behind the end")) refuse("text behind -2");
  }

  void readTime(std::string_view word) {
    const auto time = word.size() > 2 && word.back() == '>'
                          ? logTimeOf(word.substr(1, word.size() - 2))
                          : std::nullopt;
    if ((!time || isInSet_) && guarded("spmf.time"))
      refuse(quoted(word) + " is no time before an item set");
    time_ = *time;
    hasTime_ = true;
  }

  void readItem(std::string_view word) {
    const auto item = integerOf(word);
    if ((!item || *item < 0) && guarded("spmf.item")) refuse(quoted(word) + kNoInteger);
    if (!isInSet_) builder_.beginBasket(hasTime_ ? time_ : ++time_);
    isInSet_ = true;
    builder_.addItem(*item);
  }

  Words words_;
  const LineReader& lines_;
  LogBuilder& builder_;
  double time_ = 0.0;
  bool hasTime_ = false;
  bool isInSet_ = false;
};

// "@ITEM=7=green tea"; other lines that begin with @ say nothing of items.
void readItemName(std::string_view line, ItemLabelMap& names) {
  constexpr std::string_view kItem = "@ITEM=";
  if (!line.starts_with(kItem)) return;
  line.remove_prefix(kItem.size());
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return;
  const auto item = integerOf(line.substr(0, equals));
  std::string_view name = line.substr(equals + 1);
  if (name.ends_with('\r')) name.remove_suffix(1);
  if (item && *item >= 0 && !name.empty()) names.emplace(*item, name);
}

}  // namespace

ItemLabelMap readSpmf(const std::string& path, LogReading& reading) {
  ItemLabelMap names;
  LineReader lines(path, kLogLineBytes);
  while (lines.next()) {
    const std::string_view line = lines.line();
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos || line[begin] == '#' || line[begin] == '%') continue;
    if (line[begin] == '@') {
      if (const BadByte bad = badByteIn(line); bad.column != 0)
        throw InputError(lines.source().name(), lines.number(), bad.column, bad.what);
      readItemName(line.substr(begin), names);
      continue;
    }
    reading.counted(lines.source().bytesRead(), lines.source().size());
    SpmfLine(lines, reading.builder()).read();
  }
  return names;
}

void readBaskets(const std::string& path, LogReading& reading) {
  LineReader lines(path, kLogLineBytes);
  while (lines.next()) {
    Words words(lines.line());
    const std::string_view customer = words.next();
    if (customer.empty()) continue;
    reading.counted(lines.source().bytesRead(), lines.source().size());
    const auto refuse = [&](const std::string& detail) {
      reading.refuse({lines.source().name(), lines.number(), words.column()}, detail);
    };
    if (const BadByte bad = badByteIn(lines.line()); bad.column != 0) {
      reading.refuse({lines.source().name(), lines.number(), bad.column}, bad.what);
      continue;
    }
    const auto time = logTimeOf(words.next());
    if (!time && guarded("basket.time")) {
      refuse("the second word is neither a number nor a date and time");
      continue;
    }
    const auto size = integerOf(words.next());
    std::vector<std::string_view> items;
    for (std::string_view word = words.next(); !word.empty(); word = words.next())
      items.push_back(word);
    if ((!size || *size < 0 || static_cast<std::size_t>(*size) != items.size()) &&
        guarded("basket.size")) {
      refuse("the third word should be the number of items, " + std::to_string(items.size()));
      continue;
    }
    const auto bad = std::find_if_not(items.begin(), items.end(), [&](std::string_view item) {
      return reading.builder().accepts(item);
    });
    if (bad != items.end() && guarded("basket.item")) {
      refuse(quoted(*bad) + kNoInteger);
      continue;
    }
    reading.builder().beginCustomer(customer);
    reading.builder().beginBasket(*time);
    reading.add({lines.source().name(), lines.number()}, [&] {
      for (const std::string_view item : items) reading.builder().addItem(item);
    });
  }
}

}  // namespace orbseq

#include "io/LogReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "io/CsvReader.h"
#include "io/IoError.h"
#include "io/LineReader.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

constexpr std::size_t kLineBytes = std::size_t{16} << 20U;

struct Format {
  LogFormat format;
  const char* name;
};
constexpr std::array<Format, 4> kFormats = {{{LogFormat::kCsv, "csv"},
                                             {LogFormat::kTsv, "tsv"},
                                             {LogFormat::kSpmf, "spmf"},
                                             {LogFormat::kBasket, "basket"}}};

std::string quoted(std::string_view text) {
  return OrbScore::QuErrorFormater::Quote(std::string(text));
}

// What every reader does with the rows it finds.
class Reading {
 public:
  explicit Reading(const LogOptions& options) : options_(options), builder_(options.builder) {}

  LogBuilder& builder() noexcept { return builder_; }

  // A bad row: counted, or an error when too many are.
  void refuse(const std::string& file, std::size_t row, std::size_t column,
              const std::string& detail) {
    if (badRows_ == options_.skipBadRows) throw InputError(file, row, column, detail);
    ++badRows_;
  }

  void counted(std::uintmax_t bytes, std::optional<std::uintmax_t> size) {
    constexpr std::size_t kTellEvery = 4096;
    if (++rows_ % kTellEvery == 0 && options_.progress) options_.progress(rows_, bytes, size);
  }

  TransactionLog finish() {
    TransactionLog log = builder_.finish();
    log.rows = rows_;
    log.badRows = badRows_;
    return log;
  }

 private:
  const LogOptions& options_;
  LogBuilder builder_;
  std::size_t rows_ = 0;
  std::size_t badRows_ = 0;
};

// --- Rows
// ------------------------------------------------------------------------------------------

void readRows(const std::string& path, const LogOptions& options, Reading& reading) {
  CsvReader reader(path, {}, options.format == LogFormat::kTsv ? '\t' : ',');
  const std::size_t customer = reader.columnOf(options.customer);
  const std::size_t time = reader.columnOf(options.time);
  const std::size_t item = reader.columnOf(options.item);
  const bool hasLabel = !options.label.empty();
  const std::size_t label = hasLabel ? reader.columnOf(options.label) : 0;
  while (reader.next()) {
    reading.counted(reader.bytesRead(), reader.size());
    const auto refuse = [&](std::size_t column, const std::string& detail) {
      reading.refuse(reader.name(), reader.row(), column + 1, detail);
    };
    const auto when = logTimeOf(reader.field(time));
    if (reader.field(customer).empty())
      refuse(customer, "the customer is empty");
    else if (!when)
      refuse(time, quoted(reader.field(time)) + " is neither a number nor a date and time");
    else if (reader.field(item).empty())
      refuse(item, "the item is empty");
    else if (!reading.builder().addRow(reader.field(customer), *when, reader.field(item)))
      refuse(item, quoted(reader.field(item)) + " is no integer from 0 to 2147483647");
    else if (hasLabel)
      reading.builder().describe(reader.field(item), reader.field(label));
  }
}

// --- Lines
// -----------------------------------------------------------------------------------------

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
    refuse("the line does not end with -2");
  }

 private:
  [[noreturn]] void refuse(const std::string& detail) const {
    throw InputError(lines_.source().name(), lines_.number(), words_.column(), detail);
  }

  void end() {
    if (isInSet_) refuse("-2 stands where -1 should end the item set");
    if (!words_.next().empty()) refuse("text behind -2");
  }

  void readTime(std::string_view word) {
    const auto time = word.size() > 2 && word.back() == '>'
                          ? logTimeOf(word.substr(1, word.size() - 2))
                          : std::nullopt;
    if (!time || isInSet_) refuse(quoted(word) + " is no time before an item set");
    time_ = *time;
    hasTime_ = true;
  }

  void readItem(std::string_view word) {
    const auto item = integerOf(word);
    if (!item || *item < 0) refuse(quoted(word) + " is no integer from 0 to 2147483647");
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
  if (item && !name.empty()) names.emplace(*item, name);
}

ItemLabelMap readSpmf(const std::string& path, Reading& reading) {
  ItemLabelMap names;
  LineReader lines(path, kLineBytes);
  while (lines.next()) {
    const std::string_view line = lines.line();
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos || line[begin] == '#' || line[begin] == '%') continue;
    if (line[begin] == '@') {
      readItemName(line.substr(begin), names);
      continue;
    }
    reading.counted(lines.source().bytesRead(), lines.source().size());
    SpmfLine(lines, reading.builder()).read();
  }
  return names;
}

void readBaskets(const std::string& path, Reading& reading) {
  LineReader lines(path, kLineBytes);
  while (lines.next()) {
    Words words(lines.line());
    const std::string_view customer = words.next();
    if (customer.empty()) continue;
    reading.counted(lines.source().bytesRead(), lines.source().size());
    const auto refuse = [&](const std::string& detail) {
      reading.refuse(lines.source().name(), lines.number(), words.column(), detail);
    };
    const auto time = logTimeOf(words.next());
    if (!time) {
      refuse("the second word is neither a number nor a date and time");
      continue;
    }
    const auto size = integerOf(words.next());
    std::vector<std::string_view> items;
    for (std::string_view word = words.next(); !word.empty(); word = words.next())
      items.push_back(word);
    if (!size || *size < 0 || static_cast<std::size_t>(*size) != items.size()) {
      refuse("the third word should be the number of items, " + std::to_string(items.size()));
      continue;
    }
    reading.builder().beginCustomer(customer);
    reading.builder().beginBasket(*time);
    for (const std::string_view item : items)
      if (!reading.builder().addItem(item))
        refuse(quoted(item) + " is no integer from 0 to 2147483647");
  }
}

}  // namespace

std::optional<LogFormat> logFormatNamed(const std::string& name) {
  for (const Format& known : kFormats)
    if (known.name == name) return known.format;
  return std::nullopt;
}

std::optional<LogFormat> logFormatOf(const std::string& path) {
  std::string_view name = path;
  if (name.ends_with(".gz")) name.remove_suffix(3);
  const std::size_t point = name.rfind('.');
  return point == std::string_view::npos ? std::nullopt
                                         : logFormatNamed(std::string(name.substr(point + 1)));
}

TransactionLog readLog(const std::string& path, const LogOptions& options) {
  Reading reading(options);
  ItemLabelMap names;
  switch (options.format) {
    case LogFormat::kCsv:
    case LogFormat::kTsv:
      readRows(path, options, reading);
      break;
    case LogFormat::kSpmf:
      names = readSpmf(path, reading);
      break;
    case LogFormat::kBasket:
      readBaskets(path, reading);
      break;
  }
  TransactionLog log = reading.finish();
  log.labels.merge(names);
  return log;
}

}  // namespace orbseq

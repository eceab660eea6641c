#include "io/JsonRecord.h"

#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>

#include "common/guards.h"
#include "io/IoError.h"
#include "io/LineReader.h"
#include "io/logTime.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

constexpr int kInObject = 1;  // depth of the members
constexpr int kInList = 2;    // depth of the item sets, and of times
constexpr int kInSet = 3;     // depth of the items

// Receives a line's parts from the parser and keeps the members that are known. An operation that
// answers false ends the parsing; `error` then tells why.
class RecordHandler final : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit RecordHandler(JsonRecord& out) : out_(out) {}

  bool complete();
  const std::string& error() const noexcept { return error_; }

  bool null() override { return value("null"); }
  bool boolean(bool) override { return value("a truth value"); }
  bool number_integer(number_integer_t number) override { return integer(number); }
  bool number_unsigned(number_unsigned_t number) override {
    if (number > static_cast<number_unsigned_t>(std::numeric_limits<number_integer_t>::max()))
      return real(std::to_string(number));
    return integer(static_cast<number_integer_t>(number));
  }
  bool number_float(number_float_t, const string_t& digits) override { return real(digits); }
  bool binary(binary_t&) override { return value("binary data"); }
  bool string(string_t& text) override;

  bool start_object(std::size_t) override;
  bool end_object() override { return end(); }
  bool start_array(std::size_t) override;
  bool end_array() override { return end(); }
  bool key(string_t& name) override;

  bool parse_error(std::size_t byte, const std::string&,
                   const nlohmann::json::exception& exception) override;

 private:
  // What the value that comes next belongs to.
  enum Member : std::size_t { kCustomer, kHistory, kBaskets, kTimes, kOther, kNone };
  static constexpr std::array<const char*, 4> kNames = {"customer", "history", "baskets", "times"};

  bool value(const char* kind);
  bool integer(number_integer_t number);
  bool historyItem(number_integer_t number);
  bool basketItem(std::string text);
  bool time(std::optional<double> time, const std::string& text);
  bool real(const std::string& digits);
  bool fail(std::string text) {
    error_ = std::move(text);
    return false;
  }
  bool begin() {
    return ++depth_ <= JsonRecord::kDepth || !guarded("json.depth") ||
           fail("more than " + std::to_string(JsonRecord::kDepth) +
                " levels of objects and arrays, the limit");
  }
  bool end();
  bool wrongKind(const char* kind);
  // Inside the array of a set of items, or beside it.
  bool isInSetOf(Member member) const noexcept { return member_ == member && depth_ == kInSet; }

  JsonRecord& out_;
  std::string error_;
  Member member_ = kNone;
  int depth_ = 0;  // objects and arrays that are open
  std::array<bool, kNames.size()> has_{};
};

bool RecordHandler::complete() {
  if (!has_[kCustomer] && guarded("json.no customer")) return fail("no member \"customer\"");
  if (has_[kHistory] == has_[kBaskets] && guarded("json.history"))
    return fail(has_[kHistory] ? "both \"history\" and \"baskets\"" : "no member \"history\"");
  if (has_[kTimes] && has_[kHistory] && guarded("json.times of history"))
    return fail("\"times\" belong to \"baskets\"");
  return !has_[kTimes] || out_.times->size() == out_.baskets.size() || !guarded("json.times") ||
         fail(std::to_string(out_.times->size()) + " times for " +
              std::to_string(out_.baskets.size()) + " baskets");
}

bool RecordHandler::key(string_t& name) {
  if (depth_ != kInObject) return true;  // inside an ignored member
  member_ = kOther;
  for (std::size_t i = 0; i < kNames.size(); ++i)
    if (name == kNames[i]) member_ = static_cast<Member>(i);
  if (member_ == kOther) return true;
  if (has_[member_] && guarded("json.member twice"))
    return fail("the member \"" + name + "\" stands twice");
  has_[member_] = true;
  return true;
}

bool RecordHandler::wrongKind(const char* kind) {
  if (member_ >= kOther || !guarded("json.kind of ", kNames[member_])) return true;
  switch (member_) {
    case kCustomer:
      return fail(std::string("the customer is text or a number, not ") + kind);
    case kHistory:
      return fail(std::string("the history is text or an array of arrays of item numbers, not ") +
                  kind);
    case kBaskets:
      return fail(std::string("the baskets are an array of arrays of items, not ") + kind);
    case kTimes:
      return fail(std::string("the times are an array of numbers or texts, not ") + kind);
    default:
      return true;
  }
}

// A value that is neither text nor number.
bool RecordHandler::value(const char* kind) {
  if (depth_ == 0 && guarded("json.object"))
    return fail(std::string("an object is wanted, not ") + kind);
  return wrongKind(kind);
}

bool RecordHandler::string(string_t& text) {
  if (member_ == kTimes && depth_ == kInList) return time(logTimeOf(text), text);
  const bool isItem = isInSetOf(kBaskets);
  const bool isKept =
      isItem || (depth_ == kInObject && (member_ == kCustomer || member_ == kHistory));
  if (!isKept) return value("text");
  if (text.find('\0') != std::string::npos && guarded("json.NUL"))
    return fail(std::string("the ") + (isItem ? "item" : kNames[member_]) + " holds a NUL");
  if (isItem) return basketItem(std::move(text));
  if (member_ == kCustomer)
    out_.customer = std::move(text);
  else
    out_.history = std::move(text);
  return true;
}

bool RecordHandler::basketItem(std::string text) {
  if (text.empty() && guarded("json.no item")) return fail("an item is empty");
  out_.baskets.back().push_back(std::move(text));
  return true;
}

bool RecordHandler::time(std::optional<double> time, const std::string& text) {
  if (!time && guarded("json.time"))
    return fail("time " + OrbScore::QuErrorFormater::Quote(text) +
                " is neither a number nor a date and time");
  out_.times->push_back(*time);
  return true;
}

bool RecordHandler::historyItem(number_integer_t number) {
  using Item = std::numeric_limits<std::int32_t>;
  if ((number < Item::min() || number > Item::max()) && guarded("json.history item"))
    return fail("item " + std::to_string(number) + " outside -2147483648..2147483647");
  if (out_.history->back() != '(') *out_.history += ' ';
  *out_.history += std::to_string(static_cast<std::uint32_t>(number));
  return true;
}

bool RecordHandler::integer(number_integer_t number) {
  if (isInSetOf(kHistory)) return historyItem(number);
  if (isInSetOf(kBaskets)) return basketItem(std::to_string(number));
  return real(std::to_string(number));
}

bool RecordHandler::real(const std::string& digits) {
  if (member_ == kTimes && depth_ == kInList) return time(logTimeOf(digits), digits);
  if (isInSetOf(kHistory) && guarded("json.real in history"))
    return fail("item " + digits.substr(0, 64) + " is not an integer of 32 bits");
  if (isInSetOf(kBaskets) && guarded("json.real in basket"))
    return fail("item " + digits.substr(0, 64) + " is no integer");
  if (member_ != kCustomer) return value("a number");
  out_.customer = digits;
  return true;
}

bool RecordHandler::start_object(std::size_t) {
  if (depth_ > 0 && !value("an object")) return false;
  return begin();
}

bool RecordHandler::start_array(std::size_t) {
  const bool isList = member_ == kHistory || member_ == kBaskets || member_ == kTimes;
  if (!isList) return value("an array") && begin();
  if ((depth_ >= kInSet || (depth_ == kInList && member_ == kTimes)) &&
      guarded("json.deeper array"))
    return wrongKind("a deeper array");
  if (depth_ == kInList && member_ == kBaskets) out_.baskets.emplace_back();
  if (depth_ == kInList && member_ == kHistory) *out_.history += '(';
  if (depth_ == kInObject && member_ == kHistory) out_.history.emplace();
  if (depth_ == kInObject && member_ == kTimes) out_.times.emplace();
  return begin();
}

bool RecordHandler::end() {
  if (isInSetOf(kHistory)) *out_.history += ')';
  --depth_;
  if (depth_ == kInObject) member_ = kNone;
  return true;
}

bool RecordHandler::parse_error(std::size_t byte, const std::string&,
                                const nlohmann::json::exception& exception) {
  // The parser's own text is "... line 1, column 5: syntax error while parsing value - invalid
  // literal; last read: '...'"; the middle of it is what a reader wants.
  std::string_view text = exception.what();
  const std::size_t begin = text.find("syntax error");
  text = begin == std::string_view::npos ? "not valid JSON" : text.substr(begin);
  return fail("byte " + std::to_string(byte) + ": " +
              std::string(text.substr(0, text.find("; last read"))));
}

}  // namespace

bool nextJsonRecord(LineReader& lines, JsonRecord& out) {
  do {
    if (!lines.next()) return false;
  } while (lines.line().find_first_not_of(" \t\r") == std::string_view::npos);

  out = JsonRecord();
  RecordHandler handler(out);
  const std::string_view line = lines.line();
  if ((!nlohmann::json::sax_parse(line.begin(), line.end(), &handler) || !handler.complete()) &&
      guarded("json.line"))
    throw InputError(lines.source().name(), lines.number(), handler.error());
  return true;
}

}  // namespace orbseq

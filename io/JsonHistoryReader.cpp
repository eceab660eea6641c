#include "io/JsonHistoryReader.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>

#include "io/IoError.h"

namespace orbseq {

namespace {

// Receives a line's parts from the parser and keeps customer and history alone. An operation that
// answers false ends the parsing; `error` then tells why.
class HistoryHandler final : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit HistoryHandler(CustomerHistory& out) : out_(out) {}

  bool complete() {
    if (!hasCustomer_) return fail("no member \"customer\"");
    return hasHistory_ || fail("no member \"history\"");
  }
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
  enum class Member { kNone, kCustomer, kHistory, kOther };

  bool value(const char* kind);
  bool integer(number_integer_t number);
  bool real(const std::string& digits);
  bool fail(std::string text) {
    error_ = std::move(text);
    return false;
  }
  bool begin() {
    return ++depth_ <= JsonHistoryReader::kDepth ||
           fail("more than " + std::to_string(JsonHistoryReader::kDepth) +
                " levels of objects and arrays, the limit");
  }
  bool end();
  bool wrongHistory(const char* kind) {
    return fail(std::string("the history is text or an array of arrays of item numbers, not ") +
                kind);
  }

  CustomerHistory& out_;
  std::string error_;
  Member member_ = Member::kNone;
  int depth_ = 0;  // objects and arrays that are open
  bool hasCustomer_ = false;
  bool hasHistory_ = false;
};

constexpr int kInObject = 1;   // depth of the members
constexpr int kInHistory = 2;  // depth of the item sets
constexpr int kInSet = 3;      // depth of the items

bool HistoryHandler::key(string_t& name) {
  if (depth_ != kInObject) return true;  // inside an ignored member
  member_ = Member::kOther;
  if (name == "customer") member_ = Member::kCustomer;
  if (name == "history") member_ = Member::kHistory;
  const bool doubled = (member_ == Member::kCustomer && hasCustomer_) ||
                       (member_ == Member::kHistory && hasHistory_);
  if (doubled) return fail("the member \"" + name + "\" stands twice");
  return true;
}

// A value that is neither text nor number.
bool HistoryHandler::value(const char* kind) {
  if (depth_ == 0) return fail(std::string("an object is wanted, not ") + kind);
  if (member_ == Member::kCustomer)
    return fail(std::string("the customer is text or a number, not ") + kind);
  if (member_ == Member::kHistory) return wrongHistory(kind);
  return true;
}

bool HistoryHandler::string(string_t& text) {
  const bool kept =
      depth_ == kInObject && (member_ == Member::kCustomer || member_ == Member::kHistory);
  if (!kept) return value("text");
  const bool isCustomer = member_ == Member::kCustomer;
  if (text.find('\0') != std::string::npos)
    return fail(std::string("the ") + (isCustomer ? "customer" : "history") + " holds a NUL");
  (isCustomer ? out_.customer : out_.history) = std::move(text);
  (isCustomer ? hasCustomer_ : hasHistory_) = true;
  return true;
}

bool HistoryHandler::integer(number_integer_t number) {
  if (member_ != Member::kHistory || depth_ != kInSet) return real(std::to_string(number));
  using Item = std::numeric_limits<std::int32_t>;
  if (number < Item::min() || number > Item::max())
    return fail("item " + std::to_string(number) + " outside -2147483648..2147483647");
  if (out_.history.back() != '(') out_.history += ' ';
  out_.history += std::to_string(static_cast<std::uint32_t>(number));
  return true;
}

bool HistoryHandler::real(const std::string& digits) {
  if (member_ != Member::kCustomer || depth_ != kInObject) {
    if (member_ == Member::kHistory && depth_ == kInSet)
      return fail("item " + digits.substr(0, 64) + " is not an integer of 32 bits");
    return value("a number");
  }
  out_.customer = digits;
  hasCustomer_ = true;
  return true;
}

bool HistoryHandler::start_object(std::size_t) {
  if (depth_ > 0 && !value("an object")) return false;
  return begin();
}

bool HistoryHandler::start_array(std::size_t) {
  if (member_ != Member::kHistory || depth_ == 0) {
    if (!value("an array")) return false;
  } else if (depth_ == kInObject) {
    hasHistory_ = true;
    out_.history.clear();
  } else if (depth_ == kInHistory) {
    out_.history += '(';
  } else {
    return wrongHistory("a deeper array");
  }
  return begin();
}

bool HistoryHandler::end() {
  if (member_ == Member::kHistory && depth_ == kInSet) out_.history += ')';
  --depth_;
  if (depth_ == kInObject) member_ = Member::kNone;
  return true;
}

bool HistoryHandler::parse_error(std::size_t byte, const std::string&,
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

JsonHistoryReader::JsonHistoryReader(const std::string& path, std::size_t lineBytes)
    : lines_(path, lineBytes) {}

bool JsonHistoryReader::next(CustomerHistory& out) {
  do {
    if (!lines_.next()) return false;
  } while (lines_.line().find_first_not_of(" \t\r") == std::string_view::npos);

  HistoryHandler handler(out);
  const std::string_view line = lines_.line();
  if (!nlohmann::json::sax_parse(line.begin(), line.end(), &handler) || !handler.complete())
    throw InputError(name(), lines_.number(), handler.error());
  out.row = lines_.number();
  return true;
}

}  // namespace orbseq

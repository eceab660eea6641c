// Objects as lines of XML: the readers.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <istream>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string_view>

#include "common/OrbMV.h"
#include "common/guards.h"
#include "xml/LineTokenizer.h"
#include "xml/XMLObj.h"

namespace OrbXML_830 {

using orbseq::guarded;

namespace {

constexpr std::size_t kLineRoom = 256;  // the terminating zero included

constexpr std::string_view kRootSeparators = " \t\r\n<>=\"";
constexpr std::string_view kNameSeparators = " \t\r\n<=\"";
constexpr std::string_view kEndSeparators = " \t\r\n<>";
constexpr std::string_view kAttributeSeparators = "=\"";
constexpr std::string_view kQuote = "\"";
constexpr std::string_view kStringSeparators = "\r\n\"";

// One line of a stream, without its line feed.
class Line {
 public:
  // False when nothing is left, or when the line is too long. A last line needs no line feed.
  bool read(std::istream& is) {
    is.getline(text_.data(), static_cast<std::streamsize>(text_.size()));
    return !is.fail() || !guarded("objectXml.line");
  }
  std::string_view text() const { return text_.data(); }
  bool isEmpty() const { return text().empty() || text() == "\r"; }

 private:
  std::array<char, kLineRoom> text_{};
};

bool lineStartsWith(std::istream& is, std::string_view token, std::string_view separators) {
  Line line;
  return line.read(is) && LineTokenizer(line.text()).nextIs(token, separators);
}

// Reads a line up to its value; false when the element or the attribute is another one.
class ValueLine {
 public:
  bool read(std::istream& is, std::string_view element) {
    if (!line_.read(is)) return false;
    tokens_ = LineTokenizer(line_.text());
    return tokens_.nextIs(element, kNameSeparators) &&
           tokens_.nextIs("value", kAttributeSeparators);
  }
  std::optional<std::string> number() {
    const auto token = tokens_.next(kNameSeparators);
    return token ? std::optional<std::string>(*token) : std::nullopt;
  }
  LineTokenizer& tokens() { return tokens_; }

 private:
  Line line_;
  LineTokenizer tokens_{std::string_view()};
};

std::optional<std::string> numberOf(std::istream& is, std::string_view element) {
  ValueLine line;
  return line.read(is, element) ? line.number() : std::nullopt;
}

// As atol, with a defined answer for numbers that it cannot hold.
long toLong(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

int toInt(const std::string& text) {
  using Range = std::numeric_limits<int>;
  return static_cast<int>(std::clamp<long>(toLong(text), Range::min(), Range::max()));
}

// Truncates; what the type cannot hold becomes the nearest that it can, and a nan 0.
unsigned int toUnsigned(const std::string& text) {
  const double value = std::strtod(text.c_str(), nullptr);
  if (!(value > 0.0)) return 0;
  constexpr unsigned int kMost = std::numeric_limits<unsigned int>::max();
  return value >= kMost ? kMost : static_cast<unsigned int>(value);
}

}  // namespace

bool ParseStartXML(std::istream& is) {
  return lineStartsWith(is, "?xml", kRootSeparators) &&
         lineStartsWith(is, "!DOCTYPE", kRootSeparators) &&
         lineStartsWith(is, "OrbXMLRoot", kRootSeparators);
}

bool ParseStartObj(std::istream& is, const std::string& name) {
  Line line;
  if (!line.read(is)) return false;
  if (line.isEmpty() && !line.read(is)) return false;
  LineTokenizer tokens(line.text());
  return tokens.nextIs("Obj", kNameSeparators) && tokens.nextIs("name", kNameSeparators) &&
         tokens.nextIs(name, kQuote) &&
         (tokens.rest().find('>') != std::string_view::npos || !guarded("objectXml.unclosed tag"));
}

bool ParseEndObj(std::istream& is) { return lineStartsWith(is, "/Obj", kEndSeparators); }

bool ParseValue(std::istream& is, bool& value) {
  const auto text = numberOf(is, "Int");
  if (!text) return false;
  const int number = toInt(*text);
  if (number != 0 && number != 1 && guarded("objectXml.bool")) return false;
  value = number == 1;
  return true;
}

bool ParseValue(std::istream& is, std::string& value) {
  ValueLine line;
  if (!line.read(is, "String")) return false;
  const auto token = line.tokens().next(kStringSeparators);
  const bool isEmpty = !token || (*token == "/>" && line.tokens().before().ends_with("\"\""));
  value = isEmpty ? std::string() : std::string(*token);
  return true;
}

bool ParseValue(std::istream& is, long& value) {
  const auto text = numberOf(is, "Long");
  if (text) value = toLong(*text);
  return text.has_value();
}

bool ParseValue(std::istream& is, unsigned int& value) {
  const auto text = numberOf(is, "Int");
  if (text) value = toUnsigned(*text);
  return text.has_value();
}

bool ParseValue(std::istream& is, int& value) {
  const auto text = numberOf(is, "Int");
  if (text) value = toInt(*text);
  return text.has_value();
}

bool ParseValue(std::istream& is, double& value) {
  const auto text = numberOf(is, "Double");
  if (!text) return false;
  if (*text == "Missing") {
    value = OrbCommon_830::OrbMV::Missing();
    return true;
  }
  std::istringstream stream(*text);
  stream.imbue(std::locale::classic());
  stream.exceptions(std::ios::badbit);  // memory that runs out is not a bad number
  stream >> value;
  return true;
}

bool ParseStartXML(std::ifstream& is) { return ParseStartXML(static_cast<std::istream&>(is)); }

bool ParseStartObj(std::ifstream& is, const std::string& name) {
  return ParseStartObj(static_cast<std::istream&>(is), name);
}

bool ParseEndObj(std::ifstream& is) { return ParseEndObj(static_cast<std::istream&>(is)); }

bool ParseValue(std::ifstream& is, bool& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

bool ParseValue(std::ifstream& is, std::string& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

bool ParseValue(std::ifstream& is, long& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

bool ParseValue(std::ifstream& is, unsigned int& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

bool ParseValue(std::ifstream& is, int& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

bool ParseValue(std::ifstream& is, double& value) {
  return ParseValue(static_cast<std::istream&>(is), value);
}

}  // namespace OrbXML_830

#include "io/csvField.h"

namespace orbseq {

namespace {

bool isFormula(std::string_view text) noexcept {
  if (text.empty() || std::string_view("=+-@\t\r").find(text.front()) == std::string_view::npos)
    return false;
  const std::string_view digits = text.substr(1);
  const bool isSigned = text.front() == '-' || text.front() == '+';
  return !isSigned || digits.find_first_not_of("0123456789.") != std::string_view::npos;
}

}  // namespace

std::string csvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field += '"';
}

std::string csvExport(std::string_view text) {
  return csvField(isFormula(text) ? '\'' + std::string(text) : std::string(text));
}

}  // namespace orbseq

#include "xml/NumberFormat.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cstddef>
#include <cstdio>
#include <limits>

namespace OrbXML_830 {

namespace {

constexpr int kSignificantDigits = 15;
constexpr int kFixedDigits = 16;
constexpr std::size_t kPrintedBytes = 112;  // the terminating zero included
// Sign, digits before the point of the largest double, point, digits after it.
constexpr std::size_t kFixedBytes = 3 + std::numeric_limits<double>::max_exponent10 + kFixedDigits;

// As a stream in the classic locale writes it, without asking any locale.
std::string classicText(double value, std::chars_format format, int precision) {
  std::array<char, kFixedBytes> text;
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
  return {text.data(), end.ptr};
}

}  // namespace

std::string GetDefaultNumericFormat() { return "%.15g"; }

std::string GetDecimalCharacter() { return std::localeconv()->decimal_point; }

// Deliberate: the locale is not asked.
std::string GetListSeparator() { return ";"; }

std::string Format(double value, bool useFormat, const char* format) {
  if (!useFormat) return ReplaceSep(value, format);  // Deliberate: the format is ignored
  const std::string defaultFormat = GetDefaultNumericFormat();
  std::array<char, kPrintedBytes> text{};
  const char* const used = format != nullptr ? format : defaultFormat.c_str();
  std::snprintf(text.data(), text.size(), used, value);  // a format is the caller's, and trusted
  return text.data();
}

std::string Format(long value) { return Format(static_cast<double>(value), true, nullptr); }

std::string ReplaceSep(double value) {
  return classicText(value, std::chars_format::fixed, kFixedDigits);
}

std::string ReplaceSep(double value, const char*) {
  return classicText(value, std::chars_format::general, kSignificantDigits);
}

}  // namespace OrbXML_830

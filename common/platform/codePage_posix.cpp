// The narrow code page by the C library: nl_langinfo names it, iconv converts from it.

#include <iconv.h>
#include <langinfo.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "common/platform/codePage.h"

namespace orbseq::platform {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';

class Converter {
 public:
  explicit Converter(const char* codeset) : handle_(::iconv_open("UTF-16LE", codeset)) {}
  ~Converter() {
    if (isOpen()) ::iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // iconv_open answers -1 where it fails.
  bool isOpen() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  // Appends what can be converted and moves `text` behind it; false when a byte stood in the way.
  bool convert(std::string_view& text, std::u16string& out) {
    std::array<char16_t, 4096> block;
    char* from = const_cast<char*>(text.data());  // iconv does not write through it
    std::size_t left = text.size();
    while (left > 0) {
      char* to = reinterpret_cast<char*>(block.data());
      std::size_t room = block.size() * sizeof(char16_t);
      const std::size_t status = ::iconv(handle_, &from, &left, &to, &room);
      out.append(block.data(), block.size() - room / sizeof(char16_t));
      text.remove_prefix(text.size() - left);
      if (status == static_cast<std::size_t>(-1) && errno != E2BIG) return false;
    }
    return true;
  }

  // Appends a character that waited for one to combine with, and begins anew.
  void flush(std::u16string& out) {
    std::array<char16_t, 16> block;
    char* to = reinterpret_cast<char*>(block.data());
    std::size_t room = block.size() * sizeof(char16_t);
    ::iconv(handle_, nullptr, nullptr, &to, &room);
    out.append(block.data(), block.size() - room / sizeof(char16_t));
  }

 private:
  iconv_t handle_;
};

}  // namespace

std::u16string narrowToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  Converter converter(::nl_langinfo(CODESET));
  while (!text.empty()) {
    const bool isWhole = converter.isOpen() && converter.convert(text, units);
    if (converter.isOpen()) converter.flush(units);
    if (isWhole) break;
    units += kReplacement;
    text.remove_prefix(1);
  }
  return units;
}

}  // namespace orbseq::platform

#include "common/utf8.h"

#include <utf8.h>
#include <utf8/unchecked.h>

#include <iterator>

namespace orbseq {

Utf8Character firstCharacter(std::string_view text) noexcept {
  const char* at = text.data();
  if (text.empty() || utf8::find_invalid(text.substr(0, 4)) == 0) return {};
  const char32_t code = utf8::unchecked::next(at);
  return {code, static_cast<std::size_t>(at - text.data())};
}

std::size_t firstInvalidUtf8(std::string_view text) noexcept { return utf8::find_invalid(text); }

void appendUtf8(std::string& out, char32_t code) { utf8::append(code, std::back_inserter(out)); }

}  // namespace orbseq

#include "engine/caseText.h"

#include <cstddef>
#include <cstdint>

#include "common/guards.h"

namespace orbseq::engine {

namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

// Reads from behind "(" to ")" or the end of the text; answers the place of the ")", or the end.
const char* appendSet(const char* at, const char* end, History& history) {
  while (at != end && *at != ')') {
    if (isDigit(*at)) {
      std::uint32_t item = 0;  // unsigned: wraps around at 32 bits
      do item = item * 10U + static_cast<std::uint32_t>(*at - '0');
      while (++at != end && isDigit(*at));
      history.addItem(static_cast<std::int32_t>(item));
      continue;
    }
    if (*at == '[')
      while (at != end && *at != ']') ++at;
    if (at != end) ++at;
  }
  history.endSet();
  return at;
}

void check(std::size_t count, std::size_t limit, const char* what) {
  if (count > limit && guarded("case.", what))
    throw CaseLimitPassed("the history has more than " + std::to_string(limit) + " " + what +
                          ", the limit");
}

}  // namespace

CaseLimitPassed::CaseLimitPassed(const std::string& text) : std::runtime_error(text) {}

CaseLimitPassed::~CaseLimitPassed() = default;

void appendCaseText(std::string_view text, History& history) {
  appendCaseText(text, CaseLimits(), history);
}

void appendCaseText(std::string_view text, const CaseLimits& limits, History& history) {
  check(text.size(), limits.textBytes, "bytes");
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end; ++at)
    if (*at == '(') {
      at = appendSet(at + 1, end, history);
      check(history.sets(), limits.sets, "item sets");
      check(history.items(), limits.items, "items");
      if (at == end) return;
    }
}

}  // namespace orbseq::engine

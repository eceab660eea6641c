#include "cli/StatusLine.h"

#include <algorithm>
#include <iostream>

namespace orbseq {

StatusLine::~StatusLine() {
  if (width_ == 0) return;
  write("");
  std::cerr << '\r' << std::flush;
}

void StatusLine::show(const std::function<std::string()>& text) {
  constexpr auto kPause = std::chrono::milliseconds(250);
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  if (width_ > 0 && now - last_ < kPause) return;
  last_ = now;
  write(text());
}

void StatusLine::write(const std::string& text) {
  std::cerr << '\r' << text << std::string(width_ - std::min(width_, text.size()), ' ')
            << std::flush;
  width_ = text.size();
}

}  // namespace orbseq

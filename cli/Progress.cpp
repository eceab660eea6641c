#include "cli/Progress.h"

#include <algorithm>
#include <boost/timer/progress_display.hpp>
#include <iostream>

namespace orbseq {

struct Progress::Bar {
  explicit Bar(unsigned long bytes) : display(bytes, std::cerr, "") {}
  boost::timer::progress_display display;
};

Progress::Progress(bool shown, std::optional<std::uintmax_t> bytes) {
  if (shown && bytes.value_or(0) > 0) bar_ = std::make_unique<Bar>(*bytes);
}

Progress::~Progress() {
  // A full bar has ended its line itself.
  if (bar_ && bar_->display.count() < bar_->display.expected_count()) std::cerr << std::endl;
}

void Progress::reach(std::uintmax_t bytes) {
  if (!bar_) return;
  const std::uintmax_t count = bar_->display.count();
  const std::uintmax_t end = std::min<std::uintmax_t>(bytes, bar_->display.expected_count());
  if (end > count) bar_->display += end - count;
}

}  // namespace orbseq

// One line on standard error that tells how far long work has come, and is written anew in place.
//
// Threads: one at a time. Errors: none; a standard error that takes nothing shows nothing.

#ifndef CLI_STATUSLINE_H_
#define CLI_STATUSLINE_H_

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace orbseq {

class StatusLine {
 public:
  explicit StatusLine(bool shown) : shown_(shown) {}
  ~StatusLine();  // clears the line
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  // Shows what `text` answers, unless the last time is less than a quarter of a second ago. The
  // text has no line ends and one column a byte.
  void show(const std::function<std::string()>& text);

 private:
  void write(const std::string& text);

  bool shown_;
  std::size_t width_ = 0;  // of what stands there
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace orbseq

#endif  // CLI_STATUSLINE_H_

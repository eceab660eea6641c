// A progress bar on standard error, over the bytes of the input.
//
// Threads: one at a time. Errors: none; a standard error that takes nothing shows nothing.

#ifndef CLI_PROGRESS_H_
#define CLI_PROGRESS_H_

#include <cstdint>
#include <memory>
#include <optional>

namespace orbseq {

class Progress {
 public:
  // Shows nothing when `shown` is false or the number of bytes is not known or 0.
  Progress(bool shown, std::optional<std::uintmax_t> bytes);
  // Ends the bar's line, so that what is printed next begins a line of its own.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // So many bytes are done, counted from the beginning.
  void reach(std::uintmax_t bytes);

 private:
  struct Bar;

  std::unique_ptr<Bar> bar_;  // null: nothing is shown
};

}  // namespace orbseq

#endif  // CLI_PROGRESS_H_

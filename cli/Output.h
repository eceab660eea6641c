// Where results go: standard output, or a file that is replaced as a whole.
//
// Bytes are gathered and written in large blocks. Nothing of a file is visible before finish().
// Threads: one at a time. Errors: FileError, as soon as a block cannot be written; Interrupted when
// a person asked to stop.

#ifndef CLI_OUTPUT_H_
#define CLI_OUTPUT_H_

#include <optional>
#include <string>

#include "io/AtomicFile.h"
#include "io/SinkStream.h"

namespace orbseq {

class Output {
 public:
  // "-" is standard output.
  explicit Output(const std::string& path);

  // The text to append to. Call flushIfFull() now and then.
  std::string& text() noexcept { return text_; }
  void flushIfFull();

  // Writes the rest and closes: a file then stands under its name, standard output is closed. At
  // most once, and nothing is written afterwards.
  void finish();

 private:
  void flush();

  std::optional<AtomicFile> file_;  // nothing: standard output
  std::string text_;
};

// The output as a stream, for what writes to one. finish() it, and then the output.
class OutputStream final : public SinkStream {
 public:
  explicit OutputStream(Output& output);  // which must outlive it
};

}  // namespace orbseq

#endif  // CLI_OUTPUT_H_

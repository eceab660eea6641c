// The lines of a text, one at a time. A line ends with LF; the last one may lack it.
//
// A line may have at most `lineBytes` bytes; reading stops there, so that memory stays at that
// and two blocks, however long the line is.
//
// Threads: one at a time on one reader. Errors: as TextSource; InputError for a line that is too
// long.

#ifndef IO_LINEREADER_H_
#define IO_LINEREADER_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "io/TextSource.h"

namespace orbseq {

class LineReader {
 public:
  LineReader(const std::string& path, std::size_t lineBytes) : source_(path), limit_(lineBytes) {}

  // Goes to the next line; false at the end.
  bool next();
  // The current line without its LF; valid until next().
  std::string_view line() const noexcept { return line_; }
  // Its number, from 1.
  std::size_t number() const noexcept { return number_; }

  const TextSource& source() const noexcept { return source_; }

 private:
  TextSource source_;
  std::size_t limit_;
  std::string_view rest_;  // bytes of the source's block after the current line
  std::string line_;
  std::size_t number_ = 0;
};

}  // namespace orbseq

#endif  // IO_LINEREADER_H_

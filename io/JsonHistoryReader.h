// Histories from JSON lines: one object a line, such as
//
//   {"customer": "17", "history": "(1 2)(3)"}
//   {"customer": 17, "history": [[1, 2], [3]]}
//
// The customer is text or a number, whose digits become the text. The history is text, or an array
// of arrays of item numbers (-2147483648..2147483647), which becomes the text form; a negative
// item is written as the unsigned number of the same 32 bits, which the text form reads back as
// that item. Further members are ignored. Blank lines are skipped. The file is UTF-8.
//
// Memory: one line, at most 16 MiB, and what it holds; nothing is built for ignored members.
// Threads: one at a time on one reader.
// Errors: InputError "FILE:LINE: byte 14: ..." for what is not JSON, with the byte of the line, and
//         "FILE:LINE: ..." for a member that is missing, doubled or of the wrong kind; FileError.

#ifndef IO_JSONHISTORYREADER_H_
#define IO_JSONHISTORYREADER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "io/CustomerHistory.h"
#include "io/LineReader.h"

namespace orbseq {

class JsonHistoryReader {
 public:
  static constexpr std::size_t kLineBytes = std::size_t{1} << 24U;  // most bytes of a line
  static constexpr int kDepth = 64;  // most objects and arrays inside one another

  explicit JsonHistoryReader(const std::string& path, std::size_t lineBytes = kLineBytes);

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  const std::string& name() const noexcept { return lines_.source().name(); }
  std::uintmax_t bytesRead() const noexcept { return lines_.source().bytesRead(); }
  std::optional<std::uintmax_t> size() const noexcept { return lines_.source().size(); }

 private:
  LineReader lines_;
};

}  // namespace orbseq

#endif  // IO_JSONHISTORYREADER_H_

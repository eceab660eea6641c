// Customers' histories from a file or from standard input, one at a time, whatever the form.
//
// Memory: flat, however long the input is.
// Threads: one at a time on one reader.
// Errors: InputError for bad data, naming file, row and column; FileError when the file cannot be
//         opened or read. After an error the reader can only be destroyed.

#ifndef IO_HISTORYREADER_H_
#define IO_HISTORYREADER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "io/CsvHistoryReader.h"
#include "io/CustomerHistory.h"
#include "io/HistoryFormat.h"
#include "io/JsonHistoryReader.h"

namespace orbseq {

class HistoryReader {
 public:
  // Opens the file ("-": standard input), and reads the header where the form has one.
  HistoryReader(const std::string& path, HistoryFormat format);

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  // The file's name for messages.
  const std::string& name() const noexcept;
  // Bytes taken from the file so far, for a progress display; a file that grows meanwhile gives
  // more than size().
  std::uintmax_t bytesRead() const noexcept;
  // The file's bytes when it was opened; nothing for a pipe, a device, standard input.
  std::optional<std::uintmax_t> size() const noexcept;

 private:
  using Reader = std::variant<CsvHistoryReader, JsonHistoryReader>;
  static Reader open(const std::string& path, HistoryFormat format);

  Reader reader_;
};

}  // namespace orbseq

#endif  // IO_HISTORYREADER_H_

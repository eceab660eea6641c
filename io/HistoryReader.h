// Customers' histories from a file or from standard input, one at a time, whatever the form: JSON
// lines, CSV and TSV with a column "history", and every other log, read as histories.
//
// Memory: flat for the first two, however long the input is; that of the log for the others.
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
#include "io/JsonHistoryReader.h"
#include "io/LogHistoryReader.h"
#include "io/LogReader.h"

namespace orbseq {

class HistoryReader {
 public:
  // Opens the file ("-": standard input), and reads the header, or the whole log. The names in the
  // options must outlive the reader.
  HistoryReader(const std::string& path, const LogOptions& options);

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  // The file's name for messages.
  const std::string& name() const noexcept;
  // Bytes taken from the file so far, for a progress display, or customers of a log; a file that
  // grows meanwhile gives more than size().
  std::uintmax_t bytesRead() const noexcept;
  // The file's bytes when it was opened, nothing for a pipe, a device, standard input; or all
  // customers of a log.
  std::optional<std::uintmax_t> size() const noexcept;
  // Items that the names do not know, and rows that were left out, so far.
  const UnknownItems& unknown() const noexcept;
  std::size_t badRows() const noexcept;

 private:
  using Reader = std::variant<CsvHistoryReader, JsonHistoryReader, LogHistoryReader>;
  static Reader open(const std::string& path, const LogOptions& options);

  Reader reader_;
};

}  // namespace orbseq

#endif  // IO_HISTORYREADER_H_

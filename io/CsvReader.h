// Rows of a CSV file with a header row, one at a time (RFC 4180).
//
// Fields are separated by commas; a field that holds a comma, a quote or a line end stands in
// double quotes, a quote in it is doubled. Lines end with LF, CRLF or CR, also mixed; the last
// one may lack its end. Empty lines are skipped. Blanks belong to the field. The file is UTF-8; a
// byte order mark is skipped. Every row has as many fields as the header.
//
// Places in errors are FILE:ROW:COLUMN. ROW is the physical line, from 1, on which the row begins,
// so that an editor finds it (the header of a plain file is row 1); COLUMN is the number of the
// field, from 1.
//
// Memory: constant, at most CsvLimits::rowBytes + CsvLimits::fieldBytes and two blocks; a quote
// that is never closed ends the reading at the limit, not at the end of the file.
// Threads: one at a time on one reader.
// Errors: InputError for what is not such a file; FileError when it cannot be read. After an error
//         the reader can only be destroyed.

#ifndef IO_CSVREADER_H_
#define IO_CSVREADER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/Limits.h"

namespace orbseq {

class CsvReader {
 public:
  // Opens the file ("-": standard input) and reads the header; a file without one is refused.
  // `delimiter` is what separates the fields.
  explicit CsvReader(const std::string& path, const CsvLimits& limits = {}, char delimiter = ',');
  ~CsvReader();
  CsvReader(CsvReader&&) noexcept;
  CsvReader& operator=(CsvReader&&) noexcept;

  // The names in the header, as they stand there.
  const std::vector<std::string>& columns() const noexcept;
  // The index of the column of exactly that name. Throws InputError, which tells the columns
  // found, when there is none or more than one.
  std::size_t columnOf(std::string_view name) const;

  // Goes to the next row; false at the end.
  bool next();
  // Field `index` of the current row; valid until next(). Requires a row and
  // index < columns().size().
  std::string_view field(std::size_t index) const noexcept;
  // The line on which the current row begins.
  std::size_t row() const noexcept;

  const std::string& name() const noexcept;
  std::uintmax_t bytesRead() const noexcept;
  std::optional<std::uintmax_t> size() const noexcept;  // bytes, where the file has a size

 private:
  class Parser;

  std::unique_ptr<Parser> parser_;
  std::vector<std::string> columns_;
};

}  // namespace orbseq

#endif  // IO_CSVREADER_H_

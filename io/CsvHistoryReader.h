// Histories from the rows of a CSV or TSV file with a column of the customer and one called
// "history", in any order and among any others, which are ignored.
//
// Memory, threads, errors: as CsvReader.

#ifndef IO_CSVHISTORYREADER_H_
#define IO_CSVHISTORYREADER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "io/CsvReader.h"
#include "io/CustomerHistory.h"
#include "io/TransactionLog.h"

namespace orbseq {

class CsvHistoryReader {
 public:
  CsvHistoryReader(CsvReader rows, const std::string& customerColumn);

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  const std::string& name() const noexcept { return csv_.name(); }
  std::uintmax_t bytesRead() const noexcept { return csv_.bytesRead(); }
  std::optional<std::uintmax_t> size() const noexcept { return csv_.size(); }
  const UnknownItems& unknown() const noexcept { return unknown_; }
  std::size_t badRows() const noexcept { return 0; }

 private:
  CsvReader csv_;
  std::size_t customer_;  // index of the column
  std::size_t history_;
  UnknownItems unknown_;  // none: items are numbers
};

}  // namespace orbseq

#endif  // IO_CSVHISTORYREADER_H_

// Histories from a CSV file with the columns "customer" and "history", in any order and among any
// others, which are ignored.
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

namespace orbseq {

class CsvHistoryReader {
 public:
  explicit CsvHistoryReader(const std::string& path, const CsvLimits& limits = {});

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  const std::string& name() const noexcept { return csv_.name(); }
  std::uintmax_t bytesRead() const noexcept { return csv_.bytesRead(); }
  std::optional<std::uintmax_t> size() const noexcept { return csv_.size(); }

 private:
  CsvReader csv_;
  std::size_t customer_;  // index of the column
  std::size_t history_;
};

}  // namespace orbseq

#endif  // IO_CSVHISTORYREADER_H_

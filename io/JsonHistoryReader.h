// Histories from JSON lines (io/JsonRecord.h), a customer a line. The items of baskets are looked
// up in a model's names; baskets with times are put in their order.
//
// Memory: one line, at most 16 MiB, and what it holds.
// Threads: one at a time on one reader. Errors: as io/JsonRecord.h; FileError.

#ifndef IO_JSONHISTORYREADER_H_
#define IO_JSONHISTORYREADER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "io/CustomerHistory.h"
#include "io/JsonRecord.h"
#include "io/LineReader.h"
#include "io/LogBuilder.h"

namespace orbseq {

class JsonHistoryReader {
 public:
  static constexpr std::size_t kLineBytes = std::size_t{1} << 24U;  // most bytes of a line

  // Of the options, the names (null: items are numbers) and the period are looked at.
  explicit JsonHistoryReader(const std::string& path, const LogBuilder::Options& options = {},
                             std::size_t lineBytes = kLineBytes);

  // Overwrites `out` with the next history; false, and `out` as it was, at the end.
  bool next(CustomerHistory& out);

  const std::string& name() const noexcept { return lines_.source().name(); }
  std::uintmax_t bytesRead() const noexcept { return lines_.source().bytesRead(); }
  std::optional<std::uintmax_t> size() const noexcept { return lines_.source().size(); }
  const UnknownItems& unknown() const noexcept { return unknown_; }
  std::size_t badRows() const noexcept { return 0; }

 private:
  std::string historyOf(const JsonRecord& record);

  LineReader lines_;
  LogBuilder::Options options_;
  JsonRecord record_;
  UnknownItems unknown_;
};

}  // namespace orbseq

#endif  // IO_JSONHISTORYREADER_H_

// Histories from a log, a customer after the other in the order in which the log names them first.
//
// The whole log is read before the first history comes, since its rows may come in any order.
//
// Memory: that of the log. Threads: one at a time on one reader. Errors: as readLog().

#ifndef IO_LOGHISTORYREADER_H_
#define IO_LOGHISTORYREADER_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "io/CustomerHistory.h"
#include "io/TransactionLog.h"

namespace orbseq {

class LogHistoryReader {
 public:
  LogHistoryReader(TransactionLog log, std::string name)
      : log_(std::move(log)), name_(std::move(name)) {}

  // Overwrites `out` with the next history, whose row is the customer's number, from 1; false, and
  // `out` as it was, at the end.
  bool next(CustomerHistory& out);

  const std::string& name() const noexcept { return name_; }
  // Of the customers, how many were handed over, and how many there are.
  std::uintmax_t bytesRead() const noexcept { return next_; }
  std::optional<std::uintmax_t> size() const noexcept { return log_.customers.size(); }
  const UnknownItems& unknown() const noexcept { return log_.unknown; }
  std::size_t badRows() const noexcept { return log_.badRows; }

 private:
  TransactionLog log_;
  std::string name_;
  std::size_t next_ = 0;
};

}  // namespace orbseq

#endif  // IO_LOGHISTORYREADER_H_

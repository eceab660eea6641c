#include "io/CsvHistoryReader.h"

#include <utility>

#include "io/LogReader.h"

namespace orbseq {

CsvHistoryReader::CsvHistoryReader(CsvReader rows, const std::string& customerColumn)
    : csv_(std::move(rows)),
      customer_(csv_.columnOf(customerColumn)),
      history_(csv_.columnOf(kHistoryColumn)) {}

bool CsvHistoryReader::next(CustomerHistory& out) {
  if (!csv_.next()) return false;
  out.customer = csv_.field(customer_);
  out.history = csv_.field(history_);
  out.row = csv_.row();
  return true;
}

}  // namespace orbseq

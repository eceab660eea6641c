#include "io/CsvHistoryReader.h"

namespace orbseq {

CsvHistoryReader::CsvHistoryReader(const std::string& path, const CsvLimits& limits)
    : csv_(path, limits),
      customer_(csv_.columnOf("customer")),
      history_(csv_.columnOf("history")) {}

bool CsvHistoryReader::next(CustomerHistory& out) {
  if (!csv_.next()) return false;
  out.customer = csv_.field(customer_);
  out.history = csv_.field(history_);
  out.row = csv_.row();
  return true;
}

}  // namespace orbseq

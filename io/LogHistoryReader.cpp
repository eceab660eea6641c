#include "io/LogHistoryReader.h"

#include "io/historyText.h"

namespace orbseq {

bool LogHistoryReader::next(CustomerHistory& out) {
  const SequenceDatabase& database = log_.database;
  if (next_ == database.customers()) return false;
  out.customer = log_.customers[next_];
  out.history.clear();
  for (std::size_t set = database.firstSet(next_); set < database.firstSet(next_ + 1); ++set)
    appendItemSet(out.history, database.items(set));
  out.row = ++next_;
  return true;
}

}  // namespace orbseq

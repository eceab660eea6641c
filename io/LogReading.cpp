#include "io/LogReading.h"

#include <vector>

#include "common/guards.h"
#include "io/IoError.h"
#include "io/historyText.h"

namespace orbseq {

void LogReading::refuse(const Place& place, const std::string& detail) {
  if (badRows_ == options_.skipBadRows)
    throw InputError(place.file, place.row, place.column, detail);
  ++badRows_;
}

void LogReading::counted(std::uintmax_t bytes, std::optional<std::uintmax_t> size) {
  constexpr std::size_t kTellEvery = 4096;
  if (++rows_ % kTellEvery == 0 && options_.progress) options_.progress(rows_, bytes, size);
}

void LogReading::addHistory(const Place& place, std::string_view customer,
                            std::string_view history) {
  std::vector<HistorySet> sets;
  try {
    sets = parseHistory(history);
  } catch (const HistoryTextError& error) {
    return refuse(place, error.what());
  }
  bool hasTime = false;
  for (const HistorySet& set : sets) hasTime = hasTime || set.time;
  if (!builder_.beginCustomer(customer) && !hasTime && guarded("history.customer again"))
    return refuse(place, "the customer came before: histories in parts want times");
  double time = 0.0;
  hasTime = false;
  for (const HistorySet& set : sets) {
    hasTime = hasTime || set.time;
    time = hasTime ? set.time.value_or(time) : time + 1.0;
    builder_.beginBasket(time);
    for (const std::int32_t item : set.items) builder_.addItem(item);
  }
}

TransactionLog LogReading::finish(const std::string& file) {
  TransactionLog log;
  add({file}, [&] { log = builder_.finish(); });
  log.rows = rows_;
  log.badRows = badRows_;
  return log;
}

}  // namespace orbseq

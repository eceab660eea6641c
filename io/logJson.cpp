// Logs in JSON lines.

#include "common/guards.h"
#include "io/JsonRecord.h"
#include "io/LineReader.h"
#include "io/LogReading.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

// The first item that the log cannot take, or null.
const std::string* badItemOf(const JsonRecord& record, const LogBuilder& builder) {
  for (const auto& basket : record.baskets)
    for (const std::string& item : basket)
      if (!builder.accepts(item)) return &item;
  return nullptr;
}

}  // namespace

void addBaskets(const JsonRecord& record, LogBuilder& builder) {
  for (std::size_t k = 0; k < record.baskets.size(); ++k) {
    builder.beginBasket(record.times ? (*record.times)[k] : static_cast<double>(k + 1));
    for (const std::string& item : record.baskets[k]) builder.addItem(std::string_view(item));
  }
}

void readJsonLines(const std::string& path, LogReading& reading) {
  LineReader lines(path, kLogLineBytes);
  JsonRecord record;
  while (nextJsonRecord(lines, record)) {
    reading.counted(lines.source().bytesRead(), lines.source().size());
    const LogReading::Place place{lines.source().name(), lines.number()};
    if (record.customer.empty() && guarded("json.no customer name")) {
      reading.refuse(place, "the customer is empty");
    } else if (record.history) {
      reading.addHistory(place, record.customer, *record.history);
    } else if (const std::string* const bad = badItemOf(record, reading.builder());
               bad != nullptr && guarded("json.basket item")) {
      reading.refuse(place, OrbScore::QuErrorFormater::Quote(*bad) + kNoInteger);
    } else if (!reading.builder().beginCustomer(record.customer) && !record.times &&
               guarded("json.customer again")) {
      reading.refuse(place, "the customer came before: baskets in parts want times");
    } else {
      reading.add(place, [&] { addBaskets(record, reading.builder()); });
    }
  }
}

}  // namespace orbseq

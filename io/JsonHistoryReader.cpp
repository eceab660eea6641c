#include "io/JsonHistoryReader.h"

#include <utility>

#include "io/IoError.h"
#include "io/LogReading.h"
#include "io/historyText.h"

namespace orbseq {

namespace {

const ItemNames kNumbersAlone;

}  // namespace

JsonHistoryReader::JsonHistoryReader(const std::string& path, const LogBuilder::Options& options,
                                     std::size_t lineBytes)
    : lines_(path, lineBytes), options_(options) {
  if (options_.known == nullptr) options_.known = &kNumbersAlone;
}

std::string JsonHistoryReader::historyOf(const JsonRecord& record) {
  LogBuilder builder(options_);
  builder.beginCustomer(record.customer);
  try {
    addBaskets(record, builder);
  } catch (const LogBuilder::Full& full) {
    throw InputError(lines_.source().name(), lines_.number(), full.what());
  }
  const TransactionLog log = builder.finish();
  unknown_.add(log.unknown);
  std::string text;
  for (std::size_t set = 0; set < log.database.sets(); ++set)
    appendItemSet(text, log.database.items(set));
  return text;
}

bool JsonHistoryReader::next(CustomerHistory& out) {
  if (!nextJsonRecord(lines_, record_)) return false;
  out.history = record_.history ? std::move(*record_.history) : historyOf(record_);
  out.customer = std::move(record_.customer);
  out.row = lines_.number();
  return true;
}

}  // namespace orbseq

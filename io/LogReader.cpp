#include "io/LogReader.h"

#include <algorithm>
#include <utility>

#include "common/guards.h"
#include "io/CsvReader.h"
#include "io/IoError.h"
#include "io/LogReading.h"
#include "io/columnIndex.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

CsvReader openRows(const std::string& path, const LogOptions& options) {
  return CsvReader(path, options.csv, options.format == LogFormat::kTsv ? '\t' : ',');
}

bool hasHistories(const CsvReader& rows, const LogOptions& options) {
  const auto has = [&rows](std::string_view name) {
    return std::find(rows.columns().begin(), rows.columns().end(), name) != rows.columns().end();
  };
  if (has(options.item)) return false;
  if (!has(kHistoryColumn) && guarded("log.no item column"))
    throw InputError(rows.name(), rows.row(),
                     "neither a column " + OrbScore::QuErrorFormater::Quote(options.item) +
                         " nor a column \"history\"" + listOfColumns(rows.columns()));
  return true;
}

TransactionLog readLog(const std::string& path, const LogOptions& options) {
  if (options.format == LogFormat::kCsv || options.format == LogFormat::kTsv)
    return readLog(openRows(path, options), options);
  LogReading reading(options);
  ItemLabelMap names;
  if (options.format == LogFormat::kSpmf) names = readSpmf(path, reading);
  if (options.format == LogFormat::kBasket) readBaskets(path, reading);
  if (options.format == LogFormat::kJsonLines) readJsonLines(path, reading);
  if (options.format == LogFormat::kSqlite) readSqlite(path, reading);
  const std::string file = path == "-" ? "standard input" : path;
  if (options.builder.items == ItemKind::kText)
    reading.add({file}, [&] {
      for (const auto& [item, name] : names) reading.builder().describe(std::to_string(item), name);
    });
  TransactionLog log = reading.finish(file);
  if (options.builder.items != ItemKind::kText) log.labels.merge(names);
  return log;
}

TransactionLog readLog(CsvReader rows, const LogOptions& options) {
  LogReading reading(options);
  const std::string file = rows.name();
  readRows(std::move(rows), reading);
  return reading.finish(file);
}

}  // namespace orbseq

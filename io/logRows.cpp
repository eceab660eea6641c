// Logs with a row an item, or a row a history: CSV and TSV, and what an SQLite query answers.

#include <string_view>
#include <utility>

#include "common/guards.h"
#include "io/CsvReader.h"
#include "io/LogReading.h"
#include "io/SqliteQuery.h"
#include "io/logTime.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

namespace {

std::string quoted(std::string_view text) { return OrbScore::QuErrorFormater::Quote(text); }

// The indices of the columns that matter.
struct Columns {
  std::size_t customer;
  std::size_t time;
  std::size_t item;
  std::optional<std::size_t> label;
};

template <class Rows>
Columns columnsOf(const Rows& rows, const LogOptions& options) {
  Columns columns{rows.columnOf(options.customer), rows.columnOf(options.time),
                  rows.columnOf(options.item), std::nullopt};
  if (!options.label.empty()) columns.label = rows.columnOf(options.label);
  return columns;
}

template <class Rows>
void addRow(const Rows& row, const Columns& columns, LogReading& reading) {
  const auto refuse = [&](std::size_t column, const std::string& detail) {
    reading.refuse({row.name(), row.row(), column + 1}, detail);
  };
  const auto when = logTimeOf(row.field(columns.time));
  const std::string_view item = row.field(columns.item);
  if (row.field(columns.customer).empty() && guarded("row.customer"))
    refuse(columns.customer, "the customer is empty");
  else if (!when && guarded("row.time"))
    refuse(columns.time,
           quoted(row.field(columns.time)) + " is neither a number nor a date and time");
  else if (item.empty() && guarded("row.no item"))
    refuse(columns.item, "the item is empty");
  else if (!reading.builder().accepts(item) && guarded("row.item"))
    refuse(columns.item, quoted(item) + kNoInteger);
  else {
    reading.add({row.name(), row.row(), columns.item + 1}, [&] {
      reading.builder().addRow(row.field(columns.customer), *when, item);
      if (columns.label) reading.builder().describe(item, row.field(*columns.label));
    });
  }
}

void readHistories(CsvReader& reader, LogReading& reading) {
  const std::size_t customer = reader.columnOf(reading.options().customer);
  const std::size_t history = reader.columnOf(kHistoryColumn);
  while (reader.next()) {
    reading.counted(reader.bytesRead(), reader.size());
    if (reader.field(customer).empty() && guarded("row.history customer"))
      reading.refuse({reader.name(), reader.row(), customer + 1}, "the customer is empty");
    else
      reading.addHistory({reader.name(), reader.row(), history + 1}, reader.field(customer),
                         reader.field(history));
  }
}

}  // namespace

void readRows(CsvReader reader, LogReading& reading) {
  if (hasHistories(reader, reading.options())) return readHistories(reader, reading);
  const Columns columns = columnsOf(reader, reading.options());
  while (reader.next()) {
    reading.counted(reader.bytesRead(), reader.size());
    addRow(reader, columns, reading);
  }
}

void readSqlite(const std::string& path, LogReading& reading) {
  SqliteQuery query(path, reading.options().query);
  const Columns columns = columnsOf(query, reading.options());
  while (query.next()) {
    reading.counted(0, std::nullopt);
    addRow(query, columns, reading);
  }
}

}  // namespace orbseq

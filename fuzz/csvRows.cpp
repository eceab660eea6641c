// A file of customers' data. The first byte tells what it is read as: rows of CSV under small
// limits, or a log or histories in one of the text forms; the second the options; the others are
// the file.
//
// A refusal is an InputError that begins with the file's name. Rows that are read can be written
// anew, and are read as the same rows.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/Bytes.h"
#include "fuzz/MemoryPath.h"
#include "fuzz/check.h"
#include "io/CsvReader.h"
#include "io/HistoryReader.h"
#include "io/IoError.h"
#include "io/LogReader.h"

namespace {

using namespace orbseq;
using namespace orbseq::fuzz;
using Rows = std::vector<std::vector<std::string>>;

constexpr CsvLimits kSmallLimits = {.fieldBytes = 64, .fields = 8, .rowBytes = 256};

Rows rowsOf(const std::string& path, char delimiter, const CsvLimits& limits) {
  CsvReader reader(path, limits, delimiter);
  Rows rows = {reader.columns()};
  std::size_t last = reader.row();
  while (reader.next()) {
    require(reader.row() > last, "rows do not go on");
    last = reader.row();
    rows.emplace_back();
    for (std::size_t k = 0; k < reader.columns().size(); ++k)
      rows.back().emplace_back(reader.field(k));
    for (const std::string& field : rows.back())
      require(field.size() <= limits.fieldBytes, "a field is larger than its limit");
  }
  return rows;
}

// Every field in quotes. Planted: quotes in it are not doubled.
std::string textOf(const Rows& rows, char delimiter) {
  std::string text;
  for (const auto& row : rows) {
    for (std::size_t k = 0; k < row.size(); ++k) {
      if (k > 0) text += delimiter;
      text += '"';
      for (const char c : row[k]) text += !kPlanted && c == '"' ? "\"\"" : std::string(1, c);
      text += '"';
    }
    text += '\n';
  }
  return text;
}

void readRows(std::string_view bytes, char delimiter) {
  static MemoryPath file, again;
  file.fill(bytes);
  Rows rows;
  try {
    rows = rowsOf(file.path(), delimiter, kSmallLimits);
  } catch (const InputError& refusal) {
    return requireErrorText(refusal.what(), file.path() + ":");
  }
  again.fill(textOf(rows, delimiter));
  try {
    require(rowsOf(again.path(), delimiter, {}) == rows, "rows written anew are read differently");
  } catch (const InputError& refusal) {
    fail(std::string("rows written anew are refused: ") + refusal.what());
  }
}

void checkLog(const TransactionLog& log) {
  const SequenceDatabase& database = log.database;
  require(log.customers.size() == database.customers(), "customers without names");
  for (std::size_t customer = 0; customer < database.customers(); ++customer) {
    const std::size_t end = database.firstSet(customer + 1);
    for (std::size_t set = database.firstSet(customer); set < end; ++set) {
      const auto items = database.items(set);
      for (std::size_t k = 1; k < items.size(); ++k)
        require(items[k - 1] < items[k], "the items of a basket do not ascend");
    }
  }
}

// Each of them reads the whole file.
void readLogAt(const std::string& path, const LogOptions& options) {
  try {
    checkLog(readLog(path, options));
  } catch (const InputError& refusal) {
    requireErrorText(refusal.what(), path + ":");
  }
}

void readHistoriesAt(const std::string& path, const LogOptions& options) {
  try {
    HistoryReader reader(path, options);
    CustomerHistory history;
    while (reader.next(history)) require(history.row > 0, "a history of no row");
  } catch (const InputError& refusal) {
    requireErrorText(refusal.what(), path + ":");
  }
}

LogOptions optionsOf(LogFormat format, Bytes& bytes) {
  constexpr ItemKind kKinds[] = {ItemKind::kAuto, ItemKind::kInteger, ItemKind::kText};
  constexpr const char* kPeriods[] = {"minute", "day", "week", "month", "2.5"};
  const int options = bytes.byte();
  LogOptions result;
  result.format = format;
  result.builder.items = kKinds[options % 3];
  if ((options & 16) != 0) result.builder.basket = Period::of(kPeriods[options / 32 % 5]);
  if ((options & 8) != 0) result.label = "label";
  if ((options & 4) != 0) result.skipBadRows = 3;
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr LogFormat kFormats[] = {LogFormat::kCsv, LogFormat::kTsv, LogFormat::kSpmf,
                                    LogFormat::kBasket, LogFormat::kJsonLines};
  constexpr std::size_t kHead = 2;
  if (size < kHead) return 0;
  Bytes head(data, kHead);
  const int kind = head.below(12);
  const std::string_view bytes = fuzz::textOf(data + kHead, size - kHead);
  if (kind >= 10) {
    readRows(bytes, kind == 10 ? ',' : '\t');
    return 0;
  }
  static MemoryPath file;
  file.fill(bytes);
  const LogOptions options = optionsOf(kFormats[kind % 5], head);
  if (kind < 5)
    readLogAt(file.path(), options);
  else
    readHistoriesAt(file.path(), options);
  return 0;
}

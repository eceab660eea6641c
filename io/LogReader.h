// Reads a log of what customers took, in any of its forms.
//
//   csv, tsv  a row an item, with a header; columns of customer, time, item, perhaps a description.
//             With a column "history" and none of the item: a row a customer, whose history is text
//             (io/historyText.h)
//
//   sqlite    a database, opened to be read alone; what the query answers is a row an item, with
//             columns as in csv
//
//   jsonl     an object a line (io/JsonRecord.h)
//
//   spmf      a customer a line: items separated by blanks, -1 behind each item set, -2 at the end;
//             <TIME> before a set holds for it and those after it; @ITEM=7=TEXT names an item;
//             lines that begin with # or % are left out
//
//   basket    a basket a line: customer, time, number of items, items
//
// Each may be compressed with gzip. Items in text histories, arrays of numbers and spmf are
// numbers; all others are texts, which a log without a model numbers, and which a model's names
// look up (io/LogBuilder.h).
//
// Errors: InputError with file, row and column; FileError, EnvironmentError. With skipBadRows, so
// many rows whose customer, time or item is bad are left out; other faults of form stay errors.
// Threads: any number, each with its own log.

#ifndef IO_LOGREADER_H_
#define IO_LOGREADER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "common/Limits.h"
#include "io/LogBuilder.h"
#include "io/LogFormat.h"
#include "io/TransactionLog.h"

namespace orbseq {

class CsvReader;

constexpr const char* kHistoryColumn = "history";

struct LogOptions {
  LogFormat format = LogFormat::kCsv;
  std::string customer = "customer";  // names of columns
  std::string time = "time";
  std::string item = "item";
  std::string label;  // of descriptions; empty: there are none
  std::string query;  // of sqlite: one statement that reads
  LogBuilder::Options builder;
  CsvLimits csv;
  std::size_t skipBadRows = 0;

  // Called every few thousand rows with the rows and bytes read so far, and the file's bytes where
  // they are known; what it throws ends the reading. May be empty.
  std::function<void(std::size_t rows, std::uintmax_t bytes, std::optional<std::uintmax_t> size)>
      progress;
};

// `path` "-" is standard input.
TransactionLog readLog(const std::string& path, const LogOptions& options);

// The same in steps, for those who want to see the header first: csv or tsv, opened; whether its
// rows are histories (InputError when it has neither those nor items); and the log in it.
CsvReader openRows(const std::string& path, const LogOptions& options);
bool hasHistories(const CsvReader& rows, const LogOptions& options);
TransactionLog readLog(CsvReader rows, const LogOptions& options);

}  // namespace orbseq

#endif  // IO_LOGREADER_H_

// The forms in which logs and histories are read; io/LogReader.h describes them.

#ifndef IO_LOGFORMAT_H_
#define IO_LOGFORMAT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbseq {

enum class LogFormat { kCsv, kTsv, kSpmf, kBasket, kJsonLines, kSqlite };

// By the end of the name, .gz aside: .csv; .tsv; .spmf; .basket; .jsonl or .ndjson; .sqlite,
// .sqlite3 or .db. "-", standard input, is CSV. Upper and lower case are the same. Nothing for any
// other name.
std::optional<LogFormat> logFormatOf(std::string_view path);

// "csv", "tsv", "spmf", "basket", "jsonl", "sqlite".
std::optional<LogFormat> logFormatNamed(std::string_view name) noexcept;
std::vector<std::string> logFormatNames();

}  // namespace orbseq

#endif  // IO_LOGFORMAT_H_

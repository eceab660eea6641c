// The forms in which customers' histories are read.

#ifndef IO_HISTORYFORMAT_H_
#define IO_HISTORYFORMAT_H_

#include <optional>
#include <string_view>

namespace orbseq {

enum class HistoryFormat { kCsv, kJsonLines };

// The form that a file's name tells: .csv; .jsonl or .ndjson; "-", standard input, is CSV. Upper
// and lower case are the same. Nothing for any other name.
std::optional<HistoryFormat> historyFormatOf(std::string_view path);

}  // namespace orbseq

#endif  // IO_HISTORYFORMAT_H_

#include "io/HistoryFormat.h"

#include <string>

namespace orbseq {

std::optional<HistoryFormat> historyFormatOf(std::string_view path) {
  if (path == "-") return HistoryFormat::kCsv;
  std::string name(path);
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  if (name.ends_with(".csv")) return HistoryFormat::kCsv;
  if (name.ends_with(".jsonl") || name.ends_with(".ndjson")) return HistoryFormat::kJsonLines;
  return std::nullopt;
}

}  // namespace orbseq

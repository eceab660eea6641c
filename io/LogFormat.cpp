#include "io/LogFormat.h"

#include <array>

namespace orbseq {

namespace {

struct Ending {
  std::string_view text;  // behind the last point
  LogFormat format;
  bool isName;
};
constexpr std::array<Ending, 9> kEndings = {{{"csv", LogFormat::kCsv, true},
                                             {"tsv", LogFormat::kTsv, true},
                                             {"spmf", LogFormat::kSpmf, true},
                                             {"basket", LogFormat::kBasket, true},
                                             {"jsonl", LogFormat::kJsonLines, true},
                                             {"ndjson", LogFormat::kJsonLines, false},
                                             {"sqlite", LogFormat::kSqlite, true},
                                             {"sqlite3", LogFormat::kSqlite, false},
                                             {"db", LogFormat::kSqlite, false}}};

}  // namespace

std::optional<LogFormat> logFormatOf(std::string_view path) {
  if (path == "-") return LogFormat::kCsv;
  std::string name(path);
  for (char& c : name)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  if (name.ends_with(".gz")) name.resize(name.size() - 3);
  const std::size_t point = name.rfind('.');
  if (point == std::string::npos) return std::nullopt;
  for (const Ending& ending : kEndings)
    if (ending.text == std::string_view(name).substr(point + 1)) return ending.format;
  return std::nullopt;
}

std::optional<LogFormat> logFormatNamed(std::string_view name) noexcept {
  for (const Ending& ending : kEndings)
    if (ending.isName && ending.text == name) return ending.format;
  return std::nullopt;
}

std::vector<std::string> logFormatNames() {
  std::vector<std::string> names;
  for (const Ending& ending : kEndings)
    if (ending.isName) names.emplace_back(ending.text);
  return names;
}

}  // namespace orbseq

#include "io/HistoryReader.h"

#include <utility>

namespace orbseq {

HistoryReader::Reader HistoryReader::open(const std::string& path, const LogOptions& options) {
  if (options.format == LogFormat::kJsonLines) return JsonHistoryReader(path, options.builder);
  if (options.format != LogFormat::kCsv && options.format != LogFormat::kTsv)
    return LogHistoryReader(readLog(path, options), path == "-" ? "standard input" : path);
  CsvReader rows = openRows(path, options);
  if (hasHistories(rows, options)) return CsvHistoryReader(std::move(rows), options.customer);
  std::string name = rows.name();
  return LogHistoryReader(readLog(std::move(rows), options), std::move(name));
}

HistoryReader::HistoryReader(const std::string& path, const LogOptions& options)
    : reader_(open(path, options)) {}

bool HistoryReader::next(CustomerHistory& out) {
  return std::visit([&out](auto& reader) { return reader.next(out); }, reader_);
}

const std::string& HistoryReader::name() const noexcept {
  return std::visit([](const auto& reader) -> const std::string& { return reader.name(); },
                    reader_);
}

std::uintmax_t HistoryReader::bytesRead() const noexcept {
  return std::visit([](const auto& reader) { return reader.bytesRead(); }, reader_);
}

std::optional<std::uintmax_t> HistoryReader::size() const noexcept {
  return std::visit([](const auto& reader) { return reader.size(); }, reader_);
}

const UnknownItems& HistoryReader::unknown() const noexcept {
  return std::visit([](const auto& reader) -> const UnknownItems& { return reader.unknown(); },
                    reader_);
}

std::size_t HistoryReader::badRows() const noexcept {
  return std::visit([](const auto& reader) { return reader.badRows(); }, reader_);
}

}  // namespace orbseq

#include "io/HistoryReader.h"

namespace orbseq {

HistoryReader::Reader HistoryReader::open(const std::string& path, HistoryFormat format) {
  if (format == HistoryFormat::kJsonLines) return JsonHistoryReader(path);
  return CsvHistoryReader(path);
}

HistoryReader::HistoryReader(const std::string& path, HistoryFormat format)
    : reader_(open(path, format)) {}

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

}  // namespace orbseq

#include "xml/LineTokenizer.h"

#include <algorithm>

namespace OrbXML_830 {

std::optional<std::string_view> LineTokenizer::next(std::string_view separators) noexcept {
  const std::size_t begin = line_.find_first_not_of(separators, position_);
  if (begin == std::string_view::npos) {
    position_ = line_.size();
    return std::nullopt;
  }
  const std::size_t end = std::min(line_.find_first_of(separators, begin), line_.size());
  begin_ = begin;
  position_ = std::min(end + 1, line_.size());
  return line_.substr(begin, end - begin);
}

}  // namespace OrbXML_830

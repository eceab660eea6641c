#include "io/columnIndex.h"

#include <algorithm>

#include "common/guards.h"
#include "io/IoError.h"
#include "scoring/hostapi/QuErrorFormater.h"

namespace orbseq {

std::string listOfColumns(const std::vector<std::string>& columns) {
  constexpr std::size_t kListed = 16;
  std::string list = "; the columns are ";
  for (std::size_t i = 0; i < std::min(columns.size(), kListed); ++i)
    list += (i == 0 ? "" : ", ") + OrbScore::QuErrorFormater::Quote(columns[i]);
  if (columns.size() > kListed) list += ", ...";
  return list;
}

std::size_t columnIndex(const std::vector<std::string>& columns, std::string_view name,
                        const std::string& file, std::size_t row) {
  const auto first = std::find(columns.begin(), columns.end(), name);
  const auto found = std::count(first, columns.end(), name);
  const bool isUsable = found == 1 || (found > 1 && !guarded("log.columns of one name"));
  if (isUsable) return static_cast<std::size_t>(first - columns.begin());
  throw InputError(file, row,
                   (found == 0 ? "no column " : "more than one column ") +
                       OrbScore::QuErrorFormater::Quote(name) + listOfColumns(columns));
}

}  // namespace orbseq

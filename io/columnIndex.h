// Finds a column by its name.

#ifndef IO_COLUMNINDEX_H_
#define IO_COLUMNINDEX_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orbseq {

// The index of the column of exactly that name. Throws InputError, which tells the place and the
// columns found, when there is none or more than one. Row 0: no such place.
std::size_t columnIndex(const std::vector<std::string>& columns, std::string_view name,
                        const std::string& file, std::size_t row);

// "; the columns are "a", "b"", for an error.
std::string listOfColumns(const std::vector<std::string>& columns);

}  // namespace orbseq

#endif  // IO_COLUMNINDEX_H_

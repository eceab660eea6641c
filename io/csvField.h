// A text as one field of CSV (RFC 4180): in quotes where it holds a comma, a quote or a line end.

#ifndef IO_CSVFIELD_H_
#define IO_CSVFIELD_H_

#include <string>
#include <string_view>

namespace orbseq {

// For what is read back as it was.
std::string csvField(std::string_view text);

// For what people open in a spreadsheet.
// Deliberate: an apostrophe goes before a text that a spreadsheet would run as a formula: one that
// begins with = + - @, a tab or CR, unless it is a plain number or a sign alone.
std::string csvExport(std::string_view text);

}  // namespace orbseq

#endif  // IO_CSVFIELD_H_

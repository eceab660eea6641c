// A text as one field of CSV (RFC 4180): in quotes where it holds a comma, a quote or a line end.

#ifndef IO_CSVFIELD_H_
#define IO_CSVFIELD_H_

#include <string>
#include <string_view>

namespace orbseq {

std::string csvField(std::string_view text);

}  // namespace orbseq

#endif  // IO_CSVFIELD_H_

// `orbseq --limits`: every limit, its default, what --limits strangers makes of it, its option.

#ifndef CLI_LIMITS_H_
#define CLI_LIMITS_H_

#include <string>

namespace orbseq {

// A table for people, with a heading line.
std::string limitsText();

}  // namespace orbseq

#endif  // CLI_LIMITS_H_

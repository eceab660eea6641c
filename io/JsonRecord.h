// One customer in a line of JSON, such as
//
//   {"customer": "17", "history": "(1 2)(3)"}
//   {"customer": 17, "history": [[1, 2], [3]]}
//   {"customer": "7", "baskets": [["tea", "milk"], ["bread"]], "times": ["2025-03-01",
//   "2025-03-08"]}
//
// The customer is text or a number, whose digits become the text. The history is text, or an array
// of arrays of item numbers (-2147483648..2147483647), which becomes the text form; a negative
// item is written as the unsigned number of the same 32 bits, which the text form reads back as
// that item. Baskets hold items as texts or integers, whose digits are the text; their times are
// numbers, or texts as io/logTime.h reads them, one a basket. A line has either a history or
// baskets; times belong to baskets alone. Further members are ignored.
//
// Memory: what the line holds; nothing is built for ignored members.
// Errors: InputError "FILE:LINE: byte 14: ..." for what is not JSON, with the byte of the line, and
//         "FILE:LINE: ..." for a member that is missing, doubled or of the wrong kind.

#ifndef IO_JSONRECORD_H_
#define IO_JSONRECORD_H_

#include <optional>
#include <string>
#include <vector>

#include "common/Limits.h"

namespace orbseq {

class LineReader;

struct JsonRecord {
  static constexpr int kDepth = LogLimits::kJsonDepth;

  std::string customer;
  std::optional<std::string> history;             // or else
  std::vector<std::vector<std::string>> baskets;  // items' texts
  std::optional<std::vector<double>> times;       // [baskets]
};

// Goes to the next line that is not blank and reads it; false at the end.
bool nextJsonRecord(LineReader& lines, JsonRecord& out);

}  // namespace orbseq

#endif  // IO_JSONRECORD_H_

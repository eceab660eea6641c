// Writes ranked answers as text. One class per form: TableWriter, CsvWriter, JsonLinesWriter.
//
// Every operation appends to the caller's text and never clears it. The bytes depend on what is
// written alone: not on locale, time or terminal. Numbers in the forms for programs have 17
// significant digits, so that they read back exactly.
//
// Threads: one at a time on one writer. Errors: std::bad_alloc alone.

#ifndef CLI_RESULTWRITER_H_
#define CLI_RESULTWRITER_H_

#include <string>

#include "cli/Answers.h"

namespace orbseq {

class ResultWriter {
 public:
  virtual ~ResultWriter() = default;

  // What stands before the first customer.
  virtual void appendHeader(std::string& out) const = 0;
  // One customer's answers, best first; there may be none. `customer` is UTF-8.
  virtual void appendAnswers(std::string& out, const std::string& customer, Answers answers) = 0;
};

}  // namespace orbseq

#endif  // CLI_RESULTWRITER_H_

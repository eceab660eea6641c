// Answers as CSV: customer,rank,item,label,confidence,support,cause; a row per answer.
//
// RFC 4180 with LF as line end; a field is quoted where it holds a comma, a quote or a line end.
// Ranks count from 1; an item without a label has an empty one; confidence, support and cause are
// fractions. A customer without answers has no row.

#ifndef CLI_CSVWRITER_H_
#define CLI_CSVWRITER_H_

#include <string>

#include "cli/ItemLabels.h"
#include "cli/ResultWriter.h"

namespace orbseq {

class CsvWriter final : public ResultWriter {
 public:
  explicit CsvWriter(const ItemLabelMap& labels);

  void appendHeader(std::string& out) const override;
  void appendAnswers(std::string& out, const std::string& customer, Answers answers) override;

 private:
  ItemLabels labels_;
};

}  // namespace orbseq

#endif  // CLI_CSVWRITER_H_

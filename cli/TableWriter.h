// Answers as a table for people: a header line, then a block of lines per customer.
//
// Columns are aligned by the width that a terminal gives to characters; the label column is as
// wide as the model's widest label, at most 40 columns, and longer labels are cut. A model without
// labels has no label column. Numbers are fractions with four decimals. What would steer a
// terminal is replaced by U+FFFD. A customer without answers is shown with the words "no answer".

#ifndef CLI_TABLEWRITER_H_
#define CLI_TABLEWRITER_H_

#include <cstddef>
#include <string>

#include "cli/ItemLabels.h"
#include "cli/ResultWriter.h"

namespace orbseq {

class TableWriter final : public ResultWriter {
 public:
  explicit TableWriter(const ItemLabelMap& labels);

  void appendHeader(std::string& out) const override;
  void appendAnswers(std::string& out, const std::string& customer, Answers answers) override;

 private:
  void appendLabel(std::string& out, const std::string& label) const;

  ItemLabels labels_;
  std::size_t itemWidth_;   // columns of an item number
  std::size_t labelWidth_;  // columns of a label; 0: the model has none
};

}  // namespace orbseq

#endif  // CLI_TABLEWRITER_H_

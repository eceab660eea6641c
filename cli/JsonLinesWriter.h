// Answers as JSON lines: an object per answer, with the members customer (text), rank (from 1),
// item, label (text; empty where there is none), confidence, support and cause (fractions), in
// this order. A customer without answers has no line. A number that is not finite, which JSON
// cannot say, is null.

#ifndef CLI_JSONLINESWRITER_H_
#define CLI_JSONLINESWRITER_H_

#include <string>

#include "cli/ItemLabels.h"
#include "cli/ResultWriter.h"

namespace orbseq {

class JsonLinesWriter final : public ResultWriter {
 public:
  explicit JsonLinesWriter(const ItemLabelMap& labels);

  void appendHeader(std::string& out) const override;
  void appendAnswers(std::string& out, const std::string& customer, Answers answers) override;

 private:
  ItemLabels labels_;
};

}  // namespace orbseq

#endif  // CLI_JSONLINESWRITER_H_

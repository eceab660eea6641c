// Writes rules as text: a table for people, CSV, JSON lines, the common text form.
//
//   csv, jsonl  antecedents, consequents, support, confidence, cause, lift, count; fractions with
//               17 significant digits. Sets are written (1 2)(3) in CSV, [[1,2],[3]] in JSON lines,
//               where the labels stand beside them as antecedent_labels and consequent_labels.
//   text        1 2 -1 3 ==> 4 #SUP: 120 #CONF: 0.5
//
// Every operation appends to the caller's text. The bytes depend on the rules and labels alone.
// Threads: one at a time on one writer.

#ifndef CLI_RULEWRITER_H_
#define CLI_RULEWRITER_H_

#include <cstdint>
#include <memory>
#include <string>

#include "io/Model.h"

namespace SEQUENCE_NAMESPACE_800 {
class SeqAssociationRule;
}

namespace orbseq {

struct RatedRule {
  const SEQUENCE_NAMESPACE_800::SeqAssociationRule* rule = nullptr;
  std::int32_t count = 0;  // customers that hold the whole sequence
  double lift = 0.0;       // confidence by the consequent's share of all customers
};

class RuleWriter {
 public:
  // `format` is table, csv, jsonl or text; withLabels is for csv and text. `labels` must outlive
  // the writer.
  static std::unique_ptr<RuleWriter> make(const std::string& format, const ItemLabelMap& labels,
                                          bool withLabels);
  virtual ~RuleWriter() = default;

  virtual void appendHeader(std::string& out) const = 0;
  virtual void appendRule(std::string& out, const RatedRule& rule) const = 0;
};

}  // namespace orbseq

#endif  // CLI_RULEWRITER_H_

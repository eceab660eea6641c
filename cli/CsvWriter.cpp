#include "cli/CsvWriter.h"

#include "cli/numberText.h"
#include "io/csvField.h"

namespace orbseq {

CsvWriter::CsvWriter(const ItemLabelMap& labels) : labels_(labels, csvExport) {}

void CsvWriter::appendHeader(std::string& out) const {
  out += "customer,rank,item,label,confidence,support,cause\n";
}

void CsvWriter::appendAnswers(std::string& out, const std::string& customer, Answers answers) {
  const std::string name = csvExport(customer);
  std::size_t rank = 0;
  for (const auto& answer : answers) {
    out += name;
    out += ',';
    appendInteger(out, ++rank);
    out += ',';
    appendInteger(out, answer.GetItem());
    out += ',';
    out += labels_.of(answer.GetItem());
    for (const double value : {answer.GetConfidence(), answer.GetSupport(), answer.GetCause()}) {
      out += ',';
      appendExact(out, value);
    }
    out += '\n';
  }
}

}  // namespace orbseq

#include "cli/CsvWriter.h"

#include <string_view>

#include "cli/numberText.h"

namespace orbseq {

namespace {

std::string csvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field += '"';
}

}  // namespace

CsvWriter::CsvWriter(const OrbScore::ScoreDictionary* labels) : labels_(labels, csvField) {}

void CsvWriter::appendHeader(std::string& out) const {
  out += "customer,rank,item,label,confidence,support,cause\n";
}

void CsvWriter::appendAnswers(std::string& out, const std::string& customer, Answers answers) {
  const std::string name = csvField(customer);
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

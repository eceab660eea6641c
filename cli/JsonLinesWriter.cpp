#include "cli/JsonLinesWriter.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cli/numberText.h"

namespace orbseq {

namespace {

using nlohmann::json;

// The text in quotes; bytes that are not UTF-8 become U+FFFD.
std::string jsonString(std::string_view text) {
  return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

void appendMember(std::string& out, std::string_view name, double value) {
  out += name;
  if (std::isfinite(value))
    appendExact(out, value);
  else
    out += "null";
}

}  // namespace

JsonLinesWriter::JsonLinesWriter(const ItemLabelMap& labels) : labels_(labels, jsonString) {}

void JsonLinesWriter::appendHeader(std::string&) const {}

void JsonLinesWriter::appendAnswers(std::string& out, const std::string& customer,
                                    Answers answers) {
  const std::string begin = "{\"customer\":" + jsonString(customer) + ",\"rank\":";
  std::size_t rank = 0;
  for (const auto& answer : answers) {
    out += begin;
    appendInteger(out, ++rank);
    out += ",\"item\":";
    appendInteger(out, answer.GetItem());
    out += ",\"label\":";
    out += labels_.of(answer.GetItem());
    appendMember(out, ",\"confidence\":", answer.GetConfidence());
    appendMember(out, ",\"support\":", answer.GetSupport());
    appendMember(out, ",\"cause\":", answer.GetCause());
    out += "}\n";
  }
}

}  // namespace orbseq

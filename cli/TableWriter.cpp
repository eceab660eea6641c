#include "cli/TableWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "cli/displayText.h"

namespace orbseq {

namespace {

constexpr std::size_t kWidestLabel = 40;

}  // namespace

TableWriter::TableWriter(const ItemLabelMap& labels)
    : labels_(labels, printable), itemWidth_(4), labelWidth_(0) {
  for (const auto& [item, label] : labels_.all()) {
    itemWidth_ = std::max(itemWidth_, std::to_string(item).size());
    labelWidth_ = std::max(labelWidth_, displayWidth(label));
  }
  if (labelWidth_ > 0) labelWidth_ = std::clamp(labelWidth_, std::size_t{5}, kWidestLabel);
}

void TableWriter::appendHeader(std::string& out) const {
  fmt::format_to(std::back_inserter(out), "{:>6}  {:>{}}", "rank", "item", itemWidth_);
  appendLabel(out, "label");
  out += "  confidence  support   cause\n";
}

void TableWriter::appendAnswers(std::string& out, const std::string& customer, Answers answers) {
  out += "\ncustomer " + printable(customer) + "\n";
  if (answers.empty()) out += "  no answer\n";
  std::size_t rank = 0;
  for (const auto& answer : answers) {
    fmt::format_to(std::back_inserter(out), "{:>6}  {:>{}}", ++rank, answer.GetItem(), itemWidth_);
    appendLabel(out, labels_.of(answer.GetItem()));
    fmt::format_to(std::back_inserter(out), "  {:>10.4f}  {:>7.4f}  {:>6.4f}\n",
                   answer.GetConfidence(), answer.GetSupport(), answer.GetCause());
  }
}

void TableWriter::appendLabel(std::string& out, const std::string& label) const {
  if (labelWidth_ > 0) out += "  " + fitted(label, labelWidth_);
}

}  // namespace orbseq

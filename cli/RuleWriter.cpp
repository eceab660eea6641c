#include "cli/RuleWriter.h"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

#include "cli/numberText.h"
#include "cli/sequenceText.h"
#include "io/csvField.h"
#include "sequence/SeqAssociationRule.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

namespace {

using nlohmann::json;
using SEQUENCE_NAMESPACE_800::Sequence;
using SEQUENCE_NAMESPACE_800::TimedItemSet;

class TableRules final : public RuleWriter {
 public:
  explicit TableRules(const ItemLabelMap& labels) : labels_(labels) {}

  void appendHeader(std::string& out) const override {
    out += "confidence  support   cause    lift    count  antecedents => consequents\n";
  }
  void appendRule(std::string& out, const RatedRule& rated) const override {
    const auto& rule = *rated.rule;
    fmt::format_to(std::back_inserter(out), "{:>10.4f}  {:>7.4f}  {:>6.4f}  {:>6.2f}  {:>7}  {}\n",
                   rule.GetConfidence(), rule.GetSupport(), rule.GetCause(), rated.lift,
                   rated.count,
                   readableSets(rule.GetAntecedent(), labels_) + " => " +
                       readableSets(rule.GetConsequent(), labels_));
  }

 private:
  const ItemLabelMap& labels_;
};

class CsvRules final : public RuleWriter {
 public:
  explicit CsvRules(const ItemLabelMap* labels) : labels_(labels) {}

  void appendHeader(std::string& out) const override {
    out += "antecedents,consequents,support,confidence,cause,lift,count\n";
  }
  void appendRule(std::string& out, const RatedRule& rated) const override {
    const auto& rule = *rated.rule;
    out += csvExport(setsOf(rule.GetAntecedent()));
    out += ',';
    out += csvExport(setsOf(rule.GetConsequent()));
    for (const double value :
         {rule.GetSupport(), rule.GetConfidence(), rule.GetCause(), rated.lift}) {
      out += ',';
      appendExact(out, value);
    }
    out += ',';
    appendInteger(out, rated.count);
    out += '\n';
  }

 private:
  std::string setsOf(const Sequence& sequence) const {
    return labels_ == nullptr ? historyText(sequence) : readableSets(sequence, *labels_);
  }

  const ItemLabelMap* labels_;  // null: numbers
};

class JsonRules final : public RuleWriter {
 public:
  explicit JsonRules(const ItemLabelMap& labels) : labels_(labels) {}

  void appendHeader(std::string&) const override {}
  void appendRule(std::string& out, const RatedRule& rated) const override {
    const auto& rule = *rated.rule;
    appendSide(out, "{\"antecedents\":", ",\"antecedent_labels\":", rule.GetAntecedent());
    appendSide(out, ",\"consequents\":", ",\"consequent_labels\":", rule.GetConsequent());
    appendNumber(out, ",\"support\":", rule.GetSupport());
    appendNumber(out, ",\"confidence\":", rule.GetConfidence());
    appendNumber(out, ",\"cause\":", rule.GetCause());
    appendNumber(out, ",\"lift\":", rated.lift);
    out += ",\"count\":";
    appendInteger(out, rated.count);
    out += "}\n";
  }

 private:
  void appendSide(std::string& out, const char* numbers, const char* labels,
                  const Sequence& sequence) const {
    json items = json::array();
    json texts = json::array();
    for (std::int32_t k = 0; k < sequence.Length(); ++k) {
      const TimedItemSet& set = *sequence[k];
      json setTexts = json::array();
      items.push_back(std::vector<std::int32_t>(set.Begin(), set.End()));
      for (auto item = set.Begin(); item != set.End(); ++item) {
        const auto label = labels_.find(*item);
        setTexts.push_back(label == labels_.end() ? std::string() : label->second);
      }
      texts.push_back(std::move(setTexts));
    }
    out += numbers + items.dump();
    out += labels + texts.dump(-1, ' ', false, json::error_handler_t::replace);
  }

  static void appendNumber(std::string& out, const char* name, double value) {
    out += name;
    appendExact(out, value);
  }

  const ItemLabelMap& labels_;
};

class TextRules final : public RuleWriter {
 public:
  explicit TextRules(const ItemLabelMap* labels) : labels_(labels) {}

  void appendHeader(std::string&) const override {}
  void appendRule(std::string& out, const RatedRule& rated) const override {
    appendSets(out, rated.rule->GetAntecedent(), labels_, false);
    out += " ==> ";
    appendSets(out, rated.rule->GetConsequent(), labels_, false);
    out += " #SUP: ";
    appendInteger(out, rated.count);
    out += " #CONF: ";
    appendExact(out, rated.rule->GetConfidence());
    out += '\n';
  }

 private:
  const ItemLabelMap* labels_;  // null: numbers
};

}  // namespace

std::unique_ptr<RuleWriter> RuleWriter::make(const std::string& format, const ItemLabelMap& labels,
                                             bool withLabels) {
  const ItemLabelMap* const used = withLabels ? &labels : nullptr;
  if (format == "csv") return std::make_unique<CsvRules>(used);
  if (format == "jsonl") return std::make_unique<JsonRules>(labels);
  if (format == "text") return std::make_unique<TextRules>(used);
  return std::make_unique<TableRules>(labels);
}

}  // namespace orbseq

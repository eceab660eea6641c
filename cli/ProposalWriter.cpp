#include "cli/ProposalWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "cli/displayText.h"
#include "cli/numberText.h"
#include "cli/sequenceText.h"
#include "io/csvField.h"
#include "sequence/Sequence.h"
#include "sequence/TimedItemSet.h"

namespace orbseq {

namespace {

using SEQUENCE_NAMESPACE_800::Proposal;
using SEQUENCE_NAMESPACE_800::Sequence;

std::string labelOf(const ItemLabelMap& labels, std::int32_t item) {
  const auto found = labels.find(item);
  return found == labels.end() ? std::string() : found->second;
}

std::unique_ptr<const Sequence> sequenceOf(const Proposal& proposal) {
  return std::unique_ptr<const Sequence>(proposal.sequence.createSequence());
}

const char* placeOf(const Proposal& proposal) {
  return proposal.joinsLastSet ? "current" : "future";
}

class TableProposals final : public ProposalWriter {
 public:
  explicit TableProposals(const ItemLabelMap& labels) : labels_(labels) {}

  void appendHeader(std::string&) const override {}
  void append(std::string& out, const std::string& customer, const std::string& history,
              std::span<const RankedProposal> proposals) const override {
    out += "customer " + printable(customer) + ": " + history + "\n";
    if (proposals.empty()) {
      out += "  no stored sequence of the history proposes anything\n\n";
      return;
    }
    out +=
        "  rank  confidence  support   cause  together      of  skipped  proposed by "
        "(* the one that wins)\n";
    for (const RankedProposal& ranked : proposals) {
      const Proposal& proposal = *ranked.proposal;
      if (proposal.wins)
        fmt::format_to(std::back_inserter(out), "  {:>4}  {}\n", ranked.rank,
                       itemText(proposal.consequent.GetItem()));
      const bool isPopular = proposal.sequence.size() == 0;
      fmt::format_to(std::back_inserter(out),
                     "        {:>10.4f}  {:>7.4f}  {:>6.4f}  {:>8}  {:>6}  {:>7}  {} {}\n",
                     proposal.consequent.GetConfidence(), proposal.consequent.GetSupport(),
                     proposal.consequent.GetCause(), proposal.together, proposal.count,
                     proposal.skipped, proposal.wins ? '*' : ' ',
                     isPopular ? "what is popular" : readableSets(*sequenceOf(proposal), labels_));
    }
    out += '\n';
  }

 private:
  std::string itemText(std::int32_t item) const {
    const std::string label = labelOf(labels_, item);
    return label.empty() ? "item " + std::to_string(item) : printable(label);
  }

  const ItemLabelMap& labels_;
};

class CsvProposals final : public ProposalWriter {
 public:
  explicit CsvProposals(const ItemLabelMap& labels) : labels_(labels) {}

  void appendHeader(std::string& out) const override {
    out +=
        "customer,rank,item,label,wins,confidence,support,cause,count,together,skipped,place,"
        "sequence\n";
  }
  void append(std::string& out, const std::string& customer, const std::string&,
              std::span<const RankedProposal> proposals) const override {
    for (const RankedProposal& ranked : proposals) {
      const Proposal& proposal = *ranked.proposal;
      const auto& consequent = proposal.consequent;
      fmt::format_to(std::back_inserter(out), "{},{},{},{},{}", csvExport(customer), ranked.rank,
                     consequent.GetItem(), csvExport(labelOf(labels_, consequent.GetItem())),
                     proposal.wins ? 1 : 0);
      for (const double value :
           {consequent.GetConfidence(), consequent.GetSupport(), consequent.GetCause()}) {
        out += ',';
        appendExact(out, value);
      }
      fmt::format_to(std::back_inserter(out), ",{},{},{},{},{}\n", proposal.count,
                     proposal.together, proposal.skipped, placeOf(proposal),
                     historyText(*sequenceOf(proposal)));
    }
  }

 private:
  const ItemLabelMap& labels_;
};

class JsonProposals final : public ProposalWriter {
 public:
  explicit JsonProposals(const ItemLabelMap& labels) : labels_(labels) {}

  void appendHeader(std::string&) const override {}
  void append(std::string& out, const std::string& customer, const std::string&,
              std::span<const RankedProposal> proposals) const override {
    for (const RankedProposal& ranked : proposals) {
      const Proposal& proposal = *ranked.proposal;
      const auto& consequent = proposal.consequent;
      nlohmann::ordered_json line;
      line["customer"] = customer;
      line["rank"] = ranked.rank;
      line["item"] = consequent.GetItem();
      line["label"] = labelOf(labels_, consequent.GetItem());
      line["wins"] = proposal.wins;
      line["confidence"] = consequent.GetConfidence();
      line["support"] = consequent.GetSupport();
      line["cause"] = consequent.GetCause();
      line["count"] = proposal.count;
      line["together"] = proposal.together;
      line["skipped"] = proposal.skipped;
      line["place"] = placeOf(proposal);
      auto& sets = line["sequence"] = nlohmann::json::array();
      const auto sequence = sequenceOf(proposal);
      for (std::int32_t k = 0; k < sequence->Length(); ++k)
        sets.push_back(std::vector<std::int32_t>((*sequence)[k]->Begin(), (*sequence)[k]->End()));
      out += line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    }
  }

 private:
  const ItemLabelMap& labels_;
};

}  // namespace

std::unique_ptr<ProposalWriter> ProposalWriter::make(const std::string& format,
                                                     const ItemLabelMap& labels) {
  if (format == "table") return std::make_unique<TableProposals>(labels);
  if (format == "jsonl") return std::make_unique<JsonProposals>(labels);
  return std::make_unique<CsvProposals>(labels);
}

}  // namespace orbseq

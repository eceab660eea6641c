// The rules as PMML.

#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "lattice/LatticeDocument.h"
#include "lattice/LatticeElement.h"
#include "lattice/SequenceDictionary.h"
#include "lattice/exportIndex.h"
#include "lattice/exportParts.h"
#include "lattice/statusCodes.h"
#include "sequence/SeqAssociationRule.h"
#include "xml/WriteTree.h"
#include "xml/XMLDocType.h"

namespace orbseq {

namespace {

using OrbCommon_830::OrbStatus;
using SEQUENCE_NAMESPACE_800::SeqAssociationRule;
using Rules = std::vector<SeqAssociationRule>;

constexpr const char* kNamespace = "http://www.dmg.org/PMML-3_2";
constexpr const char* kSchemaLocation = "http://www.dmg.org/PMML-3_2 pmml-3-2.xsd";
constexpr const char* kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";

constexpr int kJoinsLastSet = 0;  // join types
constexpr int kFollowsLater = 1;

// Antecedent and consequent in one; any other join type leaves the antecedent alone.
Sequence wholeOf(const SeqAssociationRule& rule) {
  Sequence whole(rule.GetAntecedent());
  if (rule.GetJoinType() == kJoinsLastSet) whole.JoinCurrent(&rule.GetConsequent());
  if (rule.GetJoinType() == kFollowsLater) whole.JoinTemporal(&rule.GetConsequent());
  return whole;
}

// An element with textual attributes.
using Attributes = std::initializer_list<std::pair<const char*, const char*>>;
Element& addElement(Element& parent, const char* name, Attributes attributes) {
  Element& element = orbseq::addElement(parent, name);
  for (const auto& [attribute, value] : attributes) element.AddAttribute(attribute, value);
  return element;
}

// Deliberate: the same whatever the join type and the times are.
void addDelimiter(Element& parent) {
  addElement(parent, "Delimiter", {{"delimiter", "acrossTimeWindows"}, {"gap", "unknown"}});
}

// The document of one dictionary and its selected rules.
class RulesDocument {
 public:
  RulesDocument(const SequenceDictionary& dictionary, const PmmlOptions& options,
                const Rules& rules);

  ElementPtr make() const;

 private:
  ElementPtr makeModel() const;
  void addLattice(Element& model) const;
  void addStatistics(Element& model) const;
  void addSequences(Element& model) const;
  void addRules(Element& model) const;
  ElementPtr sequenceElement(const Sequence& sequence, std::int32_t id) const;
  ElementPtr ruleElement(const SeqAssociationRule& rule, std::size_t id) const;
  std::int32_t idOf(const Sequence& sequence) const;

  const SequenceDictionary& dictionary_;
  const PmmlOptions& options_;
  const Rules& rules_;
  const double customers_;
  ExportIndex index_;
  std::map<Sequence, std::int32_t> sequences_;  // sequence: id
  std::unique_ptr<LatticeElement> lattice_;     // null where the document carries none
};

RulesDocument::RulesDocument(const SequenceDictionary& dictionary, const PmmlOptions& options,
                             const Rules& rules)
    : dictionary_(dictionary),
      options_(options),
      rules_(rules),
      customers_(customersOf(dictionary)) {
  const auto add = [this](const Sequence& sequence) {
    if (sequences_.emplace(sequence, kNoId).second) index_.add(sequence);
  };
  for (const SeqAssociationRule& rule : rules) {
    add(rule.GetAntecedent());
    add(rule.GetConsequent());
    add(wholeOf(rule));
  }
  index_.assignIds();
  std::int32_t id = 0;
  for (auto& entry : sequences_) entry.second = ++id;
  if (options.lattice)
    lattice_ = std::make_unique<LatticeElement>(
        dictionary,
        LatticeDocumentOptions{
            .closed = true, .labels = options.labels, .minimumSupport = options.minSupport});
}

std::int32_t RulesDocument::idOf(const Sequence& sequence) const {
  const auto entry = sequences_.find(sequence);
  return entry != sequences_.end() ? entry->second : kNoId;
}

ElementPtr RulesDocument::make() const {
  ElementPtr root = makeElement("PMML");
  root->AddAttribute("version", "3.2");
  root->AddAttribute("xmlns", kNamespace);
  root->AddAttribute("xmlns:xsi", kSchemaInstance);
  root->AddAttribute("xsi:schemaLocation", kSchemaLocation);
  addHeader(*root, "Carma model for sequential association rules");

  Element& fields = orbseq::addElement(*root, "DataDictionary");
  fields.AddAttribute("numberOfFields", 3);
  // Deliberate: the time is a text as well.
  for (const char* name : {"customer", "time", "item"})
    addElement(fields, "DataField",
               {{"name", name}, {"optype", "categorical"}, {"dataType", "string"}});

  Element& derived =
      addElement(orbseq::addElement(*root, "TransformationDictionary"), "DerivedField",
                 {{"name", "transaction"}, {"optype", "categorical"}, {"dataType", "string"}});
  addElement(derived, "Aggregate",
             {{"field", "item"}, {"function", "multiset"}, {"groupField", "customer"}});

  orbseq::addElement(*root, makeModel());
  return root;
}

ElementPtr RulesDocument::makeModel() const {
  ElementPtr model = makeElement("SequenceModel");
  model->AddAttribute("modelName", "Carma model for sequential association");
  model->AddAttribute("functionName", "sequences");
  model->AddAttribute("algorithmName", "Carma");
  model->AddAttribute("numberOfTransactions", customers_);
  model->AddAttribute("maxNumberOfItemsPerTransaction", options_.maxItemsPerTransaction);
  model->AddAttribute("avgNumberOfItemsPerTransaction", options_.avgItemsPerTransaction);
  if (lattice_) addLattice(*model);
  addStatistics(*model);

  Element& schema = orbseq::addElement(*model, "MiningSchema");
  for (const char* name : {"item", "transaction", "time"})
    addElement(schema, "MiningField", {{"name", name}, {"usageType", "active"}});
  addElement(schema, "MiningField", {{"name", "customer"}, {"usageType", "supplementary"}});

  addItems(*model, index_, options_.labels);
  addItemSets(*model, index_);
  addSequences(*model);
  addRules(*model);
  return model;
}

void RulesDocument::addLattice(Element& model) const {
  Element& extension = addElement(model, "Extension",
                                  {{"extender", kExtender},
                                   {"name", "SequentialAssociationLattice"},
                                   {"value", kLatticeVersion}});
  orbseq::addElement(extension, lattice_->make());
}

void RulesDocument::addStatistics(Element& model) const {
  const auto add = [&model](const char* name, double value) {
    addElement(model, "Extension", {{"extender", kExtender}, {"name", name}})
        .AddAttribute("value", value);
  };
  add("minimumSupport", minimumSupportOf(dictionary_, options_.minSupport));
  add("minimumConfidence", options_.minConfidence);
  add("numberOfItems", static_cast<double>(index_.items().size()));
  add("numberOfSets", static_cast<double>(index_.itemSets().size()));
  add("numberOfSequences", static_cast<double>(sequences_.size()));
  add("numberOfRules", static_cast<double>(rules_.size()));
  add("timeWindowWidth", dictionary_.getSlidingWindow());
  add("minimumTime", dictionary_.getMinGap());
  add("maximumTime", dictionary_.getMaxGap());
}

void RulesDocument::addSequences(Element& model) const {
  addGenerated(model, [this](const GeneratedElements::Consumer& take) {
    for (const auto& [sequence, id] : sequences_) take(*sequenceElement(sequence, id));
  });
}

ElementPtr RulesDocument::sequenceElement(const Sequence& sequence, std::int32_t id) const {
  const std::int32_t count = countOf(counterOf(dictionary_, sequence));
  ElementPtr element = makeElement("Sequence");
  element->AddAttribute("id", id);
  element->AddAttribute("numberOfSets", sequence.Length());
  element->AddAttribute("occurrence", count);
  element->AddAttribute("support", count / customers_);
  for (std::int32_t k = 0; k < sequence.Length(); ++k) {
    if (k > 0) addDelimiter(*element);
    orbseq::addElement(*element, "SetReference").AddAttribute("setId", index_.idOf(*sequence[k]));
  }
  return element;
}

void RulesDocument::addRules(Element& model) const {
  addGenerated(model, [this](const GeneratedElements::Consumer& take) {
    for (std::size_t i = 0; i < rules_.size(); ++i) take(*ruleElement(rules_[i], i + 1));
  });
}

ElementPtr RulesDocument::ruleElement(const SeqAssociationRule& rule, std::size_t id) const {
  const Sequence whole = wholeOf(rule);
  ElementPtr element = makeElement("SequenceRule");
  element->AddAttribute("id", static_cast<double>(id));
  element->AddAttribute("support", rule.GetSupport());
  element->AddAttribute("numberOfSets", whole.Length());
  element->AddAttribute("occurrence", countOf(counterOf(dictionary_, whole)));
  element->AddAttribute("confidence", rule.GetConfidence());
  const auto addPart = [&](const char* name, const Sequence& sequence) {
    Element& part = orbseq::addElement(*element, name);
    orbseq::addElement(part, "SequenceReference").AddAttribute("seqId", idOf(sequence));
  };
  addPart("AntecedentSequence", rule.GetAntecedent());
  addDelimiter(*element);
  addPart("ConsequentSequence", rule.GetConsequent());
  return element;
}

}  // namespace

OrbStatus writePmml(std::ostream& os, const SequenceDictionary& dictionary,
                    const PmmlOptions& options) {
  try {
    Rules rules;
    const OrbStatus status = dictionary.GetRules(
        rules, options.minSupport, options.maxSupport, options.minConfidence, options.maxConfidence,
        options.minCause, options.maxCause, options.sortBy, options.maximalOnly);
    if (status.IsError()) return status;
    const RulesDocument document(dictionary, options, rules);
    const std::unique_ptr<OrbXML_830::XMLDocType> docType(
        OrbXML_830::XMLDocType::Create("PMML", "sequentialmodel.dtd", 0));
    const ElementPtr root = document.make();
    OrbXML_830::WriteTree(os, docType.get(), root.get(), true);
    return status;
  } catch (const std::exception&) {
    return {SEQUENCE_NAMESPACE_800::kFailure, false};
  }
}

}  // namespace orbseq

namespace SEQUENCE_NAMESPACE_800 {

OrbCommon_830::OrbStatus SequenceDictionary::ExportRulesXML(
    std::ostream& os, double minSupport, double maxSupport, double minConfidence,
    double maxConfidence, double minCause, double maxCause, int maxItemsPerTransaction,
    double avgItemsPerTransaction, char sortBy, bool maximalOnly) const {
  return orbseq::writePmml(os, *this,
                           {.minSupport = minSupport,
                            .maxSupport = maxSupport,
                            .minConfidence = minConfidence,
                            .maxConfidence = maxConfidence,
                            .minCause = minCause,
                            .maxCause = maxCause,
                            .sortBy = sortBy,
                            .maximalOnly = maximalOnly,
                            .maxItemsPerTransaction = maxItemsPerTransaction,
                            .avgItemsPerTransaction = avgItemsPerTransaction,
                            .lattice = false});
}

}  // namespace SEQUENCE_NAMESPACE_800

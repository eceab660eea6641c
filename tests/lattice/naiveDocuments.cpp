#include "tests/lattice/naiveDocuments.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace orbseq::test {

namespace {

std::string number(double value) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out.precision(15);
  out << value;
  return out.str();
}

// One element as text: attributes in order, children behind them.
class Text {
 public:
  explicit Text(std::string name) : name_(std::move(name)) {}

  Text& with(const std::string& attribute, const std::string& value) {
    attributes_ += " " + attribute + "=\"" + value + "\"";
    return *this;
  }
  Text& with(const std::string& attribute, double value) {
    return std::isfinite(value) ? with(attribute, number(value)) : *this;
  }
  Text& add(const Text& child) {
    children_ += child.str();
    return *this;
  }
  std::string str() const {
    const std::string start = "\n<" + name_ + attributes_;
    return children_.empty() ? start + "/>" : start + ">" + children_ + "\n</" + name_ + ">";
  }

 private:
  std::string name_;
  std::string attributes_;
  std::string children_;
};

std::string document(const std::string& type, const std::string& dtd, const Text& root) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<!DOCTYPE " + type + " SYSTEM \"" + dtd +
         "\">\n" + root.str();
}

Text header(const std::string& description) {
  return Text("Header")
      .with("copyright", "Copyright (c) OrbSequence")
      .with("description", description)
      .add(Text("Application")
               .with("name", "Tavrel Sequential Association Component C++")
               .with("version", "1.2.1"));
}

// The position of a key among those that are there, from 1; -1 when it is not there.
template <class Key>
double idIn(const std::set<Key>& keys, const Key& key) {
  const auto found = keys.find(key);
  return found == keys.end() ? -1 : 1.0 + static_cast<double>(std::distance(keys.begin(), found));
}

struct Index {
  std::set<int> items;
  std::set<Items> sets;
  std::set<History> sequences;

  void add(const History& sequence) {
    sequences.insert(sequence);
    for (const Items& set : sequence) {
      sets.insert(set);
      items.insert(set.begin(), set.end());
    }
  }

  void writeTo(Text& parent, const ItemLabelMap* labels) const {
    for (const int item : items) {
      Text element("Item");
      element.with("id", idIn(items, item)).with("value", item);
      if (labels != nullptr && labels->contains(item))
        element.with("mappedValue", labels->at(item));
      parent.add(element);
    }
    for (const Items& set : sets) {
      Text element("Itemset");
      element.with("id", idIn(sets, set)).with("numberOfItems", static_cast<double>(set.size()));
      for (const int item : set) element.add(Text("ItemRef").with("itemRef", idIn(items, item)));
      parent.add(element);
    }
  }
};

// Null for a sequence that is not stored, or has none.
const SequenceCounter* counterOf(const SequenceDictionary& dictionary, const History& sequence) {
  if (itemCount(sequence) > 32) return nullptr;
  const NTSequence key = packed(sequence);
  return dictionary.getDescriptor(&key);
}

double countOf(const SequenceDictionary& dictionary, const History& sequence) {
  const SequenceCounter* const counter = counterOf(dictionary, sequence);
  return counter == nullptr ? 0 : counter->getCount();
}

double larger(double own, double asked) { return own > asked ? own : asked; }

Text sequenceElement(const SequenceDictionary& dictionary, const Index& index,
                     const History& sequence, double id) {
  const double count = countOf(dictionary, sequence);
  Text element("Sequence");
  element.with("id", id).with("support", count / countOf(dictionary, {})).with("occurrence", count);
  element.with("numberOfSets", static_cast<double>(sequence.size()));
  for (const Items& set : sequence)
    element.add(Text("ItemsetRef").with("itemsetRef", idIn(index.sets, set)));
  const Links links = linksOf(dictionary, sequence).value_or(Links());
  Text list("SeqAdjacentList");
  list.with("numberOfAdjacentItems", static_cast<double>(links.size()));
  for (const auto& [item, position] : links)
    list.add(
        Text("AdjacentItem").with("itemRef", idIn(index.items, item)).with("position", position));
  return element.add(list);
}

Text latticeElement(const SequenceDictionary& dictionary, const LatticeDocumentOptions& options) {
  Index index;
  for (int level = 0; level < dictionary.getNumLevels(); ++level)
    for (const History& sequence : sequencesOfSize(dictionary, level)) index.add(sequence);
  const int largest = dictionary.LargestSequence();
  Text lattice("SeqAssociationLattice");
  lattice.add(Text("SeqInputStats")
                  .with("numberOfTransactions", countOf(dictionary, {}))
                  .with("minimumSupport",
                        larger(dictionary.getReductionThreshold(), options.minimumSupport))
                  .with("maxSequenceSize", largest + (options.closed ? 1 : 0))
                  .with("numberOfItems", static_cast<double>(index.items.size()))
                  .with("numberOfSets", static_cast<double>(index.sets.size()))
                  .with("numberOfSequences", static_cast<double>(index.sequences.size())));
  index.writeTo(lattice, options.labels);
  double id = 1;
  for (int level = 0; level <= largest; ++level) {
    const std::vector<History> sequences = sequencesOfSize(dictionary, level);
    Text element("LatticeLevel");
    element.with("level", level).with("numberOfSequences", static_cast<double>(sequences.size()));
    for (const History& sequence : sequences)
      element.add(sequenceElement(dictionary, index, sequence, id++));
    lattice.add(element);
  }
  if (options.closed)
    lattice.add(Text("LatticeLevel").with("level", largest + 1).with("numberOfSequences", 0.0));
  return lattice;
}

Text extension(const std::string& name, double value) {
  return Text("Extension").with("extender", "OrbSequence").with("name", name).with("value", value);
}

Text delimiter() {
  return Text("Delimiter").with("delimiter", "acrossTimeWindows").with("gap", "unknown");
}

History wholeOf(const Rule& rule) {
  History whole = rule.antecedent;
  whole.insert(whole.end(), rule.consequent.begin(), rule.consequent.end());
  return whole;
}

void writeRules(Text& model, const SequenceDictionary& dictionary, const Index& index,
                const std::vector<Rule>& rules) {
  for (const History& sequence : index.sequences) {
    const double count = countOf(dictionary, sequence);
    Text element("Sequence");
    element.with("id", idIn(index.sequences, sequence));
    element.with("numberOfSets", static_cast<double>(sequence.size())).with("occurrence", count);
    element.with("support", count / countOf(dictionary, {}));
    for (std::size_t k = 0; k < sequence.size(); ++k) {
      if (k > 0) element.add(delimiter());
      element.add(Text("SetReference").with("setId", idIn(index.sets, sequence[k])));
    }
    model.add(element);
  }
  const auto part = [&index](const std::string& name, const History& sequence) {
    return Text(name).add(Text("SequenceReference").with("seqId", idIn(index.sequences, sequence)));
  };
  double id = 1;
  for (const Rule& rule : rules)
    model.add(Text("SequenceRule")
                  .with("id", id++)
                  .with("support", rule.support)
                  .with("numberOfSets", static_cast<double>(wholeOf(rule).size()))
                  .with("occurrence", countOf(dictionary, wholeOf(rule)))
                  .with("confidence", rule.confidence)
                  .add(part("AntecedentSequence", rule.antecedent))
                  .add(delimiter())
                  .add(part("ConsequentSequence", rule.consequent)));
}

Text modelElement(const SequenceDictionary& dictionary, const PmmlOptions& options) {
  const std::vector<Rule> selected =
      rules(dictionary,
            {options.minSupport, options.maxSupport, options.minConfidence, options.maxConfidence,
             options.minCause, options.maxCause, options.sortBy, options.maximalOnly});
  Index index;
  for (const Rule& rule : selected)
    for (const History& part : {rule.antecedent, rule.consequent, wholeOf(rule)}) index.add(part);
  Text model("SequenceModel");
  model.with("modelName", "Carma model for sequential association")
      .with("functionName", "sequences")
      .with("algorithmName", "Carma")
      .with("numberOfTransactions", countOf(dictionary, {}))
      .with("maxNumberOfItemsPerTransaction", options.maxItemsPerTransaction)
      .with("avgNumberOfItemsPerTransaction", options.avgItemsPerTransaction);
  if (options.lattice)
    model.add(Text("Extension")
                  .with("extender", "OrbSequence")
                  .with("name", "SequentialAssociationLattice")
                  .with("value", "1.2.1")
                  .add(latticeElement(dictionary, {true, options.labels, options.minSupport})));
  model
      .add(extension("minimumSupport",
                     larger(dictionary.getReductionThreshold(), options.minSupport)))
      .add(extension("minimumConfidence", options.minConfidence))
      .add(extension("numberOfItems", static_cast<double>(index.items.size())))
      .add(extension("numberOfSets", static_cast<double>(index.sets.size())))
      .add(extension("numberOfSequences", static_cast<double>(index.sequences.size())))
      .add(extension("numberOfRules", static_cast<double>(selected.size())))
      .add(extension("timeWindowWidth", dictionary.getSlidingWindow()))
      .add(extension("minimumTime", dictionary.getMinGap()))
      .add(extension("maximumTime", dictionary.getMaxGap()));
  const auto field = [](const std::string& name, const std::string& usage) {
    return Text("MiningField").with("name", name).with("usageType", usage);
  };
  model.add(Text("MiningSchema")
                .add(field("item", "active"))
                .add(field("transaction", "active"))
                .add(field("time", "active"))
                .add(field("customer", "supplementary")));
  index.writeTo(model, options.labels);
  writeRules(model, dictionary, index, selected);
  return model;
}

Text dataField(const std::string& element, const std::string& name) {
  return Text(element).with("name", name).with("optype", "categorical").with("dataType", "string");
}

}  // namespace

std::string naiveLatticeDocument(const SequenceDictionary& dictionary,
                                 const LatticeDocumentOptions& options) {
  Text root("SequentialAssociationLattice");
  root.with("version", "1.2.1")
      .add(header("Carma model for sequential association lattice"))
      .add(Text("DataDictionary")
               .with("numberOfFields", "1")
               .add(Text("DataField").with("name", "item").with("optype", "categorical")))
      .add(latticeElement(dictionary, options));
  return document("SequentialAssociationLattice", "sequentiallattice.dtd", root);
}

std::string naivePmml(const SequenceDictionary& dictionary, const PmmlOptions& options) {
  Text root("PMML");
  root.with("version", "3.2")
      .with("xmlns", "http://www.dmg.org/PMML-3_2")
      .with("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance")
      .with("xsi:schemaLocation", "http://www.dmg.org/PMML-3_2 pmml-3-2.xsd")
      .add(header("Carma model for sequential association rules"))
      .add(Text("DataDictionary")
               .with("numberOfFields", "3")
               .add(dataField("DataField", "customer"))
               .add(dataField("DataField", "time"))
               .add(dataField("DataField", "item")))
      .add(Text("TransformationDictionary")
               .add(dataField("DerivedField", "transaction")
                        .add(Text("Aggregate")
                                 .with("field", "item")
                                 .with("function", "multiset")
                                 .with("groupField", "customer"))))
      .add(modelElement(dictionary, options));
  return document("PMML", "sequentialmodel.dtd", root);
}

}  // namespace orbseq::test

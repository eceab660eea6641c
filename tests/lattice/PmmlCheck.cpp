#include "tests/lattice/PmmlCheck.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <regex>
#include <set>

namespace orbseq::test {

namespace {

constexpr int kAny = std::numeric_limits<int>::max();

// What an attribute holds, as a pattern for the whole value.
constexpr const char* kText = "[^]*";
constexpr const char* kInteger = "[-+]?[0-9]+";
constexpr const char* kReal = "[-+]?([0-9]+\\.?[0-9]*|\\.[0-9]+)(e[-+]?[0-9]+)?";
constexpr const char* kType =
    "string|integer|float|double|boolean|date|time|dateTime|"
    "(date|dateTime)(Days|Seconds)Since\\[[0-9]+\\]|timeSeconds";
constexpr const char* kOptype = "categorical|ordinal|continuous";

struct Attribute {
  const char* name;
  bool required;
  const char* pattern;
};

struct Child {
  const char* name;
  int least;
  int most;
};

struct Rule {
  std::vector<Attribute> attributes;
  std::vector<Child> children = {};
  std::vector<Child> repeated = {};  // a group that may follow any number of times
};

constexpr Child kExtensions = {"Extension", 0, kAny};

const std::map<std::string, Rule>& table() {
  static const std::map<std::string, Rule> rules = {
      {"PMML",
       {{{"version", true, "3\\.2"},
         {"xmlns", true, "http://www\\.dmg\\.org/PMML-3_2"},
         {"xmlns:xsi", false, kText},
         {"xsi:schemaLocation", false, kText}},
        {{"Header", 1, 1},
         {"MiningBuildTask", 0, 1},
         {"DataDictionary", 1, 1},
         {"TransformationDictionary", 0, 1},
         {"SequenceModel", 0, kAny},
         kExtensions}}},
      {"Header",
       {{{"copyright", true, kText}, {"description", false, kText}},
        {kExtensions, {"Application", 0, 1}, {"Annotation", 0, kAny}, {"Timestamp", 0, 1}}}},
      {"Application", {{{"name", true, kText}, {"version", false, kText}}, {kExtensions}}},
      {"DataDictionary",
       {{{"numberOfFields", false, kInteger}},
        {kExtensions, {"DataField", 1, kAny}, {"Taxonomy", 0, kAny}}}},
      {"DataField",
       {{{"name", true, kText},
         {"displayName", false, kText},
         {"optype", true, kOptype},
         {"dataType", true, kType}},
        {kExtensions, {"Interval", 0, kAny}, {"Value", 0, kAny}}}},
      {"TransformationDictionary",
       {{}, {kExtensions, {"DefineFunction", 0, kAny}, {"DerivedField", 0, kAny}}}},
      {"DerivedField",
       {{{"name", false, kText},
         {"displayName", false, kText},
         {"optype", true, kOptype},
         {"dataType", true, kType}},
        {kExtensions, {"Aggregate", 1, 1}, {"Value", 0, kAny}}}},
      {"Aggregate",
       {{{"field", true, kText},
         {"function", true, "count|sum|average|min|max|multiset"},
         {"groupField", false, kText},
         {"sqlWhere", false, kText}},
        {kExtensions}}},
      {"SequenceModel",
       {{{"modelName", false, kText},
         {"functionName", true, "sequences"},
         {"algorithmName", false, kText},
         {"numberOfTransactions", false, kInteger},
         {"maxNumberOfItemsPerTransaction", false, kInteger},
         {"avgNumberOfItemsPerTransaction", false, kReal},
         {"numberOfTransactionGroups", false, kInteger},
         {"maxNumberOfTAsPerTAGroup", false, kInteger},
         {"avgNumberOfTAsPerTAGroup", false, kReal}},
        {kExtensions,
         {"MiningSchema", 1, 1},
         {"ModelStats", 0, 1},
         {"LocalTransformations", 0, 1},
         {"Constraints", 0, 1},
         {"Item", 0, kAny},
         {"Itemset", 0, kAny},
         {"SetPredicate", 0, kAny},
         {"Sequence", 1, kAny},
         {"SequenceRule", 0, kAny},
         kExtensions}}},
      {"MiningSchema", {{}, {kExtensions, {"MiningField", 1, kAny}}}},
      {"MiningField",
       {{{"name", true, kText},
         {"usageType", false,
          "active|predicted|supplementary|group|order|frequencyWeight|analysisWeight"}},
        {kExtensions}}},
      {"Item",
       {{{"id", true, kText},
         {"value", true, kText},
         {"mappedValue", false, kText},
         {"weight", false, kReal}},
        {kExtensions}}},
      {"Itemset",
       {{{"id", true, kText}, {"support", false, kReal}, {"numberOfItems", false, kInteger}},
        {kExtensions, {"ItemRef", 0, kAny}}}},
      {"ItemRef", {{{"itemRef", true, kText}}, {kExtensions}}},
      {"Sequence",
       {{{"id", true, kText},
         {"numberOfSets", false, kInteger},
         {"occurrence", false, kInteger},
         {"support", false, kReal}},
        {kExtensions, {"SetReference", 1, 1}, {"Time", 0, 1}},
        {kExtensions, {"Delimiter", 1, 1}, {"Time", 0, 1}, {"SetReference", 1, 1}}}},
      {"SetReference", {{{"setId", true, kText}}, {kExtensions}}},
      {"Delimiter",
       {{{"delimiter", true, "sameTimeWindow|acrossTimeWindows"},
         {"gap", true, "true|false|unknown"}},
        {kExtensions}}},
      {"SequenceRule",
       {{{"id", true, kText},
         {"numberOfSets", true, kInteger},
         {"occurrence", true, kInteger},
         {"support", true, kReal},
         {"confidence", true, kReal},
         {"lift", false, kReal}},
        {kExtensions,
         {"AntecedentSequence", 1, 1},
         {"Delimiter", 1, 1},
         {"Time", 0, 1},
         {"ConsequentSequence", 1, 1},
         {"Time", 0, 1}}}},
      {"AntecedentSequence", {{}, {kExtensions, {"SequenceReference", 1, 1}, {"Time", 0, 1}}}},
      {"ConsequentSequence", {{}, {kExtensions, {"SequenceReference", 1, 1}, {"Time", 0, 1}}}},
      {"SequenceReference", {{{"seqId", true, kText}}, {kExtensions}}},
  };
  return rules;
}

class Check {
 public:
  std::vector<std::string> run(const XmlDocument& document) {
    // The standard is defined by an XML schema and has no document type.
    if (!document.docType.empty()) report("document", "DOCTYPE " + document.docType);
    if (document.root.name != "PMML") report("document", "root " + document.root.name);
    element(document.root);
    for (const XmlNode& model : document.root.children)
      if (model.name == "SequenceModel") references(document.root, model);
    return violations_;
  }

 private:
  void report(const std::string& place, const std::string& what) {
    const std::string line = place + ": " + what;
    if (std::find(violations_.begin(), violations_.end(), line) == violations_.end())
      violations_.push_back(line);
  }

  void element(const XmlNode& node) {
    if (node.name == "Extension") return;
    const auto rule = table().find(node.name);
    if (rule == table().end()) {
      report(node.name, "unknown element");
      return;
    }
    attributes(node, rule->second);
    children(node, rule->second);
    for (const XmlNode& child : node.children) element(child);
  }

  const std::regex& patternOf(const Attribute& attribute) {
    return patterns_.try_emplace(attribute.pattern, attribute.pattern).first->second;
  }

  void attributes(const XmlNode& node, const Rule& rule) {
    for (const Attribute& attribute : rule.attributes) {
      if (!node.has(attribute.name)) {
        if (attribute.required) report(node.name, std::string("no ") + attribute.name);
      } else if (!std::regex_match(node.get(attribute.name), patternOf(attribute))) {
        report(node.name, std::string(attribute.name) + " \"" + node.get(attribute.name) + "\"");
      }
    }
    for (const auto& [name, value] : node.attributes) {
      const auto isKnown = [&given = name](const Attribute& one) { return given == one.name; };
      if (std::none_of(rule.attributes.begin(), rule.attributes.end(), isKnown))
        report(node.name, "unknown attribute " + name);
    }
  }

  void children(const XmlNode& node, const Rule& rule) {
    std::size_t next = 0;
    group(node, rule.children, next);
    while (!rule.repeated.empty() && next < node.children.size()) {
      const std::size_t before = next;
      group(node, rule.repeated, next);
      if (next == before) break;
    }
    if (next < node.children.size()) report(node.name, "misplaced " + node.children[next].name);
  }

  // Takes the children of one group, from `next` on.
  void group(const XmlNode& node, const std::vector<Child>& expected, std::size_t& next) {
    for (const Child& child : expected) {
      int count = 0;
      while (count < child.most && next < node.children.size() &&
             node.children[next].name == child.name) {
        ++count;
        ++next;
      }
      if (count < child.least) report(node.name, std::string("no ") + child.name);
    }
  }

  // The ids of the model's own elements of a name; each must stand once.
  std::set<std::string> idsOf(const XmlNode& model, const char* name) {
    std::set<std::string> ids;
    for (const XmlNode& child : model.children)
      if (child.name == name && !ids.insert(child.get("id")).second)
        report(name, "id " + child.get("id") + " twice");
    return ids;
  }

  void resolve(const XmlNode& node, const char* element, const char* attribute,
               const std::set<std::string>& ids) {
    for (const XmlNode& child : node.children) {
      if (child.name == "Extension") continue;
      if (child.name == element && !ids.contains(child.get(attribute)))
        report(element, "dangling " + child.get(attribute));
      resolve(child, element, attribute, ids);
    }
  }

  void references(const XmlNode& root, const XmlNode& model) {
    resolve(model, "ItemRef", "itemRef", idsOf(model, "Item"));
    resolve(model, "SetReference", "setId", idsOf(model, "Itemset"));
    resolve(model, "SequenceReference", "seqId", idsOf(model, "Sequence"));
    idsOf(model, "SequenceRule");

    std::set<std::string> fields;
    for (const char* kind : {"DataField", "DerivedField"})
      for (const std::string& name : root.all(kind, "name")) fields.insert(name);
    for (const std::string& name : model.all("MiningField", "name"))
      if (!fields.contains(name)) report("MiningField", "unknown field " + name);
    for (const char* attribute : {"field", "groupField"})
      for (const std::string& name : root.all("Aggregate", attribute))
        if (!fields.contains(name)) report("Aggregate", "unknown field " + name);
    const std::vector<std::string> usages = model.all("MiningField", "usageType");
    if (std::find(usages.begin(), usages.end(), "group") == usages.end())
      report("MiningSchema", "no field of usage group");
  }

  std::vector<std::string> violations_;
  std::map<std::string, std::regex> patterns_;  // compiled once, which takes long
};

}  // namespace

std::vector<std::string> pmmlViolations(const XmlDocument& document) {
  return Check().run(document);
}

}  // namespace orbseq::test

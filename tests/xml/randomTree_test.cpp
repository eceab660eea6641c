// Random trees, written as the rules of the layout say step by step, and by the nodes.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/xml/nodeText.h"
#include "xml/XMLElement.h"
#include "xml/XMLString.h"
#include "xml/XMLUtil.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::XMLElement;
using OrbXML_830::XMLString;
using OrbXML_830::XMLUtil;

struct Model {
  bool isText = false;
  std::string name;  // or the text
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Model> children;
};

std::string randomText(std::mt19937& random) {
  std::string text(random() % 6, ' ');
  for (char& c : text) c = "  ab&<>\"\n\xE4"[random() % 10];
  return text;
}

Model randomModel(std::mt19937& random, unsigned depth) {
  Model model;
  model.name = "n" + std::to_string(random() % 10);
  for (auto i = random() % 3; i > 0; --i)
    model.attributes.emplace_back("a" + std::to_string(i), randomText(random));
  for (auto i = depth > 0 ? random() % 4 : 0; i > 0; --i) {
    if (random() % 3 == 0)
      model.children.push_back({true, randomText(random), {}, {}});
    else
      model.children.push_back(randomModel(random, depth - 1));
  }
  return model;
}

std::unique_ptr<XMLElement> build(const Model& model) {
  std::unique_ptr<XMLElement> element(XMLElement::Create(model.name));
  for (const auto& [name, value] : model.attributes) element->AddAttribute(name, value);
  for (const Model& child : model.children) {
    if (child.isText)
      element->AddElement(XMLString::Create(child.name));
    else
      element->AddElement(build(child).release());
  }
  return element;
}

class StepByStep {
 public:
  StepByStep(bool formatted, bool indentation) : formatted_(formatted), indentation_(indentation) {}

  std::string write(const Model& model) {
    element(model);
    return out_;
  }

 private:
  void element(const Model& model) {
    const int entry = level_;
    if (formatted_ && newParagraph_) out_ += "\n";
    if (formatted_ && indentation_) out_ += XMLUtil::GetTabs(entry);
    out_ += "<" + model.name;
    for (const auto& [name, value] : model.attributes) {
      out_ += " ";
      if (formatted_ && indentation_) out_ += XMLUtil::GetTabs(entry + 1);
      out_ += name + "=\"" + XMLUtil::Escape(value) + "\"";
    }
    if (model.children.empty())
      out_ += "/>";
    else
      content(model, entry);
    newParagraph_ = true;
  }

  void content(const Model& model, int entry) {
    out_ += ">";
    ++level_;
    for (const Model& child : model.children) child.isText ? text(child.name) : element(child);
    --level_;
    if (formatted_ && newParagraph_) out_ += "\n";
    if (formatted_ && indentation_) out_ += XMLUtil::GetTabs(entry);
    out_ += "</" + model.name + ">";
  }

  void text(const std::string& text) {
    for (const char c : text) {
      if (c == '&')
        out_ += "&amp;";
      else if (c == '<')
        out_ += "&lt;";
      else
        out_ += c;
    }
    newParagraph_ = false;
  }

  bool formatted_;
  bool indentation_;
  bool newParagraph_ = true;
  int level_ = 0;
  std::string out_;
};

TEST(RandomTree, EveryWayOutWritesWhatTheStepsWrite) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const Model model = randomModel(random, 5);
    const auto tree = build(model);
    for (const bool formatted : {false, true}) {
      for (const bool indentation : {false, true}) {
        const std::string expected = StepByStep(formatted, indentation).write(model);
        ASSERT_EQ(textOf(*tree, layout(formatted, indentation)), expected) << "seed " << seed;
        ASSERT_EQ(streamTextOf(*tree, layout(formatted, indentation)), expected) << "seed " << seed;
      }
    }
  }
}

TEST(RandomTree, AClonesTextIsTheSame) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    auto tree = build(randomModel(random, 5));
    const std::string expected = textOf(*tree, layout(true, true));

    const std::unique_ptr<XMLElement> clone(tree->Clone());
    tree.reset();

    EXPECT_EQ(textOf(*clone, layout(true, true)), expected) << "seed " << seed;
  }
}

}  // namespace

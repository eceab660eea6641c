#include "xml/XMLElement.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "tests/support/locales.h"
#include "tests/xml/nodeText.h"
#include "xml/XMLAttribute.h"
#include "xml/XMLString.h"

namespace {

using namespace orbseq::test;
using OrbXML_830::ExportFormat;
using OrbXML_830::XMLAttribute;
using OrbXML_830::XMLElement;
using OrbXML_830::XMLInterface;
using OrbXML_830::XMLString;

std::unique_ptr<XMLElement> element(const std::string& name) {
  return std::unique_ptr<XMLElement>(XMLElement::Create(name));
}

// <top k="1"><mid a="2" b="3">x<leaf/></mid><leaf>y</leaf></top>
std::unique_ptr<XMLElement> smallTree() {
  auto top = element("top");
  auto* const mid = XMLElement::Create("mid");
  auto* const leaf = XMLElement::Create("leaf");
  top->AddAttribute("k", "1");
  top->AddElement(mid);
  top->AddElement(leaf);
  mid->AddAttribute("a", "2");
  mid->AddAttribute("b", "3");
  mid->AddElement(XMLString::Create("x"));
  mid->AddElement(XMLElement::Create("leaf"));
  leaf->AddElement(XMLString::Create("y"));
  return top;
}

// An element that counts its destructions.
class CountedElement : public XMLElement {
 public:
  explicit CountedElement(int& destroyed) : XMLElement("counted"), destroyed_(destroyed) {}
  ~CountedElement() override { ++destroyed_; }

 private:
  int& destroyed_;
};

// An element that switches the indentation off while it is written.
class Unindenting : public XMLElement {
 public:
  Unindenting() : XMLElement("flat") {}
  int ToString(std::string& out, ExportFormat& format) const override {
    format.SetIndentation(false);
    return XMLElement::ToString(out, format);
  }
};

TEST(XMLElement, AnElementAloneIsOneTagOnANewLine) {
  EXPECT_EQ(textOf(*element("name")), "\n<name/>");
}

TEST(XMLElement, AttributesStandInTheirOrderBehindOneSpaceEach) {
  const auto node = element("name");

  node->AddAttribute("b", "1");
  node->AddAttribute(XMLAttribute::Create("a", "x"));

  EXPECT_EQ(textOf(*node), R"(
<name b="1" a="x"/>)");
}

TEST(XMLElement, AnAttributeMayBeAddedTwice) {
  const auto node = element("n");

  node->AddAttribute("a", "1");
  node->AddAttribute("a", "2");

  EXPECT_EQ(textOf(*node), "\n<n a=\"1\" a=\"2\"/>");
}

TEST(XMLElement, NamesAreNotEscaped) { EXPECT_EQ(textOf(*element("a&b")), "\n<a&b/>"); }

TEST(XMLElement, ATextLiteralIsAText) {
  const auto node = element("n");

  node->AddAttribute("a", "true");

  EXPECT_EQ(textOf(*node), "\n<n a=\"true\"/>");
}

TEST(XMLElement, AZeroLiteralIsANumber) {
  const auto node = element("n");

  node->AddAttribute("level", 0);
  node->AddAttribute("fixed", 0, true);

  EXPECT_EQ(textOf(*node), "\n<n level=\"0\" fixed=\"0.0000000000000000\"/>");
}

TEST(XMLElement, NumbersHaveFifteenSignificantDigitsOrAreFixed) {
  const auto node = element("n");

  node->AddAttribute("a", 0.1);
  node->AddAttribute("b", 0.1, false);
  node->AddAttribute("c", 0.1, true);

  EXPECT_EQ(textOf(*node), R"(
<n a="0.1" b="0.1" c="0.1000000000000000"/>)");
}

// Deliberate: such a statistic is simply left out of the document.
TEST(XMLElement, ANumberThatIsNotFiniteAddsNothing) {
  using Double = std::numeric_limits<double>;
  const auto node = element("n");

  for (const double value : {Double::quiet_NaN(), Double::infinity(), -Double::infinity()}) {
    node->AddAttribute("a", value);
    node->AddAttribute("b", value, false);
    node->AddAttribute("c", value, true);
  }

  EXPECT_EQ(textOf(*node), "\n<n/>");
}

TEST(XMLElement, TheLargestFiniteNumbersAreAdded) {
  const auto node = element("n");

  node->AddAttribute("a", std::numeric_limits<double>::max());
  node->AddAttribute("b", std::numeric_limits<double>::lowest());

  EXPECT_EQ(textOf(*node), "\n<n a=\"1.79769313486232e+308\" b=\"-1.79769313486232e+308\"/>");
}

TEST(XMLElement, TheLargestFiniteNumberIsAddedAsFixedTextToo) {
  const auto node = element("n");

  node->AddAttribute("a", std::numeric_limits<double>::max(), true);

  EXPECT_EQ(textOf(*node).size(), std::string("\n<n a=\"\"/>").size() + 309 + 1 + 16);
}

TEST(XMLElement, NumbersDoNotFollowTheLocale) {
  const ScopedGlobalLocale grouping(groupingLocale());
  const auto node = element("n");

  node->AddAttribute("a", 1234567.5);

  EXPECT_EQ(streamTextOf(*node), "\n<n a=\"1234567.5\"/>");
}

TEST(XMLElement, AddElementAnswersTheNumberOfChildren) {
  const auto node = element("n");

  EXPECT_EQ(node->AddElement(XMLString::Create("a")), 1);
  EXPECT_EQ(node->AddElement(XMLElement::Create("b")), 2);
  EXPECT_EQ(node->AddElement(XMLString::Create("c")), 3);
}

TEST(XMLElement, TextsAndElementsKeepTheirCommonOrder) {
  const auto node = element("n");

  node->AddElement(XMLString::Create("a"));
  node->AddElement(XMLElement::Create("b"));
  node->AddElement(XMLString::Create("c"));

  EXPECT_EQ(textOf(*node, layout(false, false)), "<n>a<b/>c</n>");
}

TEST(XMLElement, ATextStandsOnOneLineWithItsTags) {
  const auto node = element("name");

  node->AddElement(XMLString::Create("text"));

  EXPECT_EQ(textOf(*node), "\n<name>text</name>");
}

TEST(XMLElement, AnElementBehindATextStandsOnTheSameLine) {
  const auto node = element("n");

  node->AddElement(XMLString::Create("a"));
  node->AddElement(XMLElement::Create("b"));

  EXPECT_EQ(textOf(*node), "\n<n>a<b/>\n</n>");
}

TEST(XMLElement, EveryElementBeginsOnANewLineAtItsBeginning) {
  EXPECT_EQ(textOf(*smallTree()), R"(
<top k="1">
<mid a="2" b="3">x<leaf/>
</mid>
<leaf>y</leaf>
</top>)");
}

TEST(XMLElement, WithoutFormatThereAreNeitherLineFeedsNorTabs) {
  const char* const line = R"(<top k="1"><mid a="2" b="3">x<leaf/></mid><leaf>y</leaf></top>)";

  EXPECT_EQ(textOf(*smallTree(), layout(false, false)), line);
  EXPECT_EQ(textOf(*smallTree(), layout(false, true)), line);
}

// Deliberate: the tabs stand before an attribute on the line of its element, and before whatever
// follows a text.
TEST(XMLElement, IndentationPutsTabsBeforeTagsAndAttributes) {
  EXPECT_EQ(textOf(*smallTree(), layout(true, true)),
            "\n<top \tk=\"1\">"
            "\n\t<mid \t\ta=\"2\" \t\tb=\"3\">x\t\t<leaf/>"
            "\n\t</mid>"
            "\n\t<leaf>y\t</leaf>"
            "\n</top>");
}

TEST(XMLElement, AnElementInTheMiddleOfATreeIsIndentedByItsLevel) {
  ExportFormat format = layout(true, true);
  format.EnterLevel();
  format.EnterLevel();
  format.SetIsNewParagraph(false);

  EXPECT_EQ(textOf(*element("n"), format), "\t\t<n/>");
}

TEST(XMLElement, TheClosingTagFollowsTheIndentationThatAChildLeaves) {
  const auto top = element("top");
  auto* const mid = XMLElement::Create("mid");
  top->AddElement(mid);
  mid->AddElement(new Unindenting);

  EXPECT_EQ(textOf(*top, layout(true, true)), "\n<top>\n\t<mid>\n<flat/>\n</mid>\n</top>");
}

TEST(XMLElement, WritingRestoresTheLevelAndAsksForANewParagraph) {
  ExportFormat format;
  format.SetIsNewParagraph(false);
  std::string text = "before ";

  const int answer = smallTree()->ToString(text, format);

  EXPECT_EQ(answer, 0);
  EXPECT_EQ(text.substr(0, 18), "before <top k=\"1\">");
  EXPECT_TRUE(format.IsNewParagraph());
  EXPECT_EQ(format.GetLevel(), 0);
}

TEST(XMLElement, TheStreamGetsTheSameText) {
  for (const ExportFormat& format : {layout(true, false), layout(true, true), layout(false, true)})
    EXPECT_EQ(streamTextOf(*smallTree(), format), textOf(*smallTree(), format));
}

TEST(XMLElement, AFailedStreamIsNotReported) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);
  ExportFormat format;

  EXPECT_EQ(smallTree()->ToStream(stream, format, false), 0);
  EXPECT_EQ(stream.str(), "");
}

TEST(XMLElement, ACloneIsDeep) {
  auto tree = smallTree();

  const std::unique_ptr<XMLInterface> clone(tree->Clone());
  const std::string before = textOf(*tree);
  tree->AddAttribute("more", "1");
  tree.reset();

  EXPECT_EQ(textOf(*clone), before);
}

TEST(XMLElement, ChildrenAreDestroyedWithTheirElementOnceEach) {
  int destroyed = 0;
  auto top = element("top");
  auto* const child = new CountedElement(destroyed);
  child->AddElement(new CountedElement(destroyed));
  top->AddElement(child);
  top->AddElement(new CountedElement(destroyed));

  std::unique_ptr<XMLInterface> owner = std::move(top);
  EXPECT_EQ(destroyed, 0);
  owner.reset();

  EXPECT_EQ(destroyed, 3);
}

}  // namespace

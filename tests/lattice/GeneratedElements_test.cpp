// Generated siblings against the same elements in a full tree.

#include "lattice/GeneratedElements.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "xml/WriteTree.h"
#include "xml/XMLString.h"

namespace {

using orbseq::GeneratedElements;
using OrbXML_830::ExportFormat;
using OrbXML_830::XMLElement;
using OrbXML_830::XMLString;
using ElementPtr = std::unique_ptr<XMLElement>;

// <part n="1"/>, <part n="2"><deep/></part>, <part n="3">text</part>, <part n="4"/> ..
ElementPtr part(int n) {
  ElementPtr element(XMLElement::Create("part"));
  element->AddAttribute("n", n);
  if (n % 4 == 2) element->AddElement(XMLElement::Create("deep"));
  if (n % 4 == 3) element->AddElement(XMLString::Create("text"));
  return element;
}

ElementPtr full(int count) {
  ElementPtr root(XMLElement::Create("root"));
  root->AddElement(XMLElement::Create("before"));
  for (int n = 1; n <= count; ++n) root->AddElement(part(n).release());
  root->AddElement(XMLElement::Create("after"));
  return root;
}

ElementPtr generated(int count) {
  ElementPtr root(XMLElement::Create("root"));
  root->AddElement(XMLElement::Create("before"));
  root->AddElement(GeneratedElements::Create([count](const GeneratedElements::Consumer& take) {
    for (int n = 1; n <= count; ++n) take(*part(n));
  }));
  root->AddElement(XMLElement::Create("after"));
  return root;
}

std::string streamed(const XMLElement& element, ExportFormat format, bool utf8) {
  std::ostringstream out;
  element.ToStream(out, format, utf8);
  return out.str();
}

std::string stringOf(const XMLElement& element, ExportFormat format) {
  std::string out;
  element.ToString(out, format);
  return out;
}

TEST(GeneratedElements, GiveTheBytesOfAFullTreeInEveryLayout) {
  for (const int count : {0, 1, 2, 3, 9})
    for (int layout = 0; layout < 4; ++layout) {
      ExportFormat format;
      format.SetFormat((layout & 1) != 0);
      format.SetIndentation((layout & 2) != 0);
      const std::string expected = stringOf(*full(count), format);

      EXPECT_EQ(stringOf(*generated(count), format), expected) << count << ", layout " << layout;
      EXPECT_EQ(streamed(*generated(count), format, false), expected) << count << ", " << layout;
      EXPECT_EQ(streamed(*generated(count), format, true), expected) << count << ", " << layout;
    }
}

TEST(GeneratedElements, ACloneGeneratesTheSame) {
  const ElementPtr original = generated(3);

  const ElementPtr copy(original->Clone());

  EXPECT_EQ(stringOf(*copy, {}), stringOf(*full(3), {}));
}

// Deliberate: the parent cannot know, so nothing is generated only where there is something.
TEST(GeneratedElements, AParentOfNoneHasAnEndTag) {
  const ElementPtr root(XMLElement::Create("root"));
  root->AddElement(GeneratedElements::Create([](const GeneratedElements::Consumer&) {}));

  EXPECT_EQ(stringOf(*root, {}), "\n<root>\n</root>");
}

}  // namespace

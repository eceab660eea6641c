// Trees that run out of memory: the sanitizers see what would be lost.

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

#include "tests/sequence/failEveryAllocation.h"
#include "tests/xml/nodeText.h"
#include "xml/XMLAttribute.h"
#include "xml/XMLDocType.h"
#include "xml/XMLElement.h"
#include "xml/XMLString.h"

namespace {

using namespace orbseq::test;
using namespace OrbXML_830;

// Beyond what a string holds without memory of its own.
const std::string kLong(64, 'n');

TEST(TreeMemory, BuildingAndCloningLoseNothing) {
  const auto build = [] {
    const std::unique_ptr<XMLElement> root(XMLElement::Create(kLong));
    root->AddAttribute(kLong, kLong);
    root->AddAttribute(kLong, 0.5, true);
    root->AddAttribute(XMLAttribute::Create("a", "1"));
    root->AddElement(XMLString::Create(kLong));
    root->AddElement(XMLElement::Create(kLong));
    const std::unique_ptr<XMLElement> clone(root->Clone());
    EXPECT_EQ(textOf(*clone).size(), textOf(*root).size());
  };

  EXPECT_GT(failEveryAllocation<std::bad_alloc>(build, [] {}), 10);
}

TEST(TreeMemory, ADocumentTypeLosesNothing) {
  const auto build = [] {
    const std::unique_ptr<XMLDocType> type(XMLDocType::Create(kLong, kLong, 1));
    type->AddExtension(kLong);
    const std::unique_ptr<XMLDocType> clone(type->Clone());
  };

  EXPECT_GT(failEveryAllocation<std::bad_alloc>(build, [] {}), 5);
}

}  // namespace

#include "scoring/VectorValue.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

#include "scoring/hostapi/NumericValue.h"
#include "sequence/SeqConsequentDescriptor.h"

namespace {

using OrbScore::NumericValue;
using OrbScore::ScoreValue;
using SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor;
using ItemList = OrbQuillon_830::VectorValue<SeqConsequentDescriptor>;

ItemList listOf(std::initializer_list<std::int32_t> items) {
  std::vector<SeqConsequentDescriptor> descriptors;
  for (const std::int32_t item : items) descriptors.emplace_back(item, 0.1, 0.5, 0.3);
  return ItemList(descriptors);
}

std::vector<std::int32_t> itemsOf(const ItemList& list) {
  std::vector<std::int32_t> items;
  for (const auto& descriptor : list.GetVectorValue()) items.push_back(descriptor.GetItem());
  return items;
}

TEST(VectorValue, ThreeEntriesReadAsTheNumberThree) {
  const ItemList list = listOf({1, 2, 3});

  EXPECT_EQ(list.Size(), 3);
  EXPECT_EQ(list.GetInt(), 3);
  EXPECT_EQ(list.GetString(), "Vector Value: Length of vector = 3\n");
  EXPECT_EQ(list.GetType(), 2);
  EXPECT_EQ(list.GetDouble(), std::numeric_limits<double>::lowest());
  EXPECT_FALSE(list.IsSystemMissingValue());
}

// Deliberate: only lengths are compared.
TEST(VectorValue, ListsOfOneLengthAreEqualWhateverTheyHold) {
  const ItemList a = listOf({1, 2});
  const ItemList b = listOf({8, 9});

  EXPECT_TRUE(a == b);
  EXPECT_TRUE(a.Equal(&b, false, true));
  EXPECT_TRUE(a <= b);
  EXPECT_TRUE(a >= b);
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(a > b);
}

TEST(VectorValue, TheShorterListIsLess) {
  const ItemList shorter = listOf({9});
  const ItemList longer = listOf({1, 2});

  EXPECT_TRUE(shorter < longer);
  EXPECT_TRUE(longer > shorter);
  EXPECT_FALSE(shorter == longer);
  EXPECT_FALSE(longer <= shorter);
  EXPECT_FALSE(shorter >= longer);
}

TEST(VectorValue, AListComparedWithANumberComparesItsLength) {
  const ItemList list = listOf({1, 2, 3});

  EXPECT_TRUE(list == NumericValue(3.0));
  EXPECT_FALSE(list == NumericValue(4.0));
  EXPECT_TRUE(list < NumericValue(4.0));
  EXPECT_TRUE(list > NumericValue(-1.0));
  EXPECT_FALSE(list == NumericValue(-1.0));
}

TEST(VectorValue, NothingIsEqualToNull) { EXPECT_FALSE(listOf({}).Equal(nullptr, true, true)); }

TEST(VectorValue, CopiesAreIndependentAndTheCallers) {
  ItemList list = listOf({1, 2});
  const std::unique_ptr<ItemList> clone(list.Clone());
  const std::unique_ptr<ScoreValue> value(list.GetValue());

  list.SetVectorValue({});

  EXPECT_EQ(itemsOf(*clone), (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(value->GetInt(), 2);
  EXPECT_EQ(list.Size(), 0);
}

TEST(VectorValue, SetValueTakesOverAnotherList) {
  ItemList list = listOf({1});

  list.SetValue(&static_cast<const ScoreValue&>(listOf({5, 6})));

  EXPECT_EQ(itemsOf(list), (std::vector<std::int32_t>{5, 6}));
}

TEST(VectorValue, SetValueFromItselfKeepsTheList) {
  ItemList list = listOf({1, 2});

  list.SetValue(&list);

  EXPECT_EQ(itemsOf(list), (std::vector<std::int32_t>{1, 2}));
}

TEST(VectorValue, SetValueFromNullOrAForeignTypeEmptiesTheList) {
  ItemList list = listOf({1});
  list.SetValue(nullptr);
  EXPECT_EQ(list.Size(), 0);

  list = listOf({1});
  const NumericValue number(3.0);
  list.SetValue(&number);
  EXPECT_EQ(list.Size(), 0);
}

}  // namespace

#include "sequence/TimedItemSet.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <random>
#include <set>
#include <vector>

#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/captureOutput.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(TimedItemSet, ANewSetHasNoItemsAndTimeZero) {
  const TimedItemSet set;

  EXPECT_EQ(set.Size(), 0);
  EXPECT_EQ(set.Begin(), set.End());
  EXPECT_EQ(set.GetTime(), 0.0);
}

// Deliberate: the integer neither sizes nor seeds the set.
TEST(TimedItemSet, TheConstructorIgnoresItsInteger) {
  const TimedItemSet set(17, 3.5);

  EXPECT_EQ(itemsOf(set), Items{});
  EXPECT_EQ(set.GetTime(), 3.5);
}

TEST(TimedItemSet, TheConstructorTakesAnyIntegerThatItIgnores) {
  EXPECT_EQ(TimedItemSet(-1, 1.0).Size(), 0);
  EXPECT_EQ(TimedItemSet(kMost, 1.0).Size(), 0);
}

TEST(TimedItemSet, ACopyHasItemsAndTime) {
  const TimedItemSet original = itemSet({9, 2}, 4.0);

  const TimedItemSet copy(original);

  EXPECT_EQ(itemsOf(copy), (Items{2, 9}));
  EXPECT_EQ(copy.GetTime(), 4.0);
}

TEST(TimedItemSet, ACopyIsIndependentOfItsSource) {
  const TimedItemSet original = itemSet({1}, 4.0);
  TimedItemSet copy(original);

  copy.AddItem(2);
  copy.SetTime(8.0);

  EXPECT_EQ(itemsOf(original), Items{1});
  EXPECT_EQ(original.GetTime(), 4.0);
}

TEST(TimedItemSet, ItemsAreKeptAscendingWithoutDuplicates) {
  TimedItemSet set;

  for (const std::int32_t item : {5, 3, 5, 9, 1}) set.AddItem(item);

  EXPECT_EQ(itemsOf(set), (Items{1, 3, 5, 9}));
  EXPECT_EQ(set.Size(), 4);
}

TEST(TimedItemSet, AnItemBetweenOthersFindsItsPlace) {
  TimedItemSet set = itemSet({1, 9});

  set.AddItem(4);

  EXPECT_EQ(itemsOf(set), (Items{1, 4, 9}));
}

TEST(TimedItemSet, NegativeAndExtremeItemsAreOrderedAsSignedNumbers) {
  const TimedItemSet set = itemSet({kMost, 0, kLeast, -1});

  EXPECT_EQ(itemsOf(set), (Items{kLeast, -1, 0, kMost}));
}

TEST(TimedItemSet, AddingAnItemLeavesTheTimeAlone) {
  TimedItemSet set = itemSet({}, 6.0);

  set.AddItem(1);

  EXPECT_EQ(set.GetTime(), 6.0);
}

TEST(TimedItemSet, AddAllItemsReplacesTheItemsAndSetsTheTime) {
  TimedItemSet set = itemSet({7, 8}, 1.0);
  const std::int32_t items[] = {5, 2, 5, 4};

  set.AddAllItems(items, 4, 9.0);

  EXPECT_EQ(itemsOf(set), (Items{2, 4, 5}));
  EXPECT_EQ(set.GetTime(), 9.0);
}

TEST(TimedItemSet, AddAllItemsReadsNoMoreThanTheCount) {
  TimedItemSet set;
  const std::int32_t items[] = {5, 2, 1};

  set.AddAllItems(items, 2, 0.0);

  EXPECT_EQ(itemsOf(set), (Items{2, 5}));
}

TEST(TimedItemSet, AddAllItemsWithCountZeroEmptiesTheSetAndSetsTheTime) {
  TimedItemSet set = itemSet({7}, 1.0);

  set.AddAllItems(nullptr, 0, 9.0);

  EXPECT_EQ(itemsOf(set), Items{});
  EXPECT_EQ(set.GetTime(), 9.0);
}

TEST(TimedItemSet, AddAllItemsWithANegativeCountEmptiesTheSetAndSetsTheTime) {
  TimedItemSet set = itemSet({7}, 1.0);
  const std::int32_t items[] = {5};

  set.AddAllItems(items, -3, 9.0);

  EXPECT_EQ(itemsOf(set), Items{});
  EXPECT_EQ(set.GetTime(), 9.0);
}

TEST(TimedItemSet, AddAllItemsTakesTheSetsOwnItems) {
  TimedItemSet set = itemSet({1, 2, 3}, 1.0);

  set.AddAllItems(&*set.Begin() + 1, 2, 2.0);

  EXPECT_EQ(itemsOf(set), (Items{2, 3}));
}

TEST(TimedItemSet, AMillionDescendingItemsEnterAtOnce) {
  std::vector<std::int32_t> items(1'000'000);
  for (std::size_t i = 0; i < items.size(); ++i) items[i] = -static_cast<std::int32_t>(i);
  TimedItemSet set;

  set.AddAllItems(items.data(), 1'000'000, 0.0);

  EXPECT_EQ(set.Size(), 1'000'000);
  EXPECT_EQ(*set.Begin(), -999'999);
}

TEST(TimedItemSet, ClearEmptiesTheItemsAndTheTime) {
  TimedItemSet set = itemSet({1, 2}, 5.0);

  set.Clear();

  EXPECT_EQ(itemsOf(set), Items{});
  EXPECT_EQ(set.GetTime(), 0.0);
}

TEST(TimedItemSet, SetTimeLeavesTheItemsAlone) {
  TimedItemSet set = itemSet({1, 2});

  set.SetTime(-2.5);

  EXPECT_EQ(set.GetTime(), -2.5);
  EXPECT_EQ(itemsOf(set), (Items{1, 2}));
}

// Deliberate: assignment is a union, and the target keeps its own time.
TEST(TimedItemSet, AssignmentMergesAndKeepsTheTargetsTime) {
  TimedItemSet target = itemSet({1}, /*time=*/7.0);

  target = itemSet({4}, /*time=*/2.0);

  EXPECT_EQ(itemsOf(target), (Items{1, 4}));
  EXPECT_EQ(target.GetTime(), 7.0);
}

TEST(TimedItemSet, AssignmentMergesCommonItemsOnce) {
  TimedItemSet target = itemSet({1, 3, 5});

  target = itemSet({0, 3, 4, 5, 6});

  EXPECT_EQ(itemsOf(target), (Items{0, 1, 3, 4, 5, 6}));
}

TEST(TimedItemSet, AssignmentLeavesItsSourceAlone) {
  TimedItemSet target = itemSet({1}, 7.0);
  const TimedItemSet source = itemSet({4}, 2.0);

  target = source;

  EXPECT_EQ(itemsOf(source), Items{4});
  EXPECT_EQ(source.GetTime(), 2.0);
}

TEST(TimedItemSet, AssignmentToItselfDoesNothing) {
  TimedItemSet set = itemSet({1, 2}, 7.0);
  const TimedItemSet& itself = set;

  set = itself;

  EXPECT_EQ(itemsOf(set), (Items{1, 2}));
  EXPECT_EQ(set.GetTime(), 7.0);
}

TEST(TimedItemSet, AssignmentThatRunsOutOfMemoryChangesNothing) {
  const TimedItemSet source = itemSet({4, 5});
  TimedItemSet target = itemSet({1}, 7.0);

  const int failures = failEveryAllocation<std::bad_alloc>(
      [&] { target = source; }, [&] { EXPECT_EQ(itemsOf(target), Items{1}); });

  EXPECT_GE(failures, 1);
  EXPECT_EQ(itemsOf(target), (Items{1, 4, 5}));
}

TEST(TimedItemSet, SwapExchangesWithoutMerging) {
  TimedItemSet a = itemSet({1}, 7.0), b = itemSet({4}, 2.0);

  swap(a, b);

  EXPECT_EQ(itemsOf(a), Items{4});
  EXPECT_EQ(a.GetTime(), 2.0);
  EXPECT_EQ(itemsOf(b), Items{1});
  EXPECT_EQ(b.GetTime(), 7.0);
}

TEST(TimedItemSet, SwapAsAMemberExchangesWithoutMerging) {
  TimedItemSet a = itemSet({1}, 7.0), b = itemSet({4}, 2.0);

  a.swap(b);

  EXPECT_EQ(itemsOf(a), Items{4});
  EXPECT_EQ(itemsOf(b), Items{1});
}

TEST(TimedItemSet, SwapWithItselfChangesNothing) {
  TimedItemSet set = itemSet({1}, 7.0);

  swap(set, set);

  EXPECT_EQ(itemsOf(set), Items{1});
}

TEST(TimedItemSet, AProperPrefixIsLess) {
  EXPECT_TRUE(itemSet({1, 2}) < itemSet({1, 2, 3}));
  EXPECT_FALSE(itemSet({1, 2, 3}) < itemSet({1, 2}));
}

TEST(TimedItemSet, TheFirstDifferenceDecidesBeforeTheLength) {
  EXPECT_FALSE(itemSet({1, 3}) < itemSet({1, 2, 3}));
  EXPECT_TRUE(itemSet({1, 2, 3}) < itemSet({1, 3}));
}

TEST(TimedItemSet, NegativeItemsAreLessThanPositiveOnes) {
  EXPECT_TRUE(itemSet({-1}) < itemSet({1}));
}

TEST(TimedItemSet, TheEmptySetIsLessThanAnyOther) {
  EXPECT_TRUE(itemSet({}) < itemSet({kLeast}));
  EXPECT_FALSE(itemSet({kLeast}) < itemSet({}));
}

TEST(TimedItemSet, NoSetIsLessThanItself) {
  const TimedItemSet set = itemSet({1, 2});

  EXPECT_FALSE(set < set);
  EXPECT_FALSE(itemSet({}) < itemSet({}));
}

TEST(TimedItemSet, SetsThatDifferInTimeOnlyAreNeitherLessNorEqual) {
  const TimedItemSet early = itemSet({2}, 1.0), late = itemSet({2}, 9.0);

  EXPECT_FALSE(early < late);
  EXPECT_FALSE(late < early);
  EXPECT_FALSE(early == late);
}

TEST(TimedItemSet, SetsOfEqualItemsAndTimesAreEqual) {
  EXPECT_TRUE(itemSet({2, 1}, 3.0) == itemSet({1, 2}, 3.0));
}

TEST(TimedItemSet, SetsOfDifferentItemsAreUnequal) {
  EXPECT_FALSE(itemSet({1, 2}) == itemSet({1, 3}));
  EXPECT_FALSE(itemSet({1, 2}) == itemSet({1}));
  EXPECT_FALSE(itemSet({1}) == itemSet({1, 2}));
}

TEST(TimedItemSet, TimesCloserThanTheToleranceAreEqual) {
  EXPECT_TRUE(itemSet({1}, 0.0) == itemSet({1}, 1.1e-16));
  EXPECT_TRUE(itemSet({1}, 2.2e-16) == itemSet({1}, 0.0));
}

TEST(TimedItemSet, TimesThatDifferByTheToleranceAreUnequal) {
  EXPECT_FALSE(itemSet({1}, 0.0) == itemSet({1}, 2.220446049250313e-16));
  EXPECT_FALSE(itemSet({1}, 2.220446049250313e-16) == itemSet({1}, 0.0));
}

// Deliberate: the tolerance is absolute.
TEST(TimedItemSet, TimesOfOneAndMoreMustBeExactlyEqual) {
  EXPECT_FALSE(itemSet({1}, 1.0) == itemSet({1}, std::nextafter(1.0, 2.0)));
  EXPECT_FALSE(itemSet({1}, 1e9) == itemSet({1}, std::nextafter(1e9, 2e9)));
  EXPECT_TRUE(itemSet({1}, 1e9) == itemSet({1}, 1e9));
}

TEST(TimedItemSet, ATimeThatIsNotANumberEqualsNothing) {
  const TimedItemSet set = itemSet({1}, std::numeric_limits<double>::quiet_NaN());

  EXPECT_FALSE(set == set);
}

TEST(TimedItemSet, DisplayWritesTheItemsInParentheses) {
  const CapturedOutput output;

  itemSet({7, 12, 3}, 5.0).Display(false);

  EXPECT_EQ(output.text(), "(3 7 12)");
}

TEST(TimedItemSet, DisplayWritesTheTimeAfterTheItems) {
  const CapturedOutput output;

  itemSet({3, 7, 12}, 5.0).Display(true);

  EXPECT_EQ(output.text(), "(3 7 12[5])");
}

TEST(TimedItemSet, DisplayRoundsTheTimeToAWholeNumber) {
  const CapturedOutput output;

  itemSet({1}, 1234567.8).Display(true);
  itemSet({1}, -1.2).Display(true);

  EXPECT_EQ(output.text(), "(1[1234568])(1[-1])");
}

TEST(TimedItemSet, DisplayOfAnEmptySetIsAPairOfParentheses) {
  const CapturedOutput output;

  itemSet({}, 4.0).Display(false);
  itemSet({}, 4.0).Display(true);

  EXPECT_EQ(output.text(), "()([4])");
}

// Deliberate: the stream's format is not restored.
TEST(TimedItemSet, DisplayOfATimeLeavesFixedNotationWithPrecisionZero) {
  const CapturedOutput output;

  itemSet({1}, 2.0).Display(true);

  EXPECT_TRUE(output.isFixed());
  EXPECT_EQ(output.precision(), 0);
}

TEST(TimedItemSet, DisplayWithoutTheTimeLeavesTheFormatAlone) {
  const CapturedOutput output;

  itemSet({1}, 2.0).Display(false);

  EXPECT_FALSE(output.isFixed());
  EXPECT_EQ(output.precision(), 6);
}

// The set holds what an ordered set of the library holds.
TEST(TimedItemSetParity, RandomOperationsEqualThoseOfAStandardSet) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    std::set<std::int32_t> model;
    TimedItemSet set;
    for (int step = 0; step < 60; ++step) {
      const Items items = randomSets(random, randomInt(random, 1, 12), -20, 20).front();
      switch (randomInt(random, 0, 3)) {
        case 0:
          model.insert(items.begin(), items.end());
          set = itemSet(items, 3.0);
          break;
        case 1:
          model = {items.begin(), items.end()};
          set.AddAllItems(items.data(), static_cast<std::int32_t>(items.size()), 1.0);
          break;
        default:
          model.insert(items.front());
          set.AddItem(items.front());
      }
      ASSERT_EQ(itemsOf(set), Items(model.begin(), model.end())) << "seed " << seed;
    }
  }
}

}  // namespace

#include "sequence/Sequence.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <random>
#include <set>
#include <vector>

#include "common/OrbStatus.h"
#include "tests/sequence/failEveryAllocation.h"
#include "tests/support/captureOutput.h"
#include "tests/support/sequenceValues.h"

namespace {

using namespace orbseq::test;
using OrbCommon_830::OrbStatus;

// What the operation throws; an OK status when it throws nothing.
template <typename Operation>
OrbStatus statusThrownBy(Operation&& operation) {
  try {
    operation();
  } catch (const OrbStatus& status) {
    return status;
  }
  return {};
}

OrbStatus indexError(std::int32_t datum) {
  OrbStatus status(60001, false);
  status.SetDiscreteDatum(0, datum);
  return status;
}

TEST(Sequence, ANewSequenceIsEmpty) {
  const Sequence fresh;

  EXPECT_EQ(fresh.Length(), 0);
  EXPECT_EQ(fresh.Size(), 0);
}

TEST(Sequence, ACapacityReservesRoomAndAddsNothing) {
  EXPECT_EQ(Sequence(50).Length(), 0);
  EXPECT_EQ(Sequence(0).Length(), 0);
  EXPECT_EQ(Sequence(-5).Length(), 0);
}

TEST(Sequence, SizeCountsItemsAndLengthCountsSets) {
  const Sequence history = sequence({{1, 2}, {3}, {4, 5, 6}});

  EXPECT_EQ(history.Size(), 6);
  EXPECT_EQ(history.Length(), 3);
}

TEST(Sequence, SetsWithoutItemsCountInTheLengthOnly) {
  const Sequence history = sequence({{}, {1}, {}});

  EXPECT_EQ(history.Size(), 1);
  EXPECT_EQ(history.Length(), 3);
}

TEST(Sequence, AddedSetsKeepTheirOrderWhateverTheirTimes) {
  const Sequence history = sequence({{5}, {1}, {3}}, {9.0, 2.0, 4.0});

  EXPECT_EQ(setsOf(history), (ItemSets{{5}, {1}, {3}}));
  EXPECT_EQ(timesOf(history), (Times{9.0, 2.0, 4.0}));
}

TEST(Sequence, AnAddedSetIsACopy) {
  TimedItemSet set = itemSet({1}, 2.0);
  Sequence history;
  history.AddTimedItemSet(&set);

  set.AddItem(9);
  set.SetTime(5.0);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}}));
  EXPECT_EQ(history.GetTimeOfTimedItemSet(0), 2.0);
}

TEST(Sequence, AddingNoSetAddsNothing) {
  Sequence history = sequence({{1}});

  history.AddTimedItemSet(nullptr);

  EXPECT_EQ(history.Length(), 1);
}

TEST(Sequence, AddingOneOfItsOwnSetsCopiesIt) {
  Sequence history = sequence({{1}, {2}}, {4.0, 5.0});

  history.AddTimedItemSet(history[0]);

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}, {1}}));
  EXPECT_EQ(history.GetTimeOfTimedItemSet(2), 4.0);
}

TEST(Sequence, ACopyHasEverySetAndTime) {
  const Sequence original = sequence({{1, 2}, {}, {3}}, {1.0, 2.0, 3.0});

  const Sequence copy(original);

  EXPECT_EQ(setsOf(copy), (ItemSets{{1, 2}, {}, {3}}));
  EXPECT_EQ(timesOf(copy), (Times{1.0, 2.0, 3.0}));
}

TEST(Sequence, ACopyIsIndependentOfItsSource) {
  const Sequence original = sequence({{1}});
  Sequence copy(original);

  copy.Clear();

  EXPECT_EQ(setsOf(original), (ItemSets{{1}}));
}

TEST(Sequence, AnEmptySequenceCanBeCopied) { EXPECT_EQ(Sequence(Sequence()).Length(), 0); }

// Deliberate: assignment appends.
TEST(Sequence, AssignmentAppendsTheOthersSets) {
  Sequence target = sequence({{1}, {2}, {3}}, {1.0, 2.0, 3.0});

  target = sequence({{4}, {5}}, {8.0, 9.0});

  EXPECT_EQ(setsOf(target), (ItemSets{{1}, {2}, {3}, {4}, {5}}));
  EXPECT_EQ(timesOf(target), (Times{1.0, 2.0, 3.0, 8.0, 9.0}));
}

TEST(Sequence, AssignmentToItselfDoesNothing) {
  Sequence history = sequence({{1}, {2}});
  const Sequence& itself = history;

  history = itself;

  EXPECT_EQ(setsOf(history), (ItemSets{{1}, {2}}));
}

TEST(Sequence, AssignmentThatRunsOutOfMemoryChangesNothing) {
  const Sequence source = sequence({{4}, {5}, {6}});
  Sequence target = sequence({{1}});

  const int failures = failEveryAllocation<std::bad_alloc>(
      [&] { target = source; }, [&] { EXPECT_EQ(setsOf(target), (ItemSets{{1}})); });

  EXPECT_GE(failures, 6);
  EXPECT_EQ(setsOf(target), (ItemSets{{1}, {4}, {5}, {6}}));
}

TEST(Sequence, SwapExchangesWithoutAppending) {
  Sequence a = sequence({{1}, {2}}), b = sequence({{3}});

  swap(a, b);

  EXPECT_EQ(setsOf(a), (ItemSets{{3}}));
  EXPECT_EQ(setsOf(b), (ItemSets{{1}, {2}}));
}

TEST(Sequence, SwapAsAMemberExchangesWithoutAppending) {
  Sequence a = sequence({{1}, {2}}), b = sequence({{3}});

  a.swap(b);

  EXPECT_EQ(setsOf(a), (ItemSets{{3}}));
  EXPECT_EQ(setsOf(b), (ItemSets{{1}, {2}}));
}

TEST(Sequence, AnIndexGivesTheSetAtThatPlace) {
  const Sequence history = sequence({{1}, {2, 3}}, {4.0, 5.0});

  EXPECT_EQ(itemsOf(*history[0]), Items{1});
  EXPECT_EQ(itemsOf(*history[1]), (Items{2, 3}));
  EXPECT_EQ(history.GetTimeOfTimedItemSet(1), 5.0);
}

TEST(Sequence, AnIndexAboveTheLengthThrowsTheLength) {
  const Sequence history = sequence({{1}, {2}});

  EXPECT_TRUE(statusThrownBy([&] { history[3]; }) == indexError(2));
}

// Deliberate: this operation reports the index where operator[] reports the length.
TEST(Sequence, ATimeIndexAboveTheLengthThrowsTheIndex) {
  const Sequence history = sequence({{1}, {2}});

  EXPECT_TRUE(statusThrownBy([&] { history.GetTimeOfTimedItemSet(3); }) == indexError(3));
}

TEST(Sequence, AnIndexEqualToTheLengthIsRefused) {
  const Sequence history = sequence({{1}, {2}});

  EXPECT_TRUE(statusThrownBy([&] { history[2]; }) == indexError(2));
  EXPECT_TRUE(statusThrownBy([&] { history.GetTimeOfTimedItemSet(2); }) == indexError(2));
}

TEST(Sequence, NegativeIndexesAreRefused) {
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  const Sequence history = sequence({{1}, {2}});

  EXPECT_TRUE(statusThrownBy([&] { history[-1]; }) == indexError(2));
  EXPECT_TRUE(statusThrownBy([&] { history[kLeast]; }) == indexError(2));
  EXPECT_TRUE(statusThrownBy([&] { history.GetTimeOfTimedItemSet(-1); }) == indexError(-1));
  EXPECT_TRUE(statusThrownBy([&] { history.GetTimeOfTimedItemSet(kLeast); }) == indexError(kLeast));
}

TEST(Sequence, AnEmptySequenceRefusesIndexZero) {
  EXPECT_TRUE(statusThrownBy([&] { Sequence()[0]; }) == indexError(0));
  EXPECT_TRUE(statusThrownBy([&] { Sequence().GetTimeOfTimedItemSet(0); }) == indexError(0));
}

TEST(Sequence, ClearRemovesEverySet) {
  Sequence history = sequence({{1}, {2}});

  history.Clear();

  EXPECT_EQ(history.Length(), 0);
  EXPECT_EQ(history.Size(), 0);
}

TEST(Sequence, AClearedSequenceCanBeFilledAgain) {
  Sequence history = sequence({{1}, {2}});
  history.Clear();

  history = sequence({{3}});

  EXPECT_EQ(setsOf(history), (ItemSets{{3}}));
}

TEST(Sequence, TheFirstDifferentSetDecidesTheOrder) {
  EXPECT_TRUE(sequence({{1}, {2}, {9}}) < sequence({{1}, {3}}));
  EXPECT_FALSE(sequence({{1}, {3}}) < sequence({{1}, {2}, {9}}));
}

TEST(Sequence, SetsCompareAsSets) {
  EXPECT_TRUE(sequence({{1, 2}, {9}}) < sequence({{1, 2, 3}}));
  EXPECT_FALSE(sequence({{1, 3}}) < sequence({{1, 2, 3}}));
}

TEST(Sequence, AProperPrefixIsLess) {
  EXPECT_TRUE(sequence({{1}}) < sequence({{1}, {2}}));
  EXPECT_FALSE(sequence({{1}, {2}}) < sequence({{1}}));
  EXPECT_TRUE(Sequence() < sequence({{1}}));
}

TEST(Sequence, NoSequenceIsLessThanItself) {
  const Sequence history = sequence({{1}, {2}});

  EXPECT_FALSE(history < history);
  EXPECT_FALSE(Sequence() < Sequence());
}

TEST(Sequence, TimesPlayNoPartInTheOrder) {
  const Sequence early = sequence({{1}}, {1.0}), late = sequence({{1}}, {9.0});

  EXPECT_FALSE(early < late);
  EXPECT_FALSE(late < early);
}

TEST(Sequence, EqualSetsAndTimesMakeEqual) {
  EXPECT_TRUE(sequence({{1}, {2}}, {1.0, 2.0}) == sequence({{1}, {2}}, {1.0, 2.0}));
  EXPECT_TRUE(Sequence() == Sequence());
}

TEST(Sequence, DifferentLengthsMakeUnequal) {
  EXPECT_FALSE(sequence({{1}}) == sequence({{1}, {2}}));
  EXPECT_FALSE(sequence({{1}, {2}}) == sequence({{1}}));
}

TEST(Sequence, DifferentTimesMakeUnequal) {
  EXPECT_FALSE(sequence({{1}}, {1.0}) == sequence({{1}}, {2.0}));
}

TEST(Sequence, DifferentBoundariesMakeUnequal) {
  EXPECT_FALSE(sequence({{1}, {2, 3}}) == sequence({{1, 2}, {3}}));
}

TEST(Sequence, DisplayWritesTheSetsInAngleBrackets) {
  const CapturedOutput output;

  sequence({{1, 2}, {5}}).Display(false);

  EXPECT_EQ(output.text(), "<(1 2)(5)>\n");
}

TEST(Sequence, DisplayWritesEachSetsTime) {
  const CapturedOutput output;

  sequence({{1, 2}, {5}}, {3.0, 4.6}).Display(true);

  EXPECT_EQ(output.text(), "<(1 2[3])(5[5])>\n");
}

TEST(Sequence, DisplayOfAnEmptySequenceIsAPairOfBrackets) {
  const CapturedOutput output;

  Sequence().Display(true);

  EXPECT_EQ(output.text(), "<>\n");
}

// Deliberate: the stream's format is not restored.
TEST(Sequence, DisplayOfTimesLeavesFixedNotationWithPrecisionZero) {
  const CapturedOutput output;

  sequence({{1}}, {1.0}).Display(true);

  EXPECT_TRUE(output.isFixed());
  EXPECT_EQ(output.precision(), 0);
}

}  // namespace

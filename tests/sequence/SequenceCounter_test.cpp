#include "sequence/SequenceCounter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <sstream>

#include "sequence/SeqExceptions.h"
#include "sequence/StatsBucket.h"
#include "tests/sequence/failEveryAllocation.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::CarmaSequenceDescriptor;
using SEQUENCE_NAMESPACE_800::SeqExceptions;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::StatsBucket;

using AdjacentItems = SequenceCounter::AdjacentItems;

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

// Statistics that count their destructions.
class CountedBucket : public StatsBucket {
 public:
  explicit CountedBucket(int& destroyed) : destroyed_(destroyed) {}
  ~CountedBucket() override { ++destroyed_; }

 private:
  int& destroyed_;
};

std::unique_ptr<StatsBucket> bucket(double occurrences, double total, double minimum,
                                    double maximum) {
  auto stats = std::make_unique<StatsBucket>();
  stats->setOccurrences(occurrences);
  stats->setTotal(total);
  stats->setMinimum(minimum);
  stats->setMaximum(maximum);
  return stats;
}

std::string displayed(const SequenceCounter& counter, bool showAdjacent) {
  std::ostringstream out;
  counter.display(out, showAdjacent);
  return out.str();
}

TEST(SequenceCounter, ANewCounterHasEveryFieldZeroOrAbsent) {
  const SequenceCounter counter;

  EXPECT_EQ(counter.getCount(), 0);
  EXPECT_EQ(counter.getOrdinalOfEntry(), 0);
  EXPECT_EQ(counter.getMaxMissed(), 0);
  EXPECT_EQ(counter.getStatsBucket(), nullptr);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

TEST(SequenceCounter, TheConstructorTakesOrdinalBeforeCount) {
  auto* const stats = new StatsBucket;
  const SequenceCounter counter(3, 20, stats);

  EXPECT_EQ(counter.getOrdinalOfEntry(), 3);
  EXPECT_EQ(counter.getCount(), 20);
  EXPECT_EQ(counter.getMaxMissed(), 0);
  EXPECT_EQ(counter.getStatsBucket(), stats);
  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

TEST(SequenceCounter, TheNumbersAreStoredAsGiven) {
  SequenceCounter counter;

  counter.setCount(-4);
  counter.setOrdinalOfEntry(-5);
  counter.setMaxMissed(-6);

  EXPECT_EQ(counter.getCount(), -4);
  EXPECT_EQ(counter.getOrdinalOfEntry(), -5);
  EXPECT_EQ(counter.getMaxMissed(), -6);
}

TEST(SequenceCounter, IncrementCountAddsOne) {
  SequenceCounter counter(0, 41, nullptr);

  counter.incrementCount();

  EXPECT_EQ(counter.getCount(), 42);
}

TEST(SequenceCounter, IncrementCountStopsAtTheLargestCount) {
  SequenceCounter counter(0, kMost, nullptr);

  counter.incrementCount();

  EXPECT_EQ(counter.getCount(), kMost);
}

TEST(SequenceCounter, DecrementMaxMissedSubtractsOne) {
  SequenceCounter counter;
  counter.setMaxMissed(3);

  counter.decrementMaxMissed();

  EXPECT_EQ(counter.getMaxMissed(), 2);
}

TEST(SequenceCounter, DecrementMaxMissedLeavesZeroAndLess) {
  SequenceCounter counter;

  counter.decrementMaxMissed();
  EXPECT_EQ(counter.getMaxMissed(), 0);

  counter.setMaxMissed(-2);
  counter.decrementMaxMissed();
  EXPECT_EQ(counter.getMaxMissed(), -2);
}

TEST(SequenceCounter, TheCounterDestroysItsStatistics) {
  int destroyed = 0;

  { const SequenceCounter counter(1, 1, new CountedBucket(destroyed)); }

  EXPECT_EQ(destroyed, 1);
}

// Deliberate: the setter leaves the previous statistics to the caller.
TEST(SequenceCounter, SetStatsBucketLeavesThePreviousOneToTheCaller) {
  int previousDestroyed = 0, destroyed = 0;
  auto previous = std::make_unique<CountedBucket>(previousDestroyed);
  {
    SequenceCounter counter(1, 1, previous.get());
    auto* const replacement = new CountedBucket(destroyed);

    counter.setStatsBucket(replacement);

    EXPECT_EQ(counter.getStatsBucket(), replacement);
  }
  EXPECT_EQ(previousDestroyed, 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(SequenceCounter, SetStatsBucketToNullHandsTheStatisticsBack) {
  int destroyed = 0;
  auto stats = std::make_unique<CountedBucket>(destroyed);
  SequenceCounter counter(1, 1, stats.get());

  counter.setStatsBucket(nullptr);

  EXPECT_EQ(counter.getStatsBucket(), nullptr);
  EXPECT_EQ(destroyed, 0);
}

TEST(SequenceCounter, SetStatsBucketTakesTheStatisticsThatItHas) {
  SequenceCounter counter(1, 1, new StatsBucket);
  StatsBucket* const stats = counter.getStatsBucket();

  counter.setStatsBucket(stats);

  EXPECT_EQ(counter.getStatsBucket(), stats);
}

TEST(SequenceCounter, NoPairsAreAdjacentAtFirst) { EXPECT_EQ(SequenceCounter().getNAdjacent(), 0); }

TEST(SequenceCounter, APairIsAddedOnce) {
  SequenceCounter counter;

  counter.addAdjacentItem(4, 1);
  counter.addAdjacentItem(4, 1);

  EXPECT_EQ(counter.getNAdjacent(), 1);
}

TEST(SequenceCounter, PairsAscendByItemThenByPosition) {
  SequenceCounter counter;

  counter.addAdjacentItem(4, 3);
  counter.addAdjacentItem(7, 0);
  counter.addAdjacentItem(4, 1);
  counter.addAdjacentItem(-2, 5);

  EXPECT_EQ(std::vector<SequenceCounter::AdjacentItem>(counter.getAdjacentItems()->begin(),
                                                       counter.getAdjacentItems()->end()),
            (std::vector<SequenceCounter::AdjacentItem>{{-2, 5}, {4, 1}, {4, 3}, {7, 0}}));
}

TEST(SequenceCounter, AnAdditionWithoutMemoryThrowsDictionaryFailure) {
  SequenceCounter counter;

  const int failures = failEveryAllocation<SeqExceptions::DictionaryFailure>(
      [&] { counter.addAdjacentItem(4, 1); }, [&] { EXPECT_EQ(counter.getNAdjacent(), 0); });

  EXPECT_EQ(failures, 2);
  EXPECT_EQ(*counter.getAdjacentItems(), (AdjacentItems{{4, 1}}));
}

TEST(SequenceCounter, ClearAdjacentItemsKeepsTheEmptySet) {
  SequenceCounter counter;
  counter.addAdjacentItem(4, 1);
  const AdjacentItems* const before = counter.getAdjacentItems();

  counter.clearAdjacentItems();

  EXPECT_EQ(counter.getNAdjacent(), 0);
  EXPECT_EQ(counter.getAdjacentItems(), before);
}

TEST(SequenceCounter, ClearAdjacentItemsMakesNoSet) {
  SequenceCounter counter;

  counter.clearAdjacentItems();

  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
}

TEST(SequenceCounter, SetAdjacentItemsTakesTheSet) {
  auto* const items = new AdjacentItems{{1, 0}, {2, 1}};
  SequenceCounter counter;

  counter.setAdjacentItems(items);

  EXPECT_EQ(counter.getAdjacentItems(), items);
  EXPECT_EQ(counter.getNAdjacent(), 2);
}

// Deliberate: the setter leaves the previous set to the caller.
TEST(SequenceCounter, SetAdjacentItemsLeavesThePreviousOneToTheCaller) {
  SequenceCounter counter;
  counter.addAdjacentItem(4, 1);
  const std::unique_ptr<AdjacentItems> previous(counter.getAdjacentItems());

  counter.setAdjacentItems(new AdjacentItems{{9, 9}});

  EXPECT_EQ(*previous, (AdjacentItems{{4, 1}}));
  EXPECT_EQ(*counter.getAdjacentItems(), (AdjacentItems{{9, 9}}));
}

TEST(SequenceCounter, SetAdjacentItemsToNullHandsTheSetBack) {
  SequenceCounter counter;
  counter.addAdjacentItem(4, 1);
  const std::unique_ptr<AdjacentItems> previous(counter.getAdjacentItems());

  counter.setAdjacentItems(nullptr);

  EXPECT_EQ(counter.getAdjacentItems(), nullptr);
  EXPECT_EQ(counter.getNAdjacent(), 0);
  EXPECT_EQ(previous->size(), 1U);
}

TEST(SequenceCounter, DisplayWritesTheNumbersOnALine) {
  SequenceCounter counter(3, 20, nullptr);
  counter.setMaxMissed(1);

  EXPECT_EQ(displayed(counter, false), " count 20 ordinalOfEntry 3 max missed 1\n");
}

TEST(SequenceCounter, DisplayWritesTheStatisticsWithTwoDecimals) {
  const SequenceCounter counter(3, 20, bucket(4, 10, 1, 5.126).release());

  EXPECT_EQ(displayed(counter, false),
            " count 20 ordinalOfEntry 3 max missed 0\n"
            " Occurrences 4.00\n"
            " mean 2.50\n"
            " min 1.00\n"
            " max 5.13\n");
}

TEST(SequenceCounter, DisplayOfStatisticsWithoutATotalWritesTheOccurrencesOnly) {
  const SequenceCounter none(3, 20, bucket(4, 0, 1, 5).release());
  const SequenceCounter negative(3, 20, bucket(4, -8, -5, -1).release());

  EXPECT_EQ(displayed(none, false), " count 20 ordinalOfEntry 3 max missed 0\n Occurrences 4.00\n");
  EXPECT_EQ(displayed(negative, false),
            " count 20 ordinalOfEntry 3 max missed 0\n Occurrences 4.00\n");
}

TEST(SequenceCounter, DisplayOfATotalWithoutOccurrencesHasTheMeanZero) {
  const SequenceCounter counter(0, 0, bucket(0, 10, 1, 5).release());

  EXPECT_EQ(displayed(counter, false),
            " count 0 ordinalOfEntry 0 max missed 0\n"
            " Occurrences 0.00\n mean 0.00\n min 1.00\n max 5.00\n");
}

TEST(SequenceCounter, DisplayWritesTheAdjacencyInOrderWhenAskedFor) {
  SequenceCounter counter;
  counter.addAdjacentItem(7, 0);
  counter.addAdjacentItem(4, 3);

  EXPECT_EQ(displayed(counter, true),
            " count 0 ordinalOfEntry 0 max missed 0\n"
            "Adjacent list {(item 4 position 3)\n"
            "(item 7 position 0)\n"
            "}End Adjacent list \n");
  EXPECT_EQ(displayed(counter, false), " count 0 ordinalOfEntry 0 max missed 0\n");
}

TEST(SequenceCounter, DisplayOfAnEmptyAdjacencyWritesItsFrame) {
  SequenceCounter counter;
  counter.setAdjacentItems(new AdjacentItems);

  EXPECT_EQ(displayed(counter, true),
            " count 0 ordinalOfEntry 0 max missed 0\nAdjacent list {}End Adjacent list \n");
}

TEST(SequenceCounter, DisplayWithoutAnAdjacencyWritesNoFrame) {
  EXPECT_EQ(displayed(SequenceCounter(), true), " count 0 ordinalOfEntry 0 max missed 0\n");
}

// Deliberate: the stream's format is not restored.
TEST(SequenceCounter, DisplayOfStatisticsOrAdjacencyLeavesFixedNotationWithPrecisionTwo) {
  const SequenceCounter withStatistics(1, 1, new StatsBucket);
  SequenceCounter withAdjacency;
  withAdjacency.addAdjacentItem(1, 1);

  for (const SequenceCounter* counter : {&withStatistics, &std::as_const(withAdjacency)}) {
    std::ostringstream out;
    counter->display(out, true);
    EXPECT_EQ(out.flags() & std::ios::floatfield, std::ios::fixed);
    EXPECT_EQ(out.precision(), 2);
  }
}

TEST(SequenceCounter, DisplayOfTheNumbersAloneLeavesTheFormatAlone) {
  std::ostringstream out;

  SequenceCounter().display(out, true);

  EXPECT_EQ(out.precision(), 6);
}

TEST(CarmaSequenceDescriptor, TheConstructorTakesOrdinalMaxMissedAndCount) {
  const CarmaSequenceDescriptor descriptor(3, 1, 20);

  EXPECT_EQ(descriptor.getOrdinalOfEntry(), 3);
  EXPECT_EQ(descriptor.getMaxMissed(), 1);
  EXPECT_EQ(descriptor.getCount(), 20);
  EXPECT_EQ(descriptor.getStatsBucket(), nullptr);
  EXPECT_EQ(descriptor.getAdjacentItems(), nullptr);
}

TEST(CarmaSequenceDescriptor, ANewOneHasEveryFieldZero) {
  const CarmaSequenceDescriptor descriptor;

  EXPECT_EQ(descriptor.getOrdinalOfEntry(), 0);
  EXPECT_EQ(descriptor.getMaxMissed(), 0);
  EXPECT_EQ(descriptor.getCount(), 0);
}

TEST(CarmaSequenceDescriptor, ItIsDestroyedThroughItsBase) {
  int destroyed = 0;
  std::unique_ptr<SequenceCounter> counter = std::make_unique<CarmaSequenceDescriptor>(3, 1, 20);
  counter->setStatsBucket(new CountedBucket(destroyed));
  counter->addAdjacentItem(1, 1);

  counter.reset();

  EXPECT_EQ(destroyed, 1);
}

TEST(StatsBucket, ANewOneHasEveryFieldZero) {
  const StatsBucket stats;

  EXPECT_EQ(stats.getOccurrences(), 0.0);
  EXPECT_EQ(stats.getTotal(), 0.0);
  EXPECT_EQ(stats.getMinimum(), 0.0);
  EXPECT_EQ(stats.getMaximum(), 0.0);
}

TEST(StatsBucket, TheFieldsAreIndependent) {
  const auto stats = bucket(4, 10, 1, 5);

  EXPECT_EQ(stats->getOccurrences(), 4.0);
  EXPECT_EQ(stats->getTotal(), 10.0);
  EXPECT_EQ(stats->getMinimum(), 1.0);
  EXPECT_EQ(stats->getMaximum(), 5.0);
}

TEST(StatsBucket, TheMeanIsTotalByOccurrences) { EXPECT_EQ(bucket(4, 10, 0, 0)->getMean(), 2.5); }

TEST(StatsBucket, TheMeanOfNoOccurrencesIsZero) { EXPECT_EQ(bucket(0, 10, 0, 0)->getMean(), 0.0); }

}  // namespace

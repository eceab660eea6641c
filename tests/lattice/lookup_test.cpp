// Storing sequences and finding them again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;

// The look-ups of every form, on what a text stands for.
bool isFound(const SequenceDictionary& dictionary, const History& asked) {
  const CountedArrays arrays(asked);
  const NTSequence key(arrays.data(), arrays.count());
  const bool byKey = dictionary.isStored(key);
  EXPECT_EQ(dictionary.hasSequence(arrays.data(), arrays.count()), byKey);
  EXPECT_EQ(dictionary.getSequence(arrays.data(), arrays.count()) != nullptr, byKey);
  EXPECT_EQ(dictionary.getDescriptor(arrays.data(), arrays.count()),
            dictionary.getDescriptor(&key));
  return byKey;
}

const SequenceCounter* counterOf(const SequenceDictionary& dictionary, const char* text) {
  const NTSequence key = packed(text);
  return dictionary.getDescriptor(&key);
}

TEST(SequenceDictionaryLookUp, FindsAStoredSequenceInEveryForm) {
  const Lattice lattice({{"(1 2)(3)", 7}});
  const CountedArrays arrays(history("(1 2)(3)"));
  const NTSequence key = packed("(1 2)(3)");
  const Sequence unpacked = sequence("(1 2)(3)");

  EXPECT_TRUE(lattice.hasSequence(arrays.data(), arrays.count()));
  EXPECT_EQ(*lattice.getSequence(arrays.data(), arrays.count()), key);
  ASSERT_NE(lattice.getDescriptor(&key), nullptr);
  EXPECT_EQ(lattice.getDescriptor(&key)->getCount(), 7);
  EXPECT_EQ(lattice.getDescriptor(arrays.data(), arrays.count()), lattice.getDescriptor(&key));
  EXPECT_EQ(lattice.getDescriptor(&unpacked), lattice.getDescriptor(&key));
}

TEST(SequenceDictionaryLookUp, GivesTheTablesOwnKey) {
  const Lattice lattice({{"(1)(2)", 7}});
  const CountedArrays arrays(history("(1)(2)"));

  const NTSequence* const stored = lattice.getSequence(arrays.data(), arrays.count());

  EXPECT_EQ(lattice.getSequence(arrays.data(), arrays.count()), stored);
}

TEST(SequenceDictionaryLookUp, TellsItemsOrderAndSetsApart) {
  const Lattice lattice({{"(1)(2)", 7}});

  EXPECT_TRUE(isFound(lattice, history("(1)(2)")));
  EXPECT_FALSE(isFound(lattice, history("(1 2)")));
  EXPECT_FALSE(isFound(lattice, history("(2)(1)")));
  EXPECT_FALSE(isFound(lattice, history("(1)(3)")));
  EXPECT_FALSE(isFound(lattice, history("(1)")));
}

TEST(SequenceDictionaryLookUp, ArraysAreTakenInTheirOwnOrder) {
  const Lattice lattice({{"(2 1)", 7}});

  EXPECT_TRUE(isFound(lattice, history("(2 1)")));
  EXPECT_FALSE(isFound(lattice, history("(1 2)")));
}

TEST(SequenceDictionaryLookUp, SetsWithoutItemsAreSkipped) {
  const Lattice lattice({{"(1)(2)", 7}});
  const Sequence withGaps = sequence("()(1)()(2)()");

  EXPECT_TRUE(isFound(lattice, history("()(1)()(2)()")));
  EXPECT_NE(lattice.getDescriptor(&withGaps), nullptr);
}

TEST(SequenceDictionaryLookUp, FindsTheEmptySequence) {
  const Lattice lattice({{"", 10}});
  const Sequence empty;

  EXPECT_TRUE(isFound(lattice, {}));
  ASSERT_NE(lattice.getDescriptor(&empty), nullptr);
  EXPECT_EQ(lattice.getDescriptor(&empty)->getCount(), 10);
}

TEST(SequenceDictionaryLookUp, FindsItemsOfEverySignAndHash) {
  const Lattice lattice({{"(-1)", 1},
                         {"(-2147483648)", 2},
                         {"(2147483647)", 3},
                         {"(0)", 4},
                         {"(180684 183681)", 5},
                         {"(-3)(-4)(-5)", 6}});

  EXPECT_EQ(counterOf(lattice, "(-1)")->getCount(), 1);
  EXPECT_EQ(counterOf(lattice, "(-2147483648)")->getCount(), 2);
  EXPECT_EQ(counterOf(lattice, "(2147483647)")->getCount(), 3);
  EXPECT_EQ(counterOf(lattice, "(0)")->getCount(), 4);
  EXPECT_EQ(counterOf(lattice, "(180684 183681)")->getCount(), 5);
  EXPECT_EQ(counterOf(lattice, "(-3)(-4)(-5)")->getCount(), 6);
}

TEST(SequenceDictionaryLookUp, ASequenceOfMoreItemsThanTheLevelsIsAbsent) {
  const Lattice lattice({{"", 10}, {"(1)", 5}}, /*levels=*/2);
  const Sequence longer = sequence("(1)(2)");

  EXPECT_FALSE(isFound(lattice, history("(1)(2)")));
  EXPECT_EQ(lattice.getDescriptor(&longer), nullptr);
}

TEST(SequenceDictionaryLookUp, ASequenceInALevelThatIsNotItsSizeIsNeverFound) {
  auto* const wrong = new HashtableSQPair(3);
  wrong->put(new NTSequence(packed("(1)(2)")), new SequenceCounter(0, 5, nullptr));
  wrong->put(new NTSequence(), new SequenceCounter(0, 6, nullptr));
  auto** tables =
      new HashtableSQPair* [4] { new HashtableSQPair(2), wrong, new HashtableSQPair(3), nullptr };
  SequenceDictionary dictionary(tables, 4);

  EXPECT_TRUE(dictionary.buildLattice().IsOK());
  EXPECT_FALSE(isFound(dictionary, history("(1)(2)")));
  EXPECT_FALSE(isFound(dictionary, {}));
  EXPECT_TRUE(futureItems(dictionary, {}).empty());
  EXPECT_TRUE(found(dictionary, history("(1)(2)")).empty());
}

// --- Storing -------------------------------------------------------------------------------------

TEST(SequenceDictionaryStore, CopiesTheThreeNumbersAndNothingElse) {
  SequenceDictionary dictionary(smallTables(3));
  SequenceCounter counter(/*ordinalOfEntry=*/4, /*count=*/9,
                          new SEQUENCE_NAMESPACE_800::StatsBucket());
  counter.setMaxMissed(2);
  counter.addAdjacentItem(1, 1);
  const CountedArrays arrays(history("(1)(2)"));

  EXPECT_TRUE(dictionary.addSequence(arrays.data(), arrays.count(), &counter));

  const SequenceCounter* const stored = counterOf(dictionary, "(1)(2)");
  ASSERT_NE(stored, nullptr);
  EXPECT_NE(stored, &counter);
  EXPECT_EQ(stored->getCount(), 9);
  EXPECT_EQ(stored->getOrdinalOfEntry(), 4);
  EXPECT_EQ(stored->getMaxMissed(), 2);
  EXPECT_EQ(stored->getStatsBucket(), nullptr);
  EXPECT_EQ(stored->getAdjacentItems(), nullptr);
}

TEST(SequenceDictionaryStore, ANullCounterStoresTheSequenceWithoutOne) {
  SequenceDictionary dictionary(smallTables(3));

  EXPECT_TRUE(store(dictionary, history("(1)"), std::nullopt));

  EXPECT_TRUE(isFound(dictionary, history("(1)")));
  EXPECT_EQ(counterOf(dictionary, "(1)"), nullptr);
}

TEST(SequenceDictionaryStore, ReplacesAnEqualSequence) {
  SequenceDictionary dictionary(smallTables(3));
  store(dictionary, history("(1)"), 5);

  EXPECT_TRUE(store(dictionary, history("(1)"), 6));
  EXPECT_EQ(dictionary.CountSequencesOfSize(1), 1);
  EXPECT_EQ(counterOf(dictionary, "(1)")->getCount(), 6);

  EXPECT_TRUE(store(dictionary, history("(1)"), std::nullopt));
  EXPECT_EQ(dictionary.CountSequencesOfSize(1), 1);
  EXPECT_EQ(counterOf(dictionary, "(1)"), nullptr);
}

TEST(SequenceDictionaryStore, RefusesASequenceThatNoLevelHolds) {
  SequenceDictionary dictionary(smallTables(2));

  EXPECT_FALSE(store(dictionary, history("(1)(2)"), 5));
  EXPECT_FALSE(store(dictionary, history("(1 2 3)"), std::nullopt));
  EXPECT_EQ(dictionary.NumberOfSequences(), 1);
}

TEST(SequenceDictionaryStore, ThirtyTwoItemsAreStoredAndFound) {
  SequenceDictionary dictionary(smallTables(33));

  EXPECT_TRUE(store(dictionary, singletons(32), 5));

  const Sequence unpacked = sequence(singletons(32));
  EXPECT_TRUE(isFound(dictionary, singletons(32)));
  ASSERT_NE(dictionary.getDescriptor(&unpacked), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(&unpacked)->getCount(), 5);
}

TEST(SequenceDictionaryStore, MoreThanThirtyTwoItemsAreAbsentAndNotStored) {
  SequenceDictionary dictionary(smallTables(40));
  const CountedArrays arrays(singletons(33));
  const Sequence unpacked = sequence(singletons(33));
  const CountedArrays oneSet({Items(1000, 7)});

  EXPECT_FALSE(store(dictionary, singletons(33), 5));
  EXPECT_FALSE(dictionary.hasSequence(arrays.data(), arrays.count()));
  EXPECT_EQ(dictionary.getSequence(arrays.data(), arrays.count()), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(arrays.data(), arrays.count()), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(&unpacked), nullptr);
  EXPECT_EQ(dictionary.incrementCount(arrays.data(), arrays.count()), nullptr);
  EXPECT_FALSE(dictionary.addSequence(oneSet.data(), oneSet.count(), nullptr));
  EXPECT_EQ(dictionary.NumberOfSequences(), 1);
}

TEST(SequenceDictionaryStore, ALookUpAfterOneThatCannotBePackedStillWorks) {
  const Lattice lattice({{"(1)", 5}});

  EXPECT_FALSE(lattice.hasSequence(CountedArrays(singletons(33)).data(), 33));

  EXPECT_TRUE(isFound(lattice, history("(1)")));
}

// --- Incrementing --------------------------------------------------------------------------------

TEST(SequenceDictionaryIncrement, AddsOneAndGivesTheCounter) {
  Lattice lattice({{"(1)(2)", 5}});
  const CountedArrays arrays(history("(1)(2)"));

  SequenceCounter* const counter = lattice.incrementCount(arrays.data(), arrays.count());

  EXPECT_EQ(counter, counterOf(lattice, "(1)(2)"));
  EXPECT_EQ(counter->getCount(), 6);
}

TEST(SequenceDictionaryIncrement, OfAnAbsentSequenceChangesNothing) {
  Lattice lattice({{"(1)(2)", 5}}, /*levels=*/3);
  const CountedArrays absent(history("(2)(1)")), tooLong(history("(1)(2)(3)"));

  EXPECT_EQ(lattice.incrementCount(absent.data(), absent.count()), nullptr);
  EXPECT_EQ(lattice.incrementCount(tooLong.data(), tooLong.count()), nullptr);
  EXPECT_EQ(lattice.NumberOfSequences(), 2);
  EXPECT_EQ(counterOf(lattice, "(1)(2)")->getCount(), 5);
}

TEST(SequenceDictionaryIncrement, OfASequenceWithoutACounterGivesNone) {
  Lattice lattice({{"(1)", std::nullopt}});
  const CountedArrays arrays(history("(1)"));

  EXPECT_EQ(lattice.incrementCount(arrays.data(), arrays.count()), nullptr);
}

TEST(SequenceDictionaryIncrement, OfTheEmptySequenceCountsACustomer) {
  Lattice lattice({{"", 10}});

  EXPECT_EQ(lattice.incrementCount(nullptr, 0)->getCount(), 11);
}

}  // namespace

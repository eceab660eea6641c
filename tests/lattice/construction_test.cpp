// Making, copying and destroying a dictionary. Leaks and reads out of bounds are the sanitizers' to
// find; these tests give them every shape that there is.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "sequence/HashtableSQPair.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using testing::IsEmpty;

// A table of the sequences that the texts list, each with the count 1.
HashtableSQPair* tableOf(std::initializer_list<const char*> texts, int capacity = 3) {
  auto* table = new HashtableSQPair(capacity);
  for (const char* one : texts)
    table->put(new NTSequence(packed(one)), new SequenceCounter(0, 1, nullptr));
  return table;
}

// Asks for everything that needs no particular content.
void expectNoAnswers(SequenceDictionary& dictionary) {
  const Sequence customer = sequence("(1)(2)");
  const CountedArrays one(history("(1)"));

  EXPECT_EQ(dictionary.LargestSequence(), 0);
  EXPECT_EQ(dictionary.CountSequencesOfSize(1), 0);
  EXPECT_EQ(dictionary.CountSequencesBiggerThan(1), 0);
  EXPECT_FALSE(dictionary.hasSequence(one.data(), one.count()));
  EXPECT_EQ(dictionary.getSequence(one.data(), one.count()), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(one.data(), one.count()), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(&customer), nullptr);
  EXPECT_EQ(dictionary.incrementCount(one.data(), one.count()), nullptr);
  EXPECT_FALSE(dictionary.addSequence(one.data(), one.count(), nullptr));
  EXPECT_THAT(found(dictionary, history("(1)(2)")), IsEmpty());
  EXPECT_THAT(sequencesOfSize(dictionary, 1), IsEmpty());
  EXPECT_THAT(futureItems(dictionary, history("(1)(2)"), 20, false), IsEmpty());
  EXPECT_THAT(futureItems(dictionary, {}), IsEmpty());
  EXPECT_THAT(currentItems(dictionary, history("(1)(2)")), IsEmpty());
  EXPECT_THAT(currentItems(dictionary, {}), IsEmpty());
  EXPECT_THAT(rules(dictionary), IsEmpty());
  for (const Walk walk : {Walk::kAnywhere, Walk::kBeginning, Walk::kEnding})
    EXPECT_THAT(reached(dictionary, walk, history("(1)"), 0, 9), IsEmpty());
  EXPECT_TRUE(dictionary.buildLattice().IsOK());
}

TEST(SequenceDictionary, ADefaultConstructedDictionaryHasNoLevelsAndNoAnswers) {
  SequenceDictionary dictionary;

  EXPECT_FALSE(dictionary.isLatticeBuilt());
  EXPECT_EQ(dictionary.getNumLevels(), 0);
  EXPECT_EQ(dictionary.NumberOfSequences(), 0);
  EXPECT_EQ(dictionary.getSettings().numLevels, 10);
  expectNoAnswers(dictionary);
}

TEST(SequenceDictionary, EveryNumberHasAValueFromConstruction) {
  const SequenceDictionary dictionary;

  EXPECT_EQ(dictionary.getMinGap(), 0.0);
  EXPECT_EQ(dictionary.getMaxGap(), 0.0);
  EXPECT_EQ(dictionary.getSlidingWindow(), 0.0);
  EXPECT_EQ(dictionary.getReductionThreshold(), 0.0);
  EXPECT_EQ(dictionary.getSettings().reserved, 0);
}

TEST(SequenceDictionary, SettingsDefaultToTheTunedTableSizes) {
  const SeqDictionarySettings settings;

  EXPECT_EQ(settings.levelTableSize,
            (std::array<std::int32_t, 8>{2, 11519, 23039, 23039, 23039, 23039, 11519, 11519}));
  EXPECT_EQ(settings.upperTableSize, 89);
  EXPECT_EQ(settings.numLevels, 10);
  EXPECT_EQ(sizeof(SeqDictionarySettings), 11 * sizeof(std::int32_t));
}

TEST(SequenceDictionary, ADictionaryOfNLevelsStartsWithTheEmptySequenceAndCountZero) {
  const SequenceDictionary dictionary(3);

  const NTSequence empty;
  ASSERT_NE(dictionary.getDescriptor(&empty), nullptr);
  EXPECT_EQ(dictionary.getDescriptor(&empty)->getCount(), 0);
  EXPECT_EQ(dictionary.getDescriptor(&empty)->getAdjacentItems(), nullptr);
  EXPECT_EQ(dictionary.NumberOfSequences(), 1);
  EXPECT_EQ(dictionary.getNumLevels(), 3);
  EXPECT_EQ(dictionary.getSettings().numLevels, 3);
  EXPECT_EQ(dictionary.getSettings().levelTableSize[1], 11519);
  EXPECT_FALSE(dictionary.isLatticeBuilt());
}

TEST(SequenceDictionary, SettingsAreCopiedWholeAndGiveTheNumberOfLevels) {
  SeqDictionarySettings settings;
  settings.levelTableSize = {1, 2, 3, 4, 5, 6, 7, 8};
  settings.upperTableSize = 9;
  settings.numLevels = 12;
  settings.reserved = 13;

  const SequenceDictionary dictionary(settings);

  EXPECT_EQ(dictionary.getSettings().levelTableSize, settings.levelTableSize);
  EXPECT_EQ(dictionary.getSettings().upperTableSize, 9);
  EXPECT_EQ(dictionary.getSettings().reserved, 13);
  EXPECT_EQ(dictionary.getNumLevels(), 12);
}

TEST(SequenceDictionary, ADictionaryOfNoLevelsHasNoAnswers) {
  SequenceDictionary dictionary(0);

  EXPECT_EQ(dictionary.NumberOfSequences(), 0);
  expectNoAnswers(dictionary);
}

TEST(SequenceDictionary, ADictionaryOfOneLevelHoldsTheEmptySequenceAlone) {
  SequenceDictionary dictionary(1);

  EXPECT_EQ(dictionary.NumberOfSequences(), 1);
  expectNoAnswers(dictionary);
}

TEST(SequenceDictionary, ANegativeNumberOfLevelsCountsAsNone) {
  for (const int levels : {-1, -7, std::numeric_limits<int>::min()}) {
    SequenceDictionary dictionary(levels);

    EXPECT_EQ(dictionary.NumberOfSequences(), 0) << levels;
    expectNoAnswers(dictionary);
  }
}

TEST(SequenceDictionary, TablesOfCapacityZeroAreFoundEmptyAndGrow) {
  SeqDictionarySettings settings;
  settings.levelTableSize = {0, 0, 0, -5, 0, 0, 0, 0};
  settings.upperTableSize = 0;
  settings.numLevels = 10;
  SequenceDictionary dictionary(settings);

  EXPECT_THAT(found(dictionary, history("(1)")), IsEmpty());
  EXPECT_TRUE(store(dictionary, history("(1)(2)(3)"), 4));
  EXPECT_THAT(sequencesOfSize(dictionary, 3), testing::ElementsAre(history("(1)(2)(3)")));
}

// --- Over finished tables ------------------------------------------------------------------------

TEST(SequenceDictionary, FinishedTablesCountAsBuiltAndAreOwned) {
  auto** tables = new HashtableSQPair* [2] { tableOf({""}), tableOf({"(1)", "(2)"}) };

  const SequenceDictionary dictionary(tables, 2);

  EXPECT_TRUE(dictionary.isLatticeBuilt());
  EXPECT_EQ(dictionary.getNumLevels(), 2);
  EXPECT_EQ(dictionary.getSettings().numLevels, 2);
  EXPECT_EQ(dictionary.getSettings().levelTableSize[2], 23039);
  EXPECT_EQ(dictionary.NumberOfSequences(), 3);
}

TEST(SequenceDictionary, ATableGivenBeyondTheLastLevelIsNeitherReadNorFreed) {
  const std::unique_ptr<HashtableSQPair> beyond(tableOf({"(1)(2)"}));
  auto** tables = new HashtableSQPair* [3] { tableOf({""}), tableOf({"(1)"}), beyond.get() };

  {
    const SequenceDictionary dictionary(tables, 2);
    EXPECT_EQ(dictionary.CountSequencesOfSize(2), 0);
    EXPECT_FALSE(dictionary.isStored(packed("(1)(2)")));
  }

  EXPECT_EQ(beyond->getSize(), 1);
}

TEST(SequenceDictionary, MissingTablesHoldNothing) {
  auto** tables = new HashtableSQPair* [4] { nullptr, nullptr, tableOf({"(1)(2)"}), nullptr };
  SequenceDictionary dictionary(tables, 4);

  EXPECT_EQ(dictionary.NumberOfSequences(), 1);
  EXPECT_EQ(dictionary.LargestSequence(), 0);
  EXPECT_TRUE(dictionary.buildLattice().IsOK());
  EXPECT_FALSE(store(dictionary, history("(1)"), 1));
  EXPECT_THAT(sequencesOfSize(dictionary, 1), IsEmpty());
  EXPECT_THAT(futureItems(dictionary, {}), IsEmpty());
  EXPECT_THAT(currentItems(dictionary, history("(1)")), IsEmpty());
}

TEST(SequenceDictionary, NoTablesAtAllAreNoLevels) {
  SequenceDictionary none(new HashtableSQPair*[0], 0);
  SequenceDictionary missing(static_cast<HashtableSQPair**>(nullptr), 0);
  SequenceDictionary announcedAsNone(new HashtableSQPair*[0], -1);

  expectNoAnswers(none);
  expectNoAnswers(missing);
  expectNoAnswers(announcedAsNone);
}

// --- Copies --------------------------------------------------------------------------------------

// A dictionary that is never destroyed, as one of two copies must not be.
class Undestroyed {
 public:
  template <typename... Arguments>
  explicit Undestroyed(const Arguments&... arguments)
      : dictionary_(new (storage_) SequenceDictionary(arguments...)) {}

  SequenceDictionary& operator*() { return *dictionary_; }

 private:
  alignas(SequenceDictionary) std::byte storage_[sizeof(SequenceDictionary)];
  SequenceDictionary* dictionary_;
};

// Deliberate: copies are shallow.
TEST(SequenceDictionary, ACopySharesTheContentAndOnlyOneIsDestroyed) {
  Lattice original({{"", 10}, {"(1)", 5}});
  original.setMinGap(1.5);
  original.setMaxGap(2.5);
  original.setSlidingWindow(3.5);

  Undestroyed copy(static_cast<const SequenceDictionary&>(original));
  store(original, history("(2)"), 3);

  const NTSequence one = packed("(1)");
  EXPECT_EQ((*copy).getDescriptor(&one), original.getDescriptor(&one));
  EXPECT_TRUE((*copy).isStored(packed("(2)")));
  EXPECT_TRUE((*copy).isLatticeBuilt());
  EXPECT_EQ((*copy).getMinGap(), 1.5);
  EXPECT_EQ((*copy).getMaxGap(), 2.5);
  EXPECT_EQ((*copy).getSlidingWindow(), 3.5);
}

TEST(SequenceDictionary, AnAssignedDictionarySharesTheContentAndTheFlags) {
  Lattice original({{"", 10}, {"(1)", 5}}, 4);
  original.setCancel();
  Undestroyed copy;

  *copy = original;
  *copy = *copy;

  std::vector<SeqConsequentDescriptor> answer;
  const Sequence customer = sequence("(1)");
  EXPECT_TRUE((*copy).isStored(packed("(1)")));
  EXPECT_EQ((*copy).getNumLevels(), 4);
  EXPECT_EQ((*copy).GetFutureItems(answer, &customer, 20, true).GetErrorCode(), 1);
}

TEST(SequenceDictionary, IsDestroyedOnlyAsWhatItIs) {
  EXPECT_FALSE(std::has_virtual_destructor_v<SequenceDictionary>);
  EXPECT_FALSE(std::is_destructible_v<SEQUENCE_NAMESPACE_800::SequenceSemiLattice>);
}

}  // namespace

// Memory that runs out: each operation is repeated with its first allocation failing, then its
// second, and so on until none fails. It must end as promised each time, leak nothing, and leave a
// dictionary that works.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>

#include "sequence/HashtableSQPair.h"
#include "sequence/SeqExceptions.h"
#include "tests/support/FailingAllocator.h"
#include "tests/support/World.h"

namespace {

using namespace orbseq::test;
using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using DictionaryFailure = SEQUENCE_NAMESPACE_800::SeqExceptions::DictionaryFailure;

enum class Outcome { kDone, kFailure, kBadAlloc, kOther };

// What the operation ends with when its n-th allocation fails; kDone also when it has fewer.
Outcome outcomeOf(const std::function<void()>& operation, long n, bool& hasFailed) {
  Outcome outcome = Outcome::kDone;
  FailAllocation failure(n);
  try {
    operation();
  } catch (const DictionaryFailure&) {
    outcome = Outcome::kFailure;
  } catch (const std::bad_alloc&) {
    outcome = Outcome::kBadAlloc;
  } catch (...) {
    outcome = Outcome::kOther;
  }
  hasFailed = failure.hasFailed();
  return outcome;
}

// The lattice that the operations work on.
const std::vector<Count>& counts() {
  static const std::vector<Count> all = {{"", 9},       {"(1)", 8},     {"(2)", 8},
                                         {"(3)", 8},    {"(1 2)", 7},   {"(1)(3)", 6},
                                         {"(2)(3)", 5}, {"(1 2)(3)", 4}};
  return all;
}

void expectWorks(const SequenceDictionary& dictionary) {
  EXPECT_EQ(futureItems(dictionary, history("(1 2)")),
            std::vector<Advice>({{3, 6.0 / 8.0, 6.0 / 9.0, 6.0 / 8.0}}));
  EXPECT_EQ(found(dictionary, history("(1 2)(3)")).size(), 4U);
  EXPECT_EQ(rules(dictionary).size(), 3U);
}

// Runs `operation` on a new lattice for n = 1, 2 .. until nothing fails; `check` sees each result.
// Expects `failed` as the outcome of every failure.
void exhaust(Outcome failed, const std::function<void(Lattice&)>& operation,
             const std::function<void(Lattice&, Outcome)>& check) {
  bool hasFailed = true;
  for (long n = 1; hasFailed; ++n) {
    ASSERT_LT(n, 5000) << "the operation does not end";
    const long before = livingBlocks();
    {
      Lattice lattice(counts(), /*levels=*/5);
      const Outcome outcome = outcomeOf([&] { operation(lattice); }, n, hasFailed);
      EXPECT_EQ(outcome, hasFailed ? failed : Outcome::kDone) << "allocation " << n;
      check(lattice, outcome);
      expectWorks(lattice);
    }
    EXPECT_EQ(livingBlocks(), before) << "allocation " << n;
  }
}

class OutOfMemory : public testing::Test {
 protected:
  // What is made once for good must not look like a leak.
  void SetUp() override { expectWorks(Lattice(counts(), 5)); }
};

// --- Construction --------------------------------------------------------------------------------

TEST_F(OutOfMemory, ConstructionThrowsDictionaryFailureAndLeaksNothing) {
  const std::function<void()> ways[] = {
      [] { const SequenceDictionary made(smallTables(4)); },
      [] { const SequenceDictionary made(3); },
      [] { const SequenceDictionary made(0); },
  };
  for (const auto& way : ways) {
    bool hasFailed = true;
    for (long n = 1; hasFailed && n < 100; ++n) {
      const long before = livingBlocks();
      const Outcome outcome = outcomeOf(way, n, hasFailed);
      EXPECT_EQ(outcome, hasFailed ? Outcome::kFailure : Outcome::kDone) << "allocation " << n;
      EXPECT_EQ(livingBlocks(), before) << "allocation " << n;
    }
  }
}

TEST_F(OutOfMemory, ADefaultConstructedDictionaryNeedsNone) {
  bool hasFailed = true;

  EXPECT_EQ(outcomeOf([] { const SequenceDictionary made; }, 1, hasFailed), Outcome::kDone);
  EXPECT_FALSE(hasFailed);
}

// The caller keeps array and tables when the constructor throws.
TEST_F(OutOfMemory, ConstructionOverTablesLeavesThemToTheCaller) {
  bool hasFailed = true;
  for (long n = 1; hasFailed && n < 100; ++n) {
    const long before = livingBlocks();
    {
      auto table = std::make_unique<HashtableSQPair>(3);
      auto tables = std::make_unique<HashtableSQPair*[]>(1);
      tables[0] = table.get();
      const Outcome outcome = outcomeOf(
          [&] {
            const SequenceDictionary made(tables.get(), 1);
            static_cast<void>(tables.release());
            static_cast<void>(table.release());
          },
          n, hasFailed);
      EXPECT_EQ(outcome, hasFailed ? Outcome::kFailure : Outcome::kDone) << "allocation " << n;
    }
    EXPECT_EQ(livingBlocks(), before) << "allocation " << n;
  }
}

// --- Store and look-up ---------------------------------------------------------------------------

TEST_F(OutOfMemory, AddSequenceThrowsDictionaryFailureAndStoresNothing) {
  const CountedArrays arrays(history("(3)(2)(1)"));
  const SequenceCounter counter(1, 2, nullptr);

  exhaust(
      Outcome::kFailure,
      [&](Lattice& lattice) { lattice.addSequence(arrays.data(), arrays.count(), &counter); },
      [&](Lattice& lattice, Outcome outcome) {
        EXPECT_EQ(lattice.hasSequence(arrays.data(), arrays.count()), outcome == Outcome::kDone);
        EXPECT_EQ(lattice.CountSequencesOfSize(3), outcome == Outcome::kDone ? 2 : 1);
      });
}

TEST_F(OutOfMemory, AddSequenceThatGrowsATableStoresAllOrNothing) {
  const SequenceCounter counter(1, 8, nullptr);
  const CountedArrays first(history("(4)(4)(4)(4)")), second(history("(5)(5)(5)(5)"));
  const CountedArrays third(history("(6)(6)(6)(6)")), fourth(history("(7)(7)(7)(7)"));
  const CountedArrays fifth(history("(8)(8)(8)(8)")), sixth(history("(9)(9)(9)(9)"));
  const CountedArrays* const all[] = {&first, &second, &third, &fourth, &fifth, &sixth};

  exhaust(
      Outcome::kFailure,
      [&](Lattice& lattice) {
        for (const CountedArrays* one : all)
          lattice.addSequence(one->data(), one->count(), &counter);
      },
      [&](Lattice& lattice, Outcome) {
        int stored = 0;
        for (const CountedArrays* one : all)
          if (lattice.hasSequence(one->data(), one->count())) ++stored;
        EXPECT_EQ(lattice.CountSequencesOfSize(4), stored);
      });
}

TEST_F(OutOfMemory, AddSequenceLeavesAnEqualOneAsItIs) {
  const CountedArrays arrays(history("(2)(3)"));
  const NTSequence key = packed("(2)(3)");
  const SequenceCounter counter(1, 5, nullptr);

  exhaust(
      Outcome::kFailure,
      [&](Lattice& lattice) { lattice.addSequence(arrays.data(), arrays.count(), &counter); },
      [&](Lattice& lattice, Outcome outcome) {
        ASSERT_NE(lattice.getDescriptor(&key), nullptr);
        EXPECT_EQ(lattice.getDescriptor(&key)->getOrdinalOfEntry(),
                  outcome == Outcome::kDone ? 1 : 0);
      });
}

TEST_F(OutOfMemory, LookUpsThrowDictionaryFailure) {
  const CountedArrays pair(history("(1)(3)")), triple(history("(1 2)(3)"));
  const Sequence unpacked = sequence("(1 2)(3)");

  exhaust(
      Outcome::kFailure,
      [&](Lattice& lattice) {
        lattice.hasSequence(pair.data(), pair.count());
        lattice.getSequence(triple.data(), triple.count());
        lattice.getDescriptor(pair.data(), pair.count());
        lattice.getDescriptor(&unpacked);
        lattice.hasSequence(pair.data(), pair.count());
      },
      [&](Lattice& lattice, Outcome) {
        EXPECT_TRUE(lattice.hasSequence(pair.data(), pair.count()));
        EXPECT_NE(lattice.getDescriptor(&unpacked), nullptr);
      });
}

TEST_F(OutOfMemory, IncrementCountThrowsDictionaryFailureAndCountsNothing) {
  const CountedArrays arrays(history("(1 2)(3)"));
  const NTSequence key = packed("(1 2)(3)");

  exhaust(
      Outcome::kFailure,
      [&](Lattice& lattice) { lattice.incrementCount(arrays.data(), arrays.count()); },
      [&](Lattice& lattice, Outcome outcome) {
        EXPECT_EQ(lattice.getDescriptor(&key)->getCount(), outcome == Outcome::kDone ? 5 : 4);
      });
}

TEST_F(OutOfMemory, LookUpsOfAPackedSequenceNeedNone) {
  const Lattice lattice(counts(), 5);
  const NTSequence key = packed("(1 2)(3)");
  bool hasFailed = true;

  outcomeOf(
      [&] {
        lattice.getDescriptor(&key);
        lattice.isStored(key);
      },
      1, hasFailed);

  EXPECT_FALSE(hasFailed);
}

// --- Building ------------------------------------------------------------------------------------

TEST_F(OutOfMemory, BuildLatticeAnswersAFailureAndCanBeRepeated) {
  bool hasFailed = true;
  for (long n = 1; hasFailed; ++n) {
    ASSERT_LT(n, 5000);
    const long before = livingBlocks();
    {
      SequenceDictionary dictionary(smallTables(5));
      for (const Count& count : counts()) store(dictionary, history(count.sequence), count.count);
      OrbCommon_830::OrbStatus status;

      const Outcome outcome = outcomeOf([&] { status = dictionary.buildLattice(); }, n, hasFailed);

      EXPECT_EQ(outcome, Outcome::kDone) << "allocation " << n;
      EXPECT_EQ(status,
                hasFailed ? OrbCommon_830::OrbStatus(60000, false) : OrbCommon_830::OrbStatus())
          << "allocation " << n;
      EXPECT_EQ(dictionary.isLatticeBuilt(), !hasFailed);
      EXPECT_TRUE(dictionary.buildLattice().IsOK());
      EXPECT_TRUE(dictionary.isLatticeBuilt());
      expectWorks(dictionary);
    }
    EXPECT_EQ(livingBlocks(), before) << "allocation " << n;
  }
}

// --- Queries -------------------------------------------------------------------------------------

TEST_F(OutOfMemory, FutureItemsThrowBadAllocAndAppendNothing) {
  const Sequence histories[] = {sequence("(1 2)(3)(1)"), Sequence()};
  for (const Sequence& customer : histories) {
    std::vector<SeqConsequentDescriptor> answer;
    exhaust(
        Outcome::kBadAlloc,
        [&](Lattice& lattice) { lattice.GetFutureItems(answer, &customer, 20, false); },
        [&](Lattice&, Outcome outcome) {
          EXPECT_EQ(answer.empty(), outcome != Outcome::kDone);
          std::vector<SeqConsequentDescriptor>().swap(answer);
        });
  }
}

TEST_F(OutOfMemory, CurrentItemsThrowBadAllocAndAppendNothing) {
  const Sequence histories[] = {sequence("(3)(1)"), Sequence()};
  for (const Sequence& customer : histories) {
    std::vector<SeqConsequentDescriptor> answer;
    exhaust(
        Outcome::kBadAlloc,
        [&](Lattice& lattice) { lattice.GetCurrentItems(answer, &customer, 20); },
        [&](Lattice&, Outcome outcome) {
          EXPECT_EQ(answer.empty(), outcome != Outcome::kDone);
          std::vector<SeqConsequentDescriptor>().swap(answer);
        });
  }
}

TEST_F(OutOfMemory, RulesAnswerAFailureAndAppendNothing) {
  bool hasFailed = true;
  for (long n = 1; hasFailed; ++n) {
    ASSERT_LT(n, 5000);
    const Lattice lattice(counts(), 5);
    const long before = livingBlocks();
    {
      OrbCommon_830::OrbStatus status;
      std::vector<SeqAssociationRule> answer;
      answer.emplace_back(sequence("(8)"), sequence("(9)"), 0.1, 0.2, 0.3, 0);

      const Outcome outcome = outcomeOf(
          [&] { status = lattice.GetRules(answer, 0, 1, 0, 1, 0, 1, 'S', false); }, n, hasFailed);

      EXPECT_EQ(outcome, Outcome::kDone) << "allocation " << n;
      EXPECT_EQ(status,
                hasFailed ? OrbCommon_830::OrbStatus(60000, false) : OrbCommon_830::OrbStatus())
          << "allocation " << n;
      EXPECT_EQ(answer.size(), hasFailed ? 1U : 4U);
      EXPECT_EQ(setsOf(answer[0].GetAntecedent()), history("(8)"));
    }
    EXPECT_EQ(livingBlocks(), before) << "allocation " << n;
    expectWorks(lattice);
  }
}

TEST_F(OutOfMemory, TheSearchThrowsBadAllocAndAppendsNothing) {
  const Sequence customer = sequence("(1 2)(3)");
  std::vector<NTSequence*> answer;

  exhaust(
      Outcome::kBadAlloc,
      [&](Lattice& lattice) { lattice.getSubsequencesInSequence(answer, &customer, 0); },
      [&](Lattice&, Outcome outcome) {
        EXPECT_EQ(answer.size(), outcome == Outcome::kDone ? 4U : 0U);
        for (const NTSequence* one : answer) delete one;
        std::vector<NTSequence*>().swap(answer);
      });
}

TEST_F(OutOfMemory, SequencesOfSizeThrowBadAllocAndAppendNothing) {
  std::vector<const Sequence*> answer;

  exhaust(
      Outcome::kBadAlloc, [&](Lattice& lattice) { lattice.getSequencesOfSize(answer, 2, false); },
      [&](Lattice&, Outcome outcome) {
        EXPECT_EQ(answer.size(), outcome == Outcome::kDone ? 3U : 0U);
        for (const Sequence* one : answer) delete one;
        std::vector<const Sequence*>().swap(answer);
      });
}

TEST_F(OutOfMemory, TheWalksThrowBadAllocAndLeaveWhatIsAddedToTheCaller) {
  const Sequence start = sequence("(1)");
  std::set<Sequence*> answer;

  exhaust(
      Outcome::kBadAlloc, [&](Lattice& lattice) { lattice.FindSequences(&start, answer, 0, 100); },
      [&](Lattice&, Outcome outcome) {
        EXPECT_LE(answer.size(), 4U);
        EXPECT_TRUE(answer.size() == 4 || outcome == Outcome::kBadAlloc);
        for (const Sequence* one : answer) delete one;
        answer.clear();
      });
}

}  // namespace

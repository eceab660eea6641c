// Memory that runs out while a model is mined, saved to a file and read back.

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "io/CompiledModel.h"
#include "io/ModelFile.h"
#include "mining/CarmaMiner.h"
#include "mining/ExactMiner.h"
#include "mining/SequenceDatabase.h"
#include "mining/fillDictionary.h"
#include "tests/hostile/everyAllocation.h"
#include "tests/hostile/latticeFiles.h"
#include "tests/io/modelSamples.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq::test;
using orbseq::CarmaMiner;
using orbseq::MinerOptions;
using orbseq::Model;
using orbseq::ModelForm;
using orbseq::SequenceDatabase;

// --- Mining --------------------------------------------------------------------------------------

SequenceDatabase customers(int count) {
  SequenceDatabase database;
  for (int customer = 0; customer < count; ++customer) {
    database.beginCustomer();
    for (int set = 0; set < 3; ++set) {
      database.beginSet(set);
      for (int item = 1; item <= 5; ++item)
        if ((customer * 7 + set * 3 + item * item) % 5 < 2) database.addItem(item);
    }
  }
  database.finish();
  return database;
}

// What every miner's lattice must be: linked, and the same each time that it is mined.
template <class Miner>
class MinedLattice {
 public:
  void check(End end) {
    if (end != End::kDone) {
      EXPECT_EQ(static_cast<Miner*>(this)->run(), End::kDone);
    }
    static const std::map<std::string, std::string> expected = contentsOf(*lattice_);
    ASSERT_GT(expected.size(), 10U);
    EXPECT_TRUE(contentsOf(*lattice_) == expected);
  }

 protected:
  End keep(std::unique_ptr<orbseq::Lattice> lattice) {
    const bool isBuilt = lattice->buildLattice().IsOK();
    lattice_ = std::move(lattice);
    return isBuilt ? End::kDone : End::kReported;
  }

 private:
  std::unique_ptr<orbseq::Lattice> lattice_;
};

// From the log to the linked lattice.
template <int kThreads, bool kHasTimeBounds>
class Mine : public MinedLattice<Mine<kThreads, kHasTimeBounds>> {
 public:
  Mine() {
    options_.minCustomers = 5;
    options_.threads = kThreads;
    if (kHasTimeBounds) options_.maxGap = 1.5;
  }
  End run() {
    const orbseq::PatternTree tree = orbseq::mineExactly(database_, options_);
    auto lattice = std::make_unique<orbseq::Lattice>(orbseq::settingsFor(tree));
    fillDictionary(tree, static_cast<std::int32_t>(database_.customers()), options_, *lattice);
    return this->keep(std::move(lattice));
  }

 protected:
  MinerOptions options_;

 private:
  SequenceDatabase database_ = customers(12);
};

constexpr auto kMiningEnds = {End::kBadAlloc, End::kDictionaryFailure, End::kReported};

TEST(OutOfMemory, Mining) { failEveryAllocationOf<Mine<1, false>>(kMiningEnds); }

TEST(OutOfMemory, MiningWithBoundsOfTime) { failEveryAllocationOf<Mine<1, true>>(kMiningEnds); }

// It fails in the calling thread; the other one must end, too.
TEST(OutOfMemory, MiningOnTwoThreads) { failEveryAllocationOf<Mine<2, false>>(kMiningEnds); }

// The calling thread holds its first task for so long that the other one takes the rest of them.
class MineElsewhere : public Mine<2, false> {
 public:
  MineElsewhere() {
    options_.progress = [](const orbseq::MinerStatus&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      return true;
    };
  }
  void check(End end) {
    if (end == End::kBadAlloc) ++failures;
    Mine::check(end);
  }

  inline static int failures = 0;
};

TEST(OutOfMemory, MiningInAThreadThatTheCallerWaitsFor) {
  MineElsewhere::failures = 0;

  failEveryAllocationOf<MineElsewhere>({End::kBadAlloc}, kMostAllocations,
                                       FailingIn::kOtherThreads);

  EXPECT_GT(MineElsewhere::failures, 10) << "the other thread had hardly anything to do";
}

// With the lattice as the working store, and with or without a second pass.
template <bool kOnePass>
class MineByCarma : public MinedLattice<MineByCarma<kOnePass>> {
 public:
  End run() {
    MinerOptions options;
    options.maxItems = 3;
    SEQUENCE_NAMESPACE_800::SeqDictionarySettings settings;
    settings.numLevels = options.maxItems + 1;
    auto lattice = std::make_unique<orbseq::Lattice>(settings);
    {
      CarmaMiner miner(*lattice, /*support=*/0.5, options);
      for (const Sets& customer : sets_) miner.add(customer);
      finish(miner);
    }
    return this->keep(std::move(lattice));
  }

 private:
  using Sets = std::vector<std::span<const std::int32_t>>;

  static std::vector<Sets> setsOf(const SequenceDatabase& database) {
    std::vector<Sets> all(database.customers());
    for (std::size_t c = 0; c < all.size(); ++c)
      for (std::size_t set = database.firstSet(c); set < database.firstSet(c + 1); ++set)
        all[c].push_back(database.items(set));
    return all;
  }
  void finish(CarmaMiner& miner) const {
    if (kOnePass) return miner.finishByBounds();
    miner.beginSecondPass();
    for (const Sets& customer : sets_)
      if (!miner.recount(customer)) break;
    miner.finishSecondPass();
  }

  const SequenceDatabase database_ = customers(6);
  const std::vector<Sets> sets_ = setsOf(database_);
};

TEST(OutOfMemory, MiningByCarma) { failEveryAllocationOf<MineByCarma<false>>(kMiningEnds); }

TEST(OutOfMemory, MiningByCarmaInOnePass) { failEveryAllocationOf<MineByCarma<true>>(kMiningEnds); }

// --- Saving --------------------------------------------------------------------------------------

const Model& model() {
  static const Model one = modelOf(ValidLattice().dictionary(), {{1, "tea, green"}, {4, "milk"}});
  return one;
}
const char* const kLabels = "item,label\n1,\"tea, green\"\n4,milk\n";

// Over a former model and its labels.
template <ModelForm kForm>
class Save {
 public:
  Save() : path_(folder_.file("m", "old")), labels_(folder_.file("m.labels.csv", "old labels")) {}

  End run() {
    saveModel(path_, model(), kForm);
    return End::kDone;
  }
  void check(End end) {
    static const std::string expected = bytesOf(model(), kForm);
    const bool hasNew = contentOf(path_) == expected;
    EXPECT_TRUE(hasNew || (end != End::kDone && contentOf(path_) == "old")) << "torn";
    expectLabels(end);
    EXPECT_LE(folder_.entries(), 2U) << "a temporary file is left";

    run();

    EXPECT_TRUE(contentOf(path_) == expected);
    expectLabels(End::kDone);
  }

 private:
  void expectLabels(End end) const {
    const std::string content = contentOf(labels_);
    const std::string needed = hasRoomForLabels(kForm) ? "" : kLabels;
    EXPECT_TRUE(content == needed || (end != End::kDone && content == "old labels")) << content;
  }

  TempFolder folder_;
  std::string path_;
  std::string labels_;
};

TEST(OutOfMemory, SavingADocument) {
  failEveryAllocationOf<Save<ModelForm::kDocument>>({End::kBadAlloc}, eachOfALongOne());
}
TEST(OutOfMemory, SavingPmml) {
  failEveryAllocationOf<Save<ModelForm::kPmml>>({End::kBadAlloc}, eachOfALongOne());
}
TEST(OutOfMemory, SavingBinary) {
  failEveryAllocationOf<Save<ModelForm::kBinary>>({End::kBadAlloc}, eachOfALongOne());
}
TEST(OutOfMemory, SavingObjectXml) {
  failEveryAllocationOf<Save<ModelForm::kObjectXml>>({End::kBadAlloc}, eachOfALongOne());
}
TEST(OutOfMemory, SavingCompiled) {
  failEveryAllocationOf<Save<ModelForm::kCompiled>>({End::kBadAlloc}, eachOfALongOne());
}

// --- Reading back --------------------------------------------------------------------------------

// A saved model, made once.
template <ModelForm kForm>
const std::string& savedModel() {
  static const TempFolder folder;
  static const std::string path = [] {
    saveModel(folder.path("m"), model(), kForm);
    return folder.path("m");
  }();
  return path;
}

// A DictionaryFailure is a bad_alloc.
constexpr auto kReadingEnds = {End::kBadAlloc, End::kDictionaryFailure};

class ReadCompiled {
 public:
  ReadCompiled() { savedModel<ModelForm::kCompiled>(); }

  End run() {
    model_ = std::make_unique<const orbseq::CompiledModel>(
        orbseq::readCompiledModel(savedModel<ModelForm::kCompiled>()));
    return End::kDone;
  }
  void check(End end) {
    if (end != End::kDone) run();
    static const std::size_t nodes = model_->lattice.nodeCount();
    EXPECT_EQ(model_->lattice.nodeCount(), nodes);
    EXPECT_EQ(model_->labels, model().labels);
  }

 private:
  std::unique_ptr<const orbseq::CompiledModel> model_;
};

TEST(OutOfMemory, ReadingACompiledFormFromAFile) {
  failEveryAllocationOf<ReadCompiled>(kReadingEnds);
}

template <ModelForm kForm>
class Read {
 public:
  Read() { savedModel<kForm>(); }

  End run() {
    model_ = std::make_unique<const Model>(orbseq::readModel(savedModel<kForm>()));
    return End::kDone;
  }
  void check(End end) {
    if (end != End::kDone) run();
    static const std::int32_t sequences = model().lattice->NumberOfSequences();
    EXPECT_EQ(model_->lattice->NumberOfSequences(), sequences);
    EXPECT_EQ(model_->lattice->getReductionThreshold(), 0.02);
    EXPECT_EQ(model_->labels, model().labels);
  }

 private:
  std::unique_ptr<const Model> model_;
};

TEST(OutOfMemory, ReadingBinaryFromAFile) {
  failEveryAllocationOf<Read<ModelForm::kBinary>>(kReadingEnds);
}

TEST(OutOfMemory, ReadingObjectXmlFromAFile) {
  failEveryAllocationOf<Read<ModelForm::kObjectXml>>(kReadingEnds);
}

}  // namespace

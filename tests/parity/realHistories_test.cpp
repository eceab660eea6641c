// The compiled lattice against the dictionary's own queries, on lattices and histories of real
// customers: every answer equal, doubles bit for bit.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "io/LogReader.h"
#include "io/ModelFile.h"
#include "mining/ExactMiner.h"
#include "mining/fillDictionary.h"
#include "tests/parity/engineParity.h"
#include "tests/support/World.h"

namespace {

namespace fs = std::filesystem;
using namespace orbseq::test;

// Whether the file is there; says so loudly where it is not.
bool isThere(const fs::path& path) {
  if (fs::exists(path)) return true;
  std::cerr << "\n*** SKIPPED: no real data at " << path << " ***\n\n";
  return false;
}

// Compares until something differs; says how much was compared.
template <class Histories>
std::size_t compareAll(const SequenceDictionary& dictionary, const Histories& histories) {
  Engine engine(dictionary);
  std::size_t answers = 0;
  for (const History& history : histories) {
    answers += compare(engine, OfDictionary{dictionary}, history, 20);
    if (testing::Test::HasFailure()) break;
  }
  std::cout << histories.size() << " histories, " << answers << " answers\n";
  return answers;
}

TEST(RealHistories, EveryCustomerOfAShopIsAnsweredAsByTheDictionary) {
  const fs::path data = fs::path(ORBSEQ_DATA_DIR) / "retail";
  if (!isThere(data)) GTEST_SKIP() << "no real data at " << data;
  const orbseq::Model model = orbseq::readModel((data / "lattice.xml").string());
  std::vector<History> histories;
  std::ifstream file(data / "histories.csv");
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line))
    histories.push_back(normalised(history(line.substr(line.find(',') + 1))));

  ASSERT_EQ(histories.size(), 4339U);
  EXPECT_GT(compareAll(*model.lattice, histories), 100'000U);
}

// A lattice that is mined from visits to a site, and some of these.
TEST(RealHistories, VisitorsOfASiteAreAnsweredAsByTheDictionary) {
  const fs::path path = fs::path(ORBSEQ_DATA_DIR) / "logs" / "BMS1.spmf.gz";
  if (!isThere(path)) GTEST_SKIP() << "no log at " << path;
  orbseq::LogOptions logOptions;
  logOptions.format = orbseq::LogFormat::kSpmf;
  const orbseq::TransactionLog log = orbseq::readLog(path.string(), logOptions);
  orbseq::MinerOptions options;
  options.minCustomers = 100;
  const orbseq::PatternTree tree = orbseq::mineExactly(log.database, options);
  SequenceDictionary dictionary(orbseq::settingsFor(tree));
  const auto customers = log.database.customers();
  orbseq::fillDictionary(tree, static_cast<std::int32_t>(customers), options, dictionary);
  dictionary.buildLattice();

  constexpr std::size_t kSample = 2000;
  std::vector<History> histories;
  for (std::size_t n = 0; n < kSample; ++n) {
    const std::size_t customer = n * customers / kSample;
    History history;
    for (std::size_t set = log.database.firstSet(customer);
         set < log.database.firstSet(customer + 1); ++set) {
      const auto items = log.database.items(set);
      history.emplace_back(items.begin(), items.end());
    }
    histories.push_back(history);
  }

  EXPECT_GT(compareAll(dictionary, histories), 10'000U);
}

}  // namespace

// What is mined from real logs, against counts and digests that several independent miners agree
// on.

#include <gtest/gtest.h>
#include <stdio.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "io/LogReader.h"
#include "mining/ExactMiner.h"
#include "tests/support/TempFolder.h"

namespace {

using namespace orbseq;
using nlohmann::json;
using orbseq::test::TempFolder;
namespace fs = std::filesystem;

// The first 16 hexadecimal digits of the text's SHA-256.
std::string digestOf(const std::string& text) {
  const TempFolder folder;
  const std::string command = "sha256sum < '" + folder.file("text", text) + "'";
  FILE* const program = ::popen(command.c_str(), "r");
  if (program == nullptr) return "no sha256sum";
  std::string digest(16, ' ');
  digest.resize(fread(digest.data(), 1, digest.size(), program));
  // The rest, so that the program is not ended by a closed pipe.
  while (fgetc(program) != EOF) continue;
  ::pclose(program);
  return digest;
}

// "1 2|3#5"
std::string lineOf(const Pattern& pattern) {
  std::string line;
  for (std::size_t k = 0; k < pattern.setBegins.size(); ++k) {
    if (k > 0) line += '|';
    bool isFirst = true;
    for (const std::int32_t item : pattern.set(k)) {
      if (!isFirst) line += ' ';
      line += std::to_string(item);
      isFirst = false;
    }
  }
  return line + '#' + std::to_string(pattern.count);
}

json factsOf(const PatternTree& tree) {
  std::map<std::size_t, int> byItems;
  std::map<std::size_t, int> bySets;
  std::vector<std::string> lines;
  tree.forEach([&](const Pattern& pattern) {
    ++byItems[pattern.items.size()];
    ++bySets[pattern.setBegins.size()];
    lines.push_back(lineOf(pattern) + "\n");
  });
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line;
  json facts = {{"total", tree.nodes.size()}, {"pattern_digest", digestOf(text)}};
  for (const auto& [items, count] : byItems) facts["by_items"][std::to_string(items)] = count;
  for (const auto& [sets, count] : bySets) facts["by_sets"][std::to_string(sets)] = count;
  return facts;
}

TEST(MinedLogs, CountsAndDigestsAreThoseOfIndependentMiners) {
  const fs::path data(ORBSEQ_DATA_DIR);
  if (!fs::exists(data / "expected_counts.json")) {
    std::cerr << "\n*** SKIPPED: no real data at " << data << " ***\n\n";
    GTEST_SKIP() << "no real data at " << data;
  }
  std::ifstream file(data / "expected_counts.json");
  const json entries = json::parse(file);
  int compared = 0;
  for (const auto& [name, expected] : entries.items()) {
    SCOPED_TRACE(name);
    const fs::path path = data / "logs" / (expected["dataset"].get<std::string>() + ".spmf.gz");
    if (!fs::exists(path)) {
      std::cerr << "\n*** SKIPPED: no log at " << path << " ***\n\n";
      continue;
    }
    LogOptions logOptions;
    logOptions.format = LogFormat::kSpmf;
    const TransactionLog log = readLog(path.string(), logOptions);
    EXPECT_EQ(log.database.customers(), expected["customers"]);
    for (const int threads : {1, 2}) {
      MinerOptions options;
      options.minCustomers = expected["minsup_customers"];
      options.threads = threads;
      const json facts = factsOf(mineExactly(log.database, options));
      for (const auto& [fact, value] : facts.items())
        EXPECT_EQ(value, expected[fact]) << fact << ", " << threads << " threads";
    }
    ++compared;
  }
  EXPECT_GT(compared, 0);
}

}  // namespace

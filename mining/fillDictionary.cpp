#include "mining/fillDictionary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

using SEQUENCE_NAMESPACE_800::SeqDictionarySettings;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;

SeqDictionarySettings settingsFor(const PatternTree& tree) {
  std::array<std::int64_t, MinerOptions::kMostItems + 1> sizes{};
  std::int32_t deepest = 1;
  for (const PatternNode& node : tree.nodes) {
    ++sizes[static_cast<std::size_t>(node.depth)];
    deepest = std::max<std::int32_t>(deepest, node.depth);
  }
  SeqDictionarySettings settings;
  settings.numLevels = deepest + 1;
  const std::int64_t most = SeqDictionarySettings::kMaxStoredBuckets / settings.numLevels;
  const auto bucketsFor = [most](std::int64_t size) {
    return static_cast<std::int32_t>(std::min(size * 4 / 3 + 1, most));
  };
  for (std::size_t level = 1; level < settings.levelTableSize.size(); ++level)
    settings.levelTableSize[level] = bucketsFor(sizes[level]);
  std::int64_t largestUpper = 0;
  for (std::size_t level = settings.levelTableSize.size(); level < sizes.size(); ++level)
    largestUpper = std::max(largestUpper, sizes[level]);
  settings.upperTableSize = bucketsFor(largestUpper);
  return settings;
}

void fillDictionary(const PatternTree& tree, std::int32_t customers, const MinerOptions& options,
                    SequenceDictionary& dictionary) {
  const SequenceCounter all(0, customers, nullptr);
  dictionary.addSequence(nullptr, 0, &all);
  // Each set as its number of items and then its items, in one array.
  std::vector<int> sets;
  std::vector<const int*> pointers;
  tree.forEach([&](const Pattern& pattern) {
    sets.clear();
    pointers.clear();
    sets.reserve(pattern.items.size() + pattern.setBegins.size());
    for (std::size_t k = 0; k < pattern.setBegins.size(); ++k) {
      const auto set = pattern.set(k);
      pointers.push_back(sets.data() + sets.size());
      sets.push_back(static_cast<int>(set.size()));
      sets.insert(sets.end(), set.begin(), set.end());
    }
    const SequenceCounter counter(0, pattern.count, nullptr);
    dictionary.addSequence(pointers.data(), static_cast<int>(pointers.size()), &counter);
  });
  const auto boundOrZero = [](double bound) { return std::isfinite(bound) ? bound : 0.0; };
  if (customers > 0)
    dictionary.setReductionThreshold(static_cast<double>(options.minCustomers) / customers);
  dictionary.setMinGap(options.minGap);
  dictionary.setMaxGap(boundOrZero(options.maxGap));
  dictionary.setSlidingWindow(boundOrZero(options.maxSpan));
}

}  // namespace orbseq

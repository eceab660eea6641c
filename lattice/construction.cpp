// Making and destroying a dictionary.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqExceptions.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Initial buckets of the levels 0 .. numLevels; the last entry belongs to no level.
std::unique_ptr<std::int32_t[]> tableSizesOf(const SeqDictionarySettings& settings,
                                             std::int32_t numLevels) {
  const std::size_t entries = numLevels < 0 ? 0 : static_cast<std::size_t>(numLevels) + 1;
  auto sizes = std::make_unique<std::int32_t[]>(entries);
  for (std::size_t i = 0; i < entries; ++i)
    sizes[i] = settings.tableSizeOf(static_cast<std::int32_t>(i));
  return sizes;
}

SeqDictionarySettings defaultSettingsWith(std::int32_t numLevels) {
  SeqDictionarySettings settings;
  settings.numLevels = numLevels;
  return settings;
}

}  // namespace

SequenceDictionary::SequenceDictionary() = default;

SequenceDictionary::SequenceDictionary(HashtableSQPair** tables, int n)
    : numLevels_(n), settings_(defaultSettingsWith(n)), latticeBuilt_(true) {
  try {
    auto sizes = tableSizesOf(settings_, n);
    scratch_ = new NTSequence;  // the last step that can throw
    tableSizes_ = sizes.release();
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
  levels_ = tables;
}

SequenceDictionary::SequenceDictionary(SeqDictionarySettings settings) {
  try {
    createDictionary(settings);
  } catch (...) {
    destroy();
    throw;
  }
}

SequenceDictionary::SequenceDictionary(int n) : SequenceDictionary(defaultSettingsWith(n)) {}

SequenceDictionary::SequenceDictionary(const SequenceDictionary& other) noexcept
    : SequenceSemiLattice() {
  *this = other;
}

// Deliberate: shallow. The two share everything, and only one of them may be destroyed.
SequenceDictionary& SequenceDictionary::operator=(const SequenceDictionary& other) noexcept {
  if (this == &other) return *this;
  numLevels_ = other.numLevels_;
  reductionThreshold_ = other.reductionThreshold_;
  slidingWindow_ = other.slidingWindow_;
  minGap_ = other.minGap_;
  maxGap_ = other.maxGap_;
  settings_ = other.settings_;
  levels_ = other.levels_;
  tableSizes_ = other.tableSizes_;
  cancelled_ = other.cancelled_.load();
  latticeBuilt_ = other.latticeBuilt_;
  scratch_ = other.scratch_;
  return *this;
}

SequenceDictionary::~SequenceDictionary() { destroy(); }

void SequenceDictionary::destroy() noexcept {
  for (std::int32_t i = 0; i < numLevels_; ++i) delete level(i);
  delete[] levels_;
  delete[] tableSizes_;
  delete scratch_;
  levels_ = nullptr;
  tableSizes_ = nullptr;
  scratch_ = nullptr;
}

void SequenceDictionary::disownTables() noexcept {
  levels_ = nullptr;
  numLevels_ = 0;
}

// Everything is made on owned values first, so that a failure leaves the dictionary as it was.
void SequenceDictionary::createDictionary(const SeqDictionarySettings& settings) {
  const std::int32_t n = std::max(settings.numLevels, 0);
  try {
    auto scratch = std::make_unique<NTSequence>();
    auto sizes = tableSizesOf(settings, settings.numLevels);
    std::vector<std::unique_ptr<HashtableSQPair>> tables;
    tables.reserve(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i)
      tables.push_back(std::make_unique<HashtableSQPair>(sizes[static_cast<std::size_t>(i)]));
    auto levels = std::make_unique<HashtableSQPair*[]>(static_cast<std::size_t>(n) + 1);

    destroy();
    for (std::size_t i = 0; i < tables.size(); ++i) levels[i] = tables[i].release();
    levels_ = levels.release();
    tableSizes_ = sizes.release();
    scratch_ = scratch.release();
    cancelled_ = false;
    settings_ = settings;
    numLevels_ = settings.numLevels;
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
  defineLevel0();
}

void SequenceDictionary::defineLevel0() {
  HashtableSQPair* const bottom = level(0);
  if (bottom == nullptr) return;
  try {
    auto key = std::make_unique<NTSequence>();
    auto counter = std::make_unique<SequenceCounter>();
    bottom->putOverwrite(key.get(), counter.get());
    static_cast<void>(key.release());
    static_cast<void>(counter.release());
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

}  // namespace SEQUENCE_NAMESPACE_800

#include "mining/CarmaMiner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include "lattice/SequenceDictionary.h"
#include "lattice/integerThreshold.h"
#include "mining/ContainedSequences.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace orbseq {

using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::NTSequence;
using SEQUENCE_NAMESPACE_800::SequenceCounter;
using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::toIntegerThreshold;

namespace {

constexpr std::int32_t kLeastPruningInterval = 500;  // customers

// The largest whole number that is not above the bound; noise counts in its favour.
std::int64_t floorOf(double bound) {
  const std::int64_t least = toIntegerThreshold(bound);
  return static_cast<double>(least) > bound * (1.0 + 1e-13) ? least - 1 : least;
}

std::int64_t boundOf(const SequenceCounter& counter) {
  return std::int64_t{counter.getCount()} + counter.getMaxMissed();
}

std::int32_t as32(std::int64_t value) {
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(value, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

class CarmaMiner::Implementation {
 public:
  Implementation(SequenceDictionary& dictionary, double support, const MinerOptions& options)
      : dictionary_(dictionary),
        options_(options),
        support_(support),
        contained_(dictionary, options_),
        pruningInterval_(std::max<double>(kLeastPruningInterval, 1.0 / support)),
        begin_(std::chrono::steady_clock::now()) {
    options_.maxItems = std::min(options_.maxItems, MinerOptions::kMostItems);
    if (!(support > 0.0 && support <= 1.0))
      throw std::invalid_argument("support " + std::to_string(support) + " is outside 0..1");
    if (dictionary.getNumLevels() <= options_.maxItems)
      throw std::invalid_argument("a dictionary of " + std::to_string(dictionary.getNumLevels()) +
                                  " levels has no room for sequences of " +
                                  std::to_string(options_.maxItems) + " items");
  }

  std::int32_t customers() const noexcept { return customers_; }
  bool isComplete() const noexcept {
    return customers_ == 0 || toIntegerThreshold(support_ * customers_) >= options_.maxItems;
  }

  void add(CustomerSets customer) {
    ++customers_;
    contained_.visit(
        customer,
        [](SequenceCounter& counter) {
          counter.incrementCount();
          return true;
        },
        [this](const NTSequence& sequence) { offer(sequence); });
    if (customers_ >= nextPruning_) prune(startingThreshold(customers_));
    check();
  }

  void finishByBounds() {
    dictionary_.dropAfter(customers_);
    finish();
  }

  void beginSecondPass() {
    current_ = 0;
    dropHopeless();
    lastOrdinal_ = largestOrdinal();
  }

  bool recount(CustomerSets customer) {
    if (current_ >= lastOrdinal_ - 1) return false;
    ++current_;
    contained_.visit(
        customer,
        [this](SequenceCounter& counter) {
          if (counter.getOrdinalOfEntry() > current_) {
            counter.incrementCount();
            counter.decrementMaxMissed();
          }
          return true;
        },
        [](const NTSequence&) {});
    if (current_ % kLeastPruningInterval == 0) {
      tighten();
      dropHopeless();
      lastOrdinal_ = largestOrdinal();
    }
    check();
    return true;
  }

  void finishSecondPass() {
    current_ = customers_;
    tighten();
    finish();
  }

 private:
  // s' x i, the number of customers that a sequence wants to be stored in phase one.
  double startingThreshold(std::int32_t customer) const {
    return std::max(0.0, support_ * customer - options_.maxItems);
  }

  // Stores a contained sequence if its parts allow it.
  void offer(const NTSequence& sequence) {
    std::int64_t missed = 0;
    if (sequence.size() > 1) {
      missed = floorOf(startingThreshold(customers_ - 1)) + sequence.size() - 1;
      const std::int64_t least = toIntegerThreshold(startingThreshold(customers_));
      for (std::int32_t p = 0; p < sequence.size(); ++p) {
        part_.removeItem(p, &sequence);
        const SequenceCounter* const counter = dictionary_.getDescriptor(&part_);
        if (counter == nullptr || counter->getOrdinalOfEntry() >= customers_) return;
        if (boundOf(*counter) < least) return;
        missed = std::min(missed, boundOf(*counter) - 1);
      }
    }
    store(sequence, as32(missed));
  }

  void store(const NTSequence& sequence, std::int32_t missed) {
    std::array<std::array<int, NTSequence::kMaxItems + 1>, NTSequence::kMaxItems> sets;
    std::array<const int*, NTSequence::kMaxItems> pointers;
    for (std::int32_t k = 0; k < sequence.getNSets(); ++k) {
      auto& set = sets[static_cast<std::size_t>(k)];
      set[0] = sequence.getSizeOfSet(k);
      sequence.getSetAsArray(k, set.data() + 1);
      pointers[static_cast<std::size_t>(k)] = set.data();
    }
    SequenceCounter counter(customers_, 1, nullptr);
    counter.setMaxMissed(missed);
    dictionary_.addSequence(pointers.data(), sequence.getNSets(), &counter);
    ++stored_;
  }

  // Drops what is long and may not have so many customers.
  void prune(double threshold) {
    for (std::int32_t level = 2; level < dictionary_.getNumLevels(); ++level)
      stored_ -= static_cast<std::size_t>(dictionary_.reduceDictionary(level, threshold));
    nextPruning_ = customers_ + pruningInterval_;
  }

  void dropHopeless() {
    for (std::int32_t level = 1; level < dictionary_.getNumLevels(); ++level)
      stored_ -=
          static_cast<std::size_t>(dictionary_.reduceDictionary(level, support_ * customers_));
  }

  // Calls each(entry) for everything stored, the empty sequence left out, short ones first.
  template <class Each>
  void forEach(Each each) const {
    for (std::int32_t level = 1; level < dictionary_.getNumLevels(); ++level)
      for (const ISQCPair& entry : *dictionary_.getTable(level)) each(entry);
  }

  std::int32_t largestOrdinal() const {
    std::int32_t largest = 0;
    forEach([&largest](const ISQCPair& entry) {
      largest = std::max(largest, entry.value->getOrdinalOfEntry());
    });
    return largest;
  }

  // What entered up to the next customer is counted whole; what contains it has no more customers.
  void tighten() {
    forEach([this](const ISQCPair& entry) {
      SequenceCounter& counter = *entry.value;
      if (counter.getOrdinalOfEntry() <= current_ + 1) {
        counter.setMaxMissed(0);
        return;
      }
      for (std::int32_t p = 0; p < entry.key->size(); ++p) {
        part_.removeItem(p, entry.key);
        const SequenceCounter* const shorter = dictionary_.getDescriptor(&part_);
        if (shorter == nullptr || shorter->getOrdinalOfEntry() > current_ + 1) continue;
        counter.setMaxMissed(std::min(
            counter.getMaxMissed(), as32(std::int64_t{shorter->getCount()} - counter.getCount())));
      }
    });
  }

  void finish() { dictionary_.reduceAll(support_ * customers_); }

  void check() {
    using Reason = MinerStopped::Reason;
    const std::size_t bytes = stored_ * kBytesOfSequence;
    if (bytes > options_.memoryBytes)
      throw MinerStopped(Reason::kMemory, "mining needs more memory than the limit of " +
                                              std::to_string(options_.memoryBytes) + " bytes; " +
                                              std::to_string(stored_) +
                                              " sequences stored at customer " +
                                              std::to_string(customers_));
    constexpr std::int32_t kCheckEvery = 64;
    if (++unchecked_ < kCheckEvery) return;
    unchecked_ = 0;
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin_;
    if (spent.count() > options_.seconds)
      throw MinerStopped(Reason::kTime, "mining takes longer than the limit of " +
                                            std::to_string(options_.seconds) +
                                            " seconds; at customer " +
                                            std::to_string(std::max(customers_, current_)));
    if (!options_.progress) return;
    MinerStatus status;
    status.sequences = stored_;
    status.memoryBytes = bytes;
    if (!options_.progress(status)) throw MinerStopped(Reason::kRequest, "mining was ended");
  }

  static constexpr std::size_t kBytesOfSequence = 200;  // key, counter, node, about

  SequenceDictionary& dictionary_;
  MinerOptions options_;
  const double support_;
  ContainedSequences contained_;
  const double pruningInterval_;
  const std::chrono::steady_clock::time_point begin_;
  NTSequence part_;             // scratch
  std::int32_t customers_ = 0;  // of phase one
  std::int32_t current_ = 0;    // customer of the second pass
  std::int32_t lastOrdinal_ = 0;
  double nextPruning_ = pruningInterval_;
  std::size_t stored_ = 0;
  std::int32_t unchecked_ = 0;
};

CarmaMiner::CarmaMiner(SequenceDictionary& dictionary, double support, const MinerOptions& options)
    : implementation_(std::make_unique<Implementation>(dictionary, support, options)) {}

CarmaMiner::~CarmaMiner() = default;

void CarmaMiner::add(CustomerSets customer) { implementation_->add(customer); }

std::int32_t CarmaMiner::customers() const noexcept { return implementation_->customers(); }

bool CarmaMiner::isComplete() const noexcept { return implementation_->isComplete(); }

void CarmaMiner::finishByBounds() { implementation_->finishByBounds(); }

void CarmaMiner::beginSecondPass() { implementation_->beginSecondPass(); }

bool CarmaMiner::recount(CustomerSets customer) { return implementation_->recount(customer); }

void CarmaMiner::finishSecondPass() { implementation_->finishSecondPass(); }

}  // namespace orbseq

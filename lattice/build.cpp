// Linking every sequence to its one-item extensions.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "lattice/SequenceDictionary.h"
#include "lattice/statusCodes.h"
#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Leaves the counter with an empty adjacency set.
void dropLinks(SequenceCounter* counter) {
  if (counter == nullptr) return;
  if (counter->getAdjacentItems() != nullptr)
    counter->clearAdjacentItems();
  else
    counter->setAdjacentItems(std::make_unique<SequenceCounter::AdjacentItems>().release());
}

// Links, gathered and then made counter by counter: each set is filled in its order, and memory is
// gone through from one end to the other. The parts of several sequences are looked up together.
class Linker {
 public:
  // `parts`, which may be null, holds what is one item shorter than the sequences to come.
  void begin(const HashtableSQPair* parts) {
    finish();
    table_ = parts;
  }

  // Tells each one-item-shorter part of `longer` that it can be extended to it, by finish() at the
  // latest.
  void linkParts(const NTSequence& longer) {
    if (table_ == nullptr) return;
    if (used_ + static_cast<std::size_t>(longer.size()) > parts_.size()) lookUp();
    std::int32_t set = 0;
    for (std::int32_t p = 0; p < longer.size(); ++p, ++used_) {
      const bool alone = parts_[used_].removeItem(p, &longer);
      additions_[used_] = {longer.items()[static_cast<std::size_t>(p)],
                           alone ? 2 * set + 1 : 2 * set};
      if (longer.endsSet(p)) ++set;
    }
  }

  void finish() {
    lookUp();
    link();
  }

 private:
  struct Link {
    SequenceCounter* counter;
    SequenceCounter::AdjacentItem addition;

    bool operator<(const Link& other) const noexcept {
      if (counter != other.counter) return std::less<>()(counter, other.counter);
      return addition < other.addition;
    }
  };
  static constexpr std::size_t kParts = 64;
  static_assert(kParts >= NTSequence::kMaxItems);
  static constexpr std::size_t kMostLinks = std::size_t{1} << 20U;  // 16 MiB

  void lookUp() {
    std::array<const ISQCPair*, kParts> found;
    if (used_ > 0) table_->getAll(std::span(parts_).first(used_), found.data());
    for (std::size_t k = 0; k < used_; ++k)
      if (found[k] != nullptr && found[k]->value != nullptr)
        links_.push_back({found[k]->value, additions_[k]});
    used_ = 0;
    if (links_.size() >= kMostLinks) link();
  }

  void link() {
    std::sort(links_.begin(), links_.end());
    for (const Link& one : links_)
      one.counter->addAdjacentItem(one.addition.first, one.addition.second);
    links_.clear();
  }

  const HashtableSQPair* table_ = nullptr;
  std::array<NTSequence, kParts> parts_;  // to be looked up, and what each is extended by
  std::array<SequenceCounter::AdjacentItem, kParts> additions_;
  std::size_t used_ = 0;  // of both
  std::vector<Link> links_;
};

}  // namespace

OrbCommon_830::OrbStatus SequenceDictionary::buildLattice() {
  try {
    const std::int32_t largest = LargestSequence();
    if (const ISQCPair* const empty = findEmpty()) dropLinks(empty->value);
    Linker linker;
    for (std::int32_t l = 1; l <= largest; ++l) {
      const HashtableSQPair* const table = level(l);
      if (table == nullptr) break;  // an overridden LargestSequence may promise more
      linker.begin(level(l - 1));
      for (const ISQCPair& entry : *table) {
        dropLinks(entry.value);
        if (entry.key->size() == l) linker.linkParts(*entry.key);
      }
    }
    linker.finish();
  } catch (const std::bad_alloc&) {  // DictionaryFailure among them
    return {kFailure, false};
  }
  latticeBuilt_ = true;
  return {};
}

}  // namespace SEQUENCE_NAMESPACE_800

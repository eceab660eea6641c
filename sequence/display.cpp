// The displays: human-readable text of the sequence values. Each leaves the stream's precision and
// fixed flag changed where its header says so.

#include <array>
#include <cstddef>
#include <iostream>
#include <ostream>
#include <span>

#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SeqAssociationRule.h"
#include "sequence/SeqConsequentDescriptor.h"
#include "sequence/Sequence.h"
#include "sequence/SequenceCounter.h"
#include "sequence/TimedItemSet.h"

namespace SEQUENCE_NAMESPACE_800 {

void TimedItemSet::Display(bool showTime) const {
  std::cout << '(';
  for (auto item = Begin(); item != End(); ++item) {
    if (item != Begin()) std::cout << ' ';
    std::cout << *item;
  }
  if (showTime) {
    std::cout.setf(std::ios::fixed, std::ios::floatfield);
    std::cout.precision(0);
    std::cout << '[' << GetTime() << ']';
  }
  std::cout << ')';
}

void Sequence::Display(bool showTimes) const {
  std::cout << '<';
  for (std::int32_t i = 0; i < Length(); ++i) (*this)[i]->Display(showTimes);
  std::cout << ">" << std::endl;
}

void NTSequence::display(std::ostream& out) const {
  out << '<';
  bool opens = true;  // the next item is the first of its set
  for (std::int32_t p = 0; p < itemCount_; ++p) {
    out << (opens ? '(' : ' ') << items_[static_cast<std::size_t>(p)];
    opens = endsSet(p);
    if (opens) out << ')';
  }
  out << ">" << std::endl;
}

void SequenceCounter::display(std::ostream& out, bool showAdjacent) const {
  const auto useTwoDecimals = [&out] {
    out.setf(std::ios::fixed, std::ios::floatfield);
    out.precision(2);
  };
  out << " count " << count_ << " ordinalOfEntry " << ordinalOfEntry_ << " max missed "
      << maxMissed_ << "\n";
  if (stats_) {
    useTwoDecimals();
    out << " Occurrences " << stats_->getOccurrences() << "\n";
    if (stats_->getTotal() > 0.0)
      out << " mean " << stats_->getMean() << "\n min " << stats_->getMinimum() << "\n max "
          << stats_->getMaximum() << "\n";
  }
  if (adjacent_ && showAdjacent) {
    out << "Adjacent list "
        << "{";
    useTwoDecimals();
    for (const auto& [item, position] : *adjacent_)
      out << "(item " << item << " position " << position << ")\n";
    out << "}End Adjacent list \n";
  }
  out.flush();
}

double HashtableSQPair::freqTable() const {
  constexpr std::size_t kSlots = 100;  // the last one takes every longer chain
  std::array<std::int64_t, kSlots> chains{};
  for (std::int32_t i = 0; i < capacity_; ++i) {
    std::size_t length = 0;
    for (const SQCPairNode* node = buckets_[i]; node != nullptr && length < kSlots - 1;
         node = node->next)
      ++length;
    ++chains[length];
  }
  std::int64_t used = 0;
  std::int64_t entries = 0;
  for (std::size_t length = 0; length < kSlots; ++length) {
    if (chains[length] == 0) continue;
    std::cout << length << " : " << chains[length] << std::endl;
    if (length == 0) continue;
    used += chains[length];
    entries += chains[length] * static_cast<std::int64_t>(length);
  }
  std::cout << "END OF TABLE" << std::endl;
  return used == 0 ? 0.0 : static_cast<double>(entries) / static_cast<double>(used);
}

void HashtableSQPair::display() const {
  for (std::int32_t i = 0; i < capacity_; ++i) std::cout << "Bucket " << i << " : " << std::endl;
  std::cout << "End of Hashtable." << std::endl;
}

void SeqConsequentDescriptor::display() const {
  std::cout << "Item " << item_ << " Support " << support_;
  std::cout.precision(10);
  std::cout << " Confidence " << confidence_ << " Cause " << cause_ << "\n";
}

void SeqAssociationRule::Display() const {
  antecedent_.Display(false);
  std::cout << (joinType_ == 1 ? "=>\n" : "&\n");
  consequent_.Display(false);
  std::cout.precision(4);
  std::cout << "Support " << support_ << " Confidence " << confidence_ << " Cause " << cause_
            << "\n";
}

}  // namespace SEQUENCE_NAMESPACE_800

// An ordered list of timed item sets: a customer's history, a rule's antecedent or consequent.
//
// Value type; the object is a handle to a body on the heap that it owns, with every item set in
// it. The sets stand in the order in which they were added; their times need not ascend.
//
// Copy construction copies. Assignment APPENDS: `a = b` adds copies of b's sets after a's own. For
// a replacement, Clear() first; to exchange two sequences, swap(). Therefore no algorithm that
// assigns elements (std::sort, vector::erase) may be run on a container of Sequence values.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef SEQUENCE_SEQUENCE_H_
#define SEQUENCE_SEQUENCE_H_

#include <cstdint>
#include <memory>

#include "common/OrbExport.h"
#include "sequence/TimedItemSet.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT Sequence {
 public:
  Sequence();                       // empty, room for 2 item sets
  explicit Sequence(int capacity);  // empty, room for `capacity` sets (none below 1)
  Sequence(const Sequence& other);
  ~Sequence();

  // Deliberate: appends copies of the other's sets and keeps the existing ones.
  Sequence& operator=(const Sequence& other);

  // Exchanges the bodies, without appending.
  void swap(Sequence& other) noexcept { body_.swap(other.body_); }
  friend void swap(Sequence& a, Sequence& b) noexcept { a.swap(b); }

  std::int32_t Size() const noexcept;    // items over all sets
  std::int32_t Length() const noexcept;  // item sets

  // The set at index i, 0-based; it stays owned by the sequence. An index outside
  // 0 .. Length() - 1 throws an OrbStatus (by value), error code 60001, with the sequence's length
  // in discrete datum 0.
  const TimedItemSet* operator[](std::int32_t i) const;
  // The time of the set at index i. Outside the range as above.
  // Deliberate: here the discrete datum 0 is the requested index.
  double GetTimeOfTimedItemSet(std::int32_t i) const;

  // Appends a copy; the caller keeps its own. A null pointer adds nothing.
  void AddTimedItemSet(const TimedItemSet* set);

  // Appends copies of all sets of the other, which may be this sequence itself.
  void JoinTemporal(const Sequence* other);

  // Merges the other's first set into this sequence's last set, which keeps its time, and appends
  // copies of the other's further sets. Where either is empty there is nothing to merge, and the
  // other's sets are appended.
  void JoinCurrent(const Sequence* other);

  void Clear() noexcept;  // no sets; the reserved room stays

  // Lexicographic over the sets, a proper prefix first; times play no part.
  bool operator<(const Sequence& other) const noexcept;
  // Equal lengths and pairwise equal sets, times included.
  bool operator==(const Sequence& other) const noexcept;

  // Writes "<(1 2)(5)>" and a line break to the standard output stream; times as in
  // TimedItemSet::Display.
  void Display(bool showTimes) const;

 private:
  struct Body;

  std::unique_ptr<Body> body_;  // never null
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_SEQUENCE_H_

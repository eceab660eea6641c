// One item set of a history: the items that occurred together, and when.
//
// Value type; the object is a handle to a body on the heap that it owns. Items are kept strictly
// ascending, without duplicates. The time has the unit of the caller's data (days, say); it is
// only stored and compared, never interpreted.
//
// Copy construction copies. Assignment MERGES: `a = b` adds b's items to a and leaves a's time
// alone. Callers rely on it for unions. For a replacement, Clear() first; to exchange two sets,
// swap(). Therefore no algorithm that assigns elements (std::sort, vector::erase) may be run on a
// container of TimedItemSet values.
//
// Cost: n items enter in O(n log n) through AddAllItems, a copy or an assignment; AddItem is
// constant for ascending items and moves the greater ones otherwise.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef SEQUENCE_TIMEDITEMSET_H_
#define SEQUENCE_TIMEDITEMSET_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT TimedItemSet {
 public:
  using const_iterator = std::vector<std::int32_t>::const_iterator;

  TimedItemSet();  // no items, time 0.0
  // No items. Deliberate: the integer is ignored; it neither sizes nor seeds the set.
  TimedItemSet(int, double time);
  TimedItemSet(const TimedItemSet& other);
  ~TimedItemSet();

  // Deliberate: a union; the target keeps its own items and its own time.
  TimedItemSet& operator=(const TimedItemSet& other);

  // Exchanges the bodies: items and times, without merging.
  void swap(TimedItemSet& other) noexcept { body_.swap(other.body_); }
  friend void swap(TimedItemSet& a, TimedItemSet& b) noexcept { a.swap(b); }

  // Inserts the item at its place; an item already present is ignored.
  void AddItem(std::int32_t item);

  // Replaces the items by items[0 .. count - 1], in any order, duplicates merged, and then sets
  // the time. A count of 0 or less leaves the set empty and still sets the time.
  void AddAllItems(const std::int32_t* items, std::int32_t count, double time);

  void Clear() noexcept;  // no items, time 0.0

  std::int32_t Size() const noexcept;
  double GetTime() const noexcept;
  void SetTime(double time) noexcept;

  // The items, ascending. Valid until the set changes.
  const_iterator Begin() const noexcept;
  const_iterator End() const noexcept;

  // Lexicographic by items, a proper prefix first; times are not compared.
  bool operator<(const TimedItemSet& other) const noexcept;

  // Equal items and times that differ by less than 2^-52. The tolerance is absolute: for times of
  // magnitude 1 and more it amounts to exact equality.
  bool operator==(const TimedItemSet& other) const noexcept;

  // Writes "(3 7 12)" to the standard output stream, with the time "(3 7 12[5])" when showTime is
  // set. Deliberate: showing a time leaves the stream in fixed notation with precision 0.
  void Display(bool showTime) const;

 private:
  struct Body;

  std::unique_ptr<Body> body_;  // never null
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_TIMEDITEMSET_H_

// The histories of many customers, laid out for mining.
//
// Shape. Customers one after another; a customer is a list of item sets, oldest first, each with a
// time; the items of a set ascend without duplicates. All in four flat arrays.
//
// Lifecycle. Filled from front to back: beginCustomer(), for each set beginSet(time), its items in
// any order, and so on; finish() closes the last one. Then it is only read.
//
// Times have the unit of the log and must not fall within a customer; sets of equal time are
// allowed. Sets without items are left out, unless they are to be kept, which mining has no use
// for.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef MINING_SEQUENCEDATABASE_H_
#define MINING_SEQUENCEDATABASE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orbseq {

class SequenceDatabase {
 public:
  // A customer's sets, or a set's items. Valid as long as the database is not changed.
  using Items = std::span<const std::int32_t>;

  void beginCustomer();
  void beginSet(double time);
  void addItem(std::int32_t item) { items_.push_back(item); }
  void finish();
  // Sets without items stay from now on.
  void keepEmptySets() noexcept { keepsEmptySets_ = true; }

  std::size_t customers() const noexcept { return customerEnds_.size(); }
  std::size_t sets() const noexcept { return setEnds_.size(); }
  std::size_t occurrences() const noexcept { return items_.size(); }

  // The sets of a customer are numbered firstSet(c) .. firstSet(c + 1) - 1.
  std::size_t firstSet(std::size_t customer) const noexcept {
    return customer == 0 ? 0 : customerEnds_[customer - 1];
  }
  Items items(std::size_t set) const noexcept {
    const std::size_t begin = set == 0 ? 0 : setEnds_[set - 1];
    return {items_.data() + begin, setEnds_[set] - begin};
  }
  double time(std::size_t set) const noexcept { return times_[set]; }

  std::size_t memoryBytes() const noexcept;

 private:
  void endSet();

  std::vector<std::int32_t> items_;        // [occurrences]
  std::vector<std::size_t> setEnds_;       // [sets] one past a set's last item
  std::vector<double> times_;              // [sets]
  std::vector<std::size_t> customerEnds_;  // [customers] one past a customer's last set
  bool isInSet_ = false;
  bool isInCustomer_ = false;
  bool keepsEmptySets_ = false;
};

}  // namespace orbseq

#endif  // MINING_SEQUENCEDATABASE_H_

// An independent reference for the dictionary: the same answers from plain containers, each
// operation written down as it is described, without regard to cost.
//
// Shape. Sequences are lists of item lists; the lattice is one ordered map of them. A table's
// order is nothing that this reference knows: rules() is told it.
//
// Threads: as std::map - any number of readers, or one writer.

#ifndef TESTS_SUPPORT_NAIVELATTICE_H_
#define TESTS_SUPPORT_NAIVELATTICE_H_

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "tests/support/World.h"

namespace orbseq::test {

// The order of packed sequences, on lists of lists without empty sets.
bool packedLess(const History& a, const History& b);
struct PackedLess {
  bool operator()(const History& a, const History& b) const { return packedLess(a, b); }
};

// The one-item extension at a valid position.
History extended(const History& sequence, int item, int position);

class NaiveLattice {
 public:
  explicit NaiveLattice(std::map<History, Entry> entries, int levels)
      : entries_(std::move(entries)), levels_(levels) {}

  const std::map<History, Entry>& entries() const { return entries_; }

  int numberOfSequences() const { return static_cast<int>(entries_.size()); }
  int countOfSize(int size) const;
  int largest() const;
  int countBiggerThan(int size) const;

  void link();  // replaces the links as building the lattice does

  // In the order of discovery.
  std::vector<History> found(const History& customer, int skipLast) const;
  // Sorted as lists.
  std::vector<History> reached(Walk walk, const History& start, int minCount, int maxCount) const;
  std::vector<History> ofSize(int size, bool maximalOnly) const;

  // tableOrder(level): the level's sequences, normalised, in the order of its table.
  using TableOrder = std::function<std::vector<History>(int level)>;
  std::vector<Rule> rules(const RuleQuery& query, const TableOrder& tableOrder) const;

  std::vector<Advice> futureItems(const History& customer, int maxCount, bool wholeOnly) const;
  std::vector<Advice> currentItems(const History& customer, int maxCount) const;

 private:
  using Merged = std::map<int, Advice>;  // the best per item

  const Entry* find(const History& sequence) const;  // null when it is not stored
  std::optional<int> countOf(const History& sequence) const;
  int customers() const;
  std::vector<History> climb(const History& known) const;
  std::optional<Rule> ruleOf(const History& stored, const RuleQuery& query) const;
  std::vector<Advice> popular(int maxCount) const;
  void addCandidate(const History& shorter, int item, int position, Merged& merged) const;

  std::map<History, Entry> entries_;
  int levels_;
};

}  // namespace orbseq::test

#endif  // TESTS_SUPPORT_NAIVELATTICE_H_

// Keys, counters and contents of tables for tests.

#ifndef TESTS_SEQUENCE_TABLEVALUES_H_
#define TESTS_SEQUENCE_TABLEVALUES_H_

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "sequence/HashtableSQPair.h"
#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"
#include "tests/support/sequenceValues.h"

namespace orbseq::test {

using SEQUENCE_NAMESPACE_800::HashtableSQPair;
using SEQUENCE_NAMESPACE_800::ISQCPair;
using SEQUENCE_NAMESPACE_800::SequenceCounter;

// The table, with its protected steps in reach.
class OpenTable : public HashtableSQPair {
 public:
  using HashtableSQPair::findInBucket;
  using HashtableSQPair::hashedKey;
  using HashtableSQPair::HashtableSQPair;
  using HashtableSQPair::rehash;
};

// A key on the heap, for a table to own. One item is its own hash.
inline NTSequence* newKey(const ItemSets& sets) { return new NTSequence(packed(sets)); }

inline SequenceCounter* newCounter(std::int32_t count) {
  return new SequenceCounter(0, count, nullptr);
}

// Puts a one-item sequence with the item itself as its count. Requires that it is absent.
inline void putItem(HashtableSQPair& table, std::int32_t item) {
  table.put(newKey({{item}}), newCounter(item));
}

inline void putItems(HashtableSQPair& table, std::initializer_list<std::int32_t> items) {
  for (const std::int32_t item : items) putItem(table, item);
}

// Which entries the table holds, in its order: the first item of each.
inline Items itemsInOrder(const HashtableSQPair& table) {
  Items items;
  for (const ISQCPair& entry : table) items.push_back(entry.key->items()[0]);
  return items;
}

// The entry's count, -1 when there is no entry.
inline std::int32_t countOf(const HashtableSQPair& table, const ItemSets& sets) {
  const NTSequence probe = packed(sets);
  const ISQCPair* const entry = table.get(&probe);
  return entry == nullptr ? -1 : entry->value->getCount();
}

// A counter that counts its destructions.
class CountedCounter : public SequenceCounter {
 public:
  explicit CountedCounter(int& destroyed) : destroyed_(destroyed) {}
  ~CountedCounter() override { ++destroyed_; }

 private:
  int& destroyed_;
};

}  // namespace orbseq::test

#endif  // TESTS_SEQUENCE_TABLEVALUES_H_

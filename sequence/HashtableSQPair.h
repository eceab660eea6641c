// The table of one lattice level: packed sequence to counter, separately chained.
//
// Order. Iteration goes by bucket, and within a bucket from the chain's head, which is the entry
// linked last. The order is promised: exports and stored forms follow it. Growth, removal and
// overwriting change it exactly as described at each operation.
//
// Growth. The table grows when one more entry would exceed the threshold, capacity x 0.75 rounded
// half up, to 2 x capacity + 1 buckets. A capacity of 0 is allowed: nothing is found, and the
// first insertion grows.
//
// Ownership. The table owns every node, key and value in it. A key and value that put() refused
// stay the caller's. Values may be null. Copying is SHALLOW: see operator=.
//
// Threads: as a standard container - any number of readers, or one writer.

#ifndef SEQUENCE_HASHTABLESQPAIR_H_
#define SEQUENCE_HASHTABLESQPAIR_H_

#include <cstdint>
#include <iosfwd>
#include <span>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader;
class HashtableSQPair;
class NTSequence;
class SequenceCounter;

// One entry as callers see it. Both objects are owned by the table.
struct ISQCPair {
  NTSequence* key = nullptr;
  SequenceCounter* value = nullptr;
};

// One entry in its chain.
struct SQCPairNode : ISQCPair {
  SQCPairNode* next = nullptr;
};

class ORBSEQ_EXPORT OrbSequence {
 public:
  // Walks a table in its order. Advance before the entry it stands on is removed; growth
  // invalidates it. Two iterators are equal when they stand on the same node; all end positions
  // are equal.
  class ORBSEQ_EXPORT iterator {
   public:
    iterator() = default;

    const ISQCPair& operator*() const noexcept { return *node_; }
    const ISQCPair* operator->() const noexcept { return node_; }
    iterator& operator++() noexcept;
    iterator operator++(int) noexcept {
      const iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(const iterator& a, const iterator& b) noexcept {
      return a.node_ == b.node_;
    }

   private:
    friend class HashtableSQPair;
    iterator(const HashtableSQPair* table, const SQCPairNode* node, std::int32_t bucket) noexcept
        : table_(table), node_(node), bucket_(bucket) {}

    const HashtableSQPair* table_ = nullptr;
    const SQCPairNode* node_ = nullptr;  // null at the end
    std::int32_t bucket_ = 0;
  };
};

class ORBSEQ_EXPORT HashtableSQPair {
 public:
  static constexpr std::int32_t kDefaultCapacity = 89;

  HashtableSQPair() : HashtableSQPair(kDefaultCapacity) {}
  explicit HashtableSQPair(int capacity);  // a negative capacity counts as 0
  ~HashtableSQPair();

  // Deliberate: shallow. Both tables then share buckets and entries, only one of the two may ever
  // be changed or destroyed. What the target owned alone before an assignment is freed.
  HashtableSQPair(const HashtableSQPair& other) noexcept;
  HashtableSQPair& operator=(const HashtableSQPair& other) noexcept;

  // Inserts at the head of the key's chain and owns both, or returns false and owns neither when
  // an equal key is present. Throws std::bad_alloc and changes nothing when memory runs out; throws
  // std::length_error when a grown table would pass 2^31 - 1 buckets.
  bool put(NTSequence* key, SequenceCounter* value);

  // As put, but an equal key's entry is replaced in place: its key and value are destroyed, each
  // unless it is the very object given.
  void putOverwrite(NTSequence* key, SequenceCounter* value);

  // The entry of an equal key, or null. Keys are compared by content.
  const ISQCPair* get(const NTSequence* key) const noexcept;
  bool containsKey(const NTSequence* key) const noexcept { return get(key) != nullptr; }
  // found[k] becomes what get(&keys[k]) answers. Faster than one by one in a large table: the
  // memory of many entries is waited for at once. Requires room in `found` for keys.size().
  void getAll(std::span<const NTSequence> keys, const ISQCPair** found) const noexcept;

  // Entries in the chain where the key is or would be, counted up to `enough`. Readers of what
  // comes from outside refuse chains of more than mostInChain() (common/Limits.h).
  std::int32_t chainLength(const NTSequence* key, std::int32_t enough) const noexcept;

  // Destroys the entry of an equal key, if any; `key` may be the stored key itself.
  // Deliberate: the chain's head moves into the entry's node, which changes the order.
  void remove(const NTSequence* key) noexcept;

  void clear() noexcept;  // destroys all entries; capacity, threshold, rehash count stay

  std::int32_t getSize() const noexcept { return count_; }
  std::int32_t getCapacity() const noexcept { return capacity_; }
  std::int32_t getThreshold() const noexcept { return threshold_; }
  std::int32_t getRehashCount() const noexcept { return rehashCount_; }

  OrbSequence::iterator begin() const noexcept;
  OrbSequence::iterator end() const noexcept { return {this, nullptr, capacity_}; }

  // Writes how many chains have which length, a line each, and "END OF TABLE" to the standard
  // output stream. Returns the mean length of the chains in use; a length of 99 stands for every
  // longer one.
  double freqTable() const;
  // Writes a line per bucket, without the entries, to the standard output stream.
  void display() const;

  // Stored forms: binary, and objects in lines of XML (xml/XMLObj.h), entries in the table's order.
  // Each answers its promised count. An entry without a counter is stored with one of zeros. A
  // read adds its entries with putOverwrite; a count below 1 adds none. The binary reader
  // prints its message and throws SeqExceptions::IOException by pointer, the other answers 0; both
  // keep the entries read so far.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t writeObject(std::fstream& file) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(std::fstream& file);
  std::uint64_t readObject(BinaryReader& reader);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  std::uint64_t readObjectXML(std::istream& is);
  std::uint64_t readObjectXML(std::fstream& file);

 protected:
  // The key's bucket. Requires a capacity above 0. Negative hashes are reduced into range.
  std::int32_t hashedKey(const NTSequence* key) const noexcept;
  // The first node of the chain with an equal key, or null.
  static SQCPairNode* findInBucket(SQCPairNode* head, const NTSequence* key) noexcept;
  void rehash();

 private:
  friend class OrbSequence::iterator;

  SQCPairNode* find(const NTSequence* key) const noexcept;
  void insert(NTSequence* key, SequenceCounter* value);
  void release() noexcept;  // destroys entries and buckets
  static bool fits(const NTSequence& key, const SequenceCounter& counter) noexcept;

  SQCPairNode** buckets_ = nullptr;  // [capacity_] chain heads, null where a chain is empty
  std::int32_t capacity_ = 0;
  std::int32_t count_ = 0;
  std::int32_t threshold_ = 0;
  float loadFactor_ = 0.75F;
  std::int32_t rehashCount_ = 0;
  mutable bool shared_ = false;  // set on both sides of an assignment
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_HASHTABLESQPAIR_H_

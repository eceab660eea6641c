#include "sequence/HashtableSQPair.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <stdexcept>

#include "sequence/NTSequence.h"
#include "sequence/SequenceCounter.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// The product in single precision, the sum in double: the rounding decides when a table grows.
std::int32_t thresholdOf(std::int32_t capacity, float loadFactor) noexcept {
  const float product = static_cast<float>(capacity) * loadFactor;
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): half up is the rule, and nothing is negative
  return static_cast<std::int32_t>(static_cast<double>(product) + 0.5);
}

SQCPairNode** newBuckets(std::int32_t capacity) {
  return capacity > 0 ? new SQCPairNode* [static_cast<std::size_t>(capacity)] {} : nullptr;
}

std::int32_t bucketOf(const NTSequence& key, std::int32_t capacity) noexcept {
  const std::int32_t remainder = key.HashCode() % capacity;
  return remainder < 0 ? remainder + capacity : remainder;
}

// Begins to load the memory, which need not be there. Wants no answer: nothing waits.
void prefetch(const void* address) noexcept { __builtin_prefetch(address); }

void link(SQCPairNode*& head, SQCPairNode* node) noexcept {
  node->next = head;
  head = node;
}

void destroy(SQCPairNode* node) noexcept {
  delete node->key;
  delete node->value;
  delete node;
}

}  // namespace

OrbSequence::iterator& OrbSequence::iterator::operator++() noexcept {
  node_ = node_->next;
  while (node_ == nullptr && ++bucket_ < table_->capacity_) node_ = table_->buckets_[bucket_];
  return *this;
}

HashtableSQPair::HashtableSQPair(int capacity)
    : buckets_(newBuckets(capacity)), capacity_(std::max(capacity, 0)) {
  threshold_ = thresholdOf(capacity_, loadFactor_);
}

HashtableSQPair::~HashtableSQPair() { release(); }

HashtableSQPair::HashtableSQPair(const HashtableSQPair& other) noexcept { *this = other; }

// Deliberate: the buckets and entries are shared, not copied.
HashtableSQPair& HashtableSQPair::operator=(const HashtableSQPair& other) noexcept {
  if (this == &other) return *this;
  if (!shared_) release();
  buckets_ = other.buckets_;
  capacity_ = other.capacity_;
  count_ = other.count_;
  threshold_ = other.threshold_;
  loadFactor_ = other.loadFactor_;
  rehashCount_ = other.rehashCount_;
  shared_ = other.shared_ = true;
  return *this;
}

void HashtableSQPair::release() noexcept {
  clear();
  delete[] buckets_;
  buckets_ = nullptr;
}

std::int32_t HashtableSQPair::hashedKey(const NTSequence* key) const noexcept {
  return bucketOf(*key, capacity_);
}

SQCPairNode* HashtableSQPair::findInBucket(SQCPairNode* head, const NTSequence* key) noexcept {
  for (SQCPairNode* node = head; node != nullptr; node = node->next)
    if (*node->key == *key) return node;  // compares the hash and the pattern first
  return nullptr;
}

SQCPairNode* HashtableSQPair::find(const NTSequence* key) const noexcept {
  return capacity_ > 0 ? findInBucket(buckets_[hashedKey(key)], key) : nullptr;
}

void HashtableSQPair::insert(NTSequence* key, SequenceCounter* value) {
  auto node = std::make_unique<SQCPairNode>();
  node->key = key;
  node->value = value;
  if (count_ >= threshold_) rehash();
  link(buckets_[hashedKey(key)], node.release());
  ++count_;
}

bool HashtableSQPair::put(NTSequence* key, SequenceCounter* value) {
  if (find(key) != nullptr) return false;
  insert(key, value);
  return true;
}

void HashtableSQPair::putOverwrite(NTSequence* key, SequenceCounter* value) {
  SQCPairNode* node = find(key);
  if (node == nullptr) {
    insert(key, value);
    return;
  }
  if (node->key != key) delete node->key;
  if (node->value != value) delete node->value;
  node->key = key;
  node->value = value;
}

void HashtableSQPair::rehash() {
  if (capacity_ > (std::numeric_limits<std::int32_t>::max() - 1) / 2)
    throw std::length_error("sequence table: more than 2147483647 buckets");
  const std::int32_t capacity = capacity_ * 2 + 1;
  SQCPairNode** buckets = newBuckets(capacity);
  // Heads move one by one, so nodes of one old chain stand reversed in the new one.
  for (std::int32_t i = 0; i < capacity_; ++i)
    for (SQCPairNode* node = buckets_[i]; node != nullptr;) {
      SQCPairNode* const next = node->next;
      link(buckets[bucketOf(*node->key, capacity)], node);
      node = next;
    }
  delete[] buckets_;
  buckets_ = buckets;
  capacity_ = capacity;
  threshold_ = thresholdOf(capacity_, loadFactor_);
  ++rehashCount_;
}

std::int32_t HashtableSQPair::chainLength(const NTSequence* key,
                                          std::int32_t enough) const noexcept {
  std::int32_t length = 0;
  if (capacity_ == 0) return length;
  const SQCPairNode* node = buckets_[hashedKey(key)];
  for (; node != nullptr && length < enough; node = node->next) ++length;
  return length;
}

const ISQCPair* HashtableSQPair::get(const NTSequence* key) const noexcept { return find(key); }

// Each pass asks for what the next one reads, of all keys of a batch.
void HashtableSQPair::getAll(std::span<const NTSequence> keys,
                             const ISQCPair** found) const noexcept {
  constexpr std::size_t kBatch = 32;
  std::array<SQCPairNode* const*, kBatch> chains;
  for (; !keys.empty(); keys = keys.subspan(std::min(kBatch, keys.size()))) {
    const std::span<const NTSequence> batch = keys.first(std::min(kBatch, keys.size()));
    if (capacity_ == 0) {
      found = std::fill_n(found, batch.size(), nullptr);
      continue;
    }
    for (std::size_t k = 0; k < batch.size(); ++k) {
      chains[k] = buckets_ + hashedKey(&batch[k]);
      prefetch(chains[k]);
    }
    for (std::size_t k = 0; k < batch.size(); ++k) prefetch(*chains[k]);
    for (std::size_t k = 0; k < batch.size(); ++k)
      if (*chains[k] != nullptr) prefetch((*chains[k])->key);
    for (std::size_t k = 0; k < batch.size(); ++k)
      if (*chains[k] != nullptr) prefetch((*chains[k])->key->items().data());
    for (std::size_t k = 0; k < batch.size(); ++k) *found++ = findInBucket(*chains[k], &batch[k]);
  }
}

void HashtableSQPair::remove(const NTSequence* key) noexcept {
  SQCPairNode* const node = find(key);
  if (node == nullptr) return;
  SQCPairNode*& head = buckets_[hashedKey(key)];  // the key may die below
  SQCPairNode* const first = head;
  delete node->key;
  delete node->value;
  // Deliberate: the head's entry takes the removed one's place.
  node->key = first->key;
  node->value = first->value;
  head = first->next;
  delete first;
  --count_;
}

void HashtableSQPair::clear() noexcept {
  for (std::int32_t i = 0; count_ > 0 && i < capacity_; ++i) {
    while (SQCPairNode* const node = buckets_[i]) {
      buckets_[i] = node->next;
      destroy(node);
    }
  }
  count_ = 0;
}

OrbSequence::iterator HashtableSQPair::begin() const noexcept {
  if (count_ > 0)
    for (std::int32_t i = 0; i < capacity_; ++i)
      if (buckets_[i] != nullptr) return {this, buckets_[i], i};
  return end();
}

}  // namespace SEQUENCE_NAMESPACE_800

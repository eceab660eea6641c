// A sequence in packed form, without times: the key of the lattice's tables.
//
// Shape. All items of all sets stand in one flat array, set after set; a 32-bit pattern marks
// where each set ends: the item at flat position p owns bit (size() - 1 - p), which is 1 when the
// item is the last of its set. (3 7)(2)(5 8 9) has the items 3 7 2 5 8 9 and the pattern binary
// 011001. A hash is kept beside them. A sequence of no items has pattern, hash and set count 0.
//
// Limits. At most kMaxItems items. Whatever would make a longer sequence throws std::length_error
// and changes nothing. A sequence of exactly 32 items can be stored and looked up, but operator<
// does not order it: never put one into an ordered container.
//
// Item sets without items leave no trace in the flat form: the builders skip them, so that the set
// count always is the number of 1 bits of the pattern.
//
// Ownership. A value that owns its array; `const` operations return views or copies, except
// createSequence, whose result the caller owns.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef SEQUENCE_NTSEQUENCE_H_
#define SEQUENCE_NTSEQUENCE_H_

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>

#include "common/Limits.h"
#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader;
class Sequence;

// What NTSequence::reuseAs takes over as it stands. `items` points to itemCount items of the
// caller's.
struct PackedSequence {
  std::int32_t itemCount = 0;
  std::int32_t setCount = 0;
  std::int32_t hash = 0;
  std::int32_t pattern = 0;
  const std::int32_t* items = nullptr;
};

class ORBSEQ_EXPORT NTSequence {
 public:
  static constexpr std::int32_t kMaxItems = orbseq::LatticeLimits::kItemsInSequence;

  NTSequence();  // empty, with room for kMaxItems items
  // One set: itemsWithCount[0] is the number of items, the items follow and are kept as given.
  explicit NTSequence(const int* itemsWithCount);
  // nSets such sets, in order.
  NTSequence(const int* const* sets, int nSets);
  explicit NTSequence(const Sequence* sequence);
  // The first Length() - drop sets; a negative drop counts as 0.
  NTSequence(const Sequence& sequence, int drop);
  // The one-item extension of `source`. With j = position / 2: an odd position makes {item} the
  // new set j; an even one adds the item to set j before its first greater item, or last.
  // Throws std::out_of_range for a position that source.isPosition refuses.
  NTSequence(const NTSequence& source, std::int32_t item, std::int32_t position);
  NTSequence(const NTSequence& other);
  NTSequence& operator=(const NTSequence& other);
  NTSequence(NTSequence&& other) noexcept;  // leaves `other` empty
  NTSequence& operator=(NTSequence&& other) noexcept;
  ~NTSequence();

  // Refill this object. The array is replaced only when the number of items changes.
  void reuseAs(const int* const* sets, int nSets);
  void reuseAs(const Sequence* sequence);
  void reuseAs(const PackedSequence* packed);  // verbatim; the hash is not computed anew

  std::int32_t size() const noexcept { return itemCount_; }
  std::int32_t getNSets() const noexcept { return setCount_; }
  std::int32_t getPattern() const noexcept { return pattern_; }
  std::int32_t HashCode() const noexcept { return hash_; }

  // All items, set after set. Valid until the sequence changes.
  std::span<const std::int32_t> items() const noexcept {
    return {items_.get(), static_cast<std::size_t>(itemCount_)};
  }
  // Whether the item at flat position 0 .. size() - 1 is the last of its set.
  bool endsSet(std::int32_t position) const noexcept {
    return ((static_cast<std::uint32_t>(pattern_) >> (itemCount_ - 1 - position)) & 1U) != 0;
  }
  // Whether `position` names an extension: 0, 2 .. 2 (sets - 1) or 1, 3 .. 2 sets + 1.
  bool isPosition(std::int32_t position) const noexcept;
  std::string positionsText() const;  // those positions, for messages: "0..3, 5"

  std::int32_t getItemIndex(std::int32_t item) const noexcept;  // first flat position, or -1
  // Items of a set (0-based); 0 when there is no such set.
  std::int32_t getSizeOfSet(std::int32_t set) const noexcept;
  // The k-th item (0-based) of a set; 0 when there is none.
  std::int32_t getItemInSet(std::int32_t k, std::int32_t set) const noexcept;
  // Writes the set's items, without a count, to out[0 ..]. Requires room for getSizeOfSet(set).
  void getSetAsArray(std::int32_t set, std::int32_t* out) const noexcept;

  // The sequence unpacked: each set ascending, without duplicates, set k with the time k + 1.
  // The caller owns the result.
  Sequence* createSequence() const;

  // Equal hashes, patterns and items.
  bool operator==(const NTSequence& other) const noexcept;

  // By items from the front; at equal items a set that ends earlier comes first, and a proper
  // prefix comes first. Deliberate: false whenever either side holds 32 items.
  bool operator<(const NTSequence& other) const noexcept;

  void addItemAfterLast(std::int32_t item);  // {item} as a new last set
  // Adds the item to a set before its first greater item, or last; equal items are not merged. On
  // a sequence without sets it is addItemAfterLast. Throws std::out_of_range for other sets.
  void addItemToSet(std::int32_t item, std::int32_t set);
  // Becomes `source` without the item at the flat position; true when that item's whole set went.
  // Throws std::out_of_range for a position outside 0 .. size() - 1.
  bool removeItem(std::int32_t position, const NTSequence* source);

  // Writes "<(1 2)(5)>" and a line break.
  void display(std::ostream& out) const;

  // Stored forms: binary, and objects in lines of XML (xml/XMLObj.h). Each answers its promised
  // count. The binary readers print their message and throw SeqExceptions::IOException by pointer,
  // the others print it and answer 0; a failed read changes nothing here.
  // The hash is not stored but computed anew. What the fields say of items and sets must agree.
  // Deliberate: the binary reader of a sequence alone takes an item count below 1 for the empty
  // sequence; the one that a table uses refuses it unless the other fields say so too.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t writeObject(std::fstream& file) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(std::fstream& file);
  std::uint64_t readObject(BinaryReader& reader);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  std::uint64_t readObjectXML(std::istream& is);
  std::uint64_t readObjectXML(std::fstream& file);

 private:
  class Builder;  // NTSequence.cpp: collects items and set ends, checks the limit

  void take(const Builder& builder, std::int32_t room);
  void computeHash() noexcept;

  enum class Strictness { kStrict, kLenient };
  void readStored(BinaryReader& reader, Strictness strictness);
  static bool isStorable(std::int32_t items, std::int32_t sets, std::int32_t pattern) noexcept;
  void becomeStored(const PackedSequence& stored);

  std::int32_t itemCount_ = 0;
  std::int32_t setCount_ = 0;
  std::int32_t hash_ = 0;
  std::int32_t pattern_ = 0;
  std::unique_ptr<std::int32_t[]> items_;  // [room_], the first itemCount_ are used
  std::int32_t room_ = 0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_NTSEQUENCE_H_

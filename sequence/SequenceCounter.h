// What a lattice keeps of a stored sequence: its count, its bounds, and which one-item extensions
// of it exist.
//
// An adjacency pair (item, position) says that the sequence extended by the item at that position
// is stored: position 2s means that the item joins set s, 2s + 1 that {item} becomes set s of the
// longer sequence. Pairs ascend by item, then by position.
//
// Ownership: the counter owns its statistics and its adjacency set.
//
// Threads: as std::set - any number of readers, or one writer.

#ifndef SEQUENCE_SEQUENCECOUNTER_H_
#define SEQUENCE_SEQUENCECOUNTER_H_

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <set>
#include <utility>

#include "common/OrbExport.h"
#include "sequence/StatsBucket.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader;
class NTSequence;

class ORBSEQ_EXPORT SequenceCounter {
 public:
  using AdjacentItem = std::pair<std::int32_t, std::int32_t>;  // item, position
  using AdjacentItems = std::set<AdjacentItem>;

  SequenceCounter();  // all numbers 0, no statistics, no adjacency set
  // Owns `stats`, which may be null; max missed is 0.
  SequenceCounter(std::int32_t ordinalOfEntry, std::int32_t count, StatsBucket* stats);
  virtual ~SequenceCounter();  // a table deletes derived counters through this class
  SequenceCounter(const SequenceCounter&) = delete;
  SequenceCounter& operator=(const SequenceCounter&) = delete;

  std::int32_t getCount() const noexcept { return count_; }
  void setCount(std::int32_t count) noexcept { count_ = count; }
  // Adds 1; the largest 32-bit count stays as it is.
  void incrementCount() noexcept;

  // The ordinal (of the customer) under which the sequence entered the lattice.
  std::int32_t getOrdinalOfEntry() const noexcept { return ordinalOfEntry_; }
  void setOrdinalOfEntry(std::int32_t ordinal) noexcept { ordinalOfEntry_ = ordinal; }

  // Bound on the occurrences that may have been missed before entry.
  std::int32_t getMaxMissed() const noexcept { return maxMissed_; }
  void setMaxMissed(std::int32_t maxMissed) noexcept { maxMissed_ = maxMissed; }
  void decrementMaxMissed() noexcept;  // never below 0

  StatsBucket* getStatsBucket() const noexcept { return stats_.get(); }
  // Owns the new bucket. Deliberate: the previous one is left to the caller, not deleted.
  void setStatsBucket(StatsBucket* stats) noexcept;

  // Adds a pair, making the set on first need; a pair that is present is not added twice. Throws
  // SeqExceptions::DictionaryFailure when memory runs out.
  void addAdjacentItem(std::int32_t item, std::int32_t position);
  // The set, owned by the counter; null until a pair or a set was given.
  AdjacentItems* getAdjacentItems() noexcept { return adjacent_.get(); }
  const AdjacentItems* getAdjacentItems() const noexcept { return adjacent_.get(); }
  // Owns the new set. Deliberate: the previous one is left to the caller, not deleted.
  void setAdjacentItems(AdjacentItems* items) noexcept;
  std::int32_t getNAdjacent() const noexcept;  // number of pairs
  void clearAdjacentItems() noexcept;          // empties the set and keeps it

  // Writes the numbers, the statistics where there are any, and the adjacency when asked for; then
  // flushes. Deliberate: printing statistics or adjacency leaves the stream in fixed notation with
  // precision 2.
  void display(std::ostream& out, bool showAdjacent) const;

  // Stored forms: binary, and objects in lines of XML (xml/XMLObj.h). Each answers its promised
  // count. The binary readers print their message and throw SeqExceptions::IOException by pointer,
  // the others print it and answer 0; a failed read changes nothing here.
  // Statistics and adjacency set that a read replaces are destroyed.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t writeObject(std::fstream& file) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(std::fstream& file);
  // With the sequence that is counted, positions that name no extension of it are refused.
  std::uint64_t readObject(BinaryReader& reader, const NTSequence* key = nullptr);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  std::uint64_t readObjectXML(std::istream& is);
  std::uint64_t readObjectXML(std::fstream& file);

 private:
  std::uint64_t binaryCount() const noexcept;
  std::uint64_t xmlLines() const noexcept;
  static std::unique_ptr<AdjacentItems> readAdjacency(BinaryReader& reader, const NTSequence* key);
  static std::unique_ptr<StatsBucket> readStatistics(BinaryReader& reader);

  std::int32_t count_ = 0;
  std::int32_t ordinalOfEntry_ = 0;
  std::int32_t maxMissed_ = 0;
  std::unique_ptr<StatsBucket> stats_;
  std::unique_ptr<AdjacentItems> adjacent_;
};

// A counter as a CARMA miner makes it: entered late, with a bound on what was missed before.
class ORBSEQ_EXPORT CarmaSequenceDescriptor : public SequenceCounter {
 public:
  CarmaSequenceDescriptor();
  CarmaSequenceDescriptor(std::int32_t ordinalOfEntry, std::int32_t maxMissed, std::int32_t count);
  ~CarmaSequenceDescriptor() override;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_SEQUENCECOUNTER_H_

// The sequence lattice: every frequent sequence of a model, stored by its number of items with its
// count, and linked to every stored sequence that extends it by one item.
//
// Shape. Level n is a table of the sequences of n items, n = 0 .. numLevels - 1; level 0 holds the
// empty sequence, whose count is the number of customers. Links are adjacency pairs on the counters
// (sequence/SequenceCounter.h), made by buildLattice() or read with the tables.
//
// Lifecycle. Either filled by addSequence and incrementCount and then linked by buildLattice(), or
// made over finished tables. A dictionary without levels, with null counters, or without the empty
// sequence is legal: queries leave out what they have no count for, and a count of 0 under a
// fraction gives no answer, never a NaN.
//
// Ownership. The dictionary owns its tables and everything in them. Copies are SHALLOW: they share
// all of it, and only one of them may ever be destroyed or changed.
//
// Threads. The const queries (counting, searching, rules, recommendations, getDescriptor of an
// NTSequence) use no shared scratch: any number of threads may run them at once. The look-ups that
// start from an unpacked form write the dictionary's scratch sequence; they and everything that
// changes the dictionary want it for themselves. setCancel() may come from any thread.
//
// Errors. SeqExceptions::DictionaryFailure when memory runs out where an operation says so. A
// sequence of more items than a level, or than a packed sequence can hold, is never stored.

#ifndef LATTICE_SEQUENCEDICTIONARY_H_
#define LATTICE_SEQUENCEDICTIONARY_H_

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <set>
#include <vector>

#include "common/OrbExport.h"
#include "common/OrbStatus.h"
#include "lattice/SeqDictionarySettings.h"
#include "lattice/SequenceSemiLattice.h"

namespace SEQUENCE_NAMESPACE_800 {

class HashtableSQPair;
struct ISQCPair;
class NTSequence;
class SequenceCounter;

class ORBSEQ_EXPORT SequenceDictionary : public SequenceSemiLattice {
 public:
  // No levels at all, default settings: an object to read a stored lattice into.
  SequenceDictionary();
  // Owns the array and its tables once the call returns; when it throws (DictionaryFailure), the
  // caller still does. `tables` has n slots (slots beyond are never read), made with new[]; a slot
  // may be null. The lattice counts as built.
  SequenceDictionary(HashtableSQPair** tables, int n);
  // Empty tables of the given sizes, and the empty sequence with count 0 at level 0. Throws
  // DictionaryFailure.
  explicit SequenceDictionary(SeqDictionarySettings settings);
  explicit SequenceDictionary(int n);  // default settings with n levels
  SequenceDictionary(const SequenceDictionary& other) noexcept;
  SequenceDictionary& operator=(const SequenceDictionary& other) noexcept;
  ~SequenceDictionary();

  // --- Store and look-up -----------------------------------------------------------------------
  // A sequence comes packed, or as a Sequence, or as item arrays: sets[k][0] is the number of items
  // of set k, the items follow.

  // Stores a sequence in the level of its size, replacing an equal one. A non-null counter gives
  // its count, ordinal and max missed to a new counter; a null one stores no counter. False, and
  // nothing stored, when no level can hold the sequence. Throws DictionaryFailure.
  bool addSequence(const int* const* sets, int n, const SequenceCounter* counter);
  // Adds 1 to a stored sequence's count; its counter, or null when it is absent or has none.
  SequenceCounter* incrementCount(const int* const* sets, int n);

  // The counter of a stored sequence, owned by the dictionary, or null. The form that takes an
  // NTSequence uses no scratch; the others throw DictionaryFailure.
  SequenceCounter* getDescriptor(const NTSequence* sequence) const noexcept;
  const SequenceCounter* getDescriptor(const Sequence* sequence) const;
  SequenceCounter* getDescriptor(const int* const* sets, int n) const;

  NTSequence* getSequence(const int* const* sets, int n) const;  // the stored key, or null
  bool hasSequence(const int* const* sets, int n) const;
  bool isStored(const NTSequence& sequence) const noexcept;  // uses no scratch

  // --- Settings and flags ----------------------------------------------------------------------
  // Gaps and window carry the unit of the log's times. They are stored, never consulted by the
  // search.
  void setMinGap(double gap) noexcept { minGap_ = gap; }
  void setMaxGap(double gap) noexcept { maxGap_ = gap; }
  void setSlidingWindow(double width) noexcept { slidingWindow_ = width; }
  // The share of customers that a stored sequence reaches at least; 0: not known.
  void setReductionThreshold(double share) noexcept { reductionThreshold_ = share; }
  double getMinGap() const noexcept { return minGap_; }
  double getMaxGap() const noexcept { return maxGap_; }
  double getSlidingWindow() const noexcept { return slidingWindow_; }
  double getReductionThreshold() const noexcept { return reductionThreshold_; }
  const SeqDictionarySettings& getSettings() const noexcept { return settings_; }
  std::int32_t getNumLevels() const noexcept { return numLevels_; }
  bool isLatticeBuilt() const noexcept { return latticeBuilt_; }
  // A level's table, to be read alone; null when there is none.
  const HashtableSQPair* getTable(std::int32_t index) const noexcept { return level(index); }
  // Makes GetFutureItems and GetRules give up at their next pass or level, for good.
  void setCancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }

  // --- Counting --------------------------------------------------------------------------------
  std::int32_t NumberOfSequences() const override;  // over all levels, the empty sequence included
  // The largest L such that each level 1 .. L holds a sequence.
  std::int32_t LargestSequence() const override;
  std::int32_t CountSequencesOfSize(int size) const override;  // 0 for a level that does not exist
  // Sequences in the levels size .. LargestSequence().
  // Deliberate: level `size` itself is counted, despite the name.
  std::int32_t CountSequencesBiggerThan(int size) const override;

  // --- Building --------------------------------------------------------------------------------
  // Links every sequence of the levels 1 .. LargestSequence() to its one-item-shorter parts, after
  // dropping earlier links there. Out of memory: an error of code 60000; links made so far stay.
  OrbStatus buildLattice();

  // Writes the first maxCount + 1 sequences of a level with their counters.
  // Deliberate: one more than maxCount.
  void displaySize(int level, int maxCount, std::ostream& out) const;

  // --- Pruning ---------------------------------------------------------------------------------
  // Remove entries with their counters. No other counter's links are touched: pairs may then name
  // extensions that are gone, which every query checks. isLatticeBuilt() stays as it is.
  //
  // A threshold is a number of customers: an integer but for noise in its last digits is that
  // integer, any other is raised to the next one. Each answers the number of entries removed.

  void remove(const NTSequence* sequence) noexcept;  // null, or not stored: nothing happens
  void remove(const int* const* sets, int n);        // throws DictionaryFailure
  void remove(const Sequence& sequence);             // throws DictionaryFailure

  // From one level, what has a smaller count, and what has a smaller count + max missed.
  std::int32_t reduceDictionaryWithCount(int level, double threshold);
  std::int32_t reduceDictionary(int level, double threshold);
  // The same from the levels 1 and up; reduceAll ends at the first level that was empty before, and
  // sets the reduction threshold to the share of the customers, when there are any.
  std::int32_t reduceAllWithCount(double threshold);
  std::int32_t reduceAll(double threshold);

  // Settles every bound: what entered up to `ordinal` gets its max missed added to its count (which
  // stays within 32 bits), what entered later is removed. Always OK.
  OrbStatus dropAfter(int ordinal);

  // Removes everything and stores the empty sequence anew, with count 0. Throws DictionaryFailure.
  void reset();

  // --- Searching -------------------------------------------------------------------------------
  // Appends every stored sequence that `customer` contains and that ends in its last known item
  // set, once `skipLast` item sets are left out at the end. Order: as discovered, which is
  // promised. Deliberate: time plays no part, and a lattice whose largest sequence has at most 2
  // items yields single items only. A sequence of 32 items is never found. Found sequences may be
  // gone from a pruned lattice. Ownership: the caller deletes the appended sequences. Errors:
  // always OK; std::bad_alloc may pass through, and then `found` is unchanged.
  OrbStatus getSubsequencesInSequence(std::vector<NTSequence*>& found, const Sequence* customer,
                                      int skipLast) const;
  OrbStatus getSubsequencesInSequence(std::vector<NTSequence*>& found, const Sequence& customer,
                                      int skipLast) const;

  // Appends the stored sequences of a size, unpacked, in table order; with maximalOnly only those
  // that extend to nothing. The caller owns them. Always OK.
  OrbStatus getSequencesOfSize(std::vector<const Sequence*>& out, int size, bool maximalOnly) const;

  // Add the stored sequences with minCount <= count <= maxCount that can be reached from `start` by
  // adding one item at a time: at any place; never after the first set but into sets, or as a new
  // first set (Ending); into sets or as a new last set (Beginning). `start` itself is one of them.
  // Sequences above maxCount are walked through, those below minCount are not. The caller owns
  // what is added, also when std::bad_alloc passes through. Always OK.
  OrbStatus FindSequences(const Sequence* start, std::set<Sequence*>& out, int minCount,
                          int maxCount) const override;
  OrbStatus FindSequencesBeginning(const Sequence* start, std::set<Sequence*>& out, int minCount,
                                   int maxCount) const override;
  OrbStatus FindSequencesEnding(const Sequence* start, std::set<Sequence*>& out, int minCount,
                                int maxCount) const override;

  // --- Rules and recommendations ---------------------------------------------------------------
  // Appends a rule "all item sets but the last => the last" for every stored sequence of two or
  // more item sets within the bounds, which are inclusive fractions. minSupport becomes a count by
  // truncation, maxSupport by rounding. sortBy 'S', 'C', 'A' orders by support, confidence or cause
  // descending, anything else by discovery. Errors: code 1 when cancelled, 60000 when something
  // fails; then nothing is appended.
  OrbStatus GetRules(std::vector<SeqAssociationRule>& rules, double minSupport, double maxSupport,
                     double minConfidence, double maxConfidence, double minCause, double maxCause,
                     char sortBy, bool maximalOnly) const override;

  // Append the items most likely to come in a later item set, and to join the last one: at most
  // maxCount, by confidence descending, the larger item number first among equals. A null customer,
  // or one without item sets, asks for the most frequent items. wholeOnly false also asks every
  // beginning of the history and keeps the best answer per item.
  // Errors: code 1 when cancelled (future items only), and then nothing is appended;
  // std::bad_alloc may pass through, and then `out` is unchanged.
  OrbStatus GetFutureItems(std::vector<SeqConsequentDescriptor>& out, const Sequence* customer,
                           int maxCount, bool wholeOnly) const override;
  OrbStatus GetCurrentItems(std::vector<SeqConsequentDescriptor>& out, const Sequence* customer,
                            int maxCount) const override;

  // --- Exports ---------------------------------------------------------------------------------
  // Write the lattice, and the rules that GetRules selects, as XML documents: what the writers in
  // lattice/LatticeDocument.h write with the options that add nothing. The stream's state is not
  // looked at. Errors: that of GetRules, and then nothing is written; 60000 when something fails,
  // and then a part may have been.
  OrbStatus ExportLatticeXML(std::ostream& os, double minimumSupport) const override;
  OrbStatus ExportRulesXML(std::ostream& os, double minSupport, double maxSupport,
                           double minConfidence, double maxConfidence, double minCause,
                           double maxCause, int maxItemsPerTransaction,
                           double avgItemsPerTransaction, char sortBy,
                           bool maximalOnly) const override;

  // --- Stored forms ----------------------------------------------------------------------------
  // Binary, and an object in lines of XML (xml/XMLObj.h) whose declaration and root the caller
  // writes and reads. The XML form holds the levels 0 .. LargestSequence() alone. Entries without a
  // counter come back with one of zeros. Each answers its promised count, which is not the number
  // of bytes; the caller flushes and checks the stream.
  //
  // Errors. A stream that has failed is not written to: message, and SeqExceptions::IOException by
  // pointer. A bad binary form: message and the same. A bad XML form: 0; for bad settings message
  // and exception. Written are also settings and links that a reader refuses. DictionaryFailure or
  // std::bad_alloc when memory runs out. After any of them the dictionary holds a part, and can be
  // destroyed and read into. A read frees what was held before.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t writeObject(std::fstream& file) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(std::fstream& file);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  // `name` is the object's name; null: "SequenceDictionary", which is what the writer writes.
  std::uint64_t readObjectXML(std::istream& is);
  std::uint64_t readObjectXML(std::istream& is, const char* name);
  std::uint64_t readObjectXML(std::fstream& file);
  std::uint64_t readObjectXML(std::fstream& file, const char* name);

 protected:
  // Gives array and tables back to the caller of the constructor that took them; nothing is stored
  // then. For makers that fail behind that constructor.
  void disownTables() noexcept;

 private:
  void createDictionary(const SeqDictionarySettings& settings);
  void defineLevel0();
  void destroy() noexcept;
  SeqDictionarySettings storedSettings() const noexcept;

  const HashtableSQPair* level(std::int32_t index) const noexcept;  // null when there is none
  HashtableSQPair* level(std::int32_t index) noexcept;
  const ISQCPair* find(const NTSequence& sequence) const noexcept;  // in the level of its size
  // Packs into the scratch sequence and finds; null also for what cannot be packed.
  const ISQCPair* findByScratch(const int* const* sets, int n) const;
  const ISQCPair* findEmpty() const noexcept;
  std::int32_t customers() const noexcept;  // the empty sequence's count; 0 when there is none

  std::int32_t numLevels_ = 0;
  double reductionThreshold_ = 0.0;
  double slidingWindow_ = 0.0;
  double minGap_ = 0.0;
  double maxGap_ = 0.0;
  SeqDictionarySettings settings_;
  HashtableSQPair** levels_ = nullptr;  // the first numLevels_ slots are ours
  std::int32_t* tableSizes_ = nullptr;  // [numLevels_ + 1] initial buckets of each level
  std::atomic<bool> cancelled_ = false;
  bool latticeBuilt_ = false;
  NTSequence* scratch_ = nullptr;  // overwritten by look-ups from unpacked forms
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_SEQUENCEDICTIONARY_H_

// What a sequence lattice answers: counts, searches, rules, recommendations, exports.
//
// Abstract. Objects are never deleted through this class: its destructor is protected. The order
// of the operations is that of the virtual table.

#ifndef LATTICE_SEQUENCESEMILATTICE_H_
#define LATTICE_SEQUENCESEMILATTICE_H_

#include <cstdint>
#include <iosfwd>
#include <set>
#include <vector>

#include "common/OrbExport.h"
#include "common/OrbStatus.h"

namespace SEQUENCE_NAMESPACE_800 {

class SeqAssociationRule;
class SeqConsequentDescriptor;
class Sequence;

class ORBSEQ_EXPORT SequenceSemiLattice {
 public:
  using OrbStatus = OrbCommon_830::OrbStatus;

  virtual OrbStatus FindSequences(const Sequence* start, std::set<Sequence*>& out, int minCount,
                                  int maxCount) const = 0;
  virtual std::int32_t NumberOfSequences() const = 0;
  virtual std::int32_t LargestSequence() const = 0;
  virtual std::int32_t CountSequencesOfSize(int size) const = 0;
  virtual std::int32_t CountSequencesBiggerThan(int size) const = 0;
  virtual OrbStatus ExportLatticeXML(std::ostream& os, double minimumSupport) const = 0;
  virtual OrbStatus ExportRulesXML(std::ostream& os, double minSupport, double maxSupport,
                                   double minConfidence, double maxConfidence, double minCause,
                                   double maxCause, int maxItemsPerTransaction,
                                   double avgItemsPerTransaction, char sortBy,
                                   bool maximalOnly) const = 0;
  virtual OrbStatus FindSequencesBeginning(const Sequence* start, std::set<Sequence*>& out,
                                           int minCount, int maxCount) const = 0;
  virtual OrbStatus FindSequencesEnding(const Sequence* start, std::set<Sequence*>& out,
                                        int minCount, int maxCount) const = 0;
  virtual OrbStatus GetCurrentItems(std::vector<SeqConsequentDescriptor>& out,
                                    const Sequence* customer, int maxCount) const = 0;
  virtual OrbStatus GetFutureItems(std::vector<SeqConsequentDescriptor>& out,
                                   const Sequence* customer, int maxCount,
                                   bool wholeOnly) const = 0;
  virtual OrbStatus GetRules(std::vector<SeqAssociationRule>& rules, double minSupport,
                             double maxSupport, double minConfidence, double maxConfidence,
                             double minCause, double maxCause, char sortBy,
                             bool maximalOnly) const = 0;

 protected:
  SequenceSemiLattice() = default;
  SequenceSemiLattice(const SequenceSemiLattice&) = default;
  SequenceSemiLattice& operator=(const SequenceSemiLattice&) = default;
  ~SequenceSemiLattice() = default;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // LATTICE_SEQUENCESEMILATTICE_H_

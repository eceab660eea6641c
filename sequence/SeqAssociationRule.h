// A sequential association rule: antecedent and consequent with their measures.
//
// Value type that owns both sequences. Copy construction copies. Assignment APPENDS the other's
// sets to the antecedent and to the consequent, as assignment of sequences does, and replaces the
// measures. Therefore no algorithm that assigns elements (std::sort, vector::erase) may be run on
// a container of rules; swap() exchanges them.
//
// Threads: as std::vector - any number of readers, or one writer.

#ifndef SEQUENCE_SEQASSOCIATIONRULE_H_
#define SEQUENCE_SEQASSOCIATIONRULE_H_

#include <cstdint>

#include "common/OrbExport.h"
#include "sequence/Sequence.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT SeqAssociationRule {
 public:
  // Copies both sequences. Measures are fractions. Join type 1: the consequent follows in a later
  // item set; 0: it joins the antecedent's last one.
  SeqAssociationRule(const Sequence& antecedent, const Sequence& consequent, double support,
                     double confidence, double cause, int joinType);
  SeqAssociationRule(const SeqAssociationRule& other);
  ~SeqAssociationRule();

  // Deliberate: the sequences are appended to, the measures are replaced.
  SeqAssociationRule& operator=(const SeqAssociationRule& other);

  void swap(SeqAssociationRule& other) noexcept;
  friend void swap(SeqAssociationRule& a, SeqAssociationRule& b) noexcept { a.swap(b); }

  const Sequence& GetAntecedent() const noexcept { return antecedent_; }
  const Sequence& GetConsequent() const noexcept { return consequent_; }
  double GetSupport() const noexcept { return support_; }
  double GetConfidence() const noexcept { return confidence_; }
  double GetCause() const noexcept { return cause_; }
  std::int32_t GetJoinType() const noexcept { return joinType_; }

  // Writes antecedent, "=>" (join type 1) or "&" (any other), consequent and measures, a line
  // each, to the standard output stream. Deliberate: leaves the stream with precision 4.
  void Display() const;

 private:
  Sequence antecedent_;
  Sequence consequent_;
  double support_;
  double confidence_;
  double cause_;
  std::int32_t joinType_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_SEQASSOCIATIONRULE_H_

// One predicted item with the measures of the rule that predicts it.
//
// Plain value. Confidence is count(longer) / count(shorter), support is count(longer) / customers,
// cause is count(longer) / count(item alone) or 0 when the item alone is not stored; fractions,
// never per cent.

#ifndef SEQUENCE_SEQCONSEQUENTDESCRIPTOR_H_
#define SEQUENCE_SEQCONSEQUENTDESCRIPTOR_H_

#include <cstdint>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT SeqConsequentDescriptor {
 public:
  // Mind the order: support stands before confidence.
  SeqConsequentDescriptor(std::int32_t item, double support, double confidence, double cause)
      : item_(item), confidence_(confidence), support_(support), cause_(cause) {}

  std::int32_t GetItem() const noexcept { return item_; }
  double GetSupport() const noexcept { return support_; }
  double GetConfidence() const noexcept { return confidence_; }
  double GetCause() const noexcept { return cause_; }

  void SetItem(std::int32_t item) noexcept { item_ = item; }
  void SetSupport(double support) noexcept { support_ = support; }
  void SetConfidence(double confidence) noexcept { confidence_ = confidence; }
  void SetCause(double cause) noexcept { cause_ = cause; }

  // Writes "Item 7 Support 0.1 Confidence 0.9 Cause 0.3" and a line break to the standard output
  // stream: the support in the stream's current precision, the others with precision 10, which is
  // left in force.
  void display() const;

 private:
  std::int32_t item_;
  double confidence_;
  double support_;
  double cause_;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_SEQCONSEQUENTDESCRIPTOR_H_

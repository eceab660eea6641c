#include "sequence/SeqAssociationRule.h"

#include <utility>

namespace SEQUENCE_NAMESPACE_800 {

SeqAssociationRule::SeqAssociationRule(const Sequence& antecedent, const Sequence& consequent,
                                       double support, double confidence, double cause,
                                       int joinType)
    : antecedent_(antecedent),
      consequent_(consequent),
      support_(support),
      confidence_(confidence),
      cause_(cause),
      joinType_(joinType) {}

SeqAssociationRule::SeqAssociationRule(const SeqAssociationRule& other) = default;

SeqAssociationRule::~SeqAssociationRule() = default;

// Deliberate: Sequence::operator= appends.
SeqAssociationRule& SeqAssociationRule::operator=(const SeqAssociationRule& other) {
  if (this == &other) return *this;
  antecedent_ = other.antecedent_;
  consequent_ = other.consequent_;
  support_ = other.support_;
  confidence_ = other.confidence_;
  cause_ = other.cause_;
  joinType_ = other.joinType_;
  return *this;
}

void SeqAssociationRule::swap(SeqAssociationRule& other) noexcept {
  antecedent_.swap(other.antecedent_);
  consequent_.swap(other.consequent_);
  std::swap(support_, other.support_);
  std::swap(confidence_, other.confidence_);
  std::swap(cause_, other.cause_);
  std::swap(joinType_, other.joinType_);
}

}  // namespace SEQUENCE_NAMESPACE_800

// Statistics of the values observed with a sequence.
//
// Made only when a counter is read back from a stored lattice; otherwise carried along unchanged.

#ifndef SEQUENCE_STATSBUCKET_H_
#define SEQUENCE_STATSBUCKET_H_

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT StatsBucket {
 public:
  StatsBucket() = default;  // every field 0.0
  StatsBucket(const StatsBucket&) = default;
  StatsBucket& operator=(const StatsBucket&) = default;
  virtual ~StatsBucket();

  double getOccurrences() const noexcept { return occurrences_; }
  double getTotal() const noexcept { return total_; }
  double getMinimum() const noexcept { return minimum_; }
  double getMaximum() const noexcept { return maximum_; }
  // Total by occurrences; 0.0 when there are no occurrences.
  double getMean() const noexcept { return occurrences_ == 0.0 ? 0.0 : total_ / occurrences_; }

  void setOccurrences(double occurrences) noexcept { occurrences_ = occurrences; }
  void setTotal(double total) noexcept { total_ = total; }
  void setMinimum(double minimum) noexcept { minimum_ = minimum; }
  void setMaximum(double maximum) noexcept { maximum_ = maximum; }

 private:
  double occurrences_ = 0.0;  // number of observations
  double total_ = 0.0;        // sum of the observed values
  double minimum_ = 0.0;
  double maximum_ = 0.0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_STATSBUCKET_H_

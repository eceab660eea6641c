// Statistics of the values observed with a sequence.
//
// Made only when a counter is read back from a stored lattice; otherwise carried along unchanged.

#ifndef SEQUENCE_STATSBUCKET_H_
#define SEQUENCE_STATSBUCKET_H_

#include <cstdint>
#include <iosfwd>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class BinaryReader;

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

  // Stored forms: binary, and objects in lines of XML (xml/XMLObj.h). Each answers its promised
  // count. The binary readers print their message and throw SeqExceptions::IOException by pointer,
  // the others print it and answer 0; a failed read changes nothing here.
  // Deliberate: the binary count is 30, although 34 bytes are written.
  std::uint64_t writeObject(std::ostream& os) const;
  std::uint64_t readObject(std::istream& is);
  std::uint64_t readObject(BinaryReader& reader);
  std::uint64_t writeObjectXML(std::ostream& os) const;
  std::uint64_t readObjectXML(std::istream& is);

 private:
  double occurrences_ = 0.0;  // number of observations
  double total_ = 0.0;        // sum of the observed values
  double minimum_ = 0.0;
  double maximum_ = 0.0;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_STATSBUCKET_H_

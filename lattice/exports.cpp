// The document exports.

#include "lattice/SequenceDictionary.h"
#include "lattice/statusCodes.h"

namespace SEQUENCE_NAMESPACE_800 {

OrbCommon_830::OrbStatus SequenceDictionary::ExportLatticeXML(std::ostream&, double) const {
  return {kFailure, false};
}

OrbCommon_830::OrbStatus SequenceDictionary::ExportRulesXML(std::ostream&, double, double, double,
                                                            double, double, double, int, double,
                                                            char, bool) const {
  return {kFailure, false};
}

}  // namespace SEQUENCE_NAMESPACE_800

// The documents of a dictionary as texts.

#ifndef TESTS_LATTICE_EXPORTTEXTS_H_
#define TESTS_LATTICE_EXPORTTEXTS_H_

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

#include "lattice/LatticeDocument.h"
#include "tests/support/World.h"

namespace orbseq::test {

inline std::string latticeText(const SequenceDictionary& dictionary,
                               const LatticeDocumentOptions& options = {}) {
  std::ostringstream out;
  writeLatticeDocument(out, dictionary, options);
  return out.str();
}

// What ExportLatticeXML writes.
inline std::string exportedLattice(const SequenceDictionary& dictionary, double minimumSupport) {
  std::ostringstream out;
  if (!dictionary.ExportLatticeXML(out, minimumSupport).IsOK())
    throw std::runtime_error("ExportLatticeXML failed");
  return out.str();
}

inline std::string pmmlText(const SequenceDictionary& dictionary, const PmmlOptions& options = {}) {
  std::ostringstream out;
  if (!writePmml(out, dictionary, options).IsOK()) throw std::runtime_error("writePmml failed");
  return out.str();
}

// What ExportRulesXML writes.
inline std::string exportedRules(const SequenceDictionary& dictionary, const RuleQuery& query,
                                 int maxItems = 0, double averageItems = 0.0) {
  std::ostringstream out;
  const auto status = dictionary.ExportRulesXML(
      out, query.minSupport, query.maxSupport, query.minConfidence, query.maxConfidence,
      query.minCause, query.maxCause, maxItems, averageItems, query.sortBy, query.maximalOnly);
  if (!status.IsOK()) throw std::runtime_error("ExportRulesXML failed");
  return out.str();
}

inline std::string goldenText(const std::string& name) {
  std::ifstream in(ORBSEQ_SOURCE_DIR "/tests/golden/" + name, std::ios::binary);
  if (!in) throw std::runtime_error("no golden file " + name);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Four customers, two items; small enough to write its documents by hand.
inline std::vector<Count> shopCounts() {
  return {{"", 4}, {"(1)", 4}, {"(2)", 3}, {"(1 2)", 2}, {"(1)(2)", 1}};
}

}  // namespace orbseq::test

#endif  // TESTS_LATTICE_EXPORTTEXTS_H_

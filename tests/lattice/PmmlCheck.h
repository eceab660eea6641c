// A structural check of PMML 3.2 documents with a SequenceModel, after the public standard
// (dmg.org, PMML 3.2): which attributes an element must and may have and what they hold, which
// children in which order, and that references lead somewhere.
//
// The standard's schema for what a sequence model never uses is left out: elements that the table
// does not know are violations. What stands in an Extension is not looked at, as the standard
// allows anything there.

#ifndef TESTS_LATTICE_PMMLCHECK_H_
#define TESTS_LATTICE_PMMLCHECK_H_

#include <string>
#include <vector>

#include "tests/lattice/XmlNode.h"

namespace orbseq::test {

// One line per violation, "Element: what"; equal ones once, in the order of discovery.
std::vector<std::string> pmmlViolations(const XmlDocument& document);

}  // namespace orbseq::test

#endif  // TESTS_LATTICE_PMMLCHECK_H_

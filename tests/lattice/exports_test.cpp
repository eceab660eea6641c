// The document exports, which are not available yet.

#include <gtest/gtest.h>

#include <sstream>

#include "lattice/SequenceDictionary.h"

namespace {

using SEQUENCE_NAMESPACE_800::SequenceDictionary;

TEST(Exports, AnswerWithAnErrorAndWriteNothing) {
  const SequenceDictionary dictionary(3);
  std::ostringstream out;

  const auto lattice = dictionary.ExportLatticeXML(out, 0.1);
  const auto rules = dictionary.ExportRulesXML(out, 0, 1, 0, 1, 0, 1, 5, 2.5, 'S', false);

  EXPECT_EQ(lattice, OrbCommon_830::OrbStatus(60000, false));
  EXPECT_EQ(rules, OrbCommon_830::OrbStatus(60000, false));
  EXPECT_EQ(out.str(), "");
}

}  // namespace

// What the module shows to the outside, and what it asks of its surroundings.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/contract/commandLines.h"

namespace {

using test::linesOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

// A mangled name of one of our namespaces, or of a table of such a class.
bool isOurs(const std::string& name) {
  static const std::regex kOurs(
      "_Z(N|NK|T.N)(22SEQUENCE_NAMESPACE_800|10OrbXML_830|13OrbCommon_830|14OrbQuillon_830|"
      "8OrbScore|6orbseq).*");
  return std::regex_match(name, kOurs);
}

std::vector<std::string> symbols(const std::string& which) {
  return linesOf("nm -D -C " + which + " '" ORBSEQ_MODULE "' | cut -c18-");
}

TEST(Exports, TheEntryAndEveryPublicClassAreThere) {
  const std::vector<std::string> defined = symbols("--defined-only");
  const auto has = [](const std::string& text) { return Contains(HasSubstr(text)); };

  EXPECT_THAT(defined, Contains("T GiveMyTranslator"));
  for (const char* name : {"TimedItemSet", "Sequence", "NTSequence", "SequenceCounter",
                           "CarmaSequenceDescriptor", "StatsBucket", "HashtableSQPair",
                           "SeqAssociationRule", "SeqConsequentDescriptor", "SequenceDictionary"})
    EXPECT_THAT(defined, has("SEQUENCE_NAMESPACE_800::" + std::string(name) + "::")) << name;
  for (const char* name : {"SequentialTranslator", "SequentialAssocModel", "SequentialResult",
                           "VectorValue<SEQUENCE_NAMESPACE_800::SeqConsequentDescriptor>"})
    EXPECT_THAT(defined, has("typeinfo for OrbQuillon_830::" + std::string(name))) << name;
  for (const char* name : {"DictionaryFailure", "IOException"})
    EXPECT_THAT(defined,
                has("typeinfo for SEQUENCE_NAMESPACE_800::SeqExceptions::" + std::string(name)));
}

TEST(Exports, NothingInternalIsThere) {
  for (const char* name :
       {"LatticeReader", "DomPlace", "Scanner", "engine::Query", "readCaseFields", "Candidates"})
    EXPECT_THAT(symbols("--defined-only"), Not(Contains(HasSubstr(name)))) << name;
}

TEST(Exports, NothingOfOthersIsThere) {
  for (const char* library : {ORBSEQ_MODULE, ORBSEQ_HOST}) {
    const std::vector<std::string> defined =
        linesOf("nm -D --defined-only '" + std::string(library) + "' | cut -c20-");
    ASSERT_GT(defined.size(), 100U) << library;
    for (const std::string& name : defined)
      EXPECT_TRUE(name == "GiveMyTranslator" || isOurs(name)) << library << ": " << name;
  }
}

TEST(Exports, HostSymbolsAreLeftToTheProcess) {
  const std::vector<std::string> needed = linesOf("readelf -d '" ORBSEQ_MODULE "' | grep NEEDED");
  ASSERT_THAT(needed, Contains(HasSubstr("libc.so")));

  EXPECT_THAT(needed, Not(Contains(HasSubstr("orbscore"))));
  EXPECT_THAT(needed, Not(Contains(HasSubstr("xerces"))));
  EXPECT_THAT(symbols("--undefined-only"), Contains(HasSubstr("OrbScore::BaseTranslator")));
}

}  // namespace

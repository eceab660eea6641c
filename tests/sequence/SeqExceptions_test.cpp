#include "sequence/SeqExceptions.h"

#include <gtest/gtest.h>

#include <exception>
#include <memory>
#include <string>

namespace {

using SEQUENCE_NAMESPACE_800::SeqExceptions;

TEST(SeqExceptions, ADictionaryFailureCarriesItsCode) {
  EXPECT_EQ(SeqExceptions::DictionaryFailure().code(), '\0');
  EXPECT_EQ(SeqExceptions::DictionaryFailure('\7').code(), '\7');
}

TEST(SeqExceptions, ADictionaryFailureIsCaughtAsAStandardException) {
  try {
    throw SeqExceptions::DictionaryFailure();
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "sequence dictionary: out of memory");
  }
}

TEST(SeqExceptions, AnInputFailureKeepsItsMessage) {
  EXPECT_STREQ(SeqExceptions::IOException("Error reading HashtableSQPair!\n").what(),
               "Error reading HashtableSQPair!\n");
}

// Deliberate: this family is thrown by pointer, and who catches it deletes it.
TEST(SeqExceptions, AnInputFailureIsThrownAndCaughtByPointer) {
  try {
    throw new SeqExceptions::IOException("lost");
  } catch (SeqExceptions::IOException* pointer) {
    const std::unique_ptr<SeqExceptions::IOException> owned(pointer);
    EXPECT_STREQ(owned->what(), "lost");
  }
}

}  // namespace

#include "sequence/errorText.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "common/OrbStatus.h"
#include "sequence/SeqExceptions.h"

namespace {

using OrbCommon_830::OrbStatus;
using SEQUENCE_NAMESPACE_800::SeqExceptions;

// The text of what the operation throws.
template <typename Operation>
std::string textOf(Operation&& operation) {
  try {
    operation();
  } catch (...) {
    return orbseq::describeCurrentException();
  }
  return "nothing was thrown";
}

class CountedFailure : public SeqExceptions::IOException {
 public:
  explicit CountedFailure(int& destroyed) : IOException("lost"), destroyed_(destroyed) {}
  ~CountedFailure() override { ++destroyed_; }

 private:
  int& destroyed_;
};

TEST(ErrorText, AStandardExceptionGivesItsMessage) {
  EXPECT_EQ(textOf([] { throw std::runtime_error("no such field"); }), "no such field");
}

TEST(ErrorText, LackOfMemoryIsNamed) {
  EXPECT_EQ(textOf([] { throw std::bad_alloc(); }), "out of memory");
}

TEST(ErrorText, ADictionaryFailureGivesItsMessage) {
  EXPECT_EQ(textOf([] { throw SeqExceptions::DictionaryFailure(); }),
            "sequence dictionary: out of memory");
}

TEST(ErrorText, AStatusGivesCodeSeverityAndDatum) {
  OrbStatus error(60001, false);
  error.SetDiscreteDatum(0, 3);

  EXPECT_EQ(textOf([&] { throw error; }), "status 60001 (error), datum 3");
  EXPECT_EQ(textOf([] { throw OrbStatus(1, true); }), "status 1 (warning), datum 0");
}

TEST(ErrorText, AnInputFailureByPointerGivesItsMessage) {
  EXPECT_EQ(textOf([] { throw new SeqExceptions::IOException("lost"); }), "lost");
}

TEST(ErrorText, AnInputFailureByPointerIsDeleted) {
  int destroyed = 0;

  EXPECT_EQ(textOf([&] { throw new CountedFailure(destroyed); }), "lost");

  EXPECT_EQ(destroyed, 1);
}

TEST(ErrorText, AnInputFailureByNullPointerHasAText) {
  EXPECT_EQ(textOf([] { throw static_cast<SeqExceptions::IOException*>(nullptr); }),
            "input or output failed");
}

TEST(ErrorText, AnInputFailureByValueGivesItsMessage) {
  EXPECT_EQ(textOf([] { throw SeqExceptions::IOException("lost"); }), "lost");
}

TEST(ErrorText, AnythingElseIsUnknown) {
  EXPECT_EQ(textOf([] { throw 42; }), "unknown failure");
}

TEST(ErrorText, LineFeedsBecomeBlanks) {
  EXPECT_EQ(textOf([] { throw std::runtime_error("first\nsecond\n"); }), "first second ");
}

}  // namespace

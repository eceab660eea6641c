#include "scoring/CaseFields.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

namespace {

using OrbQuillon_830::CaseFields;
using OrbQuillon_830::readCaseFields;
using OrbScore::ScoreCaseRecord;

CaseFields fieldsWith(const std::string& name, const std::string& text) {
  ScoreCaseRecord record;
  record.SetText(name, text);
  return readCaseFields(&record);
}

TEST(CaseFields, AbsentFieldsLeaveTheDefaults) {
  const ScoreCaseRecord record;

  for (const CaseFields& fields : {readCaseFields(&record), readCaseFields(nullptr)}) {
    EXPECT_EQ(fields.history, "");
    EXPECT_FALSE(fields.futureItems);
    EXPECT_EQ(fields.maxReturn, 20);
    EXPECT_TRUE(fields.wholeOnly);
  }
}

TEST(CaseFields, OnlyTheExactWordAsksForFutureItems) {
  EXPECT_TRUE(fieldsWith("returnType", "futureItems").futureItems);
  for (const char* text : {"FutureItems", "futureitems", "currentItems", "", "futureItems "})
    EXPECT_FALSE(fieldsWith("returnType", text).futureItems) << text;
}

TEST(CaseFields, MaxReturnTakesAnyNumberFromZeroUp) {
  EXPECT_EQ(fieldsWith("maxReturn", "5").maxReturn, 5);
  EXPECT_EQ(fieldsWith("maxReturn", "0").maxReturn, 0);
  EXPECT_EQ(fieldsWith("maxReturn", "2147483647").maxReturn, 2147483647);
  EXPECT_EQ(fieldsWith("maxReturn", "1e300").maxReturn, std::numeric_limits<std::int32_t>::max());
}

TEST(CaseFields, MaxReturnThatIsNegativeOrNoNumberIsIgnored) {
  for (const char* text : {"-1", "-2147483648", "abc", ""})
    EXPECT_EQ(fieldsWith("maxReturn", text).maxReturn, 20) << text;
}

TEST(CaseFields, ANumericFieldIsReadByItsNumber) {
  ScoreCaseRecord record;
  record.SetNumber("maxReturn", 7.0);
  record.SetNumber("returnType", 1.0);
  record.SetNumber("sequence", 12.0);

  const CaseFields fields = readCaseFields(&record);

  EXPECT_EQ(fields.maxReturn, 7);
  EXPECT_FALSE(fields.futureItems);
  EXPECT_EQ(fields.history, "12");
}

// Deliberate: the field acts by being there, whatever its value.
TEST(CaseFields, FromCurrentActsByPresence) {
  for (const char* text : {"", "false", "true", "0"})
    EXPECT_FALSE(fieldsWith("fromCurrent", text).wholeOnly) << text;
}

TEST(CaseFields, TheHistoryIsTakenAsItStands) {
  EXPECT_EQ(fieldsWith("sequence", " (1)( 2").history, " (1)( 2");
}

}  // namespace

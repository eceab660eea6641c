#include "scoring/hostapi/ScoreCaseRecord.h"

#include <gtest/gtest.h>

#include <utility>

#include "scoring/hostapi/StringValue.h"

namespace {

using OrbScore::ScoreCaseRecord;
using OrbScore::ScoreValue;
using OrbScore::StringValue;

TEST(ScoreCaseRecord, HasNoFieldAtFirst) {
  EXPECT_EQ(ScoreCaseRecord().GetField("sequence"), nullptr);
}

TEST(ScoreCaseRecord, FindsAFieldByItsExactName) {
  ScoreCaseRecord record;
  record.SetText("sequence", "(1)");

  EXPECT_EQ(record.GetField("sequence")->GetString(), "(1)");
  EXPECT_EQ(record.GetField("Sequence"), nullptr);
}

TEST(ScoreCaseRecord, HoldsTextsAndNumbers) {
  ScoreCaseRecord record;

  record.SetText("text", "7");
  record.SetNumber("number", 7.0);

  EXPECT_EQ(record.GetField("text")->GetType(), ScoreValue::kText);
  EXPECT_EQ(record.GetField("number")->GetType(), ScoreValue::kNumber);
}

TEST(ScoreCaseRecord, ReplacesAField) {
  ScoreCaseRecord record;
  record.SetText("sequence", "(1)");

  record.SetText("sequence", "(2)");

  EXPECT_EQ(record.GetField("sequence")->GetString(), "(2)");
}

TEST(ScoreCaseRecord, ANullValueRemovesTheField) {
  ScoreCaseRecord record;
  record.SetText("sequence", "(1)");

  record.SetField("sequence", nullptr);

  EXPECT_EQ(record.GetField("sequence"), nullptr);
}

TEST(ScoreCaseRecord, RemovesOneFieldOrAll) {
  ScoreCaseRecord record;
  record.SetText("a", "1");
  record.SetText("b", "2");

  record.RemoveField("a");
  record.RemoveField("not there");
  EXPECT_EQ(record.GetField("a"), nullptr);
  EXPECT_NE(record.GetField("b"), nullptr);

  record.Clear();
  EXPECT_EQ(record.GetField("b"), nullptr);
}

TEST(ScoreCaseRecord, MovesWithItsFields) {
  ScoreCaseRecord record;
  record.SetField("a", std::make_unique<StringValue>("1"));
  const ScoreValue* const value = record.GetField("a");

  const ScoreCaseRecord moved = std::move(record);

  EXPECT_EQ(moved.GetField("a"), value);
}

}  // namespace

#include "io/logTime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

namespace {

using orbseq::logTimeOf;
using orbseq::Period;
using testing::Optional;

constexpr double kDay = 86400.0;

// The beginning of a time's period, both as texts.
double beginOf(const char* period, const char* time) {
  return Period::of(period).value().beginOf(logTimeOf(time).value());
}

double timeOf(const char* text) { return logTimeOf(text).value(); }

TEST(LogTime, NumbersAreTimes) {
  EXPECT_THAT(logTimeOf("0"), Optional(0.0));
  EXPECT_THAT(logTimeOf("-12.5"), Optional(-12.5));
  EXPECT_THAT(logTimeOf("1e3"), Optional(1000.0));
  EXPECT_THAT(logTimeOf("20110118"), Optional(20110118.0));
}

TEST(LogTime, DatesBeginAtMidnight) {
  EXPECT_THAT(logTimeOf("1970-01-01"), Optional(0.0));
  EXPECT_THAT(logTimeOf("2011-01-18"), Optional(1295308800.0));
  EXPECT_THAT(logTimeOf("1969-12-31"), Optional(-kDay));
  EXPECT_THAT(logTimeOf("2000-02-29"), Optional(951782400.0));
}

TEST(LogTime, DatesMayHaveTimes) {
  EXPECT_THAT(logTimeOf("2011-01-18T10:01"), Optional(1295344860.0));
  EXPECT_THAT(logTimeOf("2011-01-18 10:01:30"), Optional(1295344890.0));
  EXPECT_THAT(logTimeOf("2011-01-18 10:01:30.5"), Optional(1295344890.5));
  EXPECT_THAT(logTimeOf("2011-01-18 10:01:30,25"), Optional(1295344890.25));
  EXPECT_EQ(timeOf("2011-01-18T24:00"), timeOf("2011-01-19"));
  EXPECT_EQ(timeOf("2016-12-31T23:59:60"), timeOf("2017-01-01"));
}

TEST(LogTime, OffsetsLeadToUniversalTime) {
  for (const char* text :
       {"2011-01-18T10:01Z", "2011-01-18T11:01+01", "2011-01-18T11:01+01:00",
        "2011-01-18T11:01:00+0100", "2011-01-18T04:31-05:30", "2011-01-19 00:01:00.0+14:00"})
    EXPECT_THAT(logTimeOf(text), Optional(1295344860.0)) << text;
}

TEST(LogTime, OtherTextsAreNoTimes) {
  for (const char* text : {"",
                           " ",
                           "1 ",
                           " 1",
                           "+1",
                           "1x",
                           "nan",
                           "-nan",
                           "inf",
                           "-inf",
                           "infinity",
                           "1e999",
                           "0x10",
                           "2011-01",
                           "2011-1-18",
                           "2011-02-30",
                           "2011-02-29",
                           "1900-02-29",
                           "2011-13-01",
                           "2011-00-01",
                           "2011-01-00",
                           "2011-01-18T",
                           "2011-01-18 ",
                           "2011-01-18x",
                           "2011-01-18Z",
                           "2011-01-18T25:00",
                           "2011-01-18T24:01",
                           "2011-01-18T24:00:01",
                           "2011-01-18T24:00:00.5",
                           "2011-01-18T10",
                           "2011-01-18T10:60",
                           "2011-01-18T10:01:61",
                           "2011-01-18T10:01:",
                           "2011-01-18T10:01:30.",
                           "2011-01-18T10:01:30.5x",
                           "2011-01-18T10:01 Z",
                           "2011-01-18T10:01ZZ",
                           "2011-01-18T10:01+",
                           "2011-01-18T10:01+1",
                           "2011-01-18T10:01+01:",
                           "2011-01-18T10:01+24:00",
                           "2011-01-18T10:01+01:60",
                           "11-01-18",
                           "18.01.2011"})
    EXPECT_FALSE(logTimeOf(text)) << text;
}

TEST(LogTime, PartsOfATimeMustBeThere) {
  for (const char* text : {"2011/01/18", "2011-01", "2011-01/18", "2011-01x18", "2011-01-",
                           "2011-01-x", "2011-01-18 10:", "2011-01-18 10:x"})
    EXPECT_FALSE(logTimeOf(text)) << text;
}

// So short that the number of periods is no finite number.
TEST(LogTime, APeriodTooShortForTheClockBeginsWithTheTime) {
  EXPECT_EQ(beginOf("1e-300", "1e300"), 1e300);
}

TEST(LogTime, AZeroByteEndsNoTime) { EXPECT_FALSE(logTimeOf(std::string_view("1\0", 2))); }

TEST(LogTime, MinutesHoursAndDaysBeginAtTheirOwn) {
  EXPECT_EQ(beginOf("minute", "2011-01-18T10:01:59.9"), timeOf("2011-01-18T10:01"));
  EXPECT_EQ(beginOf("hour", "2011-01-18T10:59:59"), timeOf("2011-01-18T10:00"));
  EXPECT_EQ(beginOf("day", "2011-01-18T23:59:59"), timeOf("2011-01-18"));
  EXPECT_EQ(beginOf("day", "2011-01-18"), timeOf("2011-01-18"));
  EXPECT_EQ(beginOf("minute", "-1"), -60.0);
  EXPECT_EQ(beginOf("hour", "-3600"), -3600.0);
  EXPECT_EQ(beginOf("day", "1969-12-30T12:00"), timeOf("1969-12-30"));
}

TEST(LogTime, WeeksBeginOnMonday) {
  EXPECT_EQ(beginOf("week", "2011-01-17"), timeOf("2011-01-17"));
  EXPECT_EQ(beginOf("week", "2011-01-23T23:59:59"), timeOf("2011-01-17"));
  EXPECT_EQ(beginOf("week", "2011-01-24"), timeOf("2011-01-24"));
  EXPECT_EQ(beginOf("week", "1970-01-01"), timeOf("1969-12-29"));
  EXPECT_EQ(beginOf("week", "1969-12-28T12:00"), timeOf("1969-12-22"));
}

TEST(LogTime, MonthsAreThoseOfTheCalendar) {
  EXPECT_EQ(beginOf("month", "2011-01-31T23:59:59"), timeOf("2011-01-01"));
  EXPECT_EQ(beginOf("month", "2012-02-29T12:00"), timeOf("2012-02-01"));
  EXPECT_EQ(beginOf("month", "2012-03-01"), timeOf("2012-03-01"));
  EXPECT_EQ(beginOf("month", "1969-12-31T23:59:59.5"), timeOf("1969-12-01"));
  EXPECT_EQ(beginOf("month", "1900-02-28"), timeOf("1900-02-01"));
}

TEST(LogTime, TimesBeyondTheCalendarAreMonthsOfTheirOwn) {
  EXPECT_EQ(beginOf("month", "1e300"), 1e300);
  EXPECT_EQ(beginOf("month", "-1e300"), -1e300);
}

TEST(LogTime, APeriodMayBeANumber) {
  EXPECT_EQ(beginOf("10", "19.9"), 10.0);
  EXPECT_EQ(beginOf("10", "-0.1"), -10.0);
  EXPECT_EQ(beginOf("0.5", "0.75"), 0.5);
}

TEST(LogTime, OtherTextsAreNoPeriods) {
  for (const char* text : {"", "Day", "days", "year", "0", "-1", "nan", "inf", "1 ", "1d"})
    EXPECT_FALSE(Period::of(text)) << text;
}

}  // namespace
